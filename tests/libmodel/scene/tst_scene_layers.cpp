#include "scenebuilder.h"

#include <QRandomGenerator>
#include <QTest>

#include <climits>

using namespace Model;
using namespace TestSupport;

class tst_SceneLayers : public QObject
{
    Q_OBJECT

private slots:
    void insertedLayerGoesToTheBottomOfTheOrder();
    void insertionIsToldAroundTheChange();
    void insertPositionIsLimited_data();
    void insertPositionIsLimited();
    void insertingInFrontOfTheAudioLayerMovesIt();
    void insertingInFrontOfTheActiveLayerKeepsItActive();
    void nullAndTwiceTheSameLayerAreRefused();
    void secondLayerOfSoundOrNotesIsRefused();
    void insertingALongerLayerRaisesTheMaximum();
    void removalHandsTheLayerOver();
    void removalIsToldAroundTheChange();
    void removalKeepsTheOrderOfTheOthers();
    void removingTheActiveLayerActivatesTheOneAbove();
    void removingTheTopmostActiveLayerActivatesTheOneBelow();
    void removingTheLongestLayerShortensTheRange();
    void removingAllLayersLeavesNothingActive();
    void swappedLayerTakesBothPlaces();
    void swappingInAShortLayerPullsTheActiveFrameIn();
    void movingChangesOnlyTheDisplayOrder();
    void movingIsToldWithBothPlaces();
    void nextVisualLayerSkipsOtherLayers();
    void layerNumbersAreNotUsedTwice();
    void unknownIndexesDoNothing_data();
    void unknownIndexesDoNothing();
    void ordersStayInversesUnderRandomEdits();
    void annotationLayerIsFoundByItsKind();
};

void tst_SceneLayers::insertedLayerGoesToTheBottomOfTheOrder()
{
    Scene scene;
    addStrokeLayer(scene, 1);
    addStrokeLayer(scene, 1);
    const auto third = std::make_shared<StrokeLayer>(Qt::red, scene.frameSize());
    QCOMPARE(scene.insertLayer(third, 0), 0);
    QCOMPARE(scene.layer(0), third.get());
    QCOMPARE(scene.layerOrder(), QList<int>({1, 2, 0}));
}

void tst_SceneLayers::insertionIsToldAroundTheChange()
{
    Scene scene;
    QStringList order;
    const auto note = [&](const QString &what) { order += what + QString::number(scene.layerCount()); };
    connect(&scene, &Scene::beginInsertLayer, this, [&](int idx) { note(QString("begin %1 ").arg(idx)); });
    connect(&scene, &Scene::layerInserted, this, [&](int idx) { note(QString("inserted %1 ").arg(idx)); });
    connect(&scene, &Scene::endInsertLayer, this, [&] { note("end "); });
    connect(&scene, &Scene::maximumFrameNumberChanged, this, [&](int max) { note(QString("maximum %1 ").arg(max)); });
    addStrokeLayer(scene, 3);
    QCOMPARE(order, QStringList({"begin 0 0", "inserted 0 1", "end 1", "maximum 3 1"}));
}

void tst_SceneLayers::insertPositionIsLimited_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("index");
    QTest::newRow("smallest") << INT_MIN << 0;
    QTest::newRow("-1") << -1 << 0;
    QTest::newRow("middle") << 1 << 1;
    QTest::newRow("largest") << INT_MAX << 2;
}

void tst_SceneLayers::insertPositionIsLimited()
{
    QFETCH(int, position);
    QFETCH(int, index);
    Scene scene;
    addStrokeLayer(scene, 1);
    addStrokeLayer(scene, 1);
    QCOMPARE(scene.insertLayer(std::make_shared<StrokeLayer>(Qt::red, scene.frameSize()), position), index);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneLayers::insertingInFrontOfTheAudioLayerMovesIt()
{
    Scene scene;
    addUsualLayers(scene, 1);
    QCOMPARE(scene.audioLayerIdx(), 1);
    QCOMPARE(scene.annotationLayerIdx(), 2);
    scene.insertLayer(std::make_shared<StrokeLayer>(Qt::red, scene.frameSize()), 1);
    QCOMPARE(scene.audioLayerIdx(), 2);
    QCOMPARE(scene.annotationLayerIdx(), 3);
    scene.insertLayer(std::make_shared<StrokeLayer>(Qt::red, scene.frameSize()), 3);
    QCOMPARE(scene.audioLayerIdx(), 2);
}

void tst_SceneLayers::insertingInFrontOfTheActiveLayerKeepsItActive()
{
    Scene scene;
    addUsualLayers(scene, 3);
    scene.setActiveFrameAndLayer(2, 0, Scene::KeepFrameOnDrawing);
    const Layer *active = scene.layer(0);
    QSignalSpy changed(&scene, &Scene::activeFrameAndLayerChanged);
    scene.insertLayer(std::make_shared<StrokeLayer>(Qt::red, scene.frameSize()), 0);
    QCOMPARE(scene.layer(scene.activeLayerIdx()), active);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first(), QVariantList({2, 1}));
}

void tst_SceneLayers::nullAndTwiceTheSameLayerAreRefused()
{
    Scene scene;
    addStrokeLayer(scene, 1);
    const SignalCount signalCount(&scene);
    QCOMPARE(scene.insertLayer(nullptr, 0), -1);
    QCOMPARE(scene.insertLayer(scene.layerPtr(0), 0), -1);
    QVERIFY(!scene.swapLayer(0, nullptr));
    QVERIFY(!scene.swapLayer(0, scene.layerPtr(0)));
    QCOMPARE(scene.layerCount(), 1);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneLayers::secondLayerOfSoundOrNotesIsRefused()
{
    Scene scene;
    addUsualLayers(scene, 1);
    const SignalCount signalCount(&scene);
    QCOMPARE(scene.insertLayer(std::make_shared<AudioLayer>(), 0), -1);
    QCOMPARE(scene.insertLayer(std::make_shared<AnnotationLayer>(), 3), -1);
    QVERIFY(!scene.swapLayer(0, std::make_shared<AudioLayer>()));
    QCOMPARE(scene.layerCount(), 3);
    QCOMPARE(signalCount.heard(), QString());
    QVERIFY(scene.swapLayer(scene.audioLayerIdx(), std::make_shared<AudioLayer>()));
}

void tst_SceneLayers::insertingALongerLayerRaisesTheMaximum()
{
    Scene scene;
    addStrokeLayer(scene, 2);
    QSignalSpy changed(&scene, &Scene::maximumFrameNumberChanged);
    addStrokeLayer(scene, 5);
    addStrokeLayer(scene, 4);
    QCOMPARE(scene.maximumFrameNumber(), 5);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toInt(), 5);
}

void tst_SceneLayers::removalHandsTheLayerOver()
{
    Scene scene;
    addStrokeLayer(scene, 1);
    addStrokeLayer(scene, 2);
    const Layer *second = scene.layer(1);
    const auto removed = scene.removeLayer(1);
    QCOMPARE(removed.get(), second);
    QCOMPARE(scene.layerCount(), 1);
    QCOMPARE(removed->numFrames(), 2);
}

void tst_SceneLayers::removalIsToldAroundTheChange()
{
    Scene scene;
    addStrokeLayer(scene, 1);
    addStrokeLayer(scene, 3);
    QStringList order;
    const auto note = [&](const QString &what) { order += what + QString::number(scene.layerCount()); };
    connect(&scene, &Scene::beginRemoveLayer, this, [&](int idx) { note(QString("begin %1 ").arg(idx)); });
    connect(&scene, &Scene::layerRemoved, this, [&](int idx) { note(QString("removed %1 ").arg(idx)); });
    connect(&scene, &Scene::endRemoveLayer, this, [&] { note("end "); });
    connect(&scene, &Scene::maximumFrameNumberChanged, this, [&](int max) { note(QString("maximum %1 ").arg(max)); });
    scene.removeLayer(1);
    QCOMPARE(order, QStringList({"begin 1 2", "removed 1 1", "end 1", "maximum 1 1"}));
}

void tst_SceneLayers::removalKeepsTheOrderOfTheOthers()
{
    Scene scene;
    for (int i = 0; i < 4; ++i)
        addStrokeLayer(scene, 1);
    scene.moveLayer(3, 0);
    scene.moveLayer(0, 3); // order now 3 1 2 0
    QCOMPARE(scene.layerOrder(), QList<int>({3, 1, 2, 0}));
    scene.removeLayer(1);
    QCOMPARE(scene.layerOrder(), QList<int>({2, 1, 0}));
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneLayers::removingTheActiveLayerActivatesTheOneAbove()
{
    Scene scene;
    for (int i = 0; i < 3; ++i)
        addStrokeLayer(scene, 2);
    scene.setFrameRange(1, 2, 2, 1);
    QSignalSpy changed(&scene, &Scene::activeFrameAndLayerChanged);
    scene.removeLayer(1);
    QCOMPARE(scene.activeLayerIdx(), 0);
    QCOMPARE(scene.activeFrame(), 2);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first(), QVariantList({2, 0}));
}

void tst_SceneLayers::removingTheTopmostActiveLayerActivatesTheOneBelow()
{
    Scene scene;
    addUsualLayers(scene, 2);
    addStrokeLayer(scene, 2);
    scene.removeLayer(0);
    // Audio and annotation cannot be active; the stroke layer has moved up to index 2.
    QCOMPARE(scene.activeLayerIdx(), 2);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneLayers::removingTheLongestLayerShortensTheRange()
{
    Scene scene;
    addStrokeLayer(scene, 3);
    addStrokeLayer(scene, 9);
    scene.setFrameRange(5, 9, 6, 1);
    QSignalSpy range(&scene, &Scene::frameRangeChanged);
    scene.removeLayer(1);
    QCOMPARE(range.size(), 1);
    QCOMPARE(range.first(), QVariantList({2, 3}));
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneLayers::removingAllLayersLeavesNothingActive()
{
    Scene scene;
    addUsualLayers(scene, 4);
    for (int i = 0; i < 3; ++i)
        scene.removeLayer(0);
    QCOMPARE(scene.layerCount(), 0);
    QCOMPARE(scene.activeLayerIdx(), -1);
    QCOMPARE(scene.activeFrame(), -1);
    QCOMPARE(scene.audioLayerIdx(), -1);
    QCOMPARE(scene.maximumFrameNumber(), 1);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneLayers::swappedLayerTakesBothPlaces()
{
    Scene scene;
    for (int i = 0; i < 3; ++i)
        addStrokeLayer(scene, 1);
    scene.moveLayer(1, 2);
    const auto old = scene.layerPtr(1);
    const auto fresh = std::make_shared<StrokeLayer>(Qt::red, scene.frameSize());
    QSignalSpy changed(&scene, &Scene::layersChanged);
    QCOMPARE(scene.swapLayer(1, fresh), old);
    QCOMPARE(scene.layer(1), fresh.get());
    QCOMPARE(scene.layerOrder(), QList<int>({0, 2, 1}));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first(), QVariantList({1, 1}));
}

void tst_SceneLayers::swappingInAShortLayerPullsTheActiveFrameIn()
{
    Scene scene;
    addUsualLayers(scene, 6);
    scene.setActiveFrameAndLayer(6, 0, Scene::KeepFrameOnDrawing);
    scene.swapLayer(0, std::make_shared<StrokeLayer>(Qt::red, scene.frameSize()));
    QCOMPARE(scene.activeFrame(), 1);
    QCOMPARE(scene.rangeLast(), 1);
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_SceneLayers::movingChangesOnlyTheDisplayOrder()
{
    Scene scene;
    for (int i = 0; i < 3; ++i)
        addStrokeLayer(scene, 1);
    const Layer *first = scene.layer(0);
    QVERIFY(scene.moveLayer(0, 2));
    QCOMPARE(scene.layer(0), first);
    QCOMPARE(scene.layerOrder(), QList<int>({1, 2, 0}));
    QCOMPARE(scene.visualIndex(0), 2);
    QCOMPARE(scene.visualIndex(1), 0);
    QCOMPARE(scene.layerAtVisualIndex(1), 2);
}

void tst_SceneLayers::movingIsToldWithBothPlaces()
{
    Scene scene;
    for (int i = 0; i < 3; ++i)
        addStrokeLayer(scene, 1);
    QSignalSpy moved(&scene, &Scene::layerMoved);
    scene.moveLayer(2, 0);
    QVERIFY(!scene.moveLayer(2, 0));
    QCOMPARE(moved.size(), 1);
    QCOMPARE(moved.first(), QVariantList({2, 2, 0}));
}

void tst_SceneLayers::nextVisualLayerSkipsOtherLayers()
{
    Scene scene;
    addUsualLayers(scene, 1);
    const int lower = addStrokeLayer(scene, 1);
    QCOMPARE(scene.nextVisualLayer(0), lower);
    QCOMPARE(scene.nextVisualLayer(lower), -1);
}

void tst_SceneLayers::layerNumbersAreNotUsedTwice()
{
    Scene scene;
    for (const char *name : {"1", "2", "3"}) {
        const int idx = addStrokeLayer(scene, 1);
        scene.setLayerName(idx, scene.nextLayerName());
        QCOMPARE(scene.layer(idx)->name(), name);
    }
    scene.removeLayer(2);
    QCOMPARE(scene.nextLayerName(), "4");
    QCOMPARE(scene.highestUsedLayerNumber(), 4);
}

void tst_SceneLayers::unknownIndexesDoNothing_data()
{
    QTest::addColumn<int>("index");
    for (const int index : {INT_MIN, -1, 3, INT_MAX})
        QTest::addRow("%d", index) << index;
}

void tst_SceneLayers::unknownIndexesDoNothing()
{
    QFETCH(int, index);
    Scene scene;
    addUsualLayers(scene, 2);
    const SignalCount signalCount(&scene);
    QVERIFY(!scene.layer(index));
    QVERIFY(!scene.layerPtr(index));
    QVERIFY(!scene.visualLayer(index));
    QVERIFY(!scene.removeLayer(index));
    QVERIFY(!scene.swapLayer(index, std::make_shared<StrokeLayer>(Qt::red, scene.frameSize())));
    QVERIFY(!scene.moveLayer(index, 0));
    QVERIFY(!scene.moveLayer(0, index));
    QVERIFY(!scene.isLayerShown(index));
    QVERIFY(!scene.isAfterLast(index, 1));
    QCOMPARE(scene.visualIndex(index), -1);
    QCOMPARE(scene.layerAtVisualIndex(index), -1);
    QCOMPARE(scene.nextVisualLayer(index), -1);
    QCOMPARE(scene.lastFrame(index), 0);
    QCOMPARE(scene.layerCount(), 3);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneLayers::ordersStayInversesUnderRandomEdits()
{
    constexpr quint32 seed = 20111;
    QRandomGenerator random(seed);
    Scene scene;
    makeSmall(scene);
    addUsualLayers(scene, 3);
    for (int step = 0; step < 400; ++step) {
        const int idx = random.bounded(scene.layerCount() + 1);
        switch (random.bounded(4)) {
        case 0:
            if (scene.layerCount() < 8)
                scene.insertLayer(std::make_shared<StrokeLayer>(Qt::red, scene.frameSize()), idx);
            break;
        case 1:
            scene.removeLayer(idx);
            break;
        case 2:
            scene.moveLayer(idx, random.bounded(scene.layerCount() + 1));
            break;
        default:
            scene.setFrameRange(random.bounded(6), random.bounded(6), random.bounded(6), idx);
            scene.addCloneDrawings(idx, random.bounded(3), random.bounded(3));
        }
        const QString broken = brokenInvariant(scene);
        QVERIFY2(broken.isEmpty(), qPrintable(QString("seed %1, step %2: %3").arg(seed).arg(step).arg(broken)));
    }
}

void tst_SceneLayers::annotationLayerIsFoundByItsKind()
{
    Scene scene;
    addUsualLayers(scene, 1);
    // A file may give two layers one identity.
    scene.layer(2)->setIdentifier(scene.layer(0)->identifier());
    QCOMPARE(scene.annotationLayerIdx(), 2);
    scene.removeLayer(2);
    QCOMPARE(scene.annotationLayerIdx(), -1);
}

QTEST_MAIN(tst_SceneLayers)
#include "tst_scene_layers.moc"
