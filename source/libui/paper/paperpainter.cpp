#include "libui/paper/paperpainter.h"

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libui/paper/clipping.h"
#include "libui/paper/floatingselectionview.h"
#include "libui/paper/overlaypainter.h"
#include "libui/paper/pixelgrid.h"
#include "libui/paper/viewshadow.h"
#include "libui/paper/viewtransform.h"
#include "libui/style/colors.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>

namespace UI {

namespace {

/// From this zoom level on, pixels are shown as the squares they are.
constexpr double pixelatedLevel = 2.0;
/// Of the diagonals: faint, so that they read as a watermark of the sheet and never as part of a drawing.
constexpr int diagonalAlpha = 26;
/// The sheet left on the pegs beneath a frame that is off them.
constexpr QColor sheetBeneath(232, 232, 232);
/// Room around the painted rectangle for antialiased edges and pen widths.
constexpr double edgeRoom = 4.0;

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

/// Dark on light papers, light on dark ones.
QColor diagonalColor(const QBrush &paper)
{
    const QRgb tone = paper.style() == Qt::TexturePattern ? paper.textureImage().pixel(0, 0) : paper.color().rgb();
    QColor color = qGray(tone) < 128 ? QColor(Qt::white) : Colors::hairline;
    color.setAlpha(diagonalAlpha);
    return color;
}

/// True if \a rect of the widget shows nothing but what \a toWidget maps \a sheet to.
bool liesInside(const QRectF &rect, const QRectF &sheet, const QTransform &toWidget)
{
    const QTransform fromWidget = toWidget.inverted();
    return std::ranges::all_of(std::array{rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight()},
                               [&](QPointF corner) { return sheet.contains(fromWidget.map(corner)); });
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

/// What the frame's paper is filled with: a plain grey where the active layer has no cell at the frame on show.
QBrush PaperPainter::framePaper() const
{
    const int scrubFrame = m_scene->scrubFrame();
    const int shownFrame = scrubFrame > 0 ? scrubFrame : m_scene->activeFrame();
    return m_scene->item(m_scene->activeLayerIdx(), shownFrame) ? m_look.paper : QBrush(Colors::lightPanel);
}

/// The paper on the pegs is filled beyond its edges too: the desk is laid over that, so the edge has no seam. Nor has
/// that of the rectangle, which may lie between pixels where the screen has one and a half to a logical one.
void PaperPainter::paintSheet(QPainter *painter, const QRect &rect) const
{
    painter->save();
    // The edges of checkers are sharp on any screen.
    painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter->setBrushOrigin(m_frame.first().toPoint());
    if (m_isOffPegs && !liesInside(grown(rect), m_view.paperRect(), m_paperToWidget)) {
        painter->fillRect(grown(rect), sheetBeneath);
        painter->fillPath(pathOf(m_frame, grown(rect)), framePaper());
    } else {
        painter->fillRect(grown(rect), framePaper());
    }
    painter->restore();
}

void PaperPainter::paintContent(QPainter *painter, const QRect &rect) const
{
    painter->save();
    const double scale = m_view.shownZoomScale();
    if (m_view.deviceRatio() >= scale * pixelatedLevel)
        painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
    if (m_isOffPegs) {
        painter->save();
        setSheetTransform(painter, m_deskToWidget);
        m_scene->paintBacklight(painter, shownPart(rect, m_view.paperRect(), m_deskToWidget));
        painter->restore();
    }
    const QRect dirty = shownPart(rect, m_view.paperRect(), m_paperToWidget);
    setSheetTransform(painter, m_paperToWidget);
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

/// Off the pegs the desk is what lies outside of both papers. Each is cut out by itself, the one from the clip, the
/// other from what is filled: paths that were united first would now and then come out wrong.
void PaperPainter::paintDesk(QPainter *painter, const QRect &rect) const
{
    const QRectF around = grown(rect);
    if (liesInside(around, m_view.paperRect(), m_paperToWidget) ||
        (m_isOffPegs && liesInside(around, m_view.paperRect(), m_deskToWidget)))
        return;
    const auto outside = [&around](const QPolygonF &paper) {
        QPainterPath path;
        path.addRect(around);
        path.addPath(pathOf(paper, around));
        return path;
    };
    painter->save();
    if (m_isOffPegs)
        painter->setClipPath(outside(m_frame), Qt::IntersectClip);
    painter->setBrushOrigin(m_sheet.first().toPoint());
    // Thread by thread on any screen: a dense one shows a finer weave, not a coarse one enlarged.
    QBrush linen = m_look.desk;
    const double ratio = m_view.deviceRatio();
    linen.setTransform(QTransform::fromScale(1.0 / ratio, 1.0 / ratio));
    painter->fillPath(outside(m_sheet), linen);
    painter->restore();
}

void PaperPainter::paintOutlines(QPainter *painter, const QRect &rect) const
{
    const QTransform toDevice = painter->deviceTransform();
    const double width = 1.0 / toDevice.m11();
    const auto outline = [&](const QPolygonF &corners) {
        for (qsizetype i = 0; i < corners.size(); ++i)
            drawLine(painter, rect, crispLine({corners[i], corners[(i + 1) % corners.size()]}, toDevice));
    };
    painter->setPen(QPen(Colors::hairline, width, Qt::SolidLine, Qt::SquareCap));
    outline(m_frame);
    if (m_isOffPegs) {
        painter->setPen(QPen(Colors::hairline, width, Qt::DashLine, Qt::FlatCap));
        outline(m_sheet);
    }
}

void PaperPainter::paintDiagonals(QPainter *painter, const QRect &rect) const
{
    if (m_view.paperRect().isEmpty())
        return;
    painter->setPen(QPen(diagonalColor(framePaper()), 1.0));
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
