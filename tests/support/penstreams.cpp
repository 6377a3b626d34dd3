#include "support/penstreams.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace TestSupport {

namespace {

constexpr double tau = 6.283185307179586;

/// Where the hand means to be at a share (0 to 1) of the movement.
using Path = std::function<QPointF(double)>;
/// How hard it presses there.
using Pressure = std::function<double(double)>;

/// A hand trembles at about 10 Hz, by some tenths of a pixel, and never quite regularly.
QPointF tremor(double seconds, double size)
{
    const double x = std::sin(tau * 9.3 * seconds + 0.4) + 0.5 * std::sin(tau * 17.9 * seconds + 1.9);
    const double y = std::sin(tau * 10.7 * seconds + 2.3) + 0.5 * std::sin(tau * 15.1 * seconds + 0.2);
    return QPointF(x, y) * size;
}

PenStream record(const QString &name, int durationMs, double tremorSize, const Path &path, const Pressure &pressure)
{
    PenStream stream{name, {}};
    for (int ms = 0; ms <= durationMs; ms += sampleIntervalMs) {
        const double share = double(ms) / durationMs;
        Model::Sample sample;
        sample.point = path(share) + tremor(ms / 1000.0, tremorSize);
        sample.pressure = std::clamp(pressure(share), 0.0, 1.0);
        sample.timestamp = 1000U + quint32(ms);
        stream.samples.push_back(sample);
    }
    return stream;
}

double swell(double share)
{
    return 0.1 + 0.8 * std::sin(tau / 2 * share);
}

} // namespace

PenStream slowCurve()
{
    const auto path = [](double share) { return QPointF(120 + 420 * share, 400 - 260 * std::sin(tau / 2 * share)); };
    return record(QStringLiteral("slow curve"), 4500, 0.35, path, swell);
}

PenStream fastZigzag()
{
    const auto path = [](double share) {
        constexpr double turns = 7.5;
        const double phase = std::fmod(share * turns, 1.0);
        const double side = phase < 0.5 ? 2 * phase : 2 - 2 * phase;
        return QPointF(150 + 480 * side, 120 + 340 * share);
    };
    return record(QStringLiteral("fast zigzag"), 1800, 0.5, path, [](double share) { return 0.45 + 0.3 * share; });
}

PenStream spiral()
{
    const auto path = [](double share) {
        const double angle = tau * 5 * std::sqrt(share);
        const double radius = 8 + 210 * std::sqrt(share);
        return QPointF(400 + radius * std::cos(angle), 300 + radius * std::sin(angle));
    };
    return record(QStringLiteral("spiral"), 5000, 0.3, path, [](double) { return 0.6; });
}

PenStream signature()
{
    const auto path = [](double share) {
        const double flow = share + 0.03 * std::sin(tau * 6 * share);
        const double height = 70 - 35 * share + 30 * std::sin(tau * 2 * share);
        const double flourish = share > 0.85 ? (share - 0.85) / 0.15 : 0.0;
        return QPointF(120 + 480 * flow + 38 * std::sin(tau * 6 * flow) - 300 * flourish * flourish,
                       300 - height * std::cos(tau * 6 * flow) + 70 * flourish);
    };
    const auto pressure = [](double share) {
        return 0.5 + 0.3 * std::sin(tau * 6 * share) - (share > 0.9 ? 4 * (share - 0.9) : 0.0);
    };
    return record(QStringLiteral("signature"), 3200, 0.25, path, pressure);
}

std::vector<PenStream> allPenStreams()
{
    return {slowCurve(), fastZigzag(), spiral(), signature()};
}

PenStream longWalk(int count)
{
    const auto path = [](double seconds) {
        return QPointF(400 + 180 * std::sin(tau * 0.61 * seconds) + 150 * std::sin(tau * 0.37 * seconds + 1.0),
                       300 + 130 * std::sin(tau * 0.53 * seconds + 0.5) + 110 * std::sin(tau * 0.71 * seconds + 2.0));
    };
    PenStream stream{QStringLiteral("long walk"), {}};
    for (int i = 0; i < count; ++i) {
        const double seconds = i * sampleIntervalMs / 1000.0;
        Model::Sample sample;
        sample.point = path(seconds) + tremor(seconds, 0.3);
        sample.pressure = 0.5 + 0.4 * std::sin(tau * 0.3 * seconds);
        sample.timestamp = quint32(i * sampleIntervalMs);
        stream.samples.push_back(sample);
    }
    return stream;
}

} // namespace TestSupport
