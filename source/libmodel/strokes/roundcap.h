#pragma once

#include <QPointF>
#include <QRect>
#include <QTransform>

namespace Model {

struct VertexStreams;

/// Triangles in the fan of a round cap, whatever its radius; the first of them is degenerate.
inline constexpr int roundCapTriangles = 100;

/// Where a cap lies and what it looks like.
struct RoundCap
{
    QPointF center;       ///< Paper coordinates.
    double opacity = 0.0; ///< 0 to 1.
    double radius = 0.0;  ///< Paper pixels.
    QPointF tangent;      ///< Of any length.

    /// True if the two cover the same pixels: the same disc, begun in the same direction within a fortieth of a
    /// degree.
    [[nodiscard]] bool coversTheSameAs(const RoundCap &other) const;
};

/// Appends a round cap to \a vertices: a full circle of \a radius (paper pixels) around \a center (paper coordinates)
/// with \a opacity (0 to 1), as a fan that begins in the direction of \a tangent and runs clockwise.
///
/// All its vertices lie in the centre; the vertex shader moves those of the rim out by the radius, each along the
/// normal of its own tangent. With a null \a tangent nothing of the cap is visible.
void addRoundCap(QPointF center, double opacity, double radius, QPointF tangent, VertexStreams &vertices);

/// The pixels that caps are drawn for, and how the paper lies on them.
struct CapView
{
    CapView(const QTransform &toPixels, float outward, QRect shown);

    QTransform transform; ///< From paper coordinates to pixels; affine.
    float feather;        ///< OffscreenRenderer::feather(), in pixels.
    QRect pixels;         ///< The only ones that count.
    double scale;         ///< Pixels per paper pixel; 0 where that depends on the direction, or there is a mirror.
};

/// As addRoundCap(), but without the triangles that \a view shows nothing of, where those are worth looking for. The
/// pixels are the same.
void addVisibleRoundCap(const RoundCap &cap, const CapView &view, VertexStreams &vertices);

/// The same for \a cap.
void addRoundCap(const RoundCap &cap, VertexStreams &vertices);

} // namespace Model
