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
#include <cmath>
#include <numeric>
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

/// \a coverage with \a across times \a down of its pixels averaged to one; its sides are multiples of these.
QImage squeezed(const QImage &coverage, int across, int down)
{
    if (across == 1 && down == 1)
        return coverage;
    QImage result(coverage.width() / across, coverage.height() / down, QImage::Format_Alpha8);
    const int count = across * down;
    std::vector<int> sums(size_t(result.width()));
    for (int y = 0; y < result.height(); ++y) {
        std::fill(sums.begin(), sums.end(), count / 2);
        for (int line = 0; line < down; ++line) {
            const uchar *from = coverage.constScanLine(y * down + line);
            for (int &sum : sums) {
                sum = std::accumulate(from, from + across, sum);
                from += across;
            }
        }
        std::transform(sums.begin(), sums.end(), result.scanLine(y), [count](int sum) { return uchar(sum / count); });
    }
    return result;
}

/// How much the direction is scaled that \a transform scales least.
double leastScale(const QTransform &transform)
{
    const double squares = transform.m11() * transform.m11() + transform.m12() * transform.m12() +
                           transform.m21() * transform.m21() + transform.m22() * transform.m22();
    const double area = std::abs(transform.m11() * transform.m22() - transform.m12() * transform.m21());
    const double most = std::sqrt((squares + std::sqrt(std::max(squares * squares - 4 * area * area, 0.0))) / 2);
    return most > 0.0 ? area / most : 0.0;
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

// A painter that reduces a picture evenly goes by the side that is reduced less, so that nothing gets blurred. What the
// other side needs beyond that is done here: in steps of two, until it is reduced less than twice as much. What was
// turned before it was squashed is reduced most along no side, but across its pixels: then both sides are, for blurred
// lines are better than lines in pieces.
FloatingSelectionView::Squeeze FloatingSelectionView::squeezeFor(const QPainter *painter)
{
    if (!painter->testRenderHint(QPainter::SmoothPixmapTransform))
        return {};
    const auto factorFor = [](double own, double other) {
        constexpr double nearlyOne = 1.0 + 1e-9;
        int factor = 1;
        while (factor < Model::largestReduction && own * factor * 2.0 <= std::min(other, 1.0) * nearlyOne)
            factor *= 2;
        return factor;
    };
    const QTransform &transform = painter->deviceTransform();
    const double acrossScale = std::hypot(transform.m11(), transform.m12());
    const double downScale = std::hypot(transform.m21(), transform.m22());
    const int across = factorFor(acrossScale, downScale);
    const int down = factorFor(downScale, acrossScale);
    const double least = leastScale(QTransform::fromScale(across, down) * transform);
    const int both = factorFor(least, std::max(acrossScale * across, downScale * down));
    return {std::min(across * both, Model::largestReduction), std::min(down * both, Model::largestReduction)};
}

const QImage &FloatingSelectionView::tinted(QColor color, Squeeze squeeze) const
{
    if (!m_tinted.isNull() && m_tint == color.rgba() && m_squeeze == squeeze)
        return m_tinted;
    std::array<QRgb, 256> pixels;
    const QList<QRgb> colors = Model::colorTable(color);
    std::transform(colors.begin(), colors.end(), pixels.begin(), [](QRgb pixel) { return qPremultiply(pixel); });
    const QRect imageRect = m_selection.imageRect();
    const QRect around = Model::alignedTo(imageRect, Model::largestReduction * std::max(squeeze.across, squeeze.down));
    const QImage coverage =
        squeezed(m_selection.image().copy(around.translated(-imageRect.topLeft())), squeeze.across, squeeze.down);
    m_squeeze = squeeze;
    m_tintedRect = QRect(QPoint(around.left() / squeeze.across, around.top() / squeeze.down), coverage.size());
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
    const QTransform base = painter->worldTransform();
    setSheetTransform(painter, paperToWidget);
    QTransform toWindow = toPaper * painter->worldTransform();
    painter->setWorldTransform(toWindow);
    const Squeeze squeeze = squeezeFor(painter);
    const QImage &picture = tinted(color, squeeze);
    const QTransform unsqueezed = QTransform::fromScale(squeeze.across, squeeze.down);
    const QTransform toPicture = (unsqueezed * toPaper * paperToWidget).inverted() *
                                 QTransform::fromTranslate(-m_tintedRect.x(), -m_tintedRect.y());
    toWindow = unsqueezed * toWindow;
    painter->setWorldTransform(toWindow);
    const int reduction = Model::reductionFor(painter);
    // The picture has a blank rim, which is lost when it is averaged down.
    painter->setRenderHint(QPainter::Antialiasing, reduction > 1 || squeeze != Squeeze());
    painter->setWorldTransform(base);
    painter->setClipRegion(inkedPart(m_ink, toPicture, rect, 2 * reduction), Qt::IntersectClip);
    painter->setWorldTransform(toWindow);
    Model::paintPicture(painter, picture, m_tintedRect.topLeft(), m_tintedRect, &m_ink);
}

} // namespace UI
