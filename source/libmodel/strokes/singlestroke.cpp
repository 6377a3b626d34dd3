#include "libmodel/strokes/singlestroke.h"

#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/render/vertexstreams.h"
#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/linequeue.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/pressurecurve.h"
#include "libmodel/strokes/roundcap.h"
#include "libmodel/strokes/singlestroke_p.h"
#include "libmodel/tools/drawingtool.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"

#include <QDataStream>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Model {

namespace {

/// How far the anti-aliased rim reaches beyond the bounds of a segment, in image pixels.
constexpr int rimReach = 1;

QRect grown(QRect rect, int by)
{
    return rect.adjusted(-by, -by, by, by);
}

/// Appends \a segment, less its start cap if \a drawn, a cap that is drawn anyway, does for it.
void addSegment(const Segment &segment, const std::optional<RoundCap> &drawn, VertexStreams &vertices)
{
    // Where a line goes on smoothly, two caps lie on each other; one will do, and caps are most of the work.
    const std::optional<RoundCap> cap = segment.startCap();
    if (!cap || !drawn || !cap->coversTheSameAs(*drawn))
        segment.addStartCap(vertices);
    segment.addBody(vertices);
    segment.addEndCap(vertices);
}

} // namespace

SingleStroke::SingleStroke(QSize size, const Tool *tool) : SingleStroke(tool)
{
    d->image = blankCoverage(size);
}

SingleStroke::SingleStroke(const Tool *tool) : d(std::make_unique<Private>())
{
    d->tool = tool;
    if (tool)
        d->toolType = tool->type();
    if (const auto *pen = qobject_cast<const PenTool *>(tool))
        d->penType = pen->penType();
    else if (const auto *eraser = qobject_cast<const EraserTool *>(tool))
        d->eraserType = eraser->eraserType();
}

SingleStroke::SingleStroke(const SingleStroke &other) : Stroke(other), d(std::make_unique<Private>(*other.d))
{
}

SingleStroke::~SingleStroke() = default;

std::unique_ptr<Stroke> SingleStroke::clone() const
{
    return std::unique_ptr<Stroke>(new SingleStroke(*this));
}

bool SingleStroke::isEraser() const
{
    return d->toolType == Tool::Type::Eraser;
}

bool SingleStroke::isPen() const
{
    return d->toolType == Tool::Type::Pen;
}

Tool::PenType SingleStroke::penType() const
{
    return d->penType;
}

Tool::EraserType SingleStroke::eraserType() const
{
    return d->eraserType;
}

const QImage &SingleStroke::image() const
{
    return d->image;
}

QImage SingleStroke::takeImage()
{
    d->latestRendered.reset();
    // The tool may be gone before the stroke is.
    d->tool = nullptr;
    return std::exchange(d->image, QImage());
}

void SingleStroke::setImage(const QImage &image)
{
    d->image = image;
}

Sample SingleStroke::lastSample() const
{
    return d->samples.empty() ? Sample() : d->samples.back();
}

bool SingleStroke::isNearLastSample(const Sample &sample) const
{
    constexpr double squaredReach = 1.0;

    if (d->samples.empty())
        return false;
    const QPointF way = sample.point - d->samples.back().point;
    return QPointF::dotProduct(way, way) < squaredReach;
}

const std::vector<Sample> &SingleStroke::samples() const
{
    return d->samples;
}

const std::vector<ControlPoint> &SingleStroke::controlPoints() const
{
    return d->controlPoints;
}

const std::vector<std::shared_ptr<const Segment>> &SingleStroke::segments() const
{
    return d->segments;
}

bool SingleStroke::hasTangent() const
{
    return d->hasTangent;
}

QPainterPath SingleStroke::toPath() const
{
    QPainterPath path;
    if (d->segments.empty())
        return path;
    d->segments.front()->moveToStart(path);
    for (const auto &segment : d->segments)
        segment->extendPath(path);
    return path;
}

QRect SingleStroke::boundingRect() const
{
    return d->boundingRect.isEmpty() ? QRect() : grown(d->boundingRect, rimReach);
}

bool SingleStroke::isEmpty() const
{
    return d->segments.empty();
}

QRect SingleStroke::render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint textureOffset,
                           double renderScale) const
{
    if (d->segments.empty() || !mappedRectMeets(transform, boundingRect(), grownByRim(dirtyRect, renderScale)))
        return {};
    if (!OffscreenRenderer::instance()->isInitialized())
        return dirtyRect;
    const QRect rect = dirtyRect & target.rect();
    for (int y = rect.top(); y <= rect.bottom() && !rect.isEmpty(); ++y)
        std::fill_n(target.scanLine(y) + rect.left(), rect.width(), uchar(0));
    Line drawn = line();
    drawn.isPen = true; // an eraser's pixels, too, tell how much there is of it
    LineQueue(target).add(drawn, rect, {transform, textureOffset, renderScale});
    return dirtyRect;
}

Line SingleStroke::line() const
{
    const int style = isEraser() ? OffscreenRenderer::styleOf(d->eraserType) : OffscreenRenderer::styleOf(d->penType);
    return {d->segments, boundingRect(), style, isPen()};
}

QRect SingleStroke::renderLatestSegment()
{
    constexpr int sampleReach = 3;

    if (d->image.isNull() || d->segments.empty())
        return {};
    const QRect latest = grown(d->segments.back()->boundingRect(), rimReach);
    if (d->latestRendered != d->segments.back()) {
        mergeSegment(*d->segments.back(), latest & d->image.rect());
        d->latestRendered = d->segments.back();
    }
    const QRect aroundSample = grown(QRect(lastSample().point.toPoint(), QSize(1, 1)), sampleReach);
    return (latest | aroundSample | d->tailRect) & d->image.rect();
}

void SingleStroke::mergeSegment(const Segment &segment, QRect rect)
{
    if (rect.isEmpty())
        return;
    VertexStreams vertices;
    addSegment(segment, d->latestRendered ? d->latestRendered->endCap() : std::nullopt, vertices);
    CoveragePart piece(rect);
    const QTransform toPiece = QTransform::fromTranslate(-piece.origin.x(), -piece.origin.y());
    OffscreenRenderer *renderer = OffscreenRenderer::instance();
    if (isEraser())
        renderer->renderEraser(piece.image, d->eraserType, piece.origin, 1.0F, piece.image.rect(), toPiece, vertices);
    else
        renderer->renderPen(piece.image, d->penType, piece.origin, 1.0F, piece.image.rect(), toPiece, vertices);
    compositeMax(d->image, piece.image, piece.image.rect(), piece.origin);
}

QRect SingleStroke::drawTail(QPainter *painter, QColor color, QRect rect, double radius)
{
    const DrawingTool *tool = drawingTool();
    if (!isPen() || !tool || d->samples.empty() || d->controlPoints.empty())
        return {};
    const Sample &sample = d->samples.back();
    const QLineF tail(sample.point, d->controlPoints.back().point);
    color.setAlphaF(float(std::clamp(opacityAt(*tool, sample.pressure), 0.0, 1.0)));

    painter->save();
    QPen pen = painter->pen();
    pen.setColor(color);
    pen.setWidthF(2.0 * radius);
    pen.setStyle(Qt::DotLine);
    painter->setPen(pen);
    painter->drawLine(tail);
    painter->restore();

    const double reach = 2.0 * radius;
    d->tailRect = QRectF(tail.p1(), tail.p2()).normalized().adjusted(-reach, -reach, reach, reach).toAlignedRect();
    return rect & d->tailRect;
}

bool SingleStroke::cutInside(const QPainterPath &path)
{
    if (path.contains(QRectF(boundingRect())))
        d->segments.clear();
    return true;
}

bool SingleStroke::cutOutside(const QPainterPath &path)
{
    const QRectF bounds(boundingRect());
    if (!path.contains(bounds) && !path.intersects(bounds)) {
        d->segments.clear();
        d->boundingRect = QRect();
    }
    return true;
}

void SingleStroke::write(QDataStream &stream) const
{
    // At the edge of the world a segment reaches out of it, and a reader refuses bounds that lie out there.
    const QRect world(QPoint(-coordinateLimit, -coordinateLimit), QPoint(coordinateLimit, coordinateLimit));
    stream << isPen() << qint32(isPen() ? int(d->penType) : int(d->eraserType)) << (d->boundingRect & world);
    stream << qint32(d->samples.size());
    for (const Sample &sample : d->samples)
        stream << sample.point << sample.pressure;
    stream << qint32(d->segments.size());
    for (const auto &segment : d->segments) {
        stream << qint32(segment->type());
        segment->write(stream);
    }
}

bool SingleStroke::read(QDataStream &stream)
{
    bool pen = true;
    qint32 kind = 0;
    stream >> pen >> kind;
    if (stream.status() != QDataStream::Ok)
        return false;
    d->toolType = pen ? Tool::Type::Pen : Tool::Type::Eraser;
    constexpr int lastKind = int(Tool::PenType::Brush);
    if (kind < 0 || kind > lastKind)
        return refuse(stream);
    if (pen)
        d->penType = Tool::PenType(kind);
    else
        d->eraserType = Tool::EraserType(kind);
    return readRect(stream, d->boundingRect) && readSamples(stream) && readSegments(stream);
}

// Stored bounds that leave a segment out would cut it off. A pixel of difference is what rounding to single precision
// may cause, and the rim has room for it.
void SingleStroke::coverSegments()
{
    for (const auto &segment : d->segments) {
        const QRect bounds = segment->boundingRect();
        if (d->boundingRect.isEmpty() || !grown(d->boundingRect, rimReach).contains(bounds))
            d->boundingRect |= bounds;
    }
}

bool SingleStroke::readSamples(QDataStream &stream)
{
    constexpr int doublesPerSample = 3;

    d->samples.clear();
    qint32 count = 0;
    if (!readCount(stream, count, doublesPerSample * bytesPerDouble(stream)))
        return false;
    d->samples.reserve(size_t(count));
    for (qint32 i = 0; i < count; ++i) {
        Sample sample;
        if (!readPoint(stream, sample.point) || !readNumber(stream, sample.pressure)) {
            d->samples.clear();
            return false;
        }
        d->samples.push_back(sample);
    }
    return true;
}

bool SingleStroke::readSegments(QDataStream &stream)
{
    d->segments.clear();
    qint32 count = 0;
    if (!readCount(stream, count, int(sizeof(qint32))))
        return false;
    for (qint32 i = 0; i < count; ++i) {
        qint32 type = 0;
        stream >> type;
        if (stream.status() != QDataStream::Ok)
            return false;
        auto segment = Segment::readNew(type, stream);
        if (stream.status() != QDataStream::Ok)
            return false;
        if (segment)
            d->segments.push_back(std::move(segment));
    }
    coverSegments();
    return true;
}

} // namespace Model
