#include "scenebuilder.h"

#include <QTest>

#include <climits>
#include <limits>

using namespace Model;
using namespace TestSupport;

namespace {

using Cells = QList<std::pair<int, int>>;

Cells cellsOf(const QSignalSpy &spy)
{
    return spy.first().first().value<Cells>();
}

} // namespace

class tst_SceneAttributes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void nameIsToldOnceForTheColumn();
    void visibilityIsToldOnceForTheColumn();
    void onlyVisualLayersHaveAVisibility();
    void anyLayerCanBeLinked();
    void beyondLastIsToldAlsoForAHiddenLayer();
    void beyondLastOfAHiddenLayerRecomposesNothing();
    void equalBeyondLastDoesNothing();
    void colourIsToldWithTheWholePicture();
    void onlyStrokeLayersHaveAColour();
    void opacityIsLimitedAndTold_data();
    void opacityIsLimitedAndTold();
    void opacityThatIsNoNumberIsRefused();
    void keyMarkIsAnnouncedBeforeItIsSet();
    void annotationIsToldForItsColumn();
    void annotationNeedsALayerAndAFrame();
    void annotationOfAnotherDepthIsRefused();
    void offPegsOfTheActiveFrameIsTold();
    void offPegsOfAnotherFrameIsToldToTheSheetOnly();
    void offPegsIsThatOfTheTopmostMovedCell();
    void unknownLayersAndFramesDoNothing_data();
    void unknownLayersAndFramesDoNothing();
};

void tst_SceneAttributes::initTestCase()
{
    qRegisterMetaType<Cells>();
}

void tst_SceneAttributes::nameIsToldOnceForTheColumn()
{
    Scene scene;
    addUsualLayers(scene, 1);
    QSignalSpy changed(&scene, &Scene::layersChanged);
    QVERIFY(scene.setLayerName(1, "Music"));
    QVERIFY(scene.setLayerName(1, "Music"));
    QCOMPARE(scene.layer(1)->name(), "Music");
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first(), QVariantList({1, 1}));
}

void tst_SceneAttributes::visibilityIsToldOnceForTheColumn()
{
    Scene scene;
    addUsualLayers(scene, 1);
    QSignalSpy changed(&scene, &Scene::layersChanged);
    QVERIFY(scene.setLayerVisible(0, false));
    QVERIFY(scene.setLayerVisible(0, false));
    QVERIFY(!scene.isLayerShown(0));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first(), QVariantList({0, 0}));
}

void tst_SceneAttributes::onlyVisualLayersHaveAVisibility()
{
    Scene scene;
    addUsualLayers(scene, 1);
    const SignalCount signalCount(&scene);
    QVERIFY(!scene.setLayerVisible(1, false));
    QVERIFY(!scene.setLayerVisible(2, false));
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneAttributes::anyLayerCanBeLinked()
{
    Scene scene;
    addUsualLayers(scene, 1);
    QSignalSpy changed(&scene, &Scene::layersChanged);
    for (int layerIdx = 0; layerIdx < 3; ++layerIdx) {
        QVERIFY(scene.setLayerLinked(layerIdx, true));
        QVERIFY(scene.layer(layerIdx)->isLinked());
    }
    QCOMPARE(changed.size(), 3);
}

void tst_SceneAttributes::beyondLastIsToldAlsoForAHiddenLayer()
{
    Scene scene;
    addUsualLayers(scene, 1);
    scene.setLayerVisible(0, false);
    QSignalSpy changed(&scene, &Scene::layersChanged);
    QVERIFY(scene.setLayerBeyondLast(0, Layer::FreezeLast));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(scene.layer(0)->beyondLast(), Layer::FreezeLast);
}

void tst_SceneAttributes::beyondLastOfAHiddenLayerRecomposesNothing()
{
    Scene scene;
    addUsualLayers(scene, 1);
    scene.setLayerVisible(0, false);
    QSignalSpy rect(&scene, &Scene::rectChanged);
    scene.setLayerBeyondLast(0, Layer::FreezeLast);
    QCOMPARE(rect.size(), 0);
    scene.setLayerVisible(0, true);
    rect.clear();
    scene.setLayerBeyondLast(0, Layer::CycleDrawings);
    QCOMPARE(rect.size(), 1);
}

void tst_SceneAttributes::equalBeyondLastDoesNothing()
{
    Scene scene;
    addUsualLayers(scene, 1);
    const SignalCount signalCount(&scene);
    QVERIFY(!scene.setLayerBeyondLast(0, Layer::ShowNothing));
    QVERIFY(!scene.setLayerBeyondLast(1, Layer::FreezeLast));
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneAttributes::colourIsToldWithTheWholePicture()
{
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 1);
    QStringList order;
    connect(&scene, &Scene::rectChanged, this,
            [&](QRect rect) { order += QString("rect %1x%2").arg(rect.width()).arg(rect.height()); });
    connect(&scene, &Scene::layerColorChanged, this,
            [&](int idx, const QColor &color) { order += QString("%1 %2").arg(idx).arg(color.name()); });
    QVERIFY(scene.setLayerColor(0, QColor(1, 2, 3)));
    QCOMPARE(order, QStringList({"rect 60x40", "0 #010203"}));
    QCOMPARE(qobject_cast<StrokeLayer *>(scene.layer(0))->color(), QColor(1, 2, 3));
}

void tst_SceneAttributes::onlyStrokeLayersHaveAColour()
{
    Scene scene;
    addUsualLayers(scene, 1);
    const SignalCount signalCount(&scene);
    QVERIFY(!scene.setLayerColor(1, Qt::red));
    QVERIFY(!scene.setLayerColor(2, Qt::red));
    QVERIFY(!scene.setLayerColor(0, QColor()));
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneAttributes::opacityIsLimitedAndTold_data()
{
    QTest::addColumn<double>("given");
    QTest::addColumn<double>("kept");
    QTest::newRow("below") << -1.0 << 0.0;
    QTest::newRow("inside") << 0.4 << 0.4;
    QTest::newRow("above") << 2.0 << 1.0;
}

void tst_SceneAttributes::opacityIsLimitedAndTold()
{
    QFETCH(double, given);
    QFETCH(double, kept);
    Scene scene;
    addUsualLayers(scene, 1);
    QSignalSpy changed(&scene, &Scene::layerOpacityChanged);
    QVERIFY(scene.setLayerOpacity(0, given));
    QCOMPARE(scene.visualLayer(0)->opacity(), kept);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first(), QVariantList({0, kept}));
}

void tst_SceneAttributes::opacityThatIsNoNumberIsRefused()
{
    Scene scene;
    addUsualLayers(scene, 1);
    QVERIFY(!scene.setLayerOpacity(0, std::numeric_limits<double>::quiet_NaN()));
    QVERIFY(!scene.setLayerOpacity(1, 0.5));
    QCOMPARE(scene.visualLayer(0)->opacity(), 1.0);
}

void tst_SceneAttributes::keyMarkIsAnnouncedBeforeItIsSet()
{
    Scene scene;
    addUsualLayers(scene, 3);
    bool markWhenTold = true;
    connect(&scene, &Scene::drawingsChanged, this, [&] { markWhenTold = scene.item(0, 2)->keyDrawing; });
    QSignalSpy changed(&scene, &Scene::drawingsChanged);
    scene.setKeyDrawing(0, 2, true);
    QVERIFY(!markWhenTold);
    QVERIFY(scene.item(0, 2)->keyDrawing);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(cellsOf(changed), Cells({{2, 0}}));
}

void tst_SceneAttributes::annotationIsToldForItsColumn()
{
    Scene scene;
    addUsualLayers(scene, 3);
    QImage note(4, 4, QImage::Format_Indexed8);
    note.fill(7);
    QSignalSpy changed(&scene, &Scene::layersChanged);
    QVERIFY(scene.setAnnotation(9, note));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first(), QVariantList({2, 2}));
    QCOMPARE(qobject_cast<AnnotationLayer *>(scene.layer(2))->image(9).size(), QSize(4, 4));
    QCOMPARE(scene.maximumFrameNumber(), 3);
}

void tst_SceneAttributes::annotationNeedsALayerAndAFrame()
{
    Scene scene;
    addStrokeLayer(scene, 1);
    QVERIFY(!scene.setAnnotation(1, QImage()));
    addUsualLayers(scene, 1);
    const SignalCount signalCount(&scene);
    for (const int frameId : {INT_MIN, -1, 0, INT_MAX})
        QVERIFY(!scene.setAnnotation(frameId, QImage()));
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneAttributes::offPegsOfTheActiveFrameIsTold()
{
    Scene scene;
    addUsualLayers(scene, 3);
    const int lower = addStrokeLayer(scene, 1);
    const QTransform motion = QTransform::fromTranslate(5, 6);
    QSignalSpy pegs(&scene, &Scene::offPegsTransformChanged);
    QSignalSpy cells(&scene, &Scene::drawingsChanged);
    scene.setCurrentDrawingOffPegsTransform(motion);
    QCOMPARE(scene.item(0, 1)->offPegsTransform, motion);
    QCOMPARE(pegs.size(), 1);
    QCOMPARE(pegs.first().first().value<QTransform>(), motion);
    QCOMPARE(cells.size(), 1);
    QCOMPARE(cellsOf(cells), Cells({{1, 0}, {1, lower}}));
}

void tst_SceneAttributes::offPegsOfAnotherFrameIsToldToTheSheetOnly()
{
    Scene scene;
    addUsualLayers(scene, 3);
    QSignalSpy pegs(&scene, &Scene::offPegsTransformChanged);
    QSignalSpy cells(&scene, &Scene::drawingsChanged);
    scene.setOffPegsTransform(2, QTransform::fromTranslate(5, 6));
    QCOMPARE(pegs.size(), 0);
    QCOMPARE(cells.size(), 1);
    QCOMPARE(cellsOf(cells), Cells({{2, 0}}));
}

void tst_SceneAttributes::offPegsIsThatOfTheTopmostMovedCell()
{
    Scene scene;
    for (int i = 0; i < 3; ++i)
        addStrokeLayer(scene, 2);
    const QTransform middle = QTransform::fromTranslate(1, 0);
    const QTransform bottom = QTransform::fromTranslate(2, 0);
    scene.setOffPegsTransform(1, 1, middle);
    scene.setOffPegsTransform(1, 2, bottom);
    int layerIdx = 99;
    QCOMPARE(scene.offPegsTransformOfFrame(1, &layerIdx), middle);
    QCOMPARE(layerIdx, 1);
    scene.moveLayer(2, 0);
    QCOMPARE(scene.offPegsTransformOfFrame(1, &layerIdx), bottom);
    QCOMPARE(layerIdx, 2);
    QVERIFY(scene.offPegsTransformOfFrame(2, &layerIdx).isIdentity());
    QCOMPARE(layerIdx, -1);
}

void tst_SceneAttributes::unknownLayersAndFramesDoNothing_data()
{
    QTest::addColumn<int>("layerIdx");
    QTest::addColumn<int>("frameId");
    for (const int layerIdx : {INT_MIN, -1, 3, INT_MAX})
        QTest::addRow("layer %d", layerIdx) << layerIdx << 1;
    for (const int frameId : {INT_MIN, -1, 0, 3, INT_MAX})
        QTest::addRow("frame %d", frameId) << 0 << frameId;
}

void tst_SceneAttributes::unknownLayersAndFramesDoNothing()
{
    QFETCH(int, layerIdx);
    QFETCH(int, frameId);
    Scene scene;
    addUsualLayers(scene, 2);
    const SignalCount signalCount(&scene);
    scene.setKeyDrawing(layerIdx, frameId, true);
    scene.setOffPegsTransform(frameId, layerIdx, QTransform::fromTranslate(1, 1));
    QVERIFY(!scene.item(layerIdx, frameId));
    QVERIFY(scene.originOfFrame(layerIdx, frameId).isNull());
    QVERIFY(scene.offPegsTransformOfFrame(frameId).isIdentity());
    if (layerIdx != 0) {
        QVERIFY(!scene.setLayerName(layerIdx, "x"));
        QVERIFY(!scene.setLayerVisible(layerIdx, false));
        QVERIFY(!scene.setLayerLinked(layerIdx, true));
        QVERIFY(!scene.setLayerBeyondLast(layerIdx, Layer::FreezeLast));
        QVERIFY(!scene.setLayerColor(layerIdx, Qt::red));
        QVERIFY(!scene.setLayerOpacity(layerIdx, 0.5));
    }
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneAttributes::annotationOfAnotherDepthIsRefused()
{
    Scene scene;
    addUsualLayers(scene, 2);
    QImage note(3, 3, QImage::Format_Indexed8);
    note.fill(7);
    QVERIFY(scene.setAnnotation(1, note));
    const SignalCount signalCount(&scene);
    for (const QImage::Format format : {QImage::Format_Mono, QImage::Format_RGB16, QImage::Format_ARGB32}) {
        QImage other(3, 3, format);
        other.fill(0);
        QVERIFY(!scene.setAnnotation(1, other));
    }
    QCOMPARE(signalCount.heard(), QString());
    QCOMPARE(qobject_cast<AnnotationLayer *>(scene.layer(2))->image(1), note);
}

QTEST_MAIN(tst_SceneAttributes)
#include "tst_scene_attributes.moc"
