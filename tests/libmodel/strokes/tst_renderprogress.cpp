#include "coverageprobes.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "strokemaking.h"
#include "support/glfixture.h"
#include "support/watchedprogress.h"

#include <QtTest>

using namespace Model;
using TestSupport::WatchedProgress;

/// How drawing a compound tells how far it is.
class tst_RenderProgress : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void everyStrokeAndCompoundIsAStep();
    void whatLiesElsewhereIsAStepAsWell();
    void nothingToDrawTakesAllSteps();
    void severalBandsTakeTheirStepsEach();
    void cancelledDrawingReturnsNothing_data();
    void cancelledDrawingReturnsNothing();
    void drawingUnderProgressMakesTheSamePixels();
    void othersMayDrawWhileProgressIsTold();

private:
    static constexpr QSize frame{400, 300};
    TestPen m_pen{{5, 5, 1, 1}};
    TestEraser m_eraser{{3, 3, 1, 1}};

    std::unique_ptr<SingleStroke> pen(QPointF from, QPointF to) const { return straightStroke(m_pen, from, to); }

    /// 7 lines, 1 eraser, 1 bitmap, and 2 compounds beside the root: 12 in all.
    std::unique_ptr<CompoundStroke> tree() const
    {
        auto innermost = std::make_unique<CompoundStroke>();
        innermost->append(pen({20, 200}, {300, 200}));
        innermost->append(pen({20, 210}, {300, 250}));
        auto inner = std::make_unique<CompoundStroke>();
        inner->append(pen({20, 100}, {300, 100}));
        inner->append(std::move(innermost));
        inner->append(pen({150, 20}, {150, 280}));
        auto root = std::make_unique<CompoundStroke>();
        root->append(pen({20, 20}, {300, 20}));
        QImage solid = blankCoverage({40, 40});
        solid.fill(200);
        root->append(std::make_unique<BitmapStroke>(solid, QRect(30, 30, 40, 40)));
        root->append(straightStroke(m_eraser, {20, 20}, {200, 60}));
        root->append(std::move(inner));
        root->append(pen({20, 270}, {380, 270}));
        root->append(pen({380, 20}, {380, 270}));
        return root;
    }
};

namespace {

int stepsOf(const WatchedProgress &progress)
{
    int steps = 0;
    for (const QString &event : progress.events())
        steps += event != QLatin1String("look") && !event.contains(QLatin1String("of")) ? 1 : 0;
    return steps;
}

} // namespace

void tst_RenderProgress::everyStrokeAndCompoundIsAStep()
{
    const auto root = tree();
    QCOMPARE(root->recursiveCount(), 12);
    WatchedProgress progress;
    QImage image = blankCoverage(frame);
    QVERIFY(!root->render(image, image.rect(), {}, {}, 1.0, &progress).isEmpty());
    QCOMPARE(stepsOf(progress), 12);
    QCOMPARE(progress.events().filter(QStringLiteral("of")), QStringList());
}

void tst_RenderProgress::whatLiesElsewhereIsAStepAsWell()
{
    WatchedProgress progress;
    QImage image = blankCoverage(frame);
    // Only the last line comes here.
    QVERIFY(!tree()->render(image, QRect(370, 100, 20, 50), {}, {}, 1.0, &progress).isEmpty());
    QCOMPARE(stepsOf(progress), 12);
}

void tst_RenderProgress::nothingToDrawTakesAllSteps()
{
    WatchedProgress progress;
    QImage image = blankCoverage(frame);
    QVERIFY(tree()->render(image, image.rect(), QTransform::fromTranslate(5000, 0), {}, 1.0, &progress).isNull());
    QCOMPARE(stepsOf(progress), 12);
    WatchedProgress ofNothing;
    QVERIFY(CompoundStroke().render(image, image.rect(), {}, {}, 1.0, &ofNothing).isNull());
    QCOMPARE(stepsOf(ofNothing), 1);
}

void tst_RenderProgress::severalBandsTakeTheirStepsEach()
{
    // Groups that each lie on something need an image each: 100 of them, of 4 MB, do not go at once.
    constexpr QSize large(2000, 2000);
    const auto patch = [] { return std::make_unique<BitmapStroke>(QImage(), QRect(0, 0, 2000, 2000)); };
    auto nested = std::make_unique<CompoundStroke>();
    nested->append(patch());
    for (int i = 0; i < 99; ++i) {
        auto outer = std::make_unique<CompoundStroke>();
        outer->append(patch());
        outer->append(std::move(nested));
        nested = std::move(outer);
    }
    const int rows = nested->rowsAtOnce(QRect(QPoint(0, 0), large), {}, 1.0);
    const int bands = (large.height() + rows - 1) / rows;
    QVERIFY(bands > 1);
    WatchedProgress progress;
    QImage image = blankCoverage(large);
    QVERIFY(!nested->render(image, image.rect(), {}, {}, 1.0, &progress).isEmpty());
    QCOMPARE(progress.events().filter(QStringLiteral("of")),
             QStringList(QStringLiteral("0 of %1").arg(bands * nested->recursiveCount())));
    QCOMPARE(stepsOf(progress), bands * nested->recursiveCount());
}

void tst_RenderProgress::cancelledDrawingReturnsNothing_data()
{
    QTest::addColumn<int>("look");
    for (int look = 1; look <= 12; ++look)
        QTest::addRow("at look %d", look) << look;
}

void tst_RenderProgress::cancelledDrawingReturnsNothing()
{
    QFETCH(int, look);
    WatchedProgress progress(look);
    QImage image = blankCoverage(frame);
    QVERIFY(tree()->render(image, image.rect(), {}, {}, 1.0, &progress).isNull());
    QVERIFY(stepsOf(progress) < 12 || look == 12);
    // What was on its way leaves nothing behind for the next drawing.
    QImage after = blankCoverage(frame);
    tree()->render(after, after.rect(), {}, {}, 1.0);
    QImage expected = blankCoverage(frame);
    tree()->render(expected, expected.rect(), {}, {}, 1.0);
    QCOMPARE(after, expected);
}

void tst_RenderProgress::drawingUnderProgressMakesTheSamePixels()
{
    QImage plain = blankCoverage(frame);
    const QRect touched = tree()->render(plain, plain.rect(), {}, {}, 1.0);
    WatchedProgress progress;
    QImage watched = blankCoverage(frame);
    QCOMPARE(tree()->render(watched, watched.rect(), {}, {}, 1.0, &progress), touched);
    QCOMPARE(watched, plain);
}

// A dialog lets the window be painted, and that may draw other strokes.
void tst_RenderProgress::othersMayDrawWhileProgressIsTold()
{
    CompoundStroke many;
    for (int i = 0; i < 80; ++i)
        many.append(pen({20, 10.0 + 3 * i}, {300, 12.0 + 3 * i}));
    QImage expected = blankCoverage(frame);
    many.render(expected, expected.rect(), {}, {}, 1.0);

    class DrawingProgress : public WatchedProgress
    {
    public:
        explicit DrawingProgress(const Stroke &other) : m_other(other) {}
        void advance() override
        {
            WatchedProgress::advance();
            draw();
        }
        void poll() override { draw(); }

    private:
        void draw()
        {
            QImage image = blankCoverage(frame);
            m_other.render(image, image.rect(), QTransform::fromTranslate(3, 4), {}, 1.0);
        }
        const Stroke &m_other;
    };
    const auto other = tree();
    DrawingProgress progress(*other);
    QImage image = blankCoverage(frame);
    many.render(image, image.rect(), {}, {}, 1.0, &progress);
    QCOMPARE(stepsOf(progress), 81);
    QCOMPARE(image, expected);
}

QTEST_MAIN(tst_RenderProgress)
#include "tst_renderprogress.moc"
