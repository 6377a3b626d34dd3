// Which frames of a scene shine through, and who is told when they change.

#include "backlightfixture.h"

#include "libmodel/base/settings.h"

#include <QTest>

using namespace Model;
using namespace TestSupport;

class tst_SceneBacklightFrames : public QObject
{
    Q_OBJECT

private slots:
    void neighboursShineThroughTinted();
    void levelThatStartsAtNothingShowsNothing();
    void wrappedNeighbourOfTheLastFrameIsTheFirst();
    void neighbourBeyondTheLastCellFollowsTheRule();
    void secondSetIsUsedWhenChosen();
    void onlyKeyFramesShineThrough();
    void markingAKeyDrawingLetsItShine();
    void withoutBacklightNothingShines();
    void behindTheRangeTheLastFramesShine();
    void changesAreToldOnce();
    void settingsOfTheProgramAreFollowed();
};

void tst_SceneBacklightFrames::neighboursShineThroughTinted()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    const QList<BacklightFrame> expected{{2, 0.4, -30}, {4, 0.2, 30}};
    QCOMPARE(scene.backlightFrames(), expected);
    const QImage backlight = imageOf(scene.backlightPixmap());
    QVERIFY(isLike(backlight, spot(2), ink(redTurnedBack, 0.4)));
    QVERIFY(isLike(backlight, spot(4), ink(redTurnedOn, 0.2)));
    for (const int frameId : {1, 3, 5})
        QVERIFY(isClear(backlight, spot(frameId)));
    const QImage shown = imageOf(scene.framePixmap());
    QVERIFY(isLike(shown, spot(2), ink(redTurnedBack, 0.4)));
    QVERIFY(isLike(shown, spot(3), ink(Qt::red, 1)));
    QVERIFY(isClear(imageOf(scene.currentFramePixmap()), spot(2)));
    QCOMPARE(painted(scene, &Scene::paintFrame), shown);
    QCOMPARE(painted(scene, &Scene::paintBacklight), backlight);
}

void tst_SceneBacklightFrames::levelThatStartsAtNothingShowsNothing()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene, [](BacklightSettings &settings) { settings.settingA.opacityLevelsBefore = {0.005, 0.9}; });
    const QImage backlight = imageOf(scene.backlightPixmap());
    QVERIFY(isClear(backlight, spot(2)));
    QVERIFY(isClear(backlight, spot(1)));
    QVERIFY(!isClear(backlight, spot(4)));
}

void tst_SceneBacklightFrames::wrappedNeighbourOfTheLastFrameIsTheFirst()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene, [](BacklightSettings &settings) {
        settings.settingA.showOption = BacklightSetting::ShowOption::WrapAtEnds;
    });
    scene.setFrameRange(2, 5, 5, 0);
    const QImage backlight = imageOf(scene.backlightPixmap());
    QVERIFY(isLike(backlight, spot(2), ink(redTurnedOn, 0.2)));
    QVERIFY(isLike(backlight, spot(4), ink(redTurnedBack, 0.4)));
}

void tst_SceneBacklightFrames::neighbourBeyondTheLastCellFollowsTheRule()
{
    Scene scene;
    addFiveFrames(scene);
    const int shortLayer = addStrokeLayer(scene, 1, Qt::red);
    scene.addStroke(shortLayer, 1, block(QRect(0, 20, 60, 10)));
    setBacklight(scene);
    QVERIFY(isClear(imageOf(scene.backlightPixmap()), {30, 25}));
    scene.setLayerBeyondLast(shortLayer, Layer::FreezeLast);
    // Frozen on the frame before and on the frame behind.
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), {30, 25}, over(ink(redTurnedOn, 0.2), ink(redTurnedBack, 0.4))));
}

void tst_SceneBacklightFrames::secondSetIsUsedWhenChosen()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene, [](BacklightSettings &settings) {
        settings.currentSet = BacklightSettings::BacklightSet::BacklightSettingB;
        settings.settingB.hueShift = BacklightSetting::HueShift::NoHueShift;
    });
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(2), ink(Qt::red, 0.8)));
    QVERIFY(isClear(imageOf(scene.backlightPixmap()), spot(4)));
}

void tst_SceneBacklightFrames::onlyKeyFramesShineThrough()
{
    Scene scene;
    addFiveFrames(scene);
    scene.setKeyDrawing(0, 1, true);
    setBacklight(scene, [](BacklightSettings &settings) { settings.onlyKeyFrames = true; });
    const QImage backlight = imageOf(scene.backlightPixmap());
    QVERIFY(isLike(backlight, spot(1), ink(redTurnedBack, 0.4)));
    QVERIFY(isClear(backlight, spot(2)));
    QVERIFY(isClear(backlight, spot(4)));
}

void tst_SceneBacklightFrames::markingAKeyDrawingLetsItShine()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene, [](BacklightSettings &settings) { settings.onlyKeyFrames = true; });
    QVERIFY(isClear(imageOf(scene.backlightPixmap()), spot(1)));
    QSignalSpy frames(&scene, &Scene::backlightFramesChanged);
    QSignalSpy rects(&scene, &Scene::rectChanged);
    scene.setKeyDrawing(0, 1, true);
    QCOMPARE(frames.size(), 1);
    QVERIFY(!rects.isEmpty());
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(1), ink(redTurnedBack, 0.4)));
}

void tst_SceneBacklightFrames::withoutBacklightNothingShines()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    QVERIFY(!scene.backlightFrames().isEmpty());
    setBacklight(scene, [](BacklightSettings &settings) { settings.on = false; });
    QVERIFY(scene.backlightFrames().isEmpty());
    QVERIFY(isClear(imageOf(scene.backlightPixmap()), spot(2)));
    QCOMPARE(imageOf(scene.framePixmap()), imageOf(scene.currentFramePixmap()));
}

void tst_SceneBacklightFrames::behindTheRangeTheLastFramesShine()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    scene.setActiveFrameAndLayer(6, 0, Scene::AllowFrameAfterLast);
    QCOMPARE(scene.activeFrame(), 6);
    QVERIFY(isLike(imageOf(scene.framePixmap()), spot(5), ink(redTurnedBack, 0.4)));
    QVERIFY(isClear(imageOf(scene.currentFramePixmap()), spot(5)));
}

void tst_SceneBacklightFrames::changesAreToldOnce()
{
    Scene scene;
    addFiveFrames(scene);
    QSignalSpy changes(&scene, &Scene::backlightFramesChanged);
    setBacklight(scene);
    QCOMPARE(changes.size(), 1);
    setBacklight(scene);
    scene.updateCachedBacklightPixmap();
    scene.addStroke(0, 3, block(placeOf(3)));
    QCOMPARE(changes.size(), 1);
    scene.setActiveFrameAndLayer(4, 0, Scene::KeepFrameOnDrawing);
    QCOMPARE(changes.size(), 2);
    setBacklight(scene, [](BacklightSettings &settings) { settings.settingA.opacityLevelsAfter = {0.25}; });
    QCOMPARE(changes.size(), 3);
    setBacklight(scene, [](BacklightSettings &settings) { settings.on = false; });
    QCOMPARE(changes.size(), 4);
}

void tst_SceneBacklightFrames::settingsOfTheProgramAreFollowed()
{
    const BacklightSettings former = Settings::instance()->backlightSettings();
    Scene scene;
    QCOMPARE(scene.backlightSettings(), former);
    BacklightSettings settings = former;
    settings.settingA.opacityLevelsBefore = {0.77};
    settings.on = !settings.on;
    QSignalSpy rect(&scene, &Scene::rectChanged);
    Settings::instance()->setBacklightSettings(settings);
    QCOMPARE(scene.backlightSettings(), settings);
    QCOMPARE(rect.size(), 1);
    Scene later;
    QCOMPARE(later.backlightSettings(), settings);
    Settings::instance()->setBacklightSettings(former);
}

QTEST_MAIN(tst_SceneBacklightFrames)
#include "tst_scene_backlight_frames.moc"
