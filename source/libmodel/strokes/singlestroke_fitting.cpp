// How a stroke turns samples into segments: the pursuit.

#include "libmodel/strokes/arcsegment.h"
#include "libmodel/strokes/linesegment.h"
#include "libmodel/strokes/pointsegment.h"
#include "libmodel/strokes/pressurecurve.h"
#include "libmodel/strokes/singlestroke_p.h"
#include "libmodel/tools/drawingtool.h"

#include <QLineF>

namespace Model {

namespace {

/// The share of the way to the newest sample that a segment covers while the pen moves, and when the stroke is closed.
constexpr double followFraction = 0.6;
constexpr double closingFraction = 1.0;
/// The least length of a segment in pixels.
constexpr double leastLength = 1.0;
/// How far from the paper's first touch the pen must have hovered for its direction to count, in pixels.
constexpr double leastHoverLength = 5.0;

/// Turns nearer than this to straight ahead give a line, in degrees.
constexpr double straightAngle = 1.0;
/// A first turn further than this from the given direction drops the direction, and the dot with it.
constexpr double firstTurnAngle = 45.0;
/// A turn further than this is a corner.
constexpr double cornerAngle = 90.0;
constexpr double fullTurn = 360.0;

bool isFurtherThan(double limit, double angle)
{
    return limit < angle && angle < fullTurn - limit;
}

/// The direction in which a circle around \a center is walked at \a point, which the line starts at.
QLineF walkingDirection(QPointF point, QPointF center, bool clockwise)
{
    QLineF direction = QLineF(point, center).normalVector();
    if (!clockwise)
        direction.setP2(direction.p1() - QPointF(direction.dx(), direction.dy()));
    return direction;
}

double between(double from, double to, double fraction)
{
    return from + (to - from) * fraction;
}

} // namespace

const DrawingTool *SingleStroke::drawingTool() const
{
    return qobject_cast<const DrawingTool *>(d->tool);
}

void SingleStroke::addSample(const Sample &sample)
{
    d->samples.push_back(sample);
    process(followFraction);
}

void SingleStroke::addFirstSample(const Sample &sample, QPointF previousPoint)
{
    const QLineF direction(sample.point, sample.point + (sample.point - previousPoint));
    addSample(sample);
    if (!d->controlPoints.empty() && direction.length() > leastHoverLength) {
        d->controlPoints.back().tangent = direction;
        d->hasTangent = true;
    }
}

void SingleStroke::processPending()
{
    process(followFraction);
}

void SingleStroke::finish()
{
    process(closingFraction);
    d->hasTangent = false;
}

void SingleStroke::process(double fraction)
{
    const DrawingTool *tool = drawingTool();
    if (d->samples.empty() || !tool)
        return;
    const Sample &sample = d->samples.back();
    if (d->controlPoints.empty()) {
        append(std::make_shared<PointSegment>(sample.point, opacityAt(*tool, sample.pressure),
                                              radiusAt(*tool, sample.pressure)),
               {sample.point, sample.pressure, QLineF()});
        return;
    }

    const ControlPoint &last = d->controlPoints.back();
    const bool isGuided = d->hasTangent && !last.tangent.isNull();
    const double angle = isGuided ? last.tangent.angleTo(QLineF(last.point, sample.point)) : 0.0;
    if (angle < straightAngle || angle > fullTurn - straightAngle) {
        addLine(fraction);
    } else if (d->controlPoints.size() == 1 && isFurtherThan(firstTurnAngle, angle)) {
        if (addLine(fraction))
            d->segments.erase(d->segments.begin());
    } else if (isFurtherThan(cornerAngle, angle)) {
        addCornerLeg();
        addLine(fraction);
        d->hasTangent = false;
    } else {
        addArc(fraction, angle);
    }
}

bool SingleStroke::addLine(double fraction)
{
    const DrawingTool &tool = *drawingTool();
    const ControlPoint start = d->controlPoints.back();
    const Sample &sample = d->samples.back();
    const QPointF end = start.point + fraction * (sample.point - start.point);
    if (QLineF(start.point, end).length() < leastLength)
        return false;
    d->hasTangent = true;
    const double pressure = between(start.pressure, sample.pressure, fraction);
    append(std::make_shared<LineSegment>(start.point, end, opacityAt(tool, start.pressure), opacityAt(tool, pressure),
                                         radiusAt(tool, start.pressure), radiusAt(tool, pressure)),
           {end, pressure, QLineF(end, end + (end - start.point))});
    return true;
}

// Where the pen turns back, the line first runs up to where it turned, and starts afresh from there.
void SingleStroke::addCornerLeg()
{
    d->hasTangent = false;
    if (d->samples.size() < 2)
        return;
    const DrawingTool &tool = *drawingTool();
    const ControlPoint start = d->controlPoints.back();
    const Sample &turn = d->samples[d->samples.size() - 2];
    append(std::make_shared<LineSegment>(start.point, turn.point, opacityAt(tool, start.pressure),
                                         opacityAt(tool, turn.pressure), radiusAt(tool, start.pressure),
                                         radiusAt(tool, turn.pressure)),
           {turn.point, turn.pressure, QLineF()});
}

bool SingleStroke::addArc(double fraction, double angle)
{
    const ControlPoint start = d->controlPoints.back();
    const Sample &sample = d->samples.back();
    const Circle circle = circleThrough(start.point, sample.point, start.tangent);
    if (circle.isNull())
        return addLine(fraction);

    // The circle runs through the sample; the arc keeps a part of that way only.
    const bool clockwise = angle > fullTurn / 2.0;
    const double turn = start.tangent.angleTo(walkingDirection(sample.point, circle.center, clockwise));
    const double sweep = clockwise ? (fullTurn - turn) * fraction : turn * fraction;
    QLineF spoke(circle.center, start.point);
    spoke.setAngle(clockwise ? spoke.angle() - sweep : spoke.angle() + sweep);
    const QPointF end = spoke.p2();
    if (QLineF(start.point, end).length() < leastLength)
        return false;

    const DrawingTool &tool = *drawingTool();
    d->hasTangent = true;
    const double pressure = between(start.pressure, sample.pressure, fraction);
    append(std::make_shared<ArcSegment>(circle, start.point, end, clockwise, opacityAt(tool, start.pressure),
                                        opacityAt(tool, pressure), radiusAt(tool, start.pressure),
                                        radiusAt(tool, pressure)),
           {end, pressure, walkingDirection(end, circle.center, clockwise)});
    return true;
}

void SingleStroke::append(std::shared_ptr<const Segment> segment, const ControlPoint &end)
{
    d->boundingRect |= segment->boundingRect();
    d->segments.push_back(std::move(segment));
    d->controlPoints.push_back(end);
}

} // namespace Model
