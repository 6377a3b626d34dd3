#pragma once

#include <QByteArray>

#include <vector>

namespace TestSupport {

/// Small scene files: generated scenes with all kinds of layers and cells, and documents by hand with what the program
/// reads and never writes. The same bytes whenever they are asked for.
[[nodiscard]] std::vector<QByteArray> sceneFiles();

} // namespace TestSupport
