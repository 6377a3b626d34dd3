#pragma once

#include <QImage>
#include <QString>

namespace Assets {

/// Writes \a image as an RGB PNG whose rows are neither filtered nor compressed.
///
/// Large, but it loads several times as fast as what an ordinary writer makes: Qt's own takes the effort of a row
/// filter even where it does not compress. \return false if the file cannot be written.
bool writeStoredPng(const QImage &image, const QString &path);

} // namespace Assets
