#include "blockbuilder.h"
#include "blockparser.h"
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
#include <QProgressDialog>
#include <QTest>
#include <QWidget>

using namespace Model;
using namespace TestSupport;

namespace {

/// An original named uuid(\a number), empty unless \a strokes (a block in base64) are given.
QByteArray original(int number, const QByteArray &strokes = {}, const QByteArray &attributes = {})
{
    const QByteArray content = strokes.isEmpty() ? QByteArray() : "<strokes>" + strokes + "</strokes>";
    return "<drawing " + attributes + " type=\"original\" identifier=\"" + uuid(number).toByteArray() + "\">" + content
        + "</drawing>\n";
}

QByteArray distantClone(int number, int layer, int cell)
{
    return "<drawing type=\"distantClone\" identifier=\"" + uuid(number).toByteArray() + "\"><original layer=\""
        + uuid(layer).toByteArray() + "\" drawing=\"" + uuid(cell).toByteArray() + "\"/></drawing>\n";
}

const QByteArray hold = "<drawing type=\"clone\"/>\n";

/// A block of one bitmap stroke: coverage 255 in the rectangle 1, 1, 2 x 1 of a frame of 16 x 8; without its trailer.
BlockBuilder bitmapBlock()
{
    BlockBuilder block;
    block.size(16, 8).i64(1).i32(2).rect(1, 1, 2, 1).i32(2).rle(2, 1, QByteArray::fromHex("0302ffff0a"));
    return block.plainCompoundEnd();
}

/// The pixels that bitmapBlock() makes.
QByteArray bitmapPixels()
{
    return QByteArray(16 * 8, '\0').replace(17, 2, "\xff\xff");
}

std::unique_ptr<Scene> sceneWithLayers(const QByteArray &layers, const QByteArray &sceneAttributes = {})
{
    return sceneFrom(document(layers, sceneAttributes));
}

std::unique_ptr<Scene> sceneWithDrawings(const QByteArray &drawings, const QByteArray &sceneAttributes = {})
{
    return sceneWithLayers(layerElement(drawings), sceneAttributes);
}

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
    void oldLayersAreReplaced();
    void layerAttributesAreApplied();
    void absentVisibleAndLinkedSayNo();
    void anyWordButNoSaysYes();
    void beyondIsRead_data();
    void beyondIsRead();
    void emptyNameAndNullIdentifierAreLeft();
    void paintLayerDisappearsAndItsOrderIsIgnored();
    void unknownLayerTypesAreSkipped_data();
    void unknownLayerTypesAreSkipped();
    void orderingIsApplied_data();
    void orderingIsApplied();
    void opacityIsRead_data();
    void opacityIsRead();
    void colorThatIsNoneLeavesTheDefault_data();
    void colorThatIsNoneLeavesTheDefault();
    void cloneAsTheFirstDrawingVanishes();
    void layerOfClonesOnlyGetsABlankCell();
    void cloneSharesTheDrawingBeforeIt();
    void cloneGetsAFreshIdentifier();
    void drawingWithoutTypeIsSkipped();
    void keyDrawingIsExactlyYes_data();
    void keyDrawingIsExactlyYes();
    void transformIsBuiltFromWhatParses_data();
    void transformIsBuiltFromWhatParses();
    void scaleOfACellIsLost();
    void transformKeepsSixDigits();
    void originalTakesIdentifierAndCopyId();
    void cloneListsAreKeptAsTheyStand();
    void distantCloneFindsItsTarget_data();
    void distantCloneFindsItsTarget();
    void distantCloneWithoutReferenceMakesNoCell();
    void distantCloneWithoutTargetKeepsAnEmptyDrawing();
    void imageInAStrokeLayerIsSkipped();
    void fileWithoutTotalStillLoads();
    void strokesWithoutTrailerAreRebuilt();
    void singleStrokeWithoutTrailerIsRebuilt();
    void storedCoverageIsTakenAsItIs();
    void drawingOfAnotherSizeIsBroughtToTheFrames();
    void audioIsReadAsItCame();
    void annotationsAreReadInOrder();
    void scribbleIsAnAnnotationLayer();
    void savedAndReadSceneIsTheSame();
    void savedAndReadCoverageIsByteEqual();
    void cancelLoadingGivesCancelled();
    void dialogIsModalAndOfAFixedSize();
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
    const auto scene = sceneFrom("<mr version=\"0.4\"><other><layers/></other><scene frameWidth=\"16\" frameHeight=\"8\">"
                                 "<more>text<deep/></more><layers><what/><layer type=\"stroke\"><colour/>"
                                 "<drawing type=\"original\"><thing/></drawing></layer></layers></scene><rest/></mr>");
    QCOMPARE(scene->layerCount(), 1);
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
    const QByteArray file = "<mr version=\"0.4\"><scene><layers>" + layerElement(original(101) + hold + hold)
        + "</layers></scene></mr>";
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
}

void tst_SceneReader::oversizedIntegersReadAsZero()
{
    const auto scene = sceneWithDrawings(original(101) + hold,
                                         "highestUsedLayerNumber=\"4294967296\" frameRange=\"9999999999;2\"");
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
    QTest::newRow("nan") << QByteArray("nan") << 15.0;
    QTest::newRow("infinite") << QByteArray("inf") << 15.0;
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
    QTest::newRow("ends before it begins") << QByteArray("4;2") << 1 << 5;
}

void tst_SceneReader::frameRangeIsRead()
{
    QFETCH(QByteArray, text);
    QFETCH(int, first);
    QFETCH(int, last);
    const auto scene =
        sceneWithDrawings(original(101) + hold + hold + hold + hold, "frameRange=\"" + text + "\"");
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
    scene->setFrameRange(1, 9, 9, 0);
    QCOMPARE(readInto(*scene, document(layerElement(original(101)))).result, FileResult::Success);
    QCOMPARE(scene->layerCount(), 1);
    QCOMPARE(scene->layer(0)->identifier(), uuid(100));
    QCOMPARE(scene->maximumFrameNumber(), 1);
    QCOMPARE(scene->rangeLast(), 1);
    QCOMPARE(scene->audioLayerIdx(), -1);
}

void tst_SceneReader::layerAttributesAreApplied()
{
    const auto scene =
        sceneWithLayers("<layer identifier=\"{00000007-0000-4000-8000-000000000000}\" name=\"Ink &amp; wash\" "
                        "linked=\"yes\" visible=\"no\" beyond=\"freezeLast\" type=\"stroke\">"
                        "<opacity>0.25</opacity><color>#102030</color></layer>");
    const auto *layer = qobject_cast<StrokeLayer *>(scene->layer(0));
    QVERIFY(layer);
    QCOMPARE(layer->identifier(), uuid(7));
    QCOMPARE(layer->name(), QString("Ink & wash"));
    QVERIFY(layer->isLinked());
    QVERIFY(!layer->isVisible());
    QCOMPARE(layer->beyondLast(), Layer::FreezeLast);
    QCOMPARE(layer->opacity(), 0.25);
    QCOMPARE(layer->color(), QColor(0x10, 0x20, 0x30));
}

void tst_SceneReader::absentVisibleAndLinkedSayNo()
{
    const auto scene = sceneWithLayers("<layer type=\"stroke\"/>");
    QVERIFY(!scene->visualLayer(0)->isVisible());
    QVERIFY(!scene->layer(0)->isLinked());
}

void tst_SceneReader::anyWordButNoSaysYes()
{
    const auto scene = sceneWithLayers("<layer type=\"stroke\" visible=\"perhaps\" linked=\"\"/>");
    QVERIFY(scene->visualLayer(0)->isVisible());
    QVERIFY(scene->layer(0)->isLinked());
}

void tst_SceneReader::beyondIsRead_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<int>("mode");
    QTest::newRow("nothing") << QByteArray("showNothing") << 1;
    QTest::newRow("freeze") << QByteArray("freezeLast") << 2;
    QTest::newRow("cycle") << QByteArray("cycleDrawings") << 3;
    QTest::newRow("unknown") << QByteArray("FreezeLast") << 1;
}

void tst_SceneReader::beyondIsRead()
{
    QFETCH(QByteArray, word);
    QFETCH(int, mode);
    const auto scene = sceneWithLayers("<layer type=\"stroke\" beyond=\"" + word + "\"/>");
    QCOMPARE(int(scene->layer(0)->beyondLast()), mode);
}

void tst_SceneReader::emptyNameAndNullIdentifierAreLeft()
{
    const auto scene = sceneWithLayers(
        "<layer type=\"stroke\" name=\"\" identifier=\"{00000000-0000-0000-0000-000000000000}\"/>");
    QVERIFY(!scene->layer(0)->identifier().isNull());
    QCOMPARE(scene->layer(0)->name(), StrokeLayer(Qt::black, QSize(16, 8)).name());
}

void tst_SceneReader::paintLayerDisappearsAndItsOrderIsIgnored()
{
    const QByteArray paint = "<layer name=\"Paint\" linked=\"no\" visible=\"yes\" type=\"paint\"/>";
    const auto scene = sceneWithLayers("<ordering>2;1;0</ordering>" + layerElement(original(101)) + paint
                                       + "<layer name=\"Last\" type=\"stroke\"/>");
    QCOMPARE(scene->layerCount(), 2);
    QCOMPARE(scene->layer(1)->name(), QString("Last"));
    QCOMPARE(scene->layerOrder(), QList<int>({0, 1}));
}

void tst_SceneReader::unknownLayerTypesAreSkipped_data()
{
    QTest::addColumn<QByteArray>("layer");
    QTest::newRow("no type") << QByteArray("<layer name=\"x\"><opacity>1</opacity></layer>");
    QTest::newRow("unknown") << QByteArray("<layer type=\"vector\"><drawing type=\"original\"/></layer>");
    QTest::newRow("another case") << QByteArray("<layer type=\"Stroke\"/>");
}

void tst_SceneReader::unknownLayerTypesAreSkipped()
{
    QFETCH(QByteArray, layer);
    const auto scene = sceneWithLayers(layer + layerElement(original(101)));
    QCOMPARE(scene->layerCount(), 1);
    QCOMPARE(scene->layer(0)->identifier(), uuid(100));
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
    QCOMPARE(scene->layerOrder(), order);
}

void tst_SceneReader::opacityIsRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("opacity");
    QTest::newRow("half") << QByteArray("0.5") << 0.5;
    QTest::newRow("too much") << QByteArray("7") << 1.0;
    QTest::newRow("negative") << QByteArray("-2") << 0.0;
    QTest::newRow("no number") << QByteArray("much") << 1.0;
    QTest::newRow("nan") << QByteArray("nan") << 1.0;
    QTest::newRow("empty") << QByteArray() << 1.0;
}

void tst_SceneReader::opacityIsRead()
{
    QFETCH(QByteArray, text);
    QFETCH(double, opacity);
    const auto scene = sceneWithLayers("<layer type=\"stroke\"><opacity>" + text + "</opacity></layer>");
    QCOMPARE(scene->visualLayer(0)->opacity(), opacity);
}

void tst_SceneReader::colorThatIsNoneLeavesTheDefault_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QColor>("color");
    QTest::newRow("none") << QByteArray("lightish") << QColor(Qt::black);
    QTest::newRow("empty") << QByteArray() << QColor(Qt::black);
    QTest::newRow("by name") << QByteArray("red") << QColor(Qt::red);
}

void tst_SceneReader::colorThatIsNoneLeavesTheDefault()
{
    QFETCH(QByteArray, text);
    QFETCH(QColor, color);
    const auto scene = sceneWithLayers("<layer type=\"stroke\"><color>" + text + "</color></layer>");
    QCOMPARE(qobject_cast<StrokeLayer *>(scene->layer(0))->color(), color);
}

void tst_SceneReader::cloneAsTheFirstDrawingVanishes()
{
    const auto scene = sceneWithDrawings(hold + original(101) + hold);
    QCOMPARE(scene->visualLayer(0)->numFrames(), 2);
    QCOMPARE(scene->item(0, 1)->identifier, uuid(101));
    QCOMPARE(scene->maximumFrameNumber(), 2);
}

void tst_SceneReader::layerOfClonesOnlyGetsABlankCell()
{
    const auto scene = sceneWithDrawings(hold + hold);
    QCOMPARE(scene->visualLayer(0)->numFrames(), 1);
    QVERIFY(scene->item(0, 1)->isOriginal());
    QVERIFY(drawingAt(*scene, 0, 1).isEmpty());
}

void tst_SceneReader::cloneSharesTheDrawingBeforeIt()
{
    const auto scene = sceneWithDrawings(original(101) + hold + original(103) + hold + hold);
    QCOMPARE(scene->item(0, 2)->drawing, scene->item(0, 1)->drawing);
    QCOMPARE(scene->item(0, 5)->drawing, scene->item(0, 3)->drawing);
    QVERIFY(scene->item(0, 3)->drawing != scene->item(0, 1)->drawing);
    QVERIFY(scene->item(0, 5)->isClone());
}

void tst_SceneReader::cloneGetsAFreshIdentifier()
{
    const auto scene = sceneWithDrawings(original(101) + hold + hold);
    QVERIFY(!scene->item(0, 2)->identifier.isNull());
    QVERIFY(scene->item(0, 2)->identifier != scene->item(0, 3)->identifier);
}

void tst_SceneReader::drawingWithoutTypeIsSkipped()
{
    const auto scene = sceneWithDrawings("<drawing/><drawing type=\"Original\"/>" + original(101));
    QCOMPARE(scene->visualLayer(0)->numFrames(), 1);
    QCOMPARE(scene->item(0, 1)->identifier, uuid(101));
}

void tst_SceneReader::keyDrawingIsExactlyYes_data()
{
    QTest::addColumn<QByteArray>("attribute");
    QTest::addColumn<bool>("isKey");
    QTest::newRow("yes") << QByteArray("keyDrawing=\"yes\"") << true;
    QTest::newRow("another word") << QByteArray("keyDrawing=\"true\"") << false;
    QTest::newRow("another case") << QByteArray("keyDrawing=\"Yes\"") << false;
    QTest::newRow("absent") << QByteArray() << false;
}

void tst_SceneReader::keyDrawingIsExactlyYes()
{
    QFETCH(QByteArray, attribute);
    QFETCH(bool, isKey);
    const auto scene = sceneWithDrawings(original(101, {}, attribute) + "<drawing " + attribute + " type=\"clone\"/>");
    QCOMPARE(scene->item(0, 1)->keyDrawing, isKey);
    QCOMPARE(scene->item(0, 2)->keyDrawing, isKey);
}

void tst_SceneReader::transformIsBuiltFromWhatParses_data()
{
    QTest::addColumn<QByteArray>("attributes");
    QTest::addColumn<QPointF>("origin"); ///< where the point 0, 0 goes
    QTest::addColumn<QPointF>("unit");   ///< where the point 1, 0 goes
    QTest::newRow("none") << QByteArray() << QPointF(0, 0) << QPointF(1, 0);
    QTest::newRow("all") << QByteArray("xOffset=\"3\" yOffset=\"-4\" rotationDeg=\"90\"") << QPointF(3, -4)
                         << QPointF(3, -3);
    QTest::newRow("x alone") << QByteArray("xOffset=\"3\"") << QPointF(3, 0) << QPointF(4, 0);
    QTest::newRow("rotation alone") << QByteArray("rotationDeg=\"180\"") << QPointF(0, 0) << QPointF(-1, 0);
    QTest::newRow("no number") << QByteArray("xOffset=\"left\" yOffset=\"2\"") << QPointF(0, 2) << QPointF(1, 2);
    QTest::newRow("nan") << QByteArray("xOffset=\"nan\" yOffset=\"inf\"") << QPointF(0, 0) << QPointF(1, 0);
}

void tst_SceneReader::transformIsBuiltFromWhatParses()
{
    QFETCH(QByteArray, attributes);
    QFETCH(QPointF, origin);
    QFETCH(QPointF, unit);
    const auto scene = sceneWithDrawings(original(101, {}, attributes));
    const QTransform transform = scene->item(0, 1)->offPegsTransform;
    QCOMPARE(transform.map(QPointF(0, 0)), origin);
    QCOMPARE(transform.map(QPointF(1, 0)), unit);
}

void tst_SceneReader::scaleOfACellIsLost()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1), 0);
    scene->item(0, 1)->offPegsTransform = QTransform(0, 3, -3, 0, 10, 20);
    const auto read = sceneFrom(written(*scene));
    const QTransform transform = read->item(0, 1)->offPegsTransform;
    QCOMPARE(transform.map(QPointF(0, 0)), QPointF(10, 20));
    QCOMPARE(transform.map(QPointF(1, 0)), QPointF(10, 21));
    QCOMPARE(transform.map(QPointF(0, 1)), QPointF(9, 20));
}

void tst_SceneReader::transformKeepsSixDigits()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1), 0);
    scene->item(0, 1)->offPegsTransform = QTransform::fromTranslate(1234.56789, 0.000123456789);
    const auto read = sceneFrom(written(*scene));
    QCOMPARE(read->item(0, 1)->offPegsTransform.dx(), 1234.57);
    QCOMPARE(read->item(0, 1)->offPegsTransform.dy(), 0.000123457);
}

void tst_SceneReader::originalTakesIdentifierAndCopyId()
{
    const QByteArray nullId = "{00000000-0000-0000-0000-000000000000}";
    const auto scene = sceneWithDrawings(original(101, bitmapBlock().base64(), "copyId=\"" + uuid(8).toByteArray() + "\"")
                                         + "<drawing type=\"original\" identifier=\"" + nullId + "\"/>");
    QCOMPARE(scene->item(0, 1)->identifier, uuid(101));
    QCOMPARE(scene->item(0, 1)->drawing->copyId(), uuid(8));
    QVERIFY(!scene->item(0, 2)->identifier.isNull());
    QVERIFY(scene->item(0, 2)->drawing->copyId().isNull());
}

void tst_SceneReader::cloneListsAreKeptAsTheyStand()
{
    const QByteArray good =
        "<clone layer=\"" + uuid(1).toByteArray() + "\" drawing=\"" + uuid(2).toByteArray() + "\"/>";
    const QByteArray halves = "<clone layer=\"" + uuid(1).toByteArray() + "\"/><clone drawing=\"rubbish\"/>";
    const auto scene = sceneWithDrawings("<drawing type=\"original\">" + halves + good + "</drawing>");
    const QList<CellRef> expected{{uuid(1), uuid(2)}};
    QCOMPARE(scene->item(0, 1)->clones, expected);
}

void tst_SceneReader::distantCloneFindsItsTarget_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<int>("cloneLayer");
    QTest::addColumn<int>("cloneFrame");
    const QByteArray target = original(102, bitmapBlock().base64());
    const QByteArray link = distantClone(103, 100, 102);
    QTest::newRow("behind it") << target + link + hold << QByteArray() << 0 << 2;
    QTest::newRow("before it") << link + hold + target << QByteArray() << 0 << 1;
    QTest::newRow("in a later layer") << target << link + hold << 1 << 1;
}

void tst_SceneReader::distantCloneFindsItsTarget()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(int, cloneLayer);
    QFETCH(int, cloneFrame);
    const auto scene =
        sceneWithLayers(layerElement(first) + "<layer name=\"B\" type=\"stroke\">" + second + "</layer>");
    const auto target = scene->findItem({uuid(100), uuid(102)});
    const auto found = scene->item(cloneLayer, cloneFrame);
    QVERIFY(found->isDistantClone());
    QCOMPARE(found->identifier, uuid(103));
    QCOMPARE(found->origin, (CellRef{uuid(100), uuid(102)}));
    QCOMPARE(found->drawing, target->drawing);
    // The hold behind it was made before the link was known, and still follows it.
    QCOMPARE(scene->item(cloneLayer, cloneFrame + 1)->drawing, target->drawing);
}

void tst_SceneReader::distantCloneWithoutReferenceMakesNoCell()
{
    const QByteArray half = "<original layer=\"" + uuid(100).toByteArray() + "\"/>";
    const auto scene = sceneWithDrawings(original(101) + "<drawing type=\"distantClone\"/><drawing type=\"distantClone\">"
                                         + half + "</drawing>");
    QCOMPARE(scene->visualLayer(0)->numFrames(), 1);
}

void tst_SceneReader::distantCloneWithoutTargetKeepsAnEmptyDrawing()
{
    const auto scene = sceneWithDrawings(original(101, bitmapBlock().base64()) + distantClone(102, 100, 999));
    QVERIFY(scene->item(0, 2)->isDistantClone());
    QCOMPARE(scene->item(0, 2)->origin, (CellRef{uuid(100), uuid(999)}));
    QVERIFY(drawingAt(*scene, 0, 2).isEmpty());
    QCOMPARE(drawingAt(*scene, 0, 2).size(), QSize(16, 8));
}

void tst_SceneReader::imageInAStrokeLayerIsSkipped()
{
    const auto scene = sceneWithDrawings("<drawing type=\"original\"><image>AAAA</image></drawing>");
    QVERIFY(drawingAt(*scene, 0, 1).isEmpty());
}

void tst_SceneReader::fileWithoutTotalStillLoads()
{
    const auto scene = sceneWithDrawings(original(101, bitmapBlock().i32(-1).base64()) + hold);
    QCOMPARE(scene->visualLayer(0)->numFrames(), 2);
    QVERIFY(!drawingAt(*scene, 0, 1).isEmpty());
}

void tst_SceneReader::strokesWithoutTrailerAreRebuilt()
{
    const auto scene = sceneWithDrawings(original(101, bitmapBlock().base64())
                                         + original(102, bitmapBlock().i32(-1).base64()));
    QCOMPARE(pixelsOf(drawingAt(*scene, 0, 1).image()), bitmapPixels());
    QCOMPARE(pixelsOf(drawingAt(*scene, 0, 2).image()), bitmapPixels());
}

void tst_SceneReader::singleStrokeWithoutTrailerIsRebuilt()
{
    // A marker's line along the middle of the frame, 2 pixels to each side, fully opaque.
    BlockBuilder block;
    block.size(16, 8).i64(1).i32(0).u8(1).i32(1).rect(0, 2, 15, 5).i32(0);
    block.i32(1).i32(1);
    for (const float number : {2.f, 4.f, 13.f, 4.f, 1.f, 1.f, 2.f, 2.f})
        block.f32(number);
    block.plainCompoundEnd();
    const auto scene = sceneWithDrawings(original(101, block.base64()));
    const QByteArray pixels = pixelsOf(drawingAt(*scene, 0, 1).image());
    QCOMPARE(pixels.size(), 16 * 8);
    QVERIFY(uchar(pixels.at(4 * 16 + 8)) > 200);
    QCOMPARE(pixels.first(16), QByteArray(16, '\0'));
    QCOMPARE(pixels.last(16), QByteArray(16, '\0'));
}

void tst_SceneReader::storedCoverageIsTakenAsItIs()
{
    // The stored picture is not what the strokes would give: one pixel of 7 at 0, 0.
    const QByteArray stored =
        bitmapBlock().i32(2).rle(16, 8, QByteArray::fromHex("0301070a")).base64();
    const auto scene = sceneWithDrawings(original(101, stored));
    QCOMPARE(pixelsOf(drawingAt(*scene, 0, 1).image()), QByteArray(16 * 8, '\0').replace(0, 1, "\x07"));
}

void tst_SceneReader::drawingOfAnotherSizeIsBroughtToTheFrames()
{
    BlockBuilder block;
    block.size(4000, 3000).raw(bitmapBlock().bytes().mid(8)).i32(-1);
    const auto scene = sceneWithDrawings(original(101, block.base64()));
    QCOMPARE(drawingAt(*scene, 0, 1).size(), QSize(16, 8));
    QCOMPARE(pixelsOf(drawingAt(*scene, 0, 1).image()), bitmapPixels());
}

void tst_SceneReader::audioIsReadAsItCame()
{
    const auto scene = sceneWithLayers("<layer name=\"Sound\" linked=\"yes\" type=\"audio\">"
                                       "<offsetFrames>-2.125</offsetFrames>"
                                       "<originalAudioData>UklG\nRg==</originalAudioData></layer>");
    const auto *audio = qobject_cast<AudioLayer *>(scene->layer(0));
    QVERIFY(audio);
    QCOMPARE(audio->name(), QString("Sound"));
    QVERIFY(audio->isLinked());
    QCOMPARE(audio->originalAudioData(), QByteArray("RIFF"));
    // Hundredths of a frame, halves away from zero.
    QCOMPARE(audio->offsetFrames(), -2.13);
}

void tst_SceneReader::annotationsAreReadInOrder()
{
    const QByteArray first = BlockBuilder().rle(2, 2, QByteArray::fromHex("030205060a")).base64();
    const QByteArray none = BlockBuilder().i32(0).i32(0).i32(0).base64();
    const auto scene = sceneWithLayers("<layer type=\"annotation\"><image>" + none + "</image><image>" + first
                                       + "</image></layer>");
    const auto *notes = qobject_cast<AnnotationLayer *>(scene->layer(0));
    QVERIFY(notes);
    QCOMPARE(notes->images().size(), 2);
    QVERIFY(notes->image(1).isNull());
    QCOMPARE(notes->image(2).format(), QImage::Format_Indexed8);
    QCOMPARE(pixelsOf(notes->image(2)), QByteArray::fromHex("05060000"));
}

void tst_SceneReader::scribbleIsAnAnnotationLayer()
{
    const auto scene = sceneWithLayers("<layer type=\"scribble\" name=\"Old\"/>");
    QVERIFY(qobject_cast<AnnotationLayer *>(scene->layer(0)));
    QVERIFY(written(*scene).contains("type=\"annotation\""));
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
    const QByteArray file = document(layerElement(drawings) + layerElement(drawings) + "<other/>",
                                     "totalNumberOfDrawings=\"6\"");
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

QTEST_MAIN(tst_SceneReader)
#include "tst_scenereader.moc"
