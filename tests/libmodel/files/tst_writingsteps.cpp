// What the writer tells of its progress, where it looks whether it is to stop, and what stands in the file then.

#include "scenefixture.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/files/scenewriter.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/referencelayer.h"
#include "support/watchedprogress.h"

#include <QBuffer>
#include <QTest>

#include <algorithm>

using namespace Model;
using namespace TestSupport;

namespace {

/// Takes \a room bytes and no more, as a disk that gets full.
class SmallDevice : public QIODevice
{
public:
    explicit SmallDevice(qint64 room) : m_room(room) { open(QIODevice::WriteOnly | QIODevice::Unbuffered); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 size) override
    {
        const qint64 taken = std::min(size, m_room);
        m_room -= taken;
        return taken > 0 || size == 0 ? taken : -1;
    }

private:
    qint64 m_room;
};

/// One layer of each kind: two drawings and a hold; sound; a picture; two notes.
std::unique_ptr<Scene> sceneOfAllKinds()
{
    auto scene = emptyScene();
    const auto lines = strokeLayer(*scene, 1, 2);
    lines->insertCloneAfter(2);
    scene->insertLayer(lines, 0);
    const auto audio = std::make_shared<AudioLayer>();
    audio->setOriginalAudioData("RIFF");
    scene->insertLayer(audio, 1);
    scene->insertLayer(std::make_shared<ReferenceLayer>(scene->frameSize()), 2);
    const auto notes = std::make_shared<AnnotationLayer>();
    notes->appendImage(note(QSize(2, 1), QPoint(0, 0), 7));
    notes->appendImage({});
    scene->insertLayer(notes, 3);
    return scene;
}

// What sceneOfAllKinds() is looked at for: after the scene's attributes, after the order, after the attributes of each
// of 4 layers, and after each of 3 + 1 drawings.
constexpr int looksOfAllKinds = 1 + 1 + 4 + 4;

} // namespace

class tst_WritingSteps : public QObject
{
    Q_OBJECT

private slots:
    void stepsAndLooksComeInOrder();
    void sceneWithoutDrawingsHasItsLayersForSteps();
    void fileStandsWhereTheWriterLooks();
    void cancelStopsTheWriterAtOnce();
    void cancelAtTheLastLookLeavesTheDocumentOpen();
    void deviceThatGetsFullIsAnErrorWhereverItIs();
    void lastByteMissingIsAnError();
};

void tst_WritingSteps::stepsAndLooksComeInOrder()
{
    const auto scene = sceneOfAllKinds();
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    WatchedProgress progress;
    SceneWriter writer(scene.get(), progress);
    QVERIFY(progress.events().isEmpty());
    QCOMPARE(writer.write(&buffer), FileResult::Success);
    const QStringList expected{
        "reset", "0 of 9", // 4 layers, one more, 3 + 1 drawings
        "look",            // attributes of the scene
        "look",            // order
        "look",            // attributes of the layer of lines
        "look",  "1",      "look", "2", "look", "3",
        "4",    // its end
        "look", // sound
        "5",
        "look", // picture
        "look",  "6",      "7",
        "look", // notes
        "8",     "reset",
    };
    QCOMPARE(progress.events(), expected);
}

void tst_WritingSteps::sceneWithoutDrawingsHasItsLayersForSteps()
{
    const auto scene = emptyScene();
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    WatchedProgress progress;
    SceneWriter writer(scene.get(), progress);
    QCOMPARE(writer.write(&buffer), FileResult::Success);
    QCOMPARE(progress.events(), QStringList({"reset", "0 of 1", "look", "look", "reset"}));
}

void tst_WritingSteps::fileStandsWhereTheWriterLooks()
{
    const auto scene = sceneOfAllKinds();
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    WatchedProgress progress;
    QList<QByteArray> atLooks;
    progress.atEachLook([&] { atLooks.append(buffer.data()); });
    SceneWriter writer(scene.get(), progress);
    QCOMPARE(writer.write(&buffer), FileResult::Success);
    // A tag is closed when it is known what follows.
    const QList<QByteArray> ends{
        "totalNumberOfDrawings=\"4\"", "</ordering>", "type=\"stroke\"", "</drawing>",           "</drawing>",
        "<drawing type=\"clone\"/>",   "audio\"",     "\"reference\"",   "</image>\n</drawing>", "type=\"annotation\"",
    };
    QCOMPARE(atLooks.size(), looksOfAllKinds);
    for (qsizetype i = 0; i < ends.size(); ++i) {
        QVERIFY(buffer.data().startsWith(atLooks[i]));
        QByteArray shown = atLooks[i].right(200);
        shown.replace("\n                ", "\n");
        QVERIFY2(shown.endsWith(ends[i]), shown.constData());
    }
}

void tst_WritingSteps::cancelStopsTheWriterAtOnce()
{
    const auto scene = sceneOfAllKinds();
    const QByteArray whole = written(*scene);
    for (int look = 1; look <= looksOfAllKinds; ++look) {
        QBuffer buffer;
        QVERIFY(buffer.open(QIODevice::WriteOnly));
        WatchedProgress progress(look);
        qsizetype sizeAtLook = 0;
        progress.atEachLook([&] { sizeAtLook = buffer.data().size(); });
        SceneWriter writer(scene.get(), progress);
        QCOMPARE(writer.write(&buffer), FileResult::Cancelled);
        QCOMPARE(progress.looks(), look);
        QCOMPARE(progress.events().last(), QString("reset"));
        QCOMPARE(buffer.data().size(), sizeAtLook);
        QVERIFY(whole.startsWith(buffer.data()) && buffer.data().size() < whole.size());
    }
    WatchedProgress afterAll(looksOfAllKinds + 1);
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    SceneWriter writer(scene.get(), afterAll);
    QCOMPARE(writer.write(&buffer), FileResult::Success);
    QCOMPARE(buffer.data(), whole);
}

void tst_WritingSteps::cancelAtTheLastLookLeavesTheDocumentOpen()
{
    const auto scene = sceneOfAllKinds();
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    WatchedProgress progress(looksOfAllKinds);
    SceneWriter writer(scene.get(), progress);
    QCOMPARE(writer.write(&buffer), FileResult::Cancelled);
    QVERIFY(!buffer.data().contains("</mr>"));
    Scene other;
    QCOMPARE(readInto(other, buffer.data()).result, FileResult::Error);
}

void tst_WritingSteps::deviceThatGetsFullIsAnErrorWhereverItIs()
{
    const auto scene = sceneOfAllKinds();
    const qint64 size = written(*scene).size();
    for (qint64 room = 0; room < size; room += 7) {
        SmallDevice device(room);
        WatchedProgress progress;
        SceneWriter writer(scene.get(), progress);
        QVERIFY2(writer.write(&device) == FileResult::Error, qPrintable(QString::number(room)));
    }
}

void tst_WritingSteps::lastByteMissingIsAnError()
{
    const auto scene = sceneOfAllKinds();
    const qint64 size = written(*scene).size();
    SmallDevice tooSmall(size - 1);
    SmallDevice justLarge(size);
    WatchedProgress progress;
    SceneWriter writer(scene.get(), progress);
    QCOMPARE(writer.write(&tooSmall), FileResult::Error);
    SceneWriter secondWriter(scene.get(), progress);
    QCOMPARE(secondWriter.write(&justLarge), FileResult::Success);
}

QTEST_MAIN(tst_WritingSteps)
#include "tst_writingsteps.moc"
