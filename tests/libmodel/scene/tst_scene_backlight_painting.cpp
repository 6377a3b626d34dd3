// What is painted together with what shines through: frames, strokes, and the layer that a tool makes stand out.

#include "backlightfixture.h"

#include "libmodel/tools/toolmanager.h"

#include <QPainter>
#include <QTest>

using namespace Model;
using namespace TestSupport;

class tst_SceneBacklightPainting : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void partsMakeTheWhole();
    void scrubFrameIsPaintedOverTheBacklight();
    void strokesWithoutAStrokePaintNothing();
    void activeLayerStandsOutForLassoAndCutter_data();
    void activeLayerStandsOutForLassoAndCutter();
    void changeOfToolIsSeenAtTheNextLook();
};

void tst_SceneBacklightPainting::cleanup()
{
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
}

void tst_SceneBacklightPainting::partsMakeTheWhole()
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

void tst_SceneBacklightPainting::scrubFrameIsPaintedOverTheBacklight()
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

void tst_SceneBacklightPainting::strokesWithoutAStrokePaintNothing()
{
    Scene scene;
    addFiveFrames(scene);
    QImage image = blankFrame();
    QPainter painter(&image);
    scene.paintActiveStroke(&painter, image.rect(), 1.0);
    painter.end();
    QCOMPARE(image, blankFrame());
}

void tst_SceneBacklightPainting::activeLayerStandsOutForLassoAndCutter_data()
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

void tst_SceneBacklightPainting::activeLayerStandsOutForLassoAndCutter()
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

void tst_SceneBacklightPainting::changeOfToolIsSeenAtTheNextLook()
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

QTEST_MAIN(tst_SceneBacklightPainting)
#include "tst_scene_backlight_painting.moc"
