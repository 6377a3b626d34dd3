#pragma once

#include <QByteArray>

#include <vector>

namespace TestSupport {

/// The private form of copied drawings: strokes and pictures, with holds, distant clones, and drawings that the scene
/// of the fuzzer knows.
[[nodiscard]] std::vector<QByteArray> drawingClips();

} // namespace TestSupport
