#include "libmodel/strokes/floatingselection.h"

#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/floatingcontent.h"
#include "libmodel/strokes/floatingstamp.h"
#include "libmodel/strokes/guardedstream.h"

#include <algorithm>
#include <cmath>

namespace Model {

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

struct FloatingSelection::Private
{
    std::shared_ptr<FloatingContent> content;
    Transform transform;
    /// The stamp at this place, shared by copies that lie there as well.
    std::shared_ptr<FloatingStamp> stamp;
    double opacity = 1.0;
    bool collapsesOnStamp = false;
    bool isCutOut = false;

    void renewStamp()
    {
        stamp = std::make_shared<FloatingStamp>(content, transform.contentToPaper(), collapsesOnStamp);
    }
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
    d->content = std::make_shared<FloatingContent>(std::move(content), frameSize);
    d->transform.pivot = rect().center();
    d->renewStamp();
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
    return d ? &d->content->stroke() : nullptr;
}

QRectF FloatingSelection::rect() const
{
    return d ? QRectF(d->content->stroke().boundingRect()) : QRectF();
}

QImage FloatingSelection::image() const
{
    return d ? d->content->image() : QImage();
}

QRect FloatingSelection::imageRect() const
{
    return d ? d->content->imageRect() : QRect();
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
    if (!d || !transform.isUsable() || transform == d->transform)
        return;
    const QTransform before = d->transform.contentToPaper();
    detached()->transform = transform;
    // To turn about another point does not move what lies there.
    if (transform.contentToPaper() != before)
        d->renewStamp();
}

bool FloatingSelection::collapsesOnStamp() const
{
    return d && d->collapsesOnStamp;
}

void FloatingSelection::setCollapsesOnStamp(bool collapses)
{
    if (!d || collapses == d->collapsesOnStamp)
        return;
    detached()->collapsesOnStamp = collapses;
    d->renewStamp();
}

bool FloatingSelection::isCutOut() const
{
    return d && d->isCutOut;
}

void FloatingSelection::setCutOut(bool cutOut)
{
    if (d)
        detached()->isCutOut = cutOut;
}

std::unique_ptr<CompoundStroke> FloatingSelection::stampStroke(int collapseScale, Progress *progress) const
{
    return d ? d->stamp->stroke(collapseScale, progress) : nullptr;
}

bool FloatingSelection::prepareStamp(int milliseconds) const
{
    return !d || d->stamp->prepare(milliseconds);
}

} // namespace Model
