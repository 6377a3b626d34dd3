#pragma once

#include <QtGlobal>

#include <utility>
#include <vector>

namespace Assets {

/// A square field of numbers that repeats in both directions: what lies beyond an edge is what lies at the other one.
struct Field
{
    int side = 0;              ///< width and height in texels
    std::vector<float> values; ///< side * side numbers, row by row
};

/// White noise in -1 to 1, the same for the same \a seed on every machine.
Field whiteNoise(int side, quint32 seed);

/// \a field smoothed by a Gaussian of \a sigma texels, across the edges; \a sigma 0 or less leaves it as it is.
Field blurred(const Field &field, float sigma);

/// \a field smoothed within each row alone, across the left and right edges; the rows stay independent.
Field blurredAlongRows(const Field &field, float sigma);

/// Noise whose features lie between the two scales \a fine and \a coarse (sigmas in texels), of mean 0 and deviation 1.
Field bandNoise(int side, quint32 seed, float fine, float coarse);

/// Brings \a field to mean 0 and standard deviation 1; a constant field becomes 0.
void normalise(Field &field);

/// Adds \a weight times \a other to \a field; both have the same side.
void add(Field &field, const Field &other, float weight);

/// A distribution: (quantile 0 to 1, level 0 to 255) pairs in rising order, the first at 0 and the last at 1.
using Quantiles = std::vector<std::pair<double, double>>;

/// Gives every texel the level that its rank in \a field has in \a quantiles, straight between two pairs.
/// \return side * side levels, row by row.
std::vector<uchar> levelsByRank(const Field &field, const Quantiles &quantiles);

} // namespace Assets
