#include "mainwindowfixture.h"

#include "libmodel/layers/strokelayer.h"
#include "support/scenesnapshot.h"

#include <QItemSelectionModel>
#include <QTest>
#include <QUndoStack>

using Model::Layer;
using TestSupport::SceneSnapshot;

/// The actions on layers, triggered in the real window.
class tst_LayerActions : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void editOfTheActiveLayerIsOneUndoStep_data();
    void editOfTheActiveLayerIsOneUndoStep();
    void newLayerIsTheActiveOneAndLiesOnTop();
    void goingToAnotherLayerKeepsTheFrame_data();
    void goingToAnotherLayerKeepsTheFrame();
    void goingToAnotherLayerMergesIntoOneUndoStep();
    void layerThatEndsBeforeTheRangeIsReached_data();
    void layerThatEndsBeforeTheRangeIsReached();
    void newLayerIsActiveWhateverTheRange_data();
    void newLayerIsActiveWhateverTheRange();
    void checksFollowTheActiveLayer();
    void beyondChecksFollowTheActiveLayer();
    void beyondModeThatIsSetAlreadyIsNoUndoStep();

private:
    /// Three layers of drawings, from the top 3, 4, 0; stands on frame 2 of layer \a active.
    void makeThreeLayers(int active);
    QList<int> visualOrder() const;
};

void tst_LayerActions::makeThreeLayers(int active)
{
    makeCells("oo");
    for (const int layerIdx : {3, 4}) {
        auto layer = std::make_shared<Model::StrokeLayer>(Qt::black, scene()->frameSize());
        layer->insertBlankAfter(1);
        QCOMPARE(scene()->insertLayer(layer, layerIdx), layerIdx);
    }
    scene()->moveLayer(3, 0);
    scene()->moveLayer(4, 1);
    goTo(2, active);
    scene()->undoStack()->clear();
}

QList<int> tst_LayerActions::visualOrder() const
{
    QList<int> order;
    for (const int layerIdx : scene()->layerOrder()) {
        if (scene()->visualLayer(layerIdx))
            order.append(layerIdx);
    }
    return order;
}

void tst_LayerActions::editOfTheActiveLayerIsOneUndoStep_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<QString>("undoText");
    using enum MR::Action;
    QTest::newRow("new") << NewLayer << "New Layer";
    QTest::newRow("duplicate") << DuplicateActiveLayer << "Duplicate Layer";
    QTest::newRow("delete") << DiscardActiveLayer << "Discard Layer";
    QTest::newRow("hide") << LayerVisibility << "Set Layer Invisible";
    QTest::newRow("link") << LayerLink << "Link Layer";
    QTest::newRow("freeze beyond") << FreezeLastDrawingBeyond << "Freeze Last Drawing";
    QTest::newRow("cycle beyond") << CycleDrawingsBeyond << "Cycle Drawings Beyond Last Drawing";
    QTest::newRow("merge down") << MergeLayerDown << "Merge Layer Down";
    QTest::newRow("link all") << LinkAllLayers << "Link All Layers";
}

void tst_LayerActions::editOfTheActiveLayerIsOneUndoStep()
{
    QFETCH(MR::Action, which);
    makeThreeLayers(4);
    const SceneSnapshot start(*scene());
    QVERIFY(action(which)->isEnabled());
    action(which)->trigger();
    QVERIFY(!start.diff(SceneSnapshot(*scene())).isEmpty());
    QCOMPARE(scene()->undoStack()->count(), 1);
    QTEST(scene()->undoStack()->undoText(), "undoText");
    const SceneSnapshot end(*scene());
    action(MR::Action::Undo)->trigger();
    QCOMPARE(start.diff(SceneSnapshot(*scene())), QString());
    action(MR::Action::Redo)->trigger();
    QCOMPARE(end.diff(SceneSnapshot(*scene())), QString());
}

void tst_LayerActions::newLayerIsTheActiveOneAndLiesOnTop()
{
    action(MR::Action::NewLayer)->trigger();
    QCOMPARE(scene()->layerCount(), 4);
    QCOMPARE(scene()->activeLayerIdx(), 3);
    QCOMPARE(visualOrder(), (QList<int>{3, 0}));
    QCOMPARE(scene()->layer(3)->name(), QStringLiteral("2"));
    QCOMPARE(scene()->layer(3)->layerType(), int(Layer::Stroke));
}

void tst_LayerActions::goingToAnotherLayerKeepsTheFrame_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    using enum MR::Action;
    QTest::newRow("above") << LayerAbove << 0 << 4;
    QTest::newRow("above in the middle") << LayerAbove << 4 << 3;
    QTest::newRow("below") << LayerBelow << 3 << 4;
    QTest::newRow("top") << LayerTop << 0 << 3;
    QTest::newRow("bottom") << LayerBottom << 3 << 0;
}

void tst_LayerActions::goingToAnotherLayerKeepsTheFrame()
{
    QFETCH(MR::Action, which);
    QFETCH(int, from);
    makeThreeLayers(from);
    action(which)->trigger();
    QTEST(scene()->activeLayerIdx(), "to");
    QCOMPARE(scene()->activeFrame(), 2);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(scene()->activeLayerIdx(), from);
}

void tst_LayerActions::goingToAnotherLayerMergesIntoOneUndoStep()
{
    makeThreeLayers(0);
    action(MR::Action::LayerAbove)->trigger();
    action(MR::Action::LayerAbove)->trigger();
    QCOMPARE(scene()->activeLayerIdx(), 3);
    QCOMPARE(scene()->undoStack()->count(), 1);
    action(MR::Action::LayerBottom)->trigger();
    QCOMPARE(scene()->undoStack()->count(), 0);
}

void tst_LayerActions::layerThatEndsBeforeTheRangeIsReached_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<int>("to");
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("rangeFirst");
    using enum MR::Action;
    // The layer above has two cells, the one on top three: its empty position lies in the range.
    QTest::newRow("just behind its last cell is near enough") << LayerTop << 3 << 4 << 4;
    QTest::newRow("the range begins earlier") << LayerAbove << 4 << 2 << 2;
}

void tst_LayerActions::layerThatEndsBeforeTheRangeIsReached()
{
    QFETCH(MR::Action, which);
    QFETCH(int, to);
    QFETCH(int, frame);
    QFETCH(int, rangeFirst);
    makeThreeLayers(0);
    scene()->addBlankDrawing(3, 2);
    while (scene()->lastFrame(0) < 6)
        scene()->addBlankDrawing(0, 2);
    scene()->setFrameRange(4, 6, 5, 0);
    scene()->undoStack()->clear();
    QCOMPARE(scene()->rangeFirst(), 4);
    const SceneSnapshot start(*scene());
    select(4, 5);
    QVERIFY(action(which)->isEnabled());
    action(which)->trigger();
    QCOMPARE(scene()->activeLayerIdx(), to);
    QCOMPARE(scene()->activeFrame(), frame);
    QCOMPARE(scene()->rangeFirst(), rangeFirst);
    QCOMPARE(scene()->rangeLast(), 6);
    QVERIFY(!m_window->currentScene()->selectionModel()->hasSelection());
    QCOMPARE(scene()->undoStack()->count(), 1);
    action(MR::Action::Undo)->trigger();
    QCOMPARE(start.diff(SceneSnapshot(*scene())), QString());
}

void tst_LayerActions::newLayerIsActiveWhateverTheRange_data()
{
    QTest::addColumn<int>("rangeFirst");
    QTest::addColumn<int>("rangeFirstAfter");
    QTest::addColumn<int>("frame");
    QTest::newRow("from the first frame") << 1 << 1 << 2;
    QTest::newRow("right behind its only cell") << 2 << 2 << 2;
    QTest::newRow("farther away") << 4 << 1 << 1;
}

void tst_LayerActions::newLayerIsActiveWhateverTheRange()
{
    QFETCH(int, rangeFirst);
    makeCells("oooooo");
    scene()->setFrameRange(rangeFirst, 6, 2, 0);
    scene()->undoStack()->clear();
    const SceneSnapshot start(*scene());
    action(MR::Action::NewLayer)->trigger();
    QCOMPARE(scene()->activeLayerIdx(), 3);
    QTEST(scene()->activeFrame(), "frame");
    QTEST(scene()->rangeFirst(), "rangeFirstAfter");
    QCOMPARE(scene()->rangeLast(), 6);
    QCOMPARE(scene()->undoStack()->count(), 1);
    QCOMPARE(scene()->undoStack()->undoText(), QStringLiteral("New Layer"));
    const SceneSnapshot end(*scene());
    action(MR::Action::Undo)->trigger();
    QCOMPARE(start.diff(SceneSnapshot(*scene())), QString());
    action(MR::Action::Redo)->trigger();
    QCOMPARE(end.diff(SceneSnapshot(*scene())), QString());
}

void tst_LayerActions::checksFollowTheActiveLayer()
{
    makeThreeLayers(3);
    scene()->setLayerVisible(4, false);
    scene()->setLayerLinked(0, true);
    QVERIFY(action(MR::Action::LayerVisibility)->isChecked());
    QVERIFY(!action(MR::Action::LayerLink)->isChecked());
    goTo(2, 4);
    QVERIFY(!action(MR::Action::LayerVisibility)->isChecked());
    QVERIFY(!action(MR::Action::LayerLink)->isChecked());
    goTo(2, 0);
    QVERIFY(action(MR::Action::LayerVisibility)->isChecked());
    QVERIFY(action(MR::Action::LayerLink)->isChecked());
    action(MR::Action::LayerVisibility)->trigger();
    QVERIFY(!scene()->visualLayer(0)->isVisible());
    QVERIFY(!action(MR::Action::LayerVisibility)->isChecked());
    action(MR::Action::Undo)->trigger();
    QVERIFY(action(MR::Action::LayerVisibility)->isChecked());
}

void tst_LayerActions::beyondChecksFollowTheActiveLayer()
{
    makeThreeLayers(3);
    scene()->setLayerBeyondLast(4, Layer::FreezeLast);
    scene()->setLayerBeyondLast(0, Layer::CycleDrawings);
    QVERIFY(action(MR::Action::ShowNothingBeyond)->isChecked());
    goTo(2, 4);
    QVERIFY(action(MR::Action::FreezeLastDrawingBeyond)->isChecked());
    goTo(2, 0);
    QVERIFY(action(MR::Action::CycleDrawingsBeyond)->isChecked());
    QVERIFY(!action(MR::Action::FreezeLastDrawingBeyond)->isChecked());
    action(MR::Action::ShowNothingBeyond)->trigger();
    QCOMPARE(scene()->layer(0)->beyondLast(), Layer::ShowNothing);
    action(MR::Action::Undo)->trigger();
    QVERIFY(action(MR::Action::CycleDrawingsBeyond)->isChecked());
}

void tst_LayerActions::beyondModeThatIsSetAlreadyIsNoUndoStep()
{
    action(MR::Action::ShowNothingBeyond)->trigger();
    QVERIFY(action(MR::Action::ShowNothingBeyond)->isChecked());
    QCOMPARE(scene()->undoStack()->count(), 0);
}

QTEST_MAIN(tst_LayerActions)
#include "tst_layeractions.moc"
