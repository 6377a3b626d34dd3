#include "libmodel/strokes/floatingselection.h"

#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/rendereffort.h"

#include <algorithm>
#include <cmath>

namespace Model {

namespace {

constexpr double paperScale = 1.0;

/// The frame and as much again on each side of it.
QRect reachOf(QSize frameSize)
{
    return {-frameSize.width(), -frameSize.height(), 3 * frameSize.width(), 3 * frameSize.height()};
}

/// What of \a compound is drawn in \a rect: as a rule all of it. Content of a file could take any time, so then the
/// oldest strokes have to do.
std::unique_ptr<Stroke> drawablePart(const CompoundStroke &compound, QRect rect)
{
    constexpr qint64 mostEffort = qint64(1) << 33; // some seconds
    const int drawable = drawableChildren(compound, rect, mostEffort);
    if (drawable == compound.count())
        return nullptr;
    auto oldest = std::make_unique<CompoundStroke>(compound);
    oldest->keepOldest(drawable);
    return oldest;
}

} // namespace

QTransform FloatingSelection::Transform::contentToPaper() const
{
    bool isInvertible = false;
    const QTransform inverse = paperToContent().inverted(&isInvertible);
    if (!isInvertible)
        return {};
    // Inverting leaves a 1 that is none to the last bit, which no file may hold.
    return {inverse.m11(), inverse.m12(), inverse.m21(), inverse.m22(), inverse.dx(), inverse.dy()};
}

bool FloatingSelection::Transform::isUsable() const
{
    const QTransform product = paperToContent();
    bool isInvertible = false;
    (void)product.inverted(&isInvertible);
    return isReadable(scale) && isReadable(rotation) && isReadable(translation) && std::isfinite(pivot.x()) &&
           std::isfinite(pivot.y()) && isReadable(product) && isInvertible && isReadable(contentToPaper());
}

/// The strokes and their picture, which all copies of a selection share.
class FloatingSelection::Content
{
public:
    Content(std::unique_ptr<Stroke> content, QSize frameSize)
        : stroke(std::move(content)), imageRect(grownByRim(stroke->boundingRect(), paperScale) & reachOf(frameSize))
    {
    }

    const QImage &image()
    {
        if (m_image.isNull() && !imageRect.isEmpty()) {
            m_image = blankCoverage(imageRect.size());
            render();
        }
        return m_image;
    }

    const std::unique_ptr<const Stroke> stroke;
    const QRect imageRect;

private:
    void render()
    {
        if (needsRenderer(*stroke) && !OffscreenRenderer::instance()->isInitialized())
            return;
        std::unique_ptr<Stroke> part;
        if (stroke->type() == Stroke::Type::Compound)
            part = drawablePart(static_cast<const CompoundStroke &>(*stroke), imageRect);
        const Stroke &drawn = part ? *part : *stroke;
        drawn.render(m_image, m_image.rect(), QTransform::fromTranslate(-imageRect.x(), -imageRect.y()),
                     imageRect.topLeft(), paperScale);
    }

    QImage m_image;
};

struct FloatingSelection::Private
{
    std::shared_ptr<Content> content;
    Transform transform;
    double opacity = 1.0;
    bool collapsesOnStamp = false;
};

FloatingSelection::FloatingSelection() = default;
FloatingSelection::~FloatingSelection() = default;
FloatingSelection::FloatingSelection(const FloatingSelection &other) = default;
FloatingSelection &FloatingSelection::operator=(const FloatingSelection &other) = default;

FloatingSelection::FloatingSelection(std::unique_ptr<Stroke> content, QSize frameSize)
{
    if (!content || content->isEmpty() || content->boundingRect().isEmpty())
        return;
    d = std::make_shared<Private>();
    d->content = std::make_shared<Content>(std::move(content), frameSize);
    d->transform.pivot = rect().center();
}

// A copy for writing shares the content, which never changes.
FloatingSelection::Private *FloatingSelection::detached()
{
    if (d && d.use_count() > 1)
        d = std::make_shared<Private>(*d);
    return d.get();
}

bool FloatingSelection::isNull() const
{
    return !d;
}

const Stroke *FloatingSelection::content() const
{
    return d ? d->content->stroke.get() : nullptr;
}

QRectF FloatingSelection::rect() const
{
    return d ? QRectF(d->content->stroke->boundingRect()) : QRectF();
}

QImage FloatingSelection::image() const
{
    return d ? d->content->image() : QImage();
}

QRect FloatingSelection::imageRect() const
{
    return d ? d->content->imageRect : QRect();
}

double FloatingSelection::opacity() const
{
    return d ? d->opacity : 1.0;
}

void FloatingSelection::setOpacity(double opacity)
{
    if (d && !std::isnan(opacity))
        detached()->opacity = std::clamp(opacity, 0.0, 1.0);
}

FloatingSelection::Transform FloatingSelection::transform() const
{
    return d ? d->transform : Transform();
}

void FloatingSelection::setTransform(const Transform &transform)
{
    if (d && transform.isUsable())
        detached()->transform = transform;
}

bool FloatingSelection::collapsesOnStamp() const
{
    return d && d->collapsesOnStamp;
}

void FloatingSelection::setCollapsesOnStamp(bool collapses)
{
    if (d)
        detached()->collapsesOnStamp = collapses;
}

} // namespace Model
