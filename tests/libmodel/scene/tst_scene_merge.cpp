#include "scenebuilder.h"

#include "libmodel/layers/referencelayer.h"
#include "support/scenesnapshot.h"

#include <QTest>

#include <climits>

using namespace Model;
using namespace TestSupport;

namespace {

constexpr int upper = 0;
constexpr int lower = 1;

/// Layers as \a upperKinds and \a lowerKinds have them (o: an original, c: a hold). Every original of the upper has a
/// pixel of coverage 200 in row 1, every original of the lower one of 100 in row 2, in the column of its frame.
class Pair
{
public:
    Pair(const QString &upperKinds, const QString &lowerKinds)
    {
        makeSmall(scene);
        add(upperKinds, 1, 200);
        add(lowerKinds, 2, 100);
        scene.setFrameRange(1, scene.maximumFrameNumber(), 1, upper);
    }

    /// Which upper and which lower originals a cell of the lower layer shows: "u2 l1", by their frames.
    QString shown(int frameId) const
    {
        const QImage image = drawingAt(scene, lower, frameId).image();
        QStringList found;
        for (int column = 1; column < 10; ++column) {
            if (!image.isNull() && image.constScanLine(1)[column] == 200)
                found += QString("u%1").arg(column);
        }
        for (int column = 1; column < 10; ++column) {
            if (!image.isNull() && image.constScanLine(2)[column] == 100)
                found += QString("l%1").arg(column);
        }
        return found.join(' ');
    }

    Scene scene;

private:
    void add(const QString &kinds, int row, int coverage)
    {
        const int layerIdx = addStrokeLayer(scene, 1);
        for (int frameId = 1; frameId <= kinds.size(); ++frameId) {
            if (frameId > 1 && kinds.at(frameId - 1) == 'c')
                scene.addCloneDrawing(layerIdx, frameId - 1);
            else if (frameId > 1)
                scene.addBlankDrawing(layerIdx, frameId - 1);
            if (kinds.at(frameId - 1) == 'o')
                scene.addStroke(layerIdx, frameId, block(QRect(frameId, row, 1, 1), coverage));
        }
    }
};

} // namespace

/// Merging the pictures of one layer into another.
class tst_SceneMerge : public QObject
{
    Q_OBJECT

private slots:
    void drawingsAreMergedFrameByFrame();
    void shorterLayerIsPaddedWithOneHeldBlank();
    void threeFramesOntoOne_data();
    void threeFramesOntoOne();
    void lowerHoldIsSplitWhereTheUpperHasADrawing();
    void upperHoldShowsThroughTheLowerHold();
    void longerLowerLayerIsLeftBehindTheUpper();
    void lowersDistantClonesKeepTheOldDrawing();
    void lowersDistantCloneIsUnlinked();
    void uppersDistantCloneIsMergedToo();
    void keyMarksAreJoined();
    void uppersTransformWinsUnlessItIsNone();
    void upperLayerIsLeftAsItWas();
    void linkedLayersHaveNoPartInIt();
    void mergeIsTold();
    void unfitLayersAreRefused_data();
    void unfitLayersAreRefused();
};

void tst_SceneMerge::drawingsAreMergedFrameByFrame()
{
    Pair pair("ooo", "ooo");
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    for (int frameId = 1; frameId <= 3; ++frameId)
        QCOMPARE(pair.shown(frameId), QString("u%1 l%1").arg(frameId));
    QCOMPARE(kinds(pair.scene, lower), "ooo");
    QCOMPARE(pair.scene.layerCount(), 2);
    QCOMPARE(brokenInvariant(pair.scene), QString());
}

void tst_SceneMerge::shorterLayerIsPaddedWithOneHeldBlank()
{
    Pair pair("occc", "o");
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(kinds(pair.scene, lower), "oocc");
    QCOMPARE(pair.shown(1), "u1 l1");
    QCOMPARE(pair.shown(2), "");
}

void tst_SceneMerge::threeFramesOntoOne_data()
{
    QTest::addColumn<QString>("upperKinds");
    QTest::addColumn<QString>("lowerKinds");
    QTest::addColumn<QString>("third");
    QTest::newRow("hold") << QString("ooc") << QString("ooc") << QString("u2");
    QTest::newRow("original") << QString("ooo") << QString("ooo") << QString("u3");
}

void tst_SceneMerge::threeFramesOntoOne()
{
    QFETCH(QString, upperKinds);
    QFETCH(QString, lowerKinds);
    QFETCH(QString, third);
    Pair pair(upperKinds, "o");
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(pair.scene.lastFrame(lower), 3);
    QCOMPARE(kinds(pair.scene, lower), lowerKinds);
    QCOMPARE(pair.shown(1), "u1 l1");
    QCOMPARE(pair.shown(2), "u2");
    QCOMPARE(pair.shown(3), third);
    QCOMPARE(brokenInvariant(pair.scene), QString());
}

void tst_SceneMerge::lowerHoldIsSplitWhereTheUpperHasADrawing()
{
    Pair pair("ooc", "occc");
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(kinds(pair.scene, lower), "oocc");
    QCOMPARE(pair.shown(1), "u1 l1");
    // A copy of what it held, without what was merged into that.
    for (int frameId = 2; frameId <= 4; ++frameId)
        QCOMPARE(pair.shown(frameId), "u2 l1");
    QCOMPARE(brokenInvariant(pair.scene), QString());
}

void tst_SceneMerge::upperHoldShowsThroughTheLowerHold()
{
    Pair pair("occ", "occ");
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(kinds(pair.scene, lower), "occ");
    for (int frameId = 1; frameId <= 3; ++frameId)
        QCOMPARE(pair.shown(frameId), "u1 l1");
}

void tst_SceneMerge::longerLowerLayerIsLeftBehindTheUpper()
{
    Pair pair("o", "ooo");
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(pair.shown(1), "u1 l1");
    QCOMPARE(pair.shown(2), "l2");
    QCOMPARE(pair.shown(3), "l3");
}

void tst_SceneMerge::lowersDistantClonesKeepTheOldDrawing()
{
    Pair pair("o", "oo");
    const int third = addStrokeLayer(pair.scene, 1);
    pair.scene.makeDistantClone(third, 1, pair.scene.originOfFrame(lower, 1));
    const QImage old = drawingAt(pair.scene, third, 1).image();
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(pair.shown(1), "u1 l1");
    QVERIFY(pair.scene.item(third, 1)->isOriginal());
    QCOMPARE(drawingAt(pair.scene, third, 1).image(), old);
    QCOMPARE(brokenInvariant(pair.scene), QString());
}

void tst_SceneMerge::lowersDistantCloneIsUnlinked()
{
    Pair pair("oo", "oo");
    pair.scene.makeDistantClone(lower, 2, pair.scene.originOfFrame(lower, 1));
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(kinds(pair.scene, lower), "oo");
    QCOMPARE(pair.shown(1), "u1 l1");
    QCOMPARE(pair.shown(2), "u2 l1");
    QCOMPARE(brokenInvariant(pair.scene), QString());
}

void tst_SceneMerge::uppersDistantCloneIsMergedToo()
{
    Pair pair("oo", "oo");
    pair.scene.makeDistantClone(upper, 2, pair.scene.originOfFrame(upper, 1));
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(pair.shown(2), "u1 l2");
    QVERIFY(pair.scene.item(upper, 2)->isDistantClone());
}

void tst_SceneMerge::keyMarksAreJoined()
{
    Pair pair("oooo", "oooo");
    pair.scene.setKeyDrawing(upper, 1, true);
    pair.scene.setKeyDrawing(upper, 2, true);
    pair.scene.setKeyDrawing(lower, 2, true);
    pair.scene.setKeyDrawing(lower, 3, true);
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    for (int frameId = 1; frameId <= 4; ++frameId)
        QCOMPARE(pair.scene.item(lower, frameId)->keyDrawing, frameId < 4);
}

void tst_SceneMerge::uppersTransformWinsUnlessItIsNone()
{
    const auto ofUpper = QTransform::fromTranslate(1, 2);
    const auto ofLower = QTransform::fromTranslate(30, 40);
    Pair pair("oco", "occ");
    pair.scene.setOffPegsTransform(1, upper, ofUpper);
    pair.scene.setOffPegsTransform(2, upper, ofUpper);
    pair.scene.setOffPegsTransform(2, lower, ofLower);
    pair.scene.setOffPegsTransform(3, lower, ofLower);
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(pair.scene.item(lower, 1)->offPegsTransform, ofUpper);
    QCOMPARE(pair.scene.item(lower, 2)->offPegsTransform, ofUpper);
    QCOMPARE(pair.scene.item(lower, 3)->offPegsTransform, ofLower);
}

void tst_SceneMerge::upperLayerIsLeftAsItWas()
{
    Pair pair("oco", "occ");
    const SceneSnapshot before(pair.scene);
    const QImage first = drawingAt(pair.scene, upper, 1).image();
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(kinds(pair.scene, upper), "oco");
    QCOMPARE(drawingAt(pair.scene, upper, 1).image(), first);
    QVERIFY(SceneSnapshot(pair.scene).layers.at(upper) == before.layers.at(upper));
}

void tst_SceneMerge::linkedLayersHaveNoPartInIt()
{
    Pair pair("ooo", "o");
    const int third = addStrokeLayer(pair.scene, 1);
    for (const int layerIdx : {upper, lower, third})
        pair.scene.setLayerLinked(layerIdx, true);
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(pair.scene.lastFrame(upper), 3);
    QCOMPARE(pair.scene.lastFrame(lower), 3);
    QCOMPARE(pair.scene.lastFrame(third), 1);
}

void tst_SceneMerge::mergeIsTold()
{
    Pair pair("oo", "oo");
    QSignalSpy layers(&pair.scene, &Scene::layersChanged);
    QSignalSpy rect(&pair.scene, &Scene::rectChanged);
    QVERIFY(pair.scene.mergeLayers(upper, lower));
    QCOMPARE(layers.size(), 1);
    QCOMPARE(layers.first(), QVariantList({lower, lower}));
    QVERIFY(!rect.isEmpty());
}

void tst_SceneMerge::unfitLayersAreRefused_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    // Layers 2 to 5: sound, notes, two reference layers.
    QTest::newRow("itself") << upper << upper;
    QTest::newRow("onto a reference layer") << upper << 4;
    QTest::newRow("a reference layer") << 4 << lower;
    QTest::newRow("two reference layers") << 4 << 5;
    QTest::newRow("onto sound") << upper << 2;
    QTest::newRow("notes") << 3 << lower;
    for (const int layerIdx : {INT_MIN, -1, 6, INT_MAX}) {
        QTest::addRow("from %d", layerIdx) << layerIdx << lower;
        QTest::addRow("to %d", layerIdx) << upper << layerIdx;
    }
}

void tst_SceneMerge::unfitLayersAreRefused()
{
    QFETCH(int, from);
    QFETCH(int, to);
    Pair pair("ooo", "oo");
    pair.scene.insertLayer(std::make_shared<AudioLayer>(), 2);
    pair.scene.insertLayer(std::make_shared<AnnotationLayer>(), 3);
    pair.scene.insertLayer(std::make_shared<ReferenceLayer>(sceneFrame), 4);
    pair.scene.insertLayer(std::make_shared<ReferenceLayer>(sceneFrame), 5);
    const SceneSnapshot before(pair.scene);
    const SignalCount signalCount(&pair.scene);
    QVERIFY(!pair.scene.mergeLayers(from, to));
    QCOMPARE(SceneSnapshot(pair.scene).diff(before), QString());
    QCOMPARE(signalCount.heard(), QString());
}

QTEST_MAIN(tst_SceneMerge)
#include "tst_scene_merge.moc"
