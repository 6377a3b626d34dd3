#include "scenebuilder.h"

#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scenemodel.h"

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

} // namespace

class TestMRScene : public QObject
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
};

void TestMRScene::cleanup()
{
    MRScene::setCurrent(nullptr);
}

void TestMRScene::modelShowsTheScene()
{
    const MRScene scene;
    QCOMPARE(scene.sceneModel()->scene(), scene.scene());
    TestSupport::addUsualLayers(*scene.scene(), 4);
    QCOMPARE(scene.sceneModel()->rowCount(), 4);
    QCOMPARE(scene.sceneModel()->columnCount(), 3);
}

void TestMRScene::pushedCommandRunsOnTheCurrentScene()
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

void TestMRScene::pushingWithoutASceneIsReportedAndDropped()
{
    CountingCommand::Counts counts;
    const MRScene scene;
    QTest::ignoreMessage(QtDebugMsg, "Trying to push command with no current scene");
    MRScene::pushCommand(new CountingCommand(&counts));
    QCOMPARE(counts.redone, 0);
    QCOMPARE(counts.deleted, 1);
    QCOMPARE(scene.scene()->undoStack()->count(), 0);
}

void TestMRScene::obsoleteCommandLeavesTheStackClean()
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

void TestMRScene::destroyedSceneIsNoLongerCurrent()
{
    auto scene = std::make_unique<MRScene>();
    MRScene::setCurrent(scene.get());
    QCOMPARE(MRScene::current(), scene.get());
    scene.reset();
    QCOMPARE(MRScene::current(), nullptr);
}

void TestMRScene::destroyingAnotherSceneLeavesTheCurrentOne()
{
    MRScene scene;
    auto other = std::make_unique<MRScene>();
    MRScene::setCurrent(&scene);
    other.reset();
    QCOMPARE(MRScene::current(), &scene);
}

void TestMRScene::sceneTakesItsCommandsAlong()
{
    CountingCommand::Counts counts;
    auto scene = std::make_unique<MRScene>();
    MRScene::setCurrent(scene.get());
    MRScene::pushCommand(new CountingCommand(&counts));
    scene.reset();
    QCOMPARE(counts.deleted, 1);
}

void TestMRScene::obsoleteCommandLeavesWhatCanBeRedone()
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

QTEST_MAIN(TestMRScene)
#include "tst_mrscene.moc"
