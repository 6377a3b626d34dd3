#include "sceneelements.h"
#include "scenefixture.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/files/scenereader.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/strokes/stroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/cputimer.h"
#include "support/glfixture.h"
#include "support/noprogress.h"
#include "support/sceneinvariants.h"

#include <QBuffer>
#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

/// Of processor time. Reading anything here takes less than a second or two; what grows with the square of the size
/// takes minutes.
constexpr qint64 longestMs = 20'000;
constexpr qint64 longestEditMs = 5'000;

/// An identifier for each number, in braces.
QByteArray identifier(int number)
{
    return uuid(number).toByteArray();
}

QByteArray cell(int number, const QByteArray &content = {})
{
    return "<drawing type=\"original\" identifier=\"" + identifier(number) + "\">" + content + "</drawing>";
}

QByteArray distant(int number, int layer, int target)
{
    return "<drawing type=\"distantClone\" identifier=\"" + identifier(number) + "\"><original layer=\"" +
           identifier(layer) + "\" drawing=\"" + identifier(target) + "\"/></drawing>";
}

QByteArray layer(int number, const QByteArray &drawings)
{
    return "<layer type=\"stroke\" identifier=\"" + identifier(number) + "\" visible=\"yes\">" + drawings + "</layer>";
}

} // namespace

/// Files that are large in one way, as a long film or somebody's ill will makes them: reading takes its time in
/// proportion to their size.
class tst_HugeFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void filesOfAnySizeAreReadOrRefusedInTime_data();
    void filesOfAnySizeAreReadOrRefusedInTime();
    void largestSceneOfLayersOpens();
    void longestLayerOpens();
    void longLayerBesideManyOpensInTime();
    void longestChainOfDistantClonesOpens();
    void longListsOfClonesOpen();
    void identifiersThatDifferInFewBytesDoNoHarm();
    void layersOfManyLinksGoAndComeBackInTime_data();
    void layersOfManyLinksGoAndComeBackInTime();
    void drawingsOfManyLinksAreEditedInTime();

private:
    [[nodiscard]] static std::unique_ptr<Scene> sceneOfManyLinks();
};

void tst_HugeFiles::initTestCase()
{
    QVERIFY(startRenderer());
}

void tst_HugeFiles::filesOfAnySizeAreReadOrRefusedInTime_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("error"); ///< what it says somewhere; none for a file that can be read

    QByteArray attributes;
    for (int i = 0; i < 300'000; ++i)
        attributes += " a" + QByteArray::number(i) + "=\"1\"";
    const QByteArray start = "<mr version=\"0.4\"><scene><layers>";
    const QByteArray end = "</layers></scene></mr>";
    const QByteArray stroke = "<layer type=\"stroke\"/>";
    QTest::newRow("attributes of the scene")
        << "<mr version=\"0.4\"><scene" + attributes + "/></mr>" << QString("more than 64 attributes");
    QTest::newRow("attributes of an element that is passed over")
        << "<mr version=\"0.4\"><x" + attributes + "/></mr>" << QString("more than 64 attributes");
    QTest::newRow("nested elements") << "<mr version=\"0.4\">" + QByteArray("<x>").repeated(1'000'000)
                                     << QString("nested deeper than 64");
    QTest::newRow("namespaces") << "<mr version=\"0.4\">" + QByteArray("<x xmlns:a=\"b\"/>").repeated(500'000) + "</mr>"
                                << QString();
    QTest::newRow("empty elements") << start + QByteArray("<a/>").repeated(5'000'000) + end << QString();
    QTest::newRow("empty elements in a layer")
        << start + "<layer type=\"stroke\">" + QByteArray("<a/>").repeated(2'000'000) + "</layer>" + end << QString();
    QTest::newRow("entries of the order")
        << start + "<ordering>" + QByteArray("1;").repeated(10'000'000) + "</ordering>" + end << QString();
    QTest::newRow("orders") << start + QByteArray("<ordering>0</ordering>").repeated(500'000) + end << QString();
    QTest::newRow("layers") << start + stroke.repeated(100'000) + end << QString("more than 4094 layers");
    QTest::newRow("layers of no kind") << start + QByteArray("<layer/>").repeated(1'000'000) + end << QString();
    QTest::newRow("layers for sound") << start + QByteArray("<layer type=\"audio\"/>").repeated(100'000) + end
                                      << QString("more than 4096 layers");
    QTest::newRow("scenes") << "<mr version=\"0.4\">" +
                                   QByteArray("<scene frameWidth=\"8192\" frameHeight=\"8192\"/>"
                                              "<scene frameWidth=\"1\" frameHeight=\"1\"/>")
                                       .repeated(1000) +
                                   "</mr>"
                            << QString("more than 4 scenes");
    QTest::newRow("lists of layers") << "<mr version=\"0.4\"><scene>" +
                                            ("<layers>" + stroke.repeated(100) + "</layers>").repeated(1000) +
                                            "</scene></mr>"
                                     << QString("more than 4096 layers");
    QTest::newRow("name") << start + "<" + QByteArray(20'000'000, 'a') + "/>" + end << QString("longer than 256 bytes");
    QTest::newRow("value") << start + "<layer type=\"stroke\" name=\"" + QByteArray(20'000'000, 'a') + "\"/>" + end
                           << QString();
    QTest::newRow("comment") << start + "<!--" + QByteArray(20'000'000, 'a') + "-->" + end << QString();
    QTest::newRow("text in no element") << start + QByteArray(20'000'000, 'a') + end << QString();
    QTest::newRow("references") << start + "<ordering>" + QByteArray("&amp;").repeated(4'000'000) + "</ordering>" + end
                                << QString();
    QTest::newRow("contents of a drawing")
        << start + layer(1, cell(2, QByteArray("<strokes/>").repeated(1'000'000))) + end << QString("content twice");
}

void tst_HugeFiles::filesOfAnySizeAreReadOrRefusedInTime()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, error);
    MRScene scene;
    QBuffer buffer(&file);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    NoProgress progress;
    SceneReader reader(scene.scene(), progress);
    const CpuTimer timer;
    const FileResult result = reader.read(&buffer);
    QVERIFY2(timer.milliseconds() < longestMs, QByteArray::number(timer.milliseconds()).constData());
    QVERIFY2(result == (error.isEmpty() ? FileResult::Success : FileResult::Error), qPrintable(reader.errorString()));
    if (error.isEmpty())
        QCOMPARE(brokenInvariant(*scene.scene()), QString());
    else
        QVERIFY2(reader.errorString().contains(error), qPrintable(reader.errorString()));
}

void tst_HugeFiles::largestSceneOfLayersOpens()
{
    QByteArray layers;
    QByteArray order;
    constexpr int layerCount = 4094; // and two more for sound and notes
    for (int number = 0; number < layerCount; ++number) {
        layers += layer(number + 1, {});
        order += QByteArray::number(layerCount - 1 - number) + ';';
    }
    layers += "<layer type=\"audio\"/>";
    order += QByteArray::number(layerCount) + ';' + QByteArray::number(layerCount + 1);
    const QByteArray notes = "<layer type=\"annotation\"/>";
    const CpuTimer timer;
    MRScene scene;
    const ReadResult read = readInto(*scene.scene(), document("<ordering>" + order + "</ordering>" + layers + notes));
    QVERIFY2(read.result == FileResult::Success, qPrintable(read.error));
    QVERIFY2(timer.milliseconds() < longestMs, QByteArray::number(timer.milliseconds()).constData());
    QCOMPARE(scene.scene()->layerCount(), 4096);
    QCOMPARE(scene.scene()->visualIndex(0), layerCount - 1);
    QCOMPARE(scene.scene()->visualIndex(layerCount - 1), 0);
    QCOMPARE(scene.scene()->audioLayerIdx(), layerCount);
    QCOMPARE(scene.scene()->annotationLayerIdx(), layerCount + 1);
    QCOMPARE(scene.scene()->insertLayer(strokeLayer(*scene.scene(), 9000), 0), -1);
    QVERIFY(!scene.scene()->swapLayer(layerCount, strokeLayer(*scene.scene(), 9000)));
    QVERIFY(scene.scene()->swapLayer(0, strokeLayer(*scene.scene(), 9000)));

    // What the file lacks is added.
    MRScene other;
    QCOMPARE(readInto(*other.scene(), document(layers)).result, FileResult::Success);
    QCOMPARE(other.scene()->layerCount(), 4096);
    QCOMPARE(other.scene()->annotationLayerIdx(), layerCount + 1);
}

void tst_HugeFiles::longestLayerOpens()
{
    const QByteArray holds = hold.repeated(Layer::maximumFrames - 1);
    const auto scene = sceneFrom(document(layer(1, cell(2) + holds)));
    QCOMPARE(scene->maximumFrameNumber(), Layer::maximumFrames);
    QCOMPARE(scene->item(0, Layer::maximumFrames)->drawing, scene->item(0, 1)->drawing);
    Scene other;
    const ReadResult read = readInto(other, document(layer(1, cell(2) + holds + hold)));
    QCOMPARE(read.result, FileResult::Error);
    QVERIFY2(read.error.startsWith("A layer has more than 1000000 drawings\nLine "), qPrintable(read.error));
}

// Each names the next, and only the last the original: a chain that is as long as the layer.
void tst_HugeFiles::longLayerBesideManyOpensInTime()
{
    // Looking for the neighbouring frames must not ask every layer at every frame.
    const QByteArray original = "<drawing type=\"original\"/>";
    const QByteArray layer = "<layer visible=\"yes\" type=\"stroke\">";
    const QByteArray file = document((layer + original + "</layer>").repeated(4000) + layer + original +
                                     QByteArray("<drawing type=\"clone\"/>").repeated(500'000) + "</layer>");
    const auto scene = emptyScene();
    CpuTimer timer;
    QCOMPARE(readInto(*scene, file).result, FileResult::Success);
    QCOMPARE(scene->maximumFrameNumber(), 500'001);
    scene->setActiveFrameAndLayer(250'000, 4000, Scene::KeepFrameOnDrawing);
    QVERIFY2(timer.milliseconds() < longestEditMs, QByteArray::number(timer.milliseconds()).constData());
}

void tst_HugeFiles::longestChainOfDistantClonesOpens()
{
    constexpr int count = 100'000;
    QByteArray clones;
    for (int number = 10; number < 10 + count; ++number)
        clones += distant(number, 1, number + 1);
    const CpuTimer timer;
    const auto scene = sceneFrom(document(layer(1, cell(2) + clones + distant(10 + count, 1, 2))));
    QVERIFY2(timer.milliseconds() < longestMs, QByteArray::number(timer.milliseconds()).constData());
    QCOMPARE(scene->maximumFrameNumber(), count + 2);
    QCOMPARE(scene->item(0, 2)->origin, (CellRef{uuid(1), uuid(2)}));
    QCOMPARE(scene->item(0, 2)->drawing, scene->item(0, 1)->drawing);
    QCOMPARE(scene->item(0, 1)->clones.size(), count + 1);
}

void tst_HugeFiles::longListsOfClonesOpen()
{
    constexpr int count = 200'000;
    QByteArray list;
    for (int number = 10; number < 10 + count; ++number) {
        const QByteArray entry = "<clone layer=\"" + identifier(1) + "\" drawing=\"" + identifier(number) + "\"/>";
        list += entry + entry;
    }
    const CpuTimer timer;
    const auto scene = sceneFrom(document(layer(1, cell(2, list))));
    QVERIFY2(timer.milliseconds() < longestMs, QByteArray::number(timer.milliseconds()).constData());
    QCOMPARE(scene->item(0, 1)->clones.size(), count);
}

// Qt's own hash passes over some bytes of an identifier.
void tst_HugeFiles::identifiersThatDifferInFewBytesDoNoHarm()
{
    constexpr int count = 200'000;
    QByteArray cells;
    for (int number = 1; number <= count; ++number) {
        const QUuid made(1, 2, 0x4000, 0x80, uchar(number), uchar(number >> 8), uchar(number >> 16), 0, 0, 0, 0);
        cells += "<drawing type=\"original\" identifier=\"" + made.toByteArray() + "\"/>";
    }
    const CpuTimer timer;
    const auto scene = sceneFrom(document(layer(1, cells)));
    QVERIFY2(timer.milliseconds() < longestMs, QByteArray::number(timer.milliseconds()).constData());
    QCOMPARE(scene->maximumFrameNumber(), count);
}

// A layer with an original, and one with distant clones of it, which stand in its list in no order at all.
std::unique_ptr<Scene> tst_HugeFiles::sceneOfManyLinks()
{
    constexpr int count = 100'000;
    QByteArray list;
    QByteArray clones;
    for (int number = 0; number < count; ++number) {
        const int anywhere = 10 + int(qint64(number) * 61'627 % count); // a prime that does not divide the count
        list += "<clone layer=\"" + identifier(2) + "\" drawing=\"" + identifier(anywhere) + "\"/>";
        clones += distant(10 + number, 1, 3);
    }
    return sceneFrom(document(layer(1, cell(3, list)) + layer(2, clones)));
}

void tst_HugeFiles::layersOfManyLinksGoAndComeBackInTime_data()
{
    QTest::addColumn<int>("layerIdx");
    QTest::newRow("that of the original") << 0;
    QTest::newRow("that of the clones") << 1;
}

void tst_HugeFiles::layersOfManyLinksGoAndComeBackInTime()
{
    QFETCH(const int, layerIdx);
    const auto scene = sceneOfManyLinks();
    const QList<CellRef> clones = scene->item(0, 1)->clones;
    QCOMPARE(clones.size(), 100'000);
    const CpuTimer timer;
    const std::shared_ptr<Layer> removed = scene->removeLayer(layerIdx);
    QVERIFY2(timer.milliseconds() < longestEditMs, QByteArray::number(timer.milliseconds()).constData());
    if (layerIdx == 0)
        QCOMPARE(scene->findItem(clones.first())->clones.size(), clones.size() - 1);
    else
        QCOMPARE(scene->item(0, 1)->clones.size(), 0);
    const CpuTimer backTimer;
    QCOMPARE(scene->insertLayer(removed, layerIdx), layerIdx);
    QVERIFY2(backTimer.milliseconds() < longestEditMs, QByteArray::number(backTimer.milliseconds()).constData());
    QCOMPARE(scene->item(0, 1)->clones, clones);
    QCOMPARE(scene->item(1, 100'000)->drawing, scene->item(0, 1)->drawing);
    QCOMPARE(brokenInvariant(*scene), QString());
}

void tst_HugeFiles::drawingsOfManyLinksAreEditedInTime()
{
    const auto scene = sceneOfManyLinks();
    const QList<CellRef> clones = scene->item(0, 1)->clones;
    const CpuTimer timer;
    QVERIFY(scene->addStroke(0, 1, block(QRect(1, 1, 2, 2), 255)));
    QVERIFY(scene->removeLastStroke(0, 1));
    const auto drawing = std::make_shared<StrokeDrawing>(scene->frameSize());
    const auto changes = scene->replaceDrawing(0, 1, drawing, true);
    QCOMPARE(scene->item(1, 100'000)->drawing, drawing);
    scene->undoChanges(scene->undoChanges(changes));
    QCOMPARE(scene->item(1, 100'000)->drawing, drawing);
    QVERIFY2(timer.milliseconds() < longestEditMs, QByteArray::number(timer.milliseconds()).constData());
    QCOMPARE(scene->item(0, 1)->clones, clones);
}

QTEST_MAIN(tst_HugeFiles)
#include "tst_hugefiles.moc"
