#pragma once

#include <QSize>

#include <functional>

namespace Model {

/// The framebuffer size to try first for images of \a wanted (pixels): \a wanted itself, or, where the driver has
/// textures of power-of-two sizes only, each side rounded up to the next power of two. An empty \a wanted gives a null
/// size.
QSize preferredFramebufferSize(QSize wanted, bool anySizeSupported);

/// Tries \a preferred, then half of it each way (rounded down), a quarter, ... until \a build returns true.
///
/// \return the size that was built; a null size if a side reached 0 before any could be.
QSize largestBuildableSize(QSize preferred, const std::function<bool(QSize)> &build);

/// Number of tiles of \a tile pixels that cover \a length pixels: rounded up. 0 if \a tile is not positive.
int tileCount(int length, int tile);

} // namespace Model
