// Clips put together byte by byte, with every defect that somebody else's clipboard may have.

#include "libmodel/files/blockbuilder.h"

#include "libmodel/files/drawingclipreader.h"
#include "libmodel/files/memorybudget.h"
#include "libmodel/layers/layer.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/watchedprogress.h"

#include <QDataStream>
#include <QElapsedTimer>
#include <QTest>

#include <limits>

using namespace Model;
using namespace TestSupport;

namespace {

constexpr QSize frame(64, 48);
constexpr int original = 0;
constexpr int hold = 1;
constexpr int distantClone = 2;
constexpr bool withDrawing = true;
constexpr bool knownBefore = false;

QByteArray identifier(int number)
{
    return QUuid(uint(number), 1, 2, 3, 4, 5, 6, 7, 8, 9, 10).toRfc4122();
}

QUuid uuid(int number)
{
    return QUuid::fromRfc4122(identifier(number));
}

/// A drawing in a frame of \a width by 48 with one rectangle of ink at (4, 4), 4 by 2 pixels, and no coverage.
QByteArray strokes(int width = frame.width())
{
    return BlockBuilder()
        .size(width, frame.height())
        .i64(1)
        .i32(2)
        .rect(4, 4, 7, 5)
        .i32(2)
        .rle(4, 2, QByteArray::fromHex("0600010301320a"))
        .plainCompoundEnd()
        .i32(-1)
        .bytes();
}

QByteArray picture(const QImage &image)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << image;
    return bytes;
}

/// A frame with the length in front.
QByteArray block(int kind, const QByteArray &copyId, bool hasDrawing, const QByteArray &drawing = {})
{
    const QByteArray content = BlockBuilder().i32(kind).raw(copyId).u8(hasDrawing ? 1 : 0).raw(drawing).bytes();
    return BlockBuilder().i32(content.size()).raw(content).bytes();
}

QByteArray clip(int layerType, int count, const QByteArray &blocks)
{
    return BlockBuilder().i32(layerType).i32(count).raw(blocks).bytes();
}

QByteArray oneDrawing()
{
    return clip(Layer::Stroke, 1, block(original, identifier(1), withDrawing, strokes()));
}

bool knowsNothing(const QUuid &)
{
    return false;
}

QList<DrawingClip::Frame> read(const QByteArray &bytes)
{
    return DrawingClipReader(bytes).read(frame, knowsNothing).frames;
}

const StrokeDrawing *strokesOf(const DrawingClip::Frame &told)
{
    return dynamic_cast<const StrokeDrawing *>(told.drawing.get());
}

} // namespace

class tst_DrawingClipReader : public QObject
{
    Q_OBJECT

private slots:
    void framesComeWithKindIdentifierAndDrawing();
    void picturesAreRead();
    void blankPictureIsADrawing();
    void drawingOfAnotherSizeIsBroughtToTheFrame();
    void drawingIsReadOnce();
    void drawingOfAHoldIsNotRead();
    void holdAtTheBeginningNeedsItsDrawing();
    void knownDrawingIsNotRead();
    void brokenClipIsRefused_data();
    void brokenClipIsRefused();
    void clipCutShortAnywhereIsRefused();
    void layerTypeIsToldByTheHead();
    void picturesBeyondTheMemoryAreRefused();
    void strokesBeyondTheMemoryAreRefused();
    void strokesThatDoNotShowAreTold();
    void progressIsToldOfEachDrawing();
    void cancelledReadingGivesNothing_data();
    void cancelledReadingGivesNothing();
    void manyFramesAreReadInLinearTime();
};

void tst_DrawingClipReader::framesComeWithKindIdentifierAndDrawing()
{
    const QByteArray bytes =
        clip(Layer::Stroke, 3,
             block(original, identifier(1), withDrawing, strokes()) + block(hold, identifier(1), knownBefore) +
                 block(distantClone, identifier(2), withDrawing, strokes()));
    const DrawingClipReader reader(bytes);
    QVERIFY(reader.isWellFormed());
    QCOMPARE(reader.layerType(), int(Layer::Stroke));
    const DrawingClipContent content = reader.read(frame, knowsNothing);
    QVERIFY(!content.isShownInPart && !content.exceedsMemory && !content.isCancelled);
    const auto &frames = content.frames;
    QCOMPARE(frames.size(), 3);
    QVERIFY(frames.at(0).kind == LayerItem::Type::Original);
    QVERIFY(frames.at(1).kind == LayerItem::Type::Clone);
    QVERIFY(frames.at(2).kind == LayerItem::Type::DistantClone);
    QCOMPARE(frames.at(0).copyId, uuid(1));
    QCOMPARE(frames.at(2).copyId, uuid(2));
    QVERIFY(!frames.at(1).drawing);
    QVERIFY(strokesOf(frames.at(0)) && strokesOf(frames.at(2)));
    QCOMPARE(strokesOf(frames.at(0))->strokes().count(), 1);
    QCOMPARE(strokesOf(frames.at(0))->size(), frame);
    QVERIFY(!strokesOf(frames.at(0))->image().isNull());
    QCOMPARE(frames.at(0).drawing->copyId(), uuid(1));
    QCOMPARE(frames.at(2).drawing->copyId(), uuid(2));
}

void tst_DrawingClipReader::picturesAreRead()
{
    QImage image(5, 4, QImage::Format_RGB32);
    image.fill(qRgb(1, 2, 3));
    const auto frames = read(clip(Layer::Reference, 1, block(original, identifier(1), withDrawing, picture(image))));
    QCOMPARE(frames.size(), 1);
    const auto *drawing = dynamic_cast<const ImageDrawing *>(frames.at(0).drawing.get());
    QVERIFY(drawing);
    QCOMPARE(drawing->image(), image);
}

void tst_DrawingClipReader::blankPictureIsADrawing()
{
    const auto frames = read(clip(Layer::Reference, 1, block(original, identifier(1), withDrawing, picture({}))));
    QCOMPARE(frames.size(), 1);
    QVERIFY(frames.at(0).drawing);
    QVERIFY(dynamic_cast<const ImageDrawing &>(*frames.at(0).drawing).image().isNull());
}

void tst_DrawingClipReader::drawingOfAnotherSizeIsBroughtToTheFrame()
{
    const auto frames = read(clip(Layer::Stroke, 1, block(original, identifier(1), withDrawing, strokes(30000))));
    QCOMPARE(frames.size(), 1);
    QCOMPARE(strokesOf(frames.at(0))->size(), frame);
    QCOMPARE(strokesOf(frames.at(0))->image().size(), frame);
    QCOMPARE(strokesOf(frames.at(0))->inkedRect().intersected(QRect(4, 4, 4, 2)), QRect(4, 4, 4, 2));
}

void tst_DrawingClipReader::drawingIsReadOnce()
{
    // Said twice, against the rules: the first is the one that counts.
    const auto frames = read(clip(Layer::Stroke, 2,
                                  block(original, identifier(1), withDrawing, strokes()) +
                                      block(original, identifier(1), withDrawing, "nonsense")));
    QCOMPARE(frames.size(), 2);
    QVERIFY(frames.at(0).drawing);
    QVERIFY(!frames.at(1).drawing);
}

void tst_DrawingClipReader::drawingOfAHoldIsNotRead()
{
    const auto frames = read(clip(Layer::Stroke, 2,
                                  block(original, identifier(1), withDrawing, strokes()) +
                                      block(hold, identifier(2), withDrawing, "nonsense")));
    QCOMPARE(frames.size(), 2);
    QVERIFY(!frames.at(1).drawing);
}

void tst_DrawingClipReader::holdAtTheBeginningNeedsItsDrawing()
{
    const auto frames = read(clip(Layer::Stroke, 1, block(hold, identifier(1), withDrawing, strokes())));
    QCOMPARE(frames.size(), 1);
    QVERIFY(frames.at(0).drawing);
    QVERIFY(read(clip(Layer::Stroke, 1, block(hold, identifier(1), knownBefore))).isEmpty());
}

void tst_DrawingClipReader::knownDrawingIsNotRead()
{
    const QByteArray bytes =
        clip(Layer::Stroke, 2,
             block(original, identifier(1), knownBefore) + block(original, identifier(2), withDrawing, strokes()));
    QVERIFY(read(bytes).isEmpty());
    const auto frames = DrawingClipReader(bytes).read(frame, [](const QUuid &id) { return id == uuid(1); }).frames;
    QCOMPARE(frames.size(), 2);
    QVERIFY(!frames.at(0).drawing);
    QVERIFY(frames.at(1).drawing);
}

void tst_DrawingClipReader::brokenClipIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray good = block(original, identifier(1), withDrawing, strokes());
    const auto row = [](const char *name, const QByteArray &bytes) { QTest::newRow(name) << bytes; };
    row("nothing", {});
    row("words", "This is no clip, whatever it was said to be.");
    row("no frames", clip(Layer::Stroke, 0, good));
    row("fewer than none", clip(Layer::Stroke, -1, good));
    row("the least number", clip(Layer::Stroke, std::numeric_limits<int>::min(), good));
    row("more frames than there are", clip(Layer::Stroke, 2, good));
    row("more frames than any memory holds", clip(Layer::Stroke, std::numeric_limits<int>::max(), good));
    row("more frames than a layer takes",
        clip(Layer::Stroke, Layer::maximumFrames + 1, QByteArray(25 * (Layer::maximumFrames + 2), '\0')));
    row("a layer of no kind", clip(0, 1, good));
    row("a layer of paint", clip(Layer::Paint, 1, good));
    row("a layer of sound", clip(Layer::Audio, 1, good));
    row("a layer of notes", clip(Layer::Annotation, 1, good));
    row("a layer of an unknown kind", clip(6, 1, good));
    row("a layer of a negative kind", clip(-1, 1, good));
    row("an unknown kind of cell", clip(Layer::Stroke, 1, block(3, identifier(1), withDrawing, strokes())));
    row("a negative kind of cell", clip(Layer::Stroke, 1, block(-1, identifier(1), withDrawing, strokes())));
    row("no copy identifier", clip(Layer::Stroke, 1, block(original, QByteArray(16, '\0'), withDrawing, strokes())));
    row("no copy identifier of a hold", clip(Layer::Stroke, 2, good + block(hold, QByteArray(16, '\0'), knownBefore)));
    row("no drawing at all", clip(Layer::Stroke, 1, block(original, identifier(1), withDrawing)));
    row("a drawing that was never there", clip(Layer::Stroke, 2, good + block(distantClone, identifier(2), false)));
    row("a drawing that only comes later", clip(Layer::Stroke, 2, block(original, identifier(1), false) + good));
    row("a drawing that only a hold has",
        clip(Layer::Stroke, 3,
             good + block(hold, identifier(2), withDrawing, strokes()) + block(original, identifier(2), false)));
    row("a block of no length", clip(Layer::Stroke, 1, BlockBuilder().i32(0).raw(good.mid(4)).bytes()));
    row("a block too short for its head", clip(Layer::Stroke, 1, BlockBuilder().i32(20).raw(good.mid(4)).bytes()));
    row("a block beyond the end", clip(Layer::Stroke, 1, BlockBuilder().i32(good.size()).raw(good.mid(4)).bytes()));
    row("a block of 4 GB", clip(Layer::Stroke, 1, BlockBuilder().i32(0xffffffff).raw(good.mid(4)).bytes()));
    row("a picture in a layer of strokes",
        clip(Layer::Stroke, 1,
             block(original, identifier(1), withDrawing, picture(QImage(5, 4, QImage::Format_RGB32)))));
    row("strokes in a layer of pictures",
        clip(Layer::Reference, 1, block(original, identifier(1), withDrawing, strokes())));
    row("a picture cut short",
        clip(Layer::Reference, 1,
             block(original, identifier(1), withDrawing, picture(QImage(5, 4, QImage::Format_RGB32)).left(40))));
    row("more strokes than there are",
        clip(Layer::Stroke, 1,
             block(original, identifier(1), withDrawing,
                   BlockBuilder().size(64, 48).i64(std::numeric_limits<qint64>::max()).bytes())));
    row("the second drawing is broken",
        clip(Layer::Stroke, 2, good + block(original, identifier(2), withDrawing, strokes().left(60))));
}

void tst_DrawingClipReader::brokenClipIsRefused()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(read(bytes).isEmpty());
}

void tst_DrawingClipReader::clipCutShortAnywhereIsRefused()
{
    const QByteArray whole = oneDrawing();
    QCOMPARE(read(whole).size(), 1);
    // The length of the block tells that something is missing, wherever that is.
    for (qsizetype length = 0; length < whole.size(); ++length)
        QVERIFY2(read(whole.left(length)).isEmpty(), qPrintable(QString::number(length)));
}

void tst_DrawingClipReader::layerTypeIsToldByTheHead()
{
    QCOMPARE(DrawingClipReader::layerTypeIn(oneDrawing()), int(Layer::Stroke));
    QCOMPARE(DrawingClipReader::layerTypeIn(clip(Layer::Reference, 1, QByteArray(30, 'x'))), int(Layer::Reference));
    QCOMPARE(DrawingClipReader::layerTypeIn({}), 0);
    QCOMPARE(DrawingClipReader::layerTypeIn(clip(Layer::Stroke, 0, QByteArray(30, 'x'))), 0);
    QCOMPARE(DrawingClipReader::layerTypeIn(clip(9, 1, QByteArray(30, 'x'))), 0);
}

void tst_DrawingClipReader::picturesBeyondTheMemoryAreRefused()
{
    QImage image(100, 100, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray blocks;
    for (int i = 1; i <= 3; ++i)
        blocks += block(original, identifier(i), withDrawing, picture(image));
    const DrawingClipReader reader(clip(Layer::Reference, 3, blocks));
    constexpr qint64 bytesOfOne = 100 * 100 * 4;
    MemoryBudget forTwo(2 * bytesOfOne + 1000);
    const DrawingClipContent refused = reader.read(frame, knowsNothing, forTwo);
    QVERIFY(refused.frames.isEmpty() && refused.exceedsMemory);
    MemoryBudget forThree(3 * bytesOfOne);
    const DrawingClipContent taken = reader.read(frame, knowsNothing, forThree);
    QCOMPARE(taken.frames.size(), 3);
    QVERIFY(!taken.exceedsMemory);
}

void tst_DrawingClipReader::strokesBeyondTheMemoryAreRefused()
{
    QByteArray blocks;
    for (int i = 1; i <= 3; ++i)
        blocks += block(original, identifier(i), withDrawing, strokes());
    const DrawingClipReader reader(clip(Layer::Stroke, 3, blocks));
    // Each takes its coverage and the 8 pixels of its rectangle.
    constexpr qint64 bytesOfOne = 64 * 48 + 8;
    MemoryBudget forTwo(3 * bytesOfOne - 1);
    const DrawingClipContent refused = reader.read(frame, knowsNothing, forTwo);
    QVERIFY(refused.frames.isEmpty() && refused.exceedsMemory);
    MemoryBudget forThree(3 * bytesOfOne);
    QCOMPARE(reader.read(frame, knowsNothing, forThree).frames.size(), 3);
}

void tst_DrawingClipReader::strokesThatDoNotShowAreTold()
{
    // A dot, for which there is neither coverage nor a renderer here.
    const QByteArray dot = BlockBuilder()
                               .size(frame.width(), frame.height())
                               .i64(1)
                               .i32(0)
                               .u8(1)
                               .i32(1)
                               .rect(10, 10, 20, 20)
                               .i32(0)
                               .i32(1)
                               .i32(0)
                               .f32(15)
                               .f32(15)
                               .f32(1)
                               .f32(4)
                               .plainCompoundEnd()
                               .i32(-1)
                               .bytes();
    const DrawingClipReader reader(clip(Layer::Stroke, 2,
                                        block(original, identifier(1), withDrawing, dot) +
                                            block(original, identifier(2), withDrawing, strokes())));
    const DrawingClipContent content = reader.read(frame, knowsNothing);
    QVERIFY(content.isShownInPart);
    QCOMPARE(content.frames.size(), 2);
    QCOMPARE(strokesOf(content.frames.at(0))->strokes().count(), 1);
    // What need not be read need not be shown.
    QVERIFY(!reader.read(frame, [](const QUuid &id) { return id == uuid(1); }).isShownInPart);
}

namespace {

/// Four frames with three drawings.
QByteArray threeDrawings()
{
    return clip(Layer::Stroke, 4,
                block(original, identifier(1), withDrawing, strokes()) + block(hold, identifier(1), knownBefore) +
                    block(original, identifier(2), withDrawing, strokes()) +
                    block(original, identifier(3), withDrawing, strokes()));
}

} // namespace

void tst_DrawingClipReader::progressIsToldOfEachDrawing()
{
    WatchedProgress progress;
    QCOMPARE(DrawingClipReader(threeDrawings()).read(frame, knowsNothing, &progress).frames.size(), 4);
    QCOMPARE(progress.events(), (QStringList{"0 of 4", "look", "2 of 4", "look", "3 of 4", "look", "finish"}));
}

void tst_DrawingClipReader::cancelledReadingGivesNothing_data()
{
    QTest::addColumn<int>("atLook");
    for (int look = 1; look <= 3; ++look)
        QTest::addRow("before drawing %d", look) << look;
}

void tst_DrawingClipReader::cancelledReadingGivesNothing()
{
    QFETCH(int, atLook);
    WatchedProgress progress(atLook);
    const DrawingClipContent content = DrawingClipReader(threeDrawings()).read(frame, knowsNothing, &progress);
    QVERIFY(content.isCancelled && content.frames.isEmpty() && !content.exceedsMemory);
    QCOMPARE(progress.looks(), atLook);
}

void tst_DrawingClipReader::manyFramesAreReadInLinearTime()
{
    const auto timeOf = [](int count) {
        QByteArray blocks = block(original, identifier(1), withDrawing, strokes());
        for (int i = 1; i < count; ++i)
            blocks += block(distantClone, identifier(1), knownBefore);
        const QByteArray bytes = clip(Layer::Stroke, count, blocks);
        QElapsedTimer timer;
        timer.start();
        const bool isRead = read(bytes).size() == count;
        return isRead ? timer.nsecsElapsed() : qint64(-1);
    };
    const qint64 few = timeOf(20'000);
    const qint64 many = timeOf(200'000);
    QVERIFY(few > 0 && many > 0);
    // Ten times as many; a hundred times as long if every frame were held against every other.
    QVERIFY2(many < 40 * few, qPrintable(QStringLiteral("%1 ns for 20,000, %2 ns for 200,000").arg(few).arg(many)));
}

QTEST_MAIN(tst_DrawingClipReader)
#include "tst_drawingclipreader.moc"
