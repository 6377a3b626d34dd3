#include "libmodel/strokes/floatingstamp.h"

#include "libmodel/base/progress.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/floatingcontent.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/rendereffort.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace Model {

namespace {

constexpr double paperScale = 1.0;

/// The pixels of \a frame that \a stroke may cover, from even ones on.
QRect shownRect(const CompoundStroke &stroke, QRect frame)
{
    QRect rect = grownByRim(stroke.boundingRect(), paperScale) & frame;
    if (!rect.isEmpty())
        rect.setTopLeft({rect.left() & ~1, rect.top() & ~1});
    return rect;
}

} // namespace

FloatingStamp::FloatingStamp(std::shared_ptr<FloatingContent> content, const QTransform &contentToPaper, bool collapses)
    : m_content(std::move(content)), m_contentToPaper(contentToPaper), m_collapses(collapses)
{
}

FloatingStamp::~FloatingStamp() = default;

std::unique_ptr<CompoundStroke> FloatingStamp::placedContent() const
{
    auto stroke = std::make_unique<CompoundStroke>();
    if (m_content->stroke().type() == Stroke::Type::Compound)
        stroke = std::make_unique<CompoundStroke>(static_cast<const CompoundStroke &>(m_content->stroke()));
    else
        stroke->append(m_content->stroke().clone());
    if (m_contentToPaper.isIdentity())
        return stroke;
    const QTransform placed = stroke->transform() * m_contentToPaper;
    // Numbers that no file can hold together can be held apart.
    const bool isHeldApart = !isReadable(placed) && stroke->pushDown();
    stroke->setTransform(isHeldApart ? m_contentToPaper : placed);
    return stroke;
}

void FloatingStamp::makeStroke()
{
    if (m_stroke)
        return;
    m_stroke = placedContent();
    m_pictureRect = shownRect(*m_stroke, m_content->frame());
    if (!m_contentToPaper.isIdentity() || m_pictureRect.isEmpty() || !m_content->isImageWhole())
        return;
    // Content that has not moved looks as it did when it was picked up.
    const QPoint inImage = m_pictureRect.topLeft() - m_content->imageRect().topLeft();
    m_stroke->setPicture(m_content->image().copy(QRect(inImage, m_pictureRect.size())), m_pictureRect);
}

/// Can \a stroke become one bitmap without a loss: of its place's own size, or of one that a drawing takes anyway?
bool FloatingStamp::canCollapse(const CompoundStroke &stroke, int collapseScale) const
{
    constexpr double mostPixels = 64e6;
    const QRect bounds = stroke.boundingRect();
    return m_content->reach().contains(bounds) ||
           double(bounds.width()) * collapseScale * bounds.height() * collapseScale <= mostPixels;
}

std::unique_ptr<CompoundStroke> FloatingStamp::stroke(int collapseScale, Progress *progress)
{
    if (m_collapses && (!m_stroke || m_collapsedScale != collapseScale)) {
        auto collapsed = placedContent();
        if (!canCollapse(*collapsed, collapseScale) || collapsed->collapse(collapseScale, QRect(), progress))
            m_collapsedScale = collapseScale;
        else if (progress && progress->wasCancelled())
            return nullptr;
        m_stroke = std::move(collapsed);
    }
    makeStroke();
    while (m_drawnRows > 0 && m_stroke->picture().isNull())
        drawNextRows();
    return std::make_unique<CompoundStroke>(*m_stroke);
}

bool FloatingStamp::canDrawAhead()
{
    constexpr qint64 mostEffort = qint64(1) << 33; // some seconds
    if (m_isHopeless || m_pictureRect.isEmpty())
        return false;
    if (m_picture.isNull()) {
        m_isHopeless = (needsRenderer(*m_stroke) && !OffscreenRenderer::instance()->isInitialized()) ||
                       drawableChildren(*m_stroke, m_pictureRect, mostEffort) < m_stroke->count();
        if (!m_isHopeless)
            m_picture = blankCoverage(m_pictureRect.size());
    }
    return !m_picture.isNull();
}

bool FloatingStamp::prepare(int milliseconds)
{
    if (m_collapses)
        return true; // at which scale is known when it is stamped
    QElapsedTimer timer;
    timer.start();
    makeStroke();
    while (m_stroke->picture().isNull() && canDrawAhead()) {
        const qint64 before = timer.nsecsElapsed();
        drawNextRows();
        // The next rows are to take no longer than one call may.
        const double taken = std::max(double(timer.nsecsElapsed() - before) / 1e6, 0.01);
        constexpr int fewestRows = 16;
        constexpr int mostRows = 1024;
        const int fitting = int(m_rowsAtOnce * std::clamp(std::max(milliseconds, 1) / taken, 0.25, 2.0));
        m_rowsAtOnce = std::clamp(fitting & ~1, fewestRows, mostRows);
        if (timer.elapsed() >= milliseconds)
            break;
    }
    return !m_stroke->picture().isNull() || !canDrawAhead();
}

void FloatingStamp::drawNextRows()
{
    const int rows = std::min(m_rowsAtOnce, m_pictureRect.height() - m_drawnRows);
    const QPoint origin = m_pictureRect.topLeft();
    m_stroke->render(m_picture, QRect(0, m_drawnRows, m_pictureRect.width(), rows),
                     QTransform::fromTranslate(-origin.x(), -origin.y()), origin, paperScale);
    m_drawnRows += rows;
    if (m_drawnRows >= m_pictureRect.height())
        m_stroke->setPicture(std::exchange(m_picture, QImage()), m_pictureRect);
}

} // namespace Model
