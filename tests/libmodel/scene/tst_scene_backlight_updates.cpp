// When the pictures of what shines through are made anew.

#include "backlightfixture.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Model;
using namespace TestSupport;

class tst_SceneBacklightUpdates : public QObject
{
    Q_OBJECT

private slots:
    void neighbourTakenOffItsPegsIsPaintedAnew();
    void updateWithoutBacklightLeavesItAsItStands();
    void strokeOnANeighbourShinesThrough();
    void strokeSeenOffPegsIsToldWhereItIsSeen();
    void pixmapsHaveTheSizeOfTheFrame();
    void heldPixmapKeepsItsPixels();
    void partialBacklightEqualsBacklightFromScratch_data();
    void partialBacklightEqualsBacklightFromScratch();
};

void tst_SceneBacklightUpdates::neighbourTakenOffItsPegsIsPaintedAnew()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    const QImage before = imageOf(scene.backlightPixmap());
    QSignalSpy rects(&scene, &Scene::rectChanged);
    scene.setOffPegsTransform(2, 0, QTransform::fromTranslate(3, 2));
    QVERIFY(!rects.isEmpty());
    QVERIFY(imageOf(scene.backlightPixmap()) != before);
}

void tst_SceneBacklightUpdates::updateWithoutBacklightLeavesItAsItStands()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    const QImage before = imageOf(scene.backlightPixmap());
    drawingAt(scene, 0, 2).addStroke(block(QRect(0, 20, 60, 10)));
    scene.updateCachedFramePixmap(false);
    QCOMPARE(imageOf(scene.backlightPixmap()), before);
    scene.updateCachedFramePixmap(true);
    QVERIFY(!isClear(imageOf(scene.backlightPixmap()), {30, 25}));
    QVERIFY(!isClear(imageOf(scene.framePixmap()), {30, 25}));
}

void tst_SceneBacklightUpdates::strokeOnANeighbourShinesThrough()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    QVERIFY(isClear(imageOf(scene.framePixmap()), {30, 25}));
    scene.addStroke(0, 4, block(QRect(28, 22, 6, 6)));
    QVERIFY(isLike(imageOf(scene.framePixmap()), {30, 25}, ink(redTurnedOn, 0.2)));
    scene.removeLastStroke(0, 4);
    QVERIFY(isClear(imageOf(scene.framePixmap()), {30, 25}));
    QVERIFY(isLike(imageOf(scene.framePixmap()), spot(4), ink(redTurnedOn, 0.2)));
}

void tst_SceneBacklightUpdates::strokeSeenOffPegsIsToldWhereItIsSeen()
{
    Scene scene;
    addFiveFrames(scene);
    scene.setOffPegsTransform(4, 0, QTransform::fromTranslate(-10, -20));
    setBacklight(scene);
    QVERIFY(isClear(imageOf(scene.framePixmap()), {15, 25}));
    QSignalSpy rect(&scene, &Scene::rectChanged);
    scene.addStroke(0, 4, block(QRect(2, 2, 6, 6)));
    QVERIFY(rect.last().first().toRect().contains(QRect(12, 22, 6, 6)));
    QVERIFY(isLike(imageOf(scene.framePixmap()), {15, 25}, ink(redTurnedOn, 0.2)));
}

void tst_SceneBacklightUpdates::pixmapsHaveTheSizeOfTheFrame()
{
    Scene scene;
    makeSmall(scene);
    setBacklight(scene);
    QVERIFY(scene.backlightPixmap().isNull());
    QVERIFY(scene.backlightFrames().isEmpty());
    addStrokeLayer(scene, 1);
    scene.setFrameRange(1, 1, 1, 0);
    for (const QPixmap &pixmap : {scene.framePixmap(), scene.currentFramePixmap(), scene.backlightPixmap()}) {
        QCOMPARE(pixmap.size(), sceneFrame);
        QVERIFY(isClear(imageOf(pixmap), {30, 25}));
    }
    scene.removeLayer(0);
    QVERIFY(scene.framePixmap().isNull());
    QVERIFY(scene.currentFramePixmap().isNull());
    QVERIFY(scene.backlightPixmap().isNull());
}

void tst_SceneBacklightUpdates::heldPixmapKeepsItsPixels()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    const QPixmap held = scene.framePixmap();
    const QImage before = imageOf(held).copy();
    scene.addStroke(0, 3, block(QRect(0, 20, 60, 10)));
    QVERIFY(imageOf(scene.framePixmap()) != before);
    scene.setActiveFrameAndLayer(5, 0, Scene::KeepFrameOnDrawing);
    QVERIFY(imageOf(scene.framePixmap()) != before);
    QCOMPARE(imageOf(held), before);
}

void tst_SceneBacklightUpdates::partialBacklightEqualsBacklightFromScratch_data()
{
    QTest::addColumn<QTransform>("offPegs");
    QTest::newRow("moved") << QTransform::fromTranslate(7, 2);
    QTest::newRow("moved by parts of a pixel") << QTransform::fromTranslate(-7.5, 2.25);
    QTest::newRow("turned") << QTransform().rotate(15).translate(2.5, 0.5);
}

void tst_SceneBacklightUpdates::partialBacklightEqualsBacklightFromScratch()
{
    QFETCH(QTransform, offPegs);
    constexpr quint32 seed = 20111;
    QRandomGenerator random(seed);
    Scene scene;
    addFiveFrames(scene);
    // Several tiles of the map of ink beside and below each other.
    scene.setFrameSize({200, 50}, MR::FitMode::FitModeIgnore);
    const int other = addStrokeLayer(scene, 5, QColor(40, 120, 200));
    scene.setLayerOpacity(other, 0.7);
    scene.setOffPegsTransform(2, 0, QTransform::fromTranslate(3, -4));
    scene.setOffPegsTransform(5, 0, offPegs);
    setBacklight(scene, [](BacklightSettings &settings) {
        settings.settingA.opacityLevelsBefore = {0.5, 0.4};
        settings.settingA.opacityLevelsAfter = {0.5, 0.4};
    });
    for (int step = 0; step < 60; ++step) {
        const int layerIdx = random.bounded(2) == 0 ? 0 : other;
        const int frameId = random.bounded(1, 6);
        const QRect rect(random.bounded(-10, 200), random.bounded(-10, 50), random.bounded(1, 90),
                         random.bounded(1, 30));
        if (random.bounded(3) == 0)
            scene.removeLastStroke(layerIdx, frameId);
        else
            scene.addStroke(layerIdx, frameId, block(rect, random.bounded(1, 256)));
        const QImage backlight = imageOf(scene.backlightPixmap()).copy();
        const QImage shown = imageOf(scene.framePixmap()).copy();
        scene.updateCachedFramePixmap(true);
        const QString where = QString("seed %1, step %2").arg(seed).arg(step);
        QVERIFY2(imageOf(scene.backlightPixmap()) == backlight, qPrintable(where + ": another backlight"));
        QVERIFY2(imageOf(scene.framePixmap()) == shown, qPrintable(where + ": another picture"));
        QVERIFY2(painted(scene, &Scene::paintFrame) == shown, qPrintable(where + ": not painted so"));
    }
}

QTEST_MAIN(tst_SceneBacklightUpdates)
#include "tst_scene_backlight_updates.moc"
