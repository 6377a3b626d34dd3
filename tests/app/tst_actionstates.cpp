#include "mainwindowfixture.h"

#include "app/actionneeds.h"
#include "app/actionstates.h"
#include "libmodel/actions/actionmanager.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/tools/toolmanager.h"
#include "support/scenesnapshot.h"

#include <QMetaEnum>
#include <QTest>
#include <QUndoStack>

using Model::Layer;
using TestSupport::SceneSnapshot;
using enum MR::Action;

namespace {

using Actions = QSet<MR::Action>;

/// The actions whose work depends on where one stands in the scene.
const Actions depending{AddCloneDrawing,
                        DeleteCloneDrawing,
                        AddBlankDrawing,
                        InsertBlankDrawing,
                        TurnCloneIntoOriginal,
                        ClearDrawingMakingBlank,
                        LoseDrawingMakingHold,
                        DiscardDrawing,
                        BackDeleteDrawing,
                        CloneEachSelectedDrawingOnce,
                        CycleSelectedDrawingsOnce,
                        RangeStartStepBack,
                        RangeStartStepForward,
                        RangeEndStepBack,
                        RangeEndStepForward,
                        RangeStartToFirstFrame,
                        RangeEndToLastFrame,
                        MarkAsKeyDrawing,
                        UnmarkAllKeyDrawings,
                        NewLayer,
                        DuplicateActiveLayer,
                        LayerAbove,
                        LayerBelow,
                        LayerTop,
                        LayerBottom,
                        DiscardActiveLayer,
                        LayerVisibility,
                        LayerLink,
                        MergeLayerDown,
                        UnlinkAllLayers,
                        LinkAllLayers,
                        DiscardAudio};

QString keyOf(MR::Action action)
{
    return QString::fromLatin1(QMetaEnum::fromType<MR::Action>().valueToKey(int(action)));
}

QStringList keysOf(const Actions &actions)
{
    QStringList keys;
    for (const MR::Action action : actions)
        keys.append(keyOf(action));
    keys.sort();
    return keys;
}

} // namespace

/// Which actions the real window lets one use, where in a scene.
class tst_ActionStates : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void cleanup();
    void tableNamesEachActionOnceInTheirOrder();
    void withoutASceneNothingOfASceneCanBeDone();
    void unavailableActions_data();
    void unavailableActions();
    void enabledActionsDoTheirWork_data();
    void enabledActionsDoTheirWork();
    void obstacleStandsInTheToolTipAsLongAsItLasts();
    void whatIsYetToComeIsNeverAvailable();
    void undoAndRedoFollowTheStack();
    void playNeedsSeveralFrames();
    void soundActionsNeedASound();
    void sizeStepsNeedADrawingTool();
    void suspendedActionsComeBackAsTheyAreThen();

private:
    void makeState(const QByteArray &state);
    void addStateRows();
};

void tst_ActionStates::cleanup()
{
    Model::ToolManager::instance()->setCurrentTool(Model::Tool::Type::Pen, 0);
}

// The places in scenes that rows of data tell of.
void tst_ActionStates::makeState(const QByteArray &state)
{
    if (state == "new scene")
        return;
    if (state == "on an original" || state == "on a hold" || state == "behind the last" || state == "on the first") {
        makeCells("o-o");
        goTo(state == "on the first" ? 1 : state == "on a hold" ? 2 : state == "on an original" ? 3 : 4);
    } else if (state == "selection") {
        makeCells("o-oo");
        select(1, 3);
    } else if (state == "part of the frames") {
        makeCells("oooooo");
        scene()->setFrameRange(2, 5, 3, 0);
        action(MarkAsKeyDrawing)->trigger();
    } else if (state == "top layer") {
        scene()->insertLayer(std::make_shared<Model::StrokeLayer>(Qt::black, scene()->frameSize()), 3);
        scene()->moveLayer(3, 0);
        goTo(1, 3);
    } else if (state == "bottom layer") {
        scene()->insertLayer(std::make_shared<Model::StrokeLayer>(Qt::black, scene()->frameSize()), 3);
        scene()->moveLayer(3, 0);
        scene()->setLayerLinked(0, true);
        goTo(1, 0);
    } else if (state == "above a reference layer") {
        scene()->insertLayer(std::make_shared<Model::ReferenceLayer>(scene()->frameSize()), 3);
        goTo(1, 0);
    } else if (state == "all linked") {
        scene()->setLayerLinked(0, true);
    } else {
        QFAIL("no such state");
    }
    scene()->undoStack()->clear();
}

void tst_ActionStates::tableNamesEachActionOnceInTheirOrder()
{
    int last = 0;
    for (const ActionNeeds &entry : actionNeeds()) {
        QVERIFY2(int(entry.action) > last, qPrintable(keyOf(entry.action)));
        last = int(entry.action);
        QVERIFY(!QString::fromUtf8(entry.need->obstacle).isEmpty());
    }
}

void tst_ActionStates::withoutASceneNothingOfASceneCanBeDone()
{
    const QString noScene = QStringLiteral("No scene is open");
    for (const MR::Action which : {SaveScene, SaveSceneAs, ExportFrames, Undo, Redo, AddBlankDrawing, NewLayer, Play,
                                   StepForward, FrameRate24, ZoomIn, OffPegs, MergeLayerDown, MuteAudio})
        QCOMPARE(ActionStates::obstacle(which, {}), noScene);
    for (const MR::Action which :
         {NewScene, OpenScene, Quit, Pencil, RubberEraser, ToggleCursor, GridOnOff, UIScale150})
        QCOMPARE(ActionStates::obstacle(which, {}), QString());
    QCOMPARE(ActionStates::obstacle(Import, {}), QStringLiteral("Not in this version yet"));
}

void tst_ActionStates::addStateRows()
{
    QTest::addColumn<QByteArray>("state");
    for (const char *state :
         {"new scene", "on the first", "on a hold", "on an original", "behind the last", "selection",
          "part of the frames", "top layer", "bottom layer", "above a reference layer", "all linked"})
        QTest::newRow(state) << QByteArray(state);
}

void tst_ActionStates::unavailableActions_data()
{
    QTest::addColumn<QByteArray>("state");
    QTest::addColumn<Actions>("unavailable");
    const Actions layers{LayerAbove, LayerBelow, LayerTop, LayerBottom, MergeLayerDown, UnlinkAllLayers, DiscardAudio};
    const Actions range{RangeStartStepBack,  RangeStartStepForward,  RangeEndStepBack,
                        RangeEndStepForward, RangeStartToFirstFrame, RangeEndToLastFrame};
    const Actions outerRange{RangeStartStepBack, RangeEndStepForward, RangeStartToFirstFrame, RangeEndToLastFrame};
    const Actions selected{CloneEachSelectedDrawingOnce, CycleSelectedDrawingsOnce};
    const auto row = [](const char *state, const Actions &unavailable) {
        QTest::newRow(state) << QByteArray(state) << unavailable;
    };
    const Actions onlyFirst{DeleteCloneDrawing, TurnCloneIntoOriginal, LoseDrawingMakingHold};
    row("new scene", layers + range + selected + onlyFirst + Actions{UnmarkAllKeyDrawings});
    row("on the first", layers + outerRange + selected + onlyFirst + Actions{UnmarkAllKeyDrawings});
    row("on a hold", layers + outerRange + selected + Actions{LoseDrawingMakingHold, UnmarkAllKeyDrawings});
    row("on an original",
        layers + outerRange + selected + Actions{DeleteCloneDrawing, TurnCloneIntoOriginal, UnmarkAllKeyDrawings});
    row("behind the last",
        layers + outerRange + selected + onlyFirst +
            Actions{ClearDrawingMakingBlank, DiscardDrawing, MarkAsKeyDrawing, UnmarkAllKeyDrawings});
    row("selection", layers + outerRange + Actions{UnmarkAllKeyDrawings});
    row("part of the frames", layers + selected + Actions{DeleteCloneDrawing, TurnCloneIntoOriginal});
    const Actions oneFrame = range + selected + onlyFirst + Actions{UnmarkAllKeyDrawings, DiscardAudio};
    row("top layer", oneFrame + Actions{LayerAbove, LayerTop, UnlinkAllLayers});
    row("bottom layer", oneFrame + Actions{LayerBelow, LayerBottom, MergeLayerDown});
    row("above a reference layer", oneFrame + Actions{LayerAbove, LayerTop, MergeLayerDown, UnlinkAllLayers});
    row("all linked", layers - Actions{UnlinkAllLayers} + range + selected + onlyFirst +
                          Actions{UnmarkAllKeyDrawings, LinkAllLayers});
}

void tst_ActionStates::unavailableActions()
{
    QFETCH(QByteArray, state);
    QFETCH(Actions, unavailable);
    makeState(state);
    Actions disabled;
    for (const MR::Action which : depending) {
        if (!action(which)->isEnabled())
            disabled.insert(which);
    }
    QCOMPARE(keysOf(disabled), keysOf(unavailable));
}

void tst_ActionStates::enabledActionsDoTheirWork_data()
{
    addStateRows();
}

void tst_ActionStates::enabledActionsDoTheirWork()
{
    QFETCH(QByteArray, state);
    for (const MR::Action which : depending) {
        newCleanScene();
        makeState(state);
        if (!action(which)->isEnabled())
            continue;
        const SceneSnapshot before(*scene());
        action(which)->trigger();
        QVERIFY2(scene()->undoStack()->count() == 1, qPrintable(keyOf(which)));
        // A blank drawing that is cleared is another blank drawing.
        const bool looksTheSame = which == ClearDrawingMakingBlank;
        QVERIFY2(looksTheSame || !before.diff(SceneSnapshot(*scene())).isEmpty(), qPrintable(keyOf(which)));
    }
}

void tst_ActionStates::obstacleStandsInTheToolTipAsLongAsItLasts()
{
    makeCells("oo");
    const QString plain = QStringLiteral("Turn Clone into Original [O]");
    QCOMPARE(action(TurnCloneIntoOriginal)->toolTip(), plain + "\nThere is no clone here");
    goTo(2);
    action(LoseDrawingMakingHold)->trigger();
    QCOMPARE(cells(), QByteArray("o-"));
    QVERIFY(action(TurnCloneIntoOriginal)->isEnabled());
    QCOMPARE(action(TurnCloneIntoOriginal)->toolTip(), plain);
}

void tst_ActionStates::whatIsYetToComeIsNeverAvailable()
{
    makeCells("o-o");
    select(1, 3);
    drawLine();
    for (const MR::Action which : {AutoSave,
                                   Import,
                                   ExportExposureSheet,
                                   ExportVideo,
                                   MR::Action::SceneSettings,
                                   CutDrawing,
                                   CopyDrawing,
                                   PasteDrawing,
                                   DrawSettings,
                                   EraseSettings,
                                   CustomizeBacklight,
                                   XSheetShow,
                                   SlideMode,
                                   AddClonesMode,
                                   ThumbnailSizeLarge,
                                   Lasso,
                                   Cutter,
                                   PickUpAllOfThisDrawing,
                                   StampFloatingSelection,
                                   FloatingSelection,
                                   NewPaintLayer,
                                   Palette,
                                   ColorPickerTool,
                                   FillTool,
                                   ToolBar,
                                   ReferenceDisplay,
                                   PrimarySpeedDial,
                                   CustomizeSpeedDials,
                                   MR::Action::Settings,
                                   ImportReferenceLayer,
                                   ImportAudio,
                                   CollapseVectorData,
                                   AutoSaveInterval5Min,
                                   AutoSaveFiles9}) {
        QVERIFY2(!action(which)->isEnabled(), qPrintable(keyOf(which)));
        QVERIFY2(action(which)->toolTip().endsWith("\nNot in this version yet"), qPrintable(keyOf(which)));
    }
}

void tst_ActionStates::undoAndRedoFollowTheStack()
{
    QVERIFY(!action(Undo)->isEnabled() && !action(Redo)->isEnabled());
    QVERIFY(action(Undo)->toolTip().endsWith("\nThere is nothing to undo"));
    drawLine();
    QVERIFY(action(Undo)->isEnabled() && !action(Redo)->isEnabled());
    QVERIFY(action(Undo)->toolTip().startsWith("Undo Draw"));
    action(Undo)->trigger();
    QVERIFY(!action(Undo)->isEnabled() && action(Redo)->isEnabled());
    QVERIFY(action(Redo)->toolTip().startsWith("Redo Draw"));
}

void tst_ActionStates::playNeedsSeveralFrames()
{
    QVERIFY(!action(Play)->isEnabled() && !action(ReturnFlip)->isEnabled());
    action(AddBlankDrawing)->trigger();
    QVERIFY(action(Play)->isEnabled() && action(ReturnFlip)->isEnabled());
    action(Undo)->trigger();
    QVERIFY(!action(Play)->isEnabled());
}

void tst_ActionStates::soundActionsNeedASound()
{
    QVERIFY(!action(MuteAudio)->isEnabled() && !action(DiscardAudio)->isEnabled());
    auto sound = std::make_shared<Model::AudioLayer>();
    sound->setOriginalAudioData("bytes");
    scene()->swapLayer(1, sound);
    QVERIFY(action(MuteAudio)->isEnabled() && action(DiscardAudio)->isEnabled());
}

void tst_ActionStates::sizeStepsNeedADrawingTool()
{
    QVERIFY(action(IncreasePenSize)->isEnabled());
    action(Pan)->trigger();
    QVERIFY(!action(IncreasePenSize)->isEnabled() && !action(DecreasePenSize)->isEnabled());
    action(Pan)->trigger();
    QVERIFY(action(IncreasePenSize)->isEnabled());
}

void tst_ActionStates::suspendedActionsComeBackAsTheyAreThen()
{
    auto *catalogue = Model::ActionManager::instance();
    QVERIFY(!action(Play)->isEnabled());
    catalogue->disableAllActions();
    makeCells("oo");
    drawLine();
    QVERIFY(!action(Play)->isEnabled() && !action(Undo)->isEnabled());
    catalogue->restoreAllActions();
    QVERIFY(action(Play)->isEnabled() && action(Undo)->isEnabled());
    QVERIFY(!action(Redo)->isEnabled());
}

QTEST_MAIN(tst_ActionStates)
#include "tst_actionstates.moc"
