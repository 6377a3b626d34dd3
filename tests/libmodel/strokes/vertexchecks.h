#pragma once

#include "libmodel/render/vertexstreams.h"

#include <QPointF>

#include <cmath>

/// One vertex of the three streams, put together again.
struct Vertex
{
    QPointF point;
    QPointF tangent;
    double opacity = 0.0;
    double radius = 0.0;
    double type = 0.0;
    QPointF mean;
};

inline Vertex vertexAt(const Model::VertexStreams &streams, qsizetype index)
{
    const auto i = size_t(index);
    return {{streams.positions[4 * i], streams.positions[4 * i + 1]},
            {streams.positions[4 * i + 2], streams.positions[4 * i + 3]},
            streams.attributes[2 * i],
            streams.attributes[2 * i + 1],
            streams.types[3 * i],
            {streams.types[3 * i + 1], streams.types[3 * i + 2]}};
}

/// All three streams tell of the same number of vertices.
inline bool isConsistent(const Model::VertexStreams &streams, size_t vertices)
{
    return streams.positions.size() == 4 * vertices && streams.attributes.size() == 2 * vertices &&
           streams.types.size() == 3 * vertices;
}

/// Equal within what single precision tells apart at the size of paper coordinates.
inline bool isNear(QPointF a, QPointF b, double tolerance = 1e-4)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= tolerance;
}

inline bool isNear(double a, double b, double tolerance = 1e-6)
{
    return std::abs(a - b) <= tolerance;
}
