#include "libmodel/strokes/roundcap.h"

#include "libmodel/render/wedgeculling.h"
#include "libmodel/strokes/vertexwriter.h"

#include <QtMath>

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>

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

static_assert(std::tuple_size_v<CapWedges> == roundCapTriangles);

QPointF turned(QPointF tangent, const Rotation &turn)
{
    // y points down, so this is a clockwise turn on the screen.
    return {tangent.x() * turn.cosine - tangent.y() * turn.sine, tangent.x() * turn.sine + tangent.y() * turn.cosine};
}

/// One triangle of the fan, from one tangent to the next.
void addWedge(const RoundCap &cap, QPointF from, QPointF to, VertexWriter &writer)
{
    // One anti-aliasing normal for the whole chord makes the feather follow the straight edge of the polygon.
    const QPointF mean = (from + to) / 2.0;
    writer.addFan({cap.center, {0.0, 0.0}, cap.opacity, cap.radius}, hub, {0.0, 0.0});
    writer.addFan({cap.center, from, cap.opacity, cap.radius}, rim, mean);
    writer.addFan({cap.center, to, cap.opacity, cap.radius}, rim, mean);
}

/// How much \a transform scales, if it does so evenly and keeps the sense of turns; else 0.
double evenScale(const QTransform &transform)
{
    constexpr double deviation = 1.0e-6; // of the scale: far less than what wedge culling leaves room for
    const double scale = std::hypot(transform.m11(), transform.m12());
    const bool isEven = std::abs(transform.m11() - transform.m22()) <= deviation * scale &&
                        std::abs(transform.m12() + transform.m21()) <= deviation * scale;
    return isEven && transform.isAffine() ? scale : 0.0;
}

} // namespace

CapView::CapView(const QTransform &toPixels, float outward, QRect shown)
    : transform(toPixels), feather(outward), pixels(shown), scale(evenScale(toPixels))
{
}

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
    VertexWriter writer(vertices, 3 * roundCapTriangles);
    QPointF previous = cap.tangent;
    for (const Rotation &turn : turns()) {
        const QPointF current = turned(cap.tangent, turn);
        addWedge(cap, previous, current, writer);
        previous = current;
    }
}

void addVisibleRoundCap(const RoundCap &cap, const CapView &view, VertexStreams &vertices)
{
    CapWedges covered;
    const QTransform &transform = view.transform;
    const QPointF tangent(transform.m11() * cap.tangent.x() + transform.m21() * cap.tangent.y(),
                          transform.m12() * cap.tangent.x() + transform.m22() * cap.tangent.y());
    const PlacedCap placed{transform.map(cap.center), view.scale * cap.radius, tangent};
    if (view.scale <= 0.0 || !findCoveredWedges(placed, view.feather, view.pixels, covered)) {
        addRoundCap(cap, vertices);
        return;
    }
    VertexWriter writer(vertices, 3 * std::count(covered.begin(), covered.end(), true));
    for (size_t i = 1; i < covered.size(); ++i) {
        if (covered[i])
            addWedge(cap, turned(cap.tangent, turns()[i - 1]), turned(cap.tangent, turns()[i]), writer);
    }
}

void addRoundCap(QPointF center, double opacity, double radius, QPointF tangent, VertexStreams &vertices)
{
    addRoundCap({center, opacity, radius, tangent}, vertices);
}

} // namespace Model
