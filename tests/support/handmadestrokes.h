#pragma once

#include "libmodel/render/vertexstreams.h"

#include <QPointF>

namespace TestSupport {

/// What a stroke has at one of its ends.
struct StrokeEnd
{
    QPointF point;
    double opacity = 1.0;
    double radius = 1.0; ///< In paper pixels.
};

/// A circular arc in paper pixels; angles in degrees, counter-clockwise on the screen, 0 to the right.
struct ArcShape
{
    QPointF center;
    double arcRadius = 1.0;
    double startDegrees = 0.0;
    double sweepDegrees = 90.0;
    double opacity = 1.0;
    double radius = 1.0;

    [[nodiscard]] QPointF pointAt(double degrees) const;
    /// Direction of the stroke at \a degrees, with the length of the arc's radius.
    [[nodiscard]] QPointF tangentAt(double degrees) const;
};

// Vertices made by hand from the description of the streams, so that the renderer's tests need no segment classes.

/// A round cap: a fan of 100 triangles around one point.
void appendCap(Model::VertexStreams &vertices, const StrokeEnd &end, QPointF tangent);

/// A dot: a cap whose tangent points to the right.
void appendDot(Model::VertexStreams &vertices, const StrokeEnd &end);

/// The two triangles between the ends of a line; \a fourthType is the edge type of the fourth vertex.
void appendLineBody(Model::VertexStreams &vertices, const StrokeEnd &start, const StrokeEnd &end,
                    float fourthType = -11.0F);

/// A line with a cap at each end.
void appendLine(Model::VertexStreams &vertices, const StrokeEnd &start, const StrokeEnd &end);

/// An arc in ten steps with a cap at each end.
void appendArc(Model::VertexStreams &vertices, const ArcShape &arc);

} // namespace TestSupport
