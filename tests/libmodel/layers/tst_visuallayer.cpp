#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QProgressDialog>
#include <QSignalSpy>
#include <QTest>

#include <climits>
#include <limits>

using namespace Model;

namespace {

constexpr QSize frame(40, 30);

StrokeDrawing *drawingAt(const VisualLayer &layer, int frameId)
{
    return dynamic_cast<StrokeDrawing *>(layer.item(frameId)->drawing.get());
}

void fill(const VisualLayer &layer, int frameId, QRect rect)
{
    QImage coverage(rect.size(), QImage::Format_Alpha8);
    coverage.fill(255);
    QVERIFY(drawingAt(layer, frameId)->addStroke(std::make_unique<BitmapStroke>(coverage, rect)));
}

/// The kinds of all cells as letters: o, c, d.
QString kinds(const VisualLayer &layer)
{
    QString text;
    for (const auto &cell : layer.frames())
        text += cell->isOriginal() ? 'o' : cell->isClone() ? 'c' : 'd';
    return text;
}

} // namespace

class tst_VisualLayer : public QObject
{
    Q_OBJECT

private slots:
    void blankBehindTheLastCell();
    void blankInsideAHoldIsShownByTheRestOfTheHold();
    void blankBehindOneHoldLeavesTheNextDrawingAlone();
    void cloneSharesTheDrawingUnderAnIdentityOfItsOwn();
    void cloneInFrontOfEverythingIsABlank();
    void insertingOutsideDoesNothing_data();
    void insertingOutsideDoesNothing();
    void shownFrameFollowsTheRuleBeyondTheEnd_data();
    void shownFrameFollowsTheRuleBeyondTheEnd();
    void unusableCellListsAreRefused();
    void cellListIsReplaced();
    void opacityIsLimited_data();
    void opacityIsLimited();
    void layerIsShownWhenVisibleAndNotTransparent();
    void visibilityChangeIsToldOnce();
    void labelIsTheNameOrTheNumber();
    void inkedRectIsThatOfTheShownDrawing();
    void resizingScalesASharedDrawingOnce();
    void resizingTakesDistantClonesWithoutTargetAlong();
    void resizingScalesADrawingOfTwoLayersOnce();
    void resizingKeepsTheMotionOffThePegs();
    void resizingAdvancesTheDialogPerCell();
    void resizingToNothingIsRefused();
};

void tst_VisualLayer::blankBehindTheLastCell()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertBlankAfter(1);
    QCOMPARE(kinds(layer), "oo");
    QVERIFY(layer.item(1)->drawing != layer.item(2)->drawing);
    QVERIFY(layer.item(1)->identifier != layer.item(2)->identifier);
}

void tst_VisualLayer::blankInsideAHoldIsShownByTheRestOfTheHold()
{
    StrokeLayer layer(Qt::red, frame);
    for (int i = 0; i < 3; ++i)
        layer.insertCloneAfter(1);
    fill(layer, 1, QRect(1, 1, 4, 4));
    layer.insertBlankAfter(2);
    QCOMPARE(kinds(layer), "ococc");
    QCOMPARE(layer.item(2)->drawing, layer.item(1)->drawing);
    QVERIFY(drawingAt(layer, 3)->isEmpty());
    QCOMPARE(layer.item(4)->drawing, layer.item(3)->drawing);
    QCOMPARE(layer.item(5)->drawing, layer.item(3)->drawing);
}

void tst_VisualLayer::blankBehindOneHoldLeavesTheNextDrawingAlone()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertBlankAfter(1);
    layer.insertCloneAfter(2);
    const auto second = layer.item(2)->drawing;
    layer.insertBlankAfter(1);
    QCOMPARE(kinds(layer), "oooc");
    QCOMPARE(layer.item(3)->drawing, second);
    QCOMPARE(layer.item(4)->drawing, second);
}

void tst_VisualLayer::cloneSharesTheDrawingUnderAnIdentityOfItsOwn()
{
    StrokeLayer layer(Qt::red, frame);
    layer.item(1)->keyDrawing = true;
    layer.item(1)->offPegsTransform = QTransform::fromTranslate(3, 4);
    layer.insertCloneAfter(1);
    QVERIFY(layer.item(2)->isClone());
    QCOMPARE(layer.item(2)->drawing, layer.item(1)->drawing);
    QVERIFY(layer.item(2)->identifier != layer.item(1)->identifier);
    QVERIFY(!layer.item(2)->keyDrawing);
    QVERIFY(layer.item(2)->offPegsTransform.isIdentity());
}

void tst_VisualLayer::cloneInFrontOfEverythingIsABlank()
{
    StrokeLayer layer(Qt::red, frame);
    fill(layer, 1, QRect(1, 1, 4, 4));
    layer.insertCloneAfter(0);
    QCOMPARE(kinds(layer), "oo");
    QVERIFY(drawingAt(layer, 1)->isEmpty());
    QVERIFY(!drawingAt(layer, 2)->isEmpty());
}

void tst_VisualLayer::insertingOutsideDoesNothing_data()
{
    QTest::addColumn<int>("frameId");
    QTest::newRow("smallest") << INT_MIN;
    QTest::newRow("-1") << -1;
    QTest::newRow("behind the end") << 2;
    QTest::newRow("largest") << INT_MAX;
}

void tst_VisualLayer::insertingOutsideDoesNothing()
{
    QFETCH(int, frameId);
    StrokeLayer layer(Qt::red, frame);
    layer.insertBlankAfter(frameId);
    layer.insertCloneAfter(frameId);
    QCOMPARE(layer.numFrames(), 1);
    QVERIFY(!layer.isValidFrame(frameId));
    QVERIFY(!layer.item(frameId));
}

void tst_VisualLayer::shownFrameFollowsTheRuleBeyondTheEnd_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("frameId");
    QTest::addColumn<int>("shown");
    const auto row = [](Layer::LayerBeyondLast mode, int frameId, int shown) {
        QTest::addRow("mode %d frame %d", int(mode), frameId) << int(mode) << frameId << shown;
    };
    for (const auto mode : {Layer::ShowNothing, Layer::FreezeLast, Layer::CycleDrawings}) {
        row(mode, INT_MIN, 0);
        row(mode, 0, 0);
        row(mode, 1, 1);
        row(mode, 3, 3);
    }
    row(Layer::ShowNothing, 4, 0);
    row(Layer::FreezeLast, 4, 3);
    row(Layer::FreezeLast, INT_MAX, 3);
    row(Layer::CycleDrawings, 4, 1);
    row(Layer::CycleDrawings, 6, 3);
    row(Layer::CycleDrawings, 8, 2);
    // 2147483646 is divisible by 3.
    row(Layer::CycleDrawings, INT_MAX, 1);
}

void tst_VisualLayer::shownFrameFollowsTheRuleBeyondTheEnd()
{
    QFETCH(int, mode);
    QFETCH(int, frameId);
    QFETCH(int, shown);
    StrokeLayer layer(Qt::red, frame);
    layer.insertCloneAfter(1);
    layer.insertBlankAfter(2);
    layer.setLayerBeyondLast(static_cast<Layer::LayerBeyondLast>(mode));
    QCOMPARE(layer.shownFrame(frameId), shown);
}

void tst_VisualLayer::unusableCellListsAreRefused()
{
    StrokeLayer layer(Qt::red, frame);
    const auto first = layer.item(1);
    const auto clone = std::make_shared<LayerItem>(LayerItem::Type::Clone, first->drawing);
    auto bare = std::make_shared<LayerItem>(LayerItem::Type::Original, first->drawing);
    bare->drawing = nullptr;
    QVERIFY(!layer.setFrames({}));
    QVERIFY(!layer.setFrames({clone}));
    QVERIFY(!layer.setFrames({first, nullptr}));
    QVERIFY(!layer.setFrames({first, bare}));
    QCOMPARE(layer.numFrames(), 1);
    QCOMPARE(layer.item(1), first);
}

void tst_VisualLayer::cellListIsReplaced()
{
    StrokeLayer layer(Qt::red, frame);
    const auto first = layer.newBlankItem();
    const auto clone = std::make_shared<LayerItem>(LayerItem::Type::Clone, first->drawing);
    QVERIFY(layer.setFrames({first, clone}));
    QCOMPARE(kinds(layer), "oc");
    QCOMPARE(layer.item(1), first);
}

void tst_VisualLayer::opacityIsLimited_data()
{
    QTest::addColumn<double>("given");
    QTest::addColumn<double>("kept");
    QTest::newRow("below") << -0.5 << 0.0;
    QTest::newRow("inside") << 0.25 << 0.25;
    QTest::newRow("above") << 7.0 << 1.0;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 1.0;
}

void tst_VisualLayer::opacityIsLimited()
{
    QFETCH(double, given);
    QFETCH(double, kept);
    StrokeLayer layer(Qt::red, frame);
    QCOMPARE(layer.opacity(), 1.0);
    layer.setOpacity(given);
    QCOMPARE(layer.opacity(), kept);
}

void tst_VisualLayer::layerIsShownWhenVisibleAndNotTransparent()
{
    StrokeLayer layer(Qt::red, frame);
    QVERIFY(layer.isShown());
    layer.setOpacity(1e-13);
    QVERIFY(!layer.isShown());
    layer.setOpacity(1e-11);
    QVERIFY(layer.isShown());
    layer.setVisible(false);
    QVERIFY(!layer.isShown());
}

void tst_VisualLayer::visibilityChangeIsToldOnce()
{
    StrokeLayer layer(Qt::red, frame);
    QSignalSpy changed(&layer, &VisualLayer::visibleChanged);
    layer.setVisible(false);
    layer.setVisible(false);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toBool(), false);
}

void tst_VisualLayer::labelIsTheNameOrTheNumber()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertBlankAfter(1);
    layer.item(2)->drawing->setName("anticipation");
    QCOMPARE(layer.frameLabel(1), "1");
    QCOMPARE(layer.frameLabel(2), "anticipation");
    QCOMPARE(layer.frameLabel(3), "3");
}

void tst_VisualLayer::inkedRectIsThatOfTheShownDrawing()
{
    StrokeLayer layer(Qt::red, frame);
    QVERIFY(layer.inkedRect(1).isEmpty());
    const QRect rect(5, 6, 7, 8);
    fill(layer, 1, rect);
    QVERIFY(layer.inkedRect(1).contains(rect));
    QVERIFY(layer.inkedRect(2).isEmpty());
    layer.setLayerBeyondLast(Layer::FreezeLast);
    QVERIFY(layer.inkedRect(2).contains(rect));
}

void tst_VisualLayer::resizingScalesASharedDrawingOnce()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertCloneAfter(1);
    layer.insertCloneAfter(1);
    fill(layer, 1, QRect(10, 10, 10, 10));
    layer.setFrameSize(frame * 2, MR::FitMode::FitModeStretch, nullptr);
    QCOMPARE(layer.frameSize(), frame * 2);
    const QImage coverage = drawingAt(layer, 1)->image();
    QCOMPARE(coverage.size(), frame * 2);
    const auto at = [&coverage](int x, int y) { return int(coverage.constScanLine(y)[x]); };
    QCOMPARE(at(30, 30), 255);
    QCOMPARE(at(22, 22), 255);
    QCOMPARE(at(37, 37), 255);
    QCOMPARE(at(16, 16), 0);
    QCOMPARE(at(44, 44), 0);
}

void tst_VisualLayer::resizingKeepsTheMotionOffThePegs()
{
    StrokeLayer layer(Qt::red, frame);
    QTransform motion = QTransform::fromTranslate(4, 2);
    motion.rotate(30);
    layer.item(1)->offPegsTransform = motion;
    // Twice as wide, three times as high.
    layer.setFrameSize(QSize(80, 90), MR::FitMode::FitModeStretch, nullptr);
    const QPointF point(7, 11);
    const QPointF moved = motion.map(point);
    const QPointF inNewFrame = layer.item(1)->offPegsTransform.map(QPointF(14, 33));
    QVERIFY(qAbs(inNewFrame.x() - 2 * moved.x()) < 1e-9);
    QVERIFY(qAbs(inNewFrame.y() - 3 * moved.y()) < 1e-9);
}

void tst_VisualLayer::resizingAdvancesTheDialogPerCell()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertCloneAfter(1);
    layer.insertBlankAfter(2);
    QProgressDialog dialog("Resizing", QString(), 0, 10);
    dialog.setMinimumDuration(1'000'000);
    dialog.setValue(2);
    layer.setFrameSize(QSize(20, 20), MR::FitMode::FitModeIgnore, &dialog);
    QCOMPARE(dialog.value(), 5);
}

void tst_VisualLayer::resizingToNothingIsRefused()
{
    StrokeLayer layer(Qt::red, frame);
    layer.setFrameSize(QSize(0, 10), MR::FitMode::FitModeStretch, nullptr);
    layer.setFrameSize(QSize(), MR::FitMode::FitModeStretch, nullptr);
    QCOMPARE(layer.frameSize(), frame);
}

void tst_VisualLayer::resizingTakesDistantClonesWithoutTargetAlong()
{
    StrokeLayer layer(Qt::red, frame);
    layer.insertBlankAfter(1);
    layer.insertCloneAfter(2);
    layer.item(2)->type = LayerItem::Type::DistantClone;
    layer.item(2)->origin = {QUuid::createUuid(), QUuid::createUuid()};
    fill(layer, 2, QRect(10, 10, 10, 10));
    layer.setFrameSize(frame * 2, MR::FitMode::FitModeStretch, nullptr);
    QCOMPARE(drawingAt(layer, 2)->size(), frame * 2);
    QCOMPARE(int(drawingAt(layer, 2)->image().constScanLine(37)[37]), 255);
    QCOMPARE(int(drawingAt(layer, 2)->image().constScanLine(44)[44]), 0);
}

void tst_VisualLayer::resizingScalesADrawingOfTwoLayersOnce()
{
    StrokeLayer layer(Qt::red, frame);
    StrokeLayer other(Qt::blue, frame);
    fill(layer, 1, QRect(10, 10, 10, 10));
    other.item(1)->type = LayerItem::Type::DistantClone;
    other.item(1)->origin = {layer.identifier(), layer.item(1)->identifier};
    other.item(1)->drawing = layer.item(1)->drawing;
    // The clone's layer comes first, and the drawing must not be scaled again by its own.
    other.setFrameSize(frame * 2, MR::FitMode::FitModeStretch, nullptr);
    layer.setFrameSize(frame * 2, MR::FitMode::FitModeStretch, nullptr);
    QCOMPARE(drawingAt(layer, 1)->size(), frame * 2);
    QCOMPARE(int(drawingAt(layer, 1)->image().constScanLine(22)[22]), 255);
    QCOMPARE(int(drawingAt(layer, 1)->image().constScanLine(44)[44]), 0);
}

QTEST_MAIN(tst_VisualLayer)
#include "tst_visuallayer.moc"
