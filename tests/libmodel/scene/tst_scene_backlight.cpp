// What shines through: which frames of a scene, in which colours, and when the pictures are made anew.

#include "scenebuilder.h"

#include "libmodel/base/settings.h"
#include "libmodel/tools/toolmanager.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QTest>

#include <array>
#include <cmath>

using namespace Model;
using namespace TestSupport;

namespace {

/// Red, green, blue and alpha from 0 to 1, premultiplied.
using Pixel = std::array<double, 4>;

Pixel ink(const QColor &color, double alpha)
{
    return {color.redF() * alpha, color.greenF() * alpha, color.blueF() * alpha, alpha};
}

Pixel over(const Pixel &above, const Pixel &below)
{
    Pixel result;
    for (int i = 0; i < 4; ++i)
        result[i] = above[i] + below[i] * (1 - above[3]);
    return result;
}

QImage imageOf(const QPixmap &pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// Is the pixel what it is to be, but for roundings?
bool isLike(const QImage &picture, QPoint at, const Pixel &wanted)
{
    const QRgb found = reinterpret_cast<const QRgb *>(picture.constScanLine(at.y()))[at.x()];
    const std::array<int, 4> channels{qRed(found), qGreen(found), qBlue(found), qAlpha(found)};
    for (int i = 0; i < 4; ++i) {
        if (std::abs(channels[i] - wanted[i] * 255) > 3)
            return false;
    }
    return true;
}

bool isClear(const QImage &picture, QPoint at)
{
    return picture.pixel(at) == 0;
}

using Part = void (Scene::*)(QPainter *, QRect) const;

QImage blankFrame(QSize size = sceneFrame)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage painted(const Scene &scene, Part part)
{
    QImage image = blankFrame(scene.frameSize());
    QPainter painter(&image);
    (scene.*part)(&painter, image.rect());
    return image;
}

/// One level on each side, without limits of time or tint but for what \a change makes of it.
template<typename Change>
void setBacklight(Scene &scene, const Change &change)
{
    BacklightSettings settings;
    settings.settingA.opacityLevelsBefore = {0.4};
    settings.settingA.opacityLevelsAfter = {0.2};
    settings.settingB.opacityLevelsBefore = {0.8};
    settings.settingB.opacityLevelsAfter = {};
    change(settings);
    scene.setBacklightSettings(settings);
}

void setBacklight(Scene &scene)
{
    setBacklight(scene, [](BacklightSettings &) {});
}

/// The place of frame \a frameId's ink: a square of 6 x 6 of its own.
QRect placeOf(int frameId)
{
    return {8 * frameId, 8, 6, 6};
}

QPoint spot(int frameId)
{
    return placeOf(frameId).center();
}

/// A red layer of five drawings, each with its square, on its third frame.
void addFiveFrames(Scene &scene)
{
    makeSmall(scene);
    const int idx = addStrokeLayer(scene, 5, Qt::red);
    for (int frameId = 1; frameId <= 5; ++frameId)
        scene.addStroke(idx, frameId, block(placeOf(frameId)));
    scene.setFrameRange(1, 5, 3, 0);
}

const QColor redTurnedBack(QColor::fromHsv(330, 255, 255));
const QColor redTurnedOn(QColor::fromHsv(30, 255, 255));

} // namespace

class TestSceneBacklight : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void neighboursShineThroughTinted();
    void frameLiesAboveTheBacklight();
    void levelThatStartsAtNothingShowsNothing();
    void wrappedNeighbourOfTheLastFrameIsTheFirst();
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
    void neighbourBeyondTheLastCellFollowsTheRule();
    void secondSetIsUsedWhenChosen();
    void onlyKeyFramesShineThrough();
    void markingAKeyDrawingLetsItShine();
    void neighbourTakenOffItsPegsIsPaintedAnew();
    void withoutBacklightNothingShines();
    void behindTheRangeTheLastFramesShine();
    void changesAreToldOnce();
    void settingsOfTheProgramAreFollowed();
    void updateWithoutBacklightLeavesItAsItStands();
    void strokeOnANeighbourShinesThrough();
    void strokeSeenOffPegsIsToldWhereItIsSeen();
    void partsMakeTheWhole();
    void scrubFrameIsPaintedOverTheBacklight();
    void strokesWithoutAStrokePaintNothing();
    void activeLayerStandsOutForLassoAndCutter_data();
    void activeLayerStandsOutForLassoAndCutter();
    void changeOfToolIsSeenAtTheNextLook();
    void pixmapsHaveTheSizeOfTheFrame();
    void heldPixmapKeepsItsPixels();
    void partialBacklightEqualsBacklightFromScratch_data();
    void partialBacklightEqualsBacklightFromScratch();
};

void TestSceneBacklight::cleanup()
{
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
}

void TestSceneBacklight::neighboursShineThroughTinted()
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

void TestSceneBacklight::frameLiesAboveTheBacklight()
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

void TestSceneBacklight::levelThatStartsAtNothingShowsNothing()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene, [](BacklightSettings &settings) { settings.settingA.opacityLevelsBefore = {0.005, 0.9}; });
    const QImage backlight = imageOf(scene.backlightPixmap());
    QVERIFY(isClear(backlight, spot(2)));
    QVERIFY(isClear(backlight, spot(1)));
    QVERIFY(!isClear(backlight, spot(4)));
}

void TestSceneBacklight::wrappedNeighbourOfTheLastFrameIsTheFirst()
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

void TestSceneBacklight::hueOf350TurnedBy30Is20()
{
    Scene scene;
    addFiveFrames(scene);
    scene.setLayerColor(0, QColor::fromHsv(350, 200, 220));
    setBacklight(scene);
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(4), ink(QColor::fromHsv(20, 200, 220), 0.2)));
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(2), ink(QColor::fromHsv(320, 200, 220), 0.4)));
}

void TestSceneBacklight::hueIsTurnedAroundTheCircle_data()
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

void TestSceneBacklight::hueIsTurnedAroundTheCircle()
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

void TestSceneBacklight::layerOfNoOpacityIsInNoPicture()
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

void TestSceneBacklight::hiddenLayerIsInNoPicture()
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

void TestSceneBacklight::opacityOfTheLayerCountsInTheBacklight()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    scene.setLayerOpacity(0, 0.5);
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(2), ink(redTurnedBack, 0.2)));
}

void TestSceneBacklight::offPegsNeighbourIsSeenWhereItIsSeenWhenActive_data()
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

void TestSceneBacklight::offPegsNeighbourIsSeenWhereItIsSeenWhenActive()
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

void TestSceneBacklight::offPegsOnANeighbourDoesNotMoveTheOthers()
{
    Scene scene;
    addFiveFrames(scene);
    scene.setOffPegsTransform(2, 0, QTransform().rotate(20));
    setBacklight(scene);
    QVERIFY(isLike(imageOf(scene.backlightPixmap()), spot(4), ink(redTurnedOn, 0.2)));
    QVERIFY(isLike(imageOf(scene.framePixmap()), spot(3), ink(Qt::red, 1)));
}

void TestSceneBacklight::activeLayerAloneShinesThrough()
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

void TestSceneBacklight::visibleLayersShineThroughInDisplayOrder()
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

void TestSceneBacklight::neighbourBeyondTheLastCellFollowsTheRule()
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

void TestSceneBacklight::secondSetIsUsedWhenChosen()
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

void TestSceneBacklight::onlyKeyFramesShineThrough()
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

void TestSceneBacklight::markingAKeyDrawingLetsItShine()
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

void TestSceneBacklight::neighbourTakenOffItsPegsIsPaintedAnew()
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

void TestSceneBacklight::withoutBacklightNothingShines()
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

void TestSceneBacklight::behindTheRangeTheLastFramesShine()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    scene.setActiveFrameAndLayer(6, 0, Scene::AllowFrameAfterLast);
    QCOMPARE(scene.activeFrame(), 6);
    QVERIFY(isLike(imageOf(scene.framePixmap()), spot(5), ink(redTurnedBack, 0.4)));
    QVERIFY(isClear(imageOf(scene.currentFramePixmap()), spot(5)));
}

void TestSceneBacklight::changesAreToldOnce()
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

void TestSceneBacklight::settingsOfTheProgramAreFollowed()
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

void TestSceneBacklight::updateWithoutBacklightLeavesItAsItStands()
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

void TestSceneBacklight::strokeOnANeighbourShinesThrough()
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

void TestSceneBacklight::strokeSeenOffPegsIsToldWhereItIsSeen()
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

void TestSceneBacklight::partsMakeTheWhole()
{
    Scene scene;
    addFiveFrames(scene);
    const int other = addStrokeLayer(scene, 5, Qt::blue);
    scene.addStroke(other, 3, block(QRect(0, 10, 60, 3), 100));
    setBacklight(scene);
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
    for (const bool scrubbing : {false, true}) {
        scene.setScrubFrame(scrubbing ? 2 : -1);
        QImage parts = blankFrame();
        QPainter painter(&parts);
        scene.paintBacklight(&painter, parts.rect());
        scene.paintFrames(&painter, parts.rect());
        scene.paintActiveStroke(&painter, parts.rect(), 1.0);
        painter.end();
        const QImage whole = painted(scene, &Scene::paintFrame);
        for (int y = 0; y < sceneFrame.height(); ++y) {
            for (int x = 0; x < sceneFrame.width(); ++x) {
                const QColor expected = whole.pixelColor(x, y);
                const double alpha = expected.alphaF();
                QVERIFY(isLike(parts, {x, y}, ink(expected, alpha)));
            }
        }
    }
}

void TestSceneBacklight::scrubFrameIsPaintedOverTheBacklight()
{
    Scene scene;
    addFiveFrames(scene);
    setBacklight(scene);
    scene.setScrubFrame(5);
    const QImage shown = painted(scene, &Scene::paintFrame);
    QVERIFY(isLike(shown, spot(5), ink(Qt::red, 1)));
    QVERIFY(isClear(shown, spot(3)));
    // The neighbours are those of the active frame still.
    QVERIFY(isLike(shown, spot(2), ink(redTurnedBack, 0.4)));
    scene.setScrubFrame(1);
    const QImage next = painted(scene, &Scene::paintFrame);
    QVERIFY(isLike(next, spot(1), ink(Qt::red, 1)));
    QVERIFY(isClear(next, spot(5)));
    // A change meanwhile is seen.
    scene.addStroke(0, 1, block(QRect(28, 22, 6, 6)));
    QVERIFY(isLike(painted(scene, &Scene::paintFrame), {30, 25}, ink(Qt::red, 1)));
    scene.unsetScrubFrame();
    QVERIFY(isLike(painted(scene, &Scene::paintFrame), spot(3), ink(Qt::red, 1)));
}

void TestSceneBacklight::strokesWithoutAStrokePaintNothing()
{
    Scene scene;
    addFiveFrames(scene);
    QImage image = blankFrame();
    QPainter painter(&image);
    scene.paintActiveStroke(&painter, image.rect(), 1.0);
    painter.end();
    QCOMPARE(image, blankFrame());
}

void TestSceneBacklight::activeLayerStandsOutForLassoAndCutter_data()
{
    QTest::addColumn<Tool::Type>("tool");
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("standsOut");
    QTest::newRow("lasso") << Tool::Type::Lasso << 0 << true;
    QTest::newRow("cutter") << Tool::Type::Cutter << 0 << true;
    QTest::newRow("lasso held in a state") << Tool::Type::Lasso << 1 << false;
    QTest::newRow("pen") << Tool::Type::Pen << 0 << false;
    QTest::newRow("floating selection") << Tool::Type::FloatingSelection << 0 << false;
}

void TestSceneBacklight::activeLayerStandsOutForLassoAndCutter()
{
    QFETCH(Tool::Type, tool);
    QFETCH(int, mode);
    QFETCH(bool, standsOut);
    Scene scene;
    addFiveFrames(scene);
    const int other = addStrokeLayer(scene, 5, Qt::blue);
    scene.addStroke(other, 3, block(QRect(0, 20, 60, 10)));
    scene.addStroke(other, 2, block(QRect(0, 32, 60, 4)));
    scene.setLayerOpacity(other, 0.8);
    setBacklight(scene);
    ToolManager::instance()->setCurrentTool(tool, mode);
    const QImage shown = imageOf(scene.framePixmap());
    QVERIFY(isLike(shown, {30, 25}, ink(Qt::blue, standsOut ? 0.8 * 0.25 : 0.8)));
    QVERIFY(isLike(shown, spot(3), ink(Qt::red, 1)));
    // The backlight is as strong as ever.
    QVERIFY(isLike(shown, {30, 34}, ink(QColor::fromHsv(210, 255, 255), 0.4 * 0.8)));
    QVERIFY(isLike(imageOf(scene.currentFramePixmap()), {30, 25}, ink(Qt::blue, 0.8)));
    QVERIFY(isLike(painted(scene, &Scene::paintFrames), {30, 25}, ink(Qt::blue, standsOut ? 0.8 * 0.25 : 0.8)));
}

void TestSceneBacklight::changeOfToolIsSeenAtTheNextLook()
{
    Scene scene;
    addFiveFrames(scene);
    const int other = addStrokeLayer(scene, 5, Qt::blue);
    scene.addStroke(other, 3, block(QRect(0, 20, 60, 10)));
    setBacklight(scene, [](BacklightSettings &settings) { settings.on = false; });
    QVERIFY(isLike(painted(scene, &Scene::paintFrame), {30, 25}, ink(Qt::blue, 1)));
    QSignalSpy rect(&scene, &Scene::rectChanged);
    ToolManager::instance()->setCurrentTool(Tool::Type::Lasso, 0);
    QCOMPARE(rect.size(), 1);
    QCOMPARE(rect.first().first().toRect(), QRect(QPoint(0, 0), sceneFrame));
    QVERIFY(isLike(painted(scene, &Scene::paintFrame), {30, 25}, ink(Qt::blue, 0.25)));
    ToolManager::instance()->setCurrentTool(Tool::Type::Cutter, 0);
    QCOMPARE(rect.size(), 1);
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
    QCOMPARE(rect.size(), 2);
    QVERIFY(isLike(painted(scene, &Scene::paintFrame), {30, 25}, ink(Qt::blue, 1)));
}

void TestSceneBacklight::pixmapsHaveTheSizeOfTheFrame()
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

void TestSceneBacklight::heldPixmapKeepsItsPixels()
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

void TestSceneBacklight::partialBacklightEqualsBacklightFromScratch_data()
{
    QTest::addColumn<QTransform>("offPegs");
    QTest::newRow("moved") << QTransform::fromTranslate(7, 2);
    QTest::newRow("moved by parts of a pixel") << QTransform::fromTranslate(-7.5, 2.25);
    QTest::newRow("turned") << QTransform().rotate(15).translate(2.5, 0.5);
}

void TestSceneBacklight::partialBacklightEqualsBacklightFromScratch()
{
    QFETCH(QTransform, offPegs);
    const quint32 seed = QRandomGenerator::global()->generate();
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

QTEST_MAIN(TestSceneBacklight)
#include "tst_scene_backlight.moc"
