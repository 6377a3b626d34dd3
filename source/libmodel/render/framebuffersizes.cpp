#include "libmodel/render/framebuffersizes.h"

#include <algorithm>
#include <bit>

namespace Model {

namespace {

int nextPowerOfTwo(int length)
{
    constexpr unsigned largest = 1U << 30;
    return static_cast<int>(std::bit_ceil(std::min(static_cast<unsigned>(length), largest)));
}

} // namespace

QSize preferredFramebufferSize(QSize wanted, bool anySizeSupported)
{
    if (wanted.isEmpty())
        return {0, 0};
    if (anySizeSupported)
        return wanted;
    return {nextPowerOfTwo(wanted.width()), nextPowerOfTwo(wanted.height())};
}

QSize largestBuildableSize(QSize preferred, const std::function<bool(QSize)> &build)
{
    QSize size = preferred;
    while (!size.isEmpty()) {
        if (build(size))
            return size;
        size = QSize(size.width() / 2, size.height() / 2);
    }
    return {0, 0};
}

int tileCount(int length, int tile)
{
    if (length <= 0 || tile <= 0)
        return 0;
    return (length - 1) / tile + 1;
}

} // namespace Model
