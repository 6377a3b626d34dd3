#include "coverageprobes.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/strokes/strokeengine.h"
#include "libmodel/tools/toolmanager.h"
#include "strokemaking.h"
#include "support/glfixture.h"

#include <QSignalSpy>
#include <QStandardPaths>
#include <QtTest>

using namespace Model;

class tst_StrokeEngine : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QVERIFY(TestSupport::startRenderer({400, 300}));
    }
    void strokeLiesInTheRectsCoordinates();
    void changesAreReportedInTheCallersCoordinates();
    void withoutAToolTheCurrentOneIsTaken();
    void nearSampleIsDropped();
    void endTellsAndHandsOver();
    void beginDropsTheFormerStroke();

private:
    TestPen m_pen{{3, 3, 1, 1}};
};

void tst_StrokeEngine::strokeLiesInTheRectsCoordinates()
{
    StrokeEngine engine;
    engine.begin(QRect(1000, 500, 80, 40), sampleAt(1010, 520), &m_pen);
    QCOMPARE(engine.rect(), QRect(1000, 500, 80, 40));
    QCOMPARE(engine.stroke()->image().size(), QSize(80, 40));
    QCOMPARE(engine.stroke()->lastSample().point, QPointF(10, 20));
    engine.update(sampleAt(1050, 520));
    QCOMPARE(engine.stroke()->lastSample().point, QPointF(50, 20));
    QVERIFY(coverageAt(engine.stroke()->image(), 20, 20) > 240);
}

void tst_StrokeEngine::changesAreReportedInTheCallersCoordinates()
{
    StrokeEngine engine;
    QSignalSpy changed(&engine, &StrokeEngine::rectChanged);
    engine.begin(QRect(1000, 500, 80, 40), sampleAt(1010, 520), &m_pen);
    // Radius 3 and a pixel of rim around (10, 20); 3 pixels around the sample's pixel are no more.
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed[0][0].toRect(), QRect(1006, 516, 8, 8));
}

void tst_StrokeEngine::withoutAToolTheCurrentOneIsTaken()
{
    ToolManager *manager = ToolManager::instance();
    manager->setCurrentPenType(Tool::PenType::Brush);
    manager->setCurrentTool(Tool::Type::Pen, 0);
    StrokeEngine engine;
    engine.begin(QRect(0, 0, 80, 40), sampleAt(10, 20));
    QVERIFY(engine.stroke()->isPen());
    QCOMPARE(engine.stroke()->penType(), Tool::PenType::Brush);
    engine.end();
    manager->setCurrentTool(Tool::Type::Eraser, 0);
    engine.begin(QRect(0, 0, 80, 40), sampleAt(10, 20));
    QVERIFY(engine.stroke()->isEraser());
}

void tst_StrokeEngine::nearSampleIsDropped()
{
    StrokeEngine engine;
    engine.update(sampleAt(1, 1));
    QVERIFY(!engine.hasActiveStroke());
    engine.begin(QRect(100, 100, 80, 40), sampleAt(110, 120), &m_pen);
    engine.update(sampleAt(110.5, 120));
    QCOMPARE(engine.stroke()->samples().size(), size_t(1));
}

void tst_StrokeEngine::endTellsAndHandsOver()
{
    StrokeEngine engine;
    QVERIFY(!engine.end());
    QSignalSpy active(&engine, &StrokeEngine::hasActiveStrokeChanged);
    engine.begin(QRect(100, 100, 80, 40), sampleAt(110, 120), &m_pen);
    const auto stroke = engine.end();
    QVERIFY(stroke);
    QCOMPARE(stroke->segments().size(), size_t(1));
    QCOMPARE(active.count(), 2);
    QCOMPARE(active[1][0].toBool(), false);
    QVERIFY(!engine.hasActiveStroke());
    QVERIFY(!engine.stroke());
}

void tst_StrokeEngine::beginDropsTheFormerStroke()
{
    StrokeEngine engine;
    engine.begin(QRect(100, 100, 80, 40), sampleAt(110, 120), &m_pen);
    QSignalSpy active(&engine, &StrokeEngine::hasActiveStrokeChanged);
    engine.begin(QRect(0, 0, 20, 20), sampleAt(5, 5), &m_pen);
    QCOMPARE(active.count(), 2);
    QCOMPARE(engine.stroke()->image().size(), QSize(20, 20));
}

QTEST_MAIN(tst_StrokeEngine)
#include "tst_strokeengine.moc"
