#include "blockparser.h"
#include "sceneelements.h"
#include "scenefixture.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/files/scenereader.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"
#include "support/glfixture.h"

#include <QBuffer>
#include <QPainterPath>
#include <QProgressDialog>
#include <QTest>
#include <QWidget>

using namespace Model;
using namespace TestSupport;

namespace {

/// A stroke through some points, as a user draws it.
std::unique_ptr<SingleStroke> drawn(const Tool &tool, QSize size, const QList<QPointF> &points)
{
    auto stroke = std::make_unique<SingleStroke>(size, &tool);
    for (const QPointF &point : points) {
        stroke->addSample({point, 0.6, 0});
        stroke->renderLatestSegment();
    }
    stroke->finish();
    stroke->renderLatestSegment();
    return stroke;
}

/// A scene that uses all that the format can hold.
std::unique_ptr<Scene> richScene()
{
    auto scene = emptyScene();
    scene->setFrameSize(QSize(160, 90), MR::FitMode::FitModeIgnore);
    const auto layer = strokeLayer(*scene, 1, 3);
    scene->insertLayer(layer, 0);
    layer->insertCloneAfter(1);
    const PenTool pen(Tool::PenType::Marker);
    const EraserTool eraser(Tool::EraserType::KneadedEraser);
    StrokeDrawing &first = drawingAt(*layer, 1);
    first.addStroke(drawn(pen, scene->frameSize(), {{20, 20}, {60, 40}, {100, 20}, {120, 70}}));
    first.addStroke(drawn(eraser, scene->frameSize(), {{20, 60}, {90, 30}}));
    QPainterPath hole;
    hole.addEllipse(QRectF(50.3, 25.7, 20, 20));
    first.cutPath(hole);
    first.addStroke(drawn(pen, scene->frameSize(), {{40, 80}, {150, 10}}));
    first.addStroke(block(QRect(5, 5, 12, 7), 90));
    drawingAt(*layer, 3).addStroke(drawn(pen, scene->frameSize(), {{10.123, 10.456}, {30.789, 44.1}}));
    drawingAt(*layer, 3).setCopyId(uuid(77));
    layer->item(2)->keyDrawing = true;
    layer->item(3)->offPegsTransform = QTransform::fromTranslate(12.5, -3).rotate(-12.25);
    layer->setLayerBeyondLast(Layer::CycleDrawings);
    layer->setOpacity(0.3);

    const auto other = strokeLayer(*scene, 2, 2);
    const auto far = other->item(2);
    far->type = LayerItem::Type::DistantClone;
    far->drawing = layer->item(1)->drawing;
    far->origin = {layer->identifier(), layer->item(1)->identifier};
    layer->item(1)->clones = {{other->identifier(), far->identifier}};
    other->setVisible(false);
    other->setLinked(true);
    scene->insertLayer(other, 1);
    scene->moveLayer(1, 0);

    const auto audio = std::make_shared<AudioLayer>();
    audio->setName("Sound");
    audio->setOffset(2.25);
    audio->setOriginalAudioData("not decoded by anyone");
    scene->insertLayer(audio, 2);
    const auto notes = std::make_shared<AnnotationLayer>();
    notes->setName("Notes");
    notes->appendImage(note(QSize(30, 20), QPoint(12, 11), 255));
    notes->appendImage({});
    scene->insertLayer(notes, 3);
    scene->setFrameRate(23.98);
    scene->setHighestUsedLayerNumber(9);
    scene->setFrameRange(2, 4, 3, 0);
    return scene;
}

} // namespace

class tst_SceneReader : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void otherVersionsAndRootsAreRefused_data();
    void otherVersionsAndRootsAreRefused();
    void malformedXmlIsReportedWithItsPlace();
    void foreignElementsAreSkipped();
    void sceneAttributesAreApplied();
    void missingSceneAttributesLeaveTheDefaults();
    void frameSizeNeedsBothAttributes();
    void oversizedIntegersReadAsZero();
    void frameRateIsClamped_data();
    void frameRateIsClamped();
    void frameRangeWithoutSemicolonIsIgnored();
    void frameRangeIsRead_data();
    void frameRangeIsRead();
    void positionBehindTheLastCellIsKept();
    void activeLayerOutsideIsBroughtInside_data();
    void activeLayerOutsideIsBroughtInside();
    void prefixedElementsAreOthers_data();
    void prefixedElementsAreOthers();
    void manyDamagesAreCounted();
    void layersThatAreSkippedDoNotCount();
    void oldLayersAreReplaced();
    void secondAudioAndAnnotationLayersAreSkipped();
    void missingLayersAreAddedBelowWhatTheFileHas();
    void paintLayerDisappearsAndItsOrderIsIgnored();
    void orderingIsApplied_data();
    void orderingIsApplied();
    void fileWithoutTotalStillLoads();
    void progressIsScaledByTheTotalOrTheLayers_data();
    void progressIsScaledByTheTotalOrTheLayers();
    void progressMovesOnWhileReading_data();
    void progressMovesOnWhileReading();
    void savedAndReadSceneIsTheSame();
    void savedAndReadCoverageIsByteEqual();
    void cancelLoadingGivesCancelled();
    void cancelledLoadingStopsBeforeTheLayerItIsIn();
    void dialogIsModalAndOfAFixedSize();
    void picturesBeyondTheMemoryAreRefused();
    void readerTellsOfNoDamageInASoundFile();
};

void tst_SceneReader::initTestCase()
{
    QVERIFY(startRenderer());
}

void tst_SceneReader::otherVersionsAndRootsAreRefused_data()
{
    QTest::addColumn<QByteArray>("root");
    QTest::newRow("older") << QByteArray("<mr version=\"0.3\">");
    QTest::newRow("newer") << QByteArray("<mr version=\"0.5\">");
    QTest::newRow("compared as text") << QByteArray("<mr version=\"0.40\">");
    QTest::newRow("with a blank") << QByteArray("<mr version=\" 0.4\">");
    QTest::newRow("without a version") << QByteArray("<mr>");
    QTest::newRow("another root") << QByteArray("<scene version=\"0.4\">");
    QTest::newRow("another case") << QByteArray("<MR version=\"0.4\">");
    QTest::newRow("nothing at all") << QByteArray();
}

void tst_SceneReader::otherVersionsAndRootsAreRefused()
{
    QFETCH(QByteArray, root);
    Scene scene;
    const QByteArray start = "<?xml version=\"1.0\"?>\n<!DOCTYPE mr>\n";
    const ReadResult read = readInto(scene, start + root);
    QCOMPARE(read.result, FileResult::Error);
    const QStringList lines = read.error.split(u'\n');
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines[0], QString("The file is not an MR version 0.4 file"));
    // The parser stands behind the root element's tag, in the third line.
    QCOMPARE(lines[1], QString("Line 3, column %1").arg(root.size()));
}

void tst_SceneReader::malformedXmlIsReportedWithItsPlace()
{
    Scene scene;
    const ReadResult read = readInto(scene, "<mr version=\"0.4\">\n<scene>\n<layers></scene></mr>");
    QCOMPARE(read.result, FileResult::Error);
    QVERIFY2(read.error.contains("\nLine 3, column "), qPrintable(read.error));
    QVERIFY(!read.error.startsWith(u'\n'));
}

void tst_SceneReader::foreignElementsAreSkipped()
{
    const auto scene =
        sceneFrom("<mr version=\"0.4\"><other><layers/></other><scene frameWidth=\"16\" frameHeight=\"8\">"
                  "<more>text<deep/></more><layers><what/><layer type=\"stroke\"><colour/>"
                  "<drawing type=\"original\"><thing/></drawing></layer></layers></scene><rest/></mr>");
    QCOMPARE(visualLayerCount(*scene), 1);
    QCOMPARE(scene->visualLayer(0)->numFrames(), 1);
}

void tst_SceneReader::sceneAttributesAreApplied()
{
    const auto scene = sceneWithDrawings(original(101) + hold + hold + original(102),
                                         "frameRange=\"2;4\" activeFrameNumber=\"3\" activeLayerIndex=\"0\" "
                                         "highestUsedLayerNumber=\"12\" fps=\"24.5\" totalNumberOfDrawings=\"4\"");
    QCOMPARE(scene->frameSize(), QSize(16, 8));
    QCOMPARE(scene->rangeFirst(), 2);
    QCOMPARE(scene->rangeLast(), 4);
    QCOMPARE(scene->activeFrame(), 3);
    QCOMPARE(scene->activeLayerIdx(), 0);
    QCOMPARE(scene->highestUsedLayerNumber(), 12);
    QCOMPARE(scene->frameRate(), 24.5);
}

void tst_SceneReader::missingSceneAttributesLeaveTheDefaults()
{
    Scene scene;
    scene.setFrameRate(15);
    scene.setHighestUsedLayerNumber(4);
    const QSize size = scene.frameSize();
    const QByteArray file =
        "<mr version=\"0.4\"><scene><layers>" + layerElement(original(101) + hold + hold) + "</layers></scene></mr>";
    QCOMPARE(readInto(scene, file).result, FileResult::Success);
    QCOMPARE(scene.frameSize(), size);
    QCOMPARE(scene.frameRate(), 15.0);
    QCOMPARE(scene.highestUsedLayerNumber(), 4);
    QCOMPARE(scene.rangeFirst(), 1);
    QCOMPARE(scene.rangeLast(), 3);
    QCOMPARE(scene.activeFrame(), 1);
    QCOMPARE(scene.activeLayerIdx(), 0);
}

void tst_SceneReader::frameSizeNeedsBothAttributes()
{
    Scene scene;
    scene.setFrameSize(QSize(40, 30), MR::FitMode::FitModeIgnore);
    QCOMPARE(readInto(scene, "<mr version=\"0.4\"><scene frameWidth=\"16\"><layers/></scene></mr>").result,
             FileResult::Success);
    QCOMPARE(scene.frameSize(), QSize(40, 30));
    QCOMPARE(readInto(scene, "<mr version=\"0.4\"><scene frameHeight=\"16\"><layers/></scene></mr>").result,
             FileResult::Success);
    QCOMPARE(scene.frameSize(), QSize(40, 30));
}

void tst_SceneReader::oversizedIntegersReadAsZero()
{
    const auto scene =
        sceneWithDrawings(original(101) + hold, "highestUsedLayerNumber=\"4294967296\" frameRange=\"9999999999;2\"");
    QCOMPARE(scene->highestUsedLayerNumber(), 0);
    QCOMPARE(scene->rangeFirst(), 1);
    QCOMPARE(scene->rangeLast(), 2);
}

void tst_SceneReader::frameRateIsClamped_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("rate");
    QTest::newRow("too slow") << QByteArray("0") << 0.1;
    QTest::newRow("too fast") << QByteArray("1e9") << 60.0;
    QTest::newRow("no number") << QByteArray("fast") << 15.0;
    QTest::newRow("empty") << QByteArray("") << 15.0;
    QTest::newRow("beyond any number") << QByteArray("1e999") << 15.0;
    QTest::newRow("infinite") << QByteArray("inf") << 60.0;
    QTest::newRow("minus infinite") << QByteArray("-inf") << 0.1;
}

void tst_SceneReader::frameRateIsClamped()
{
    QFETCH(QByteArray, text);
    QFETCH(double, rate);
    Scene scene;
    scene.setFrameRate(15);
    QCOMPARE(readInto(scene, document({}, "fps=\"" + text + "\"")).result, FileResult::Success);
    QCOMPARE(scene.frameRate(), rate);
}

void tst_SceneReader::frameRangeWithoutSemicolonIsIgnored()
{
    const auto scene = sceneWithDrawings(original(101) + hold + hold + hold, "frameRange=\"5\"");
    QCOMPARE(scene->rangeFirst(), 1);
    QCOMPARE(scene->rangeLast(), 4);
}

void tst_SceneReader::frameRangeIsRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("inside") << QByteArray("2;3") << 2 << 3;
    QTest::newRow("too long") << QByteArray("2;99") << 2 << 5;
    QTest::newRow("negative") << QByteArray("-4;3") << 1 << 3;
    QTest::newRow("three parts") << QByteArray("2;3;4") << 1 << 5;
    QTest::newRow("a single frame is widened downwards") << QByteArray("3;3") << 2 << 3;
    QTest::newRow("the first frame is widened upwards") << QByteArray("1;1") << 1 << 2;
    QTest::newRow("wholly behind the scene") << QByteArray("8;9") << 4 << 5;
    QTest::newRow("no numbers") << QByteArray("a;b") << 1 << 2;
}

void tst_SceneReader::frameRangeIsRead()
{
    QFETCH(QByteArray, text);
    QFETCH(int, first);
    QFETCH(int, last);
    const auto scene = sceneWithDrawings(original(101) + hold + hold + hold + hold, "frameRange=\"" + text + "\"");
    QCOMPARE(scene->rangeFirst(), first);
    QCOMPARE(scene->rangeLast(), last);
    QVERIFY(scene->activeFrame() >= first);
    QVERIFY(scene->activeFrame() <= last);
}

void tst_SceneReader::positionBehindTheLastCellIsKept()
{
    const auto scene = sceneWithLayers(layerElement(original(101) + hold), "activeFrameNumber=\"3\"");
    QCOMPARE(scene->activeFrame(), 3);
    QVERIFY(scene->isAfterLast(0, 3));
}

void tst_SceneReader::oldLayersAreReplaced()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 5, 9), 0);
    scene->insertLayer(std::make_shared<AudioLayer>(), 1);
    scene->insertLayer(std::make_shared<AnnotationLayer>(), 2);
    const QUuid oldAudio = scene->layer(1)->identifier();
    const QUuid oldNotes = scene->layer(2)->identifier();
    scene->setFrameRange(1, 9, 9, 0);
    QCOMPARE(readInto(*scene, document(layerElement(original(101)))).result, FileResult::Success);
    QCOMPARE(visualLayerCount(*scene), 1);
    QCOMPARE(scene->layer(0)->identifier(), uuid(100));
    QCOMPARE(scene->maximumFrameNumber(), 1);
    QCOMPARE(scene->rangeLast(), 1);
    QCOMPARE(scene->indexOfLayer(oldAudio), -1);
    QCOMPARE(scene->indexOfLayer(oldNotes), -1);
}

void tst_SceneReader::paintLayerDisappearsAndItsOrderIsIgnored()
{
    const QByteArray paint = "<layer name=\"Paint\" linked=\"no\" visible=\"yes\" type=\"paint\"/>";
    const auto scene = sceneWithLayers("<ordering>2;1;0</ordering>" + layerElement(original(101)) + paint +
                                       "<layer name=\"Last\" type=\"stroke\"/>");
    QCOMPARE(visualLayerCount(*scene), 2);
    QCOMPARE(scene->layer(1)->name(), QString("Last"));
    QCOMPARE(scene->layerOrder().first(2), QList<int>({0, 1}));
}

void tst_SceneReader::orderingIsApplied_data()
{
    QTest::addColumn<QByteArray>("ordering");
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("turned round") << QByteArray("2;1;0") << QList<int>{2, 1, 0};
    QTest::newRow("rotated") << QByteArray("1;2;0") << QList<int>{1, 2, 0};
    QTest::newRow("empty parts are skipped") << QByteArray(";2;;0;1;") << QList<int>{2, 0, 1};
    QTest::newRow("too short") << QByteArray("2;1") << QList<int>{0, 1, 2};
    QTest::newRow("too long") << QByteArray("2;1;0;0") << QList<int>{0, 1, 2};
    // No number reads as 0: layer 0 goes to place 0 and then to place 2.
    QTest::newRow("no number") << QByteArray("a;1;b") << QList<int>{1, 2, 0};
    QTest::newRow("layers that are not there") << QByteArray("7;-1;99") << QList<int>{0, 1, 2};
}

void tst_SceneReader::orderingIsApplied()
{
    QFETCH(QByteArray, ordering);
    QFETCH(QList<int>, order);
    const QByteArray layer = "<layer type=\"stroke\"/>";
    const auto scene = sceneWithLayers("<ordering>" + ordering + "</ordering>" + layer + layer + layer);
    // The sound and the notes, which the file lacks, lie below.
    QCOMPARE(scene->layerOrder(), order + QList<int>({3, 4}));
}

void tst_SceneReader::fileWithoutTotalStillLoads()
{
    const auto scene = sceneWithDrawings(original(101, bitmapBlock().i32(-1).base64()) + hold);
    QCOMPARE(scene->visualLayer(0)->numFrames(), 2);
    QVERIFY(!drawingAt(*scene, 0, 1).isEmpty());
}

void tst_SceneReader::progressIsScaledByTheTotalOrTheLayers_data()
{
    QTest::addColumn<QByteArray>("attributes");
    QTest::addColumn<int>("maximum");
    QTest::newRow("drawings, as the file counts them") << QByteArray("totalNumberOfDrawings=\"40\"") << 41;
    QTest::newRow("entries of the order") << QByteArray() << 4;
    QTest::newRow("count that is none") << QByteArray("totalNumberOfDrawings=\"many\"") << 4;
}

void tst_SceneReader::progressIsScaledByTheTotalOrTheLayers()
{
    QFETCH(QByteArray, attributes);
    QFETCH(int, maximum);
    const QByteArray file =
        document("<ordering>0;1;2</ordering>" + layerElement(original(101) + hold) + layerElement({}, 200), attributes);
    QBuffer buffer;
    buffer.setData(file);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QWidget window;
    Scene scene;
    SceneReader reader(&scene, &window);
    QCOMPARE(reader.read(&buffer), FileResult::Success);
    QCOMPARE(window.findChild<QProgressDialog *>()->maximum(), maximum);
    QVERIFY(!window.findChild<QProgressDialog *>()->isVisible());
}

void tst_SceneReader::savedAndReadSceneIsTheSame()
{
    const auto scene = richScene();
    const QByteArray file = written(*scene);
    const auto read = sceneFrom(file);
    QCOMPARE(QString::fromUtf8(written(*read)), QString::fromUtf8(file));
    QCOMPARE(read->frameRate(), 23.98);
    QCOMPARE(read->layerOrder(), scene->layerOrder());
    QCOMPARE(read->activeFrame(), scene->activeFrame());
}

void tst_SceneReader::savedAndReadCoverageIsByteEqual()
{
    const auto scene = richScene();
    const auto read = sceneFrom(written(*scene));
    for (int layerIdx = 0; layerIdx < 2; ++layerIdx) {
        for (int frameId = 1; frameId <= scene->lastFrame(layerIdx); ++frameId)
            QCOMPARE(drawingAt(*read, layerIdx, frameId).image(), drawingAt(*scene, layerIdx, frameId).image());
    }
    QVERIFY(!drawingAt(*read, 0, 1).image().isNull());
    QVERIFY(drawingAt(*read, 0, 1).strokes().cutPath().isEmpty());
    QCOMPARE(drawingAt(*read, 0, 1).strokes().recursiveCount(), drawingAt(*scene, 0, 1).strokes().recursiveCount());
}

void tst_SceneReader::cancelLoadingGivesCancelled()
{
    const QByteArray drawings = original(101, bitmapBlock().base64()) + hold + hold;
    const QByteArray file =
        document(layerElement(drawings) + layerElement(drawings, 200) + "<other/>", "totalNumberOfDrawings=\"6\"");
    const qsizetype firstChild = file.indexOf("<drawing");
    const qsizetype end = file.indexOf("</scene>");
    for (qsizetype cancelAt = firstChild; cancelAt < end; cancelAt += 17) {
        Scene scene;
        QWidget window;
        SceneReader reader(&scene, &window);
        CancellingDevice device(&window, cancelAt, file);
        QVERIFY(device.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        QCOMPARE(reader.read(&device), FileResult::Cancelled);
    }
}

void tst_SceneReader::dialogIsModalAndOfAFixedSize()
{
    Scene scene;
    QWidget window;
    const SceneReader reader(&scene, &window);
    const auto *dialog = window.findChild<QProgressDialog *>();
    QVERIFY(dialog);
    QCOMPARE(dialog->windowModality(), Qt::WindowModal);
    QCOMPARE(dialog->minimumDuration(), 2000);
    QCOMPARE(dialog->labelText(), QString("Opening scene..."));
    QCOMPARE(dialog->minimumSize(), dialog->maximumSize());
    QVERIFY(!dialog->isVisible());
}

void tst_SceneReader::cancelledLoadingStopsBeforeTheLayerItIsIn()
{
    const QByteArray drawings = original(101, bitmapBlock().base64()) + hold + hold;
    const QByteArray first = layerElement(drawings);
    const QByteArray file = document(first + layerElement(drawings, 200), "frameRange=\"1;3\" activeFrameNumber=\"2\"");
    Scene scene;
    QWidget window;
    SceneReader reader(&scene, &window);
    // In the second drawing of the second layer.
    const qsizetype cancelAt = file.indexOf("<drawing type=\"clone\"/>", file.indexOf(first) + first.size());
    CancellingDevice device(&window, cancelAt, file);
    QVERIFY(device.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QCOMPARE(reader.read(&device), FileResult::Cancelled);
    // Nothing is made whole: no usual layers, no position. What was read goes when the caller drops the scene.
    QCOMPARE(scene.layerCount(), 1);
    QCOMPARE(scene.activeFrame(), -1);
    QCOMPARE(scene.activeLayerIdx(), -1);
    QVERIFY(scene.undoStack()->isClean());
    const std::weak_ptr<Layer> partial = scene.layerPtr(0);
    scene.removeLayer(0);
    QVERIFY(partial.expired());
}

void tst_SceneReader::progressMovesOnWhileReading_data()
{
    QTest::addColumn<QByteArray>("attributes");
    QTest::addColumn<QList<int>>("values");
    // Per drawing, and then all of it; or per layer begun, and then all of it.
    QTest::newRow("drawings") << QByteArray("totalNumberOfDrawings=\"3\"") << QList<int>{-1, 0, 1, 2, 3, 4};
    QTest::newRow("layers") << QByteArray() << QList<int>{-1, 0, 1, 3};
}

void tst_SceneReader::progressMovesOnWhileReading()
{
    QFETCH(QByteArray, attributes);
    QFETCH(QList<int>, values);
    QByteArray file = document(
        "<ordering>0;1</ordering>" + layerElement(original(101) + hold) + layerElement(original(102), 200), attributes);
    // Enough behind the scene that the reader asks for more when it is through with it.
    file.replace("</mr>", QByteArray(64, ' ') + "</mr>");
    QWidget window;
    Scene scene;
    SceneReader reader(&scene, &window);
    ProgressRecorder device(&window, file);
    QVERIFY(device.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QCOMPARE(reader.read(&device), FileResult::Success);
    QCOMPARE(device.values(), values);
}

void tst_SceneReader::secondAudioAndAnnotationLayersAreSkipped()
{
    QStringList damages;
    const auto scene =
        sceneFrom(document("<layer type=\"audio\" name=\"A1\"/><layer type=\"annotation\" name=\"N1\"/>"
                           "<layer type=\"audio\" name=\"A2\"/>\n<layer type=\"scribble\" name=\"N2\"/>" +
                           layerElement(original(101))),
                  &damages);
    // The layers begin in the sixth line.
    const QStringList expected{"Line 6: a scene has only one layer for sound, this one was left out",
                               "Line 7: a scene has only one layer for notes, this one was left out"};
    QCOMPARE(damages, expected);
    QCOMPARE(scene->layerCount(), 3);
    QCOMPARE(scene->layer(0)->name(), QString("A1"));
    QCOMPARE(scene->layer(1)->name(), QString("N1"));
    QCOMPARE(scene->layer(2)->identifier(), uuid(100));
}

void tst_SceneReader::missingLayersAreAddedBelowWhatTheFileHas()
{
    const auto scene = sceneWithLayers("<ordering>1;0</ordering>" + layerElement(original(101)) +
                                       "<layer type=\"stroke\" name=\"Top\"/>");
    QCOMPARE(scene->layerOrder(), QList<int>({1, 0, 2, 3}));
    QCOMPARE(scene->audioLayerIdx(), 2);
    QCOMPARE(scene->annotationLayerIdx(), 3);
    QVERIFY(qobject_cast<AudioLayer *>(scene->layer(2)));
    QVERIFY(qobject_cast<AnnotationLayer *>(scene->layer(3)));
}

void tst_SceneReader::picturesBeyondTheMemoryAreRefused()
{
    // The note takes more than a byte beside the three pictures of the frame, and less than a mebibyte.
    constexpr qint64 framePictures = 3 * 4 * 16 * 8;
    const QByteArray note = BlockBuilder().rle(4, 4, QByteArray::fromHex("0301080a")).base64();
    const QByteArray file = document("<layer type=\"annotation\">\n<image>" + note + "</image></layer>");
    for (const qint64 limit : {framePictures + 1, qint64(1) << 20}) {
        QBuffer buffer;
        buffer.setData(file);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        Scene scene;
        SceneReader reader(&scene, nullptr);
        reader.setMemoryLimit(limit);
        const bool isEnough = limit > framePictures + 1;
        QCOMPARE(reader.read(&buffer), isEnough ? FileResult::Success : FileResult::Error);
        const QString text("The pictures in the file need more memory than there is\nLine 7, column ");
        QCOMPARE(reader.errorString().startsWith(text), !isEnough);
    }
}

void tst_SceneReader::readerTellsOfNoDamageInASoundFile()
{
    QBuffer buffer;
    buffer.setData(written(*richScene()));
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    Scene scene;
    SceneReader reader(&scene, nullptr);
    QCOMPARE(reader.read(&buffer), FileResult::Success);
    QCOMPARE(reader.damages(), QStringList());
    QVERIFY(!reader.lacksRenderer());
}

void tst_SceneReader::activeLayerOutsideIsBroughtInside_data()
{
    QTest::addColumn<QByteArray>("index");
    QTest::addColumn<int>("active");
    QTest::newRow("first") << QByteArray("0") << 0;
    QTest::newRow("third") << QByteArray("2") << 2;
    // From what cannot be drawn on it goes up to the next layer that can.
    QTest::newRow("of the sound") << QByteArray("3") << 2;
    QTest::newRow("of the notes that the file lacks") << QByteArray("4") << 2;
    QTest::newRow("behind the last") << QByteArray("5") << 0;
    QTest::newRow("far outside") << QByteArray("99") << 0;
    QTest::newRow("negative") << QByteArray("-1") << 0;
}

void tst_SceneReader::activeLayerOutsideIsBroughtInside()
{
    QFETCH(QByteArray, index);
    QFETCH(int, active);
    const auto scene = sceneWithLayers(layerElement(original(101), 100) + layerElement(original(201), 200) +
                                           layerElement(original(301), 300) + "<layer type=\"audio\" name=\"S\"/>",
                                       "activeLayerIndex=\"" + index + "\"");
    QCOMPARE(scene->activeLayerIdx(), active);
}

void tst_SceneReader::prefixedElementsAreOthers_data()
{
    QTest::addColumn<QByteArray>("file");
    const QByteArray layer = layerElement(original(101));
    QTest::newRow("scene") << QByteArray("<mr version=\"0.4\"><x:scene frameWidth=\"16\" frameHeight=\"8\"><layers>") +
                                  layer + "</layers></x:scene></mr>";
    QTest::newRow("layers") << "<mr version=\"0.4\"><scene><x:layers>" + layer + "</x:layers></scene></mr>";
    QTest::newRow("layer") << document("<x:layer type=\"stroke\" name=\"A\"/>");
    QTest::newRow("attribute") << document("<layer x:type=\"stroke\" name=\"A\"/>");
}

void tst_SceneReader::prefixedElementsAreOthers()
{
    QFETCH(QByteArray, file);
    const auto scene = sceneFrom(file);
    QCOMPARE(visualLayerCount(*scene), 1);
    QVERIFY(scene->layer(0)->name() != "A");
    Scene other;
    QCOMPARE(readInto(other, "<x:mr version=\"0.4\"></x:mr>").result, FileResult::Error);
}

void tst_SceneReader::manyDamagesAreCounted()
{
    constexpr int count = 5000;
    QByteArray file = document(
        layerElement(QByteArray("<drawing type=\"original\"><strokes>AAAA</strokes></drawing>\n").repeated(count)));
    QBuffer buffer(&file);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    Scene scene;
    SceneReader reader(&scene, nullptr);
    QCOMPARE(reader.read(&buffer), FileResult::Success);
    QCOMPARE(reader.damageCount(), count);
    QCOMPARE(reader.damages().size(), 1001);
    QCOMPARE(reader.damages().at(999), QString("Line 1006: a drawing cannot be read to its end"));
    QCOMPARE(reader.damages().constLast(), QString("... and 4000 more"));
}

void tst_SceneReader::layersThatAreSkippedDoNotCount()
{
    const QByteArray most = QByteArray("<layer type=\"stroke\"/>").repeated(Scene::maximumLayers - 2) +
                            "<layer type=\"audio\"/><layer type=\"annotation\"/>";
    Scene scene;
    const ReadResult read = readInto(scene, document("<layer/>" + most + "<layer type=\"paint\"/><layer/>"));
    QVERIFY2(read.result == FileResult::Success, qPrintable(read.error));
    QCOMPARE(scene.layerCount(), Scene::maximumLayers);
    Scene other;
    QCOMPARE(readInto(other, document(most + "<layer type=\"stroke\"/>")).result, FileResult::Error);
}

QTEST_MAIN(tst_SceneReader)
#include "tst_scenereader.moc"
