#include "libui/paper/floatingselectionview.h"

#include "libmodel/scene/picturepainter.h"
#include "libmodel/strokes/colortable.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libui/paper/floatingdrag.h"
#include "libui/paper/pixelgrid.h"
#include "libui/paper/viewtransform.h"

#include <QPainter>
#include <QRegion>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace UI {

namespace {

/// The cells of a grid over \a rect (widget coordinates) in which something of a picture may be seen: \a ink is its
/// map, \a toPicture leads to its pixels, and \a reach of them around its own are looked at in smoothing. Turning and
/// smoothing the blank rest of a drawing would take most of the time.
QRegion inkedPart(const Model::InkTiles &ink, const QTransform &toPicture, const QRect &rect, int reach)
{
    constexpr int side = 32;
    std::vector<QRect> runs;
    for (int top = rect.top(); top <= rect.bottom(); top += side) {
        QRect run;
        for (int left = rect.left(); left <= rect.right(); left += side) {
            const QRect cell = QRect(left, top, side, side) & rect;
            const QRect seen = Model::mappedBounds(toPicture, cell).adjusted(-reach, -reach, reach, reach);
            if (ink.meets(seen)) {
                run |= cell;
            } else if (!run.isNull()) {
                runs.push_back(run);
                run = QRect();
            }
        }
        if (!run.isNull())
            runs.push_back(run);
    }
    QRegion region;
    region.setRects(runs.data(), int(runs.size())); // sorted as it wants them
    return region;
}

} // namespace

void FloatingSelectionView::setSelection(const Model::FloatingSelection &selection)
{
    m_selection = selection;
    m_tinted = QImage();
    m_settled = selection.transform();
    m_shown = m_settled;
    m_isDragging = false;
    layOutHandles();
}

void FloatingSelectionView::setTransform(const Model::FloatingSelection::Transform &transform)
{
    if (!transform.isUsable())
        return;
    m_settled = transform;
    m_shown = transform;
    m_isDragging = false;
    layOutHandles();
}

void FloatingSelectionView::rebuildHandles(const ViewTransform &view, double scale)
{
    m_paperToWidget = view.paperToWidget();
    m_scale = scale;
    layOutHandles();
}

QPointF FloatingSelectionView::contentCorner(FloatingHandles::Corner corner) const
{
    const QRectF rect = m_selection.rect();
    const std::array corners{rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()};
    return corners[corner];
}

void FloatingSelectionView::layOutHandles()
{
    if (isNull()) {
        m_handles = {};
        return;
    }
    const QTransform toWidget = m_shown.contentToPaper() * m_paperToWidget;
    FloatingHandles::Corners corners;
    for (const auto corner : {FloatingHandles::TopLeft, FloatingHandles::TopRight, FloatingHandles::BottomRight,
                              FloatingHandles::BottomLeft})
        corners[corner] = toWidget.map(contentCorner(corner));
    m_handles = FloatingHandles(corners, toWidget.map(m_shown.pivot), m_scale);
}

void FloatingSelectionView::beginDrag(Zone zone, QPointF widgetPosition)
{
    m_shown = m_settled;
    layOutHandles();
    m_zone = zone;
    m_corner = m_handles.isEmpty() ? FloatingHandles::BottomRight : m_handles.cornerNear(widgetPosition);
    m_pressOnPaper = m_paperToWidget.inverted().map(widgetPosition);
    m_isDragging = !isNull();
}

void FloatingSelectionView::dragTo(QPointF widgetPosition, Qt::KeyboardModifiers modifiers, const ViewTransform &view)
{
    if (!m_isDragging)
        return;
    const QPointF now = view.widgetToPaper().map(widgetPosition);
    std::optional<Model::FloatingSelection::Transform> result;
    switch (m_zone) {
    case Zone::Move:
        result = FloatingDrag::moved(m_settled, m_pressOnPaper, now);
        break;
    case Zone::Pivot:
        result = FloatingDrag::pivotMoved(m_settled, m_pressOnPaper, now);
        break;
    case Zone::Rotate:
        result = FloatingDrag::rotated(m_settled, m_pressOnPaper, now);
        break;
    case Zone::Scale:
        result = FloatingDrag::scaled(m_settled, contentCorner(m_corner), m_pressOnPaper, now,
                                      modifiers.testFlag(Qt::ShiftModifier));
        break;
    case Zone::ScaleRotate:
        result = FloatingDrag::scaledAndRotated(m_settled, m_pressOnPaper, now);
        break;
    case Zone::HorizontalEdge:
    case Zone::VerticalEdge:
    case Zone::Outside:
        break;
    }
    if (result && result->isUsable())
        m_shown = *result;
    rebuildHandles(view, m_scale);
}

bool FloatingSelectionView::endDrag()
{
    const bool isChanged = m_isDragging && m_shown != m_settled;
    m_isDragging = false;
    m_settled = m_shown;
    return isChanged;
}

QRect FloatingSelectionView::bounds(const ViewTransform &view) const
{
    if (isNull())
        return {};
    const QRect picture = Model::mappedBounds(m_shown.contentToPaper() * view.paperToWidget(), m_selection.imageRect());
    constexpr int rim = 1; // smoothing
    return picture.adjusted(-rim, -rim, rim, rim) | Model::alignedBounds(m_handles.bounds());
}

const QImage &FloatingSelectionView::tinted(QColor color) const
{
    if (!m_tinted.isNull() && m_tint == color.rgba())
        return m_tinted;
    std::array<QRgb, 256> pixels;
    const QList<QRgb> colors = Model::colorTable(color);
    std::transform(colors.begin(), colors.end(), pixels.begin(), [](QRgb pixel) { return qPremultiply(pixel); });
    const QRect imageRect = m_selection.imageRect();
    m_tintedRect = Model::alignedTo(imageRect, Model::largestReduction);
    const QImage coverage = m_selection.image().copy(m_tintedRect.translated(-imageRect.topLeft()));
    m_tinted = QImage(coverage.size(), QImage::Format_ARGB32_Premultiplied);
    m_tint = color.rgba();
    m_ink = Model::InkTiles(coverage.size());
    m_ink.scan(coverage, coverage.rect());
    for (int y = 0; y < m_tinted.height(); ++y) {
        const uchar *from = coverage.constScanLine(y);
        auto *to = reinterpret_cast<QRgb *>(m_tinted.scanLine(y));
        std::transform(from, from + m_tinted.width(), to, [&pixels](uchar value) { return pixels[value]; });
    }
    return m_tinted;
}

void FloatingSelectionView::paint(QPainter *painter, const QRect &rect, const ViewTransform &view, QColor color) const
{
    if (isNull() || !bounds(view).intersects(rect))
        return;
    painter->save();
    painter->setClipRect(rect, Qt::IntersectClip);
    painter->save();
    paintContent(painter, rect & bounds(view), view, color);
    painter->restore();
    m_handles.paint(painter);
    painter->restore();
}

void FloatingSelectionView::paintContent(QPainter *painter, const QRect &rect, const ViewTransform &view,
                                         QColor color) const
{
    constexpr double pixelsVisible = 0.5; // as many paper pixels to a device pixel
    painter->setRenderHint(QPainter::SmoothPixmapTransform, view.shownZoomScale() > view.deviceRatio() * pixelsVisible);
    painter->setOpacity(painter->opacity() * m_selection.opacity());
    const QTransform paperToWidget = snappedToPixels(view.paperToWidget(), view.deviceRatio());
    const QTransform toPaper = m_shown.contentToPaper();
    const QImage &picture = tinted(color);
    const QTransform toPicture =
        (toPaper * paperToWidget).inverted() * QTransform::fromTranslate(-m_tintedRect.x(), -m_tintedRect.y());

    const QTransform base = painter->worldTransform();
    setSheetTransform(painter, paperToWidget);
    const QTransform toWindow = toPaper * painter->worldTransform();
    painter->setWorldTransform(toWindow);
    const int reduction = Model::reductionFor(painter);
    // The picture has a blank rim, which is lost when it is averaged down.
    painter->setRenderHint(QPainter::Antialiasing, reduction > 1);
    painter->setWorldTransform(base);
    painter->setClipRegion(inkedPart(m_ink, toPicture, rect, 2 * reduction), Qt::IntersectClip);
    painter->setWorldTransform(toWindow);
    Model::paintPicture(painter, picture, m_tintedRect.topLeft(), m_tintedRect, &m_ink);
}

} // namespace UI
