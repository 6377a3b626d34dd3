#include "scenebuilder.h"

#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"
#include "support/glfixture.h"

#include <QPainter>
#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

constexpr QSize paper(200, 150);

Sample sampleAt(double x, double y, double pressure = 0.5)
{
    return {QPointF(x, y), pressure, 0};
}

QImage painted(const Scene &scene, QRect rect = QRect(QPoint(0, 0), paper))
{
    QImage image(paper, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    scene.paintFrame(&painter, rect);
    return image;
}

/// A layer that shows pictures and cannot be drawn on.
class PictureLayer : public StrokeLayer
{
public:
    PictureLayer() : StrokeLayer(Qt::black, paper) {}
    int layerType() const override { return Layer::Reference; }
};

int coverageAt(const QImage &image, int x, int y)
{
    return image.isNull() ? 0 : image.constScanLine(y)[x];
}

void drawLine(Scene &scene, QPointF from, QPointF to)
{
    scene.beginStroke({from, 0.5, 0});
    constexpr int steps = 20;
    for (int i = 1; i <= steps; ++i)
        scene.addSample({from + (to - from) * i / steps, 0.5, 0});
}

} // namespace

class tst_SceneStroke : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void beginningIsTold();
    void strokeBelongsToTheCurrentTool();
    void strokeImageHasTheFramesSize();
    void samplesLeadTheStrokeOn();
    void nearSampleIsIgnored();
    void nearSampleDoesNotRestartTheIdleTimer();
    void sampleWithoutAStrokeIsIgnored();
    void beginningAgainDropsTheFormerStroke();
    void takingHandsTheFinishedStrokeOver();
    void takingIsToldPictureFirst();
    void takingWithoutAStrokeGivesNull();
    void hoverGivesTheFirstDirection();
    void noStrokeWithoutALayerToDrawOn();
    void strokeInProgressIsPaintedInItsLayer();
    void strokeInProgressIsPaintedBehindTheLastCell();
    void strokeBehindTheLastCellIsPaintedWithoutTheFrozenDrawing();
    void eraserInProgressTakesAway();
    void paintingDuringAStrokeStaysInsideTheRect();
    void paintedStrokeIsThePictureAfterTheCommit();
    void eraserOnAnEmptyDrawingIsDropped();
    void removingTheOnlyStrokeMakesTheImageNullAgain();
    void tailIsDrawnInTheLayersColour();
    void noTailWithoutAStroke();

private:
    std::unique_ptr<Scene> m_scene;
};

void tst_SceneStroke::initTestCase()
{
    QVERIFY(startRenderer(paper));
}

void tst_SceneStroke::init()
{
    m_scene = std::make_unique<Scene>();
    m_scene->setFrameSize(paper, MR::FitMode::FitModeIgnore);
    BacklightSettings backlight = m_scene->backlightSettings();
    backlight.on = false;
    m_scene->setBacklightSettings(backlight);
    addUsualLayers(*m_scene, 1);
    m_scene->setLayerColor(0, Qt::red);
    ToolManager::instance()->setCurrentPenType(Tool::PenType::Marker);
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
}

void tst_SceneStroke::beginningIsTold()
{
    QSignalSpy active(m_scene.get(), &Scene::hasActiveStrokeChanged);
    QSignalSpy rect(m_scene.get(), &Scene::rectChanged);
    m_scene->beginStroke(sampleAt(50, 50));
    QVERIFY(m_scene->hasActiveStroke());
    QVERIFY(m_scene->activeStroke());
    QCOMPARE(active.size(), 1);
    QCOMPARE(active.first().first().toBool(), true);
    QVERIFY(rect.size() >= 1);
    QVERIFY(rect.first().first().toRect().contains(50, 50));
}

void tst_SceneStroke::strokeBelongsToTheCurrentTool()
{
    m_scene->beginStroke(sampleAt(50, 50));
    QVERIFY(m_scene->activeStroke()->isPen());
    QCOMPARE(m_scene->activeStroke()->penType(), Tool::PenType::Marker);
    ToolManager::instance()->setCurrentTool(Tool::Type::Eraser, 0);
    m_scene->beginStroke(sampleAt(50, 50));
    QVERIFY(m_scene->activeStroke()->isEraser());
}

void tst_SceneStroke::strokeImageHasTheFramesSize()
{
    m_scene->beginStroke(sampleAt(50, 50));
    QCOMPARE(m_scene->activeStroke()->image().size(), paper);
}

void tst_SceneStroke::samplesLeadTheStrokeOn()
{
    m_scene->beginStroke(sampleAt(50, 50));
    QSignalSpy rect(m_scene.get(), &Scene::rectChanged);
    m_scene->addSample(sampleAt(80, 60));
    QCOMPARE(m_scene->activeStroke()->samples().size(), size_t(2));
    QCOMPARE(rect.size(), 1);
    QVERIFY(rect.first().first().toRect().contains(80, 60));
}

void tst_SceneStroke::nearSampleIsIgnored()
{
    m_scene->beginStroke(sampleAt(50, 50));
    const SignalCount signalCount(m_scene.get());
    m_scene->addSample(sampleAt(50, 50));
    m_scene->addSample(sampleAt(50.5, 50.5));
    QCOMPARE(m_scene->activeStroke()->samples().size(), size_t(1));
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneStroke::nearSampleDoesNotRestartTheIdleTimer()
{
    m_scene->beginStroke(sampleAt(20, 20));
    m_scene->addSample(sampleAt(120, 20));
    // Were the idle timer restarted by each equal sample, the stroke would still be chasing at the end: 1.2 s is
    // more than twice its 500 ms.
    for (int i = 0; i < 12; ++i) {
        m_scene->addSample(sampleAt(120, 20));
        QTest::qWait(100);
    }
    QSignalSpy rect(m_scene.get(), &Scene::rectChanged);
    QTest::qWait(100);
    QCOMPARE(rect.size(), 0);
    QVERIFY(m_scene->hasActiveStroke());
    QVERIFY(!m_scene->activeStroke()->hasTangent());
}

void tst_SceneStroke::sampleWithoutAStrokeIsIgnored()
{
    const SignalCount signalCount(m_scene.get());
    m_scene->addSample(sampleAt(50, 50));
    QVERIFY(!m_scene->hasActiveStroke());
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneStroke::beginningAgainDropsTheFormerStroke()
{
    drawLine(*m_scene, {20, 20}, {100, 20});
    QSignalSpy active(m_scene.get(), &Scene::hasActiveStrokeChanged);
    m_scene->beginStroke(sampleAt(50, 100));
    QCOMPARE(active.size(), 2);
    QCOMPARE(active.at(0).first().toBool(), false);
    QCOMPARE(active.at(1).first().toBool(), true);
    QCOMPARE(m_scene->activeStroke()->samples().size(), size_t(1));
    QVERIFY(drawingAt(*m_scene, 0, 1).isEmpty());
    QCOMPARE(qAlpha(painted(*m_scene).pixel(60, 20)), 0);
}

void tst_SceneStroke::takingHandsTheFinishedStrokeOver()
{
    drawLine(*m_scene, {20, 20}, {100, 20});
    const auto stroke = m_scene->takeStroke();
    QVERIFY(stroke);
    QVERIFY(!m_scene->hasActiveStroke());
    // Finished: the line has reached the last sample.
    QVERIFY(coverageAt(stroke->image(), 99, 20) > 0);
    QVERIFY(!m_scene->takeStroke());
}

void tst_SceneStroke::takingIsToldPictureFirst()
{
    drawLine(*m_scene, {20, 20}, {100, 20});
    QStringList order;
    QRect told;
    connect(m_scene.get(), &Scene::rectChanged, this, [&](QRect rect) {
        told = rect;
        order += "rect";
    });
    connect(m_scene.get(), &Scene::hasActiveStrokeChanged, this, [&](bool active) { order += active ? "on" : "off"; });
    const auto stroke = m_scene->takeStroke();
    QCOMPARE(order, QStringList({"rect", "off"}));
    QVERIFY(told.contains(stroke->boundingRect().intersected(QRect(QPoint(0, 0), paper))));
}

void tst_SceneStroke::takingWithoutAStrokeGivesNull()
{
    const SignalCount signalCount(m_scene.get());
    QVERIFY(!m_scene->takeStroke());
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneStroke::hoverGivesTheFirstDirection()
{
    m_scene->beginStroke(sampleAt(50, 50));
    QVERIFY(!m_scene->activeStroke()->hasTangent());
    m_scene->beginStroke(sampleAt(50, 50), QPointF(30, 50));
    QVERIFY(m_scene->activeStroke()->hasTangent());
}

void tst_SceneStroke::noStrokeWithoutALayerToDrawOn()
{
    Scene empty;
    empty.beginStroke(sampleAt(5, 5));
    QVERIFY(!empty.hasActiveStroke());

    m_scene->swapLayer(0, std::make_shared<PictureLayer>());
    QCOMPARE(m_scene->activeLayerIdx(), 0);
    m_scene->beginStroke(sampleAt(5, 5));
    QVERIFY(!m_scene->hasActiveStroke());
}

void tst_SceneStroke::strokeInProgressIsPaintedInItsLayer()
{
    m_scene->setLayerOpacity(0, 0.5);
    drawLine(*m_scene, {20, 50}, {150, 50});
    const int coverage = coverageAt(m_scene->activeStroke()->image(), 60, 50);
    QVERIFY(coverage > 100);
    const QColor found = painted(*m_scene).pixelColor(60, 50);
    QVERIFY(qAbs(found.alpha() - coverage * 0.5) <= 1.5);
    QCOMPARE(found.red(), 255);
    QCOMPARE(found.green(), 0);
    // Not yet in the drawing, nor in the composed picture.
    QVERIFY(drawingAt(*m_scene, 0, 1).isEmpty());
    QCOMPARE(m_scene->framePixmap().toImage().pixelColor(60, 50).alpha(), 0);
}

void tst_SceneStroke::strokeInProgressIsPaintedBehindTheLastCell()
{
    m_scene->setActiveFrameAndLayer(2, 0, Scene::AllowFrameAfterLast);
    QCOMPARE(m_scene->activeFrame(), 2);
    drawLine(*m_scene, {20, 50}, {150, 50});
    const int coverage = coverageAt(m_scene->activeStroke()->image(), 60, 50);
    QVERIFY(coverage > 100);
    QCOMPARE(painted(*m_scene).pixelColor(60, 50).alpha(), coverage);
}

void tst_SceneStroke::eraserInProgressTakesAway()
{
    m_scene->addStroke(0, 1, block(QRect(0, 0, 200, 150)));
    ToolManager::instance()->setCurrentTool(Tool::Type::Eraser, 0);
    drawLine(*m_scene, {20, 50}, {150, 50});
    const int erased = coverageAt(m_scene->activeStroke()->image(), 60, 50);
    QVERIFY(erased > 50);
    QCOMPARE(painted(*m_scene).pixelColor(60, 50).alpha(), 255 - erased);
    QCOMPARE(painted(*m_scene).pixelColor(60, 140).alpha(), 255);
}

void tst_SceneStroke::paintingDuringAStrokeStaysInsideTheRect()
{
    m_scene->addStroke(0, 1, block(QRect(0, 0, 200, 150)));
    drawLine(*m_scene, {20, 50}, {150, 50});
    const QRect part(60, 45, 10, 10);
    const QImage picture = painted(*m_scene, part);
    for (int y = 0; y < paper.height(); ++y) {
        for (int x = 0; x < paper.width(); ++x)
            QCOMPARE(picture.pixelColor(x, y).alpha(), part.contains(x, y) ? 255 : 0);
    }
}

void tst_SceneStroke::paintedStrokeIsThePictureAfterTheCommit()
{
    m_scene->addStroke(0, 1, block(QRect(30, 30, 40, 40), 90));
    drawLine(*m_scene, {20, 20}, {150, 100});
    auto stroke = m_scene->takeStroke();
    const QImage coverage = stroke->image();
    QVERIFY(m_scene->addStroke(0, 1, std::move(stroke)));
    const QImage &flattened = drawingAt(*m_scene, 0, 1).image();
    for (int y = 0; y < paper.height(); ++y) {
        for (int x = 0; x < paper.width(); ++x) {
            const int below = QRect(30, 30, 40, 40).contains(x, y) ? 90 : 0;
            const int s = coverageAt(coverage, x, y);
            QCOMPARE(coverageAt(flattened, x, y), below + (255 - below) * s / 255);
        }
    }
    QCOMPARE(painted(*m_scene).pixelColor(60, 45).alpha(), coverageAt(flattened, 60, 45));
}

void tst_SceneStroke::eraserOnAnEmptyDrawingIsDropped()
{
    ToolManager::instance()->setCurrentTool(Tool::Type::Eraser, 0);
    drawLine(*m_scene, {20, 50}, {150, 50});
    auto stroke = m_scene->takeStroke();
    const SignalCount signalCount(m_scene.get());
    QVERIFY(!m_scene->addStroke(0, 1, std::move(stroke)));
    QCOMPARE(signalCount.heard(), QString());
}

void tst_SceneStroke::removingTheOnlyStrokeMakesTheImageNullAgain()
{
    drawLine(*m_scene, {20, 50}, {150, 50});
    QVERIFY(m_scene->addStroke(0, 1, m_scene->takeStroke()));
    QVERIFY(!drawingAt(*m_scene, 0, 1).image().isNull());
    QVERIFY(m_scene->removeLastStroke(0, 1));
    QVERIFY(drawingAt(*m_scene, 0, 1).image().isNull());
    QCOMPARE(painted(*m_scene).pixelColor(60, 50).alpha(), 0);
}

void tst_SceneStroke::tailIsDrawnInTheLayersColour()
{
    m_scene->beginStroke(sampleAt(20, 50));
    // One far sample: the line covers 0.6 of the way, the tail shows the rest.
    m_scene->addSample(sampleAt(180, 50));
    QImage image(paper, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const QRect covered = m_scene->drawActiveStrokeTail(&painter, image.rect(), 2.0);
    painter.end();
    QVERIFY(covered.contains(170, 50));
    QVERIFY(!covered.contains(60, 50));
    int inked = 0;
    for (int x = 125; x < 180; ++x) {
        const QColor found = image.pixelColor(x, 50);
        inked += found.alpha() > 0 ? 1 : 0;
        if (found.alpha() > 200) {
            QCOMPARE(found.red(), 255);
            QCOMPARE(found.green(), 0);
        }
    }
    QVERIFY(inked > 5);
}

void tst_SceneStroke::noTailWithoutAStroke()
{
    QImage image(paper, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QVERIFY(m_scene->drawActiveStrokeTail(&painter, image.rect(), 2.0).isEmpty());
    painter.end();
    QCOMPARE(image.pixelColor(50, 50).alpha(), 0);
}

void tst_SceneStroke::strokeBehindTheLastCellIsPaintedWithoutTheFrozenDrawing()
{
    // The stroke is going to get a cell of its own, so what is frozen there now will not be under it.
    m_scene->addStroke(0, 1, block(QRect(0, 100, 200, 50)));
    m_scene->setLayerBeyondLast(0, Layer::FreezeLast);
    m_scene->addBlankDrawing(m_scene->insertLayer(std::make_shared<StrokeLayer>(Qt::blue, paper), 3), 1);
    m_scene->setFrameRange(1, 2, 2, 0);
    QCOMPARE(m_scene->activeFrame(), 2);
    QCOMPARE(painted(*m_scene).pixelColor(60, 120).alpha(), 255);
    drawLine(*m_scene, {20, 50}, {150, 50});
    QVERIFY(painted(*m_scene).pixelColor(60, 50).alpha() > 100);
    QCOMPARE(painted(*m_scene).pixelColor(60, 120).alpha(), 0);
}

QTEST_MAIN(tst_SceneStroke)
#include "tst_scene_stroke.moc"
