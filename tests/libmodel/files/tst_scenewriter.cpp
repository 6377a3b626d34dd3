#include "blockbuilder.h"
#include "blockparser.h"
#include "scenefixture.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/files/scenewriter.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"
#include "support/glfixture.h"

#include <QBuffer>
#include <QProgressDialog>
#include <QRegularExpression>
#include <QTest>
#include <QWidget>
#include <QXmlStreamReader>

using namespace Model;
using namespace TestSupport;

namespace {

/// The first element of that name in \a file, its attributes in written order as name="value".
QString firstTag(const QByteArray &file, const QString &element)
{
    const QRegularExpression tag("<" + element + "\\b[^>]*>");
    return tag.match(QString::fromUtf8(file)).captured();
}

/// The texts of all elements of that name in \a file, base64 undone.
QList<QByteArray> blocks(const QByteArray &file, const QString &element)
{
    QList<QByteArray> found;
    QXmlStreamReader xml(file);
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == element)
            found.append(QByteArray::fromBase64(xml.readElementText().toLatin1()));
    }
    return found;
}

/// The first drawing of \a scene as the file has it.
ParsedDrawing firstDrawing(Scene &scene)
{
    const auto drawing = parseStrokesBlock(blocks(written(scene), "strokes").value(0));
    if (!drawing)
        qFatal("The block does not follow the format");
    return *drawing;
}

/// A scene of one layer with one drawing that has taken \a stroke.
std::unique_ptr<Scene> sceneWith(std::unique_ptr<Stroke> stroke)
{
    auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1), 0);
    if (!drawingAt(*scene, 0, 1).addStroke(std::move(stroke)))
        qFatal("The drawing does not take the stroke");
    return scene;
}

std::unique_ptr<SingleStroke> lineStroke(const Tool &tool)
{
    auto stroke = std::make_unique<SingleStroke>(QSize(16, 8), &tool);
    stroke->addSample({QPointF(2, 4), 0.5, 1});
    stroke->addSample({QPointF(13, 4), 0.75, 2});
    stroke->finish();
    stroke->renderLatestSegment();
    return stroke;
}

/// A device that takes nothing, as a full disk.
class FullDevice : public QIODevice
{
protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64) override { return -1; }
};

} // namespace

class tst_SceneWriter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void smallSceneIsTheExpectedDocument();
    void framesTooLargeToBeReadAreRefused_data();
    void framesTooLargeToBeReadAreRefused();
    void sceneAttributesAreInOrder();
    void drawingsAreCountedOverAllLayers();
    void orderingIsTheDisplayOrder();
    void layerAttributesAreInOrder_data();
    void layerAttributesAreInOrder();
    void opacityAndColorAreTexts();
    void nameKeepsWhatXmlCanHold();
    void cellAttributesAreInOrder();
    void moveWithoutATurnHasRotationZero();
    void distantClonesAndTheirOriginalNameEachOther();
    void copyIdOfAnOriginalIsWritten();
    void emptyDrawingHasNoBitmap();
    void bitmapStrokeIsStoredWithItsPixels();
    void coverageImageStandsBehindTheStrokes();
    void penStrokeIsStoredAsSinglePrecision();
    void eraserStrokeNamesItsKind();
    void audioIsStoredAsItCame();
    void annotationsAreRunLengthBlocks();
    void savingTwiceGivesTheSameBytes();
    void cancelIsNoticedAtEveryLayerAndDrawing();
    void refusingDeviceIsAnError();
    void progressCountsLayersAndDrawings();
    void progressMovesOnPerDrawingAndLayer();
};

void tst_SceneWriter::initTestCase()
{
    QVERIFY(startRenderer());
}

void tst_SceneWriter::smallSceneIsTheExpectedDocument()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->insertCloneAfter(1);
    scene->insertLayer(layer, 0);
    const auto audio = std::make_shared<AudioLayer>();
    audio->setName("Audio");
    audio->setIdentifier(uuid(200));
    audio->setOffset(-1.5);
    audio->setOriginalAudioData("RIFF");
    scene->insertLayer(audio, 1);
    const auto notes = std::make_shared<AnnotationLayer>();
    notes->setName("Notes");
    notes->setIdentifier(uuid(300));
    notes->appendImage(note(QSize(2, 1), QPoint(0, 0), 7));
    scene->insertLayer(notes, 2);
    scene->setFrameRange(1, 2, 2, 0);
    scene->setHighestUsedLayerNumber(3);

    const QByteArray strokes = BlockBuilder().size(16, 8).i64(0).plainCompoundEnd().i32(-1).base64();
    // One pixel copied with a count of one byte, then the end: empty ends of rows are not written.
    const QByteArray image = BlockBuilder().rle(2, 1, QByteArray::fromHex("0301070a")).base64();
    const QByteArray expected =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE mr>\n"
        "<mr version=\"0.4\">\n"
        "    <scene frameWidth=\"16\" frameHeight=\"8\" frameRange=\"1;2\" activeFrameNumber=\"2\""
        " activeLayerIndex=\"0\" highestUsedLayerNumber=\"3\" fps=\"12\" totalNumberOfDrawings=\"2\">\n"
        "        <layers>\n"
        "            <ordering>0;1;2</ordering>\n"
        "            <layer identifier=\"{00000064-0000-4000-8000-000000000000}\" name=\"Layer1\" linked=\"no\""
        " visible=\"yes\" type=\"stroke\">\n"
        "                <opacity>1</opacity>\n"
        "                <color>#ff0000</color>\n"
        "                <drawing type=\"original\" identifier=\"{00000065-0000-4000-8000-000000000000}\">\n"
        "                    <strokes>" +
        strokes +
        "</strokes>\n"
        "                </drawing>\n"
        "                <drawing type=\"clone\"/>\n"
        "            </layer>\n"
        "            <layer identifier=\"{000000c8-0000-4000-8000-000000000000}\" name=\"Audio\" linked=\"no\""
        " type=\"audio\">\n"
        "                <offsetFrames>-1.5</offsetFrames>\n"
        "                <originalAudioData>UklGRg==</originalAudioData>\n"
        "            </layer>\n"
        "            <layer identifier=\"{0000012c-0000-4000-8000-000000000000}\" name=\"Notes\" linked=\"no\""
        " type=\"annotation\">\n"
        "                <image>" +
        image +
        "</image>\n"
        "            </layer>\n"
        "        </layers>\n"
        "    </scene>\n"
        "</mr>\n";
    QCOMPARE(QString::fromUtf8(written(*scene)), QString::fromUtf8(expected));
}

void tst_SceneWriter::framesTooLargeToBeReadAreRefused_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("isWritten");
    QTest::newRow("widest") << QSize(8192, 1) << true;
    QTest::newRow("highest") << QSize(1, 8192) << true;
    QTest::newRow("too wide") << QSize(8193, 1) << false;
    QTest::newRow("too high") << QSize(1, 8193) << false;
}

void tst_SceneWriter::framesTooLargeToBeReadAreRefused()
{
    QFETCH(const QSize, size);
    QFETCH(const bool, isWritten);
    const auto scene = emptyScene();
    scene->setFrameSize(size, MR::FitMode::FitModeIgnore);
    QCOMPARE(scene->frameSize(), size);
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    SceneWriter writer(scene.get(), nullptr);
    QCOMPARE(writer.write(&buffer), isWritten ? FileResult::Success : FileResult::Error);
    QCOMPARE(writer.refusal(), isWritten ? "" : "The frames are larger than 8192 pixels, which no file can hold");
    QCOMPARE(buffer.data().isEmpty(), !isWritten);
    Scene copy;
    QCOMPARE(readInto(copy, buffer.data()).result, isWritten ? FileResult::Success : FileResult::Error);
}

void tst_SceneWriter::sceneAttributesAreInOrder()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1, 5), 0);
    scene->setFrameRate(23.976023976);
    scene->setFrameRange(2, 4, 3, 0);
    scene->setHighestUsedLayerNumber(17);
    // Six significant digits are all that a rate keeps.
    QCOMPARE(firstTag(written(*scene), "scene"),
             QString("<scene frameWidth=\"16\" frameHeight=\"8\" frameRange=\"2;4\" activeFrameNumber=\"3\" "
                     "activeLayerIndex=\"0\" highestUsedLayerNumber=\"17\" fps=\"23.976\" "
                     "totalNumberOfDrawings=\"5\">"));
}

void tst_SceneWriter::drawingsAreCountedOverAllLayers()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1, 3), 0);
    scene->insertLayer(strokeLayer(*scene, 2, 4), 1);
    const auto notes = std::make_shared<AnnotationLayer>();
    notes->appendImage({});
    scene->insertLayer(notes, 2);
    QVERIFY(firstTag(written(*scene), "scene").contains("totalNumberOfDrawings=\"7\""));
}

void tst_SceneWriter::orderingIsTheDisplayOrder()
{
    const auto scene = emptyScene();
    for (int number = 1; number <= 3; ++number)
        scene->insertLayer(strokeLayer(*scene, number), number - 1);
    scene->moveLayer(2, 0);
    const QList<int> order{scene->layerAtVisualIndex(0), scene->layerAtVisualIndex(1), scene->layerAtVisualIndex(2)};
    QCOMPARE(order.first(), 2);
    QVERIFY(written(*scene).contains(QString("<ordering>2;%1;%2</ordering>").arg(order[1]).arg(order[2]).toUtf8()));
}

void tst_SceneWriter::layerAttributesAreInOrder_data()
{
    QTest::addColumn<bool>("linked");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<int>("beyond");
    QTest::addColumn<QString>("attributes");
    QTest::newRow("defaults") << false << true << int(Layer::ShowNothing) << "linked=\"no\" visible=\"yes\"";
    QTest::newRow("linked") << true << true << int(Layer::ShowNothing) << "linked=\"yes\" visible=\"yes\"";
    QTest::newRow("hidden, freezing") << false << false << int(Layer::FreezeLast)
                                      << "linked=\"no\" visible=\"no\" beyond=\"freezeLast\"";
    QTest::newRow("cycling") << false << true << int(Layer::CycleDrawings)
                             << "linked=\"no\" visible=\"yes\" beyond=\"cycleDrawings\"";
}

void tst_SceneWriter::layerAttributesAreInOrder()
{
    QFETCH(bool, linked);
    QFETCH(bool, visible);
    QFETCH(int, beyond);
    QFETCH(QString, attributes);
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->setLinked(linked);
    layer->setVisible(visible);
    layer->setLayerBeyondLast(Layer::LayerBeyondLast(beyond));
    scene->insertLayer(layer, 0);
    QCOMPARE(firstTag(written(*scene), "layer"),
             "<layer identifier=\"{00000064-0000-4000-8000-000000000000}\" name=\"Layer1\" " + attributes +
                 " type=\"stroke\">");
}

void tst_SceneWriter::opacityAndColorAreTexts()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->setOpacity(0.35);
    layer->setColor(QColor(40, 97, 184));
    scene->insertLayer(layer, 0);
    const QByteArray file = written(*scene);
    QVERIFY(file.contains("<opacity>0.35</opacity>"));
    QVERIFY(file.contains("<color>#2861b8</color>"));
}

void tst_SceneWriter::nameKeepsWhatXmlCanHold()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    const QString clef = QString::fromUcs4(U"\U0001D11E");
    layer->setName(QString("a<b>&\"\x01") + QChar(0xffff) + QChar(0xd800) + QString::fromUtf8("é") + clef);
    scene->insertLayer(layer, 0);
    QXmlStreamReader xml(written(*scene));
    while (!xml.atEnd() && xml.name() != u"layer")
        xml.readNext();
    // Half a character is replaced as everywhere in Unicode.
    QCOMPARE(xml.attributes().value("name").toString(), QString::fromUtf8("a<b>&\"\uFFFDé") + clef);
}

void tst_SceneWriter::cellAttributesAreInOrder()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    QTransform transform;
    transform.translate(1234567.0, -0.5);
    transform.rotate(30);
    layer->item(1)->offPegsTransform = transform;
    layer->item(1)->keyDrawing = true;
    scene->insertLayer(layer, 0);
    QCOMPARE(firstTag(written(*scene), "drawing"),
             QString("<drawing xOffset=\"1.23457e+06\" yOffset=\"-0.5\" rotationDeg=\"30\" keyDrawing=\"yes\" "
                     "type=\"original\" identifier=\"{00000065-0000-4000-8000-000000000000}\">"));
}

void tst_SceneWriter::moveWithoutATurnHasRotationZero()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->item(1)->offPegsTransform = QTransform::fromTranslate(3, 4);
    scene->insertLayer(layer, 0);
    QVERIFY(firstTag(written(*scene), "drawing").startsWith("<drawing xOffset=\"3\" yOffset=\"4\" rotationDeg=\"0\" "));
}

void tst_SceneWriter::distantClonesAndTheirOriginalNameEachOther()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1, 2);
    const auto original = layer->item(1);
    const auto clone = layer->item(2);
    clone->type = LayerItem::Type::DistantClone;
    clone->drawing = original->drawing;
    clone->origin = {uuid(100), uuid(101)};
    original->clones = {{uuid(100), uuid(102)}};
    scene->insertLayer(layer, 0);
    const QByteArray file = written(*scene);
    QVERIFY(file.contains("                <drawing type=\"original\" "
                          "identifier=\"{00000065-0000-4000-8000-000000000000}\">\n"
                          "                    <clone layer=\"{00000064-0000-4000-8000-000000000000}\" "
                          "drawing=\"{00000066-0000-4000-8000-000000000000}\"/>\n"
                          "                    <strokes>"));
    QVERIFY(file.contains("                <drawing type=\"distantClone\" "
                          "identifier=\"{00000066-0000-4000-8000-000000000000}\">\n"
                          "                    <original layer=\"{00000064-0000-4000-8000-000000000000}\" "
                          "drawing=\"{00000065-0000-4000-8000-000000000000}\"/>\n"
                          "                </drawing>\n"));
}

void tst_SceneWriter::copyIdOfAnOriginalIsWritten()
{
    const auto scene = emptyScene();
    const auto layer = strokeLayer(*scene, 1);
    layer->item(1)->drawing->setCopyId(uuid(9));
    scene->insertLayer(layer, 0);
    QVERIFY(firstTag(written(*scene), "drawing").endsWith(" copyId=\"{00000009-0000-4000-8000-000000000000}\">"));
}

void tst_SceneWriter::emptyDrawingHasNoBitmap()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1), 0);
    const ParsedDrawing drawing = firstDrawing(*scene);
    QCOMPARE(drawing.size, QSize(16, 8));
    QVERIFY(drawing.root.children.empty());
    QVERIFY(!drawing.image);
    QCOMPARE(drawing.bytesLeft, 0);
}

void tst_SceneWriter::bitmapStrokeIsStoredWithItsPixels()
{
    const auto scene = sceneWith(block(QRect(3, 2, 5, 4), 200));
    const ParsedDrawing drawing = firstDrawing(*scene);
    QCOMPARE(drawing.root.children.size(), size_t(1));
    const ParsedStroke &stroke = drawing.root.children.front();
    QCOMPARE(stroke.kind, 2);
    QCOMPARE(stroke.rect, QRect(3, 2, 5, 4));
    QVERIFY(stroke.image);
    QCOMPARE(stroke.image->pixels, QByteArray(20, char(200)));
    QCOMPARE(drawing.bytesLeft, 0);
}

void tst_SceneWriter::coverageImageStandsBehindTheStrokes()
{
    const auto scene = sceneWith(block(QRect(3, 2, 5, 4), 200));
    QByteArray expected(16 * 8, '\0');
    for (int y = 2; y < 6; ++y)
        expected.replace(y * 16 + 3, 5, QByteArray(5, char(200)));
    const ParsedDrawing drawing = firstDrawing(*scene);
    QVERIFY(drawing.image);
    QCOMPARE(QSize(drawing.image->width, drawing.image->height), QSize(16, 8));
    QCOMPARE(drawing.image->pixels, expected);
}

void tst_SceneWriter::penStrokeIsStoredAsSinglePrecision()
{
    const PenTool tool(Tool::PenType::Brush);
    const auto scene = sceneWith(lineStroke(tool));
    const ParsedDrawing drawing = firstDrawing(*scene);
    QCOMPARE(drawing.root.children.size(), size_t(1));
    const ParsedStroke &stroke = drawing.root.children.front();
    QCOMPARE(stroke.kind, 0);
    QVERIFY(stroke.isPen);
    QCOMPARE(stroke.tool, 2);
    QCOMPARE(stroke.samples.size(), size_t(2));
    QCOMPARE(stroke.samples[0].x, 2.f);
    QCOMPARE(stroke.samples[0].y, 4.f);
    QCOMPARE(stroke.samples[0].pressure, 0.5f);
    QCOMPARE(stroke.samples[1].x, 13.f);
    QCOMPARE(stroke.samples[1].pressure, 0.75f);
    QVERIFY(!stroke.segments.empty());
    // The last line of a finished stroke ends at the last sample.
    const ParsedSegment &last = stroke.segments.back();
    QCOMPARE(last.kind, 1);
    QCOMPARE(last.numbers[2], 13.f);
    QCOMPARE(last.numbers[3], 4.f);
    QVERIFY(stroke.bounds.contains(QRect(2, 4, 11, 1)));
    QVERIFY(drawing.image);
    QCOMPARE(drawing.image->pixels, pixelsOf(drawingAt(*scene, 0, 1).image()));
    QVERIFY(drawing.image->pixels.count('\0') < 16 * 8);
}

void tst_SceneWriter::eraserStrokeNamesItsKind()
{
    const auto scene = sceneWith(block(QRect(0, 0, 16, 8), 255));
    const EraserTool tool(Tool::EraserType::VinylEraser);
    QVERIFY(drawingAt(*scene, 0, 1).addStroke(lineStroke(tool)));
    const ParsedDrawing drawing = firstDrawing(*scene);
    QCOMPARE(drawing.root.children.size(), size_t(2));
    QVERIFY(!drawing.root.children[1].isPen);
    QCOMPARE(drawing.root.children[1].tool, 2);
}

void tst_SceneWriter::audioIsStoredAsItCame()
{
    const auto scene = emptyScene();
    QByteArray sound;
    for (int i = 0; i < 1000; ++i)
        sound.append(char(i * 7));
    const auto audio = std::make_shared<AudioLayer>();
    audio->setOriginalAudioData(sound);
    scene->insertLayer(audio, 0);
    QCOMPARE(blocks(written(*scene), "originalAudioData"), QList<QByteArray>{sound});
}

void tst_SceneWriter::annotationsAreRunLengthBlocks()
{
    const auto scene = emptyScene();
    const auto notes = std::make_shared<AnnotationLayer>();
    notes->appendImage({});
    notes->appendImage(note(QSize(4, 2), QPoint(1, 1), 50));
    scene->insertLayer(notes, 0);
    const QList<QByteArray> images = blocks(written(*scene), "image");
    QCOMPARE(images.size(), 2);
    QCOMPARE(images[0].first(8), BlockBuilder().i32(0).i32(0).bytes());
    // Down one row, skip one, copy one, end.
    QCOMPARE(images[1], BlockBuilder().rle(4, 2, QByteArray::fromHex("0600010301320a")).bytes());
}

void tst_SceneWriter::savingTwiceGivesTheSameBytes()
{
    const PenTool tool(Tool::PenType::Pencil);
    const auto scene = sceneWith(lineStroke(tool));
    const QByteArray first = written(*scene);
    QCOMPARE(written(*scene), first);
}

void tst_SceneWriter::cancelIsNoticedAtEveryLayerAndDrawing()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1, 3), 0);
    scene->insertLayer(strokeLayer(*scene, 2, 3), 1);
    const QByteArray whole = written(*scene);
    const qsizetype sceneStart = whole.indexOf("<scene");
    const qsizetype lastDrawing = whole.lastIndexOf("<drawing");
    for (qsizetype cancelAt = sceneStart + 1; cancelAt <= lastDrawing; cancelAt += 23) {
        QWidget window;
        SceneWriter writer(scene.get(), &window);
        CancellingDevice device(&window, cancelAt);
        QVERIFY(device.open(QIODevice::WriteOnly));
        QCOMPARE(writer.write(&device), FileResult::Cancelled);
        // What follows the cancel is at most the rest of one drawing.
        const qsizetype longestDrawing = 600;
        QVERIFY(device.content().size() < cancelAt + longestDrawing);
        QVERIFY(whole.startsWith(device.content()));
    }
}

void tst_SceneWriter::refusingDeviceIsAnError()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1), 0);
    FullDevice device;
    QVERIFY(device.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    SceneWriter writer(scene.get(), nullptr);
    QCOMPARE(writer.write(&device), FileResult::Error);
}

void tst_SceneWriter::progressCountsLayersAndDrawings()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1, 3), 0);
    scene->insertLayer(strokeLayer(*scene, 2, 4), 1);
    QWidget window;
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    SceneWriter writer(scene.get(), &window);
    const auto *dialog = window.findChild<QProgressDialog *>();
    QVERIFY(dialog);
    QCOMPARE(dialog->labelText(), QString("Saving scene..."));
    QCOMPARE(dialog->windowModality(), Qt::WindowModal);
    QCOMPARE(dialog->minimumDuration(), 2000);
    QCOMPARE(dialog->minimumSize(), dialog->maximumSize());
    QCOMPARE(writer.write(&buffer), FileResult::Success);
    QCOMPARE(dialog->maximum(), 2 + 1 + 7);
    QVERIFY(!dialog->isVisible());
}

void tst_SceneWriter::progressMovesOnPerDrawingAndLayer()
{
    const auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1, 3), 0);
    scene->insertLayer(strokeLayer(*scene, 2, 2), 1);
    QWidget window;
    ProgressRecorder device(&window);
    QVERIFY(device.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    SceneWriter writer(scene.get(), &window);
    QCOMPARE(writer.write(&device), FileResult::Success);
    // Nothing yet; then 3 drawings and their layer, 2 drawings and theirs.
    QCOMPARE(device.values(), QList<int>({-1, 0, 1, 2, 3, 4, 5, 6, 7}));
}

QTEST_MAIN(tst_SceneWriter)
#include "tst_scenewriter.moc"
