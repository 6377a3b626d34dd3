#include "libmodel/scene/draggedrange.h"

#include <QTest>

using namespace Model;

Q_DECLARE_METATYPE(Model::FrameSpan)
Q_DECLARE_METATYPE(QList<Model::DraggedLayer>)

class tst_DraggedRange : public QObject
{
    Q_OBJECT

private slots:
    void rangeAfterAddingGrowsWithWhatStandsBeyondIt_data();
    void rangeAfterAddingGrowsWithWhatStandsBeyondIt();
    void rangeAfterDeletingShrinksUnlessAnotherLayerReachesItsEnd_data();
    void rangeAfterDeletingShrinksUnlessAnotherLayerReachesItsEnd();
};

namespace {

void addColumns()
{
    QTest::addColumn<FrameSpan>("range");
    QTest::addColumn<QList<DraggedLayer>>("layers");
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("count");
    QTest::addColumn<FrameSpan>("result");
}

void row(const char *name, FrameSpan range, const QList<DraggedLayer> &layers, int frame, int count, FrameSpan result)
{
    QTest::newRow(name) << range << layers << frame << count << result;
}

} // namespace

void tst_DraggedRange::rangeAfterAddingGrowsWithWhatStandsBeyondIt_data()
{
    addColumns();
    row("at its end", {1, 6}, {{6, true}}, 6, 3, {1, 9});
    row("within", {2, 6}, {{6, true}}, 3, 3, {2, 9});
    row("longer than the range", {2, 6}, {{20, true}}, 3, 3, {2, 9});
    row("not up to the end", {1, 9}, {{4, true}, {9, false}}, 3, 5, {1, 9});
    row("a part goes beyond the end", {1, 9}, {{4, true}, {9, false}}, 3, 7, {1, 11});
    row("a linked layer goes beyond the end", {1, 9}, {{4, true}, {9, true}}, 3, 2, {1, 11});
    row("another layer does not count", {1, 9}, {{4, true}, {30, false}}, 3, 2, {1, 9});
    row("behind the range", {1, 6}, {{9, true}}, 7, 3, {1, 6});
    row("nothing", {1, 6}, {{6, true}}, 6, 0, {1, 6});
}

void tst_DraggedRange::rangeAfterAddingGrowsWithWhatStandsBeyondIt()
{
    QFETCH(FrameSpan, range);
    QFETCH(QList<DraggedLayer>, layers);
    QFETCH(int, frame);
    QFETCH(int, count);
    QFETCH(FrameSpan, result);
    QVERIFY(rangeAfterAdding(range, layers, frame, count) == result);
}

void tst_DraggedRange::rangeAfterDeletingShrinksUnlessAnotherLayerReachesItsEnd_data()
{
    addColumns();
    row("alone", {1, 6}, {{6, true}}, 5, 3, {1, 3});
    row("another layer reaches the end", {1, 6}, {{6, true}, {6, false}}, 5, 3, {1, 6});
    row("another layer stops the shrinking", {1, 6}, {{6, true}, {5, false}}, 5, 3, {1, 5});
    row("a linked layer shrinks too", {1, 6}, {{6, true}, {6, true}}, 5, 3, {1, 3});
    row("a linked layer that ends before", {1, 6}, {{6, true}, {3, true}}, 5, 3, {1, 3});
    row("a longer layer that is shortened", {1, 6}, {{20, true}}, 5, 2, {1, 4});
    row("a range of two frames goes up", {5, 6}, {{6, true}}, 6, 1, {4, 5});
    row("a range of two frames at the start stays", {1, 2}, {{4, true}}, 3, 1, {1, 2});
    row("down to one frame", {1, 3}, {{3, true}}, 3, 2, {1, 1});
    row("nothing", {1, 6}, {{6, true}}, 5, 0, {1, 6});
}

void tst_DraggedRange::rangeAfterDeletingShrinksUnlessAnotherLayerReachesItsEnd()
{
    QFETCH(FrameSpan, range);
    QFETCH(QList<DraggedLayer>, layers);
    QFETCH(int, frame);
    QFETCH(int, count);
    QFETCH(FrameSpan, result);
    const FrameSpan shrunk = rangeAfterDeleting(range, layers, frame, count);
    QCOMPARE(shrunk.first, result.first);
    QCOMPARE(shrunk.last, result.last);
}

QTEST_APPLESS_MAIN(tst_DraggedRange)
#include "tst_draggedrange.moc"
