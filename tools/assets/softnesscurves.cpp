#include "softnesscurves.h"

#include <algorithm>
#include <cmath>

namespace Assets {

namespace {

constexpr int curveWidth = 256;
constexpr int sampleStep = 16;

int interpolated(const std::array<int, 17> &samples, int x)
{
    const int left = x / sampleStep;
    const int leftX = left * sampleStep;
    const int rightX = std::min(leftX + sampleStep, curveWidth - 1);
    if (rightX == leftX)
        return samples.back();
    const double part = static_cast<double>(x - leftX) / (rightX - leftX);
    const auto index = static_cast<size_t>(left);
    return static_cast<int>(std::lround(std::lerp(samples[index], samples[index + 1], part)));
}

} // namespace

QList<SoftnessCurve> softnessCurves()
{
    constexpr std::array<int, 17> none{};
    constexpr std::array<int, 17> marker{254, 255, 255, 255, 255, 255, 255, 255, 255,
                                         255, 255, 247, 246, 245, 242, 235, 208};
    return {
        {QStringLiteral("pencil"),
         {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 242, 209, 91, 2},
         {0, 0, 0, 0, 6, 24, 47, 73, 102, 130, 160, 191, 223, 255, 255, 255, 255}},
        {QStringLiteral("marker"), marker, none},
        {QStringLiteral("brush"),
         {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 253, 248, 246, 245, 232},
         none},
        {QStringLiteral("eraserKneaded"),
         {255, 249, 247, 246, 245, 244, 243, 241, 239, 235, 231, 226, 219, 209, 194, 170, 104},
         none},
        {QStringLiteral("eraserRubber"), marker, none},
        {QStringLiteral("eraserVinyl"),
         {254, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 249, 246, 244, 231},
         none},
    };
}

QImage softnessImage(const SoftnessCurve &curve)
{
    QImage image(curveWidth, 1, QImage::Format_RGB888);
    uchar *out = image.scanLine(0);
    for (int x = 0; x < curveWidth; ++x) {
        *out++ = static_cast<uchar>(interpolated(curve.red, x));
        *out++ = static_cast<uchar>(interpolated(curve.green, x));
        *out++ = 0;
    }
    return image;
}

} // namespace Assets
