#include "libui/paper/pixelgrid.h"

#include <QPainter>

#include <cmath>

namespace UI {

namespace {

constexpr double whole = 1e-9;
/// A line is level or upright if its ends differ by less, in logical pixels.
constexpr double straight = 1e-3;

bool isWhole(double value)
{
    return std::abs(value - std::round(value)) < whole;
}

/// Pixels map to pixels: no scaling in device pixels, and turned by quarters at most.
bool isPixelToPixel(const QTransform &transform, double ratio)
{
    const double length = std::hypot(transform.m11(), transform.m12()) * ratio;
    return transform.isAffine() && std::abs(length - 1.0) < whole && isWhole(transform.m11() * ratio) &&
           isWhole(transform.m12() * ratio);
}

double snapped(double value, double ratio)
{
    return std::round(value * ratio) / ratio;
}

/// The middle of the device pixel that \a value lies in. Device coordinates are \a scale times these, and \a offset.
double pixelMiddle(double value, double scale, double offset)
{
    return (std::floor(value * scale + offset) + 0.5 - offset) / scale;
}

} // namespace

QTransform snappedToPixels(const QTransform &exact, double ratio)
{
    if (!isPixelToPixel(exact, ratio))
        return exact;
    return {exact.m11(), exact.m12(), exact.m21(), exact.m22(), snapped(exact.dx(), ratio), snapped(exact.dy(), ratio)};
}

void setSheetTransform(QPainter *painter, const QTransform &toWidget)
{
    const QTransform base = painter->worldTransform();
    painter->setWorldTransform(toWidget * base);
    const QTransform onScreen = painter->deviceTransform();
    const double right = std::round(onScreen.dx()) - onScreen.dx();
    const double down = std::round(onScreen.dy()) - onScreen.dy();
    if (!isPixelToPixel(onScreen, 1.0) || (std::abs(right) < whole && std::abs(down) < whole))
        return;
    const double ratio = painter->device()->devicePixelRatioF();
    painter->setWorldTransform(toWidget * base * QTransform::fromTranslate(right / ratio, down / ratio));
}

QLineF crispLine(const QLineF &line, const QTransform &toDevice)
{
    if (std::abs(line.dy()) < straight) {
        const double y = pixelMiddle(line.y1(), toDevice.m22(), toDevice.dy());
        return {line.x1(), y, line.x2(), y};
    }
    if (std::abs(line.dx()) < straight) {
        const double x = pixelMiddle(line.x1(), toDevice.m11(), toDevice.dx());
        return {x, line.y1(), x, line.y2()};
    }
    return line;
}

} // namespace UI
