#pragma once

#include <QByteArray>

#include <vector>

namespace TestSupport {

/// Blocks of strokes with everything that the format has: segments, tools, compounds and their masks, pixels.
[[nodiscard]] std::vector<QByteArray> strokeBlocks();

/// Run-length images with all widths of counts.
[[nodiscard]] std::vector<QByteArray> runLengthBlocks();

} // namespace TestSupport
