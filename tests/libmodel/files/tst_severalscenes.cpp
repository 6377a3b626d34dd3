#include "sceneelements.h"
#include "scenefixture.h"

#include "libmodel/files/scenereader.h"
#include "support/glfixture.h"
#include "support/noprogress.h"
#include "support/sceneinvariants.h"

#include <QBuffer>
#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

/// An element `scene` with frames of \a width x \a height and the list of layers \a layers.
QByteArray sceneElement(int width, int height, const QByteArray &layers)
{
    return "<scene frameWidth=\"" + QByteArray::number(width) + "\" frameHeight=\"" + QByteArray::number(height) +
           "\">" + layers + "</scene>\n";
}

QByteArray layerList(const QByteArray &layers)
{
    return "<layers>" + layers + "</layers>";
}

QByteArray fileOf(const QByteArray &scenes)
{
    return "<mr version=\"0.4\">\n" + scenes + "</mr>";
}

/// A layer with a note of 32 x 32 pixels, which take a kibibyte.
QByteArray notesLayer()
{
    const QByteArray emptyRows = QByteArray::fromHex("0a");
    return "<layer type=\"annotation\"><image>" + BlockBuilder().rle(32, 32, emptyRows).base64() + "</image></layer>";
}

/// A drawing that breaks off.
QByteArray damagedDrawing()
{
    return original(101, BlockBuilder().size(16, 8).i64(5).base64());
}

struct Outcome
{
    FileResult result;
    QString error;
};

Outcome readWithin(qint64 memory, QByteArray file)
{
    QBuffer buffer(&file);
    if (!buffer.open(QIODevice::ReadOnly))
        return {FileResult::Error, "the buffer cannot be opened"};
    Scene scene;
    NoProgress progress;
    SceneReader reader(&scene, progress);
    reader.setMemoryLimit(memory);
    const FileResult result = reader.read(&buffer);
    return {result, reader.errorString()};
}

} // namespace

/// Files with more than one scene, of which the last counts, and scenes with more than one list of layers.
class tst_SeveralScenes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void nothingOfTheFirstSceneStays();
    void layersOfTheFirstAreGoneWhenTheSizeChanges();
    void framesTakeTheirMemoryUpFront();
    void memoryOfWhatIsGoneIsFreeAgain_data();
    void memoryOfWhatIsGoneIsFreeAgain();
};

void tst_SeveralScenes::initTestCase()
{
    QVERIFY(startRenderer());
}

void tst_SeveralScenes::nothingOfTheFirstSceneStays()
{
    const QByteArray first = sceneElement(16, 8, layerList(layerElement(damagedDrawing() + hold + hold)));
    QStringList damages;
    sceneFrom(fileOf(first), &damages);
    QCOMPARE(damages.size(), 1);
    const auto scene = sceneFrom(fileOf(first + sceneElement(20, 10, {})), &damages);
    QCOMPARE(damages, QStringList());
    QCOMPARE(scene->frameSize(), QSize(20, 10));
    QCOMPARE(scene->layerCount(), 3);
    QCOMPARE(visualLayerCount(*scene), 1);
    QCOMPARE(scene->maximumFrameNumber(), 1);
    QVERIFY(scene->layer(0)->identifier() != uuid(100));
    QCOMPARE(brokenInvariant(*scene), QString());
}

// Twelve drawings of a byte each would otherwise be brought to 64 megabytes each.
void tst_SeveralScenes::layersOfTheFirstAreGoneWhenTheSizeChanges()
{
    const QByteArray first =
        sceneElement(16, 8, layerList(layerElement(original(101, bitmapBlock().i32(-1).base64()))));
    Scene scene;
    QList<int> layersAtChanges;
    connect(&scene, &Scene::frameSizeAboutToChange, this,
            [&scene, &layersAtChanges] { layersAtChanges.append(scene.layerCount()); });
    QCOMPARE(readInto(scene, fileOf(first + sceneElement(32, 8, {}))).result, FileResult::Success);
    QCOMPARE(layersAtChanges, QList<int>({0, 0})); // a new scene has none either
}

void tst_SeveralScenes::framesTakeTheirMemoryUpFront()
{
    const QByteArray file = fileOf(sceneElement(100, 50, {}));
    const qint64 pictures = 3 * 4 * 100 * 50; // three of four bytes a pixel
    QCOMPARE(readWithin(pictures, file).result, FileResult::Success);
    const Outcome refused = readWithin(pictures - 1, file);
    QCOMPARE(refused.result, FileResult::Error);
    QVERIFY2(refused.error.startsWith("Frames of 100 x 50 pixels need more memory than there is\nLine 2, column "),
             qPrintable(refused.error));
}

void tst_SeveralScenes::memoryOfWhatIsGoneIsFreeAgain_data()
{
    QTest::addColumn<QByteArray>("scenes");
    const QByteArray list = layerList(notesLayer());
    QTest::newRow("one scene") << sceneElement(10, 10, list);
    QTest::newRow("several scenes") << sceneElement(10, 10, list) + sceneElement(10, 10, list) +
                                           sceneElement(10, 10, list);
    QTest::newRow("a scene without a size of its own") << sceneElement(10, 10, list) + "<scene>" + list + "</scene>";
    QTest::newRow("several lists") << sceneElement(10, 10, list + list + list);
}

void tst_SeveralScenes::memoryOfWhatIsGoneIsFreeAgain()
{
    QFETCH(const QByteArray, scenes);
    const qint64 needed = 3 * 4 * 10 * 10 + 32 * 32;
    const Outcome enough = readWithin(needed, fileOf(scenes));
    QVERIFY2(enough.result == FileResult::Success, qPrintable(enough.error));
    QCOMPARE(readWithin(needed - 1, fileOf(scenes)).result, FileResult::Error);
}

QTEST_MAIN(tst_SeveralScenes)
#include "tst_severalscenes.moc"
