#pragma once

#include "libmodel/render/vertexstreams.h"

#include <QPointF>

namespace Model {

/// Edge types of the vertices of a body.
inline constexpr float leftEdge = 1.0F;
inline constexpr float rightEdge = -1.0F;

/// A place on the centre line of a body, from which two vertices go out to the edges.
struct EdgePoint
{
    QPointF point;        ///< Paper coordinates.
    QPointF tangent;      ///< Of any length.
    double opacity = 0.0; ///< 0 to 1.
    double radius = 0.0;  ///< Paper pixels.
};

/// Appends a known number of vertices to streams, which grow once for all of them.
class VertexWriter
{
public:
    VertexWriter(VertexStreams &streams, qsizetype vertices);

    /// The next vertex of a body: on the left or the right edge beside \a at.
    void addEdge(const EdgePoint &at, float edgeType) { addFan(at, edgeType, {0.0, 0.0}); }

    /// The next vertex of a cap: in \a at.point, of \a edgeType, with the mean tangent for anti-aliasing.
    void addFan(const EdgePoint &at, float edgeType, QPointF meanTangent)
    {
        *m_position++ = float(at.point.x());
        *m_position++ = float(at.point.y());
        *m_position++ = float(at.tangent.x());
        *m_position++ = float(at.tangent.y());
        *m_attribute++ = float(at.opacity);
        *m_attribute++ = float(at.radius);
        *m_type++ = edgeType;
        *m_type++ = float(meanTangent.x());
        *m_type++ = float(meanTangent.y());
    }

private:
    float *m_position;
    float *m_attribute;
    float *m_type;
};

} // namespace Model
