#pragma once

#include <algorithm>
#include <cmath>

namespace Model {

/// True if \a a and \a b differ by no more than a 1e12th of the smaller of their magnitudes. Zero equals only zero.
inline bool fuzzyEqual(double a, double b)
{
    return std::min(std::abs(a), std::abs(b)) >= 1e12 * std::abs(a - b);
}

/// True if something of this \a opacity (0 to 1) can be seen at all.
inline bool isOpacityShown(double opacity)
{
    return std::abs(opacity) > 1e-12;
}

} // namespace Model
