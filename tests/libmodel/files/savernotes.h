#pragma once

#include <array>
#include <atomic>

namespace TestSupport {

/// The number of drawings in each of the two versions that scenesaver saves, all of them in one layer.
inline constexpr std::array versionFrames{300, 500};

/// How often the writer of version \a version looks whether it is to stop: after the scene's attributes, the order, the
/// layer's attributes, and each drawing.
constexpr int looksOfVersion(int version)
{
    return 3 + versionFrames[size_t(version)];
}

/// Where a program that saves stands, in a file mapped into memory, so that it can be looked up when the program was
/// killed.
struct SaverNotes
{
    std::atomic<int> begun = 0; ///< saves, the first version being the first
    std::atomic<int> ended = 0; ///< of these
    std::atomic<int> looks = 0; ///< at whether to stop, in the save under way
};

} // namespace TestSupport
