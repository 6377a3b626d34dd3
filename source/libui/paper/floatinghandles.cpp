#include "libui/paper/floatinghandles.h"

#include "libui/style/colors.h"

#include <QLineF>
#include <QPainter>
#include <QPolygonF>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace UI {

namespace {

// All lengths at an interface scale of 100 percent.
constexpr double cornerReachInside = 6.0; ///< How far the rounded squares reach into the rectangle.
constexpr double cornerRadius = 6.0;
constexpr double ringDiameter = 10.0; ///< As painted; with its rim it fills the circle.
constexpr double crossReach = 7.5;
constexpr double markLength = 14.0;
constexpr double markBreadth = 7.0;
constexpr double lightLine = 1.5;
constexpr double darkLine = 3.5;

QPointF unit(QPointF vector, QPointF otherwise)
{
    const double length = std::hypot(vector.x(), vector.y());
    constexpr double leastLength = 1e-9;
    return std::isfinite(length) && length > leastLength ? vector / length : otherwise;
}

double length(QPointF vector)
{
    return std::hypot(vector.x(), vector.y());
}

QPainterPath square(QPointF middle, double side)
{
    QPainterPath path;
    path.addRect(QRectF(middle - QPointF(side, side) / 2.0, QSizeF(side, side)));
    return path;
}

QPainterPath circle(QPointF middle, double diameter)
{
    QPainterPath path;
    path.addEllipse(middle, diameter / 2.0, diameter / 2.0);
    return path;
}

QPainterPath roundedSquare(QPointF middle, double side)
{
    QPainterPath path;
    path.addRoundedRect(QRectF(middle - QPointF(side, side) / 2.0, QSizeF(side, side)), cornerRadius, cornerRadius);
    return path;
}

/// The pens of a light line with a dark rim, to be drawn one after the other: one of the two is seen on any ground.
std::array<QPen, 2> linePens(double scale, Qt::PenCapStyle cap)
{
    QColor dark = Colors::ink;
    dark.setAlpha(190);
    return {QPen(dark, darkLine * scale, Qt::SolidLine, cap, Qt::RoundJoin),
            QPen(Qt::white, lightLine * scale, Qt::SolidLine, cap, Qt::RoundJoin)};
}

void strokeTwice(QPainter *painter, const QPainterPath &path, double scale)
{
    painter->setBrush(Qt::NoBrush);
    for (const QPen &pen : linePens(scale, Qt::RoundCap)) {
        painter->setPen(pen);
        painter->drawPath(path);
    }
}

/// The sides of the rectangle with these \a corners. A long turned outline takes ten times as long as its four lines.
void drawSides(QPainter *painter, const FloatingHandles::Corners &corners, double scale)
{
    QList<QLineF> sides;
    for (size_t i = 0; i < corners.size(); ++i)
        sides.append({corners[i], corners[(i + 1) % corners.size()]});
    for (const QPen &pen : linePens(scale, Qt::SquareCap)) {
        painter->setPen(pen);
        painter->drawLines(sides);
    }
}

} // namespace

FloatingHandles::FloatingHandles(const Corners &corners, QPointF pivot, double scale)
    : m_corners(corners), m_scale(scale)
{
    const QPointF alongX = corners[TopRight] - corners[TopLeft];
    const QPointF alongY = corners[BottomLeft] - corners[TopLeft];
    const QPointF x = unit(alongX, {1.0, 0.0});
    const QPointF y = unit(alongY, {-x.y(), x.x()});

    const double span = leastSpan * scale;
    const bool hasRoom = std::min(length(alongX), length(alongY)) >= roomForAll * span;
    if (!hasRoom) {
        const QPointF middle = (corners[TopLeft] + corners[BottomRight]) / 2.0;
        const QPointF halfX = x * (std::max(length(alongX), span) / 2.0);
        const QPointF halfY = y * (std::max(length(alongY), span) / 2.0);
        m_corners = {middle - halfX - halfY, middle + halfX - halfY, middle + halfX + halfY, middle - halfX + halfY};
    }

    m_frame.addPolygon(QPolygonF(QList<QPointF>(m_corners.begin(), m_corners.end())));
    m_frame.closeSubpath();
    buildCorner(TopLeft, -x, -y);
    buildCorner(TopRight, x, -y);
    buildCorner(BottomRight, x, y);
    buildCorner(BottomLeft, -x, y);
    if (!hasRoom)
        return;
    buildMarks(x, y);
    m_pivot = circle(pivot, pivotDiameter * scale);
    const QPointF armX = x * crossReach * scale;
    const QPointF armY = y * crossReach * scale;
    for (const QPointF arm : {armX, armY}) {
        m_pivotCross.moveTo(pivot - arm);
        m_pivotCross.lineTo(pivot + arm);
    }
}

void FloatingHandles::buildCorner(Corner corner, QPointF outwardX, QPointF outwardY)
{
    // In a parallelogram the sides are not at right angles: the handles keep their shape, along the corner's bisector.
    const QPointF outward = unit(outwardX + outwardY, outwardX);
    const QPointF alongX = QPointF(outward.x() + outward.y(), outward.y() - outward.x()) / std::numbers::sqrt2;
    const QPointF alongY(-alongX.y(), alongX.x());
    const QTransform place(alongX.x() * m_scale, alongX.y() * m_scale, alongY.x() * m_scale, alongY.y() * m_scale,
                           m_corners[corner].x(), m_corners[corner].y());
    constexpr double squareMiddle = scaleRotateSide / 2.0 - cornerReachInside;
    constexpr double circleMiddle = scaleRotateSide - cornerReachInside - rotateDiameter / 2.0;
    m_scaleSquares.addPath(place.map(square({0.0, 0.0}, scaleSide)));
    m_rotateCircles.addPath(place.map(circle({circleMiddle, circleMiddle}, rotateDiameter)));
    m_rings.addPath(place.map(circle({circleMiddle, circleMiddle}, ringDiameter)));
    m_scaleRotateSquares.addPath(place.map(roundedSquare({squareMiddle, squareMiddle}, scaleRotateSide)));
    m_outward[corner] = outward;
}

void FloatingHandles::buildMarks(QPointF alongX, QPointF alongY)
{
    const auto add = [this](QPainterPath &path, Corner from, Corner to, QPointF along, QPointF across) {
        const QPointF middle = (m_corners[from] + m_corners[to]) / 2.0;
        const QPointF halfLength = along * (markLength * m_scale / 2.0);
        const QPointF halfBreadth = across * (markBreadth * m_scale / 2.0);
        path.addPolygon(QPolygonF({middle - halfLength - halfBreadth, middle + halfLength - halfBreadth,
                                   middle + halfLength + halfBreadth, middle - halfLength + halfBreadth}));
        path.closeSubpath();
    };
    add(m_horizontalMarks, TopLeft, TopRight, alongX, alongY);
    add(m_horizontalMarks, BottomLeft, BottomRight, alongX, alongY);
    add(m_verticalMarks, TopLeft, BottomLeft, alongY, alongX);
    add(m_verticalMarks, TopRight, BottomRight, alongY, alongX);
}

FloatingZone FloatingHandles::zoneAt(QPointF position) const
{
    const std::pair<const QPainterPath &, FloatingZone> zones[] = {
        {m_pivot, FloatingZone::Pivot},
        {m_scaleSquares, FloatingZone::Scale},
        {m_rotateCircles, FloatingZone::Rotate},
        {m_scaleRotateSquares, FloatingZone::ScaleRotate},
        {m_horizontalMarks, FloatingZone::HorizontalEdge},
        {m_verticalMarks, FloatingZone::VerticalEdge},
        {m_frame, FloatingZone::Move},
    };
    for (const auto &[path, zone] : zones) {
        if (path.contains(position))
            return zone;
    }
    return FloatingZone::Outside;
}

FloatingHandles::Corner FloatingHandles::cornerNear(QPointF position) const
{
    const auto nearest = std::min_element(m_corners.begin(), m_corners.end(), [position](QPointF a, QPointF b) {
        return length(a - position) < length(b - position);
    });
    return Corner(nearest - m_corners.begin());
}

double FloatingHandles::angleAt(QPointF position) const
{
    const QPointF outward = m_outward[cornerNear(position)];
    return std::atan2(outward.y(), outward.x()) * 180.0 / std::numbers::pi;
}

QRectF FloatingHandles::bounds() const
{
    if (isEmpty())
        return {};
    const double rim = darkLine * m_scale;
    return m_frame.boundingRect()
        .united(m_scaleRotateSquares.boundingRect())
        .united(m_pivotCross.isEmpty() ? m_frame.boundingRect() : m_pivotCross.boundingRect())
        .adjusted(-rim, -rim, rim, rim);
}

void FloatingHandles::paint(QPainter *painter) const
{
    if (isEmpty())
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    drawSides(painter, m_corners, m_scale);

    painter->setPen(QPen(Colors::lightHairline, m_scale));
    painter->setBrush(Colors::floatingPanel);
    painter->drawPath(m_scaleRotateSquares);
    strokeTwice(painter, m_rings, m_scale);
    painter->setPen(QPen(Colors::ink, lightLine * m_scale));
    painter->setBrush(Colors::lightPanel);
    painter->drawPath(m_scaleSquares);
    painter->drawPath(m_horizontalMarks);
    painter->drawPath(m_verticalMarks);

    strokeTwice(painter, m_pivotCross, m_scale);
    strokeTwice(painter, m_pivot, m_scale);
    painter->restore();
}

} // namespace UI
