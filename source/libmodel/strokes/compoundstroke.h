#pragma once

#include "libmodel/strokes/stroke.h"

#include <QPainterPath>
#include <QTransform>

#include <memory>
#include <vector>

namespace Model {

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

    /// Adds \a stroke as the newest child, on top of a wrapped old content where there are a cut or a transform. Where
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

    /// Wraps the content in a child of its own if there is a transform, so that own and parent coordinates are the
    /// same. \return false, with no change, if that is not possible, as with canAppend().
    bool pushDown();

    /// Drops all children but the \a count oldest.
    void keepOldest(int count);

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
    void recompute();
    void limitNesting();
    void flattenBelow(int levels);
    [[nodiscard]] bool isAtMaximumDepth() const;
    [[nodiscard]] bool isWrappedByAppend() const;
    [[nodiscard]] bool canGoDeeper() const;
    [[nodiscard]] bool canFlattenBelow(int levels, qint64 &effortLeft) const;
    [[nodiscard]] Scratch scratchNeeded(QRect rect, const QTransform &transform, double renderScale) const;
    [[nodiscard]] bool isCutOfUse(const QPainterPath &cut) const;
    QRect renderBand(QImage &target, QRect rect, const QTransform &transform, QPoint textureOffset,
                     double renderScale) const;
    QRect drawOnBlank(const Canvas &canvas, QRect rect) const;
    QRect drawChildren(const Canvas &canvas, QRect rect) const;
    static QRect drawSingle(const Canvas &canvas, const SingleStroke &stroke, QRect rect, QRect touched);
    static QRect drawCompound(const Canvas &canvas, const CompoundStroke &compound, QRect rect, QRect touched);

    std::unique_ptr<Private> d;
};

} // namespace Model
