#include "libui/paper/floatingdrag.h"

#include "libmodel/base/fuzzy.h"

#include <QLineF>

#include <cmath>

namespace UI::FloatingDrag {

namespace {

/// What lies nearer to the pivot than this, content pixels, does not take part in a scale.
constexpr double nearPivot = 0.5;

QTransform about(QPointF point, const QTransform &transform)
{
    return QTransform::fromTranslate(-point.x(), -point.y()) * transform *
           QTransform::fromTranslate(point.x(), point.y());
}

QPointF pivotOnPaper(const Transform &transform)
{
    return transform.contentToPaper().map(transform.pivot);
}

bool isWithinLimits(const Transform &transform)
{
    if (!transform.isUsable())
        return false;
    const QTransform toPaper = transform.contentToPaper();
    for (const double scale : {std::hypot(toPaper.m11(), toPaper.m12()), std::hypot(toPaper.m21(), toPaper.m22())}) {
        if (scale < smallestScale || scale > largestScale)
            return false;
    }
    return true;
}

/// \a from with \a factors, from the paper to the content, along its own sides.
std::optional<Transform> scaledBy(const Transform &from, QPointF factors)
{
    const QTransform inside = about(from.pivot, QTransform::fromScale(factors.x(), factors.y()));
    Transform rest = from;
    rest.scale.reset();
    Transform result = from;
    result.scale = from.scale * rest.paperToContent() * inside * rest.contentToPaper();
    return isWithinLimits(result) ? std::optional(result) : std::nullopt;
}

/// The factor for a side of the length \a side that grows by \a change; nothing where none of it would be left.
std::optional<double> factorFor(double side, double change)
{
    if (Model::fuzzyEqual(side, -change))
        return std::nullopt;
    return side / (side + change);
}

double dot(QPointF a, QPointF b)
{
    return QPointF::dotProduct(a, b);
}

} // namespace

Transform moved(const Transform &from, QPointF press, QPointF now)
{
    const QTransform outside = from.scale * from.rotation;
    const QPointF way = outside.map(press) - outside.map(now);
    Transform result = from;
    result.translation = from.translation * QTransform::fromTranslate(way.x(), way.y());
    return result;
}

Transform pivotMoved(const Transform &from, QPointF press, QPointF now)
{
    const QTransform toContent = from.paperToContent();
    Transform result = from;
    result.pivot += toContent.map(now) - toContent.map(press);
    return result;
}

Transform rotated(const Transform &from, QPointF press, QPointF now)
{
    const QPointF pivot = pivotOnPaper(from);
    const QLineF toPress(pivot, press);
    const QLineF toNow(pivot, now);
    if (toPress.isNull() || toNow.isNull())
        return from;
    // Seen from the content the paper turns the other way.
    const double degrees = toPress.angleTo(toNow);
    const QTransform turn = about(pivot, QTransform().rotate(degrees));
    Transform result = from;
    if (!from.scale.isIdentity())
        result.scale = turn * from.scale * about(pivot, QTransform().rotate(-degrees));
    result.rotation = turn * from.rotation;
    return result;
}

std::optional<Transform> scaled(const Transform &from, QPointF corner, QPointF press, QPointF now, bool evenly)
{
    const QTransform toContent = from.paperToContent();
    const QPointF way = toContent.map(now) - toContent.map(press);
    const QPointF side = corner - from.pivot;
    if (evenly) {
        if (std::hypot(side.x(), side.y()) < nearPivot)
            return std::nullopt;
        const std::optional<double> factor = factorFor(dot(side, side), dot(side, way));
        return factor ? scaledBy(from, {*factor, *factor}) : std::nullopt;
    }
    const auto alongAxis = [](double length, double change) {
        return std::abs(length) < nearPivot ? std::optional(1.0) : factorFor(length, change);
    };
    const std::optional<double> x = alongAxis(side.x(), way.x());
    const std::optional<double> y = alongAxis(side.y(), way.y());
    return x && y ? scaledBy(from, {*x, *y}) : std::nullopt;
}

std::optional<Transform> scaledAndRotated(const Transform &from, QPointF press, QPointF now)
{
    const QPointF pivot = pivotOnPaper(from);
    const double before = QLineF(pivot, press).length();
    const double after = QLineF(pivot, now).length();
    const Transform turned = rotated(from, press, now);
    // The way that is left leads along a line through the pivot, so every corner goes along its own.
    if (before < nearPivot)
        return std::nullopt;
    const std::optional<double> factor = factorFor(before, after - before);
    return factor ? scaledBy(turned, {*factor, *factor}) : std::nullopt;
}

} // namespace UI::FloatingDrag
