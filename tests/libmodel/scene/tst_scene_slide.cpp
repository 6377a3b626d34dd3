#include "scenebuilder.h"

#include "support/scenesnapshot.h"

#include <QHash>
#include <QTest>

#include <climits>

using namespace Model;
using namespace TestSupport;

namespace {

/// A scene with a layer that \a timing tells: a letter per frame, another letter being another drawing.
class Timing
{
public:
    explicit Timing(const QString &timing)
    {
        makeSmall(scene);
        addUsualLayers(scene, 1);
        for (int frameId = 1; frameId < timing.size(); ++frameId) {
            if (timing.at(frameId) == timing.at(frameId - 1))
                scene.addCloneDrawing(0, frameId);
            else
                scene.addBlankDrawing(0, frameId);
        }
        for (int frameId = 1; frameId <= timing.size(); ++frameId)
            m_letters.insert(scene.item(0, frameId)->drawing.get(), timing.at(frameId - 1));
    }

    /// The same letters for what stands in the layer now.
    QString read() const
    {
        QString timing;
        for (const auto &cell : scene.visualLayer(0)->frames())
            timing += m_letters.value(cell->drawing.get(), '?');
        return timing;
    }

    Scene scene;

private:
    QHash<const Drawing *, QChar> m_letters;
};

} // namespace

/// Sliding an original along its layer.
class tst_SceneSlide : public QObject
{
    Q_OBJECT

private slots:
    void slideDealsTheClonesOutAnew_data();
    void slideDealsTheClonesOutAnew();
    void slideWithoutAnOffsetStillReshapesTheHolds();
    void slidOriginalIsTheSameCell();
    void distantCloneIsSlidAsWell();
    void slideLeavesLengthRangeAndPosition();
    void slideStaysInItsLayerAlsoWhenLinked();
    void slideIsTold();
    void slideIsRecordedNewestFirst();
    void slideIsUndoneExactly_data();
    void slideIsUndoneExactly();
    void slidesOutsideDoNothing_data();
    void slidesOutsideDoNothing();
};

void tst_SceneSlide::slideDealsTheClonesOutAnew_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("frameId");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("lowest");
    QTest::addColumn<int>("highest");
    QTest::addColumn<QString>("after");
    const auto row = [](const char *before, int frameId, int offset, int lowest, int highest, const char *after) {
        QTest::addRow("%s: %d by %d, %d to %d", before, frameId, offset, lowest, highest)
            << QString(before) << frameId << offset << lowest << highest << QString(after);
    };
    row("aaabbb", 4, 1, 0, 1, "aaaabb");
    row("aaabbb", 4, 2, 0, 2, "aaaaab");
    row("aaabbb", 4, -1, -1, 0, "aabbbb");
    row("aaabbb", 4, -2, -2, 0, "abbbbb");
    row("aab", 3, -1, -1, 0, "abb");
    row("abb", 2, 1, 0, 1, "aab");
    // There and back within the two holds leaves them as they were.
    row("aaabbb", 4, 0, -2, 2, "aaabbb");
    row("aaabbb", 4, 1, -2, 2, "aaaabb");
    // Past the next original: its hold is taken, too.
    row("aabbcc", 3, 2, 0, 2, "aaaabc");
    row("aabbcc", 3, 1, 0, 2, "aaabbc");
    row("aabbcc", 3, 0, 0, 2, "aabbbc");
    // Past the one before.
    row("aabbcc", 5, -2, -2, 0, "abcccc");
    row("aabbcc", 5, 0, -2, 0, "abbbcc");
    // Other holds are left.
    row("aabbccdd", 5, 1, 0, 1, "aabbbcdd");
}

void tst_SceneSlide::slideDealsTheClonesOutAnew()
{
    QFETCH(QString, before);
    QFETCH(int, frameId);
    QFETCH(int, offset);
    QFETCH(int, lowest);
    QFETCH(int, highest);
    QFETCH(QString, after);
    Timing timing(before);
    QVERIFY(!timing.scene.slideOriginalDrawing(0, frameId, offset, lowest, highest).isEmpty());
    QCOMPARE(timing.read(), after);
    QVERIFY(timing.scene.item(0, frameId + offset)->isOriginal());
    QCOMPARE(brokenInvariant(timing.scene), QString());
}

void tst_SceneSlide::slideWithoutAnOffsetStillReshapesTheHolds()
{
    // Two holds in front of the third drawing lie on the way: one of the second, one of the first.
    Timing timing("aaabbcc");
    QVERIFY(!timing.scene.slideOriginalDrawing(0, 6, 0, -2, 1).isEmpty());
    QCOMPARE(timing.read(), "aabbbcc");
}

void tst_SceneSlide::slidOriginalIsTheSameCell()
{
    Timing timing("aaabbb");
    const auto original = timing.scene.item(0, 4);
    timing.scene.setKeyDrawing(0, 4, true);
    timing.scene.setOffPegsTransform(4, 0, QTransform::fromTranslate(3, 4));
    timing.scene.slideOriginalDrawing(0, 4, -1, -1, 1);
    QCOMPARE(timing.scene.item(0, 3), original);
    QVERIFY(original->keyDrawing);
    QCOMPARE(original->offPegsTransform, QTransform::fromTranslate(3, 4));
}

void tst_SceneSlide::distantCloneIsSlidAsWell()
{
    Timing timing("aaabbb");
    timing.scene.makeDistantClone(0, 4, timing.scene.originOfFrame(0, 1));
    QCOMPARE(kinds(timing.scene, 0), "occdcc");
    QVERIFY(!timing.scene.slideOriginalDrawing(0, 4, 2, 0, 2).isEmpty());
    QCOMPARE(kinds(timing.scene, 0), "occccd");
    QCOMPARE(timing.scene.item(0, 1)->clones.size(), 1);
    QCOMPARE(brokenInvariant(timing.scene), QString());
}

void tst_SceneSlide::slideLeavesLengthRangeAndPosition()
{
    Timing timing("aaabbb");
    timing.scene.setFrameRange(2, 5, 3, 0);
    const SignalCount signalCount(&timing.scene);
    timing.scene.slideOriginalDrawing(0, 4, 2, -1, 2);
    QCOMPARE(timing.scene.lastFrame(0), 6);
    QCOMPARE(timing.scene.rangeFirst(), 2);
    QCOMPARE(timing.scene.rangeLast(), 5);
    QCOMPARE(timing.scene.activeFrame(), 3);
    QVERIFY(!signalCount.heard().contains("frameRangeChanged"));
    QVERIFY(!signalCount.heard().contains("maximumFrameNumberChanged"));
    QVERIFY(!signalCount.heard().contains("activeFrameAndLayerChanged"));
}

void tst_SceneSlide::slideStaysInItsLayerAlsoWhenLinked()
{
    Timing timing("aaabbb");
    const int other = addStrokeLayer(timing.scene, 2);
    timing.scene.addCloneDrawings(other, 2, 4);
    timing.scene.setLayerLinked(0, true);
    timing.scene.setLayerLinked(other, true);
    for (const SceneChange &change : timing.scene.slideOriginalDrawing(0, 4, 1, 0, 1))
        QCOMPARE(change.layerIndex, 0);
    QCOMPARE(timing.read(), "aaaabb");
    QCOMPARE(kinds(timing.scene, other), "oocccc");
}

void tst_SceneSlide::slideIsTold()
{
    Timing timing("aaabbbc");
    QStringList order;
    connect(&timing.scene, &Scene::drawingsChanged, this, [&](const QList<std::pair<int, int>> &cells) {
        order += "drawings";
        // Frame 4 shows another drawing now, and nothing outside the two holds can.
        QVERIFY(cells.contains({4, 0}));
        for (const auto &[frameId, layerIdx] : cells) {
            QCOMPARE(layerIdx, 0);
            QVERIFY(frameId >= 4 && frameId <= 6);
        }
    });
    connect(&timing.scene, &Scene::layersChanged, this, [&](int first, int last) {
        order += "layers";
        QCOMPARE(first, 0);
        QCOMPARE(last, 0);
    });
    timing.scene.slideOriginalDrawing(0, 4, 1, 0, 1);
    QCOMPARE(order, QStringList({"drawings", "layers"}));
}

void tst_SceneSlide::slideIsRecordedNewestFirst()
{
    Timing timing("aaabbb");
    const auto removed = timing.scene.item(0, 5);
    const QList<SceneChange> changes = timing.scene.slideOriginalDrawing(0, 4, 1, 0, 1);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes.at(0).type, LayerChange::ItemInserted);
    QCOMPARE(changes.at(0).frameId, 4);
    QCOMPARE(changes.at(1).type, LayerChange::ItemRemoved);
    QCOMPARE(changes.at(1).frameId, 5);
    QCOMPARE(changes.at(1).item, removed);
}

void tst_SceneSlide::slideIsUndoneExactly_data()
{
    slideDealsTheClonesOutAnew_data();
}

void tst_SceneSlide::slideIsUndoneExactly()
{
    QFETCH(QString, before);
    QFETCH(int, frameId);
    QFETCH(int, offset);
    QFETCH(int, lowest);
    QFETCH(int, highest);
    QFETCH(QString, after);
    Timing timing(before);
    Scene &scene = timing.scene;
    for (int frame = 1; frame <= before.size(); ++frame) {
        scene.setKeyDrawing(0, frame, frame % 2 == 0);
        scene.setOffPegsTransform(frame, 0, QTransform::fromTranslate(frame, 1));
    }
    const SceneSnapshot first(scene);
    const QList<SceneChange> changes = scene.slideOriginalDrawing(0, frameId, offset, lowest, highest);
    const SceneSnapshot second(scene);
    const QList<SceneChange> back = scene.undoChanges(changes);
    scene.setFrameRange(first.rangeFirst, first.rangeLast, first.activeFrame, first.activeLayerIdx);
    QCOMPARE(SceneSnapshot(scene).diff(first), QString());
    scene.undoChanges(back);
    scene.setFrameRange(second.rangeFirst, second.rangeLast, second.activeFrame, second.activeLayerIdx);
    QCOMPARE(SceneSnapshot(scene).diff(second), QString());
    QCOMPARE(timing.read(), after);
}

void tst_SceneSlide::slidesOutsideDoNothing_data()
{
    QTest::addColumn<int>("layerIdx");
    QTest::addColumn<int>("frameId");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("lowest");
    QTest::addColumn<int>("highest");
    // The layer is "aaabbb": two clones on either side of frame 4.
    for (const int layerIdx : {INT_MIN, -1, 1, 2, 3, INT_MAX})
        QTest::addRow("layer %d", layerIdx) << layerIdx << 4 << 1 << 0 << 1;
    for (const int frameId : {INT_MIN, -1, 0, 1, 2, 5, 7, INT_MAX})
        QTest::addRow("frame %d", frameId) << 0 << frameId << 1 << 0 << 1;
    QTest::newRow("nowhere") << 0 << 4 << 0 << 0 << 0;
    QTest::newRow("lowest above zero") << 0 << 4 << 1 << 1 << 2;
    QTest::newRow("highest below zero") << 0 << 4 << -1 << -2 << -1;
    QTest::newRow("offset below the lowest") << 0 << 4 << -2 << -1 << 1;
    QTest::newRow("offset above the highest") << 0 << 4 << 2 << -1 << 1;
    QTest::newRow("more clones than there are behind") << 0 << 4 << 1 << 0 << 3;
    QTest::newRow("more clones than there are in front") << 0 << 4 << -1 << -3 << 0;
    QTest::newRow("smallest") << 0 << 4 << 0 << INT_MIN << 0;
    QTest::newRow("largest") << 0 << 4 << 0 << 0 << INT_MAX;
    QTest::newRow("both") << 0 << 4 << 0 << INT_MIN << INT_MAX;
}

void tst_SceneSlide::slidesOutsideDoNothing()
{
    QFETCH(int, layerIdx);
    QFETCH(int, frameId);
    QFETCH(int, offset);
    QFETCH(int, lowest);
    QFETCH(int, highest);
    Timing timing("aaabbb");
    const SceneSnapshot before(timing.scene);
    const SignalCount signalCount(&timing.scene);
    QVERIFY(timing.scene.slideOriginalDrawing(layerIdx, frameId, offset, lowest, highest).isEmpty());
    QCOMPARE(SceneSnapshot(timing.scene).diff(before), QString());
    QCOMPARE(signalCount.heard(), QString());
}

QTEST_MAIN(tst_SceneSlide)
#include "tst_scene_slide.moc"
