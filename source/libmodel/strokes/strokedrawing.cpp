#include "libmodel/strokes/strokedrawing.h"

#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/compositing.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/coveragepainter.h"
#include "libmodel/strokes/drawingthumbnail.h"
#include "libmodel/strokes/fittransform.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/imagemarker.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing_p.h"

#include <QDataStream>
#include <QPainter>

#include <algorithm>
#include <limits>
#include <utility>

namespace Model {

namespace {

/// Strokes of a drawing are drawn pixel by pixel of the paper.
constexpr double paperScale = 1.0;

QRect inkBounds(const Stroke &stroke)
{
    return grownByRim(stroke.boundingRect(), paperScale);
}

/// What a paint with \a colorTable shows outside of the ink: nothing, as a rule, and then it need not be painted.
bool isBlankShown(const QList<QRgb> &colorTable)
{
    return colorTable.isEmpty() || qAlpha(colorTable.first()) != 0;
}

bool lacksRenderer(const Stroke &stroke)
{
    return !OffscreenRenderer::instance()->isInitialized() && needsRenderer(stroke);
}

/// Draws the \a count oldest children of \a compound.
void renderOldest(const CompoundStroke &compound, int count, QImage &image, QRect rect)
{
    if (count == compound.count()) {
        compound.render(image, rect, QTransform(), QPoint(0, 0), paperScale);
    } else if (count > 0) {
        CompoundStroke oldest(compound);
        oldest.keepOldest(count);
        oldest.render(image, rect, QTransform(), QPoint(0, 0), paperScale);
    }
}

} // namespace

StrokeDrawing::StrokeDrawing(QSize size) : d(std::make_unique<Private>())
{
    d->size = size;
}

StrokeDrawing::StrokeDrawing(const StrokeDrawing &other) : Drawing(other), d(std::make_unique<Private>())
{
    d->size = other.d->size;
    d->image = other.d->image;
    d->thumbnails = other.d->thumbnails;
    d->thumbnailSize = other.d->thumbnailSize;
    d->strokes = std::make_unique<CompoundStroke>(*other.d->strokes);
    d->ink = other.d->ink;
    d->unscanned = other.d->unscanned;
    d->isShownInPart = other.d->isShownInPart;
    d->isRationed = other.d->isRationed;
}

StrokeDrawing::~StrokeDrawing() = default;

std::shared_ptr<Drawing> StrokeDrawing::clone() const
{
    return std::shared_ptr<Drawing>(new StrokeDrawing(*this));
}

bool StrokeDrawing::isEmpty() const
{
    return d->strokes->isEmpty();
}

const QImage &StrokeDrawing::image() const
{
    return d->image;
}

QRect StrokeDrawing::inkedRect() const
{
    return inkBounds(*d->strokes) & d->frame();
}

const InkTiles &StrokeDrawing::ink() const
{
    if (d->ink.size() != d->image.size()) {
        d->ink = InkTiles(d->image.size());
        d->unscanned = d->image.rect();
    }
    if (!d->unscanned.isEmpty())
        d->ink.scan(d->image, d->unscanned);
    d->unscanned = {};
    return d->ink;
}

QSize StrokeDrawing::size() const
{
    return d->size;
}

const CompoundStroke &StrokeDrawing::strokes() const
{
    return *d->strokes;
}

void StrokeDrawing::contentChanged()
{
    clearThumbnails();
    setCopyId(QUuid());
}

bool StrokeDrawing::addStroke(std::unique_ptr<Stroke> stroke)
{
    if (!stroke || stroke->isEmpty())
        return false;
    const bool isSingle = stroke->type() == Stroke::Type::Single;
    if (isSingle && static_cast<SingleStroke &>(*stroke).isEraser() && isEmpty())
        return false;
    if (!d->strokes->canAppend(*stroke))
        return false;
    // Strokes that had no image until now do not get one by what is laid on top of them.
    const bool lacksImage = d->image.isNull() && !isEmpty();
    d->isShownInPart = d->isShownInPart || lacksImage;
    if (isSingle || !flattenPicture(*stroke)) {
        d->isShownInPart = d->isShownInPart || lacksRenderer(*stroke);
        if (isSingle)
            flattenSingle(static_cast<SingleStroke &>(*stroke));
        else
            flatten(*stroke);
    }
    d->touched = inkBounds(*stroke) & d->frame();
    d->strokes->append(std::move(stroke));
    contentChanged();
    return true;
}

// What somebody has drawn already need not be drawn again. The drawing has the pixels then, and the stroke lets go of
// them.
bool StrokeDrawing::flattenPicture(Stroke &stroke)
{
    if (stroke.type() != Stroke::Type::Compound)
        return false;
    auto &compound = static_cast<CompoundStroke &>(stroke);
    const QImage picture = compound.picture();
    const QRect pictureRect = compound.pictureRect();
    compound.setPicture(QImage(), QRect());
    const QRect inked = inkBounds(compound) & d->frame();
    if (picture.isNull() || !pictureRect.contains(inked) || picture.size() != pictureRect.size())
        return false;
    if (d->image.isNull())
        d->image = blankCoverage(d->size);
    composite(d->image, picture, inked.translated(-pictureRect.topLeft()), true, pictureRect.topLeft());
    d->unscanned |= inked;
    return true;
}

void StrokeDrawing::flatten(const Stroke &stroke)
{
    if (d->image.isNull())
        d->image = blankCoverage(d->size);
    d->unscanned |= inkBounds(stroke);
    if (stroke.type() != Stroke::Type::Compound) {
        stroke.render(d->image, inkBounds(stroke), QTransform(), QPoint(0, 0), paperScale);
        return;
    }
    const auto &compound = static_cast<const CompoundStroke &>(stroke);
    const int drawable = d->drawableIn(compound, d->frame(), std::numeric_limits<qint64>::max(), nullptr);
    d->isShownInPart = d->isShownInPart || drawable < compound.count();
    renderOldest(compound, drawable, d->image, inkBounds(stroke));
}

// The pixels that the user saw while drawing are those that the drawing keeps.
void StrokeDrawing::flattenSingle(SingleStroke &stroke)
{
    d->unscanned |= inkBounds(stroke);
    QImage live = stroke.takeImage();
    if (!live.isNull() && d->image.isNull() && live.size() == d->size) {
        d->image = std::move(live);
        return;
    }
    if (d->image.isNull())
        d->image = blankCoverage(d->size);
    const QRect bounds = inkBounds(stroke) & d->frame();
    if (!live.isNull()) {
        composite(d->image, live, bounds, stroke.isPen());
        return;
    }
    if (bounds.isEmpty())
        return;
    CoveragePart piece(bounds);
    stroke.render(piece.image, piece.image.rect(), QTransform::fromTranslate(-piece.origin.x(), -piece.origin.y()),
                  piece.origin, paperScale);
    composite(d->image, piece.image, piece.image.rect(), stroke.isPen(), piece.origin);
}

std::unique_ptr<Stroke> StrokeDrawing::removeLastStroke()
{
    // Removing unwraps, and the bounds need the transform that the stroke itself is under.
    d->strokes->unwrap();
    const QTransform transform = d->strokes->transform();
    auto stroke = d->strokes->removeLast();
    if (stroke) {
        d->touched = grownByRim(mappedBounds(transform, stroke->boundingRect()), paperScale) & d->frame();
        // Where only a part can be shown, all of the picture may become another.
        if (d->isShownInPart)
            d->touched = d->frame();
        rebuild(d->touched);
        if (d->isShownInPart)
            d->touched = d->frame();
        contentChanged();
    }
    return stroke;
}

QRect StrokeDrawing::touchedRect() const
{
    return d->touched;
}

void StrokeDrawing::rebuild(QRect rect)
{
    rebuildWithin(std::numeric_limits<qint64>::max(), rect);
}

qint64 StrokeDrawing::rebuildWithin(qint64 limit, QRect rect)
{
    if (isEmpty()) {
        d->image = QImage();
        d->ink = {};
        d->isShownInPart = false;
        return 0;
    }
    const bool isOfSize = !d->image.isNull() && d->image.size() == d->size;
    rect = isOfSize && !d->isShownInPart ? rect & d->frame() : d->frame();
    qint64 effort = 0;
    int drawable = d->drawableIn(*d->strokes, rect, limit, &effort);
    if (drawable < d->strokes->count() && !d->isShownInPart) {
        rect = d->frame();
        drawable = d->drawableIn(*d->strokes, rect, limit, &effort);
    }
    d->isShownInPart = drawable < d->strokes->count() || lacksRenderer(*d->strokes);
    if (!isOfSize)
        d->image = blankCoverage(d->size);
    for (int y = rect.top(); y <= rect.bottom() && isOfSize; ++y)
        std::fill_n(d->image.scanLine(y) + rect.left(), rect.width(), uchar(0));
    renderOldest(*d->strokes, drawable, d->image, rect);
    d->unscanned |= rect;
    return std::min(effort, limit);
}

bool StrokeDrawing::isShownInPart() const
{
    return d->isShownInPart;
}

void StrokeDrawing::paint(QPainter *painter, const QList<QRgb> &colorTable, QRect rect) const
{
    if (d->image.isNull())
        return;
    const bool isWhole = isBlankShown(colorTable);
    const QRect shown = rect & (isWhole ? d->image.rect() : inkedRect());
    if (!shown.isEmpty())
        paintCoverage(painter, shown.topLeft(), d->image, shown, colorTable, isWhole ? nullptr : &ink());
}

void StrokeDrawing::paintWithActiveStroke(QPainter *painter, const QList<QRgb> &colorTable, QRect rect,
                                          const SingleStroke &stroke) const
{
    const QRect frame = stroke.image().rect() | d->image.rect();
    const QRect inked = isBlankShown(colorTable) ? frame : (inkBounds(stroke) | inkedRect()) & frame;
    const QRect shown = rect & inked;
    if (shown.isEmpty())
        return;
    if (d->image.isNull()) {
        if (stroke.isPen() && !stroke.image().isNull())
            paintCoverage(painter, shown.topLeft(), stroke.image(), shown, colorTable);
        return;
    }
    QImage together = d->image.copy(shown);
    composite(together, stroke.image(), shown, stroke.isPen(), -shown.topLeft());
    paintCoverage(painter, shown.topLeft(), together, together.rect(), colorTable);
}

QImage StrokeDrawing::thumbnail(QSize size, const QList<QRgb> &colorTable)
{
    if (size.isEmpty() || colorTable.isEmpty())
        return {};
    if (size != d->thumbnailSize) {
        d->thumbnailSize = size;
        d->thumbnails.clear();
    }
    const QRgb key = colorTable.first();
    const auto known = d->thumbnails.constFind(key);
    if (known != d->thumbnails.constEnd())
        return *known;
    if (d->image.isNull())
        return {};
    return *d->thumbnails.insert(key, drawingThumbnail(d->image, size, colorTable));
}

void StrokeDrawing::clearThumbnails()
{
    d->thumbnails.clear();
}

void StrokeDrawing::resize(QSize size, MR::FitMode fitMode)
{
    if (!d->size.isEmpty() && !isEmpty()) {
        // Scaled a few thousand times over and over, the content would get lost in numbers that no file can hold.
        const QTransform fitted = d->strokes->transform() * fitTransform(d->size, size, fitMode);
        if (isReadable(fitted))
            d->strokes->setTransform(fitted);
    }
    d->size = size;
    contentChanged();
    d->image = QImage();
    rebuild(d->frame());
}

void StrokeDrawing::restoreTransform(const QTransform &transform)
{
    if (transform == d->strokes->transform())
        return;
    d->strokes->setTransform(transform);
    contentChanged();
    rebuild(d->frame());
}

void StrokeDrawing::merge(const Drawing &other)
{
    if (other.type() != Type::Stroke)
        return;
    const auto &strokes = *static_cast<const StrokeDrawing &>(other).d->strokes;
    if (strokes.isEmpty())
        return;
    auto content = std::make_unique<CompoundStroke>(strokes);
    if (content->pushDown())
        addStroke(std::move(content));
}

bool StrokeDrawing::write(QDataStream &stream) const
{
    stream << d->size;
    d->strokes->write(stream);
    writeMarkedImage(stream, d->isShownInPart ? QImage() : d->image);
    return stream.status() == QDataStream::Ok;
}

bool StrokeDrawing::read(QDataStream &stream)
{
    StreamBudget budget;
    return read(stream, budget);
}

bool StrokeDrawing::read(QDataStream &stream, StreamBudget &budget)
{
    *d = Private();
    contentChanged();
    QSize size;
    stream >> size;
    if (stream.status() != QDataStream::Ok)
        return false;
    if (size.width() < 0 || size.height() < 0 || size.width() > maximumSide || size.height() > maximumSide)
        return refuse(stream);
    d->size = size;
    bool isWhole = d->strokes->read(stream, budget);
    // Without strokes there is no coverage, and without memory for it there is none either.
    const bool hasCoverage = !isEmpty() && budget.takeImage(coverageBytes(size));
    isWhole = isWhole && readMarkedImage(stream, d->image, hasCoverage ? size : QSize());
    if (hasCoverage && d->image.isNull())
        rebuildAsRead(budget);
    return isWhole;
}

// The strokes of a file may ask for more work than any hand could have put into them.
void StrokeDrawing::rebuildAsRead(StreamBudget &budget)
{
    budget.isUnrendered = lacksRenderer(*d->strokes);
    d->isShownInPart = budget.isUnrendered;
    if (budget.isUnrendered)
        return;
    d->isRationed = true;
    budget.drawingEffort -= rebuildWithin(budget.drawingEffort, d->frame());
    d->isRationed = d->isShownInPart;
}

} // namespace Model
