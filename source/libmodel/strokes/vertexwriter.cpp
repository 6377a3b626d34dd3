#include "libmodel/strokes/vertexwriter.h"

namespace Model {

namespace {

// resize() lets the vector grow by doubling; reserve() with the exact need would copy all that is there each time.
float *grow(std::vector<float> &stream, qsizetype floats)
{
    const size_t before = stream.size();
    stream.resize(before + static_cast<size_t>(floats));
    return stream.data() + before;
}

} // namespace

VertexWriter::VertexWriter(VertexStreams &streams, qsizetype vertices)
    : m_position(grow(streams.positions, vertices * VertexStreams::positionFloats)),
      m_attribute(grow(streams.attributes, vertices * VertexStreams::attributeFloats)),
      m_type(grow(streams.types, vertices * VertexStreams::typeFloats))
{
}

} // namespace Model
