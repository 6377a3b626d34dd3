#include "libmodel/tools/tipcursors.h"

#include "libmodel/tools/cursors.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QSvgRenderer>
#include <QtMath>

#include <algorithm>

namespace Model {

namespace {

constexpr double lineWidth = 2.0;
constexpr double lineOpacity = 0.75;
/// How much wider than the circle itself its light outline is.
constexpr int outlineGrowth = 4;
/// What a pen's picture is larger than its circle, for the arms of the crosshair.
constexpr int armMargin = 28;
constexpr int largestSide = 1024;

QColor white(int alpha)
{
    return {255, 255, 255, alpha};
}

QColor black(int alpha)
{
    return {0, 0, 0, alpha};
}

/// The diameter in which a circle of \a radius is drawn: at least 8 and a multiple of 4, so that it has a clear middle.
int circleSide(double radius, double scale)
{
    return std::max(qRound(radius * scale * 2.0), 8) & ~3;
}

/// A transparent picture under construction, with a painter in the hand that draws all of these cursors.
class Sketch
{
public:
    explicit Sketch(int side)
        : m_pixmap(side, side), m_center(side / 2.0 + cursorPixelRatio / 2.0, side / 2.0 + cursorPixelRatio / 2.0)
    {
        m_pixmap.fill(Qt::transparent);
        m_painter.begin(&m_pixmap);
        m_painter.setOpacity(lineOpacity);
    }

    QPainter &painter() { return m_painter; }
    [[nodiscard]] QPointF center() const { return m_center; }

    void drawCircle(double diameter, const QColor &color, QPainter::CompositionMode mode)
    {
        prepare(color, mode, true);
        m_painter.drawEllipse(m_center, diameter / 2.0, diameter / 2.0);
    }

    /// Four arms from \a start to \a end pixels off the middle: dark, between two light lines each.
    void drawCrosshairOutline(double start, double end)
    {
        prepare(white(64), QPainter::CompositionMode_Source, false);
        drawArms(start, end, -lineWidth);
        drawArms(start, end, lineWidth);
    }

    void drawCrosshair(double start, double end, const QColor &color)
    {
        prepare(color, QPainter::CompositionMode_SourceOver, false);
        drawArms(start, end, 0.0);
    }

    QCursor finish()
    {
        m_painter.end();
        m_pixmap.setDevicePixelRatio(cursorPixelRatio);
        return QCursor(m_pixmap, qFloor(m_center.x() / cursorPixelRatio), qFloor(m_center.y() / cursorPixelRatio));
    }

private:
    void prepare(const QColor &color, QPainter::CompositionMode mode, bool smooth)
    {
        m_painter.setPen(QPen(color, lineWidth));
        m_painter.setBrush(Qt::NoBrush);
        m_painter.setCompositionMode(mode);
        m_painter.setRenderHint(QPainter::Antialiasing, smooth);
    }

    void drawArms(double start, double end, double aside)
    {
        for (const QPointF direction : {QPointF(1, 0), QPointF(0, 1), QPointF(-1, 0), QPointF(0, -1)}) {
            const QPointF across(direction.y(), direction.x());
            m_painter.drawLine(m_center + direction * start + across * aside,
                               m_center + direction * end + across * aside);
        }
    }

    QPixmap m_pixmap;
    QPointF m_center;
    QPainter m_painter;
};

double armStart(double inner, double scale, int side)
{
    return std::max(std::min(side / 2.0, qRound(inner * scale * 2.0) / 2.0), 4.0);
}

double armEnd(int side)
{
    return std::max((side + armMargin) / 2.0, 20.0);
}

} // namespace

bool isTipTooLarge(double outer, double scale)
{
    return outer * scale * 2.0 > largestSide;
}

bool isEraserTipTooLarge(double outer, double scale)
{
    return isTipTooLarge(2.0 * outer, scale);
}

QCursor penTipCursor(double inner, double outer, double scale, bool faint)
{
    const int side = circleSide(outer, scale);
    const double start = armStart(inner, scale, side);
    const double end = armEnd(side);
    Sketch sketch(side + armMargin);
    sketch.drawCrosshairOutline(start, end);
    sketch.drawCircle(side + outlineGrowth, white(128), QPainter::CompositionMode_Source);
    sketch.drawCrosshair(start, end, black(faint ? 51 : 102));
    sketch.drawCircle(side, black(faint ? 102 : 204), QPainter::CompositionMode_SourceOver);
    return sketch.finish();
}

QCursor eraserTipCursor(double outer, double scale, bool faint)
{
    const int side = circleSide(outer, scale);
    Sketch sketch(2 * side + 14);
    sketch.drawCircle(side + outlineGrowth, white(128), QPainter::CompositionMode_Source);
    sketch.drawCircle(side, black(faint ? 102 : 204), QPainter::CompositionMode_SourceOver);
    return sketch.finish();
}

QCursor sizeRangeCursor(double inner, double outer, double scale)
{
    const int side = circleSide(outer, scale);
    const double start = armStart(inner, scale, side);
    Sketch sketch(side + armMargin);
    sketch.drawCrosshairOutline(start, armEnd(side));
    sketch.drawCrosshair(start, armEnd(side), black(102));

    const double innerRadius = std::min(inner * scale, side / 2.0);
    QPainterPath ring;
    ring.addEllipse(sketch.center(), side / 2.0, side / 2.0);
    ring.addEllipse(sketch.center(), innerRadius, innerRadius);
    QPainter &painter = sketch.painter();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(0.25);
    painter.fillPath(ring, Qt::black);
    return sketch.finish();
}

QCursor opacityRangeCursor(double lower, double upper, bool erasing)
{
    QSvgRenderer *renderer = cursorRenderer(QStringLiteral("pointer-opacity"));
    if (!renderer)
        return QCursor(Qt::ArrowCursor);
    const QSizeF size = renderer->viewBoxF().size();
    QPixmap pixmap((size * cursorPixelRatio).toSize());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.scale(cursorPixelRatio, cursorPixelRatio);
    painter.translate(-renderer->viewBoxF().topLeft());
    const QString kind = erasing ? QStringLiteral("erase") : QStringLiteral("draw");
    const auto drawPart = [&](const QString &part, double opacity) {
        const QString id = kind + part;
        painter.setOpacity(opacity);
        renderer->render(&painter, id, renderer->transformForElement(id).mapRect(renderer->boundsOnElement(id)));
    };
    drawPart(QStringLiteral("base"), 1.0);
    drawPart(QStringLiteral("left"), lower);
    drawPart(QStringLiteral("right"), upper);
    painter.end();
    pixmap.setDevicePixelRatio(cursorPixelRatio);
    return QCursor(pixmap, qFloor(size.width() / 2.0), qFloor(size.height() / 2.0));
}

} // namespace Model
