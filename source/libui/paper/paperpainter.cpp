#include "libui/paper/paperpainter.h"

#include "libmodel/scene/scene.h"
#include "libui/paper/clipping.h"
#include "libui/paper/viewtransform.h"
#include "libui/style/colors.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <algorithm>
#include <array>
#include <cmath>

namespace UI {

namespace {

/// From this zoom level on, pixels are shown as the squares they are.
constexpr double pixelatedLevel = 2.0;
/// Faint, so that they read as a watermark of the sheet and never as part of a drawing.
constexpr QColor diagonalColor(60, 56, 52, 10);
constexpr double shadowWidth = 32.0;
/// Room around the painted rectangle for antialiased edges and pen widths.
constexpr double edgeRoom = 4.0;
constexpr double whole = 1e-9;

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

QRectF grown(const QRect &rect)
{
    return QRectF(rect).adjusted(-edgeRoom, -edgeRoom, edgeRoom, edgeRoom);
}

QGradientStops shadowStops(bool darkFirst)
{
    constexpr QColor dark(0, 0, 0, 56);
    constexpr QColor middle(0, 0, 0, 14);
    constexpr QColor clear(0, 0, 0, 0);
    return {{0.0, darkFirst ? dark : clear}, {0.5, middle}, {1.0, darkFirst ? clear : dark}};
}

} // namespace

PaperPainter::PaperPainter(const ViewTransform &view, Model::Scene *scene, const Look &look)
    : m_view(view),
      m_scene(scene),
      m_look(look),
      m_paperToWidget(paperToWidget(view)),
      m_widgetToPaper(m_paperToWidget.inverted())
{
    const QRectF sheet = view.paperRect();
    for (const QPointF corner : {sheet.topLeft(), sheet.topRight(), sheet.bottomRight(), sheet.bottomLeft()})
        m_sheet << m_paperToWidget.map(corner);
}

QTransform PaperPainter::paperToWidget(const ViewTransform &view)
{
    const QTransform exact = view.paperToWidget();
    const double ratio = view.deviceRatio();
    if (!isPixelToPixel(exact, ratio))
        return exact;
    return {exact.m11(), exact.m12(), exact.m21(), exact.m22(), snapped(exact.dx(), ratio), snapped(exact.dy(), ratio)};
}

void PaperPainter::paint(QPainter *painter, const QRect &rect) const
{
    painter->save();
    painter->setClipRect(rect);
    if (m_scene) {
        painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        paintSheet(painter, rect);
        paintContent(painter, rect);
        if (!liesInside(grown(rect))) {
            paintDesk(painter, rect);
            paintOutline(painter, rect);
        }
        paintDiagonals(painter, rect);
        paintShadows(painter, rect);
    } else {
        painter->fillRect(rect, Qt::white);
    }
    painter->restore();
}

/// True if a rectangle of the widget shows nothing but the sheet.
bool PaperPainter::liesInside(const QRectF &rect) const
{
    const QRectF sheet = m_view.paperRect();
    return std::ranges::all_of(std::array{rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight()},
                               [&](QPointF corner) { return sheet.contains(m_widgetToPaper.map(corner)); });
}

/// Fills beyond the sheet's edges too: the desk is laid over that, so the edge has no seam.
void PaperPainter::paintSheet(QPainter *painter, const QRect &rect) const
{
    painter->setBrushOrigin(m_sheet.first().toPoint());
    painter->fillRect(rect, m_scene->activeCellHasDrawing() ? m_look.paper : QBrush(Colors::lightPanel));
}

void PaperPainter::paintContent(QPainter *painter, const QRect &rect) const
{
    const QRect frame = m_view.paperRect().toRect();
    const QRect dirty = m_widgetToPaper.mapRect(QRectF(rect)).toAlignedRect().adjusted(-1, -1, 1, 1) & frame;
    if (dirty.isEmpty())
        return;
    painter->save();
    const double scale = m_view.shownZoomScale();
    if (m_view.deviceRatio() >= scale * pixelatedLevel)
        painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter->setTransform(m_paperToWidget, true);
    m_scene->paintFrame(painter, dirty);
    // The tail's width follows the view, so that it is the same on screen at any zoom.
    m_scene->drawActiveStrokeTail(painter, dirty, scale);
    painter->restore();
}

void PaperPainter::paintDesk(QPainter *painter, const QRect &rect) const
{
    const QRectF around = grown(rect);
    QPainterPath desk;
    desk.addRect(around);
    const QPolygonF sheet = clippedPolygon(m_sheet, around);
    if (!sheet.isEmpty()) {
        desk.addPolygon(sheet);
        desk.closeSubpath();
    }
    painter->setBrushOrigin(m_sheet.first().toPoint());
    painter->fillPath(desk, m_look.desk);
}

void PaperPainter::paintOutline(QPainter *painter, const QRect &rect) const
{
    painter->setPen(QPen(Colors::hairline, 1.0, Qt::SolidLine, Qt::SquareCap));
    for (qsizetype i = 0; i < m_sheet.size(); ++i) {
        const QLineF edge(m_sheet[i], m_sheet[(i + 1) % m_sheet.size()]);
        const auto visible = clippedLine(edge, grown(m_view.usableRect()));
        if (visible && clippedLine(*visible, grown(rect)))
            painter->drawLine(*visible);
    }
}

void PaperPainter::paintDiagonals(QPainter *painter, const QRect &rect) const
{
    if (m_view.paperRect().isEmpty())
        return;
    painter->setPen(QPen(diagonalColor, 1.0));
    for (const QLineF &diagonal : {QLineF(m_sheet[0], m_sheet[2]), QLineF(m_sheet[1], m_sheet[3])}) {
        // Cut to the view, not to the rectangle: a line that began elsewhere would take other pixels on its way.
        const auto visible = clippedLine(diagonal, grown(m_view.usableRect()));
        if (visible && clippedLine(*visible, grown(rect)))
            painter->drawLine(*visible);
    }
}

void PaperPainter::paintShadows(QPainter *painter, const QRect &rect) const
{
    const QRectF area = m_view.usableRect();
    const double width = std::min(shadowWidth, 0.5 * std::min(area.width(), area.height()));
    const QRectF inner = area.adjusted(width, width, -width, -width);
    if (width <= 0.0 || inner.contains(rect))
        return;
    painter->setBrushOrigin(0, 0);
    const auto fade = [&](const QRectF &part, const QGradient &gradient) {
        if (part.intersects(rect))
            painter->fillRect(part, gradient);
    };
    const auto edge = [&](const QRectF &part, QPointF from, QPointF to) {
        QLinearGradient gradient(from, to);
        gradient.setStops(shadowStops(true));
        fade(part, gradient);
    };
    edge({inner.left(), area.top(), inner.width(), width}, area.topLeft(), {area.left(), inner.top()});
    edge({inner.left(), inner.bottom(), inner.width(), width}, area.bottomLeft(), {area.left(), inner.bottom()});
    edge({area.left(), inner.top(), width, inner.height()}, area.topLeft(), {inner.left(), area.top()});
    edge({inner.right(), inner.top(), width, inner.height()}, area.topRight(), {inner.right(), area.top()});
    const auto corner = [&](QPointF center, QPointF topLeft) {
        QRadialGradient gradient(center, width);
        gradient.setStops(shadowStops(false));
        fade({topLeft, QSizeF(width, width)}, gradient);
    };
    corner(inner.topLeft(), area.topLeft());
    corner(inner.topRight(), {inner.right(), area.top()});
    corner(inner.bottomLeft(), {area.left(), inner.bottom()});
    corner(inner.bottomRight(), inner.bottomRight());
}

} // namespace UI
