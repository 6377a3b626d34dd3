#include "blockbuilder.h"
#include "blockparser.h"
#include "sceneelements.h"
#include "scenefixture.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/glfixture.h"

#include <QTest>

using namespace Model;
using namespace TestSupport;

/// What layers and cells become, read through the scene reader as part of a document.
class tst_LayerReader : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void layerAttributesAreApplied();
    void absentVisibleAndLinkedSayNo();
    void anyWordButNoSaysYes();
    void beyondIsRead_data();
    void beyondIsRead();
    void emptyNameAndNullIdentifierAreLeft();
    void unknownLayerTypesAreSkipped_data();
    void unknownLayerTypesAreSkipped();
    void opacityIsRead_data();
    void opacityIsRead();
    void colorThatIsNoneLeavesTheDefault_data();
    void colorThatIsNoneLeavesTheDefault();
    void cloneAsTheFirstDrawingVanishes();
    void layerOfClonesOnlyGetsABlankCell();
    void cloneSharesTheDrawingBeforeIt();
    void cloneGetsAFreshIdentifier();
    void drawingWithoutTypeIsSkipped();
    void drawingOfUnknownTypeIsRefused_data();
    void drawingOfUnknownTypeIsRefused();
    void keyDrawingIsExactlyYes_data();
    void keyDrawingIsExactlyYes();
    void transformIsBuiltFromWhatParses_data();
    void transformIsBuiltFromWhatParses();
    void scaleOfACellIsLost();
    void transformKeepsSixDigits();
    void originalTakesIdentifierAndCopyId();
    void copyIdOfLostContentIsForgotten_data();
    void copyIdOfLostContentIsForgotten();
    void cloneListsAreKeptAsTheyStand();
    void distantCloneFindsItsTarget_data();
    void distantCloneFindsItsTarget();
    void distantCloneWithoutReferenceMakesNoCell();
    void distantCloneTakesTheFirstWholeReference();
    void distantCloneWithoutTargetKeepsAnEmptyDrawing();
    void imageInAStrokeLayerIsSkipped();
    void strokesWithoutTrailerAreRebuilt();
    void singleStrokeWithoutTrailerIsRebuilt();
    void storedCoverageIsTakenAsItIs();
    void drawingThatTakesTooLongIsKeptAndShownInPart();
    void drawingOfAnotherSizeIsBroughtToTheFrames();
    void audioIsReadAsItCame();
    void badBase64OfASoundIsPassedOverAndTold();
    void annotationsAreReadInOrder();
    void scribbleIsAnAnnotationLayer();
};

void tst_LayerReader::initTestCase()
{
    QVERIFY(startRenderer());
}

void tst_LayerReader::layerAttributesAreApplied()
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

void tst_LayerReader::absentVisibleAndLinkedSayNo()
{
    const auto scene = sceneWithLayers("<layer type=\"stroke\"/>");
    QVERIFY(!scene->visualLayer(0)->isVisible());
    QVERIFY(!scene->layer(0)->isLinked());
}

void tst_LayerReader::anyWordButNoSaysYes()
{
    const auto scene = sceneWithLayers("<layer type=\"stroke\" visible=\"perhaps\" linked=\"\"/>");
    QVERIFY(scene->visualLayer(0)->isVisible());
    QVERIFY(scene->layer(0)->isLinked());
}

void tst_LayerReader::beyondIsRead_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<int>("mode");
    QTest::newRow("nothing") << QByteArray("showNothing") << 1;
    QTest::newRow("freeze") << QByteArray("freezeLast") << 2;
    QTest::newRow("cycle") << QByteArray("cycleDrawings") << 3;
    QTest::newRow("unknown") << QByteArray("FreezeLast") << 1;
}

void tst_LayerReader::beyondIsRead()
{
    QFETCH(QByteArray, word);
    QFETCH(int, mode);
    const auto scene = sceneWithLayers("<layer type=\"stroke\" beyond=\"" + word + "\"/>");
    QCOMPARE(int(scene->layer(0)->beyondLast()), mode);
}

void tst_LayerReader::emptyNameAndNullIdentifierAreLeft()
{
    const auto scene =
        sceneWithLayers("<layer type=\"stroke\" name=\"\" identifier=\"{00000000-0000-0000-0000-000000000000}\"/>");
    QVERIFY(!scene->layer(0)->identifier().isNull());
    QCOMPARE(scene->layer(0)->name(), StrokeLayer(Qt::black, QSize(16, 8)).name());
}

void tst_LayerReader::unknownLayerTypesAreSkipped_data()
{
    QTest::addColumn<QByteArray>("layer");
    QTest::newRow("no type") << QByteArray("<layer name=\"x\"><opacity>1</opacity></layer>");
    QTest::newRow("unknown") << QByteArray("<layer type=\"vector\"><drawing type=\"original\"/></layer>");
    QTest::newRow("another case") << QByteArray("<layer type=\"Stroke\"/>");
}

void tst_LayerReader::unknownLayerTypesAreSkipped()
{
    QFETCH(QByteArray, layer);
    const auto scene = sceneWithLayers(layer + layerElement(original(101)));
    QCOMPARE(visualLayerCount(*scene), 1);
    QCOMPARE(scene->layer(0)->identifier(), uuid(100));
}

void tst_LayerReader::opacityIsRead_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("opacity");
    QTest::newRow("half") << QByteArray("0.5") << 0.5;
    QTest::newRow("too much") << QByteArray("7") << 1.0;
    QTest::newRow("negative") << QByteArray("-2") << 0.0;
    QTest::newRow("no number") << QByteArray("much") << 1.0;
    QTest::newRow("beyond any number") << QByteArray("1e999") << 1.0;
    QTest::newRow("largest number") << QByteArray("1e308") << 1.0;
    QTest::newRow("infinite") << QByteArray("inf") << 1.0;
    QTest::newRow("minus infinite") << QByteArray("-inf") << 0.0;
    QTest::newRow("empty") << QByteArray() << 1.0;
}

void tst_LayerReader::opacityIsRead()
{
    QFETCH(QByteArray, text);
    QFETCH(double, opacity);
    const auto scene = sceneWithLayers("<layer type=\"stroke\"><opacity>" + text + "</opacity></layer>");
    QCOMPARE(scene->visualLayer(0)->opacity(), opacity);
}

void tst_LayerReader::colorThatIsNoneLeavesTheDefault_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QColor>("color");
    QTest::newRow("none") << QByteArray("lightish") << QColor(Qt::black);
    QTest::newRow("empty") << QByteArray() << QColor(Qt::black);
    QTest::newRow("by name") << QByteArray("red") << QColor(Qt::red);
}

void tst_LayerReader::colorThatIsNoneLeavesTheDefault()
{
    QFETCH(QByteArray, text);
    QFETCH(QColor, color);
    const auto scene = sceneWithLayers("<layer type=\"stroke\"><color>" + text + "</color></layer>");
    QCOMPARE(qobject_cast<StrokeLayer *>(scene->layer(0))->color(), color);
}

void tst_LayerReader::cloneAsTheFirstDrawingVanishes()
{
    const auto scene = sceneWithDrawings(hold + original(101) + hold);
    QCOMPARE(scene->visualLayer(0)->numFrames(), 2);
    QCOMPARE(scene->item(0, 1)->identifier, uuid(101));
    QCOMPARE(scene->maximumFrameNumber(), 2);
}

void tst_LayerReader::layerOfClonesOnlyGetsABlankCell()
{
    const auto scene = sceneWithDrawings(hold + hold);
    QCOMPARE(scene->visualLayer(0)->numFrames(), 1);
    QVERIFY(scene->item(0, 1)->isOriginal());
    QVERIFY(drawingAt(*scene, 0, 1).isEmpty());
}

void tst_LayerReader::cloneSharesTheDrawingBeforeIt()
{
    const auto scene = sceneWithDrawings(original(101) + hold + original(103) + hold + hold);
    QCOMPARE(scene->item(0, 2)->drawing, scene->item(0, 1)->drawing);
    QCOMPARE(scene->item(0, 5)->drawing, scene->item(0, 3)->drawing);
    QVERIFY(scene->item(0, 3)->drawing != scene->item(0, 1)->drawing);
    QVERIFY(scene->item(0, 5)->isClone());
}

void tst_LayerReader::cloneGetsAFreshIdentifier()
{
    const auto scene = sceneWithDrawings(original(101) + hold + hold);
    QVERIFY(!scene->item(0, 2)->identifier.isNull());
    QVERIFY(scene->item(0, 2)->identifier != scene->item(0, 3)->identifier);
}

void tst_LayerReader::drawingWithoutTypeIsSkipped()
{
    const auto scene = sceneWithDrawings("<drawing/>" + original(101));
    QCOMPARE(scene->visualLayer(0)->numFrames(), 1);
    QCOMPARE(scene->item(0, 1)->identifier, uuid(101));
}

void tst_LayerReader::drawingOfUnknownTypeIsRefused_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("another case") << QByteArray("Original");
    QTest::newRow("another word") << QByteArray("tween");
    QTest::newRow("much") << QByteArray(100, 'x');
}

void tst_LayerReader::drawingOfUnknownTypeIsRefused()
{
    QFETCH(QByteArray, type);
    Scene scene;
    const ReadResult read = readInto(scene, document(layerElement(original(101) + "<drawing type=\"" + type + "\"/>")));
    QCOMPARE(read.result, FileResult::Error);
    QCOMPARE(read.error.section('\n', 0, 0),
             QString("There is no drawing of the type \"%1\"").arg(QString::fromLatin1(type.left(32))));
}

void tst_LayerReader::keyDrawingIsExactlyYes_data()
{
    QTest::addColumn<QByteArray>("attribute");
    QTest::addColumn<bool>("isKey");
    QTest::newRow("yes") << QByteArray("keyDrawing=\"yes\"") << true;
    QTest::newRow("another word") << QByteArray("keyDrawing=\"true\"") << false;
    QTest::newRow("another case") << QByteArray("keyDrawing=\"Yes\"") << false;
    QTest::newRow("absent") << QByteArray() << false;
}

void tst_LayerReader::keyDrawingIsExactlyYes()
{
    QFETCH(QByteArray, attribute);
    QFETCH(bool, isKey);
    const auto scene = sceneWithDrawings(original(101, {}, attribute) + "<drawing " + attribute + " type=\"clone\"/>");
    QCOMPARE(scene->item(0, 1)->keyDrawing, isKey);
    QCOMPARE(scene->item(0, 2)->keyDrawing, isKey);
}

void tst_LayerReader::transformIsBuiltFromWhatParses_data()
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
    QTest::newRow("beyond any number") << QByteArray("xOffset=\"1e999\" yOffset=\"1\"") << QPointF(0, 1)
                                       << QPointF(1, 1);
}

void tst_LayerReader::transformIsBuiltFromWhatParses()
{
    QFETCH(QByteArray, attributes);
    QFETCH(QPointF, origin);
    QFETCH(QPointF, unit);
    const auto scene = sceneWithDrawings(original(101, {}, attributes));
    const QTransform transform = scene->item(0, 1)->offPegsTransform;
    QCOMPARE(transform.map(QPointF(0, 0)), origin);
    QCOMPARE(transform.map(QPointF(1, 0)), unit);
}

void tst_LayerReader::scaleOfACellIsLost()
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

void tst_LayerReader::transformKeepsSixDigits()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1), 0);
    scene->item(0, 1)->offPegsTransform = QTransform::fromTranslate(1234.56789, 0.000123456789);
    const auto read = sceneFrom(written(*scene));
    QCOMPARE(read->item(0, 1)->offPegsTransform.dx(), 1234.57);
    QCOMPARE(read->item(0, 1)->offPegsTransform.dy(), 0.000123457);
}

void tst_LayerReader::originalTakesIdentifierAndCopyId()
{
    const QByteArray nullId = "{00000000-0000-0000-0000-000000000000}";
    const auto scene =
        sceneWithDrawings(original(101, bitmapBlock().base64(), "copyId=\"" + uuid(8).toByteArray() + "\"") +
                          "<drawing type=\"original\" identifier=\"" + nullId + "\"/>");
    QCOMPARE(scene->item(0, 1)->identifier, uuid(101));
    QCOMPARE(scene->item(0, 1)->drawing->copyId(), uuid(8));
    QVERIFY(!scene->item(0, 2)->identifier.isNull());
    QVERIFY(scene->item(0, 2)->drawing->copyId().isNull());
}

void tst_LayerReader::copyIdOfLostContentIsForgotten_data()
{
    QTest::addColumn<QByteArray>("strokes");
    QTest::newRow("none at all") << QByteArray();
    QTest::newRow("cut short") << bitmapBlock().i32(-1).bytes().left(40).toBase64();
    QTest::newRow("no text of bytes") << QByteArray("~~~~");
}

void tst_LayerReader::copyIdOfLostContentIsForgotten()
{
    QFETCH(QByteArray, strokes);
    // A paste of the whole drawing from elsewhere would be taken for what is left of it here.
    const auto scene = sceneWithDrawings(original(101, strokes, "copyId=\"" + uuid(8).toByteArray() + "\""));
    QCOMPARE(scene->item(0, 1)->identifier, uuid(101));
    QVERIFY(scene->item(0, 1)->drawing->copyId().isNull());
}

void tst_LayerReader::cloneListsAreKeptAsTheyStand()
{
    const QByteArray good =
        "<clone layer=\"" + uuid(1).toByteArray() + "\" drawing=\"" + uuid(2).toByteArray() + "\"/>";
    const QByteArray halves = "<clone layer=\"" + uuid(1).toByteArray() + "\"/><clone drawing=\"rubbish\"/>";
    const auto scene = sceneWithDrawings("<drawing type=\"original\">" + halves + good + "</drawing>");
    const QList<CellRef> expected{{uuid(1), uuid(2)}};
    QCOMPARE(scene->item(0, 1)->clones, expected);
}

void tst_LayerReader::distantCloneFindsItsTarget_data()
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

void tst_LayerReader::distantCloneFindsItsTarget()
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

void tst_LayerReader::distantCloneWithoutReferenceMakesNoCell()
{
    const QByteArray half = "<original layer=\"" + uuid(100).toByteArray() + "\"/>";
    const auto scene = sceneWithDrawings(
        original(101) + "<drawing type=\"distantClone\"/><drawing type=\"distantClone\">" + half + "</drawing>");
    QCOMPARE(scene->visualLayer(0)->numFrames(), 1);
}

void tst_LayerReader::distantCloneWithoutTargetKeepsAnEmptyDrawing()
{
    const auto scene = sceneWithDrawings(original(101, bitmapBlock().base64()) + distantClone(102, 100, 999));
    QVERIFY(scene->item(0, 2)->isDistantClone());
    QCOMPARE(scene->item(0, 2)->origin, (CellRef{uuid(100), uuid(999)}));
    QVERIFY(drawingAt(*scene, 0, 2).isEmpty());
    QCOMPARE(drawingAt(*scene, 0, 2).size(), QSize(16, 8));
}

void tst_LayerReader::imageInAStrokeLayerIsSkipped()
{
    const auto scene = sceneWithDrawings("<drawing type=\"original\"><image>AAAA</image></drawing>");
    QVERIFY(drawingAt(*scene, 0, 1).isEmpty());
}

void tst_LayerReader::strokesWithoutTrailerAreRebuilt()
{
    const auto scene =
        sceneWithDrawings(original(101, bitmapBlock().base64()) + original(102, bitmapBlock().i32(-1).base64()));
    QCOMPARE(pixelsOf(drawingAt(*scene, 0, 1).image()), bitmapPixels());
    QCOMPARE(pixelsOf(drawingAt(*scene, 0, 2).image()), bitmapPixels());
}

void tst_LayerReader::singleStrokeWithoutTrailerIsRebuilt()
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

void tst_LayerReader::storedCoverageIsTakenAsItIs()
{
    // The stored picture is not what the strokes would give: one pixel of 7 at 0, 0.
    const QByteArray stored = bitmapBlock().i32(2).rle(16, 8, QByteArray::fromHex("0301070a")).base64();
    const auto scene = sceneWithDrawings(original(101, stored));
    QCOMPARE(pixelsOf(drawingAt(*scene, 0, 1).image()), QByteArray(16 * 8, '\0').replace(0, 1, "\x07"));
}

void tst_LayerReader::drawingThatTakesTooLongIsKeptAndShownInPart()
{
    // A pixel, and a hundred thousand dots that each cover the frame.
    constexpr int dots = 100'000;
    BlockBuilder block;
    block.size(1920, 1080).i64(2);
    block.i32(2).rect(100, 100, 109, 109).i32(2).rle(1, 1, QByteArray::fromHex("0301ff0a"));
    block.i32(0).u8(1).i32(1).rect(-240, -660, 2160, 1740).i32(0).i32(dots);
    for (int i = 0; i < dots; ++i)
        block.i32(0).f32(960).f32(540).f32(1).f32(1200);
    block.plainCompoundEnd();
    const QByteArray file = "<mr version=\"0.4\"><scene frameWidth=\"1920\" frameHeight=\"1080\"><layers>\n" +
                            layerElement(original(101, block.base64())) + "</layers></scene></mr>";
    QStringList damages;
    const auto scene = sceneFrom(file, &damages);
    QCOMPARE(damages.size(), 1);
    QVERIFY2(damages.first().endsWith(": a drawing is shown only in part, as drawing all of it would take too long"),
             qPrintable(damages.first()));
    const StrokeDrawing &drawing = drawingAt(*scene, 0, 1);
    QCOMPARE(drawing.strokes().count(), 2);
    QCOMPARE(int(drawing.image().constScanLine(105)[105]), 255);
    QCOMPARE(int(drawing.image().constScanLine(500)[500]), 0);
    // Saving it does not make the part the whole.
    const QByteArray again = written(*scene);
    const auto copy = sceneFrom(again, &damages);
    QCOMPARE(damages.size(), 1);
    QCOMPARE(drawingAt(*copy, 0, 1).strokes().count(), 2);
    QCOMPARE(written(*copy), again);
}

void tst_LayerReader::drawingOfAnotherSizeIsBroughtToTheFrames()
{
    BlockBuilder block;
    block.size(4000, 3000).raw(bitmapBlock().bytes().mid(8)).i32(-1);
    const auto scene = sceneWithDrawings(original(101, block.base64()));
    QCOMPARE(drawingAt(*scene, 0, 1).size(), QSize(16, 8));
    QCOMPARE(pixelsOf(drawingAt(*scene, 0, 1).image()), bitmapPixels());
}

void tst_LayerReader::audioIsReadAsItCame()
{
    const auto scene = sceneWithLayers("<layer name=\"Sound\" linked=\"yes\" type=\"audio\">"
                                       "<offsetFrames>-2.125</offsetFrames>"
                                       "<originalAudioData>UklG\nRg==</originalAudioData></layer>");
    const auto *audio = qobject_cast<AudioLayer *>(scene->layer(scene->audioLayerIdx()));
    QVERIFY(audio);
    QCOMPARE(audio->name(), QString("Sound"));
    QVERIFY(audio->isLinked());
    QCOMPARE(audio->originalAudioData(), QByteArray("RIFF"));
    // Hundredths of a frame, halves away from zero.
    QCOMPARE(audio->offsetFrames(), -2.13);
}

void tst_LayerReader::badBase64OfASoundIsPassedOverAndTold()
{
    QStringList damages;
    const auto scene = sceneFrom(document("<layer type=\"audio\">\n<originalAudioData>Ukl!G\nRg==</originalAudioData>"
                                          "</layer>"),
                                 &damages);
    const auto *audio = qobject_cast<AudioLayer *>(scene->layer(scene->audioLayerIdx()));
    QCOMPARE(audio->originalAudioData(), QByteArray("RIFF"));
    QCOMPARE(damages, QStringList("Line 7: the sound is not stored as it should be"));
}

void tst_LayerReader::annotationsAreReadInOrder()
{
    const QByteArray first = BlockBuilder().rle(2, 2, QByteArray::fromHex("030205060a")).base64();
    const QByteArray none = BlockBuilder().i32(0).i32(0).i32(0).base64();
    const auto scene =
        sceneWithLayers("<layer type=\"annotation\"><image>" + none + "</image><image>" + first + "</image></layer>");
    const auto *notes = qobject_cast<AnnotationLayer *>(scene->layer(scene->annotationLayerIdx()));
    QVERIFY(notes);
    QCOMPARE(notes->images().size(), 2);
    QVERIFY(notes->image(1).isNull());
    QCOMPARE(notes->image(2).format(), QImage::Format_Indexed8);
    QCOMPARE(pixelsOf(notes->image(2)), QByteArray::fromHex("05060000"));
}

void tst_LayerReader::scribbleIsAnAnnotationLayer()
{
    const auto scene = sceneWithLayers("<layer type=\"scribble\" name=\"Old\"/>");
    QVERIFY(qobject_cast<AnnotationLayer *>(scene->layer(scene->annotationLayerIdx())));
    QVERIFY(written(*scene).contains("type=\"annotation\""));
}

void tst_LayerReader::distantCloneTakesTheFirstWholeReference()
{
    const auto reference = [](int layer, int cell) {
        return "<original layer=\"" + uuid(layer).toByteArray() + "\" drawing=\"" + uuid(cell).toByteArray() + "\"/>";
    };
    const QByteArray half = "<original layer=\"" + uuid(100).toByteArray() + "\"/>";
    const auto scene = sceneWithDrawings(original(101) + original(102) + "<drawing type=\"distantClone\">" + half +
                                         reference(100, 102) + reference(100, 101) + half + "</drawing>");
    QCOMPARE(scene->item(0, 3)->origin, (CellRef{uuid(100), uuid(102)}));
    QCOMPARE(scene->item(0, 3)->drawing, scene->item(0, 2)->drawing);
}

QTEST_MAIN(tst_LayerReader)
#include "tst_layerreader.moc"
