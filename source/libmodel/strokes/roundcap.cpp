#include "libmodel/strokes/roundcap.h"

#include "libmodel/strokes/vertexwriter.h"

#include <QtMath>

#include <array>
#include <cmath>

namespace Model {

namespace {

constexpr float hub = 0.0F;
constexpr float rim = 0.6F;
/// One less than there are triangles: the first one is degenerate, the last one ends where the fan began.
constexpr int turnSteps = roundCapTriangles - 1;

struct Rotation
{
    double cosine;
    double sine;
};

/// The clockwise turns of the fan, the last one back to exactly none. Shared by all caps, for a cap of its own sines and
/// cosines would cost more than all the rest of it.
const std::array<Rotation, roundCapTriangles> &turns()
{
    static const auto table = [] {
        std::array<Rotation, roundCapTriangles> result{};
        for (size_t i = 0; i < result.size(); ++i) {
            const double angle = 2.0 * M_PI * double(i % turnSteps) / turnSteps;
            result[i] = {std::cos(angle), std::sin(angle)};
        }
        return result;
    }();
    return table;
}

} // namespace

void addRoundCap(QPointF center, double opacity, double radius, QPointF tangent, VertexStreams &vertices)
{
    VertexWriter writer(vertices, 3 * roundCapTriangles);
    const EdgePoint middle{center, {0.0, 0.0}, opacity, radius};
    EdgePoint previous{center, tangent, opacity, radius};
    EdgePoint current = previous;
    for (const Rotation &turn : turns()) {
        // y points down, so this is a clockwise turn on the screen.
        current.tangent = {tangent.x() * turn.cosine - tangent.y() * turn.sine,
                           tangent.x() * turn.sine + tangent.y() * turn.cosine};
        // One anti-aliasing normal for the whole chord makes the feather follow the straight edge of the polygon.
        const QPointF mean = (previous.tangent + current.tangent) / 2.0;
        writer.addFan(middle, hub, {0.0, 0.0});
        writer.addFan(previous, rim, mean);
        writer.addFan(current, rim, mean);
        previous = current;
    }
}

} // namespace Model
