#include "libui/paper/viewtransform.h"

#include <QLineF>
#include <QMarginsF>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace UI {

namespace {

/// Vectors shorter than this, in both directions, have no direction.
constexpr double nullLength = 1e-12;

/// A zoom drag along the whole diagonal zooms by about 1 + this many times its length.
constexpr double zoomDragSpeed = 5.0;

QTransform about(QPointF point, const QTransform &transform)
{
    return QTransform::fromTranslate(-point.x(), -point.y()) * transform *
           QTransform::fromTranslate(point.x(), point.y());
}

QTransform translation(QPointF offset)
{
    return QTransform::fromTranslate(offset.x(), offset.y());
}

QTransform rotationBy(double degrees)
{
    return QTransform().rotate(degrees);
}

QTransform scaling(double factor)
{
    return QTransform::fromScale(factor, factor);
}

/// Degrees counter-clockwise on the screen, 0 to 360.
double turnAbout(QPointF pivot, QPointF from, QPointF to)
{
    return QLineF(pivot, from).angleTo(QLineF(pivot, to));
}

/// What a zoom drag multiplies the zoom scale with: below 1 it zooms in.
double zoomDragFactor(QPointF from, QPointF to, QSize area)
{
    if (area.isEmpty())
        return 1.0;
    // The lines through `from` rising to the right and through `to` falling to the right; they always meet.
    QPointF corner = from;
    QLineF(from, from + QPointF(1.0, -1.0)).intersects(QLineF(to, to + QPointF(1.0, 1.0)), &corner);
    const double dx = (to.x() - corner.x()) / area.width();
    const double dy = (to.y() - corner.y()) / area.height();
    const double factor = std::hypot(dx, dy) * zoomDragSpeed + 1.0;
    return dx > -dy ? 1.0 / factor : factor;
}

bool isNull(double x, double y)
{
    return std::abs(x) < nullLength && std::abs(y) < nullLength;
}

double degreesOf(double cosine, double sine)
{
    const double degrees = std::acos(std::clamp(cosine, -1.0, 1.0)) * 180.0 / std::numbers::pi;
    return sine > 0.0 ? degrees : 0.0 - degrees;
}

} // namespace

QPointF ViewTransform::center() const
{
    return QRectF(m_usableRect).center();
}

void ViewTransform::setUsableRect(const QRect &rect)
{
    const QPointF before = center();
    m_usableRect = rect;
    panTo(before, center());
}

void ViewTransform::setPaperRect(const QRectF &rect)
{
    const bool isFirst = m_paperRect.isEmpty();
    const QPointF shown = m_view.map(center());
    const QPointF relative = shown - m_paperRect.topLeft();
    m_paperRect = rect;
    if (isFirst) {
        recenter();
        return;
    }
    QPointF wanted = rect.center();
    if (rect.isValid()) {
        wanted = rect.topLeft() + relative;
        wanted.setX(std::clamp(wanted.x(), rect.left(), rect.right()));
        wanted.setY(std::clamp(wanted.y(), rect.top(), rect.bottom()));
    }
    m_view *= translation(wanted - shown);
}

void ViewTransform::setDeviceRatio(double ratio)
{
    if (!(ratio > 0.0))
        return;
    const double level = zoomLevel();
    m_deviceRatio = ratio;
    setZoomLevel(level);
}

void ViewTransform::setOffPegs(const QTransform &deskToPaper)
{
    m_offPegs = deskToPaper.isInvertible() ? deskToPaper : QTransform();
    m_offPegsDelta.reset();
}

double ViewTransform::zoomScale() const
{
    return std::hypot(m_view.m11(), m_view.m12());
}

double ViewTransform::shownZoomScale() const
{
    const QTransform shown = widgetToDesk();
    return std::hypot(shown.m11(), shown.m12());
}

double ViewTransform::rotation() const
{
    return rotationOf(m_view);
}

double ViewTransform::shownRotation() const
{
    return rotationOf(widgetToDesk());
}

double ViewTransform::rotationOf(const QTransform &view) const
{
    const QTransform upright = mirror().inverted() * view;
    if (!isNull(upright.m11(), upright.m12()))
        return degreesOf(upright.m11() / std::hypot(upright.m11(), upright.m12()), upright.m12());
    if (!isNull(upright.m21(), upright.m22()))
        return degreesOf(upright.m22() / std::hypot(upright.m21(), upright.m22()), -upright.m21());
    return 0.0;
}

QRectF ViewTransform::bounds() const
{
    return deskToWidget().mapRect(m_paperRect).united(paperToWidget().mapRect(m_paperRect));
}

double ViewTransform::zoomLevelToFit() const
{
    const QRectF usable = QRectF(m_usableRect).marginsRemoved(QMarginsF(fitMargin, fitMargin, fitMargin, fitMargin));
    const QRectF sheet = bounds();
    if (!usable.isValid() || sheet.isEmpty())
        return 1.0;
    const double grow = std::min(usable.width() / sheet.width(), usable.height() / sheet.height());
    return grow / shownZoomScale() * m_deviceRatio;
}

void ViewTransform::panTo(QPointF from, QPointF to)
{
    m_view *= translation(m_view.map(from) - m_view.map(to));
}

void ViewTransform::zoomAt(QPointF widgetPoint, double factor)
{
    const double scale = zoomScale();
    const double relative = boundedScale(factor * scale) / scale;
    m_view *= about(m_view.map(widgetPoint), scaling(relative));
}

void ViewTransform::setZoomLevel(double level)
{
    if (level > 0.0)
        zoomAt(center(), m_deviceRatio / level / zoomScale());
}

void ViewTransform::setZoomLevelCenteringOnOrigin(double level)
{
    if (level > 0.0)
        zoomAt(bounds().center(), m_deviceRatio / level / zoomScale());
}

void ViewTransform::rotateTo(double degrees)
{
    m_view *= about(m_view.map(center()), rotationBy(degrees - rotation()));
}

void ViewTransform::rotateAt(QPointF widgetPoint, double degrees)
{
    m_view *= about(m_view.map(widgetPoint), rotationBy(mirrorSign() * degrees));
}

void ViewTransform::rotatePaperTo(double degrees)
{
    rotateTo(mirrorSign() * degrees);
}

void ViewTransform::rotatePaperToNext(double degrees)
{
    const double step = std::abs(degrees);
    if (!(step > 0.0))
        return;
    rotateTo(std::round(rotation() / step) * step + mirrorSign() * degrees);
}

void ViewTransform::setMirrored(bool mirrored)
{
    if (mirrored == m_mirrored)
        return;
    m_mirrored = mirrored;
    // A flip is its own inverse: the same factor goes in and comes out.
    m_view = about(center(), QTransform::fromScale(-1.0, 1.0)) * m_view;
}

void ViewTransform::recenter()
{
    panTo(bounds().center(), center());
}

void ViewTransform::reset()
{
    recenter();
    rotateTo(0.0);
    setZoomLevelCenteringOnOrigin(1.0);
    // Turning a frame that is off its pegs has moved the middle.
    recenter();
}

void ViewTransform::fit()
{
    recenter();
    setZoomLevelCenteringOnOrigin(zoomLevelToFit());
}

void ViewTransform::setPanDelta(QPointF from, QPointF to)
{
    m_delta = translation(m_view.map(from) - m_view.map(to));
}

void ViewTransform::setZoomDelta(QPointF from, QPointF to)
{
    const double scale = zoomScale();
    const double target = boundedScale(scale * zoomDragFactor(from, to, m_usableRect.size()));
    m_delta = about(m_view.map(from), scaling(target / scale));
}

void ViewTransform::setRotationDelta(QPointF from, QPointF to, QPointF pivot)
{
    m_delta = about(m_view.map(pivot), rotationBy(mirrorSign() * turnAbout(pivot, from, to)));
}

void ViewTransform::setFingersDelta(const Fingers &from, const Fingers &to)
{
    if (!(from.scale > 0.0) || !(to.scale > 0.0))
        return;
    const double scale = zoomScale();
    const double relative = boundedScale(scale * from.scale / to.scale) / scale;
    const double degrees = mirrorSign() * (from.rotation - to.rotation);
    const QPointF held = m_view.map(from.center);
    m_delta = translation(held - m_view.map(to.center)) * about(held, rotationBy(degrees) * scaling(relative));
}

void ViewTransform::commitDelta()
{
    m_view *= m_delta;
    m_delta.reset();
}

void ViewTransform::setOffPegsPanDelta(QPointF from, QPointF to)
{
    const QTransform toPaper = widgetToDesk() * m_offPegs;
    m_offPegsDelta = translation(toPaper.map(from) - toPaper.map(to));
}

void ViewTransform::setOffPegsRotationDelta(QPointF from, QPointF to)
{
    const QPointF pivot = (widgetToDesk() * m_offPegs).map(center());
    m_offPegsDelta = about(pivot, rotationBy(mirrorSign() * turnAbout(center(), from, to)));
}

void ViewTransform::commitOffPegsDelta()
{
    m_offPegs *= m_offPegsDelta;
    m_offPegsDelta.reset();
}

QTransform ViewTransform::mirror() const
{
    return m_mirrored ? about(center(), QTransform::fromScale(-1.0, 1.0)) : QTransform();
}

double ViewTransform::boundedScale(double scale) const
{
    return std::clamp(scale, m_deviceRatio / largestLevel, m_deviceRatio / smallestLevel);
}

} // namespace UI
