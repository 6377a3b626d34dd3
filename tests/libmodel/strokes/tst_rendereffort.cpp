#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/rendereffort.h"
#include "strokemaking.h"

#include <QTest>

#include <limits>

using namespace Model;

/// How much work drawing is, told before it is done.
class tst_RenderEffort : public QObject
{
    Q_OBJECT

private slots:
    void effortOfAllChildrenIsTold();
    void effortStopsAtTheLastDrawableChild();
    void nothingOnThePaperIsNoWork();
    void linesAreCountedForEachBand();
    void masksAreCountedForEachBand();
    void smallDeepGroupMakesNoBands();

private:
    static constexpr QSize frame{2000, 2000};
    static constexpr QRect paper{QPoint(0, 0), frame};
    TestPen m_pen{{5, 5, 1, 1}};
};

namespace {

constexpr qint64 noLimit = std::numeric_limits<qint64>::max();

std::unique_ptr<BitmapStroke> patch(QRect rect)
{
    return std::make_unique<BitmapStroke>(blankCoverage({1, 1}), rect);
}

/// \a levels of { a pixel, the next level }, around a patch over \a rect.
std::unique_ptr<CompoundStroke> nested(int levels, QRect rect)
{
    auto inner = std::make_unique<CompoundStroke>();
    inner->append(patch(rect));
    for (int level = 1; level < levels; ++level) {
        auto outer = std::make_unique<CompoundStroke>();
        outer->append(patch(QRect(rect.topLeft(), QSize(1, 1))));
        outer->append(std::move(inner));
        inner = std::move(outer);
    }
    return inner;
}

qint64 effortOf(const CompoundStroke &compound, QRect rect)
{
    qint64 effort = -1;
    return drawableChildren(compound, rect, noLimit, &effort) == compound.count() ? effort : -1;
}

} // namespace

void tst_RenderEffort::effortOfAllChildrenIsTold()
{
    CompoundStroke one;
    one.append(patch(QRect(0, 0, 1000, 100)));
    CompoundStroke two;
    two.append(patch(QRect(0, 0, 1000, 100)));
    two.append(patch(QRect(0, 0, 1000, 100)));
    // At least a pass over each of its pixels.
    QVERIFY(effortOf(one, paper) >= 100'000);
    QVERIFY(effortOf(two, paper) >= effortOf(one, paper) + 100'000);
}

void tst_RenderEffort::effortStopsAtTheLastDrawableChild()
{
    CompoundStroke one;
    one.append(patch(QRect(0, 0, 1000, 100)));
    const qint64 limit = effortOf(one, paper);
    one.append(patch(QRect(0, 0, 1000, 100)));
    qint64 effort = -1;
    QCOMPARE(drawableChildren(one, paper, limit, &effort), 1);
    QCOMPARE(effort, limit);
    QCOMPARE(drawableChildren(one, paper, 0, &effort), 0);
}

void tst_RenderEffort::nothingOnThePaperIsNoWork()
{
    CompoundStroke far;
    far.append(patch(QRect(5000, 5000, 1000, 1000)));
    QCOMPARE(effortOf(far, paper), 0);
    QCOMPARE(effortOf(CompoundStroke(), paper), 0);
}

void tst_RenderEffort::linesAreCountedForEachBand()
{
    // 200 images of 4 MB each make it drawn in parts; every line from the top to the bottom is drawn with each of them.
    constexpr int lines = 50;
    CompoundStroke plain;
    for (int i = 0; i < lines; ++i)
        plain.append(straightStroke(m_pen, {20.0 + i, 0.0}, {20.0 + i, 2000.0}));
    CompoundStroke together(plain);
    const auto deep = nested(200, paper);
    together.append(deep->clone());
    const int rows = together.rowsAtOnce(paper, QTransform(), 1.0);
    const int bands = (frame.height() + rows - 1) / rows;
    QVERIFY2(bands >= 4 && bands < 20, qPrintable(QString::number(bands)));

    constexpr qint64 vertices = 20'000; // of one segment
    const qint64 apart = effortOf(plain, paper) + effortOf(*deep, paper);
    QVERIFY(effortOf(together, paper) >= apart + (bands - 2) * lines * vertices);
}

void tst_RenderEffort::masksAreCountedForEachBand()
{
    QPainterPath comb;
    for (int i = 0; i < 1000; ++i)
        comb.lineTo(i, i % 2 == 0 ? 0 : 2000);
    CompoundStroke plain;
    plain.append(patch(paper));
    plain.setKeep(comb);
    CompoundStroke together;
    together.append(plain.clone());
    const auto deep = nested(200, paper);
    together.append(deep->clone());
    const qint64 apart = effortOf(plain, paper) + effortOf(*deep, paper);
    // Each edge is set up against all others for each band.
    QVERIFY(effortOf(together, paper) >= apart + 2 * 1000 * 1000);
}

void tst_RenderEffort::smallDeepGroupMakesNoBands()
{
    CompoundStroke group;
    group.append(patch(paper));
    QCOMPARE(group.rowsAtOnce(paper, QTransform(), 1.0), frame.height());
    group.append(nested(2000, QRect(100, 100, 3, 3)));
    QCOMPARE(group.rowsAtOnce(paper, QTransform(), 1.0), frame.height());
    // Outside of the rectangle it may be as large as it likes.
    CompoundStroke beside;
    beside.append(patch(paper));
    beside.append(nested(2000, paper.translated(3000, 0)));
    QCOMPARE(beside.rowsAtOnce(paper, QTransform(), 1.0), frame.height());
    QVERIFY(beside.rowsAtOnce(paper.translated(3000, 0), QTransform(), 1.0) < frame.height());
}

QTEST_MAIN(tst_RenderEffort)
#include "tst_rendereffort.moc"
