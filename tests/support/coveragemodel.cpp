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
constexpr double neighbourReach = 1.5; // pixels
constexpr int detailSteps = 16;        // samples of the levels of detail that a driver may choose

using Table = std::array<int, 17>; // at texels 0, 16, ..., 240 and 255
constexpr Table pencil = {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 242, 209, 91, 2};
constexpr Table marker = {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 247, 246, 245, 242, 235, 208};
constexpr Table brush = {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 253, 248, 246, 245, 232};
constexpr Table kneaded = {255, 249, 247, 246, 245, 244, 243, 241, 239, 235, 231, 226, 219, 209, 194, 170, 104};
constexpr Table vinyl = {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 249, 246, 244, 231};
constexpr Table pencilGrain = {0, 0, 0, 0, 6, 24, 47, 73, 102, 130, 160, 191, 223, 255, 255, 255, 255};
constexpr std::array<const Table *, 6> tables = {&pencil, &marker, &brush, &kneaded, &marker, &vinyl};

using Level = std::vector<double>;

double texelOf(const Table &table, int index)
{
    const int step = std::min(index / 16, 15);
    const int from = step * 16;
    const int to = step == 15 ? texels - 1 : from + 16;
    const auto entry = static_cast<size_t>(step);
    return std::round(table[entry] + (table[entry + 1] - table[entry]) * double(index - from) / (to - from));
}

/// The curve of one pen in all its levels of detail, each the pairwise means of the one before.
class MipChain
{
public:
    explicit MipChain(const Table &table)
    {
        Level level;
        for (int i = 0; i < texels; ++i)
            level.push_back(texelOf(table, i));
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
    static const std::array<MipChain, 6> curves = {MipChain(pencil),  MipChain(marker), MipChain(brush),
                                                   MipChain(kneaded), MipChain(marker), MipChain(vinyl)};
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
    return texelOf(*tables[static_cast<size_t>(penIndex)], index);
}

double CoverageModel::grainTexel(int index)
{
    return texelOf(pencilGrain, index);
}

double CoverageModel::grainPosition(double distance, double radius) const
{
    const double feather = featherPerScale * m_scale;
    if (radius <= std::max(m_scale, feather))
        return 1.5 - std::pow(radius, 0.25);
    const double inside = radius - distance + feather;
    const double outline = radius + feather;
    if (inside <= 0)
        return 1.0;
    if (outline >= 8.0 * m_scale)
        return std::clamp(1 - std::pow(inside / outline, 4 / inside), 0.0, 1.0);
    return 1 - inside / std::max(outline, 3.0 * m_scale);
}

CoverageModel::Bounds CoverageModel::grainShare(double distance, double component, double radius) const
{
    if (m_pen != 0 || m_grain == 0)
        return {1.0, 1.0};
    static const MipChain curve(pencilGrain);
    Bounds bounds{1.0, 0.0};
    // The position bends, so the change from pixel to pixel is looked at on either side.
    double steepest = 0;
    double flattest = 1e9;
    for (const double step : {-1.0, -0.5, 0.5, 1.0}) {
        const double there = grainPosition(std::abs(distance + step), radius);
        const double change = std::abs(there - grainPosition(distance, radius)) / std::abs(step);
        steepest = std::max(steepest, change * texels);
        flattest = std::min(flattest, change * texels * component);
    }
    const double finest = distance < neighbourReach ? 0.0 : std::log2(std::max(flattest, 1.0)) - 0.5;
    const double coarsest = std::log2(std::max(steepest, 1.0)) + 0.5;
    for (int i = 0; i <= detailSteps; ++i) {
        const double detail = finest + (coarsest - finest) * i / detailSteps;
        const double left = 1 - curve.at(grainPosition(distance, radius), detail) / 255 * m_grain;
        bounds.lower = std::min(bounds.lower, left);
        bounds.upper = std::max(bounds.upper, left);
    }
    return bounds;
}

CoverageModel::Bounds CoverageModel::atDistance(double distance, QPointF away, double radius, double opacity) const
{
    const double feather = featherPerScale * m_scale;
    const double toEdge = radius - distance;
    if (toEdge < -feather)
        return {};
    const double smooth = std::min(1.0, (toEdge + feather) / (2 * feather));
    const MipChain &curve = curveOf(m_pen);
    // Drivers measure the change per pixel somewhere between the larger of its two components and its length.
    const double length = lengthOf(away);
    const double component = length > 0 ? std::max(std::abs(away.x()), std::abs(away.y())) / length : 0.5;
    const Bounds grain = grainShare(distance, component, radius);
    const double even = opacity * smooth * (m_pen == 0 ? m_tooth : 1.0);
    if (radius <= std::max(m_scale, feather)) {
        const double value = even * curve.at(0.5, 0);
        return {value * grain.lower, value * grain.upper};
    }
    const double position = distance / (radius - feather);
    const double texelsPerPixel = texels / (radius - feather);
    // Within reach of the centre line a neighbour may lie at the same distance on the other side, so no change at all.
    const double finest = distance < neighbourReach ? 0.0 : std::log2(texelsPerPixel * component) - 0.5;
    const double coarsest = std::log2(texelsPerPixel) + 0.5;
    Bounds bounds{255.0, 0.0};
    for (int i = 0; i <= detailSteps; ++i) {
        const double value = even * curve.at(position, finest + (coarsest - finest) * i / detailSteps);
        bounds.lower = std::min(bounds.lower, value * grain.lower);
        bounds.upper = std::max(bounds.upper, value * grain.upper);
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
