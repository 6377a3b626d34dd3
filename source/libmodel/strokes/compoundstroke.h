#pragma once

#include "libmodel/strokes/stroke.h"

#include <QPainterPath>
#include <QTransform>

#include <memory>
#include <vector>

namespace Model {

class LineQueue;
class ChangedTiles;
class Progress;
class Sight;
struct SightMasks;
class SingleStroke;
struct StreamBudget;

/// A group of strokes, oldest first, under one transform and two masks.
///
/// Moves, scalings and cuts change no stroke: they are a transform, a region taken away (the cut path) and a region to
/// which all is limited (the keep path), both in the compound's own coordinates. What is appended later must not come
/// under them, so the old content is wrapped first:
///
///     root { cut, a, b }  + c   ->   root { { cut, a, b }, c }
///
/// An eraser among the children takes away from those before it in the same compound, and from nothing else.
class CompoundStroke : public Stroke
{
public:
    /// The deepest nesting of compounds: read() accepts no deeper one, and where editing would go deeper, the lowest
    /// levels become bitmaps.
    static constexpr int maximumDepth = 2048;

    CompoundStroke();
    CompoundStroke(const CompoundStroke &other);
    CompoundStroke &operator=(const CompoundStroke &) = delete;
    ~CompoundStroke() override;

    /// Adds \a stroke as the newest child, on top of a wrapped old content where there are masks or a transform. Where
    /// there is no old content, transform and masks are of no use and are reset.
    /// \return false, with no change, for null and for what it cannot take, see canAppend().
    bool append(std::unique_ptr<Stroke> stroke);

    /// False where append() of \a stroke would nest deeper than maximumDepth, and the lowest levels cannot become
    /// bitmaps: they hold lines and there is no renderer, or it would take too long.
    [[nodiscard]] bool canAppend(const Stroke &stroke) const;

    /// Takes the newest child out and hands it over; null if there is none. Works on unwrapped content, before and
    /// after.
    std::unique_ptr<Stroke> removeLast();

    /// Takes back the wrapping of append() and pushDown() where nothing lies beside the wrapped content and there are
    /// no masks of its own: the look stays, the depth shrinks. Compounds that were appended as such are left alone, and
    /// so are those whose transform no file could hold then.
    void unwrap();

    [[nodiscard]] int count() const;                   ///< Number of children.
    [[nodiscard]] const Stroke &at(int index) const;   ///< The child at \a index, 0 being the oldest.
    [[nodiscard]] const QTransform &transform() const; ///< From own coordinates to those of the parent.
    [[nodiscard]] const QPainterPath &cutPath() const; ///< The region taken away, in own coordinates.
    [[nodiscard]] const QPainterPath &
    keepPath() const; ///< The region it is limited to, in own coordinates; empty: all.

    void setTransform(const QTransform &transform);

    /// Takes \a path (own coordinates) away from the present content. Where uniting it with the present cut would take
    /// long, the content is wrapped instead, with its transform. \return false, with no change, if there are no
    /// children or the wrapping is not possible, as with canAppend().
    bool addCut(const QPainterPath &path);

    /// Limits the present content to \a path (own coordinates); an empty path lifts the limit, but brings back nothing
    /// that was dropped.
    void setKeep(const QPainterPath &path);

    /// addCut() for what a user cuts out, with \a path in the parent's coordinates: what cannot be seen any more is
    /// left out of the tree, so that strokes do not become more with every cut, and groups that hold nothing but a
    /// group become one. Strokes out of \a reach are not looked at.
    ///
    /// A picture of the compound that is cut by the same path is one of what is left, but for \a changed, to which the
    /// difference is added. \return false, with no change, if nothing lies inside \a path, or as with addCut().
    bool takeAway(const QPainterPath &path, QRect reach, ChangedTiles &changed);

    /// setKeep() for what a user picks up, likewise. \return false if nothing lies inside \a path, or it can't be had
    /// as with pushDown(): the compound is empty then.
    bool limitTo(const QPainterPath &path, QRect reach, ChangedTiles &changed);

    /// Wraps the content in a child of its own if there is a transform, so that own and parent coordinates are the
    /// same. \return false, with no change, if that is not possible, as with canAppend().
    bool pushDown();

    /// Drops all children but the \a count oldest.
    void keepOldest(int count);

    /// Makes the whole tree one BitmapStroke of its look, with \a scale (at least 1) pixels of the bitmap per pixel of
    /// the parent's coordinates, each way. What lies outside of \a rect (the parent's coordinates), if that is valid,
    /// is lost. Transform and masks are gone then; without any ink the bitmap is an empty one.
    ///
    /// \a progress (may be null) is led through recursiveCount() steps, once for each band that is drawn at a time.
    /// \return false, with no change, if it was cancelled, and where the pixels cannot be made: there are lines and no
    /// renderer for them, or no memory.
    bool collapse(int scale, QRect rect, Progress *progress);

    /// What render() is known to make, so that nobody need render it again: coverage (QImage::Format_Alpha8) over a
    /// rectangle of the parent's coordinates, at one pixel per paper pixel. Ink outside of it is unknown. Null where
    /// nothing is known; every change of the compound forgets it. Copies have it too, files don't.
    [[nodiscard]] const QImage &picture() const;
    [[nodiscard]] QRect pictureRect() const;
    /// \a picture has the size of \a rect and holds what render() makes there, to the last bit.
    void setPicture(const QImage &picture, QRect rect);

    /// How many rows of \a rect (pixels of the target) render() draws at a time: all of them, unless groups within
    /// groups, which each take a scratch image of their own, would take too much memory.
    [[nodiscard]] int rowsAtOnce(QRect rect, const QTransform &transform, double renderScale) const;

    /// How many compounds lie within each other, this one included.
    [[nodiscard]] int nesting() const;

    /// Number of strokes in the tree: each stroke once, each compound, this one included, as one more.
    [[nodiscard]] int recursiveCount() const;

    [[nodiscard]] Type type() const override { return Type::Compound; }
    [[nodiscard]] std::unique_ptr<Stroke> clone() const override;
    /// Composites the group on what \a target holds. Scratch images have the size of what is drawn, never of \a target.
    QRect render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint textureOffset,
                 double renderScale) const override;
    /// As render() above, with a step of \a progress (may be null) for each stroke and each compound of the tree,
    /// recursiveCount() in all. \return a null rectangle, with \a target partly drawn, if it was cancelled.
    QRect render(QImage &target, QRect dirtyRect, const QTransform &transform, QPoint textureOffset, double renderScale,
                 Progress *progress) const;
    /// In the parent's coordinates. Erasers among the children don't count.
    [[nodiscard]] QRect boundingRect() const override;
    /// True if there are no children.
    [[nodiscard]] bool isEmpty() const override;
    /// \a path is in the parent's coordinates. Always succeeds.
    bool cutInside(const QPainterPath &path) override;
    /// \a path is in the parent's coordinates. Always succeeds.
    bool cutOutside(const QPainterPath &path) override;
    void write(QDataStream &stream) const override;

    /// Reads what write() has written into a new compound, with all its children.
    ///
    /// Children of unknown kinds are left out. \return false, with the stream's status set, for broken data: an early
    /// end, a count larger than what the stream still holds, numbers that are no coordinates, nesting deeper than
    /// maximumDepth, or bitmaps of a size that there is not. The children before the fault are kept
    /// then; compounds that broke off have no transform and no masks.
    bool read(QDataStream &stream);
    /// The same with no more images than \a budget allows; a bitmap without memory for its pixels has none.
    bool read(QDataStream &stream, StreamBudget &budget);

private:
    struct Private;
    struct Canvas;
    struct Pruning;

    /// What the scratch images that are there at the same time take.
    struct Scratch
    {
        qint64 bytes = 0;       ///< All of them.
        qint64 bytesPerRow = 0; ///< A row of each.

        void add(QRect rect);
    };

    bool readMasks(QDataStream &stream);
    void resetMasks();
    bool readChild(QDataStream &stream, StreamBudget &budget);
    bool addCutOnTop(const QPainterPath &path);
    bool cutChildren(const QPainterPath &path, bool (Stroke::*cut)(const QPainterPath &));
    void wrap();
    void contentAdded();
    void recompute();
    [[nodiscard]] QRect inkBounds(const Stroke &stroke) const;
    static void limitNesting(Stroke &child);
    void flattenBelow(int levels);
    [[nodiscard]] bool isAtMaximumDepth() const;
    [[nodiscard]] bool isWrappedByAppend() const;
    [[nodiscard]] bool canGoDeeper() const;
    [[nodiscard]] bool canFlattenBelow(int levels, qint64 &effortLeft) const;
    [[nodiscard]] Scratch scratchNeeded(QRect rect, const QTransform &transform, double renderScale) const;
    [[nodiscard]] bool shows(const Sight &outer, const QTransform &parentToPaper, qint64 &workLeft) const;
    [[nodiscard]] bool childrenShow(const Sight &sight, const QTransform &toPaper, qint64 &workLeft) const;
    [[nodiscard]] bool hasMasks() const;
    bool leaveOutUnseen(const Sight &outer, const QTransform &parentToPaper, Pruning &pruning);
    static bool staysInSight(Stroke &stroke, const Sight &sight, const QTransform &toPaper, std::vector<QRect> &inked,
                             Pruning &pruning, bool &isChanged);
    bool leaveOutChildren(const Sight &sight, const QTransform &toPaper, Pruning &pruning);
    void leaveOutMasks(const Sight &outer, const SightMasks &masks, const QTransform &toPaper, Pruning &pruning);
    void takeOnlyChildsPlace();
    [[nodiscard]] bool canTakePlaceOf(const Private &only) const;
    void maskInside(const QPainterPath &path, ChangedTiles &changed);
    [[nodiscard]] bool needsWrapForMask() const;
    [[nodiscard]] bool canTakeMask(const QPainterPath &path) const;
    [[nodiscard]] bool canUniteCutWith(const QPainterPath &path) const;
    [[nodiscard]] bool isApartFromCut(const QPainterPath &path) const;
    [[nodiscard]] bool isCutOfUse(const QPainterPath &cut) const;
    QRect drawBand(const Canvas &target, QRect rect) const;
    QRect drawOnBlank(const Canvas &canvas, QRect rect) const;
    QRect drawChildren(const Canvas &canvas, QRect rect) const;
    static QRect drawSingle(const Canvas &canvas, const SingleStroke &stroke, QRect rect, QRect touched,
                            LineQueue &lines);
    static QRect drawBitmap(const Canvas &canvas, const Stroke &stroke, QRect rect);
    static QRect drawCompound(const Canvas &canvas, const CompoundStroke &compound, QRect rect, QRect touched);

    std::unique_ptr<Private> d;
};

} // namespace Model
