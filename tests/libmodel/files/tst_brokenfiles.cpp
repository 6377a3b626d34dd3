#include "blockbuilder.h"
#include "scenefixture.h"

#include "libmodel/files/scenereader.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/stroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/cputimer.h"
#include "support/glfixture.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

/// Lets the system count the peak memory of this process anew, from what it uses now.
bool resetPeakMemory()
{
    QFile counters("/proc/self/clear_refs");
    return counters.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && counters.write("5") == 1;
}

/// Peak memory of this process in KiB, as the system counts it; -1 if it does not tell.
qint64 peakMemoryKiB()
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

/// One bitmap stroke and one line, with the coverage behind them: a block with something of everything.
QByteArray goodBlock()
{
    BlockBuilder block;
    block.size(16, 8).i64(2);
    block.i32(2).rect(1, 1, 2, 1).i32(2).rle(2, 1, QByteArray::fromHex("0302ffff0a"));
    block.i32(0).u8(1).i32(1).rect(0, 2, 15, 5);
    block.i32(1).f32(2).f32(4).f32(0.5f);
    block.i32(1).i32(1);
    for (const float number : {2.f, 4.f, 13.f, 4.f, 1.f, 1.f, 2.f, 2.f})
        block.f32(number);
    block.plainCompoundEnd();
    return block.i32(2).rle(16, 8, QByteArray::fromHex("0304070809040a")).bytes();
}

/// A layer of every kind, with cells of every kind.
QByteArray fileOfAllLayerKinds()
{
    const QByteArray hold = "<drawing type=\"clone\"/>\n";
    const QByteArray distantClone = "<drawing type=\"distantClone\" identifier=\"" + uuid(103).toByteArray() +
                                    "\">\n<original layer=\"" + uuid(200).toByteArray() + "\" drawing=\"" +
                                    uuid(201).toByteArray() + "\"/>\n</drawing>\n";
    const QByteArray original = "<drawing xOffset=\"3\" yOffset=\"4\" rotationDeg=\"5\" keyDrawing=\"yes\" "
                                "type=\"original\" identifier=\"" +
                                uuid(201).toByteArray() + "\" copyId=\"" + uuid(9).toByteArray() +
                                "\">\n<clone layer=\"" + uuid(100).toByteArray() + "\" drawing=\"" +
                                uuid(103).toByteArray() + "\"/>\n</drawing>\n";
    QByteArray picture;
    QDataStream stream(&picture, QIODevice::WriteOnly);
    stream << QImage(2, 2, QImage::Format_Grayscale8);
    const QByteArray note = BlockBuilder().rle(1, 1, QByteArray::fromHex("0301080a")).base64();
    return document("<ordering>4;3;2;1;0</ordering>\n" +
                        layerElement("<opacity>0.5</opacity>\n<color>#102030</color>\n<drawing type=\"original\">\n"
                                     "<strokes>" +
                                     goodBlock().toBase64() + "</strokes>\n</drawing>\n" + hold + distantClone) +
                        "<layer name=\"B\" type=\"reference\">\n<drawing type=\"original\">\n<image>" +
                        picture.toBase64() + "</image>\n</drawing>\n</layer>\n" + layerElement(original, 200) +
                        "<layer name=\"S\" type=\"audio\">\n<offsetFrames>-2</offsetFrames>\n<originalAudioData>AAAA"
                        "</originalAudioData>\n</layer>\n<layer name=\"N\" type=\"annotation\">\n<image>" +
                        note + "</image>\n</layer>\n",
                    "frameRange=\"1;3\" activeFrameNumber=\"2\" activeLayerIndex=\"0\" fps=\"12\" "
                    "totalNumberOfDrawings=\"5\"");
}

QByteArray fileWithBlock(const QByteArray &bytes)
{
    return document(layerElement("<drawing type=\"original\"><strokes>" + bytes.toBase64() + "</strokes></drawing>"));
}

/// What must hold of a scene that was read, whatever the file was.
void verifySound(const Scene &scene)
{
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        const VisualLayer *layer = scene.visualLayer(layerIdx);
        if (!layer)
            continue;
        QVERIFY(layer->numFrames() >= 1);
        QVERIFY(!layer->item(1)->isClone());
        for (int frameId = 1; frameId <= layer->numFrames(); ++frameId) {
            const auto cell = layer->item(frameId);
            QVERIFY(cell->drawing);
            QVERIFY(!cell->identifier.isNull());
            if (cell->isClone())
                QCOMPARE(cell->drawing, layer->item(frameId - 1)->drawing);
            const StrokeDrawing &drawing = drawingAt(*layer, frameId);
            QCOMPARE(drawing.size(), scene.frameSize());
            QVERIFY(drawing.image().isNull() || drawing.image().size() == scene.frameSize());
        }
    }
    QVERIFY(scene.rangeFirst() >= 1);
    QVERIFY(scene.rangeLast() >= scene.rangeFirst());
    QVERIFY(scene.rangeLast() <= scene.maximumFrameNumber());
}

/// Reads \a file, which may or may not be readable, and goes on working with what came of it.
void readAnyhow(const QByteArray &file)
{
    Scene scene;
    const ReadResult read = readInto(scene, file);
    QVERIFY(read.result == FileResult::Success || read.result == FileResult::Error);
    if (read.result != FileResult::Success)
        return;
    verifySound(scene);
    const QByteArray again = written(scene);
    const auto copy = sceneFrom(again);
    QCOMPARE(written(*copy), again);
}

} // namespace

/// Files that nobody should have, and some that somebody means ill with.
class tst_BrokenFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void frameSizesBeyondReasonAreRefused_data();
    void frameSizesBeyondReasonAreRefused();
    void largestFrameSidesAreAccepted_data();
    void largestFrameSidesAreAccepted();
    void truncatedDocumentsAreErrors();
    void truncatedBlocksDoNoHarm();
    void changedBytesInBlocksDoNoHarm();
    void changedBytesInDocumentsDoNoHarm();
    void damagedBlockLeavesAnEmptyDrawing_data();
    void damagedBlockLeavesAnEmptyDrawing();
    void damagedAnnotationLeavesAnEmptyOne_data();
    void damagedAnnotationLeavesAnEmptyOne();
    void otherDrawingsSurviveADamagedOne();
    void strokesInFrontOfTheDamageSurvive();
    void entityBombIsRefused();
    void absurdSceneAttributesDoNoHarm_data();
    void absurdSceneAttributesDoNoHarm();
    void textInPlaceOfBase64DoesNoHarm();
    void documentsWithoutALayerToDrawOnAreUsableScenes_data();
    void documentsWithoutALayerToDrawOnAreUsableScenes();
    void secondSceneReplacesTheFirst();
};

void tst_BrokenFiles::initTestCase()
{
    QVERIFY(startRenderer());
}

void tst_BrokenFiles::frameSizesBeyondReasonAreRefused_data()
{
    QTest::addColumn<QByteArray>("width");
    QTest::addColumn<QByteArray>("height");
    QTest::newRow("null") << QByteArray("0") << QByteArray("0");
    QTest::newRow("no width") << QByteArray("0") << QByteArray("100");
    QTest::newRow("negative") << QByteArray("640") << QByteArray("-480");
    QTest::newRow("one too wide") << QByteArray("8193") << QByteArray("10");
    QTest::newRow("one too high") << QByteArray("10") << QByteArray("8193");
    QTest::newRow("far too large") << QByteArray("2147483647") << QByteArray("2147483647");
    QTest::newRow("beyond 32 bits") << QByteArray("99999999999") << QByteArray("100");
    QTest::newRow("no number") << QByteArray("wide") << QByteArray("100");
}

void tst_BrokenFiles::frameSizesBeyondReasonAreRefused()
{
    QFETCH(QByteArray, width);
    QFETCH(QByteArray, height);
    Scene scene;
    const ReadResult read = readInto(scene, "<mr version=\"0.4\">\n<scene frameWidth=\"" + width + "\" frameHeight=\"" +
                                                height + "\"><layers/></scene></mr>");
    QCOMPARE(read.result, FileResult::Error);
    QVERIFY2(read.error.contains("frame size"), qPrintable(read.error));
    QVERIFY2(read.error.contains("\nLine 2, column "), qPrintable(read.error));
}

void tst_BrokenFiles::largestFrameSidesAreAccepted_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("one pixel") << 1 << 1;
    QTest::newRow("widest") << 8192 << 1;
    QTest::newRow("highest") << 1 << 8192;
}

void tst_BrokenFiles::largestFrameSidesAreAccepted()
{
    QFETCH(int, width);
    QFETCH(int, height);
    const auto scene = sceneFrom("<mr version=\"0.4\"><scene frameWidth=\"" + QByteArray::number(width) +
                                 "\" frameHeight=\"" + QByteArray::number(height) + "\"/></mr>");
    QCOMPARE(scene->frameSize(), QSize(width, height));
}

void tst_BrokenFiles::truncatedDocumentsAreErrors()
{
    const QByteArray whole = fileOfAllLayerKinds();
    {
        const auto scene = sceneFrom(whole);
        QCOMPARE(scene->layerCount(), 5);
        QVERIFY(!drawingAt(*scene, 0, 1).isEmpty());
        QVERIFY(scene->item(0, 3)->isDistantClone());
        QCOMPARE(scene->item(0, 3)->drawing, scene->item(2, 1)->drawing);
    }
    const qsizetype end = whole.indexOf("</mr>") + 4;
    for (qsizetype size = 0; size <= end; ++size) {
        const QByteArray part = whole.first(size);
        Scene scene;
        const ReadResult read = readInto(scene, part);
        QCOMPARE(read.result, FileResult::Error);
        // The parser stands in the last line that there is.
        const QString place = QStringLiteral("\nLine %1, column ").arg(part.count('\n') + 1);
        QVERIFY2(read.error.contains(place), qPrintable(read.error + QStringLiteral(" at byte %1").arg(size)));
    }
}

void tst_BrokenFiles::truncatedBlocksDoNoHarm()
{
    const QByteArray block = goodBlock();
    for (qsizetype size = 0; size < block.size() && !QTest::currentTestFailed(); ++size)
        readAnyhow(fileWithBlock(block.first(size)));
}

void tst_BrokenFiles::changedBytesInBlocksDoNoHarm()
{
    const QByteArray block = goodBlock();
    for (qsizetype position = 0; position < block.size(); ++position) {
        for (const int value : {0x00, 0x01, 0x7f, 0x80, 0xff}) {
            QByteArray changed = block;
            changed[position] = char(value);
            readAnyhow(fileWithBlock(changed));
            if (QTest::currentTestFailed()) {
                qWarning("With byte %d set to %d", int(position), value);
                return;
            }
        }
    }
}

void tst_BrokenFiles::changedBytesInDocumentsDoNoHarm()
{
    const QByteArray whole = fileWithBlock(goodBlock());
    for (quint32 seed = 1; seed <= 300; ++seed) {
        QRandomGenerator random(seed);
        QByteArray changed = whole;
        for (int change = 0; change < 3; ++change)
            changed[random.bounded(int(changed.size()))] = char(random.bounded(256));
        readAnyhow(changed);
        if (QTest::currentTestFailed()) {
            qWarning("With seed %u", seed);
            return;
        }
    }
}

void tst_BrokenFiles::damagedBlockLeavesAnEmptyDrawing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray size = BlockBuilder().size(16, 8).bytes();
    const auto block = [&size] { return BlockBuilder().raw(size); };
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("half a size") << size.first(5);
    QTest::newRow("no strokes") << size;
    QTest::newRow("more children than bytes") << block().i64(1000000000000).plainCompoundEnd().bytes();
    QTest::newRow("negative number of children") << block().i64(-1).plainCompoundEnd().bytes();
    QTest::newRow("more samples than bytes")
        << block().i64(1).i32(0).u8(1).i32(1).rect(0, 0, 9, 9).i32(2000000000).f32(1).bytes();
    QTest::newRow("more segments than bytes")
        << block().i64(1).i32(0).u8(1).i32(1).rect(0, 0, 9, 9).i32(0).i32(2000000000).bytes();
    QTest::newRow("path with more elements than bytes") << block().i64(0).i32(2000000000).bytes();
    QTest::newRow("path with an element of no kind")
        << block().i64(0).i32(1).i32(77).f32(1).f32(1).i32(0).i32(0).i32(0).bytes();
    QTest::newRow("coverage data longer than the block")
        << block().i64(1).i32(2).rect(0, 0, 1, 1).i32(2).i32(2).i32(2).i32(2000000000).bytes();
    BlockBuilder nested;
    nested.raw(size);
    for (int depth = 0; depth < 200000; ++depth)
        nested.i64(1).i32(1);
    QTest::newRow("compounds without end") << nested.bytes();
    BlockBuilder notFinite;
    notFinite.raw(size).i64(1).i32(0).u8(1).i32(1).rect(0, 0, 9, 9).i32(0).i32(1).i32(0);
    notFinite.i32(0x7fc00000).f32(1).f32(1).f32(1).plainCompoundEnd();
    QTest::newRow("coordinate that is no number") << notFinite.bytes();
}

void tst_BrokenFiles::damagedBlockLeavesAnEmptyDrawing()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(resetPeakMemory());
    const qint64 memoryBefore = peakMemoryKiB();
    QVERIFY(memoryBefore > 0);
    const CpuTimer timer;
    QStringList damages;
    const auto scene = sceneFrom(fileWithBlock(bytes), &damages);
    // The block stands in the first line of the layer, which is the seventh.
    QCOMPARE(damages, QStringList("Line 7: a drawing cannot be read to its end"));
    QCOMPARE(scene->visualLayer(0)->numFrames(), 1);
    QVERIFY(drawingAt(*scene, 0, 1).isEmpty());
    QVERIFY(drawingAt(*scene, 0, 1).image().isNull());
    QVERIFY(timer.milliseconds() < 5000);
    const qint64 spentKiB = peakMemoryKiB() - memoryBefore;
    QVERIFY2(spentKiB < 100 * 1024, QByteArray::number(spentKiB).constData());
}

void tst_BrokenFiles::damagedAnnotationLeavesAnEmptyOne_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray end = QByteArray::fromHex("0a");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no end") << BlockBuilder().rle(2, 2, QByteArray::fromHex("06")).bytes();
    QTest::newRow("row overrun") << BlockBuilder().rle(2, 2, QByteArray::fromHex("0303010203") + end).bytes();
    QTest::newRow("negative") << BlockBuilder().rle(-2, 2, end).bytes();
    QTest::newRow("huge") << BlockBuilder().rle(2000000000, 2000000000, end).bytes();
    QTest::newRow("far too large for a note") << BlockBuilder().rle(16000, 16000, end).bytes();
    QTest::newRow("data longer than the block") << BlockBuilder().i32(2).i32(2).i32(2000000000).bytes();
}

void tst_BrokenFiles::damagedAnnotationLeavesAnEmptyOne()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(resetPeakMemory());
    const qint64 memoryBefore = peakMemoryKiB();
    QStringList damages;
    const QByteArray good = BlockBuilder().rle(1, 1, QByteArray::fromHex("0301080a")).base64();
    const auto scene = sceneFrom(document("<layer type=\"annotation\"><image>" + bytes.toBase64() + "</image><image>" +
                                          good + "</image></layer>"),
                                 &damages);
    QCOMPARE(damages, QStringList("Line 6: a note cannot be read"));
    const auto *notes = qobject_cast<AnnotationLayer *>(scene->layer(scene->annotationLayerIdx()));
    QVERIFY(notes->image(1).isNull());
    QCOMPARE(notes->image(2).size(), QSize(1, 1));
    QVERIFY(peakMemoryKiB() - memoryBefore < 50 * 1024);
}

void tst_BrokenFiles::otherDrawingsSurviveADamagedOne()
{
    const QByteArray open = "<drawing type=\"original\"><strokes>";
    const QByteArray close = "</strokes></drawing>";
    const auto scene = sceneFrom(document(
        layerElement(open + goodBlock().first(40).toBase64() + close + open + goodBlock().toBase64() + close)));
    QVERIFY(drawingAt(*scene, 0, 1).isEmpty());
    QVERIFY(!drawingAt(*scene, 0, 2).isEmpty());
}

void tst_BrokenFiles::entityBombIsRefused()
{
    QByteArray bomb = "<?xml version=\"1.0\"?>\n<!DOCTYPE mr [\n<!ENTITY a0 \"aaaaaaaaaaaaaaaa\">\n";
    for (int level = 1; level < 12; ++level) {
        const QByteArray inner = "&a" + QByteArray::number(level - 1) + ";";
        bomb += "<!ENTITY a" + QByteArray::number(level) + " \"" + inner.repeated(10) + "\">\n";
    }
    bomb += "]>\n<mr version=\"0.4\"><scene><layers><ordering>&a11;</ordering></layers></scene></mr>";
    Scene scene;
    QVERIFY(resetPeakMemory());
    const qint64 memoryBefore = peakMemoryKiB();
    const ReadResult read = readInto(scene, bomb);
    QCOMPARE(read.result, FileResult::Error);
    QVERIFY(read.error.contains("\nLine "));
    // Expanded, it would be more than a terabyte. Sanitizers keep freed memory for a while, hence the room.
    QVERIFY(peakMemoryKiB() - memoryBefore < 512 * 1024);
}

void tst_BrokenFiles::absurdSceneAttributesDoNoHarm_data()
{
    QTest::addColumn<QByteArray>("attributes");
    QTest::newRow("total") << QByteArray("totalNumberOfDrawings=\"2147483647\"");
    QTest::newRow("negative total") << QByteArray("totalNumberOfDrawings=\"-5\"");
    QTest::newRow("frame") << QByteArray("activeFrameNumber=\"2147483647\"");
    QTest::newRow("negative frame") << QByteArray("activeFrameNumber=\"-2147483648\"");
    QTest::newRow("layer") << QByteArray("activeLayerIndex=\"2147483647\"");
    QTest::newRow("negative layer") << QByteArray("activeLayerIndex=\"-3\"");
    QTest::newRow("range") << QByteArray("frameRange=\"-2147483648;2147483647\"");
    QTest::newRow("range behind the scene") << QByteArray("frameRange=\"2147483646;2147483647\"");
    QTest::newRow("empty range") << QByteArray("frameRange=\";\"");
}

void tst_BrokenFiles::absurdSceneAttributesDoNoHarm()
{
    QFETCH(QByteArray, attributes);
    const QByteArray clone = "<drawing type=\"clone\"/>";
    const auto scene = sceneFrom(document(layerElement("<drawing type=\"original\"/>" + clone + clone), attributes));
    verifySound(*scene);
    QCOMPARE(scene->activeLayerIdx(), 0);
    QVERIFY(scene->activeFrame() >= 1);
    QVERIFY(scene->activeFrame() <= 4);
    QVERIFY(scene->highestUsedLayerNumber() >= 0);
    QVERIFY(scene->nextLayerName().toInt() > 0);
}

void tst_BrokenFiles::textInPlaceOfBase64DoesNoHarm()
{
    readAnyhow(
        document(layerElement("<drawing type=\"original\"><strokes>h\xc3\xa4ndisch <b/> !!</strokes></drawing>")));
    readAnyhow(document("<layer type=\"annotation\"><image>?!?</image></layer>"));
    readAnyhow(document("<layer type=\"audio\"><originalAudioData>?!?</originalAudioData>"
                        "<offsetFrames>1e999</offsetFrames></layer>"));
}

void tst_BrokenFiles::documentsWithoutALayerToDrawOnAreUsableScenes_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("no scene") << QByteArray("<mr version=\"0.4\"/>");
    QTest::newRow("no layers") << QByteArray("<mr version=\"0.4\"><scene/></mr>");
    QTest::newRow("no layer") << QByteArray("<mr version=\"0.4\"><scene><layers/></scene></mr>");
    QTest::newRow("sound and notes only")
        << document("<layer type=\"audio\"/><layer type=\"annotation\"/>", "activeLayerIndex=\"1\"");
    QTest::newRow("nothing of a known kind") << document("<layer type=\"paint\"/>");
}

void tst_BrokenFiles::documentsWithoutALayerToDrawOnAreUsableScenes()
{
    QFETCH(QByteArray, file);
    const auto scene = sceneFrom(file);
    QCOMPARE(scene->layerCount(), 3);
    const auto *layer = qobject_cast<StrokeLayer *>(scene->layer(0));
    QVERIFY(layer);
    QCOMPARE(layer->color(), QColor(40, 97, 184));
    QCOMPARE(layer->numFrames(), 1);
    QVERIFY(layer->isShown());
    QVERIFY(!layer->name().isEmpty());
    QCOMPARE(scene->visualIndex(0), 0);
    QVERIFY(scene->audioLayerIdx() > 0);
    QVERIFY(scene->annotationLayerIdx() > 0);
    QCOMPARE(scene->maximumFrameNumber(), 1);
    QCOMPARE(scene->activeFrame(), 1);
    QCOMPARE(scene->activeLayerIdx(), 0);
    QVERIFY(scene->addStroke(0, 1, block(QRect(1, 1, 4, 4), 200)));
}

void tst_BrokenFiles::secondSceneReplacesTheFirst()
{
    const QByteArray scenes = "<scene frameWidth=\"16\" frameHeight=\"8\"><layers><ordering>1;0</ordering>"
                              "<layer type=\"stroke\"/><layer type=\"stroke\"/></layers></scene>"
                              "<scene frameWidth=\"20\" frameHeight=\"10\"><layers><ordering>0</ordering>"
                              "<layer type=\"stroke\" name=\"Second\"/></layers></scene>";
    const auto scene = sceneFrom("<mr version=\"0.4\">" + scenes + "</mr>");
    QCOMPARE(visualLayerCount(*scene), 1);
    QCOMPARE(scene->layer(0)->name(), QString("Second"));
    QCOMPARE(scene->frameSize(), QSize(20, 10));
    verifySound(*scene);
}

void tst_BrokenFiles::strokesInFrontOfTheDamageSurvive()
{
    BlockBuilder block;
    block.size(16, 8).i64(2);
    block.i32(2).rect(1, 1, 2, 1).i32(2).rle(2, 1, QByteArray::fromHex("0302ffff0a"));
    block.i32(0).u8(1).i32(1).rect(0, 2, 15, 5).i32(2000000000);
    const auto scene = sceneFrom(fileWithBlock(block.bytes()));
    const StrokeDrawing &drawing = drawingAt(*scene, 0, 1);
    QCOMPARE(drawing.strokes().count(), 1);
    QCOMPARE(drawing.size(), QSize(16, 8));
    const QImage &coverage = drawing.image();
    QCOMPARE(coverage.size(), QSize(16, 8));
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 16; ++x)
            QCOMPARE(int(coverage.constScanLine(y)[x]), y == 1 && (x == 1 || x == 2) ? 255 : 0);
    }
}

QTEST_MAIN(tst_BrokenFiles)
#include "tst_brokenfiles.moc"
