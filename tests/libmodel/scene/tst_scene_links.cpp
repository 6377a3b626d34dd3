#include "scenebuilder.h"

#include "libmodel/layers/referencelayer.h"
#include "support/scenesnapshot.h"

#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

/// Three stroke layers, 0, 1 and 2, of four blanks each but for the first, whose frame 3 has been drawn on.
class ThreeLayers
{
public:
    ThreeLayers()
    {
        makeSmall(scene);
        for (int i = 0; i < 3; ++i)
            addStrokeLayer(scene, 4);
        scene.addStroke(0, 3, block(QRect(3, 2, 5, 5)));
        scene.setFrameRange(1, 4, 1, 0);
    }

    /// Makes the cell a distant clone of the original at (originLayer, originFrame).
    void link(int layerIdx, int frameId, int originLayer, int originFrame)
    {
        QVERIFY(!scene.makeDistantClone(layerIdx, frameId, scene.originOfFrame(originLayer, originFrame)).isEmpty());
    }

    CellRef ref(int layerIdx, int frameId) const { return scene.visualLayer(layerIdx)->cellRef(frameId); }

    Scene scene;
};

} // namespace

/// Links between cells of different layers, as layers come and go.
class tst_SceneLinks : public QObject
{
    Q_OBJECT

private slots:
    void removedLayersOriginalIsSucceededByItsFirstClone();
    void removedLayersDistantClonesAreForgotten();
    void removedLayerComesBackAsItWas_data();
    void removedLayerComesBackAsItWas();
    void removedLayersComeBackInReverse();
    void swappedLayersLinksFollow();
    void swappingBackRestoresTheLinks();
    void copiedLayersDistantClonesJoinTheirOriginal();
    void copiedLayersInnerLinksAreItsOwn();
    void copiedReferenceLayersDistantClonesJoinTheirOriginal();
    void copyComesAndGoes();
    void distantCloneWithoutItsOriginalIsAnOriginalAfterTheReturn();
    void returningOriginalIsShownByItsClonesAndTheirHolds();
    void strokesReachClonesInOtherLayers();
    void resizingScalesASharedDrawingOnce();
};

void tst_SceneLinks::removedLayersOriginalIsSucceededByItsFirstClone()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    three.link(2, 4, 0, 3);
    three.scene.addCloneDrawing(1, 2);
    const auto drawing = three.scene.item(0, 3)->drawing;
    const auto removed = three.scene.removeLayer(0);
    // What was layer 1 is layer 0 now.
    QCOMPARE(kinds(three.scene, 0), "oocoo");
    QCOMPARE(kinds(three.scene, 1), "oood");
    QCOMPARE(three.scene.item(1, 4)->origin, three.ref(0, 2));
    QCOMPARE(three.scene.item(0, 2)->clones, QList<CellRef>({three.ref(1, 4)}));
    for (const auto &cell : {three.scene.item(0, 2), three.scene.item(0, 3), three.scene.item(1, 4)})
        QCOMPARE(cell->drawing, drawing);
    QCOMPARE(brokenInvariant(three.scene), QString());
}

void tst_SceneLinks::removedLayersDistantClonesAreForgotten()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    three.link(2, 1, 0, 3);
    three.link(1, 4, 0, 3);
    const CellRef stays = three.ref(2, 1);
    const auto removed = three.scene.removeLayer(1);
    QCOMPARE(three.scene.item(0, 3)->clones, QList<CellRef>({stays}));
    QCOMPARE(brokenInvariant(three.scene), QString());
}

void tst_SceneLinks::removedLayerComesBackAsItWas_data()
{
    QTest::addColumn<int>("layerIdx");
    for (const int layerIdx : {0, 1, 2})
        QTest::addRow("layer %d", layerIdx) << layerIdx;
}

void tst_SceneLinks::removedLayerComesBackAsItWas()
{
    QFETCH(int, layerIdx);
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    three.link(2, 1, 0, 3);
    three.link(0, 4, 0, 3);
    three.link(1, 4, 0, 3);
    three.link(0, 2, 1, 1);
    three.link(2, 4, 1, 1);
    three.scene.addCloneDrawing(1, 2);
    three.scene.moveLayer(2, 0);
    const SceneSnapshot before(three.scene);
    QCOMPARE(brokenInvariant(three.scene), QString());
    const int visualIndex = three.scene.visualIndex(layerIdx);
    for (int round = 0; round < 2; ++round) {
        const auto removed = three.scene.removeLayer(layerIdx);
        QCOMPARE(brokenInvariant(three.scene), QString());
        QCOMPARE(three.scene.insertLayer(removed, layerIdx), layerIdx);
        three.scene.moveLayer(layerIdx, visualIndex);
        three.scene.setFrameRange(before.rangeFirst, before.rangeLast, before.activeFrame, before.activeLayerIdx);
        QCOMPARE(SceneSnapshot(three.scene).diff(before), QString());
        QCOMPARE(brokenInvariant(three.scene), QString());
    }
}

void tst_SceneLinks::removedLayersComeBackInReverse()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    three.link(2, 1, 0, 3);
    three.link(2, 2, 0, 3);
    three.link(1, 1, 2, 4);
    const SceneSnapshot before(three.scene);
    const auto first = three.scene.removeLayer(0);
    const auto second = three.scene.removeLayer(0);
    QCOMPARE(kinds(three.scene, 0), "odoo");
    QCOMPARE(brokenInvariant(three.scene), QString());
    three.scene.insertLayer(second, 0);
    three.scene.moveLayer(0, 0);
    QCOMPARE(brokenInvariant(three.scene), QString());
    three.scene.insertLayer(first, 0);
    three.scene.moveLayer(0, 0);
    three.scene.setFrameRange(before.rangeFirst, before.rangeLast, before.activeFrame, before.activeLayerIdx);
    QCOMPARE(SceneSnapshot(three.scene).diff(before), QString());
}

void tst_SceneLinks::swappedLayersLinksFollow()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    three.link(0, 1, 2, 1);
    auto replacement = std::make_shared<StrokeLayer>(Qt::red, sceneFrame);
    const auto old = three.scene.swapLayer(0, replacement);
    QVERIFY(old);
    QCOMPARE(kinds(three.scene, 0), "o");
    QVERIFY(three.scene.item(1, 2)->isOriginal());
    QVERIFY(three.scene.item(2, 1)->clones.isEmpty());
    QCOMPARE(brokenInvariant(three.scene), QString());
}

void tst_SceneLinks::swappingBackRestoresTheLinks()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    three.link(2, 2, 0, 3);
    three.link(0, 1, 2, 1);
    const SceneSnapshot before(three.scene);
    auto layer = three.scene.swapLayer(0, std::make_shared<StrokeLayer>(Qt::red, sceneFrame));
    const SceneSnapshot after(three.scene);
    layer = three.scene.swapLayer(0, layer);
    three.scene.setFrameRange(before.rangeFirst, before.rangeLast, before.activeFrame, before.activeLayerIdx);
    QCOMPARE(SceneSnapshot(three.scene).diff(before), QString());
    three.scene.swapLayer(0, layer);
    three.scene.setFrameRange(after.rangeFirst, after.rangeLast, after.activeFrame, after.activeLayerIdx);
    QCOMPARE(SceneSnapshot(three.scene).diff(after), QString());
}

void tst_SceneLinks::copiedLayersDistantClonesJoinTheirOriginal()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    three.scene.addCloneDrawing(1, 2);
    const int copy = three.scene.insertLayer(three.scene.layer(1)->clone(), 3);
    QVERIFY(three.scene.item(copy, 2)->isDistantClone());
    QCOMPARE(three.scene.item(copy, 2)->origin, three.ref(0, 3));
    QCOMPARE(three.scene.item(copy, 2)->drawing, three.scene.item(0, 3)->drawing);
    QCOMPARE(three.scene.item(copy, 3)->drawing, three.scene.item(0, 3)->drawing);
    QCOMPARE(three.scene.item(0, 3)->clones, QList<CellRef>({three.ref(1, 2), three.ref(copy, 2)}));
    QCOMPARE(brokenInvariant(three.scene), QString());
}

void tst_SceneLinks::copiedLayersInnerLinksAreItsOwn()
{
    ThreeLayers three;
    three.link(0, 1, 0, 3);
    three.link(1, 2, 0, 3);
    const int copy = three.scene.insertLayer(three.scene.layer(0)->clone(), 3);
    QCOMPARE(three.scene.item(copy, 1)->origin, three.ref(copy, 3));
    QCOMPARE(three.scene.item(copy, 3)->clones, QList<CellRef>({three.ref(copy, 1)}));
    QVERIFY(three.scene.item(copy, 3)->drawing != three.scene.item(0, 3)->drawing);
    QCOMPARE(three.scene.item(0, 3)->clones, QList<CellRef>({three.ref(0, 1), three.ref(1, 2)}));
    QCOMPARE(brokenInvariant(three.scene), QString());
}

void tst_SceneLinks::copiedReferenceLayersDistantClonesJoinTheirOriginal()
{
    Scene scene;
    makeSmall(scene);
    for (int i = 0; i < 2; ++i)
        scene.insertLayer(std::make_shared<ReferenceLayer>(sceneFrame), i);
    scene.addBlankDrawing(1, 1);
    scene.makeDistantClone(1, 2, scene.originOfFrame(0, 1));
    scene.addBlankDrawing(1, 2);
    scene.makeDistantClone(1, 3, scene.originOfFrame(1, 1));
    QCOMPARE(kinds(scene, 1), "odd");
    const int copy = scene.insertLayer(scene.layer(1)->clone(), 2);
    QCOMPARE(kinds(scene, copy), "odo");
    QCOMPARE(scene.item(copy, 2)->drawing, scene.item(0, 1)->drawing);
    QCOMPARE(scene.item(0, 1)->clones.size(), 2);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneLinks::copyComesAndGoes()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    three.link(1, 4, 1, 1);
    const SceneSnapshot before(three.scene);
    const int index = three.scene.insertLayer(three.scene.layer(1)->clone(), 1);
    const SceneSnapshot with(three.scene);
    auto copy = three.scene.removeLayer(index);
    three.scene.setFrameRange(before.rangeFirst, before.rangeLast, before.activeFrame, before.activeLayerIdx);
    QCOMPARE(SceneSnapshot(three.scene).diff(before), QString());
    three.scene.insertLayer(copy, index);
    three.scene.setFrameRange(with.rangeFirst, with.rangeLast, with.activeFrame, with.activeLayerIdx);
    QCOMPARE(SceneSnapshot(three.scene).diff(with), QString());
}

void tst_SceneLinks::distantCloneWithoutItsOriginalIsAnOriginalAfterTheReturn()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    const auto removed = three.scene.removeLayer(1);
    const auto originals = three.scene.removeLayer(0);
    int index = three.scene.insertLayer(removed, 1);
    QCOMPARE(kinds(three.scene, index), "oooo");
    QVERIFY(three.scene.item(index, 2)->origin.isNull());
    QCOMPARE(brokenInvariant(three.scene), QString());
    // It is on its own from now on, also when what it showed is there again.
    three.scene.insertLayer(originals, 0);
    index = three.scene.indexOfLayer(removed->identifier());
    QVERIFY(three.scene.item(index, 2)->drawing != three.scene.item(0, 3)->drawing);
    QCOMPARE(drawingAt(three.scene, index, 2).image(), drawingAt(three.scene, 0, 3).image());
    QCOMPARE(brokenInvariant(three.scene), QString());
}

void tst_SceneLinks::returningOriginalIsShownByItsClonesAndTheirHolds()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    three.scene.addCloneDrawing(1, 2);
    const auto removed = three.scene.removeLayer(0);
    three.scene.replaceDrawing(0, 2, std::make_shared<StrokeDrawing>(sceneFrame));
    three.scene.insertLayer(removed, 0);
    QCOMPARE(kinds(three.scene, 1), "odcoo");
    QCOMPARE(three.scene.item(1, 2)->drawing, three.scene.item(0, 3)->drawing);
    QCOMPARE(three.scene.item(1, 3)->drawing, three.scene.item(0, 3)->drawing);
    QCOMPARE(brokenInvariant(three.scene), QString());
}

void tst_SceneLinks::strokesReachClonesInOtherLayers()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    QVERIFY(three.scene.addStroke(1, 2, block(QRect(20, 20, 4, 4))));
    QCOMPARE(int(drawingAt(three.scene, 0, 3).image().constScanLine(21)[21]), 255);
}

void tst_SceneLinks::resizingScalesASharedDrawingOnce()
{
    ThreeLayers three;
    three.link(1, 2, 0, 3);
    three.scene.setFrameSize(sceneFrame * 2, MR::FitMode::FitModeStretch);
    // The block was 3, 2, 5 x 5.
    QCOMPARE(int(drawingAt(three.scene, 0, 3).image().constScanLine(8)[10]), 255);
    QCOMPARE(int(drawingAt(three.scene, 0, 3).image().constScanLine(8)[18]), 0);
    QCOMPARE(brokenInvariant(three.scene), QString());
}

QTEST_MAIN(tst_SceneLinks)
#include "tst_scene_links.moc"
