#include "libmodel/files/linkresolver.h"

#include "scenefixture.h"

#include "libmodel/layers/referencelayer.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/sceneinvariants.h"

#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

/// The layer number \a number of \a scene, of \a numFrames originals, as a reader puts it there. Its cells are known as
/// strokeLayer() names them.
StrokeLayer &addLayer(Scene &scene, int number, int numFrames)
{
    const auto layer = strokeLayer(scene, number, numFrames);
    scene.appendReadLayer(layer);
    return *layer;
}

/// The reference of the cell at \a frameId of the layer \a number.
CellRef ref(int number, int frameId)
{
    return {uuid(number * 100), uuid(number * 100 + frameId)};
}

/// Makes the cell at \a frameId of \a layer a distant clone of \a origin.
LayerItem &pointAt(const StrokeLayer &layer, int frameId, const CellRef &origin)
{
    LayerItem &cell = *layer.item(frameId);
    cell.type = LayerItem::Type::DistantClone;
    cell.origin = origin;
    return cell;
}

} // namespace

class tst_LinkResolver : public QObject
{
    Q_OBJECT

private slots:
    void distantClonesTakeTheirOriginalsDrawing();
    void holdsTakeTheDrawingBeforeThem();
    void cloneOfACloneShowsTheOriginal();
    void chainsInAnyOrderEndAtTheOriginal();
    void missingOriginLeavesTheCellAsItIs();
    void chainToNowhereIsPointedThere();
    void circlesAreFound_data();
    void circlesAreFound();
    void originInALayerOfAnotherTypeIsFound();
    void unlistedClonesAreAppendedInOrder();
    void listsKeepTheirOrderAndWhatIsNowhere();
    void listsLoseWhatDoesNotBelong_data();
    void listsLoseWhatDoesNotBelong();
    void soundSceneStaysAsItIs();
};

void tst_LinkResolver::distantClonesTakeTheirOriginalsDrawing()
{
    const auto scene = emptyScene();
    const auto &first = addLayer(*scene, 1, 2);
    const auto &second = addLayer(*scene, 2, 1);
    pointAt(first, 1, ref(2, 1));
    pointAt(first, 2, ref(2, 1));
    QCOMPARE(resolveLinks(*scene).kind, LinkProblem::Kind::None);
    QCOMPARE(first.item(1)->drawing, second.item(1)->drawing);
    QCOMPARE(first.item(2)->drawing, second.item(1)->drawing);
    QCOMPARE(brokenInvariant(*scene), QString());
}

void tst_LinkResolver::holdsTakeTheDrawingBeforeThem()
{
    const auto scene = emptyScene();
    const auto &layer = addLayer(*scene, 1, 4);
    pointAt(layer, 2, ref(1, 1));
    layer.item(3)->type = LayerItem::Type::Clone;
    QCOMPARE(resolveLinks(*scene).kind, LinkProblem::Kind::None);
    QCOMPARE(layer.item(3)->drawing, layer.item(1)->drawing);
    QVERIFY(layer.item(4)->drawing != layer.item(1)->drawing);
}

void tst_LinkResolver::cloneOfACloneShowsTheOriginal()
{
    const auto scene = emptyScene();
    const auto &layer = addLayer(*scene, 1, 3);
    pointAt(layer, 1, ref(1, 2));
    pointAt(layer, 2, ref(1, 3));
    // Somebody thought that clones can have clones.
    layer.item(2)->clones = {ref(1, 1)};
    QCOMPARE(resolveLinks(*scene).kind, LinkProblem::Kind::None);
    layer.item(2)->clones.clear();
    QCOMPARE(layer.item(1)->origin, ref(1, 3));
    QCOMPARE(layer.item(2)->origin, ref(1, 3));
    QCOMPARE(layer.item(1)->drawing, layer.item(3)->drawing);
    QCOMPARE(layer.item(3)->clones, QList<CellRef>({ref(1, 1), ref(1, 2)}));
    QCOMPARE(brokenInvariant(*scene), QString());
}

void tst_LinkResolver::chainsInAnyOrderEndAtTheOriginal()
{
    QList<int> order{2, 3, 4, 5};
    do {
        // The cells named by the order, each pointing at the next, the last at cell 1.
        const auto scene = emptyScene();
        const auto &layer = addLayer(*scene, 1, 5);
        for (qsizetype i = 0; i < order.size(); ++i)
            pointAt(layer, order[i], ref(1, i + 1 < order.size() ? order[i + 1] : 1));
        QCOMPARE(resolveLinks(*scene).kind, LinkProblem::Kind::None);
        for (int frameId = 2; frameId <= 5; ++frameId) {
            QCOMPARE(layer.item(frameId)->origin, ref(1, 1));
            QCOMPARE(layer.item(frameId)->drawing, layer.item(1)->drawing);
        }
        QCOMPARE(brokenInvariant(*scene), QString());
    } while (std::next_permutation(order.begin(), order.end()));
}

void tst_LinkResolver::missingOriginLeavesTheCellAsItIs()
{
    const auto scene = emptyScene();
    const auto &layer = addLayer(*scene, 1, 2);
    const LayerItem &cell = pointAt(layer, 2, ref(7, 7));
    const auto drawing = cell.drawing;
    QCOMPARE(resolveLinks(*scene).kind, LinkProblem::Kind::None);
    QVERIFY(cell.isDistantClone());
    QCOMPARE(cell.origin, ref(7, 7));
    QCOMPARE(cell.drawing, drawing);
    QCOMPARE(brokenInvariant(*scene, DanglingLinks::Allowed), QString());
}

void tst_LinkResolver::chainToNowhereIsPointedThere()
{
    const auto scene = emptyScene();
    const auto &layer = addLayer(*scene, 1, 4);
    pointAt(layer, 1, ref(1, 2));
    pointAt(layer, 2, ref(1, 9));
    pointAt(layer, 3, ref(1, 1));
    QCOMPARE(resolveLinks(*scene).kind, LinkProblem::Kind::None);
    for (int frameId = 1; frameId <= 3; ++frameId) {
        QVERIFY(layer.item(frameId)->isDistantClone());
        QCOMPARE(layer.item(frameId)->origin, ref(1, 9));
    }
    QVERIFY(layer.item(1)->drawing != layer.item(2)->drawing);
    QCOMPARE(brokenInvariant(*scene, DanglingLinks::Allowed), QString());
}

void tst_LinkResolver::circlesAreFound_data()
{
    QTest::addColumn<QList<int>>("origins"); ///< of the cells of one layer, in order; 0 for an original
    QTest::newRow("of one") << QList<int>{0, 2};
    QTest::newRow("of two") << QList<int>{2, 1};
    QTest::newRow("of three, backwards") << QList<int>{3, 1, 2};
    QTest::newRow("at the end of a way") << QList<int>{2, 3, 4, 3};
    QTest::newRow("behind sound links") << QList<int>{0, 1, 1, 5, 4};
}

void tst_LinkResolver::circlesAreFound()
{
    QFETCH(QList<int>, origins);
    const auto scene = emptyScene();
    const auto &layer = addLayer(*scene, 1, int(origins.size()));
    for (int frameId = 1; frameId <= origins.size(); ++frameId) {
        if (origins[frameId - 1] > 0)
            pointAt(layer, frameId, ref(1, origins[frameId - 1]));
    }
    const LinkProblem problem = resolveLinks(*scene);
    QCOMPARE(problem.kind, LinkProblem::Kind::Circle);
    // The cell that is named comes back to itself.
    const auto frameOf = [&layer](const QUuid &identifier) {
        int frameId = 1;
        while (layer.item(frameId)->identifier != identifier)
            ++frameId;
        return frameId;
    };
    const int start = frameOf(problem.cell->identifier);
    int frameId = start;
    int steps = 0;
    do
        frameId = origins[frameId - 1];
    while (frameId != start && ++steps < 10);
    QCOMPARE(frameId, start);
}

void tst_LinkResolver::originInALayerOfAnotherTypeIsFound()
{
    const auto scene = emptyScene();
    const auto &layer = addLayer(*scene, 1, 2);
    const auto pictures = std::make_shared<ReferenceLayer>(scene->frameSize());
    scene->appendReadLayer(pictures);
    const LayerItem &cell = pointAt(layer, 2, pictures->cellRef(1));
    const LinkProblem problem = resolveLinks(*scene);
    QCOMPARE(problem.kind, LinkProblem::Kind::AnotherKind);
    QCOMPARE(problem.cell, &cell);
}

void tst_LinkResolver::unlistedClonesAreAppendedInOrder()
{
    const auto scene = emptyScene();
    const auto &first = addLayer(*scene, 1, 3);
    const auto &second = addLayer(*scene, 2, 2);
    pointAt(first, 2, ref(1, 1));
    pointAt(first, 3, ref(1, 1));
    pointAt(second, 1, ref(1, 1));
    first.item(1)->clones = {ref(1, 3)};
    QCOMPARE(resolveLinks(*scene).kind, LinkProblem::Kind::None);
    QCOMPARE(first.item(1)->clones, QList<CellRef>({ref(1, 3), ref(1, 2), ref(2, 1)}));
    QCOMPARE(brokenInvariant(*scene), QString());
}

void tst_LinkResolver::listsKeepTheirOrderAndWhatIsNowhere()
{
    const auto scene = emptyScene();
    const auto &layer = addLayer(*scene, 1, 3);
    pointAt(layer, 2, ref(1, 1));
    pointAt(layer, 3, ref(1, 1));
    const QList<CellRef> listed{ref(8, 1), ref(1, 3), ref(1, 99), ref(1, 2)};
    layer.item(1)->clones = listed;
    QCOMPARE(resolveLinks(*scene).kind, LinkProblem::Kind::None);
    QCOMPARE(layer.item(1)->clones, listed);
    QCOMPARE(brokenInvariant(*scene, DanglingLinks::Allowed), QString());
}

void tst_LinkResolver::listsLoseWhatDoesNotBelong_data()
{
    QTest::addColumn<QList<CellRef>>("listed");
    const CellRef clone = ref(1, 2);
    QTest::newRow("twice") << QList<CellRef>{clone, clone};
    QTest::newRow("itself") << QList<CellRef>{ref(1, 1), clone};
    QTest::newRow("another original") << QList<CellRef>{clone, ref(1, 3)};
    QTest::newRow("another's clone") << QList<CellRef>{ref(1, 4), clone};
}

void tst_LinkResolver::listsLoseWhatDoesNotBelong()
{
    QFETCH(QList<CellRef>, listed);
    const auto scene = emptyScene();
    const auto &layer = addLayer(*scene, 1, 4);
    pointAt(layer, 2, ref(1, 1));
    pointAt(layer, 4, ref(1, 3));
    layer.item(1)->clones = listed;
    QCOMPARE(resolveLinks(*scene).kind, LinkProblem::Kind::None);
    QCOMPARE(layer.item(1)->clones, QList<CellRef>{ref(1, 2)});
    QCOMPARE(layer.item(3)->clones, QList<CellRef>{ref(1, 4)});
    QCOMPARE(brokenInvariant(*scene), QString());
}

void tst_LinkResolver::soundSceneStaysAsItIs()
{
    const auto scene = emptyScene();
    const auto &layer = addLayer(*scene, 1, 2);
    QCOMPARE(resolveLinks(*scene).kind, LinkProblem::Kind::None);
    QVERIFY(layer.item(1)->isOriginal());
    QVERIFY(layer.item(1)->clones.isEmpty());
    QVERIFY(layer.item(1)->drawing != layer.item(2)->drawing);
    Scene empty;
    QCOMPARE(resolveLinks(empty).kind, LinkProblem::Kind::None);
}

QTEST_MAIN(tst_LinkResolver)
#include "tst_linkresolver.moc"
