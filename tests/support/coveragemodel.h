#pragma once

#include "support/handmadestrokes.h"

#include <QPointF>

namespace TestSupport {

/// What the renderer should make of one pixel, worked out on the CPU from the shape itself: the distance to the centre
/// line, the softness tables, the feather and the rule for thin lines. It knows no triangles and no shader.
///
/// Coverage is between two bounds, because a graphics driver is free in how it picks the level of detail of a softness
/// curve. The paper is even: the same tooth and grain everywhere, which only the pencil shows.
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

    /// \a penIndex is 0 pencil, 1 marker, 2 brush, 3 kneaded, 4 rubber, 5 vinyl eraser; \a renderScale is image pixels
    /// per paper pixel. \a tooth and \a grain are the paper's red and green, 0 to 1; left out, the paper shows nowhere.
    CoverageModel(int penIndex, double renderScale, double tooth = 1.0, double grain = 0.0)
        : m_pen(penIndex), m_scale(renderScale), m_tooth(tooth), m_grain(grain)
    {
    }

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

    /// Value of the pencil's grain table at texel \a index, 0 to 255, interpolated.
    [[nodiscard]] static double grainTexel(int index);

    /// Where on the grain table, from 0 to 1, a point at \a distance from the centre line of a pencil stroke lies.
    [[nodiscard]] double grainPosition(double distance, double radius) const;

private:
    /// Bounds of the share that the pencil's grain leaves, 0 to 1.
    [[nodiscard]] Bounds grainShare(double distance, double component, double radius) const;

    int m_pen;
    double m_scale;
    double m_tooth;
    double m_grain;
};

} // namespace TestSupport
