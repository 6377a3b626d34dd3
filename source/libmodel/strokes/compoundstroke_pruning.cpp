#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/changedtiles.h"
#include "libmodel/strokes/compoundstroke_p.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/segment.h"
#include "libmodel/strokes/sight.h"
#include "libmodel/strokes/singlestroke.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace Model {

namespace {

constexpr double paperScale = 1.0;
const QRect everywhere(QPoint(-coordinateLimit, -coordinateLimit), QPoint(coordinateLimit, coordinateLimit));

QRect inkOf(QRect bounds, const QTransform &toPaper)
{
    return grownByRim(mappedBounds(toPaper, bounds), paperScale);
}

/// Calls \a meets (a QRect) for the segments of \a stroke. \return true as soon as that is.
template<typename Meets>
bool anySegment(const SingleStroke &stroke, const QTransform &toPaper, qint64 &workLeft, const Meets &meets)
{
    const auto &segments = stroke.segments();
    return std::any_of(segments.begin(), segments.end(), [&](const auto &segment) {
        const QRect rect = inkOf(segment->boundingRect(), toPaper);
        workLeft -= std::min(rect.height(), coordinateLimit) + 1;
        return meets(rect);
    });
}

bool isEraser(const Stroke &stroke)
{
    return stroke.type() == Stroke::Type::Single && static_cast<const SingleStroke &>(stroke).isEraser();
}

/// Is each pixel of the paper made of some pixels of \a bitmap that no other pixel has a part in?
bool isMadeOfWholePixels(const BitmapStroke &bitmap, const QTransform &toPaper)
{
    const QSize pixels = bitmap.image().size();
    const QSize size = bitmap.boundingRect().size();
    return toPaper.type() <= QTransform::TxTranslate && toPaper.dx() == std::floor(toPaper.dx()) &&
           toPaper.dy() == std::floor(toPaper.dy()) && !size.isEmpty() && pixels.width() % size.width() == 0 &&
           size * (pixels.width() / size.width()) == pixels;
}

QPainterPath pathOf(const QRectF &rect)
{
    QPainterPath path;
    path.addRect(rect);
    return path;
}

} // namespace

/// What leaving out goes by, and what it tells.
struct CompoundStroke::Pruning
{
    ChangedTiles &changed;
    /// What lies beside these pixels, and so on one side of the path, is left as it is.
    PixelSpans rim;
    QRect domain;
    /// Bitmaps are cut down to the bounds of this, in paper coordinates; null: they stay as they are.
    const QPainterPath *crop = nullptr;
    /// Looking longer is not worth what it saves: what has not been looked at stays.
    qint64 workLeft = qint64(1) << 23;
    /// Nor are groups deeper down looked at: there is only so much stack, and what a hand did last lies on top.
    int levelsLeft = maximumDepth / 4;
    bool isCropped = false;

    [[nodiscard]] bool isOnOneSide(QRect rect) const { return domain.contains(rect) && !rim.meets(rect); }

    /// Tells that \a stroke goes, which \a sight does not see but may trace.
    void goes(const SingleStroke &stroke, const QTransform &toPaper, const Sight &sight)
    {
        anySegment(stroke, toPaper, workLeft, [&](QRect rect) {
            // An eraser that goes gives pixels back that had nothing.
            if (stroke.isEraser())
                sight.traced().forEach(rect, [this](QRect span) { changed.add(span); });
            else
                changed.addLoss(sight.traced(), rect);
            return false;
        });
    }

    void cropBitmap(BitmapStroke &bitmap, const QTransform &toPaper)
    {
        if (!crop || !toPaper.isInvertible())
            return;
        const QRect before = bitmap.boundingRect();
        bitmap.cutOutside(pathOf(toPaper.inverted().map(*crop).boundingRect()));
        if (bitmap.boundingRect() == before)
            return;
        isCropped = true;
        // Pixels that are scaled or turned are mixed from others, which begin elsewhere now.
        if (!isMadeOfWholePixels(bitmap, toPaper))
            changed.add(inkOf(before, toPaper));
    }
};

bool CompoundStroke::shows(const Sight &outer, const QTransform &parentToPaper, qint64 &workLeft) const
{
    const QTransform toPaper = d->transform * parentToPaper;
    if (!hasMasks())
        return childrenShow(outer, toPaper, workLeft);
    const QRect around = inkOf(boundingRect(), parentToPaper);
    return childrenShow(outer.under(outer.masks(d->keepPath, d->cutPath, toPaper, around, workLeft)), toPaper,
                        workLeft);
}

bool CompoundStroke::childrenShow(const Sight &sight, const QTransform &toPaper, qint64 &workLeft) const
{
    const auto meets = [&sight](QRect rect) { return sight.sees(rect) || sight.traces(rect); };
    for (const auto &stroke : d->strokes) {
        const QRect rect = inkOf(stroke->boundingRect(), toPaper);
        workLeft -= std::min(rect.height(), coordinateLimit) + 1;
        if (workLeft < 0)
            return true;
        if (rect.isEmpty() || !meets(rect))
            continue;
        bool isShown = true;
        if (stroke->type() == Type::Compound) {
            isShown = static_cast<const CompoundStroke &>(*stroke).shows(sight, toPaper, workLeft);
        } else if (stroke->type() == Type::Single) {
            const auto &single = static_cast<const SingleStroke &>(*stroke);
            isShown = single.isPen() && anySegment(single, toPaper, workLeft, meets);
        }
        if (isShown)
            return true;
    }
    return false;
}

bool CompoundStroke::hasMasks() const
{
    return !d->keepPath.isEmpty() || !d->cutPath.isEmpty();
}

bool CompoundStroke::leaveOutUnseen(const Sight &outer, const QTransform &parentToPaper, Pruning &pruning)
{
    if (pruning.levelsLeft == 0)
        return false;
    --pruning.levelsLeft;
    const QTransform toPaper = d->transform * parentToPaper;
    bool isChanged = false;
    if (hasMasks()) {
        const QRect around = inkOf(boundingRect(), parentToPaper);
        const SightMasks masks = outer.masks(d->keepPath, d->cutPath, toPaper, around, pruning.workLeft);
        isChanged = leaveOutChildren(outer.under(masks), toPaper, pruning);
        if (isChanged)
            leaveOutMasks(outer, masks, toPaper, pruning);
    } else {
        isChanged = leaveOutChildren(outer, toPaper, pruning);
    }
    ++pruning.levelsLeft;
    if (isChanged) {
        takeOnlyChildsPlace();
        recompute();
    }
    return isChanged;
}

bool CompoundStroke::leaveOutChildren(const Sight &sight, const QTransform &toPaper, Pruning &pruning)
{
    std::vector<QRect> inked;
    bool isChanged = false;
    for (auto &stroke : d->strokes) {
        if (pruning.workLeft < 0)
            break;
        if (!staysInSight(*stroke, sight, toPaper, inked, pruning, isChanged)) {
            stroke.reset();
            isChanged = true;
        }
    }
    std::erase(d->strokes, nullptr);
    return isChanged;
}

// A mask that has nothing to hide any more, but what others hide as well, would be drawn for nothing.
void CompoundStroke::leaveOutMasks(const Sight &outer, const SightMasks &masks, const QTransform &toPaper,
                                   Pruning &pruning)
{
    if (masks.taken && !childrenShow(outer.changedByCut(masks), toPaper, pruning.workLeft))
        d->cutPath = QPainterPath();
    if (masks.kept && !childrenShow(outer.changedByKeep(masks), toPaper, pruning.workLeft))
        d->keepPath = QPainterPath();
}

bool CompoundStroke::staysInSight(Stroke &stroke, const Sight &sight, const QTransform &toPaper,
                                  std::vector<QRect> &inked, Pruning &pruning, bool &isChanged)
{
    const QRect rect = inkOf(stroke.boundingRect(), toPaper);
    pruning.workLeft -= std::min(rect.height(), coordinateLimit) + 1;
    const bool isSeen = sight.sees(rect);
    if (!isSeen && !sight.traces(rect))
        return false;
    if (pruning.isOnOneSide(rect) && !isEraser(stroke)) {
        inked.push_back(rect);
        return true;
    }
    if (stroke.type() == Type::Compound) {
        auto &compound = static_cast<CompoundStroke &>(stroke);
        isChanged = compound.leaveOutUnseen(sight, toPaper, pruning) || isChanged;
        if (compound.boundingRect().isEmpty())
            return false;
    } else if (stroke.type() == Type::Bitmap) {
        auto &bitmap = static_cast<BitmapStroke &>(stroke);
        if (!isSeen) {
            pruning.changed.addLoss(sight.traced(), rect);
            return false;
        }
        pruning.isCropped = false;
        pruning.cropBitmap(bitmap, toPaper);
        isChanged = isChanged || pruning.isCropped;
        if (bitmap.isEmpty())
            return false;
    } else {
        const auto &single = static_cast<const SingleStroke &>(stroke);
        const auto lies = [&rect](QRect other) { return other.intersects(rect); };
        if (single.isEraser()) {
            constexpr int comparisonsPerStep = 8;
            pruning.workLeft -= qint64(inked.size()) / comparisonsPerStep;
            if (std::none_of(inked.begin(), inked.end(), lies))
                return false;
        }
        if (!isSeen || !anySegment(single, toPaper, pruning.workLeft, [&](QRect part) { return sight.sees(part); })) {
            pruning.goes(single, toPaper, sight);
            return false;
        }
        if (single.isEraser())
            return true;
    }
    inked.push_back(rect);
    return true;
}

// Where one group holds nothing but another, one will often do, and the same pixels come of it.
void CompoundStroke::takeOnlyChildsPlace()
{
    while (d->strokes.size() == 1 && d->strokes.front()->type() == Type::Compound) {
        auto &only = *static_cast<CompoundStroke &>(*d->strokes.front()).d;
        if (!canTakePlaceOf(only))
            return;
        if (d->keepPath.isEmpty())
            d->keepPath = only.keepPath;
        if (d->cutPath.isEmpty())
            d->cutPath = only.cutPath;
        else
            d->cutPath.addPath(only.cutPath);
        if (only.transform != QTransform())
            d->transform = only.transform;
        // The emptied child goes only after its content is safe here.
        auto content = std::exchange(only.strokes, {});
        d->strokes = std::move(content);
    }
}

// A cut comes before what is kept, and two cuts that do not touch are like one.
bool CompoundStroke::canTakePlaceOf(const Private &only) const
{
    constexpr int mostElements = 1 << 12;
    const QTransform untouched; // to the last bit: isIdentity() is not that strict
    const bool onlyHasMasks = !only.keepPath.isEmpty() || !only.cutPath.isEmpty();
    if (only.transform != untouched)
        return !hasMasks() && d->transform == untouched;
    if (!hasMasks() || !onlyHasMasks)
        return true;
    const bool isSmall = d->cutPath.elementCount() + only.cutPath.elementCount() < mostElements;
    return only.keepPath.isEmpty() && (d->cutPath.isEmpty() || (isSmall && isApartFromCut(only.cutPath)));
}

bool CompoundStroke::needsWrapForMask() const
{
    return !d->transform.isIdentity() || !d->keepPath.isEmpty();
}

bool CompoundStroke::takeAway(const QPainterPath &path, QRect reach, ChangedTiles &changed)
{
    const QRect bounds = alignedBounds(path.boundingRect());
    const QRect domain = grownByRim(boundingRect(), paperScale) & reach;
    Pruning pruning{changed, {}, domain};
    const auto taken = PathPixels::of(path, QTransform(), domain, pruning.workLeft);
    if (!taken) {
        changed.add(bounds | alignedBounds(d->cutPath.boundingRect()));
        return pushDown() && addCut(path);
    }
    const Sight lost(taken->inside, taken->full(), domain, bounds);
    if (!shows(lost, QTransform(), pruning.workLeft) || !canTakeMask(path))
        return false;
    const PixelSpans all(domain);
    pruning.rim = taken->rim;
    leaveOutUnseen(Sight(all.without(taken->inside), all.without(taken->full()), domain, everywhere), QTransform(),
                   pruning);
    if (!isEmpty() && shows(lost, QTransform(), pruning.workLeft))
        maskInside(path, changed);
    else
        changed.addLoss(taken->rim, domain);
    return true;
}

bool CompoundStroke::canTakeMask(const QPainterPath &path) const
{
    return (!needsWrapForMask() && canUniteCutWith(path)) || canGoDeeper();
}

void CompoundStroke::maskInside(const QPainterPath &path, ChangedTiles &changed)
{
    if (needsWrapForMask())
        wrap();
    const QPainterPath oldCut = d->cutPath;
    if (oldCut.isEmpty() || isApartFromCut(path)) {
        // All children that would go have gone.
        d->cutPath.setFillRule(path.fillRule());
        d->cutPath.addPath(path);
        recompute();
    } else {
        addCut(path);
        changed.add(alignedBounds(oldCut.boundingRect()) | alignedBounds(path.boundingRect()));
    }
    if (d->cutPath.isEmpty())
        changed.add(alignedBounds(path.boundingRect()));
}

bool CompoundStroke::limitTo(const QPainterPath &path, QRect reach, ChangedTiles &changed)
{
    constexpr int rim = 1;
    const QRect bounds = alignedBounds(path.boundingRect()).adjusted(-rim, -rim, rim, rim);
    const QRect domain = grownByRim(boundingRect(), paperScale) & reach & bounds;
    Pruning pruning{changed, {}, domain, &path};
    const auto kept = PathPixels::of(path, QTransform(), domain, pruning.workLeft);
    if (!kept) {
        changed.add(bounds);
        if (needsWrapForMask() && !canGoDeeper()) {
            keepOldest(0);
            return false;
        }
        if (needsWrapForMask())
            wrap();
        setKeep(path);
        return !isEmpty();
    }
    pruning.rim = kept->rim;
    leaveOutUnseen(Sight(kept->inside, kept->touched(), domain, bounds), QTransform(), pruning);
    const PixelSpans all(domain);
    const Sight lost(all.without(kept->inside), all.without(kept->touched()), domain, everywhere);
    if (boundingRect().isEmpty() || (needsWrapForMask() && !canGoDeeper())) {
        keepOldest(0);
    } else if (shows(lost, QTransform(), pruning.workLeft)) {
        if (needsWrapForMask())
            wrap();
        d->keepPath = path;
        recompute();
    } else {
        changed.addLoss(kept->rim, domain);
    }
    return !isEmpty();
}

} // namespace Model
