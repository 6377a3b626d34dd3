#pragma once

#include <QByteArray>
#include <QDir>
#include <QList>

#include <utility>

namespace Model {

/// The environment variables, by name and value in the local 8-bit encoding, that let GStreamer be found in the folder
/// "gstreamer" of \a applicationDirectory before the system's. Empty without that folder: the user's environment
/// stays as it is then. A part that is missing in the folder leaves its variable at \a applicationDirectory.
QList<std::pair<QByteArray, QByteArray>> bundledGstreamerEnvironment(const QDir &applicationDirectory);

} // namespace Model
