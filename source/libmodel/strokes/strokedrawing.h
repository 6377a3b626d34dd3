#pragma once

#include "libmodel/strokes/drawing.h"

#include <QRect>

#include <memory>

class QDataStream;
class QPainter;
class QPainterPath;
class QTransform;

namespace Model {

class CompoundStroke;
class InkTiles;
class Progress;
class SingleStroke;
class Stroke;
struct StreamBudget;

/// A drawing made of strokes, held twice: as the tree of strokes, which is the truth, and flattened to a coverage image
/// of the frame's size, which is what gets shown.
///
/// It has no colour: that comes with each paint, as a table of 256 entries for the 256 values of coverage. While it is
/// empty it holds no image.
class StrokeDrawing : public Drawing
{
public:
    /// The longest side of a frame that read() accepts, in pixels.
    static constexpr int maximumSide = 32768;

    /// An empty drawing for a frame of \a size (pixels).
    explicit StrokeDrawing(QSize size);
    ~StrokeDrawing() override;

    /// True if there are no strokes.
    [[nodiscard]] bool isEmpty() const;

    /// The coverage, QImage::Format_Alpha8 of size(); null if the drawing is empty.
    [[nodiscard]] const QImage &image() const;

    /// The part of the frame outside of which there is certainly no coverage.
    [[nodiscard]] QRect inkedRect() const;

    /// The map of image(): which parts of it are empty for sure. Made when it is asked for, and kept.
    [[nodiscard]] const InkTiles &ink() const;

    /// Size of the frame in pixels.
    [[nodiscard]] QSize size() const;

    /// The tree of strokes.
    [[nodiscard]] const CompoundStroke &strokes() const;

    /// Adds \a stroke on top. A single stroke's own image, if it has one, is taken over as it is.
    ///
    /// \return false, and no change, for null, for an empty stroke, for an eraser on an empty drawing, or for
    /// what CompoundStroke::canAppend() says no to.
    bool addStroke(std::unique_ptr<Stroke> stroke);

    /// Takes the newest stroke out and hands it over; null if there is none.
    std::unique_ptr<Stroke> removeLastStroke();

    /// The part of the frame that the last addStroke() or removeLastStroke() that did something may have changed.
    [[nodiscard]] QRect touchedRect() const;

    /// Takes away all that lies inside \a path (paper coordinates). \return false, with no change, if nothing does.
    bool cutPath(const QPainterPath &path);

    /// A copy of what lies inside \a path (paper coordinates), or of everything for an empty path, as a stroke; an
    /// empty one where nothing lies there, and where the content is nested so deeply that it can't be had (see
    /// CompoundStroke::pushDown()). It knows its CompoundStroke::picture() within the frame, made of what image()
    /// shows, unless isShownInPart().
    [[nodiscard]] std::unique_ptr<CompoundStroke> extract(const QPainterPath &path) const;

    /// Makes the strokes one bitmap, see CompoundStroke::collapse(). \return false, with no change, if that did not
    /// happen.
    bool collapse(int scale, QRect rect, Progress *progress);

    /// Makes the coverage in \a rect (pixels) anew from the strokes; in all of the frame where that is needed to have
    /// it of one piece. Takes no longer than isShownInPart() tells.
    void rebuild(QRect rect);

    /// True if image() does not show all of the strokes: drawing them would take longer than any hand can have made it
    /// take, so that only the oldest are there, or there is no renderer for them. Such a drawing is written without its
    /// coverage, for the next reader to try.
    [[nodiscard]] bool isShownInPart() const;

    /// Draws \a rect (pixels) of the drawing in the colours of \a colorTable, without copying the coverage.
    void paint(QPainter *painter, const QList<QRgb> &colorTable, QRect rect) const;

    /// As paint(), with \a stroke in progress on top or, if it is an eraser, taken away.
    void paintWithActiveStroke(QPainter *painter, const QList<QRgb> &colorTable, QRect rect,
                               const SingleStroke &stroke) const;

    /// Puts a transform of the content back that rounding has changed, and makes the coverage anew with it. Cheap when
    /// it is the present one to the last bit.
    void restoreTransform(const QTransform &transform);

    /// Writes size, strokes and, unless isShownInPart(), coverage. \return false if the stream took an error.
    bool write(QDataStream &stream) const;

    /// Reads what write() has written in the place of the present content.
    ///
    /// The coverage is made from the strokes where the stream has none that fits, as far as isShownInPart() tells, if
    /// there is a renderer; without one it stays null. \return false, with the stream's status set, for broken data
    /// (see CompoundStroke::read()) or a size beyond maximumSide. What came before the fault is kept: the drawing can
    /// be used as it is, and is empty if there was nothing.
    bool read(QDataStream &stream);
    /// The same with no more images than \a budget allows, which tells what it fell short of. A drawing whose coverage
    /// there is no memory for has none.
    bool read(QDataStream &stream, StreamBudget &budget);

    [[nodiscard]] Type type() const override { return Type::Stroke; }
    [[nodiscard]] std::shared_ptr<Drawing> clone() const override;
    [[nodiscard]] QImage thumbnail(QSize size, const QList<QRgb> &colorTable) override;
    void clearThumbnails() override;
    void resize(QSize size, MR::FitMode fitMode) override;
    /// Adds the strokes of \a other as one; does nothing if that is empty or no stroke drawing.
    void merge(const Drawing &other) override;

private:
    struct Private;

    StrokeDrawing(const StrokeDrawing &other);
    bool flattenPicture(Stroke &stroke);
    void flatten(const Stroke &stroke);
    void flattenSingle(SingleStroke &stroke);
    void contentChanged();
    void rebuildAsRead(StreamBudget &budget);
    /// As rebuild(), with no more work than \a limit. \return what it has been.
    qint64 rebuildWithin(qint64 limit, QRect rect);

    std::unique_ptr<Private> d;
};

} // namespace Model
