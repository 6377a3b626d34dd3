#include "blockbuilder.h"

#include "libmodel/files/contentblocks.h"
#include "libmodel/files/memorybudget.h"
#include "libmodel/files/workbudget.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/cputimer.h"
#include "support/glfixture.h"

#include <QBuffer>
#include <QDataStream>
#include <QImageReader>
#include <QTest>
#include <QtEndian>

#include <array>

using namespace Model;
using namespace TestSupport;

namespace {

constexpr QSize frame(100, 50);
constexpr qint64 frameBytes = 100 * 50;

/// A block with one line from (10, 20) to (60, 20) of radius 3, and \a trailer behind the strokes.
QByteArray lineBlock(const QByteArray &trailer = QByteArray::fromHex("ffffffff"))
{
    BlockBuilder block;
    block.size(frame.width(), frame.height()).i64(1);
    block.i32(0).u8(1).i32(1).rect(7, 17, 63, 23).i32(0);
    block.i32(1).i32(1);
    for (const float number : {10.f, 20.f, 60.f, 20.f, 1.f, 1.f, 3.f, 3.f})
        block.f32(number);
    block.plainCompoundEnd();
    return block.raw(trailer).bytes();
}

/// A block with one bitmap stroke of \a width x \a height pixels, run-length coded as \a data, over a rectangle of ten
/// pixels, and no coverage.
QByteArray bitmapBlock(int width, int height, const QByteArray &data)
{
    BlockBuilder block;
    block.size(frame.width(), frame.height()).i64(1);
    block.i32(2).rect(0, 0, 9, 9).i32(2).rle(width, height, data);
    block.plainCompoundEnd().i32(-1);
    return block.bytes();
}

DecodedStrokes strokesFrom(const QByteArray &block, qint64 memory = qint64(1) << 30)
{
    MemoryBudget budget(memory);
    return decodeStrokes(block.toBase64(), frame, budget);
}

DecodedImage noteFrom(const QByteArray &block, qint64 memory = qint64(1) << 30)
{
    MemoryBudget budget(memory);
    return decodeAnnotation(block.toBase64(), budget);
}

DecodedImage pictureFrom(const QByteArray &block, qint64 memory = qint64(1) << 30)
{
    MemoryBudget budget(memory);
    return decodeImage(block.toBase64(), budget);
}

quint32 pngChecksum(const QByteArray &bytes)
{
    // The checksum of ISO/IEC 15948, bit by bit.
    quint32 checksum = 0xffffffffU;
    for (const char byte : bytes) {
        checksum ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            checksum = (checksum >> 1U) ^ ((checksum & 1U) != 0 ? 0xedb88320U : 0U);
    }
    return checksum ^ 0xffffffffU;
}

QByteArray pngChunk(const QByteArray &name, const QByteArray &content)
{
    return BlockBuilder().i32(content.size()).raw(name + content).i32(pngChecksum(name + content)).bytes();
}

/// A PNG picture of 6 x 4 pixels as a block, with \a chunks behind its header.
QByteArray pictureBlock(const QByteArray &chunks = {})
{
    constexpr qsizetype afterHeader = 4 + 8 + 25; // marker, signature, header chunk
    QImage image(6, 4, QImage::Format_RGB32);
    image.fill(Qt::green);
    QByteArray block = QByteArray::fromBase64(encodeImage(image));
    return block.insert(afterHeader, chunks);
}

/// The picture of pictureBlock() with another size in its header.
QByteArray pictureStating(quint32 width, quint32 height)
{
    constexpr qsizetype headerChunk = 4 + 8;
    QByteArray content = BlockBuilder().i32(width).i32(height).bytes() + QByteArray::fromHex("0802000000");
    QByteArray block = pictureBlock();
    return block.replace(headerChunk, 25, pngChunk("IHDR", content));
}

} // namespace

/// The binary blocks of a scene file, from whoever they may come.
class tst_ContentBlocks : public QObject
{
    Q_OBJECT

private slots:
    void strokesWithoutARendererStayStrokes();
    void editsWithoutARendererDoNotMakeThePictureFinal();
    void bitmapsNeedNoRenderer();
    void startTheRenderer();
    void coverageIsTakenFromTheBudget_data();
    void coverageIsTakenFromTheBudget();
    void coverageBeyondTheBudgetIsLeftOut();
    void bitmapBeyondTheBudgetIsLeftOut();
    void rowsAreTakenFromTheBudgetAsTheyLieInMemory();
    void drawingsWithoutImagesShareTheirWork();
    void readingEarnsWork();
    void emptyDrawingTakesNoMemory();
    void truncatedStrokesAreDamaged();
    void badRunsInABitmapAreDamage_data();
    void badRunsInABitmapAreDamage();
    void badRunsInTheCoverageAreMadeUpFor_data();
    void badRunsInTheCoverageAreMadeUpFor();
    void badRunsInANoteAreDamage_data();
    void badRunsInANoteAreDamage();
    void sizesThatNoNoteHasAreDamage_data();
    void sizesThatNoNoteHasAreDamage();
    void noteIsTakenFromTheBudget();
    void picturesComeBackInTheirFormat_data();
    void picturesComeBackInTheirFormat();
    void largePictureComesBack();
    void pictureIsTakenFromTheBudget();
    void picturesBeyondTheBudgetAreNotEvenTried();
    void impossiblePicturesAreDamage_data();
    void impossiblePicturesAreDamage();
    void truncatedPicturesAreDamage();
    void compressedNotesInPicturesAreBounded();
    void smallNotesInPicturesAreKept();
    void textThatIsNoBase64DoesNoHarm();
};

void tst_ContentBlocks::strokesWithoutARendererStayStrokes()
{
    QVERIFY(!OffscreenRenderer::instance()->isInitialized());
    const DecodedStrokes decoded = strokesFrom(lineBlock());
    QVERIFY(decoded.isUnrendered);
    QVERIFY(!decoded.isDamaged);
    QVERIFY(!decoded.exceedsMemory);
    QVERIFY(decoded.drawing->image().isNull());
    QCOMPARE(decoded.drawing->strokes().count(), 1);
    // Written again it has no image either, so that whoever has a renderer makes one.
    QCOMPARE(QByteArray::fromBase64(encodeStrokes(*decoded.drawing)), lineBlock());
}

void tst_ContentBlocks::editsWithoutARendererDoNotMakeThePictureFinal()
{
    QVERIFY(!OffscreenRenderer::instance()->isInitialized());
    const QByteArray noCoverage = QByteArray::fromHex("ffffffff");
    const DecodedStrokes decoded = strokesFrom(lineBlock());
    StrokeDrawing &drawing = *decoded.drawing;
    QImage pixels(10, 10, QImage::Format_Alpha8);
    pixels.fill(77);
    QVERIFY(drawing.addStroke(std::make_unique<BitmapStroke>(pixels, QRect(80, 30, 10, 10))));
    QCOMPARE(int(drawing.image().constScanLine(35)[85]), 77);
    QVERIFY(drawing.isShownInPart());
    QVERIFY(QByteArray::fromBase64(encodeStrokes(drawing)).endsWith(noCoverage));
    QVERIFY(drawing.removeLastStroke());
    QVERIFY(drawing.isShownInPart());
    QVERIFY(QByteArray::fromBase64(encodeStrokes(drawing)).endsWith(noCoverage));
}

void tst_ContentBlocks::bitmapsNeedNoRenderer()
{
    QVERIFY(!OffscreenRenderer::instance()->isInitialized());
    const DecodedStrokes decoded = strokesFrom(bitmapBlock(1, 1, QByteArray::fromHex("0301ff0a")));
    QVERIFY(!decoded.isUnrendered);
    QVERIFY(!decoded.isDamaged);
    QCOMPARE(decoded.drawing->image().size(), frame);
    QCOMPARE(int(decoded.drawing->image().constScanLine(5)[5]), 255);
}

void tst_ContentBlocks::startTheRenderer()
{
    QVERIFY(startRenderer(frame));
}

void tst_ContentBlocks::coverageIsTakenFromTheBudget_data()
{
    QTest::addColumn<QByteArray>("trailer");
    QTest::newRow("stored") << BlockBuilder().i32(2).rle(100, 50, QByteArray::fromHex("0a")).bytes();
    QTest::newRow("rendered") << QByteArray::fromHex("ffffffff");
    QTest::newRow("of another size") << BlockBuilder().i32(2).rle(9, 9, QByteArray::fromHex("0a")).bytes();
}

void tst_ContentBlocks::coverageIsTakenFromTheBudget()
{
    QFETCH(QByteArray, trailer);
    MemoryBudget budget(frameBytes + 7);
    const DecodedStrokes decoded = decodeStrokes(lineBlock(trailer).toBase64(), frame, budget);
    QVERIFY(!decoded.isDamaged && !decoded.exceedsMemory && !decoded.isUnrendered);
    QCOMPARE(decoded.drawing->image().size(), frame);
    QCOMPARE(budget.bytesLeft(), 7);
}

void tst_ContentBlocks::coverageBeyondTheBudgetIsLeftOut()
{
    const DecodedStrokes decoded = strokesFrom(lineBlock(), frameBytes - 1);
    QVERIFY(decoded.exceedsMemory);
    QVERIFY(!decoded.isDamaged);
    QVERIFY(decoded.drawing->image().isNull());
}

void tst_ContentBlocks::bitmapBeyondTheBudgetIsLeftOut()
{
    // 900 million pixels from seven bytes.
    const DecodedStrokes decoded = strokesFrom(bitmapBlock(30000, 30000, QByteArray::fromHex("0a")), 1 << 20);
    QVERIFY(decoded.exceedsMemory);
    QVERIFY(!decoded.isDamaged);
    QVERIFY(static_cast<const BitmapStroke &>(decoded.drawing->strokes().at(0)).image().isNull());
}

void tst_ContentBlocks::rowsAreTakenFromTheBudgetAsTheyLieInMemory()
{
    // A column of one byte per row takes four bytes per row.
    constexpr int height = 1000;
    const QByteArray blank = QByteArray::fromHex("0a");
    const QByteArray bitmap = bitmapBlock(1, height, blank);
    QVERIFY(!strokesFrom(bitmap, 4 * height + frameBytes).exceedsMemory);
    QVERIFY(strokesFrom(bitmap, 4 * height + frameBytes - 1).exceedsMemory);

    const QByteArray note = BlockBuilder().rle(1, height, blank).bytes();
    QVERIFY(!noteFrom(note, 4 * height).exceedsMemory);
    QVERIFY(noteFrom(note, 4 * height - 1).exceedsMemory);

    MemoryBudget enough(4 * height);
    const DecodedStrokes column = decodeStrokes(lineBlock().toBase64(), QSize(1, height), enough);
    QVERIFY(!column.exceedsMemory);
    QCOMPARE(column.drawing->image().sizeInBytes(), 4 * height);
    QCOMPARE(enough.bytesLeft(), 0);
    MemoryBudget tooSmall(4 * height - 1);
    QVERIFY(decodeStrokes(lineBlock().toBase64(), QSize(1, height), tooSmall).exceedsMemory);
}

void tst_ContentBlocks::drawingsWithoutImagesShareTheirWork()
{
    // Each asks for twenty times the whole frame in full, from a few hundred bytes.
    constexpr QSize large(1000, 1000);
    BlockBuilder block;
    block.size(large.width(), large.height()).i64(20);
    for (int i = 0; i < 20; ++i)
        block.i32(2).rect(0, 0, 999, 999).i32(2).rle(1, 1, QByteArray::fromHex("0301ff0a"));
    const QByteArray text = block.plainCompoundEnd().base64();

    MemoryBudget memory;
    WorkBudget work(1'000'000'000);
    int whole = 0;
    for (int i = 0; i < 10; ++i) {
        const DecodedStrokes decoded = decodeStrokes(text, large, memory, work);
        QVERIFY(!decoded.isDamaged && !decoded.exceedsMemory);
        QCOMPARE(decoded.drawing->strokes().count(), 20);
        // Once there is not enough left for one, there is none for the next either.
        QVERIFY(decoded.isShownInPart || whole == i);
        whole += decoded.isShownInPart ? 0 : 1;
    }
    QVERIFY2(whole >= 1 && whole < 10, qPrintable(QString::number(whole)));
}

void tst_ContentBlocks::readingEarnsWork()
{
    MemoryBudget memory;
    WorkBudget work(0);
    const QByteArray text = lineBlock().toBase64();
    const DecodedStrokes decoded = decodeStrokes(text, frame, memory, work);
    QVERIFY(!decoded.isShownInPart);
    QVERIFY(work.left() > 0);
    QVERIFY(work.left() < text.size() * WorkBudget::perByte);
    WorkBudget untouched(5);
    untouched.take(7);
    QCOMPARE(untouched.left(), 0);
    QVERIFY(WorkBudget().left() >= qint64(1) << 32);
}

void tst_ContentBlocks::emptyDrawingTakesNoMemory()
{
    BlockBuilder block;
    block.size(100, 50).i64(0).plainCompoundEnd().i32(-1);
    const DecodedStrokes decoded = strokesFrom(block.bytes(), 0);
    QVERIFY(!decoded.isDamaged && !decoded.exceedsMemory && !decoded.isUnrendered);
    QVERIFY(decoded.drawing->isEmpty());
}

void tst_ContentBlocks::truncatedStrokesAreDamaged()
{
    const QByteArray whole = lineBlock();
    // Up to its marker, which may be missing.
    for (qsizetype length = 0; length < whole.size() - 4; ++length) {
        const DecodedStrokes decoded = strokesFrom(whole.left(length));
        QVERIFY2(decoded.isDamaged, qPrintable(QString::number(length)));
        QCOMPARE(decoded.drawing->size(), frame);
    }
    QVERIFY(!strokesFrom(whole.left(whole.size() - 4)).isDamaged);
}

static void addBadRuns()
{
    QTest::addColumn<QByteArray>("data");
    // Of a picture of 4 x 2 pixels.
    QTest::newRow("no data") << QByteArray();
    QTest::newRow("no end") << QByteArray::fromHex("0302ffff06");
    QTest::newRow("empty run past the row") << QByteArray::fromHex("00050a");
    QTest::newRow("two empty runs past the row") << QByteArray::fromHex("000300020a");
    QTest::newRow("pixels past the row") << QByteArray::fromHex("030501020304050a");
    QTest::newRow("pixels past the data") << QByteArray::fromHex("030401");
    QTest::newRow("rows past the picture") << QByteArray::fromHex("07030a");
    QTest::newRow("all rows and no end") << QByteArray::fromHex("0606");
    QTest::newRow("2^31 - 1 empty pixels") << QByteArray::fromHex("027fffffff0a");
    QTest::newRow("2^31 - 1 pixels") << QByteArray::fromHex("057fffffff0a");
    QTest::newRow("2^31 - 1 rows") << QByteArray::fromHex("097fffffff0a");
    QTest::newRow("negative run") << QByteArray::fromHex("02ffffffff0a");
    QTest::newRow("negative pixels") << QByteArray::fromHex("05ffffffff0a");
    QTest::newRow("negative rows") << QByteArray::fromHex("0980000000"
                                                          "0a");
    QTest::newRow("count cut off") << QByteArray::fromHex("0100");
}

void tst_ContentBlocks::badRunsInABitmapAreDamage_data()
{
    addBadRuns();
}

void tst_ContentBlocks::badRunsInABitmapAreDamage()
{
    QFETCH(QByteArray, data);
    const DecodedStrokes decoded = strokesFrom(bitmapBlock(4, 2, data));
    QVERIFY(decoded.isDamaged);
    QVERIFY(!decoded.exceedsMemory);
    QCOMPARE(decoded.drawing->strokes().count(), 1);
}

void tst_ContentBlocks::badRunsInTheCoverageAreMadeUpFor_data()
{
    addBadRuns();
}

void tst_ContentBlocks::badRunsInTheCoverageAreMadeUpFor()
{
    QFETCH(QByteArray, data);
    BlockBuilder trailer;
    trailer.i32(2).rle(4, 2, data);
    MemoryBudget budget;
    BlockBuilder block;
    block.size(4, 2).i64(1).i32(2).rect(0, 0, 3, 1).i32(2).rle(1, 1, QByteArray::fromHex("0301ff0a"));
    block.plainCompoundEnd().raw(trailer.bytes());
    const DecodedStrokes decoded = decodeStrokes(block.base64(), QSize(4, 2), budget);
    QVERIFY(!decoded.isDamaged);
    QCOMPARE(decoded.drawing->image().size(), QSize(4, 2));
    QCOMPARE(int(decoded.drawing->image().constScanLine(1)[2]), 255);
}

void tst_ContentBlocks::badRunsInANoteAreDamage_data()
{
    addBadRuns();
}

void tst_ContentBlocks::badRunsInANoteAreDamage()
{
    QFETCH(QByteArray, data);
    const DecodedImage decoded = noteFrom(BlockBuilder().rle(4, 2, data).bytes());
    QVERIFY(decoded.isDamaged);
    QVERIFY(decoded.image.isNull());
}

void tst_ContentBlocks::sizesThatNoNoteHasAreDamage_data()
{
    QTest::addColumn<QByteArray>("block");
    const QByteArray end = QByteArray::fromHex("0a");
    const auto stating = [&](qint64 width, qint64 height) {
        return BlockBuilder().rle(int(width), int(height), end).bytes();
    };
    QTest::newRow("2^31 - 1 each way") << stating(0x7fffffff, 0x7fffffff);
    QTest::newRow("-2^31 each way") << stating(-0x80000000LL, -0x80000000LL);
    QTest::newRow("negative width") << stating(-4, 2);
    QTest::newRow("no width") << stating(0, 2);
    QTest::newRow("no height") << stating(4, 0);
    QTest::newRow("a row of a million") << stating(1000000, 1);
    QTest::newRow("data of 4 GB") << BlockBuilder().i32(4).i32(2).i32(0xfffffffe).raw(end).bytes();
    QTest::newRow("data of 2 GB") << BlockBuilder().i32(4).i32(2).i32(0x7fffffff).raw(end).bytes();
    QTest::newRow("data beyond the block") << BlockBuilder().i32(4).i32(2).i32(2).raw(end).bytes();
    QTest::newRow("nothing") << QByteArray();
}

void tst_ContentBlocks::sizesThatNoNoteHasAreDamage()
{
    QFETCH(QByteArray, block);
    const CpuTimer timer;
    const DecodedImage decoded = noteFrom(block);
    QVERIFY(decoded.isDamaged);
    QVERIFY(!decoded.exceedsMemory);
    QVERIFY(decoded.image.isNull());
    QVERIFY(timer.milliseconds() < 500); // nothing of the stated size has been made
}

void tst_ContentBlocks::noteIsTakenFromTheBudget()
{
    const QByteArray note = BlockBuilder().rle(40, 20, QByteArray::fromHex("0301ff0a")).base64();
    MemoryBudget budget(1000);
    const DecodedImage decoded = decodeAnnotation(note, budget);
    QCOMPARE(decoded.image.size(), QSize(40, 20));
    QCOMPARE(budget.bytesLeft(), 200);
    const DecodedImage second = decodeAnnotation(note, budget);
    QVERIFY(second.exceedsMemory && second.image.isNull() && !second.isDamaged);
    const DecodedImage blank = decodeAnnotation(BlockBuilder().rle(0, 0, {}).base64(), budget);
    QVERIFY(!blank.exceedsMemory && !blank.isDamaged && blank.image.isNull());
    QCOMPARE(budget.bytesLeft(), 200);
}

void tst_ContentBlocks::picturesComeBackInTheirFormat_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("one bit") << QImage::Format_Mono;
    QTest::newRow("256 colours") << QImage::Format_Indexed8;
    QTest::newRow("grey") << QImage::Format_Grayscale8;
    QTest::newRow("deep grey") << QImage::Format_Grayscale16;
    QTest::newRow("colour") << QImage::Format_RGB32;
    QTest::newRow("colour and transparency") << QImage::Format_ARGB32;
    QTest::newRow("deep colour") << QImage::Format_RGBX64;
    QTest::newRow("deep colour and transparency") << QImage::Format_RGBA64;
}

void tst_ContentBlocks::picturesComeBackInTheirFormat()
{
    QFETCH(QImage::Format, format);
    QImage source(37, 21, QImage::Format_ARGB32);
    for (int y = 0; y < source.height(); ++y) {
        for (int x = 0; x < source.width(); ++x)
            source.setPixel(x, y, qRgba(x * 6, y * 11, (x + y) * 4, 255 - x));
    }
    const QImage image = source.convertToFormat(format);
    MemoryBudget budget(1 << 20);
    const DecodedImage decoded = decodeImage(encodeImage(image), budget);
    QVERIFY(!decoded.isDamaged && !decoded.exceedsMemory);
    QCOMPARE(decoded.image, image);
    QCOMPARE(budget.bytesLeft(), (1 << 20) - decoded.image.sizeInBytes());
}

void tst_ContentBlocks::largePictureComesBack()
{
    // 256 MB decoded; Qt by itself refuses more than 128.
    QImage image(8192, 8192, QImage::Format_RGB32);
    image.fill(Qt::yellow);
    image.setPixelColor(8000, 8100, Qt::blue);
    const QByteArray text = encodeImage(image);
    const int limitBefore = QImageReader::allocationLimit();
    MemoryBudget budget;
    const DecodedImage decoded = decodeImage(text, budget);
    QVERIFY(!decoded.isDamaged && !decoded.exceedsMemory);
    QCOMPARE(decoded.image.size(), image.size());
    QCOMPARE(decoded.image.pixelColor(8000, 8100), QColor(Qt::blue));
    QCOMPARE(QImageReader::allocationLimit(), limitBefore);
}

void tst_ContentBlocks::pictureIsTakenFromTheBudget()
{
    // 6 x 4 pixels of 4 bytes.
    QVERIFY(!pictureFrom(pictureBlock(), 96).exceedsMemory);
    const DecodedImage tooLarge = pictureFrom(pictureBlock(), 95);
    QVERIFY(tooLarge.exceedsMemory);
    QVERIFY(!tooLarge.isDamaged);
    QVERIFY(tooLarge.image.isNull());
}

void tst_ContentBlocks::picturesBeyondTheBudgetAreNotEvenTried()
{
    const CpuTimer timer;
    const DecodedImage decoded = pictureFrom(pictureStating(900'000, 900'000));
    QVERIFY(decoded.exceedsMemory);
    QVERIFY(decoded.image.isNull());
    QVERIFY(timer.milliseconds() < 500);
}

void tst_ContentBlocks::impossiblePicturesAreDamage_data()
{
    QTest::addColumn<QByteArray>("block");
    const QByteArray one = BlockBuilder().i32(1).bytes();
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("half a marker") << QByteArray::fromHex("0000");
    QTest::newRow("a marker only") << one;
    QTest::newRow("another marker") << BlockBuilder().i32(2).raw(pictureBlock().mid(4)).bytes();
    QTest::newRow("2^31 - 1 each way") << pictureStating(0x7fffffff, 0x7fffffff);
    QTest::newRow("2^32 - 1 each way") << pictureStating(0xffffffff, 0xffffffff);
    QTest::newRow("no width") << pictureStating(0, 4);
    QTest::newRow("no height") << pictureStating(6, 0);
    QTest::newRow("more rows than there are") << pictureStating(6, 5000);
    QTest::newRow("header in the wrong place") << one + pictureBlock().mid(4, 8) + pngChunk("IDAT", "abc");
    // Pictures of other kinds, which other readers of Qt would take.
    QTest::newRow("drawing commands") << one + "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>";
    QTest::newRow("text picture") << one + "/* XPM */ static char *p[] = {\"1 1 1 1\",\"a c #000000\",\"a\"};";
    QTest::newRow("plain map") << one + "P1 1 1 1";
    QImage dot(1, 1, QImage::Format_RGB32);
    dot.fill(Qt::red);
    for (const char *format : {"bmp", "jpg", "ppm"}) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QVERIFY(dot.save(&buffer, format));
        QTest::newRow(format) << one + bytes;
    }
}

void tst_ContentBlocks::impossiblePicturesAreDamage()
{
    QFETCH(QByteArray, block);
    const CpuTimer timer;
    const DecodedImage decoded = pictureFrom(block);
    QVERIFY(decoded.isDamaged);
    QVERIFY(!decoded.exceedsMemory);
    QVERIFY(decoded.image.isNull());
    QVERIFY(timer.milliseconds() < 500);
}

void tst_ContentBlocks::truncatedPicturesAreDamage()
{
    constexpr qsizetype lastChunk = 12; // says no more than that the picture is over
    const QByteArray whole = pictureBlock();
    for (qsizetype length = 0; length < whole.size() - lastChunk - 4; ++length) {
        const DecodedImage decoded = pictureFrom(whole.left(length));
        QVERIFY2(decoded.isDamaged && decoded.image.isNull(), qPrintable(QString::number(length)));
    }
}

void tst_ContentBlocks::compressedNotesInPicturesAreBounded()
{
    // Eight megabytes of blanks in eight kilobytes, four hundred times: 3 GB if they were unpacked.
    const QByteArray blanks = qCompress(QByteArray(8'000'000, ' '), 9).mid(4);
    const QByteArray note = pngChunk("zTXt", QByteArray("Comment\0\0", 9) + blanks);
    QByteArray notes;
    for (int i = 0; i < 400; ++i)
        notes += note;
    const CpuTimer timer;
    const DecodedImage decoded = pictureFrom(pictureBlock(notes));
    QVERIFY(!decoded.isDamaged);
    QCOMPARE(decoded.image.size(), QSize(6, 4));
    QVERIFY(decoded.image.text().isEmpty());
    QVERIFY(timer.milliseconds() < 1000);
}

void tst_ContentBlocks::smallNotesInPicturesAreKept()
{
    QImage image(6, 4, QImage::Format_RGB32);
    image.fill(Qt::green);
    image.setText(QStringLiteral("Author"), QStringLiteral("somebody"));
    const DecodedImage decoded = pictureFrom(QByteArray::fromBase64(encodeImage(image)));
    QCOMPARE(decoded.image, image);
    QCOMPARE(decoded.image.text(QStringLiteral("Author")), QStringLiteral("somebody"));
}

void tst_ContentBlocks::textThatIsNoBase64DoesNoHarm()
{
    MemoryBudget budget;
    for (const QByteArray &text :
         {QByteArray(), QByteArray("!"), QByteArray("====="), QByteArray("This is no block.")}) {
        QVERIFY(decodeStrokes(text, frame, budget).isDamaged);
        QVERIFY(decodeAnnotation(text, budget).isDamaged);
        QVERIFY(decodeImage(text, budget).isDamaged);
    }
}

QTEST_MAIN(tst_ContentBlocks)
#include "tst_contentblocks.moc"
