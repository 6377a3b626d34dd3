#include "libmodel/render/wedgeculling.h"

#include "libmodel/render/vertexstreams.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <tuple>

namespace Model {

namespace {

constexpr float hub = 0.0F;
constexpr float rim = 0.6F;
constexpr size_t wedges = 100; // of a cap
constexpr int turnSteps = 99;  // one less: the first wedge is degenerate
constexpr size_t triangleCorners = 3;
constexpr size_t capVertices = triangleCorners * wedges;
constexpr float stepsPerRadian = turnSteps / (2.0F * std::numbers::pi_v<float>);

/// Above, in pixels, hardly a wedge is empty and looking for those costs more than drawing them.
constexpr float largestRadius = 6.0F;
/// Beyond, in pixels, single precision no longer tells a pixel from its neighbour reliably.
constexpr float farthest = 16384.0F;
/// What a corner may be off by in pixels: drivers place corners to 1/256 of a pixel, and round a little before that.
constexpr float margin = 1.0F / 64.0F;

/// Within these lengths no square of one gets lost.
bool isReliableLength(float length)
{
    constexpr float shortest = 1.0e-3F;
    constexpr float longest = 1.0e6F;
    return length >= shortest && length <= longest;
}

struct Rotation
{
    float cosine;
    float sine;
};

/// Where the wedges end, relative to where the cap begins.
const std::array<Rotation, wedges> &turns()
{
    static const auto table = [] {
        std::array<Rotation, wedges> result{};
        for (size_t i = 0; i < wedges; ++i) {
            const double angle = 2.0 * std::numbers::pi * static_cast<double>(i) / turnSteps;
            result[i] = {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
        }
        return result;
    }();
    return table;
}

/// The streams as vertices.
class Vertices
{
public:
    explicit Vertices(const VertexStreams &streams)
        : m_position(streams.positions.data()), m_attribute(streams.attributes.data()), m_type(streams.types.data())
    {
    }

    [[nodiscard]] const float *position(size_t i) const { return m_position + i * VertexStreams::positionFloats; }
    [[nodiscard]] const float *tangent(size_t i) const { return position(i) + 2; }
    [[nodiscard]] float radius(size_t i) const { return m_attribute[i * VertexStreams::attributeFloats + 1]; }
    [[nodiscard]] float type(size_t i) const { return m_type[i * VertexStreams::typeFloats]; }

private:
    const float *m_position;
    const float *m_attribute;
    const float *m_type;
};

/// True if the 300 vertices from \a first on are a cap with wedges where turns() has them.
bool isCap(const Vertices &vertices, size_t first)
{
    constexpr float deviation = 1.0e-4F; // of the length

    const float *center = vertices.position(first);
    const float radius = vertices.radius(first + 1);
    const float *begin = vertices.tangent(first + 1);
    const float length = std::hypot(begin[0], begin[1]);
    if (!isReliableLength(length))
        return false;
    const float tolerance = deviation * length;
    const auto isAt = [&](size_t i, float type) {
        const float *position = vertices.position(i);
        return vertices.type(i) == type && position[0] == center[0] && position[1] == center[1];
    };
    const auto isRim = [&](size_t i, const Rotation &turn) {
        const float *tangent = vertices.tangent(i);
        return isAt(i, rim) && vertices.radius(i) == radius &&
               std::abs(begin[0] * turn.cosine - begin[1] * turn.sine - tangent[0]) <= tolerance &&
               std::abs(begin[0] * turn.sine + begin[1] * turn.cosine - tangent[1]) <= tolerance;
    };
    Rotation previous = turns().front();
    for (const Rotation &current : turns()) {
        if (!isAt(first, hub) || !isRim(first + 1, previous) || !isRim(first + 2, current))
            return false;
        first += triangleCorners;
        previous = current;
    }
    return true;
}

static_assert(std::tuple_size_v<CapWedges> == wedges);

/// Marks the wedges that a point may lie in which is \a x, \a y away from the hub of a cap that begins at \a
/// startAngle.
void markWedgesAt(float x, float y, float startAngle, CapWedges &covered)
{
    constexpr float nearHub = 4.0F * margin;
    const float distance = std::sqrt(x * x + y * y);
    if (distance < nearHub) {
        covered.fill(true);
        return;
    }
    // A quarter more for the difference of sine and angle, and for what isCap() tolerates.
    const float spread = 1.25F * margin / distance * stepsPerRadian;
    const float turn = (std::atan2(y, x) - startAngle) * stepsPerRadian;
    const int last = static_cast<int>(std::floor(turn + spread));
    for (int i = static_cast<int>(std::floor(turn - spread)); i <= last; ++i)
        covered[static_cast<size_t>((i + 2 * turnSteps) % turnSteps) + 1] = true;
}

/// A disc in an image, and where on it the wedges begin.
struct Disc
{
    float x;
    float y;
    float reach; ///< With the feather.
    float startAngle;
};

/// The fan begins on the left of \a tangent; y points down.
float startAngleOf(float tangentX, float tangentY)
{
    return std::atan2(-tangentX, tangentY);
}

/// Marks the wedges of \a disc that the centre of one of \a pixels may lie in.
void markWedges(const Disc &disc, QRect pixels, CapWedges &covered)
{
    const float reach = disc.reach + margin;
    const auto firstCentre = [](float from) { return static_cast<int>(std::ceil(from - 0.5F)); };
    const auto lastCentre = [](float to) { return static_cast<int>(std::floor(to - 0.5F)); };
    const int bottom = std::min(lastCentre(disc.y + reach), pixels.bottom());
    for (int row = std::max(firstCentre(disc.y - reach), pixels.top()); row <= bottom; ++row) {
        const float down = static_cast<float>(row) + 0.5F - disc.y;
        const float across = std::sqrt(std::max(reach * reach - down * down, 0.0F));
        const int right = std::min(lastCentre(disc.x + across), pixels.right());
        for (int column = std::max(firstCentre(disc.x - across), pixels.left()); column <= right; ++column)
            markWedgesAt(static_cast<float>(column) + 0.5F - disc.x, down, disc.startAngle, covered);
    }
}

/// The wedges of the cap from \a first on that the centre of a pixel of \a window may lie in.
CapWedges coveredWedges(const Vertices &vertices, size_t first, const PixelWindow &window)
{
    CapWedges covered{};
    const float *center = vertices.position(first);
    const float *begin = vertices.tangent(first + 1);
    const float *end = vertices.tangent(first + 2);
    covered[0] = begin[0] != end[0] || begin[1] != end[1];
    markWedges({center[0] + static_cast<float>(window.shift.x()), center[1] + static_cast<float>(window.shift.y()),
                vertices.radius(first + 1) + window.feather, startAngleOf(begin[0], begin[1])},
               window.pixels, covered);
    return covered;
}

/// True if the cap that may begin at \a first, if it is one, is small enough and not too far away.
bool canGain(const Vertices &vertices, size_t first, const PixelWindow &window)
{
    const auto isNear = [](float coordinate, double shift) {
        return std::abs(coordinate) < farthest && std::abs(coordinate + static_cast<float>(shift)) < farthest;
    };
    const float radius = vertices.radius(first + 1);
    const float *center = vertices.position(first);
    return vertices.type(first) == hub && radius >= 0.0F && radius + window.feather <= largestRadius &&
           isNear(center[0], window.shift.x()) && isNear(center[1], window.shift.y());
}

void append(const VertexStreams &from, size_t first, size_t end, VertexStreams &to)
{
    const auto appendFloats = [&](const std::vector<float> &source, qsizetype floats, std::vector<float> &target) {
        const float *data = source.data();
        target.insert(target.end(), data + first * static_cast<size_t>(floats),
                      data + end * static_cast<size_t>(floats));
    };
    appendFloats(from.positions, VertexStreams::positionFloats, to.positions);
    appendFloats(from.attributes, VertexStreams::attributeFloats, to.attributes);
    appendFloats(from.types, VertexStreams::typeFloats, to.types);
}

} // namespace

bool leaveOutEmptyWedges(const VertexStreams &vertices, const PixelWindow &window, VertexStreams &kept)
{
    kept.clear();
    const Vertices view(vertices);
    const auto count = static_cast<size_t>(vertices.vertexCount());
    size_t copied = 0; // all before are in kept or left out
    bool leavesOut = false;
    for (size_t i = 0; i + capVertices <= count;) {
        if (!canGain(view, i, window) || !isCap(view, i)) {
            i += triangleCorners;
            continue;
        }
        for (const bool covered : coveredWedges(view, i, window)) {
            if (!covered) {
                append(vertices, copied, i, kept);
                copied = i + triangleCorners;
                leavesOut = true;
            }
            i += triangleCorners;
        }
    }
    if (leavesOut)
        append(vertices, copied, count, kept);
    return leavesOut;
}

bool findCoveredWedges(const PlacedCap &cap, float feather, QRect pixels, CapWedges &covered)
{
    const auto x = static_cast<float>(cap.center.x());
    const auto y = static_cast<float>(cap.center.y());
    const auto tangentX = static_cast<float>(cap.tangent.x());
    const auto tangentY = static_cast<float>(cap.tangent.y());
    const float reach = static_cast<float>(cap.radius) + feather;
    if (!(reach >= feather && reach <= largestRadius) || !isReliableLength(std::hypot(tangentX, tangentY)) ||
        !(std::abs(x) < farthest && std::abs(y) < farthest))
        return false;
    covered.fill(false);
    markWedges({x, y, reach, startAngleOf(tangentX, tangentY)}, pixels, covered);
    covered[0] = false;
    return true;
}

} // namespace Model
