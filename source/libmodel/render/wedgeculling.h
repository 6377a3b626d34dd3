#pragma once

#include <QPointF>
#include <QRect>

#include <array>

namespace Model {

struct VertexStreams;

/// Where triangles end up when their paper coordinates are only moved, neither scaled nor turned.
struct PixelWindow
{
    QPointF shift;        ///< Added to paper coordinates, it gives pixels.
    float feather = 0.0F; ///< How far the vertex shader moves a rim out beyond the radius, in pixels; above 0.
    QRect pixels;         ///< The only pixels that count.
};

/// Leaves out wedges of round caps that no pixel centre of \a window lies in.
///
/// The caps of a thin stroke have far more wedges than pixels, and a driver sets each of them up to find that out. What
/// is left covers the same pixels: a wedge that a centre lies in, or so near to that rounding might decide, always
/// stays. Caps too large to gain from it stay whole, as does all that is no full cap, as VertexStreams describes it: a
/// fan of 100 wedges in equal steps, the first of them degenerate.
///
/// \a kept is overwritten; its memory is used again. \return false if nothing is to be left out; \a kept holds nothing
/// then.
bool leaveOutEmptyWedges(const VertexStreams &vertices, const PixelWindow &window, VertexStreams &kept);

/// Of each wedge of a cap, in the order in which they are drawn, whether it is needed.
using CapWedges = std::array<bool, 100>;

/// A round cap as it lies in an image that is neither mirrored nor stretched more one way than the other.
struct PlacedCap
{
    QPointF center;      ///< Pixels.
    double radius = 0.0; ///< Pixels, without the feather.
    QPointF tangent;     ///< The direction that the fan begins in; of any length.
};

/// Tells which wedges of \a cap a pixel centre of \a pixels may lie in, after the vertex shader has moved its rim out
/// by \a feather (pixels): the same as leaveOutEmptyWedges(), before there are any vertices.
///
/// The first one is degenerate and never needed. \return false, with nothing told, for caps that are best drawn whole.
bool findCoveredWedges(const PlacedCap &cap, float feather, QRect pixels, CapWedges &covered);

} // namespace Model
