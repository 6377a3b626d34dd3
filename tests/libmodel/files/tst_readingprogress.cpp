#include "sceneelements.h"
#include "scenefixture.h"

#include "libmodel/files/scenereader.h"
#include "support/glfixture.h"
#include "support/watchedprogress.h"

#include <QBuffer>
#include <QProgressDialog>
#include <QTest>
#include <QTimer>
#include <QWidget>

using namespace Model;
using namespace TestSupport;

namespace {

FileResult readWatched(Scene &scene, QByteArray file, Progress &progress)
{
    QBuffer buffer(&file);
    if (!buffer.open(QIODevice::ReadOnly))
        return FileResult::Error;
    SceneReader reader(&scene, progress);
    return reader.read(&buffer);
}

/// Two layers, one with three children and one with two, an order, and an element that is passed over.
QByteArray smallFile(const QByteArray &attributes)
{
    return document("<ordering>1;0</ordering>\n" + layerElement("<opacity>1</opacity>" + original(101) + hold) +
                        "<more/>\n" + layerElement(original(201) + hold, 200),
                    attributes);
}

} // namespace

/// How reading tells how far it is, and where it can be broken off.
class tst_ReadingProgress : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void looksForACancelAtEachPoint();
    void countsDrawingsWhereTheFileTellsTheirNumber();
    void countsLayersOtherwise();
    void countsOnlyLayersThatAreRead();
    void totalIsWhatTheFileSays_data();
    void totalIsWhatTheFileSays();
    void everyLookCanCancel_data();
    void everyLookCanCancel();
    void errorsEndOutOfSight();
    void cancelIsSeenWhereNoStepIsCounted();
};

void tst_ReadingProgress::initTestCase()
{
    QVERIFY(startRenderer());
}

void tst_ReadingProgress::looksForACancelAtEachPoint()
{
    WatchedProgress progress;
    Scene scene;
    QCOMPARE(readWatched(scene, smallFile({}), progress), FileResult::Success);
    // After the order, the three children of the first layer, that layer, what is passed over, the two children of the
    // second layer, that layer, the links, and twice at the end.
    QCOMPARE(progress.looks(), 1 + 3 + 1 + 1 + 2 + 1 + 1 + 2);
}

void tst_ReadingProgress::countsDrawingsWhereTheFileTellsTheirNumber()
{
    WatchedProgress progress;
    Scene scene;
    QCOMPARE(readWatched(scene, smallFile("totalNumberOfDrawings=\"4\""), progress), FileResult::Success);
    QStringList events = progress.events();
    events.removeAll("look");
    QCOMPARE(events, QStringList({"reset", "0 of 5", "1", "2", "3", "4", "finish", "reset"}));
}

void tst_ReadingProgress::countsLayersOtherwise()
{
    WatchedProgress progress;
    Scene scene;
    QCOMPARE(readWatched(scene, smallFile({}), progress), FileResult::Success);
    QStringList events = progress.events();
    events.removeAll("look");
    // The order has two entries.
    QCOMPARE(events, QStringList({"reset", "0 of 3", "1 of 3", "finish", "reset"}));
}

void tst_ReadingProgress::countsOnlyLayersThatAreRead()
{
    WatchedProgress progress;
    Scene scene;
    // The second sound is read, though there is no place for it; the painting is not.
    const QByteArray file =
        document("<ordering>0;1;2;3</ordering><layer type=\"audio\"/><layer type=\"audio\"/><layer type=\"paint\"/>" +
                 layerElement(original(101)));
    QCOMPARE(readWatched(scene, file, progress), FileResult::Success);
    QStringList events = progress.events();
    events.removeAll("look");
    QCOMPARE(events, QStringList({"reset", "0 of 5", "1 of 5", "2 of 5", "2 of 5", "finish", "reset"}));
}

void tst_ReadingProgress::totalIsWhatTheFileSays_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("steps");
    const QString byLayers = "0 of 3";
    QTest::newRow("number") << QByteArray("7") << "0 of 8";
    QTest::newRow("none") << QByteArray("0") << "0 of 1";
    QTest::newRow("beyond 32 bits counts as 0") << QByteArray("99999999999") << "0 of 1";
    QTest::newRow("beyond all bits counts as 0") << QByteArray(40, '9') << "0 of 1";
    QTest::newRow("largest") << QByteArray("2147483647") << "0 of 2147483647";
    QTest::newRow("negative") << QByteArray("-1") << byLayers;
    QTest::newRow("no number") << QByteArray("many") << byLayers;
    QTest::newRow("sign only") << QByteArray("-") << byLayers;
    QTest::newRow("empty") << QByteArray() << byLayers;
}

void tst_ReadingProgress::totalIsWhatTheFileSays()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, steps);
    WatchedProgress progress;
    Scene scene;
    QCOMPARE(readWatched(scene, smallFile("totalNumberOfDrawings=\"" + text + "\""), progress), FileResult::Success);
    QStringList events = progress.events();
    events.removeAll("look");
    QCOMPARE(events.at(1), steps);
}

void tst_ReadingProgress::everyLookCanCancel_data()
{
    QTest::addColumn<int>("look");
    for (int look = 1; look <= 12; ++look)
        QTest::addRow("%d", look) << look;
}

void tst_ReadingProgress::everyLookCanCancel()
{
    QFETCH(int, look);
    WatchedProgress progress(look);
    Scene scene;
    QCOMPARE(readWatched(scene, smallFile("totalNumberOfDrawings=\"4\""), progress), FileResult::Cancelled);
    QCOMPARE(progress.looks(), look);
    QCOMPARE(progress.events().constLast(), QString("reset"));
    // Whatever is there by now can be dropped, or read into again.
    QCOMPARE(readInto(scene, smallFile({})).result, FileResult::Success);
    QCOMPARE(visualLayerCount(scene), 2);
}

void tst_ReadingProgress::errorsEndOutOfSight()
{
    WatchedProgress progress;
    Scene scene;
    QCOMPARE(readWatched(scene, smallFile({}).chopped(12), progress), FileResult::Error);
    QCOMPARE(progress.events().constLast(), QString("reset"));
}

void tst_ReadingProgress::cancelIsSeenWhereNoStepIsCounted()
{
    // One layer of a file that does not tell how many drawings it has: for the dialog it is a single step.
    const QByteArray file = document(layerElement(QByteArray(original(101)) + QByteArray(hold).repeated(200'000)));
    QBuffer buffer;
    buffer.setData(file);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    const auto scene = emptyScene();
    QWidget window;
    SceneReader reader(scene.get(), &window);
    auto *dialog = window.findChild<QProgressDialog *>();
    QVERIFY(dialog);
    QTimer::singleShot(0, dialog, &QProgressDialog::cancel);
    QCOMPARE(reader.read(&buffer), FileResult::Cancelled);
    QVERIFY(buffer.pos() < file.size() / 2);
}

QTEST_MAIN(tst_ReadingProgress)
#include "tst_readingprogress.moc"
