#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QTest>

#include <algorithm>

#include <climits>

using namespace Model;

namespace {

constexpr QSize frame(40, 30);

/// A stroke layer whose cells are \a kinds: o for an original, c for a clone. Distant clones are linked afterwards.
std::shared_ptr<StrokeLayer> layerOf(const QString &kinds)
{
    auto layer = std::make_shared<StrokeLayer>(Qt::red, frame);
    for (int i = 1; i < kinds.size(); ++i) {
        if (kinds.at(i) == 'c')
            layer->insertCloneAfter(i);
        else
            layer->insertBlankAfter(i);
    }
    return layer;
}

QString kinds(const VisualLayer &layer)
{
    QString text;
    for (const auto &cell : layer.frames())
        text += cell->isOriginal() ? 'o' : cell->isClone() ? 'c' : 'd';
    return text;
}

/// Makes the cell \a frameId of \a layer a distant clone of the original at \a origin of \a originLayer.
void link(VisualLayer &layer, int frameId, const VisualLayer &originLayer, int origin)
{
    const auto cell = layer.item(frameId);
    const auto original = originLayer.item(origin);
    cell->type = LayerItem::Type::DistantClone;
    cell->origin = originLayer.cellRef(origin);
    cell->drawing = original->drawing;
    original->clones.append(layer.cellRef(frameId));
    layer.spreadDrawing(frameId);
}

/// Lets all \a layers find one another's cells, as in a scene.
void join(const QList<std::shared_ptr<StrokeLayer>> &layers)
{
    const CellFinder find = [layers](const CellRef &ref) -> std::shared_ptr<LayerItem> {
        for (const auto &layer : layers) {
            for (int frameId = 1; frameId <= layer->numFrames(); ++frameId) {
                if (layer->cellRef(frameId) == ref)
                    return layer->item(frameId);
            }
        }
        return nullptr;
    };
    for (const auto &layer : layers)
        layer->setCellFinder(find);
}

QList<CellRef> none()
{
    return {};
}

} // namespace

/// Taking cells out of a layer and putting them in.
class tst_VisualLayerCells : public QObject
{
    Q_OBJECT

private slots:
    void removingFrameOneOfAHoldShortensTheHold();
    void removingFrameOneOfAHoldHandsTheTransformOver();
    void removingFrameOneOfAHoldPromotesNobody();
    void removingADistantCloneAtFrameOneOfAHoldShortensIt();
    void removedOriginalPromotesItsFirstDistantClone();
    void removedOriginalPromotesAcrossLayers();
    void removedOriginalKeepsItsListForTheWayBack();
    void removingTheOnlyCellLeavesABlank();
    void removingTheOnlyCellPromotesItsDistantClone();
    void removingTheOnlyCellOfAReferenceLayerLeavesAnEmptyPicture();
    void removedOriginalLeavesItsHoldToThePreviousDrawing();
    void removedFirstFrameWithoutAHoldMovesTheOthersUp();
    void removedCloneIsRecorded();
    void removedDistantCloneIsForgottenByItsOriginal();
    void removedDistantCloneIsForgottenWhereverItIsListed();
    void removedDistantCloneLeavesItsHoldToThePreviousDrawing();
    void removingOutsideDoesNothing_data();
    void removingOutsideDoesNothing();
    void insertedCellStandsWhereItWasPut();
    void insertedCellIsShownByTheHoldBehindIt();
    void unusableInsertionsAreRefused_data();
    void unusableInsertionsAreRefused();
    void replacedCellIsGivenBack();
    void replacingCellIsShownByTheHoldBehindIt();
    void unusableReplacementsAreRefused();
    void spreadingStopsAtTheNextCellOfAnotherKind();
    void spreadingFromNowhereDoesNothing();
    void cellRefNamesLayerAndCell();
    void selectionThumbnailIsNeverTiny_data();
    void selectionThumbnailIsNeverTiny();
};

void tst_VisualLayerCells::removingFrameOneOfAHoldShortensTheHold()
{
    const auto layer = layerOf("occo");
    const auto first = layer->item(1);
    const auto second = layer->item(2);
    const auto drawing = first->drawing;
    const QList<LayerChange> changes = layer->removeFrame(1);
    QCOMPARE(kinds(*layer), "oco");
    QCOMPARE(layer->item(1), first);
    QCOMPARE(layer->item(1)->drawing, drawing);
    // What was done last stands first.
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes.at(0).type, LayerChange::ItemRemoved);
    QCOMPARE(changes.at(0).frameId, 2);
    QCOMPARE(changes.at(0).item, second);
    QCOMPARE(changes.at(1).type, LayerChange::TransformChanged);
    QCOMPARE(changes.at(1).frameId, 1);
}

void tst_VisualLayerCells::removingFrameOneOfAHoldHandsTheTransformOver()
{
    const auto layer = layerOf("oc");
    const auto ofFirst = QTransform::fromTranslate(1, 2);
    const auto ofSecond = QTransform::fromTranslate(30, 40);
    layer->item(1)->offPegsTransform = ofFirst;
    layer->item(2)->offPegsTransform = ofSecond;
    const QList<LayerChange> changes = layer->removeFrame(1);
    QCOMPARE(layer->item(1)->offPegsTransform, ofSecond);
    QCOMPARE(changes.last().transform, ofFirst);
}

void tst_VisualLayerCells::removingFrameOneOfAHoldPromotesNobody()
{
    const auto layer = layerOf("ocoo");
    link(*layer, 3, *layer, 1);
    const CellRef original = layer->cellRef(1);
    layer->removeFrame(1);
    QCOMPARE(kinds(*layer), "odo");
    QCOMPARE(layer->item(2)->origin, original);
    QCOMPARE(layer->item(1)->clones, QList<CellRef>({layer->cellRef(2)}));
}

void tst_VisualLayerCells::removingADistantCloneAtFrameOneOfAHoldShortensIt()
{
    const auto layer = layerOf("oco");
    link(*layer, 1, *layer, 3);
    const auto first = layer->item(1);
    const QList<LayerChange> changes = layer->removeFrame(1);
    QCOMPARE(kinds(*layer), "do");
    QCOMPARE(layer->item(1), first);
    QCOMPARE(layer->item(2)->clones, QList<CellRef>({layer->cellRef(1)}));
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes.at(0).frameId, 2);
}

void tst_VisualLayerCells::removedOriginalPromotesItsFirstDistantClone()
{
    const auto layer = layerOf("oooco");
    link(*layer, 3, *layer, 2);
    link(*layer, 5, *layer, 2);
    const auto drawing = layer->item(2)->drawing;
    const auto promoted = layer->item(3);
    const QUuid identity = promoted->identifier;
    layer->removeFrame(2);
    QCOMPARE(kinds(*layer), "oocd");
    QCOMPARE(layer->item(2), promoted);
    QCOMPARE(promoted->identifier, identity);
    QVERIFY(promoted->origin.isNull());
    QCOMPARE(promoted->clones, QList<CellRef>({layer->cellRef(4)}));
    QCOMPARE(layer->item(4)->origin, layer->cellRef(2));
    for (const int frameId : {2, 3, 4})
        QCOMPARE(layer->item(frameId)->drawing, drawing);
}

void tst_VisualLayerCells::removedOriginalPromotesAcrossLayers()
{
    const auto layer = layerOf("oo");
    const auto other = layerOf("ooc");
    join({layer, other});
    link(*other, 2, *layer, 2);
    link(*layer, 1, *layer, 2);
    layer->removeFrame(2);
    QCOMPARE(kinds(*other), "ooc");
    QCOMPARE(other->item(2)->clones, QList<CellRef>({layer->cellRef(1)}));
    QCOMPARE(kinds(*layer), "d");
    QCOMPARE(layer->item(1)->origin, other->cellRef(2));
    QCOMPARE(layer->item(1)->drawing, other->item(2)->drawing);
}

void tst_VisualLayerCells::removedOriginalKeepsItsListForTheWayBack()
{
    const auto layer = layerOf("ooo");
    link(*layer, 2, *layer, 3);
    link(*layer, 1, *layer, 3);
    const auto original = layer->item(3);
    const QList<CellRef> listed = original->clones;
    QCOMPARE(listed.size(), 2);
    const QList<LayerChange> changes = layer->removeFrame(3);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::ItemRemoved);
    QCOMPARE(changes.first().frameId, 3);
    QCOMPARE(changes.first().item, original);
    QCOMPARE(original->clones, listed);
}

void tst_VisualLayerCells::removingTheOnlyCellLeavesABlank()
{
    const auto layer = layerOf("o");
    const auto only = layer->item(1);
    only->keyDrawing = true;
    const QList<LayerChange> changes = layer->removeFrame(1);
    QCOMPARE(kinds(*layer), "o");
    QVERIFY(layer->item(1) != only);
    QVERIFY(layer->item(1)->identifier != only->identifier);
    QVERIFY(layer->item(1)->drawing != only->drawing);
    QVERIFY(!layer->item(1)->keyDrawing);
    QVERIFY(dynamic_cast<StrokeDrawing &>(*layer->item(1)->drawing).isEmpty());
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::ItemReplaced);
    QCOMPARE(changes.first().frameId, 1);
    QCOMPARE(changes.first().item, only);
}

void tst_VisualLayerCells::removingTheOnlyCellPromotesItsDistantClone()
{
    const auto layer = layerOf("o");
    const auto other = layerOf("oo");
    join({layer, other});
    link(*other, 2, *layer, 1);
    const auto drawing = layer->item(1)->drawing;
    layer->removeFrame(1);
    QCOMPARE(kinds(*other), "oo");
    QCOMPARE(other->item(2)->drawing, drawing);
    QVERIFY(layer->item(1)->drawing != drawing);
    QCOMPARE(layer->item(1)->clones, none());
}

void tst_VisualLayerCells::removingTheOnlyCellOfAReferenceLayerLeavesAnEmptyPicture()
{
    ReferenceLayer layer(frame);
    const auto only = layer.item(1);
    const QList<LayerChange> changes = layer.removeFrame(1);
    QCOMPARE(layer.numFrames(), 1);
    QVERIFY(layer.item(1) != only);
    QCOMPARE(layer.item(1)->drawing->type(), Drawing::Type::Image);
    QCOMPARE(changes.first().type, LayerChange::ItemReplaced);
}

void tst_VisualLayerCells::removedOriginalLeavesItsHoldToThePreviousDrawing()
{
    const auto layer = layerOf("ocoocco");
    const auto third = layer->item(3)->drawing;
    const QList<LayerChange> changes = layer->removeFrame(4);
    QCOMPARE(kinds(*layer), "ococco");
    for (const int frameId : {3, 4, 5})
        QCOMPARE(layer->item(frameId)->drawing, third);
    QVERIFY(layer->item(6)->drawing != third);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::ItemRemoved);
    QCOMPARE(changes.first().frameId, 4);
}

void tst_VisualLayerCells::removedFirstFrameWithoutAHoldMovesTheOthersUp()
{
    const auto layer = layerOf("ooc");
    const auto first = layer->item(1);
    const auto second = layer->item(2);
    const QList<LayerChange> changes = layer->removeFrame(1);
    QCOMPARE(kinds(*layer), "oc");
    QCOMPARE(layer->item(1), second);
    QCOMPARE(layer->item(2)->drawing, second->drawing);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::ItemRemoved);
    QCOMPARE(changes.first().frameId, 1);
    QCOMPARE(changes.first().item, first);
}

void tst_VisualLayerCells::removedCloneIsRecorded()
{
    const auto layer = layerOf("occo");
    const auto clone = layer->item(3);
    const QList<LayerChange> changes = layer->removeFrame(3);
    QCOMPARE(kinds(*layer), "oco");
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::ItemRemoved);
    QCOMPARE(changes.first().frameId, 3);
    QCOMPARE(changes.first().item, clone);
}

void tst_VisualLayerCells::removedDistantCloneIsForgottenByItsOriginal()
{
    const auto layer = layerOf("oooo");
    link(*layer, 2, *layer, 1);
    link(*layer, 3, *layer, 1);
    link(*layer, 4, *layer, 1);
    const auto removed = layer->item(3);
    const QList<LayerChange> changes = layer->removeFrame(3);
    QCOMPARE(kinds(*layer), "odd");
    QCOMPARE(layer->item(1)->clones, QList<CellRef>({layer->cellRef(2), layer->cellRef(3)}));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().type, LayerChange::ItemRemoved);
    QCOMPARE(changes.first().item, removed);
}

void tst_VisualLayerCells::removedDistantCloneIsForgottenWhereverItIsListed()
{
    const auto layer = layerOf("ooo");
    link(*layer, 3, *layer, 1);
    layer->item(1)->clones.append(layer->cellRef(3));
    layer->item(1)->clones.append(layer->cellRef(3));
    layer->removeFrame(3);
    QCOMPARE(layer->item(1)->clones, none());
}

void tst_VisualLayerCells::removedDistantCloneLeavesItsHoldToThePreviousDrawing()
{
    const auto layer = layerOf("oooc");
    link(*layer, 3, *layer, 1);
    const auto second = layer->item(2)->drawing;
    layer->removeFrame(3);
    QCOMPARE(kinds(*layer), "ooc");
    QCOMPARE(layer->item(3)->drawing, second);
}

void tst_VisualLayerCells::removingOutsideDoesNothing_data()
{
    QTest::addColumn<int>("frameId");
    for (const int frameId : {INT_MIN, -1, 0, 4, INT_MAX})
        QTest::addRow("%d", frameId) << frameId;
}

void tst_VisualLayerCells::removingOutsideDoesNothing()
{
    QFETCH(int, frameId);
    const auto layer = layerOf("oco");
    const auto before = layer->frames();
    QVERIFY(layer->removeFrame(frameId).isEmpty());
    QCOMPARE(layer->frames(), before);
}

void tst_VisualLayerCells::insertedCellStandsWhereItWasPut()
{
    const auto layer = layerOf("oo");
    const auto first = layer->newBlankItem();
    const auto last = layer->newBlankItem();
    QVERIFY(layer->insertItem(1, first));
    QVERIFY(layer->insertItem(4, last));
    QCOMPARE(layer->numFrames(), 4);
    QCOMPARE(layer->item(1), first);
    QCOMPARE(layer->item(4), last);
}

void tst_VisualLayerCells::insertedCellIsShownByTheHoldBehindIt()
{
    const auto layer = layerOf("occo");
    const auto before = layer->item(1)->drawing;
    const auto inserted = layer->newBlankItem();
    QVERIFY(layer->insertItem(3, inserted));
    QCOMPARE(kinds(*layer), "ococo");
    QCOMPARE(layer->item(2)->drawing, before);
    QCOMPARE(layer->item(4)->drawing, inserted->drawing);
    QVERIFY(layer->item(5)->drawing != inserted->drawing);
}

void tst_VisualLayerCells::unusableInsertionsAreRefused_data()
{
    QTest::addColumn<int>("frameId");
    for (const int frameId : {INT_MIN, -1, 0, 4, INT_MAX})
        QTest::addRow("%d", frameId) << frameId;
}

void tst_VisualLayerCells::unusableInsertionsAreRefused()
{
    QFETCH(int, frameId);
    const auto layer = layerOf("oc");
    const auto before = layer->frames();
    auto bare = layer->newBlankItem();
    bare->drawing = nullptr;
    QVERIFY(!layer->insertItem(frameId, layer->newBlankItem()));
    QVERIFY(!layer->insertItem(1, nullptr));
    QVERIFY(!layer->insertItem(1, bare));
    QCOMPARE(layer->frames(), before);
}

void tst_VisualLayerCells::replacedCellIsGivenBack()
{
    const auto layer = layerOf("ooo");
    const auto old = layer->item(2);
    const auto replacement = layer->newBlankItem();
    QCOMPARE(layer->replaceItem(2, replacement), old);
    QCOMPARE(layer->numFrames(), 3);
    QCOMPARE(layer->item(2), replacement);
}

void tst_VisualLayerCells::replacingCellIsShownByTheHoldBehindIt()
{
    const auto layer = layerOf("ooccoc");
    const auto behind = layer->item(5)->drawing;
    const auto replacement = layer->newBlankItem();
    layer->replaceItem(2, replacement);
    QCOMPARE(layer->item(3)->drawing, replacement->drawing);
    QCOMPARE(layer->item(4)->drawing, replacement->drawing);
    QCOMPARE(layer->item(6)->drawing, behind);
}

void tst_VisualLayerCells::unusableReplacementsAreRefused()
{
    const auto layer = layerOf("oc");
    const auto before = layer->frames();
    auto bare = layer->newBlankItem();
    bare->drawing = nullptr;
    for (const int frameId : {INT_MIN, -1, 0, 3, INT_MAX})
        QVERIFY(!layer->replaceItem(frameId, layer->newBlankItem()));
    QVERIFY(!layer->replaceItem(1, nullptr));
    QVERIFY(!layer->replaceItem(1, bare));
    QCOMPARE(layer->frames(), before);
}

void tst_VisualLayerCells::spreadingStopsAtTheNextCellOfAnotherKind()
{
    const auto layer = layerOf("ooccoc");
    const auto other = layer->item(5)->drawing;
    const auto drawing = std::make_shared<StrokeDrawing>(frame);
    layer->item(2)->drawing = drawing;
    layer->spreadDrawing(2);
    QCOMPARE(layer->item(3)->drawing, drawing);
    QCOMPARE(layer->item(4)->drawing, drawing);
    QCOMPARE(layer->item(5)->drawing, other);
    QCOMPARE(layer->item(6)->drawing, other);
    QVERIFY(layer->item(1)->drawing != drawing);
}

void tst_VisualLayerCells::spreadingFromNowhereDoesNothing()
{
    const auto layer = layerOf("oc");
    const auto drawing = layer->item(1)->drawing;
    for (const int frameId : {INT_MIN, -1, 0, 2, 3, INT_MAX})
        layer->spreadDrawing(frameId);
    QCOMPARE(layer->item(1)->drawing, drawing);
    QCOMPARE(layer->item(2)->drawing, drawing);
}

void tst_VisualLayerCells::cellRefNamesLayerAndCell()
{
    const auto layer = layerOf("oo");
    QCOMPARE(layer->cellRef(2), (CellRef{layer->identifier(), layer->item(2)->identifier}));
    for (const int frameId : {INT_MIN, 0, 3, INT_MAX})
        QVERIFY(layer->cellRef(frameId).isNull());
}

void tst_VisualLayerCells::selectionThumbnailIsNeverTiny_data()
{
    QTest::addColumn<QSize>("frame");
    QTest::addColumn<QSize>("asked");
    QTest::newRow("square") << QSize(30, 30) << QSize(4, 4);
    QTest::newRow("wide") << QSize(64, 36) << QSize(25, 25);
    QTest::newRow("high") << QSize(20, 90) << QSize(30, 10);
    QTest::newRow("as asked") << QSize(30, 30) << QSize(28, 28);
}

void tst_VisualLayerCells::selectionThumbnailIsNeverTiny()
{
    QFETCH(QSize, frame);
    QFETCH(QSize, asked);
    StrokeLayer layer(Qt::red, frame);
    QImage coverage(frame, QImage::Format_Alpha8);
    coverage.fill(255);
    auto &drawing = dynamic_cast<StrokeDrawing &>(*layer.item(1)->drawing);
    QVERIFY(drawing.addStroke(std::make_unique<BitmapStroke>(coverage, coverage.rect())));
    const QSize size = layer.selectionThumbnail(1, asked).size();
    QVERIFY(size.width() >= 25 && size.height() >= 25);
    QCOMPARE(std::min(size.width(), size.height()), std::max(25, std::min(asked.width(), asked.height())));
    QVERIFY(layer.selectionThumbnail(2, QSize(40, 40)).isNull());
}

QTEST_MAIN(tst_VisualLayerCells)
#include "tst_visuallayer_cells.moc"
