#include "mainwindowfixture.h"

#include "app/actionneeds.h"
#include "app/actionstates.h"
#include "libmodel/actions/actionmanager.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/tools/drawingtool.h"
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
                        CutDrawing,
                        ClearDrawingMakingBlank,
                        LoseDrawingMakingHold,
                        DiscardDrawing,
                        BackDeleteDrawing,
                        CloneEachSelectedDrawingOnce,
                        CycleSelectedDrawingsOnce,
                        StepBack,
                        StepForward,
                        StepBackSkippingLocalClones,
                        StepForwardSkippingLocalClones,
                        SkipBackToKeyDrawing,
                        SkipForwardToKeyDrawing,
                        JumpToStart,
                        JumpToEnd,
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
                        DiscardAudio,
                        PickUpAllOfThisDrawing,
                        CollapseVectorData};

/// Those that work without a scene. (Of the steps of size, the tool decides.)
const Actions needless{NewScene,
                       OpenScene,
                       Quit,
                       Draw,
                       Erase,
                       DrawEraseToggle,
                       NonDrawingAction,
                       Pencil,
                       PencilPreset1,
                       PencilPreset2,
                       PencilPreset3,
                       Marker,
                       MarkerPreset1,
                       MarkerPreset2,
                       MarkerPreset3,
                       Brush,
                       BrushPreset1,
                       BrushPreset2,
                       BrushPreset3,
                       KneadedEraser,
                       RubberEraser,
                       VinylEraser,
                       ResetDrawingUserSettings,
                       ResetErasingUserSettings,
                       ToggleCursor,
                       FaintCursor,
                       FreelyDrawOnClones,
                       ClonesLockedForDrawing,
                       PlayLoop,
                       PlayOnce,
                       PlayBackwards,
                       PlayStopAndStay,
                       BacklightOnOff,
                       OnlyBacklightKeyFrames,
                       MirrorView,
                       GridOnOff,
                       GridTypeFieldGuide,
                       GridTypeSafety,
                       GridTypeThirds,
                       GridTypeDiagonals,
                       GridTypeRenaissance,
                       GridTypeNext,
                       TransparencyShownAsSmallCheckersLight,
                       TransparencyShownAsSmallCheckersDark,
                       TransparencyShownAsLargeCheckersLight,
                       TransparencyShownAsLargeCheckersDark,
                       TransparencyShownAsWhite,
                       TransparencyShownAsLightGrey,
                       TransparencyShownAsDarkGrey,
                       TransparencyShownAsBlack,
                       FullScreen,
                       CollapseVectorDataAutomatically,
                       UIScale75,
                       UIScale100,
                       UIScale125,
                       UIScale150,
                       KeyboardShortcuts,
                       VideoTutorials,
                       CommunityForum,
                       ProvideFeedback,
                       About};

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
    void stepsEndPlaybackWhereverTheyLead();
    void clearingNeedsSomethingDrawn();
    void soundActionsNeedASound();
    void sizeStepsNeedADrawingTool();
    void sizeStepsEndAtTheirLimits_data();
    void sizeStepsEndAtTheirLimits();
    void zoomStepsEndAtTheLimitsOfThePaper();
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
    } else if (state == "drawn on") {
        makeCells("ooo");
        drawLine();
    } else if (state == "between key drawings") {
        makeCells("ooo");
        for (const int frameId : {1, 3})
            scene()->setKeyDrawing(0, frameId, true);
        goTo(2);
    } else if (state == "far behind the range") {
        makeCells("ooooo");
        scene()->setFrameRange(1, 2, 6, 0);
    } else if (state == "layer ends before the range") {
        makeCells("oooooo");
        scene()->insertLayer(std::make_shared<Model::StrokeLayer>(Qt::black, scene()->frameSize()), 3);
        scene()->moveLayer(3, 0);
        scene()->setFrameRange(4, 6, 5, 0);
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
    const QString notYet = QStringLiteral("Not in this version yet");
    for (const QAction *each : Model::ActionManager::instance()->actions()) {
        const QString key = each->property("MRActionName").toString();
        const auto which = MR::Action(QMetaEnum::fromType<MR::Action>().keyToValue(key.toLatin1()));
        const QString obstacle = ActionStates::obstacle(which, {});
        if (obstacle == notYet)
            continue;
        if (needless.contains(which))
            QVERIFY2(obstacle.isEmpty(), qPrintable(key));
        else if (which == DecreasePenSize || which == IncreasePenSize)
            QVERIFY2(obstacle.endsWith("size for this tool"), qPrintable(key));
        else
            QVERIFY2(obstacle == "No scene is open", qPrintable(key));
    }
    QCOMPARE(ActionStates::obstacle(Import, {}), notYet);
}

void tst_ActionStates::addStateRows()
{
    QTest::addColumn<QByteArray>("state");
    for (const char *state :
         {"new scene", "on the first", "on a hold", "on an original", "behind the last", "selection",
          "part of the frames", "drawn on", "between key drawings", "far behind the range",
          "layer ends before the range", "top layer", "bottom layer", "above a reference layer", "all linked"})
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
    const Actions keySteps{SkipBackToKeyDrawing, SkipForwardToKeyDrawing};
    const Actions stepsBack{StepBack, StepBackSkippingLocalClones, SkipBackToKeyDrawing, JumpToStart};
    // Nothing is drawn, and no key drawing is marked.
    const Actions inkless{ClearDrawingMakingBlank, PickUpAllOfThisDrawing, CollapseVectorData};
    const Actions blank = keySteps + inkless + Actions{UnmarkAllKeyDrawings};
    const Actions cellless{StepForward, StepForwardSkippingLocalClones, DiscardDrawing, CutDrawing, MarkAsKeyDrawing};
    const Actions atFirst = onlyFirst + stepsBack + blank;
    const Actions atLastDrawing{StepForwardSkippingLocalClones, JumpToEnd};
    // One can still step on, behind the only cell.
    const Actions oneFrame = range + selected + atFirst + atLastDrawing;
    row("new scene", layers + oneFrame);
    row("on the first", layers + outerRange + selected + atFirst);
    row("on a hold", layers + outerRange + selected + blank + Actions{LoseDrawingMakingHold});
    row("on an original",
        layers + outerRange + selected + blank + atLastDrawing + Actions{DeleteCloneDrawing, TurnCloneIntoOriginal});
    row("behind the last", layers + outerRange + selected + onlyFirst + blank + cellless);
    row("selection", layers + outerRange + stepsBack + blank);
    row("part of the frames",
        layers + selected + keySteps + inkless + Actions{DeleteCloneDrawing, TurnCloneIntoOriginal});
    row("drawn on", layers + outerRange + selected + atFirst - inkless);
    row("between key drawings",
        layers + outerRange + selected + inkless + Actions{DeleteCloneDrawing, TurnCloneIntoOriginal});
    row("far behind the range", layers + outerRange - Actions{RangeEndStepForward, RangeEndToLastFrame} +
                                    Actions{RangeEndStepBack, RangeStartStepForward} + selected + onlyFirst + blank +
                                    cellless);
    row("layer ends before the range",
        selected + blank +
            Actions{DeleteCloneDrawing, TurnCloneIntoOriginal, RangeEndStepForward, RangeEndToLastFrame, LayerBelow,
                    LayerBottom, MergeLayerDown, UnlinkAllLayers, DiscardAudio});
    const Actions oneFrameSilent = oneFrame + Actions{DiscardAudio};
    row("top layer", oneFrameSilent + Actions{LayerAbove, LayerTop, UnlinkAllLayers});
    row("bottom layer", oneFrameSilent + Actions{LayerBelow, LayerBottom, MergeLayerDown});
    row("above a reference layer", oneFrameSilent + Actions{LayerAbove, LayerTop, MergeLayerDown, UnlinkAllLayers});
    row("all linked", layers - Actions{UnlinkAllLayers} + oneFrame + Actions{LinkAllLayers});
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
        // What was cut out would be brought home, and be a change to be asked about.
        if (action(DropFloatingSelection)->isEnabled())
            action(DropFloatingSelection)->trigger();
        newCleanScene();
        makeState(state);
        if (!action(which)->isEnabled())
            continue;
        const SceneSnapshot before(*scene());
        action(which)->trigger();
        QVERIFY2(scene()->undoStack()->count() == 1, qPrintable(keyOf(which)));
        QVERIFY2(!before.diff(SceneSnapshot(*scene())).isEmpty(), qPrintable(keyOf(which)));
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
                                   DrawSettings,
                                   EraseSettings,
                                   CustomizeBacklight,
                                   XSheetShow,
                                   SlideMode,
                                   AddClonesMode,
                                   ThumbnailSizeLarge,
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
    // The line that is being drawn takes the place of what could be done again.
    press(paperPoint(0, 0));
    moveTo(paperPoint(40, 20));
    QVERIFY(!action(Redo)->isEnabled() && action(Undo)->isEnabled());
    release(paperPoint(40, 20));
}

void tst_ActionStates::playNeedsSeveralFrames()
{
    QVERIFY(!action(Play)->isEnabled() && !action(ReturnFlip)->isEnabled());
    action(AddBlankDrawing)->trigger();
    QVERIFY(action(Play)->isEnabled() && action(ReturnFlip)->isEnabled());
    action(Undo)->trigger();
    QVERIFY(!action(Play)->isEnabled());
}

void tst_ActionStates::stepsEndPlaybackWhereverTheyLead()
{
    makeCells("oo");
    QVERIFY(!action(StepBack)->isEnabled() && !action(JumpToStart)->isEnabled());
    action(Play)->trigger();
    for (const MR::Action which : {StepBack, StepForward, StepBackSkippingLocalClones, StepForwardSkippingLocalClones,
                                   SkipBackToKeyDrawing, SkipForwardToKeyDrawing, JumpToStart, JumpToEnd})
        QVERIFY2(action(which)->isEnabled(), qPrintable(keyOf(which)));
    action(StepBack)->trigger();
    QVERIFY(!action(StepBack)->isEnabled());
    QCOMPARE(scene()->scrubFrame(), -1);
}

void tst_ActionStates::clearingNeedsSomethingDrawn()
{
    makeCells("oo");
    QVERIFY(!action(ClearDrawingMakingBlank)->isEnabled());
    QVERIFY(action(ClearDrawingMakingBlank)->toolTip().endsWith("\nThere is nothing drawn here"));
    press(paperPoint(0, 0));
    moveTo(paperPoint(50, 0));
    QVERIFY(action(ClearDrawingMakingBlank)->isEnabled());
    release(paperPoint(50, 0));
    QVERIFY(action(ClearDrawingMakingBlank)->isEnabled());
    goTo(2);
    QVERIFY(!action(ClearDrawingMakingBlank)->isEnabled());
    select(1, 2);
    QVERIFY(action(ClearDrawingMakingBlank)->isEnabled());
    m_window->currentScene()->clearSelection();
    goTo(1);
    action(ClearDrawingMakingBlank)->trigger();
    QVERIFY(!action(ClearDrawingMakingBlank)->isEnabled());
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

void tst_ActionStates::sizeStepsEndAtTheirLimits_data()
{
    QTest::addColumn<MR::Action>("tool");
    QTest::newRow("pen") << Marker;
    QTest::newRow("eraser") << VinylEraser;
}

void tst_ActionStates::sizeStepsEndAtTheirLimits()
{
    QFETCH(MR::Action, tool);
    action(tool)->trigger();
    auto *current = qobject_cast<Model::DrawingTool *>(Model::ToolManager::instance()->currentTool());
    current->setSizeRangePercent(40, 60);
    QVERIFY(action(DecreasePenSize)->isEnabled() && action(IncreasePenSize)->isEnabled());
    int steps = 0;
    for (; action(DecreasePenSize)->isEnabled() && steps < 100; ++steps) {
        const double before = current->sizeMaxPercent();
        action(DecreasePenSize)->trigger();
        QVERIFY(current->sizeMaxPercent() < before);
    }
    QCOMPARE(current->sizeMaxPercent(), 0.0);
    QVERIFY(action(IncreasePenSize)->isEnabled());
    current->setSizeRangePercent(40, 60);
    for (; action(IncreasePenSize)->isEnabled() && steps < 200; ++steps) {
        const double before = current->sizeMinPercent();
        action(IncreasePenSize)->trigger();
        QVERIFY(current->sizeMinPercent() > before);
    }
    QCOMPARE(current->sizeMinPercent(), 100.0);
    QVERIFY(action(DecreasePenSize)->isEnabled());
    QVERIFY(action(IncreasePenSize)->toolTip().endsWith("\nThere is no larger size for this tool"));
    // The other tool has a size of its own.
    action(tool == Marker ? VinylEraser : Marker)->trigger();
    QVERIFY(action(IncreasePenSize)->isEnabled());
    action(ResetDrawingUserSettings)->trigger();
    action(ResetErasingUserSettings)->trigger();
}

void tst_ActionStates::zoomStepsEndAtTheLimitsOfThePaper()
{
    action(ViewToX1)->trigger();
    for (int steps = 0; action(ZoomIn)->isEnabled() && steps < 30; ++steps) {
        const double before = paper()->zoomLevel();
        action(ZoomIn)->trigger();
        QVERIFY(paper()->zoomLevel() > before);
    }
    QCOMPARE(paper()->zoomLevel(), 16.0);
    QVERIFY(action(ZoomIn)->toolTip().endsWith("\nThe paper is shown as large as it can be"));
    for (int steps = 0; action(ZoomOut)->isEnabled() && steps < 30; ++steps) {
        const double before = paper()->zoomLevel();
        action(ZoomOut)->trigger();
        QVERIFY(paper()->zoomLevel() < before);
    }
    QCOMPARE(paper()->zoomLevel(), 0.0625);
    QVERIFY(action(ZoomOut)->toolTip().endsWith("\nThe paper is shown as small as it can be"));
    QVERIFY(action(ZoomIn)->isEnabled());
    paper()->setZoomLevel(0.07);
    QVERIFY(action(ZoomOut)->isEnabled());
    paper()->resetView();
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
