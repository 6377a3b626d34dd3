#include "commandstage.h"
#include "libcommands/addblankdrawing.h"
#include "libcommands/changetooltype.h"
#include "libcommands/mergeids.h"
#include "libcommands/setactiveframeandlayer.h"
#include "libcommands/setframerange.h"
#include "libmodel/tools/toolmanager.h"

#include <QRegularExpression>
#include <QTest>

using namespace Commands;
using Model::MRScene;
using Model::Scene;
using Model::Tool;
using Model::ToolManager;
using TestSupport::CommandStage;

/// How commands reach the stack, and those that move about: position, range, tool.
class tst_PositionCommands : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void pushingWithoutAScenePrintsAndLeavesNothing();
    void obsoleteCommandLeavesTheCleanStateAndWhatCanBeRedone();
    void commandOfAClosedSceneDoesNothing();
    void positionIsSetAndComesBack_data();
    void positionIsSetAndComesBack();
    void positionBehindTheLastCellComesBack();
    void frameStepsMergeIntoOneAndBackToTheStartIntoNone();
    void mergedStepRebuildsItsText();
    void stepsThatDifferInLayerAndBehaviourStayApart();
    void stepToWhereOneStandsNeverReachesTheStack();
    void rangeIsSetAndComesBack();
    void rangesMergeAndBackToTheStartIntoNone();
    void rangeThatTurnsOutAsTheOldOneMergesIntoNone();
    void rangesWithOtherWishesStayApart();
    void rangeAsItIsIsObsolete();
    void rangesMergeWhereThePositionHasMoved();
    void obsoleteCommandWithoutASceneIsReportedToo();
    void pushingNothingDoesNothing();
    void toolIsSetAndComesBack();
    void toolsMergeAndBackToTheStartIntoNone();
    void presentToolIsObsolete();
};

void tst_PositionCommands::initTestCase()
{
    Q_INIT_RESOURCE(model);
}

void tst_PositionCommands::init()
{
    ToolManager::instance()->setCurrentTool(Tool::Type::Pen, 0);
}

void tst_PositionCommands::pushingWithoutAScenePrintsAndLeavesNothing()
{
    CommandStage stage({"A B"});
    MRScene::setCurrent(nullptr);
    QTest::ignoreMessage(QtDebugMsg, "Trying to push command with no current scene");
    MRScene::pushCommand(new AddBlankDrawing(stage.mrScene(), stage.cell(1)));
    QCOMPARE(stage.stack().count(), 0);
    QCOMPARE(stage.text(), "A B");
}

void tst_PositionCommands::obsoleteCommandLeavesTheCleanStateAndWhatCanBeRedone()
{
    CommandStage stage({"A B"});
    MRScene::pushCommand(new AddBlankDrawing(stage.mrScene(), stage.cell(1)));
    stage.stack().setClean();
    stage.stack().undo();
    const int audio = stage.scene().audioLayerIdx();
    auto *command = new AddBlankDrawing(stage.mrScene(), stage.cell(1, audio));
    QVERIFY(command->isObsolete());
    MRScene::pushCommand(command);
    QCOMPARE(stage.text(), "A B");
    QVERIFY(stage.stack().canRedo());
    stage.stack().redo();
    QVERIFY(stage.stack().isClean());
}

void tst_PositionCommands::commandOfAClosedSceneDoesNothing()
{
    auto stage = std::make_unique<CommandStage>(QStringList{"A B"});
    AddBlankDrawing add(stage->mrScene(), stage->cell(1));
    SetActiveFrameAndLayer move(stage->mrScene(), 2, 0);
    add.redo();
    stage.reset();
    add.undo();
    add.redo();
    move.redo();
    move.undo();
    QVERIFY(!MRScene::current());
}

void tst_PositionCommands::positionIsSetAndComesBack_data()
{
    QTest::addColumn<int>("frameId");
    QTest::addColumn<int>("layerIdx");
    QTest::addColumn<QString>("text");
    QTest::newRow("frame") << 3 << 0 << "Change Active Frame";
    QTest::newRow("layer") << 2 << 1 << "Change Active Layer";
    QTest::newRow("both") << 1 << 1 << "Change Active Frame and Layer";
}

void tst_PositionCommands::positionIsSetAndComesBack()
{
    QFETCH(const int, frameId);
    QFETCH(const int, layerIdx);
    QFETCH(const QString, text);
    CommandStage stage({"A B C", "D E"});
    stage.activate(2, 0);
    auto *command = new SetActiveFrameAndLayer(stage.mrScene(), frameId, layerIdx);
    QCOMPARE(command->text(), text);
    QCOMPARE(stage.walk(command), QString());
    QCOMPARE(stage.scene().activeFrame(), frameId);
    QCOMPARE(stage.scene().activeLayerIdx(), layerIdx);
}

void tst_PositionCommands::positionBehindTheLastCellComesBack()
{
    CommandStage stage({"A B"});
    stage.activate(3);
    QCOMPARE(stage.walk(new SetActiveFrameAndLayer(stage.mrScene(), 1, 0)), QString());
    stage.stack().undo();
    QCOMPARE(stage.scene().activeFrame(), 3);
    QCOMPARE(stage.walk(new SetActiveFrameAndLayer(stage.mrScene(), 3, 0, Scene::KeepFrameOnDrawing)), QString());
    QCOMPARE(stage.scene().activeFrame(), 2);
}

void tst_PositionCommands::frameStepsMergeIntoOneAndBackToTheStartIntoNone()
{
    CommandStage stage({"A B C D"});
    for (const int frameId : {2, 3, 4}) {
        MRScene::pushCommand(new SetActiveFrameAndLayer(stage.mrScene(), frameId, 0));
        QCOMPARE(stage.stack().count(), 1);
    }
    stage.stack().undo();
    QCOMPARE(stage.scene().activeFrame(), 1);
    stage.stack().redo();
    QCOMPARE(stage.scene().activeFrame(), 4);
    MRScene::pushCommand(new SetActiveFrameAndLayer(stage.mrScene(), 1, 0));
    QCOMPARE(stage.stack().count(), 0);
    QVERIFY(stage.stack().isClean());
}

void tst_PositionCommands::mergedStepRebuildsItsText()
{
    CommandStage stage({"A B", "C D"});
    MRScene::pushCommand(new SetActiveFrameAndLayer(stage.mrScene(), 2, 0));
    QCOMPARE(stage.stack().undoText(), "Change Active Frame");
    MRScene::pushCommand(new SetActiveFrameAndLayer(stage.mrScene(), 2, 1));
    QCOMPARE(stage.stack().count(), 1);
    QCOMPARE(stage.stack().undoText(), "Change Active Frame and Layer");
    MRScene::pushCommand(new SetActiveFrameAndLayer(stage.mrScene(), 1, 1));
    QCOMPARE(stage.stack().undoText(), "Change Active Layer");
}

void tst_PositionCommands::stepsThatDifferInLayerAndBehaviourStayApart()
{
    CommandStage stage({"A B", "C D"});
    MRScene::pushCommand(new SetActiveFrameAndLayer(stage.mrScene(), 2, 0));
    MRScene::pushCommand(new SetActiveFrameAndLayer(stage.mrScene(), 3, 0, Scene::AllowFrameAfterLast));
    QCOMPARE(stage.stack().count(), 1);
    MRScene::pushCommand(new SetActiveFrameAndLayer(stage.mrScene(), 3, 1, Scene::AllowFrameAfterLast));
    QCOMPARE(stage.stack().count(), 2);
    stage.stack().undo();
    QCOMPARE(stage.scene().activeLayerIdx(), 0);
    QCOMPARE(stage.scene().activeFrame(), 3);
}

void tst_PositionCommands::stepToWhereOneStandsNeverReachesTheStack()
{
    CommandStage stage({"A B"});
    stage.activate(2);
    QVERIFY(stage.isRefused(new SetActiveFrameAndLayer(stage.mrScene(), 2, 0, Scene::AllowFrameAfterLast)));
    QVERIFY(stage.drops(new SetActiveFrameAndLayer(stage.mrScene(), 2, 0, Scene::KeepFrameOnDrawing)));
    QVERIFY(stage.drops(new SetActiveFrameAndLayer(stage.mrScene(), 9, 0)));
    QVERIFY(stage.drops(new SetActiveFrameAndLayer(stage.mrScene(), 1, stage.scene().audioLayerIdx())));
}

void tst_PositionCommands::rangeIsSetAndComesBack()
{
    CommandStage stage({"A B C D E"});
    stage.activate(5);
    QCOMPARE(stage.walk(new SetFrameRange(stage.mrScene(), 2, 3, 5, 0)), QString());
    QCOMPARE(stage.scene().rangeFirst(), 2);
    QCOMPARE(stage.scene().rangeLast(), 3);
    QCOMPARE(stage.scene().activeFrame(), 3);
}

void tst_PositionCommands::rangesMergeAndBackToTheStartIntoNone()
{
    CommandStage stage({"A B C D E"});
    stage.activate(2);
    for (const int last : {4, 3, 2}) {
        MRScene::pushCommand(new SetFrameRange(stage.mrScene(), 1, last, 2, 0));
        QCOMPARE(stage.stack().count(), 1);
        QCOMPARE(stage.scene().rangeLast(), last);
    }
    stage.stack().undo();
    QCOMPARE(stage.scene().rangeLast(), 5);
    stage.stack().redo();
    QCOMPARE(stage.scene().rangeLast(), 2);
    MRScene::pushCommand(new SetFrameRange(stage.mrScene(), 1, 5, 2, 0));
    QCOMPARE(stage.stack().count(), 0);
    QCOMPARE(stage.scene().rangeLast(), 5);
}

void tst_PositionCommands::rangeThatTurnsOutAsTheOldOneMergesIntoNone()
{
    CommandStage stage({"A B C D E"});
    stage.scene().setFrameRange(2, 3, 3, 0);
    MRScene::pushCommand(new SetFrameRange(stage.mrScene(), 2, 5, 3, 0));
    QCOMPARE(stage.stack().count(), 1);
    // A range of one frame takes the frame before it along.
    MRScene::pushCommand(new SetFrameRange(stage.mrScene(), 3, 3, 3, 0));
    QCOMPARE(stage.scene().rangeFirst(), 2);
    QCOMPARE(stage.scene().rangeLast(), 3);
    QCOMPARE(stage.stack().count(), 0);
}

void tst_PositionCommands::rangesWithOtherWishesStayApart()
{
    CommandStage stage({"A B C D E", "F G H I J"});
    MRScene::pushCommand(new SetFrameRange(stage.mrScene(), 1, 4, 1, 0));
    MRScene::pushCommand(new SetFrameRange(stage.mrScene(), 1, 3, 2, 0));
    QCOMPARE(stage.stack().count(), 2);
    MRScene::pushCommand(new SetFrameRange(stage.mrScene(), 1, 2, 2, 1));
    QCOMPARE(stage.stack().count(), 3);
}

void tst_PositionCommands::rangeAsItIsIsObsolete()
{
    CommandStage stage({"A B C"});
    QVERIFY(stage.isRefused(new SetFrameRange(stage.mrScene(), 1, 3, 1, 0)));
    // Limited to the frames there are, that is the same range.
    QVERIFY(stage.drops(new SetFrameRange(stage.mrScene(), -5, 99, 1, 0)));
    QVERIFY(stage.drops(new SetFrameRange(stage.mrScene(), 3, 2, 1, 0)));
}

void tst_PositionCommands::toolIsSetAndComesBack()
{
    CommandStage stage({"A"});
    ToolManager *tools = ToolManager::instance();
    tools->setCurrentTool(Tool::Type::FloatingSelection, 0);
    MRScene::pushCommand(new ChangeToolType(stage.mrScene(), Tool::Type::Pen));
    QCOMPARE(tools->currentToolType(), Tool::Type::Pen);
    stage.stack().undo();
    QCOMPARE(tools->currentToolType(), Tool::Type::FloatingSelection);
    stage.stack().redo();
    QCOMPARE(tools->currentToolType(), Tool::Type::Pen);
}

void tst_PositionCommands::toolsMergeAndBackToTheStartIntoNone()
{
    CommandStage stage({"A"});
    ToolManager *tools = ToolManager::instance();
    tools->setCurrentTool(Tool::Type::FloatingSelection, 0);
    MRScene::pushCommand(new ChangeToolType(stage.mrScene(), Tool::Type::Pen));
    MRScene::pushCommand(new ChangeToolType(stage.mrScene(), Tool::Type::Eraser));
    QCOMPARE(stage.stack().count(), 1);
    stage.stack().undo();
    QCOMPARE(tools->currentToolType(), Tool::Type::FloatingSelection);
    stage.stack().redo();
    QCOMPARE(tools->currentToolType(), Tool::Type::Eraser);
    MRScene::pushCommand(new ChangeToolType(stage.mrScene(), Tool::Type::FloatingSelection));
    QCOMPARE(stage.stack().count(), 0);
    QCOMPARE(tools->currentToolType(), Tool::Type::FloatingSelection);
}

void tst_PositionCommands::presentToolIsObsolete()
{
    CommandStage stage({"A"});
    QVERIFY(stage.isRefused(new ChangeToolType(stage.mrScene(), Tool::Type::Pen)));
}

void tst_PositionCommands::rangesMergeWhereThePositionHasMoved()
{
    CommandStage stage({"A B C D E"});
    stage.activate(2);
    MRScene::pushCommand(new SetFrameRange(stage.mrScene(), 1, 4, 3, 0));
    MRScene::pushCommand(new SetFrameRange(stage.mrScene(), 1, 5, 3, 0));
    // The range is what it was at first, but not the frame.
    QCOMPARE(stage.stack().count(), 1);
    QCOMPARE(stage.scene().rangeLast(), 5);
    QCOMPARE(stage.scene().activeFrame(), 3);
    stage.stack().undo();
    QCOMPARE(stage.scene().rangeFirst(), 1);
    QCOMPARE(stage.scene().rangeLast(), 5);
    QCOMPARE(stage.scene().activeFrame(), 2);
    stage.stack().redo();
    QCOMPARE(stage.scene().activeFrame(), 3);
}

void tst_PositionCommands::obsoleteCommandWithoutASceneIsReportedToo()
{
    CommandStage stage({"A B"});
    auto *command = new AddBlankDrawing(stage.mrScene(), QModelIndexList());
    QVERIFY(command->isObsolete());
    MRScene::setCurrent(nullptr);
    QTest::ignoreMessage(QtDebugMsg, "Trying to push command with no current scene");
    MRScene::pushCommand(command);
}

void tst_PositionCommands::pushingNothingDoesNothing()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    CommandStage stage({"A B"});
    MRScene::pushCommand(new AddBlankDrawing(stage.mrScene(), stage.cell(1)));
    stage.stack().undo();
    MRScene::pushCommand(nullptr);
    QCOMPARE(stage.stack().count(), 1);
    QVERIFY(stage.stack().canRedo());
    QCOMPARE(stage.text(), "A B");
}

QTEST_MAIN(tst_PositionCommands)
#include "tst_positioncommands.moc"
