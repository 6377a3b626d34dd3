#include "scenebuilder.h"

#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/coverage.h"

#include <QItemSelectionModel>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QUndoCommand>
#include <QUndoStack>

#include <memory>

using namespace Model;

namespace {

/// Counts what is done with it.
class CountingCommand : public QUndoCommand
{
public:
    struct Counts
    {
        int redone = 0;
        int deleted = 0;
    };

    explicit CountingCommand(Counts *counts) : m_counts(counts) {}
    ~CountingCommand() override { ++m_counts->deleted; }
    void redo() override { ++m_counts->redone; }

private:
    Counts *m_counts;
};

FloatingSelection floating()
{
    QImage pixels = blankCoverage({8, 6});
    pixels.fill(255);
    return {std::make_unique<BitmapStroke>(pixels, QRect(2, 3, 8, 6)), QSize(40, 30)};
}

} // namespace

class tst_MRScene : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void modelShowsTheScene();
    void pushedCommandRunsOnTheCurrentScene();
    void pushingWithoutASceneIsReportedAndDropped();
    void obsoleteCommandLeavesTheStackClean();
    void obsoleteCommandLeavesWhatCanBeRedone();
    void destroyedSceneIsNoLongerCurrent();
    void destroyingAnotherSceneLeavesTheCurrentOne();
    void sceneTakesItsCommandsAlong();
    void rangeModelShowsTheRange();
    void currentIndexFollowsTheActivePosition();
    void currentIndexFollowsEdits();
    void currentIndexFollowsTheRange();
    void currentIndexStaysDuringADrag();
    void selectionKeepsItsFramesWhenTheRangeChanges();
    void selectionLosesOnlyTheCellsThatGo();
    void selectionMovesWithItsLayer();
    void clearSelectionLeavesTheCurrentIndex();
    void selectionModelIsDeletedAfterTheScene();
    void floatingSelectionIsExchanged();
    void floatingSelectionIsMoved();
    void floatingSelectionThatIsNotMovedIsSilent_data();
    void floatingSelectionThatIsNotMovedIsSilent();
};

void tst_MRScene::cleanup()
{
    MRScene::setCurrent(nullptr);
}

void tst_MRScene::modelShowsTheScene()
{
    const MRScene scene;
    QCOMPARE(scene.sceneModel()->scene(), scene.scene());
    TestSupport::addUsualLayers(*scene.scene(), 4);
    QCOMPARE(scene.sceneModel()->rowCount(), 4);
    QCOMPARE(scene.sceneModel()->columnCount(), 3);
}

void tst_MRScene::pushedCommandRunsOnTheCurrentScene()
{
    CountingCommand::Counts counts;
    MRScene scene;
    const MRScene other;
    MRScene::setCurrent(&scene);
    MRScene::pushCommand(new CountingCommand(&counts));
    QCOMPARE(counts.redone, 1);
    QCOMPARE(counts.deleted, 0);
    QCOMPARE(scene.scene()->undoStack()->count(), 1);
    QCOMPARE(other.scene()->undoStack()->count(), 0);
}

void tst_MRScene::pushingWithoutASceneIsReportedAndDropped()
{
    CountingCommand::Counts counts;
    const MRScene scene;
    QTest::ignoreMessage(QtDebugMsg, "Trying to push command with no current scene");
    MRScene::pushCommand(new CountingCommand(&counts));
    QCOMPARE(counts.redone, 0);
    QCOMPARE(counts.deleted, 1);
    QCOMPARE(scene.scene()->undoStack()->count(), 0);
}

void tst_MRScene::obsoleteCommandLeavesTheStackClean()
{
    CountingCommand::Counts counts;
    MRScene scene;
    MRScene::setCurrent(&scene);
    auto command = std::make_unique<CountingCommand>(&counts);
    command->setObsolete(true);
    MRScene::pushCommand(command.release());
    QCOMPARE(scene.scene()->undoStack()->count(), 0);
    QVERIFY(scene.scene()->undoStack()->isClean());
    QCOMPARE(counts.deleted, 1);
}

void tst_MRScene::destroyedSceneIsNoLongerCurrent()
{
    auto scene = std::make_unique<MRScene>();
    MRScene::setCurrent(scene.get());
    QCOMPARE(MRScene::current(), scene.get());
    scene.reset();
    QCOMPARE(MRScene::current(), nullptr);
}

void tst_MRScene::destroyingAnotherSceneLeavesTheCurrentOne()
{
    MRScene scene;
    auto other = std::make_unique<MRScene>();
    MRScene::setCurrent(&scene);
    other.reset();
    QCOMPARE(MRScene::current(), &scene);
}

void tst_MRScene::sceneTakesItsCommandsAlong()
{
    CountingCommand::Counts counts;
    auto scene = std::make_unique<MRScene>();
    MRScene::setCurrent(scene.get());
    MRScene::pushCommand(new CountingCommand(&counts));
    scene.reset();
    QCOMPARE(counts.deleted, 1);
}

void tst_MRScene::obsoleteCommandLeavesWhatCanBeRedone()
{
    CountingCommand::Counts counts;
    CountingCommand::Counts obsoleteCounts;
    MRScene scene;
    MRScene::setCurrent(&scene);
    QUndoStack &stack = *scene.scene()->undoStack();
    MRScene::pushCommand(new CountingCommand(&counts));
    stack.setClean();
    stack.undo();
    auto command = std::make_unique<CountingCommand>(&obsoleteCounts);
    command->setObsolete(true);
    MRScene::pushCommand(command.release());
    QCOMPARE(obsoleteCounts.deleted, 1);
    QCOMPARE(obsoleteCounts.redone, 0);
    QCOMPARE(counts.deleted, 0);
    QVERIFY(stack.canRedo());
    // The saved state lies ahead, and can still be reached.
    QCOMPARE(stack.cleanIndex(), 1);
    stack.redo();
    QVERIFY(stack.isClean());
}

void tst_MRScene::rangeModelShowsTheRange()
{
    const MRScene scene;
    TestSupport::addUsualLayers(*scene.scene(), 8);
    scene.scene()->setFrameRange(3, 6, 3, 0);
    QCOMPARE(scene.frameRangeModel()->scene(), scene.scene());
    QCOMPARE(scene.frameRangeModel()->sourceModel(), scene.sceneModel());
    QCOMPARE(scene.frameRangeModel()->rowCount(), 5);
    QCOMPARE(scene.frameRangeModel()->columnCount(), 3);
    QCOMPARE(scene.selectionModel()->model(), scene.frameRangeModel());
}

void tst_MRScene::currentIndexFollowsTheActivePosition()
{
    const MRScene scene;
    QVERIFY(!scene.selectionModel()->currentIndex().isValid());
    TestSupport::addUsualLayers(*scene.scene(), 4);
    TestSupport::addStrokeLayer(*scene.scene(), 4);
    QCOMPARE(scene.selectionModel()->currentIndex(), scene.frameRangeModel()->index(0, 0));
    scene.scene()->setActiveFrameAndLayer(3, 3, Scene::KeepFrameOnDrawing);
    QCOMPARE(scene.selectionModel()->currentIndex(), scene.frameRangeModel()->index(2, 3));
    // The place behind the last cell can be current, though not selected.
    scene.scene()->setActiveFrameAndLayer(5, 3, Scene::AllowFrameAfterLast);
    QCOMPARE(scene.selectionModel()->currentIndex(), scene.frameRangeModel()->index(4, 3));
    QVERIFY(!scene.selectionModel()->hasSelection());
}

void tst_MRScene::currentIndexFollowsEdits()
{
    const MRScene scene;
    TestSupport::addUsualLayers(*scene.scene(), 4);
    scene.scene()->setActiveFrameAndLayer(3, 0, Scene::KeepFrameOnDrawing);
    scene.scene()->addBlankDrawing(0, 1);
    QCOMPARE(scene.scene()->activeFrame(), 4);
    QCOMPARE(scene.selectionModel()->currentIndex(), scene.frameRangeModel()->index(3, 0));
    scene.scene()->insertLayer(std::make_shared<StrokeLayer>(Qt::red, scene.scene()->frameSize()), 0);
    QCOMPARE(scene.selectionModel()->currentIndex(), scene.frameRangeModel()->index(3, 1));
    scene.scene()->removeLayer(1);
    QCOMPARE(scene.selectionModel()->currentIndex(),
             scene.frameRangeModel()->index(scene.scene()->activeFrame() - 1, 0));
}

void tst_MRScene::currentIndexFollowsTheRange()
{
    const MRScene scene;
    TestSupport::addUsualLayers(*scene.scene(), 8);
    scene.scene()->setFrameRange(3, 6, 5, 0);
    QCOMPARE(scene.selectionModel()->currentIndex(), scene.frameRangeModel()->index(2, 0));
    scene.scene()->setFrameRange(1, 8, 5, 0);
    QCOMPARE(scene.selectionModel()->currentIndex(), scene.frameRangeModel()->index(4, 0));
    scene.scene()->setFrameRange(1, 3, 5, 0);
    QCOMPARE(scene.selectionModel()->currentIndex(), scene.frameRangeModel()->index(2, 0));
}

void tst_MRScene::currentIndexStaysDuringADrag()
{
    const MRScene scene;
    TestSupport::addUsualLayers(*scene.scene(), 1);
    scene.scene()->addCloneDrawings(0, 1, 3);
    scene.scene()->setActiveFrameAndLayer(4, 0, Scene::KeepFrameOnDrawing);
    FrameRangeModel &model = *scene.frameRangeModel();
    QVERIFY(model.beginDrag(FrameRangeModel::AddClonesMode, model.index(3, 0)));
    model.setDragOffset(2);
    QCOMPARE(scene.selectionModel()->currentIndex(), model.index(3, 0));
    // Shortened to one cell, the sheet has no such row; it is back when the drag ends.
    model.setDragOffset(-3);
    model.endDrag();
    QCOMPARE(scene.selectionModel()->currentIndex(), model.index(3, 0));
}

void tst_MRScene::selectionKeepsItsFramesWhenTheRangeChanges()
{
    const MRScene scene;
    TestSupport::addUsualLayers(*scene.scene(), 9);
    const FrameRangeModel &model = *scene.frameRangeModel();
    scene.selectionModel()->select(QItemSelection(model.index(3, 0), model.index(6, 0)), QItemSelectionModel::Select);
    scene.scene()->setFrameRange(3, 6, 3, 0);
    // Frames 4 to 7 were selected: 7 stands in the row after the range.
    QCOMPARE(scene.selectionModel()->selectedIndexes().size(), 4);
    for (int row = 1; row <= 4; ++row)
        QVERIFY(scene.selectionModel()->isSelected(model.index(row, 0)));
    scene.scene()->setFrameRange(5, 9, 5, 0);
    QCOMPARE(scene.selectionModel()->selectedIndexes().size(), 3);
    for (int row = 0; row <= 2; ++row)
        QVERIFY(scene.selectionModel()->isSelected(model.index(row, 0)));
}

void tst_MRScene::selectionLosesOnlyTheCellsThatGo()
{
    const MRScene scene;
    TestSupport::addUsualLayers(*scene.scene(), 5);
    TestSupport::addStrokeLayer(*scene.scene(), 5);
    const FrameRangeModel &model = *scene.frameRangeModel();
    scene.selectionModel()->select(QItemSelection(model.index(2, 0), model.index(4, 0)), QItemSelectionModel::Select);
    scene.selectionModel()->select(model.index(4, 3), QItemSelectionModel::Select);
    scene.scene()->deleteFrames(0, 2, 2);
    QCOMPARE(scene.scene()->lastFrame(0), 3);
    QVERIFY(scene.selectionModel()->isSelected(model.index(2, 0)));
    QVERIFY(scene.selectionModel()->isSelected(model.index(4, 3)));
    const QModelIndexList selected = scene.selectionModel()->selectedIndexes();
    QCOMPARE(selected.size(), 2);
    for (const QModelIndex &index : selected)
        QVERIFY(scene.sceneModel()->item(model.mapToSource(index)));
}

void tst_MRScene::selectionMovesWithItsLayer()
{
    const MRScene scene;
    TestSupport::addUsualLayers(*scene.scene(), 3);
    const FrameRangeModel &model = *scene.frameRangeModel();
    scene.selectionModel()->select(model.index(1, 0), QItemSelectionModel::Select);
    scene.scene()->insertLayer(std::make_shared<StrokeLayer>(Qt::red, scene.scene()->frameSize()), 0);
    QCOMPARE(scene.selectionModel()->selectedIndexes(), QModelIndexList{model.index(1, 1)});
    scene.scene()->removeLayer(1);
    QVERIFY(!scene.selectionModel()->hasSelection());
}

void tst_MRScene::clearSelectionLeavesTheCurrentIndex()
{
    MRScene scene;
    TestSupport::addUsualLayers(*scene.scene(), 3);
    scene.selectionModel()->select(scene.frameRangeModel()->index(1, 0), QItemSelectionModel::Select);
    scene.clearSelection();
    QVERIFY(!scene.selectionModel()->hasSelection());
    QCOMPARE(scene.selectionModel()->currentIndex(), scene.frameRangeModel()->index(0, 0));
}

void tst_MRScene::selectionModelIsDeletedAfterTheScene()
{
    auto scene = std::make_unique<MRScene>();
    TestSupport::addUsualLayers(*scene->scene(), 3);
    const QPointer<QItemSelectionModel> selection = scene->selectionModel();
    scene.reset();
    QVERIFY(selection);
    QVERIFY(!selection->currentIndex().isValid());
    QCoreApplication::sendPostedEvents(selection, QEvent::DeferredDelete);
    QVERIFY(!selection);
}

void tst_MRScene::floatingSelectionIsExchanged()
{
    MRScene scene;
    QVERIFY(scene.floatingSelection().isNull());
    const FloatingSelection first = floating();
    const FloatingSelection second = floating();
    QSignalSpy changes(&scene, &MRScene::floatingSelectionChanged);
    QVERIFY(scene.setFloatingSelection(first).isNull());
    QCOMPARE(scene.floatingSelection().content(), first.content());
    QCOMPARE(scene.setFloatingSelection(second).content(), first.content());
    QCOMPARE(scene.setFloatingSelection({}).content(), second.content());
    QVERIFY(scene.floatingSelection().isNull());
    QCOMPARE(changes.size(), 3);
}

void tst_MRScene::floatingSelectionIsMoved()
{
    MRScene scene;
    scene.setFloatingSelection(floating());
    QSignalSpy moves(&scene, &MRScene::floatingSelectionTransformChanged);
    FloatingSelection::Transform transform = scene.floatingSelection().transform();
    transform.translation = QTransform::fromTranslate(4, 5);
    scene.setFloatingSelectionTransform(transform);
    QVERIFY(scene.floatingSelection().transform() == transform);
    QCOMPARE(moves.size(), 1);
    QVERIFY(moves.first().first().value<FloatingSelection::Transform>() == transform);
}

void tst_MRScene::floatingSelectionThatIsNotMovedIsSilent_data()
{
    QTest::addColumn<bool>("isFloating");
    QTest::addColumn<FloatingSelection::Transform>("transform");
    FloatingSelection::Transform flat;
    flat.scale = QTransform::fromScale(0, 0);
    FloatingSelection::Transform moved;
    moved.translation = QTransform::fromTranslate(4, 5);
    QTest::newRow("none floats") << false << moved;
    QTest::newRow("it lies there") << true << floating().transform();
    QTest::newRow("unusable") << true << flat;
}

void tst_MRScene::floatingSelectionThatIsNotMovedIsSilent()
{
    QFETCH(const bool, isFloating);
    QFETCH(const FloatingSelection::Transform, transform);
    MRScene scene;
    if (isFloating)
        scene.setFloatingSelection(floating());
    const FloatingSelection::Transform before = scene.floatingSelection().transform();
    QSignalSpy moves(&scene, &MRScene::floatingSelectionTransformChanged);
    scene.setFloatingSelectionTransform(transform);
    QVERIFY(scene.floatingSelection().transform() == before);
    QCOMPARE(moves.size(), 0);
}

QTEST_MAIN(tst_MRScene)
#include "tst_mrscene.moc"
