// How frames shine through: in which colours, how strongly, where and in which order.

#include "backlightfixture.h"

#include <QPainter>
#include <QTest>

using namespace Model;
using namespace TestSupport;

class tst_SceneBacklightLook : public QObject
{
    Q_OBJECT

private slots:
    void frameLiesAboveTheBacklight();
    void hueOf350TurnedBy30Is20();
    void hueIsTurnedAroundTheCircle_data();
    void hueIsTurnedAroundTheCircle();
    void layerOfNoOpacityIsInNoPicture();
    void hiddenLayerIsInNoPicture();
    void opacityOfTheLayerCountsInTheBacklight();
    void offPegsNeighbourIsSeenWhereItIsSeenWhenActive_data();
    void offPegsNeighbourIsSeenWhereItIsSeenWhenActive();
    void offPegsOnANeighbourDoesNotMoveTheOthers();
    void activeLayerAloneShinesThrough();
    void visibleLayersShineThroughInDisplayOrder();
};

void tst_SceneBacklightLook::frameLiesAboveTheBacklight()
{
    Scene scene;
    addFiveFrames(scene);
    scene.addStroke(0, 2, block(placeOf(3)));
    scene.addStroke(0, 4, block(placeOf(3)));
    setBacklight(scene);
    scene.setLayerOpacity(0, 0.5);
    // Farther frames lie deeper; of two equally far, the one before.
    const Pixel before = ink(redTurnedBack, 0.4 * 0.5);
    const Pixel after = ink(redTurnedOn, 0.2 * 0.5);
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(3), over(after, before)));
    QVERIFY(isLike(imageOf(scene.framePixmap()), spot(3), over(ink(Qt::red, 0.5), over(after, before))));
}

void tst_SceneBacklightLook::hueOf350TurnedBy30Is20()
{
    Scene scene;
    addFiveFrames(scene);
    scene.setLayerColor(0, QColor::fromHsv(350, 200, 220));
    setBacklight(scene);
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(4), ink(QColor::fromHsv(20, 200, 220), 0.2)));
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(2), ink(QColor::fromHsv(320, 200, 220), 0.4)));
}

void tst_SceneBacklightLook::hueIsTurnedAroundTheCircle_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<int>("hueShift");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("on") << QColor::fromHsv(100, 255, 255) << 30 << QColor::fromHsv(130, 255, 255);
    QTest::newRow("back below 0") << QColor::fromHsv(10, 255, 255) << -90 << QColor::fromHsv(280, 255, 255);
    QTest::newRow("two turns back") << QColor::fromHsv(10, 255, 255) << -720 << QColor::fromHsv(10, 255, 255);
    QTest::newRow("no turn") << QColor(12, 200, 77) << 0 << QColor(12, 200, 77);
    QTest::newRow("grey has no hue") << QColor(90, 90, 90) << 30 << QColor(90, 90, 90);
}

void tst_SceneBacklightLook::hueIsTurnedAroundTheCircle()
{
    QFETCH(QColor, color);
    QFETCH(int, hueShift);
    QFETCH(QColor, expected);
    Scene scene;
    addFiveFrames(scene);
    scene.setLayerColor(0, color);
    QImage image = blankFrame();
    QPainter painter(&image);
    scene.visualLayer(0)->drawHueShifted(1, &painter, image.rect(), hueShift, 0.6);
    QVERIFY(isLike(image, spot(1), ink(expected, 0.6)));
}

void tst_SceneBacklightLook::layerOfNoOpacityIsInNoPicture()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    scene.setLayerOpacity(0, 0);
    for (const QPixmap &pixmap : {scene.framePixmap(), scene.currentFramePixmap(), scene.backlightPixmap()}) {
        for (int frameId = 1; frameId <= 5; ++frameId)
            QVERIFY(isClear(imageOf(pixmap), spot(frameId)));
    }
}

void tst_SceneBacklightLook::hiddenLayerIsInNoPicture()
{
    for (const auto layers :
         {BacklightSetting::Layers::BacklightVisibleLayers, BacklightSetting::Layers::BacklightActiveLayerOnly}) {
        Scene scene;
        addFiveFrames(scene);
        setBacklight(scene, [layers](BacklightSettings &settings) { settings.settingA.layers = layers; });
        scene.setLayerVisible(0, false);
        for (const QPixmap &pixmap : {scene.framePixmap(), scene.currentFramePixmap(), scene.backlightPixmap()}) {
            for (int frameId = 1; frameId <= 5; ++frameId)
                QVERIFY(isClear(imageOf(pixmap), spot(frameId)));
        }
    }
}

void tst_SceneBacklightLook::opacityOfTheLayerCountsInTheBacklight()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    scene.setLayerOpacity(0, 0.5);
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(2), ink(redTurnedBack, 0.2)));
}

void tst_SceneBacklightLook::offPegsNeighbourIsSeenWhereItIsSeenWhenActive_data()
{
    QTest::addColumn<QTransform>("offPegs");
    QTest::addColumn<QPoint>("seenAt");
    // The paper is seen through the transform, so a point p of the drawing is seen at the point that it takes to p.
    const QPoint inked = spot(2);
    QTest::newRow("moved") << QTransform::fromTranslate(-10, -7) << inked + QPoint(10, 7);
    QTest::newRow("moved by half pixels") << QTransform::fromTranslate(0, -10.5) << inked + QPoint(0, 11);
    // A quarter turn about (20, 20) takes (20 + x, 20 + y) to (20 - y, 20 + x).
    const QTransform turn =
        QTransform::fromTranslate(-20, -20) * QTransform().rotate(90) * QTransform::fromTranslate(20, 20);
    const QPoint fromCentre = inked - QPoint(20, 20);
    QTest::newRow("turned") << turn << QPoint(20 + fromCentre.y(), 20 - fromCentre.x());
}

void tst_SceneBacklightLook::offPegsNeighbourIsSeenWhereItIsSeenWhenActive()
{
    QFETCH(QTransform, offPegs);
    QFETCH(QPoint, seenAt);
    Scene scene;
    addFiveFrames(scene);
    scene.setOffPegsTransform(2, 0, offPegs);
    setBacklight(scene);
    const QImage backlight = imageOf(scene.backlightPixmap());
    QVERIFY(isLike(backlight, seenAt, ink(redTurnedBack, 0.4)));
    QVERIFY(isClear(backlight, spot(2)));
    QVERIFY(isLike(imageOf(scene.framePixmap()), seenAt, ink(redTurnedBack, 0.4)));
}

void tst_SceneBacklightLook::offPegsOnANeighbourDoesNotMoveTheOthers()
{
    Scene scene;
    addFiveFrames(scene);
    scene.setOffPegsTransform(2, 0, QTransform().rotate(20));
    setBacklight(scene);
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(4), ink(redTurnedOn, 0.2)));
    QVERIFY(isLike(imageOf(scene.framePixmap()), spot(3), ink(Qt::red, 1)));
}

void tst_SceneBacklightLook::activeLayerAloneShinesThrough()
{
    Scene scene;
    addFiveFrames(scene);
    const int other = addStrokeLayer(scene, 5, Qt::blue);
    scene.addStroke(other, 2, block(QRect(0, 20, 60, 10)));
    setBacklight(scene);
    QVERIFY(!isClear(imageOf(scene.backlightPixmap()), {30, 25}));
    setBacklight(scene, [](BacklightSettings &settings) {
        settings.settingA.layers = BacklightSetting::Layers::BacklightActiveLayerOnly;
    });
    QVERIFY(isClear(imageOf(scene.backlightPixmap()), {30, 25}));
    QVERIFY(!isClear(imageOf(scene.backlightPixmap()), spot(2)));
}

void tst_SceneBacklightLook::visibleLayersShineThroughInDisplayOrder()
{
    Scene scene;
    addFiveFrames(scene);
    const int lower = addStrokeLayer(scene, 5, Qt::green);
    scene.addStroke(lower, 2, block(placeOf(2)));
    // The active layer has its place in the stack here, even the lowest.
    scene.setActiveFrameAndLayer(3, lower, Scene::KeepFrameOnDrawing);
    setBacklight(scene);
    const Pixel expected = over(ink(redTurnedBack, 0.4), ink(QColor::fromHsv(90, 255, 255), 0.4));
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(2), expected));
}

QTEST_MAIN(tst_SceneBacklightLook)
#include "tst_scene_backlight_look.moc"
