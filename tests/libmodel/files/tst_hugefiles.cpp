#include "sceneelements.h"
#include "scenefixture.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/base/progress.h"
#include "libmodel/files/scenereader.h"
#include "libmodel/scene/mrscene.h"
#include "support/glfixture.h"
#include "support/sceneinvariants.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

/// Reading anything here takes less than a second or two; what grows with the square of the size takes minutes.
constexpr qint64 longestMs = 20'000;

/// A progress that nobody looks at.
class NoProgress : public Progress
{
public:
    void reset() override {}
    void setSteps(int, int) override {}
    void advance() override {}
    void finish() override {}
    bool wasCancelled() const override { return false; }
};

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
    void longestChainOfDistantClonesOpens();
    void longListsOfClonesOpen();
    void identifiersThatDifferInFewBytesDoNoHarm();
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
    QTest::newRow("layers") << start + stroke.repeated(100'000) + end << QString("more than 4096 layers");
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
    QElapsedTimer timer;
    timer.start();
    const FileResult result = reader.read(&buffer);
    QVERIFY2(timer.elapsed() < longestMs, QByteArray::number(timer.elapsed()).constData());
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
    for (int number = 0; number < Scene::maximumLayers; ++number) {
        layers += layer(number + 1, {});
        order += QByteArray::number(Scene::maximumLayers - 1 - number) + ';';
    }
    QElapsedTimer timer;
    timer.start();
    MRScene scene;
    const ReadResult read = readInto(*scene.scene(), document("<ordering>" + order + "</ordering>" + layers));
    QVERIFY2(read.result == FileResult::Success, qPrintable(read.error));
    QVERIFY2(timer.elapsed() < longestMs, QByteArray::number(timer.elapsed()).constData());
    QCOMPARE(scene.scene()->layerCount(), Scene::maximumLayers);
    QCOMPARE(scene.scene()->visualIndex(0), Scene::maximumLayers - 1);
    QCOMPARE(scene.scene()->visualIndex(Scene::maximumLayers - 1), 0);
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
void tst_HugeFiles::longestChainOfDistantClonesOpens()
{
    constexpr int count = 100'000;
    QByteArray clones;
    for (int number = 10; number < 10 + count; ++number)
        clones += distant(number, 1, number + 1);
    QElapsedTimer timer;
    timer.start();
    const auto scene = sceneFrom(document(layer(1, cell(2) + clones + distant(10 + count, 1, 2))));
    QVERIFY2(timer.elapsed() < longestMs, QByteArray::number(timer.elapsed()).constData());
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
    QElapsedTimer timer;
    timer.start();
    const auto scene = sceneFrom(document(layer(1, cell(2, list))));
    QVERIFY2(timer.elapsed() < longestMs, QByteArray::number(timer.elapsed()).constData());
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
    QElapsedTimer timer;
    timer.start();
    const auto scene = sceneFrom(document(layer(1, cells)));
    QVERIFY2(timer.elapsed() < longestMs, QByteArray::number(timer.elapsed()).constData());
    QCOMPARE(scene->maximumFrameNumber(), count);
}

QTEST_MAIN(tst_HugeFiles)
#include "tst_hugefiles.moc"
