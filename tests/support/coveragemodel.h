#pragma once

#include "support/handmadestrokes.h"

#include <QPointF>

namespace TestSupport {

/// What the renderer should make of one pixel, worked out on the CPU from the shape itself: the distance to the centre line,
/// the softness tables, the feather and the rule for thin lines. It knows no triangles and no shader.
///
/// Coverage is between two bounds, because a graphics driver is free in how it picks the level of detail of a softness
/// curve. For the pencil the model takes the paper as even: no tooth and no grain.
class CoverageModel
{
public:
    /// Bounds of a coverage, 0 to 255, not rounded.
    struct Bounds
    {
        double lower = 0.0;
        double upper = 0.0;

        /// The bounds of the stronger of two pieces of one stroke.
        [[nodiscard]] Bounds strongerOf(const Bounds &other) const;
    };

    /// \a penIndex is 0 pencil, 1 marker, 2 brush, 3 kneaded, 4 rubber, 5 vinyl eraser; \a renderScale is image pixels per
    /// paper pixel.
    CoverageModel(int penIndex, double renderScale) : m_pen(penIndex), m_scale(renderScale) {}

    // All points and radii below are in image pixels.

    [[nodiscard]] Bounds dot(const StrokeEnd &end, QPointF pixel) const;
    /// A line of even radius, caps included.
    [[nodiscard]] Bounds line(const StrokeEnd &start, const StrokeEnd &end, QPointF pixel) const;
    /// An arc of even radius, caps included.
    [[nodiscard]] Bounds arc(const ArcShape &arc, QPointF pixel) const;

    /// A pixel whose centre is \a distance away, in the direction \a away, from the centre line of a stroke.
    [[nodiscard]] Bounds atDistance(double distance, QPointF away, double radius, double opacity) const;

    /// Value of the pen's softness table at texel \a index, 0 to 255, interpolated.
    [[nodiscard]] static double softnessTexel(int penIndex, int index);

private:
    int m_pen;
    double m_scale;
};

} // namespace TestSupport
