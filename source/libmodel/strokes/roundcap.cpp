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

/// The clockwise turns of the fan, the last one back to exactly none. Shared by all caps, for a cap of its own sines
/// and cosines would cost more than all the rest of it.
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

bool RoundCap::coversTheSameAs(const RoundCap &other) const
{
    // Turned by this little, a polygon of 99 corners differs from itself by less than two hundred-thousandths of its
    // radius: by the angle times the tangent of half a corner's step.
    constexpr double leastCosine = 1.0 - 1.0e-7;
    if (center != other.center || opacity != other.opacity || radius != other.radius)
        return false;
    const double lengths = std::hypot(tangent.x(), tangent.y()) * std::hypot(other.tangent.x(), other.tangent.y());
    return lengths > 0.0 && QPointF::dotProduct(tangent, other.tangent) >= leastCosine * lengths;
}

void addRoundCap(const RoundCap &cap, VertexStreams &vertices)
{
    addRoundCap(cap.center, cap.opacity, cap.radius, cap.tangent, vertices);
}

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
