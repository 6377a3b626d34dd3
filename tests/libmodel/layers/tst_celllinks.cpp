#include "libmodel/layers/celllinks.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QTest>

#include <vector>

using namespace Model;

namespace {

/// Cells without layers: an original with distant clones, found by their references.
class Group
{
public:
    explicit Group(int numClones) : drawing(std::make_shared<StrokeDrawing>(QSize(8, 6)))
    {
        original = add(LayerItem::Type::Original);
        originalRef = refs.back();
        for (int i = 0; i < numClones; ++i) {
            const auto clone = add(LayerItem::Type::DistantClone);
            clone->origin = originalRef;
            original->clones.append(refs.back());
        }
    }

    std::shared_ptr<LayerItem> add(LayerItem::Type type)
    {
        const auto cell = std::make_shared<LayerItem>(type, drawing);
        cells.push_back(cell);
        refs.push_back({QUuid::createUuid(), cell->identifier});
        return cell;
    }

    /// The clone number \a i, 1 being the first.
    LayerItem &clone(size_t i) { return *cells.at(i); }
    CellRef ref(size_t i) const { return refs.at(i); }
    /// From now on the cell number \a i (0: the original) cannot be found.
    void lose(size_t i) { lost.append(refs.at(i)); }

    CellFinder finder() const
    {
        return [this](const CellRef &wanted) -> std::shared_ptr<LayerItem> {
            for (size_t i = 0; i < refs.size(); ++i) {
                if (refs.at(i) == wanted && !lost.contains(wanted))
                    return cells.at(i);
            }
            return nullptr;
        };
    }

    std::shared_ptr<Drawing> drawing;
    std::shared_ptr<LayerItem> original;
    CellRef originalRef;
    std::vector<std::shared_ptr<LayerItem>> cells; ///< the original first
    std::vector<CellRef> refs;
    QList<CellRef> lost;
};

QList<CellRef> none()
{
    return {};
}

} // namespace

class tst_CellLinks : public QObject
{
    Q_OBJECT

private slots:
    void firstDistantCloneIsPromoted();
    void othersShowThePromotedCell();
    void promotedOriginalKeepsItsListAndDrawing();
    void nothingToPromoteDoesNothing();
    void clonesThatAreGoneAreNotPromoted();
    void demotionPutsTheGroupBackAsItWas();
    void demotionGivesTheDrawingBack();
    void demotionPassesOverWhatIsGone();
    void unlinkedCloneIsForgottenByItsOriginal();
    void unlinkingTakesEveryEntryOut();
    void unlinkingFromNowhereDoesNothing();
    void relinkedCloneStandsWhereItStood_data();
    void relinkedCloneStandsWhereItStood();
    void cloneThatNeverStoodAnywhereGoesToTheEnd();
    void relinkingTwiceMakesOneEntry();
    void relinkedCloneShowsItsOriginalsDrawing();
    void relinkingWithoutAnOriginalIsRefused();
    void relinkingToWhatIsNoOriginalIsRefused();
    void relinkingToAnotherKindOfDrawingIsRefused();
};

void tst_CellLinks::firstDistantCloneIsPromoted()
{
    Group group(3);
    promoteFirstClone(*group.original, group.finder());
    QVERIFY(group.clone(1).isOriginal());
    QVERIFY(group.clone(1).origin.isNull());
    QCOMPARE(group.clone(1).clones, QList<CellRef>({group.ref(2), group.ref(3)}));
}

void tst_CellLinks::othersShowThePromotedCell()
{
    Group group(3);
    promoteFirstClone(*group.original, group.finder());
    for (const size_t i : {2, 3}) {
        QVERIFY(group.clone(i).isDistantClone());
        QCOMPARE(group.clone(i).origin, group.ref(1));
        QCOMPARE(group.clone(i).clones, none());
    }
}

void tst_CellLinks::promotedOriginalKeepsItsListAndDrawing()
{
    Group group(3);
    promoteFirstClone(*group.original, group.finder());
    QCOMPARE(group.original->clones, QList<CellRef>({group.ref(1), group.ref(2), group.ref(3)}));
    QCOMPARE(group.original->drawing, group.drawing);
    QVERIFY(group.original->isOriginal());
}

void tst_CellLinks::nothingToPromoteDoesNothing()
{
    Group group(0);
    const auto stranger = group.add(LayerItem::Type::Original);
    promoteFirstClone(*group.original, group.finder());
    QVERIFY(group.original->isOriginal());
    QCOMPARE(group.original->clones, none());
    QCOMPARE(stranger->clones, none());
}

void tst_CellLinks::clonesThatAreGoneAreNotPromoted()
{
    Group group(3);
    group.lose(1);
    promoteFirstClone(*group.original, group.finder());
    QVERIFY(group.clone(1).isDistantClone());
    QVERIFY(group.clone(2).isOriginal());
    QCOMPARE(group.clone(2).clones, QList<CellRef>({group.ref(3)}));
    QCOMPARE(group.clone(3).origin, group.ref(2));
}

void tst_CellLinks::demotionPutsTheGroupBackAsItWas()
{
    Group group(3);
    promoteFirstClone(*group.original, group.finder());
    demoteClones(*group.original, group.originalRef, group.finder());
    QCOMPARE(group.original->clones, QList<CellRef>({group.ref(1), group.ref(2), group.ref(3)}));
    for (const size_t i : {1, 2, 3}) {
        QVERIFY(group.clone(i).isDistantClone());
        QCOMPARE(group.clone(i).origin, group.originalRef);
        QCOMPARE(group.clone(i).clones, none());
    }
}

void tst_CellLinks::demotionGivesTheDrawingBack()
{
    Group group(2);
    promoteFirstClone(*group.original, group.finder());
    const auto other = std::make_shared<StrokeDrawing>(QSize(8, 6));
    group.original->drawing = other;
    demoteClones(*group.original, group.originalRef, group.finder());
    QCOMPARE(group.clone(1).drawing, other);
    QCOMPARE(group.clone(2).drawing, other);
}

void tst_CellLinks::demotionPassesOverWhatIsGone()
{
    Group group(2);
    promoteFirstClone(*group.original, group.finder());
    group.lose(1);
    demoteClones(*group.original, group.originalRef, group.finder());
    QVERIFY(group.clone(1).isOriginal());
    QCOMPARE(group.clone(2).origin, group.originalRef);
}

void tst_CellLinks::unlinkedCloneIsForgottenByItsOriginal()
{
    Group group(3);
    unlinkDistantClone(group.clone(2), group.ref(2), group.finder());
    QCOMPARE(group.original->clones, QList<CellRef>({group.ref(1), group.ref(3)}));
    // What it showed is what the way back goes by.
    QCOMPARE(group.clone(2).origin, group.originalRef);
    QCOMPARE(group.clone(2).drawing, group.drawing);
}

void tst_CellLinks::unlinkingTakesEveryEntryOut()
{
    Group group(2);
    group.original->clones = {group.ref(1), group.ref(2), group.ref(1), group.ref(1)};
    unlinkDistantClone(group.clone(1), group.ref(1), group.finder());
    QCOMPARE(group.original->clones, QList<CellRef>({group.ref(2)}));
}

void tst_CellLinks::unlinkingFromNowhereDoesNothing()
{
    Group group(2);
    group.lose(0);
    unlinkDistantClone(group.clone(1), group.ref(1), group.finder());
    QCOMPARE(group.original->clones, QList<CellRef>({group.ref(1), group.ref(2)}));
    QVERIFY(group.clone(1).isDistantClone());
    QCOMPARE(group.clone(1).origin, group.originalRef);
}

void tst_CellLinks::relinkedCloneStandsWhereItStood_data()
{
    QTest::addColumn<int>("number");
    for (const int number : {1, 2, 3})
        QTest::addRow("clone %d", number) << number;
}

void tst_CellLinks::relinkedCloneStandsWhereItStood()
{
    QFETCH(int, number);
    Group group(3);
    const auto i = static_cast<size_t>(number);
    const QList<CellRef> before = group.original->clones;
    unlinkDistantClone(group.clone(i), group.ref(i), group.finder());
    QVERIFY(group.original->clones != before);
    QVERIFY(relinkDistantClone(group.clone(i), group.ref(i), group.finder()));
    QCOMPARE(group.original->clones, before);
}

void tst_CellLinks::cloneThatNeverStoodAnywhereGoesToTheEnd()
{
    Group group(2);
    const auto newcomer = group.add(LayerItem::Type::DistantClone);
    newcomer->origin = group.originalRef;
    QVERIFY(relinkDistantClone(*newcomer, group.ref(3), group.finder()));
    QCOMPARE(group.original->clones, QList<CellRef>({group.ref(1), group.ref(2), group.ref(3)}));
}

void tst_CellLinks::relinkingTwiceMakesOneEntry()
{
    Group group(1);
    QVERIFY(relinkDistantClone(group.clone(1), group.ref(1), group.finder()));
    QVERIFY(relinkDistantClone(group.clone(1), group.ref(1), group.finder()));
    QCOMPARE(group.original->clones, QList<CellRef>({group.ref(1)}));
}

void tst_CellLinks::relinkedCloneShowsItsOriginalsDrawing()
{
    Group group(1);
    unlinkDistantClone(group.clone(1), group.ref(1), group.finder());
    group.original->drawing = std::make_shared<StrokeDrawing>(QSize(8, 6));
    QVERIFY(relinkDistantClone(group.clone(1), group.ref(1), group.finder()));
    QCOMPARE(group.clone(1).drawing, group.original->drawing);
}

void tst_CellLinks::relinkingWithoutAnOriginalIsRefused()
{
    Group group(1);
    unlinkDistantClone(group.clone(1), group.ref(1), group.finder());
    group.lose(0);
    QVERIFY(!relinkDistantClone(group.clone(1), group.ref(1), group.finder()));
    QCOMPARE(group.original->clones, none());
    QCOMPARE(group.clone(1).drawing, group.drawing);
}

void tst_CellLinks::relinkingToWhatIsNoOriginalIsRefused()
{
    Group group(2);
    LayerItem &clone = group.clone(1);
    clone.origin = group.ref(2);
    QVERIFY(!relinkDistantClone(clone, group.ref(1), group.finder()));
    QCOMPARE(group.clone(2).clones, none());
    clone.origin = group.ref(1); // itself
    QVERIFY(!relinkDistantClone(clone, group.ref(1), group.finder()));
    QCOMPARE(clone.clones, none());
}

void tst_CellLinks::relinkingToAnotherKindOfDrawingIsRefused()
{
    Group group(1);
    unlinkDistantClone(group.clone(1), group.ref(1), group.finder());
    group.original->drawing = std::make_shared<ImageDrawing>(QImage());
    QVERIFY(!relinkDistantClone(group.clone(1), group.ref(1), group.finder()));
    QCOMPARE(group.original->clones, none());
    QCOMPARE(group.clone(1).drawing, group.drawing);
}

QTEST_MAIN(tst_CellLinks)
#include "tst_celllinks.moc"
