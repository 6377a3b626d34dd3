#pragma once

#include <QtGlobal>

#include <vector>

namespace Model {

/// The vertices of stroke triangles, as three parallel streams of floats; a segment appends to them, the renderer draws
/// them. Three vertices in a row make one triangle.
///
/// The outline of a stroke is not in here: a vertex carries a point of the centre line, the direction of the stroke
/// there and the radius, and the vertex shader moves it out to the edge.
struct VertexStreams
{
    static constexpr qsizetype positionFloats = 4;  ///< Floats per vertex in positions.
    static constexpr qsizetype attributeFloats = 2; ///< Floats per vertex in attributes.
    static constexpr qsizetype typeFloats = 3;      ///< Floats per vertex in types.

    /// Shader attribute `posAttr`: x, y of the centre-line point in paper pixels; x, y of the tangent there, of any
    /// length.
    std::vector<float> positions;
    /// Shader attribute `colAttr`: opacity, 0 to 1; radius in paper pixels.
    std::vector<float> attributes;
    /// Shader attribute `typeAttr`: edge type; x, y of the anti-aliasing tangent (rims of caps only, else 0, 0).
    ///
    /// Edge types: +1 left edge, -1 (and anything below -0.75) right edge, 0 hub of a cap, 0.6 rim of a cap.
    std::vector<float> types;

    /// Number of vertices in the streams.
    [[nodiscard]] qsizetype vertexCount() const { return static_cast<qsizetype>(positions.size()) / positionFloats; }

    [[nodiscard]] bool isEmpty() const { return positions.empty(); }

    /// Empties the streams and keeps their memory for the next use.
    void clear()
    {
        positions.clear();
        attributes.clear();
        types.clear();
    }
};

} // namespace Model
