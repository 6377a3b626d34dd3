#include "libmodel/strokes/compoundstroke.h"

#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke_p.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/pathwork.h"
#include "libmodel/strokes/singlestroke.h"

#include <QDataStream>

#include <algorithm>
#include <utility>

namespace Model {

namespace {

bool isEraser(const Stroke &stroke)
{
    return stroke.type() == Stroke::Type::Single && static_cast<const SingleStroke &>(stroke).isEraser();
}

} // namespace

CompoundStroke::CompoundStroke() : d(std::make_unique<Private>())
{
}

CompoundStroke::CompoundStroke(const CompoundStroke &other) : Stroke(other), d(std::make_unique<Private>())
{
    d->strokes.reserve(other.d->strokes.size());
    for (const auto &stroke : other.d->strokes)
        d->strokes.push_back(stroke->clone());
    d->boundingRect = other.d->boundingRect;
    d->cutPath = other.d->cutPath;
    d->keepPath = other.d->keepPath;
    d->transform = other.d->transform;
    d->isWrapper = other.d->isWrapper;
    d->picture = other.d->picture;
    d->pictureRect = other.d->pictureRect;
}

CompoundStroke::~CompoundStroke() = default;

std::unique_ptr<Stroke> CompoundStroke::clone() const
{
    return std::make_unique<CompoundStroke>(*this);
}

bool CompoundStroke::append(std::unique_ptr<Stroke> stroke)
{
    if (!stroke || !canAppend(*stroke))
        return false;
    if (isEmpty())
        resetMasks();
    else if (isWrappedByAppend())
        wrap();
    d->strokes.push_back(std::move(stroke));
    contentAdded();
    return true;
}

// The newest child alone: drawings have many thousands, and looking at all of them for each one would take minutes.
void CompoundStroke::contentAdded()
{
    Q_ASSERT(!hasMasks());
    setPicture(QImage(), QRect());
    limitNesting(*d->strokes.back());
    d->boundingRect |= inkBounds(*d->strokes.back());
}

std::unique_ptr<Stroke> CompoundStroke::removeLast()
{
    unwrap();
    if (d->strokes.empty())
        return nullptr;
    auto last = std::move(d->strokes.back());
    d->strokes.pop_back();
    // What did not reach to any side of the bounds leaves them as they are.
    constexpr int within = 1;
    const QRect others = d->boundingRect.adjusted(within, within, -within, -within);
    const QRect bounds = inkBounds(*last);
    if (hasMasks() || !(bounds.isEmpty() || others.contains(bounds)))
        recompute();
    else
        setPicture(QImage(), QRect());
    unwrap();
    return last;
}

// Of a child, in the parent's coordinates. An eraser adds no ink.
QRect CompoundStroke::inkBounds(const Stroke &stroke) const
{
    return isEraser(stroke) ? QRect() : mappedBounds(d->transform, stroke.boundingRect());
}

void CompoundStroke::unwrap()
{
    while (d->strokes.size() == 1 && d->cutPath.isEmpty() && d->keepPath.isEmpty()) {
        Stroke &only = *d->strokes.front();
        if (only.type() != Type::Compound || !static_cast<CompoundStroke &>(only).d->isWrapper)
            return;
        const QTransform together = static_cast<CompoundStroke &>(only).transform() * d->transform;
        if (!isReadable(together))
            return;
        auto content = std::move(static_cast<CompoundStroke &>(only).d);
        content->transform = together;
        // This compound stays what it is to its own parent.
        content->isWrapper = d->isWrapper;
        // The emptied child goes only after its content is safe here.
        const auto shell = std::exchange(d, std::move(content));
        recompute();
    }
}

void CompoundStroke::resetMasks()
{
    d->cutPath = QPainterPath();
    d->keepPath = QPainterPath();
    d->transform = QTransform();
}

int CompoundStroke::count() const
{
    return int(d->strokes.size());
}

const Stroke &CompoundStroke::at(int index) const
{
    Q_ASSERT(index >= 0 && index < count());
    return *d->strokes[size_t(index)];
}

const QTransform &CompoundStroke::transform() const
{
    return d->transform;
}

const QPainterPath &CompoundStroke::cutPath() const
{
    return d->cutPath;
}

const QPainterPath &CompoundStroke::keepPath() const
{
    return d->keepPath;
}

void CompoundStroke::setTransform(const QTransform &transform)
{
    d->transform = transform;
    recompute();
}

bool CompoundStroke::addCut(const QPainterPath &path)
{
    if (d->strokes.empty())
        return false;
    if (!canUniteCutWith(path))
        return addCutOnTop(path);
    if (isApartFromCut(path))
        d->cutPath.addPath(path);
    else
        d->cutPath = d->cutPath.united(path);
    // A child that none of two cuts covers alone may go where both are. One that stays though nobody sees it does no
    // harm.
    constexpr qint64 longestSearch = 1 << 24; // path elements looked at
    const bool isQuick = qint64(d->cutPath.elementCount()) * recursiveCount() <= longestSearch;
    const QPainterPath wholeCut = isQuick ? d->cutPath : path;
    return cutChildren(wholeCut, &Stroke::cutInside);
}

bool CompoundStroke::canUniteCutWith(const QPainterPath &path) const
{
    return isUnitedQuickly(d->cutPath, path);
}

// Uniting may make other curves of the same line, which have other pixels at their rim.
bool CompoundStroke::isApartFromCut(const QPainterPath &path) const
{
    const QRect own = alignedBounds(d->cutPath.boundingRect());
    const QRect other = alignedBounds(path.boundingRect());
    return d->cutPath.fillRule() == path.fillRule() && !own.isEmpty() && !other.isEmpty() && !own.intersects(other);
}

bool CompoundStroke::addCutOnTop(const QPainterPath &path)
{
    QPainterPath ownPath = path;
    if (!d->cutPath.isEmpty()) {
        if (!canGoDeeper())
            return false;
        ownPath = d->transform.map(path);
        wrap();
    }
    d->cutPath = ownPath;
    return cutChildren(ownPath, &Stroke::cutInside);
}

void CompoundStroke::setKeep(const QPainterPath &path)
{
    d->keepPath = path;
    if (path.isEmpty())
        recompute();
    else
        cutChildren(path, &Stroke::cutOutside);
}

bool CompoundStroke::cutInside(const QPainterPath &path)
{
    return cutChildren(d->transform.inverted().map(path), &Stroke::cutInside);
}

bool CompoundStroke::cutOutside(const QPainterPath &path)
{
    return cutChildren(d->transform.inverted().map(path), &Stroke::cutOutside);
}

bool CompoundStroke::cutChildren(const QPainterPath &path, bool (Stroke::*cut)(const QPainterPath &))
{
    // Finding out what a rich path leaves over takes longer than drawing it under the mask, which hides it.
    if (canTestContainment(path)) {
        for (const auto &stroke : d->strokes)
            (*stroke.*cut)(path);
    } else if (cut == &Stroke::cutOutside) {
        QPainterPath around;
        around.addRect(path.controlPointRect());
        for (const auto &stroke : d->strokes)
            stroke->cutOutside(around);
    }
    std::erase_if(d->strokes, [](const auto &stroke) { return stroke->isEmpty(); });
    recompute();
    return true;
}

void CompoundStroke::wrap()
{
    auto content = std::make_unique<CompoundStroke>();
    std::swap(d, content->d);
    d->isWrapper = std::exchange(content->d->isWrapper, true);
    d->strokes.push_back(std::move(content));
    limitNesting(*d->strokes.back());
    recompute();
}

void CompoundStroke::keepOldest(int count)
{
    d->strokes.resize(size_t(std::clamp(count, 0, this->count())));
    recompute();
}

bool CompoundStroke::pushDown()
{
    if (d->transform.isIdentity())
        return true;
    if (!canGoDeeper())
        return false;
    wrap();
    return true;
}

void CompoundStroke::recompute()
{
    setPicture(QImage(), QRect());
    QRect bounds;
    for (const auto &stroke : d->strokes)
        bounds |= inkBounds(*stroke);
    if (!d->keepPath.isEmpty()) {
        const QPainterPath keep = d->transform.map(d->keepPath);
        if (canTestContainment(keep) && keep.contains(QRectF(bounds)))
            d->keepPath = QPainterPath();
        else
            bounds &= alignedBounds(keep.boundingRect());
    }
    d->boundingRect = bounds.isEmpty() ? QRect() : bounds;

    if (d->cutPath.isEmpty())
        return;
    if (!isCutOfUse(d->transform.map(d->cutPath)))
        d->cutPath = QPainterPath();
}

// A mask of no use does no harm, so where finding out would take long, it stays.
bool CompoundStroke::isCutOfUse(const QPainterPath &cut) const
{
    constexpr qint64 longestSearch = 1 << 18; // path elements looked at
    const QRectF reach = cut.controlPointRect();
    qint64 looked = 0;
    for (const auto &stroke : d->strokes) {
        const QRectF bounds(mappedBounds(d->transform, stroke->boundingRect()));
        if (!reach.intersects(bounds))
            continue;
        looked += cut.elementCount();
        if (looked > longestSearch || cut.intersects(bounds))
            return true;
    }
    return false;
}

int CompoundStroke::recursiveCount() const
{
    int result = 1;
    for (const auto &stroke : d->strokes) {
        const bool isCompound = stroke->type() == Type::Compound;
        result += isCompound ? static_cast<const CompoundStroke &>(*stroke).recursiveCount() : 1;
    }
    return result;
}

QRect CompoundStroke::boundingRect() const
{
    return d->boundingRect;
}

bool CompoundStroke::isEmpty() const
{
    return d->strokes.empty();
}

void CompoundStroke::write(QDataStream &stream) const
{
    stream << qint64(d->strokes.size());
    for (const auto &stroke : d->strokes) {
        stream << qint32(stroke->type());
        stroke->write(stream);
    }
    stream << d->cutPath << d->keepPath << d->transform;
}

bool CompoundStroke::read(QDataStream &stream)
{
    StreamBudget budget;
    return read(stream, budget);
}

bool CompoundStroke::read(QDataStream &stream, StreamBudget &budget)
{
    qint64 count = 0;
    if (budget.depth >= maximumDepth)
        return refuse(stream);
    if (!readCount(stream, count, int(sizeof(qint32))))
        return false;
    ++budget.depth;
    d->strokes.clear();
    bool isWhole = true;
    for (qint64 i = 0; i < count && isWhole; ++i)
        isWhole = readChild(stream, budget);
    --budget.depth;
    isWhole = isWhole && readMasks(stream);
    recompute();
    return isWhole;
}

bool CompoundStroke::readMasks(QDataStream &stream)
{
    QTransform transform;
    if (!readPath(stream, d->cutPath) || !readPath(stream, d->keepPath) || !readTransform(stream, transform)) {
        resetMasks();
        return false;
    }
    d->transform = transform;
    return true;
}

bool CompoundStroke::readChild(QDataStream &stream, StreamBudget &budget)
{
    qint32 type = 0;
    stream >> type;
    if (stream.status() != QDataStream::Ok)
        return false;
    switch (type) {
    case int(Type::Single): {
        auto stroke = std::make_unique<SingleStroke>(nullptr);
        if (!stroke->read(stream))
            return false;
        d->strokes.push_back(std::move(stroke));
        return true;
    }
    case int(Type::Compound): {
        auto stroke = std::make_unique<CompoundStroke>();
        const bool isWhole = stroke->read(stream, budget);
        if (isWhole || !stroke->isEmpty())
            d->strokes.push_back(std::move(stroke));
        return isWhole;
    }
    case int(Type::Bitmap): {
        auto stroke = std::make_unique<BitmapStroke>();
        if (!stroke->read(stream, budget))
            return false;
        d->strokes.push_back(std::move(stroke));
        return true;
    }
    default:
        return true;
    }
}

} // namespace Model
