#include "libui/paper/paperpainter.h"

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libui/paper/clipping.h"
#include "libui/paper/floatingselectionview.h"
#include "libui/paper/overlaypainter.h"
#include "libui/paper/viewshadow.h"
#include "libui/paper/viewtransform.h"
#include "libui/style/colors.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>

namespace UI {

namespace {

/// From this zoom level on, pixels are shown as the squares they are.
constexpr double pixelatedLevel = 2.0;
/// Faint, so that they read as a watermark of the sheet and never as part of a drawing.
constexpr QColor diagonalColor(60, 56, 52, 10);
/// The sheet left on the pegs beneath a frame that is off them.
constexpr QColor sheetBeneath(232, 232, 232);
constexpr double outlineWidth = 1.0;
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

QTransform snappedToPixels(const QTransform &exact, double ratio)
{
    if (!isPixelToPixel(exact, ratio))
        return exact;
    return {exact.m11(), exact.m12(), exact.m21(), exact.m22(), snapped(exact.dx(), ratio), snapped(exact.dy(), ratio)};
}

QRectF grown(const QRect &rect)
{
    return QRectF(rect).adjusted(-edgeRoom, -edgeRoom, edgeRoom, edgeRoom);
}

QPolygonF cornersOf(const QRectF &rect, const QTransform &toWidget)
{
    QPolygonF corners;
    for (const QPointF corner : {rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()})
        corners << toWidget.map(corner);
    return corners;
}

/// The part of a convex polygon that has to be filled for \a around to be right.
QPainterPath pathOf(const QPolygonF &polygon, const QRectF &around)
{
    QPainterPath path;
    const QPolygonF part = clippedPolygon(polygon, around);
    if (!part.isEmpty()) {
        path.addPolygon(part);
        path.closeSubpath();
    }
    return path;
}

/// True if \a rect of the widget shows nothing but what \a toWidget maps \a sheet to.
bool liesInside(const QRectF &rect, const QRectF &sheet, const QTransform &toWidget)
{
    const QTransform fromWidget = toWidget.inverted();
    return std::ranges::all_of(std::array{rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight()},
                               [&](QPointF corner) { return sheet.contains(fromWidget.map(corner)); });
}

/// Sets the transform that goes from a sheet to the widget by \a toWidget and on by \a base. A widget may begin between
/// pixels of its window; lines stay crisp for all that.
void setSheetTransform(QPainter *painter, const QTransform &toWidget, const QTransform &base)
{
    painter->setWorldTransform(toWidget * base);
    const QTransform onScreen = painter->deviceTransform();
    const double right = std::round(onScreen.dx()) - onScreen.dx();
    const double down = std::round(onScreen.dy()) - onScreen.dy();
    if (!isPixelToPixel(onScreen, 1.0) || (std::abs(right) < whole && std::abs(down) < whole))
        return;
    const double ratio = painter->device()->devicePixelRatioF();
    painter->setWorldTransform(toWidget * base * QTransform::fromTranslate(right / ratio, down / ratio));
}

/// The pixels of the frame that \a rect of the widget shows, with those that smoothing takes along at its edges.
QRect shownPart(const QRect &rect, const QRectF &sheet, const QTransform &toWidget)
{
    const QRectF around = QRectF(rect).adjusted(-1.0, -1.0, 1.0, 1.0);
    return toWidget.inverted().mapRect(around).toAlignedRect().adjusted(-1, -1, 1, 1) & sheet.toRect();
}

} // namespace

PaperPainter::PaperPainter(const ViewTransform &view, Model::Scene *scene, const Look &look,
                           const PaperOverlay &overlay)
    : m_view(view),
      m_scene(scene),
      m_look(look),
      m_overlay(overlay),
      m_paperToWidget(paperToWidget(view)),
      m_deskToWidget(deskToWidget(view)),
      m_frame(cornersOf(view.paperRect(), m_paperToWidget)),
      m_sheet(cornersOf(view.paperRect(), m_deskToWidget)),
      m_isOffPegs(view.isOffPegs())
{
}

QTransform PaperPainter::paperToWidget(const ViewTransform &view)
{
    return snappedToPixels(view.paperToWidget(), view.deviceRatio());
}

QTransform PaperPainter::deskToWidget(const ViewTransform &view)
{
    return snappedToPixels(view.deskToWidget(), view.deviceRatio());
}

void PaperPainter::paint(QPainter *painter, const QRect &rect) const
{
    painter->save();
    painter->setClipRect(rect);
    if (m_scene) {
        painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        paintSheet(painter, rect);
        paintContent(painter, rect);
        paintDesk(painter, rect);
        paintOutlines(painter, rect);
        paintDiagonals(painter, rect);
        paintViewShadow(painter, rect, m_view.usableRect());
        paintOverlay(painter, rect);
    } else {
        painter->fillRect(grown(rect), Qt::white);
    }
    painter->restore();
}

/// The paper on the pegs is filled beyond its edges too: the desk is laid over that, so the edge has no seam. Nor has
/// that of the rectangle, which may lie between pixels where the screen has one and a half to a logical one.
void PaperPainter::paintSheet(QPainter *painter, const QRect &rect) const
{
    const QBrush paper = m_scene->activeCellHasDrawing() ? m_look.paper : QBrush(Colors::lightPanel);
    painter->setBrushOrigin(m_frame.first().toPoint());
    if (m_isOffPegs && !liesInside(grown(rect), m_view.paperRect(), m_paperToWidget)) {
        painter->fillRect(grown(rect), sheetBeneath);
        painter->fillPath(pathOf(m_frame, grown(rect)), paper);
    } else {
        painter->fillRect(grown(rect), paper);
    }
}

void PaperPainter::paintContent(QPainter *painter, const QRect &rect) const
{
    painter->save();
    const double scale = m_view.shownZoomScale();
    if (m_view.deviceRatio() >= scale * pixelatedLevel)
        painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
    const QTransform base = painter->worldTransform();
    if (m_isOffPegs) {
        setSheetTransform(painter, m_deskToWidget, base);
        m_scene->paintBacklight(painter, shownPart(rect, m_view.paperRect(), m_deskToWidget));
    }
    const QRect dirty = shownPart(rect, m_view.paperRect(), m_paperToWidget);
    setSheetTransform(painter, m_paperToWidget, base);
    if (m_isOffPegs) {
        m_scene->paintFrames(painter, dirty);
        m_scene->paintActiveStroke(painter, dirty, 1.0);
    } else {
        m_scene->paintFrame(painter, dirty);
    }
    // The tail's width follows the view, so that it is the same on screen at any zoom.
    if (!dirty.isEmpty())
        m_scene->drawActiveStrokeTail(painter, dirty, scale);
    painter->restore();
}

void PaperPainter::paintDesk(QPainter *painter, const QRect &rect) const
{
    const QRectF around = grown(rect);
    if (liesInside(around, m_view.paperRect(), m_paperToWidget) ||
        (m_isOffPegs && liesInside(around, m_view.paperRect(), m_deskToWidget)))
        return;
    QPainterPath desk;
    desk.addRect(around);
    QPainterPath papers = pathOf(m_sheet, around);
    if (m_isOffPegs)
        papers = papers.united(pathOf(m_frame, around));
    desk.addPath(papers);
    painter->setBrushOrigin(m_sheet.first().toPoint());
    // Thread by thread on any screen: a dense one shows a finer weave, not a coarse one enlarged.
    QBrush linen = m_look.desk;
    const double ratio = m_view.deviceRatio();
    linen.setTransform(QTransform::fromScale(1.0 / ratio, 1.0 / ratio));
    painter->fillPath(desk, linen);
}

void PaperPainter::paintOutlines(QPainter *painter, const QRect &rect) const
{
    const auto outline = [&](const QPolygonF &corners) {
        for (qsizetype i = 0; i < corners.size(); ++i)
            drawLine(painter, rect, {corners[i], corners[(i + 1) % corners.size()]});
    };
    painter->setPen(QPen(Colors::hairline, outlineWidth, Qt::SolidLine, Qt::SquareCap));
    outline(m_frame);
    if (m_isOffPegs) {
        painter->setPen(QPen(Colors::hairline, outlineWidth, Qt::DashLine, Qt::FlatCap));
        outline(m_sheet);
    }
}

void PaperPainter::paintDiagonals(QPainter *painter, const QRect &rect) const
{
    if (m_view.paperRect().isEmpty())
        return;
    painter->setPen(QPen(diagonalColor, 1.0));
    drawLine(painter, rect, {m_frame[0], m_frame[2]});
    drawLine(painter, rect, {m_frame[1], m_frame[3]});
}

void PaperPainter::paintOverlay(QPainter *painter, const QRect &rect) const
{
    paintGrid(painter, rect, m_overlay, m_paperToWidget, widgetRect());
    paintSymbol(painter, rect, m_overlay);
    paintOffPegsButton(painter, rect, m_overlay);
    if (m_overlay.floating && !m_overlay.floating->isNull())
        m_overlay.floating->paint(painter, rect, m_view, inkColor());
    paintLasso(painter, rect, m_overlay);
}

/// Draws what of \a line is to be seen in \a rect. It is cut to the widget, not to the rectangle: a line that began
/// elsewhere would take other pixels on its way.
void PaperPainter::drawLine(QPainter *painter, const QRect &rect, const QLineF &line) const
{
    const auto visible = clippedLine(line, grown(widgetRect()));
    if (!visible || !clippedLine(*visible, grown(rect)))
        return;
    QPen pen = painter->pen();
    if (pen.style() != Qt::SolidLine) {
        // Counted from the line's own beginning, so that dashes stay where they are on it.
        pen.setDashOffset(QLineF(line.p1(), visible->p1()).length() / pen.widthF());
        painter->setPen(pen);
    }
    painter->drawLine(*visible);
}

/// All of the widget: the usable rectangle and what is above it.
QRect PaperPainter::widgetRect() const
{
    return m_view.usableRect() | QRect(0, 0, 1, 1);
}

/// The colour in which the active layer shows coverage.
QColor PaperPainter::inkColor() const
{
    const auto *layer = qobject_cast<const Model::StrokeLayer *>(m_scene->layer(m_scene->activeLayerIdx()));
    return layer ? layer->color() : QColor(Qt::black);
}

} // namespace UI
