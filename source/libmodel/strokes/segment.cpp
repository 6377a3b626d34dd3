#include "libmodel/strokes/segment.h"

#include "libmodel/strokes/arcsegment.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/linesegment.h"
#include "libmodel/strokes/pointsegment.h"

namespace Model {

namespace {

template<typename SegmentClass>
std::shared_ptr<const Segment> readOne(QDataStream &stream)
{
    auto segment = std::make_shared<SegmentClass>();
    if (!segment->read(stream))
        return nullptr;
    return segment;
}

} // namespace

Segment::~Segment() = default;

std::shared_ptr<const Segment> Segment::readNew(int type, QDataStream &stream)
{
    switch (type) {
    case int(Type::Point):
        return readOne<PointSegment>(stream);
    case int(Type::Line):
        return readOne<LineSegment>(stream);
    case int(Type::Arc):
        return readOne<ArcSegment>(stream);
    default:
        return nullptr;
    }
}

bool readEnds(QDataStream &stream, SegmentEnds &ends)
{
    return readNumber(stream, ends.opacityStart) && readNumber(stream, ends.opacityEnd) &&
           readRadius(stream, ends.radiusStart) && readRadius(stream, ends.radiusEnd);
}

QRectF circleBounds(QPointF center, double radius)
{
    return {center.x() - radius, center.y() - radius, 2.0 * radius, 2.0 * radius};
}

} // namespace Model
