#include "scenebuilder.h"

#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/erasertool.h"

#include <QTest>

#include <climits>

using namespace Model;
using namespace TestSupport;

namespace {

using Cells = QList<std::pair<int, int>>;

} // namespace

/// Finding cells, and the strokes committed to them.
class tst_SceneContent : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void itemIsFoundByItsReference();
    void originOfAHoldIsTheOriginalBeforeIt();
    void originOfADistantCloneIsElsewhere();
    void addedStrokeIsInTheDrawing();
    void addedStrokeIsToldWithItsBounds();
    void addedStrokeRefreshesEveryCellOfTheDrawing();
    void strokeOnADanglingDistantCloneRefreshesItself();
    void strokeOnACloneThatItsOriginalForgotRefreshesBoth();
    void refusedStrokesAreSilent();
    void removedStrokeComesBackAndEmptiesTheDrawing();
    void strokeRemovedFromAResizedDrawingLeavesThePicture();
    void removingFromAnEmptyDrawingIsSilent();
    void strokePositionsOutsideAreRefused_data();
    void strokePositionsOutsideAreRefused();
};

void tst_SceneContent::initTestCase()
{
    qRegisterMetaType<Cells>();
}

void tst_SceneContent::itemIsFoundByItsReference()
{
    Scene scene;
    addUsualLayers(scene, 1);
    const int layer = addStrokeLayer(scene, 3);
    const auto wanted = scene.item(layer, 2);
    int layerIdx = -7;
    int frameId = -7;
    QCOMPARE(scene.findItem({scene.layer(layer)->identifier(), wanted->identifier}, &layerIdx, &frameId), wanted);
    QCOMPARE(layerIdx, layer);
    QCOMPARE(frameId, 2);

    QVERIFY(!scene.findItem({}, &layerIdx, &frameId));
    QVERIFY(!scene.findItem({scene.layer(0)->identifier(), wanted->identifier}, &layerIdx, &frameId));
    QVERIFY(!scene.findItem({scene.layer(2)->identifier(), wanted->identifier}, &layerIdx, &frameId));
    QCOMPARE(layerIdx, layer);
    QCOMPARE(frameId, 2);
}

void tst_SceneContent::originOfAHoldIsTheOriginalBeforeIt()
{
    Scene scene;
    addUsualLayers(scene, 2);
    scene.addCloneDrawings(0, 2, 2);
    const CellRef expected{scene.layer(0)->identifier(), scene.item(0, 2)->identifier};
    for (const int frameId : {2, 3, 4})
        QCOMPARE(scene.originOfFrame(0, frameId), expected);
}

void tst_SceneContent::originOfADistantCloneIsElsewhere()
{
    Scene scene;
    addUsualLayers(scene, 2);
    const int lower = addStrokeLayer(scene, 2);
    scene.addCloneDrawing(lower, 2);
    scene.makeDistantClone(lower, 2, scene.originOfFrame(0, 1));
    const CellRef expected{scene.layer(0)->identifier(), scene.item(0, 1)->identifier};
    QCOMPARE(scene.originOfFrame(lower, 2), expected);
    QCOMPARE(scene.originOfFrame(lower, 3), expected);
}

void tst_SceneContent::addedStrokeIsInTheDrawing()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    QVERIFY(scene.addStroke(0, 2, block(QRect(3, 4, 5, 6), 200)));
    QCOMPARE(int(drawingAt(scene, 0, 2).image().constScanLine(4)[3]), 200);
    QCOMPARE(int(drawingAt(scene, 0, 2).image().constScanLine(3)[3]), 0);
    QVERIFY(drawingAt(scene, 0, 1).isEmpty());
}

void tst_SceneContent::addedStrokeIsToldWithItsBounds()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    QStringList order;
    connect(&scene, &Scene::rectChanged, this, [&](QRect rect) {
        // With one pixel around for the rim.
        QCOMPARE(rect, QRect(2, 3, 7, 8));
        order += "rect";
    });
    connect(&scene, &Scene::drawingsChanged, this, [&] { order += "drawings"; });
    scene.addStroke(0, 1, block(QRect(3, 4, 5, 6)));
    QCOMPARE(order, QStringList({"rect", "drawings"}));
}

void tst_SceneContent::addedStrokeRefreshesEveryCellOfTheDrawing()
{
    // Layer 0: o c o; a lower layer: o d c, its d showing frame 1 of layer 0.
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    scene.addCloneDrawing(0, 1);
    const int lower = addStrokeLayer(scene, 2);
    scene.addCloneDrawing(lower, 2);
    scene.makeDistantClone(lower, 2, scene.originOfFrame(0, 1));
    QCOMPARE(kinds(scene, lower), "odc");
    const Cells expected({{1, 0}, {2, 0}, {2, lower}, {3, lower}});
    const QList<std::pair<int, int>> shownAt = expected;
    for (const auto &[frameId, layerIdx] : shownAt) {
        QSignalSpy changed(&scene, &Scene::drawingsChanged);
        QVERIFY(scene.addStroke(layerIdx, frameId, block(QRect(3, 4, 5, 6))));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.first().first().value<Cells>(), expected);
    }
}

void tst_SceneContent::strokeOnADanglingDistantCloneRefreshesItself()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    scene.addCloneDrawing(0, 2);
    scene.item(0, 2)->type = LayerItem::Type::DistantClone;
    scene.item(0, 2)->origin = {QUuid::createUuid(), QUuid::createUuid()};
    QSignalSpy changed(&scene, &Scene::drawingsChanged);
    QVERIFY(scene.addStroke(0, 3, block(QRect(3, 4, 5, 6))));
    QCOMPARE(changed.first().first().value<Cells>(), Cells({{2, 0}, {3, 0}}));
}

void tst_SceneContent::strokeOnACloneThatItsOriginalForgotRefreshesBoth()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 4);
    scene.makeDistantClone(0, 3, scene.originOfFrame(0, 1));
    scene.item(0, 1)->clones.clear();
    QSignalSpy changed(&scene, &Scene::drawingsChanged);
    QVERIFY(scene.addStroke(0, 3, block(QRect(3, 4, 5, 6))));
    QCOMPARE(changed.first().first().value<Cells>(), Cells({{1, 0}, {3, 0}}));
}

void tst_SceneContent::refusedStrokesAreSilent()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    static const EraserTool eraser(Tool::EraserType::RubberEraser);
    auto erasing = std::make_unique<SingleStroke>(scene.frameSize(), &eraser);
    erasing->addSample({QPointF(5, 5), 0.5, 0});
    const SignalCount signalCount(&scene);
    QVERIFY(!scene.addStroke(0, 1, nullptr));
    QVERIFY(!scene.addStroke(0, 1, std::move(erasing)));
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneContent::removedStrokeComesBackAndEmptiesTheDrawing()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    scene.addStroke(0, 1, block(QRect(3, 4, 5, 6)));
    QSignalSpy rect(&scene, &Scene::rectChanged);
    QSignalSpy cells(&scene, &Scene::drawingsChanged);
    const auto stroke = scene.removeLastStroke(0, 1);
    QVERIFY(stroke);
    QCOMPARE(stroke->boundingRect(), QRect(3, 4, 5, 6));
    QVERIFY(drawingAt(scene, 0, 1).image().isNull());
    QCOMPARE(rect.size(), 1);
    QCOMPARE(rect.first().first().toRect(), QRect(2, 3, 7, 8));
    QCOMPARE(cells.size(), 1);
}

void tst_SceneContent::strokeRemovedFromAResizedDrawingLeavesThePicture()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    scene.addStroke(0, 1, block(QRect(10, 10, 8, 6)));
    scene.setFrameSize(sceneFrame * 2, MR::FitMode::FitModeStretch);
    QCOMPARE(scene.framePixmap().toImage().pixelColor(28, 26).alpha(), 255);
    QSignalSpy rect(&scene, &Scene::rectChanged);
    QVERIFY(scene.removeLastStroke(0, 1));
    // Twice as far out and as large as it was drawn.
    QVERIFY(rect.first().first().toRect().contains(QRect(20, 20, 16, 12)));
    const QImage picture = scene.framePixmap().toImage();
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            QCOMPARE(picture.pixelColor(x, y).alpha(), 0);
    }
}

void tst_SceneContent::removingFromAnEmptyDrawingIsSilent()
{
    Scene scene;
    addUsualLayers(scene, 2);
    const SignalCount signalCount(&scene);
    QVERIFY(!scene.removeLastStroke(0, 1));
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneContent::strokePositionsOutsideAreRefused_data()
{
    QTest::addColumn<int>("layerIdx");
    QTest::addColumn<int>("frameId");
    for (const int layerIdx : {INT_MIN, -1, 1, 2, 3, INT_MAX})
        QTest::addRow("layer %d", layerIdx) << layerIdx << 1;
    for (const int frameId : {INT_MIN, -1, 0, 3, INT_MAX})
        QTest::addRow("frame %d", frameId) << 0 << frameId;
}

void tst_SceneContent::strokePositionsOutsideAreRefused()
{
    QFETCH(int, layerIdx);
    QFETCH(int, frameId);
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 2);
    const SignalCount signalCount(&scene);
    QVERIFY(!scene.addStroke(layerIdx, frameId, block(QRect(3, 4, 5, 6))));
    QVERIFY(!scene.removeLastStroke(layerIdx, frameId));
    QCOMPARE(signalCount.heard(), QString());
}

QTEST_MAIN(tst_SceneContent)
#include "tst_scene_content.moc"
