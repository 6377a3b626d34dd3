#include "support/coveragemodel.h"

#include <QLineF>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace TestSupport {

namespace {

constexpr int texels = 256;
constexpr double featherPerScale = 0.65;

using Table = std::array<int, 17>; // at texels 0, 16, ..., 240 and 255
constexpr Table pencil = {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 242, 209, 91, 2};
constexpr Table marker = {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 247, 246, 245, 242, 235, 208};
constexpr Table brush = {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 253, 248, 246, 245, 232};
constexpr Table kneaded = {255, 249, 247, 246, 245, 244, 243, 241, 239, 235, 231, 226, 219, 209, 194, 170, 104};
constexpr Table vinyl = {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 249, 246, 244, 231};
constexpr std::array<const Table *, 6> tables = {&pencil, &marker, &brush, &kneaded, &marker, &vinyl};

using Level = std::vector<double>;

/// The curve of one pen in all its levels of detail, each the pairwise means of the one before.
class MipChain
{
public:
    explicit MipChain(int pen)
    {
        Level level;
        for (int i = 0; i < texels; ++i)
            level.push_back(CoverageModel::softnessTexel(pen, i));
        m_levels.push_back(level);
        while (m_levels.back().size() > 1) {
            const Level &finer = m_levels.back();
            Level coarser;
            for (size_t i = 0; i + 1 < finer.size(); i += 2)
                coarser.push_back((finer[i] + finer[i + 1]) / 2);
            m_levels.push_back(coarser);
        }
    }

    /// Linear within a level and between two of them; positions beyond 0 to 1 hold the end's value.
    [[nodiscard]] double at(double position, double detail) const
    {
        const double clamped = std::clamp(detail, 0.0, static_cast<double>(m_levels.size() - 1));
        const auto fine = static_cast<size_t>(clamped);
        const size_t coarse = std::min(fine + 1, m_levels.size() - 1);
        const double share = clamped - static_cast<double>(fine);
        return within(m_levels[fine], position) * (1 - share) + within(m_levels[coarse], position) * share;
    }

private:
    static double within(const Level &level, double position)
    {
        const auto last = static_cast<double>(level.size() - 1);
        const double x = std::clamp(position * static_cast<double>(level.size()) - 0.5, 0.0, last);
        const auto left = static_cast<size_t>(x);
        const size_t right = std::min(left + 1, level.size() - 1);
        const double share = x - static_cast<double>(left);
        return level[left] * (1 - share) + level[right] * share;
    }

    std::vector<Level> m_levels;
};

const MipChain &curveOf(int pen)
{
    static const std::array<MipChain, 6> curves = {MipChain(0), MipChain(1), MipChain(2),
                                                   MipChain(3), MipChain(4), MipChain(5)};
    return curves[static_cast<size_t>(pen)];
}

double lengthOf(QPointF vector)
{
    return std::hypot(vector.x(), vector.y());
}

} // namespace

CoverageModel::Bounds CoverageModel::Bounds::strongerOf(const Bounds &other) const
{
    return {std::max(lower, other.lower), std::max(upper, other.upper)};
}

double CoverageModel::softnessTexel(int penIndex, int index)
{
    const Table &table = *tables[static_cast<size_t>(penIndex)];
    const int step = std::min(index / 16, 15);
    const int from = step * 16;
    const int to = step == 15 ? texels - 1 : from + 16;
    const auto entry = static_cast<size_t>(step);
    const double value = table[entry] + (table[entry + 1] - table[entry]) * double(index - from) / (to - from);
    return std::round(value);
}

CoverageModel::Bounds CoverageModel::atDistance(double distance, QPointF away, double radius, double opacity) const
{
    const double feather = featherPerScale * m_scale;
    const double toEdge = radius - distance;
    if (toEdge < -feather)
        return {};
    const double smooth = std::min(1.0, (toEdge + feather) / (2 * feather));
    const MipChain &curve = curveOf(m_pen);
    if (radius <= std::max(m_scale, feather)) {
        const double value = opacity * smooth * curve.at(0.5, 0);
        return {value, value};
    }
    const double position = distance / (radius - feather);
    const double texelsPerPixel = texels / (radius - feather);
    // Drivers measure the change per pixel somewhere between the larger of its two components and its length.
    const double length = lengthOf(away);
    const double component = length > 0 ? std::max(std::abs(away.x()), std::abs(away.y())) / length : 0.5;
    // Within reach of the centre line a neighbour may lie at the same distance on the other side, so no change at all.
    constexpr double neighbourReach = 1.5;
    const double finest = distance < neighbourReach ? 0.0 : std::log2(texelsPerPixel * component) - 0.5;
    const double coarsest = std::log2(texelsPerPixel) + 0.5;
    Bounds bounds{255.0, 0.0};
    constexpr int samples = 16;
    for (int i = 0; i <= samples; ++i) {
        const double value = opacity * smooth * curve.at(position, finest + (coarsest - finest) * i / samples);
        bounds.lower = std::min(bounds.lower, value);
        bounds.upper = std::max(bounds.upper, value);
    }
    return bounds;
}

CoverageModel::Bounds CoverageModel::dot(const StrokeEnd &end, QPointF pixel) const
{
    const QPointF away = pixel - end.point;
    return atDistance(lengthOf(away), away, end.radius, end.opacity);
}

CoverageModel::Bounds CoverageModel::line(const StrokeEnd &start, const StrokeEnd &end, QPointF pixel) const
{
    Bounds bounds = dot(start, pixel).strongerOf(dot(end, pixel));
    const QPointF along = end.point - start.point;
    const double squared = QPointF::dotProduct(along, along);
    const double share = squared > 0 ? QPointF::dotProduct(pixel - start.point, along) / squared : -1;
    if (share >= 0 && share <= 1) {
        const QPointF away = pixel - (start.point + share * along);
        const double opacity = start.opacity + share * (end.opacity - start.opacity);
        bounds = bounds.strongerOf(atDistance(lengthOf(away), away, start.radius, opacity));
    }
    return bounds;
}

CoverageModel::Bounds CoverageModel::arc(const ArcShape &arc, QPointF pixel) const
{
    const double last = arc.startDegrees + arc.sweepDegrees;
    Bounds bounds = dot({arc.pointAt(arc.startDegrees), arc.opacity, arc.radius}, pixel)
                        .strongerOf(dot({arc.pointAt(last), arc.opacity, arc.radius}, pixel));
    const QLineF radial(arc.center, pixel);
    const double sign = arc.sweepDegrees < 0 ? -1 : 1;
    const double turned = std::fmod(sign * (radial.angle() - arc.startDegrees) + 720.0, 360.0);
    if (turned <= std::abs(arc.sweepDegrees)) {
        const double distance = std::abs(radial.length() - arc.arcRadius);
        bounds = bounds.strongerOf(atDistance(distance, pixel - arc.center, arc.radius, arc.opacity));
    }
    return bounds;
}

} // namespace TestSupport
