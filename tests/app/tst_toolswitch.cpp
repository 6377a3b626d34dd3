#include "app/toolswitch.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/tools/drawingtool.h"
#include "libmodel/tools/pentool.h"
#include "libmodel/tools/toolmanager.h"
#include "support/isolatedstore.h"

#include <QAction>
#include <QSignalSpy>
#include <QTest>

// Resource initialisation has to be written outside of any namespace.
static void registerModelResources()
{
    Q_INIT_RESOURCE(model);
}

using Model::Tool;
using Model::ToolManager;
using End = QPointingDevice::PointerType;

namespace {

QAction *action(MR::Action which)
{
    return Model::ActionManager::instance()->action(which);
}

ToolManager *tools()
{
    return ToolManager::instance();
}

} // namespace

class tst_ToolSwitch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void actionChoosesATool_data();
    void actionChoosesATool();
    void toggleGoesBetweenPenAndEraser();
    void checksFollowTheTools();
    void chosenPenStaysCheckedWhileErasing();
    void neitherDrawNorEraseIsCheckedForAnotherTool();
    void handToolReturnsToTheToolBefore();
    void turnedStylusIsUsedOnTheWayBackToDrawing();
    void lassoComesBackAndKeepsTheEndForLater();
    void everyChangeIsAnnouncedAhead();
    void sizeStepsAndResetsReachTheTools();
    void actionTurnsItsToolOnAndOff_data();
    void actionTurnsItsToolOnAndOff();
    void oneToolIsBorrowedByActionAtATime();
    void floatingSelectionChecksItsAction();
    void presetTakesItsPenUp_data();
    void presetTakesItsPenUp();
    void presetStaysTheRangeOfItsPen();
    void toggleUnderABorrowedToolGoesOnFromTheChosenOne();
    void heldToolUncoversTheBorrowedOne();
    void heldToolCanBeReleasedUnderAnother();
    void choosingAToolLetsGoOfAllOthers();
    void toolSetByOthersLetsGoOfAllOthers();
    void penAdjustmentIsNoChoice();
    void turnedStylusIsUsedWhenAHeldToolIsReleased();
    void nothingIsAnnouncedWhereNothingChanges();
    void middleButtonUncoversTheToolOfAnAction_data();
    void middleButtonUncoversTheToolOfAnAction();
    void middleButtonLeavesWhatIsHeldAndWhatIsBeneath();
    void middleButtonEndsWhereItsActionIsDisabled();
    void handKeyReleasedUnderTheMiddleButtonTakesNothingAway();
    void toolTakenUpOverTheMiddleButtonStays();
    void leavingTheFloatingSelectionIsAskedAbout_data();
    void leavingTheFloatingSelectionIsAskedAbout();
    void refusedLeaveChangesNothing();
    void borrowedToolsDoNotLeaveTheFloatingSelection();
    void allThatIsBorrowedIsGivenBack();
    void penAdjustmentIsGivenBackWithTheRest();
    void toolToDrawWithIsTheStylussOrTheLatest();

private:
    std::unique_ptr<IsolatedStore> m_store;
    std::unique_ptr<ToolSwitch> m_switch;
};

void tst_ToolSwitch::initTestCase()
{
    registerModelResources();
    m_store = std::make_unique<IsolatedStore>();
    Model::ActionManager::instance()->createActions();
    m_switch = std::make_unique<ToolSwitch>(nullptr);
}

void tst_ToolSwitch::init()
{
    m_switch->setTabletPointerType(End::Pen);
    action(MR::Action::Marker)->trigger();
}

void tst_ToolSwitch::actionChoosesATool_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<Tool::Type>("type");
    QTest::addColumn<int>("kind");
    QTest::newRow("pencil") << MR::Action::Pencil << Tool::Type::Pen << 0;
    QTest::newRow("marker") << MR::Action::Marker << Tool::Type::Pen << 1;
    QTest::newRow("brush") << MR::Action::Brush << Tool::Type::Pen << 2;
    QTest::newRow("kneaded eraser") << MR::Action::KneadedEraser << Tool::Type::Eraser << 0;
    QTest::newRow("rubber eraser") << MR::Action::RubberEraser << Tool::Type::Eraser << 1;
    QTest::newRow("vinyl eraser") << MR::Action::VinylEraser << Tool::Type::Eraser << 2;
}

void tst_ToolSwitch::actionChoosesATool()
{
    QFETCH(MR::Action, which);
    QFETCH(Tool::Type, type);
    QFETCH(int, kind);
    // The second trigger finds the action checked and must leave it so.
    for (int i = 0; i < 2; ++i) {
        action(which)->trigger();
        QCOMPARE(tools()->currentToolType(), type);
        const int current =
            type == Tool::Type::Pen ? int(tools()->currentPenType()) : int(tools()->currentEraserType());
        QCOMPARE(current, kind);
        QVERIFY(action(which)->isChecked());
    }
}

void tst_ToolSwitch::toggleGoesBetweenPenAndEraser()
{
    action(MR::Action::DrawEraseToggle)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Eraser);
    action(MR::Action::DrawEraseToggle)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
}

void tst_ToolSwitch::checksFollowTheTools()
{
    QVERIFY(action(MR::Action::Draw)->isChecked());
    QVERIFY(!action(MR::Action::Erase)->isChecked());
    tools()->setCurrentTool(Tool::Type::Eraser, 0);
    QVERIFY(!action(MR::Action::Draw)->isChecked());
    QVERIFY(action(MR::Action::Erase)->isChecked());
}

void tst_ToolSwitch::chosenPenStaysCheckedWhileErasing()
{
    action(MR::Action::VinylEraser)->trigger();
    QVERIFY(action(MR::Action::Marker)->isChecked());
    QVERIFY(!action(MR::Action::Pencil)->isChecked());
    QVERIFY(!action(MR::Action::Brush)->isChecked());
    QVERIFY(action(MR::Action::VinylEraser)->isChecked());
}

void tst_ToolSwitch::neitherDrawNorEraseIsCheckedForAnotherTool()
{
    action(MR::Action::Pan)->trigger();
    QVERIFY(!action(MR::Action::Draw)->isChecked());
    QVERIFY(!action(MR::Action::Erase)->isChecked());
    QVERIFY(action(MR::Action::NonDrawingAction)->isChecked());
    QVERIFY(action(MR::Action::Pan)->isChecked());
    action(MR::Action::Draw)->trigger();
    QVERIFY(!action(MR::Action::NonDrawingAction)->isChecked());
    QVERIFY(!action(MR::Action::Pan)->isChecked());
}

void tst_ToolSwitch::handToolReturnsToTheToolBefore()
{
    action(MR::Action::KneadedEraser)->trigger();
    action(MR::Action::Pan)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Hand);
    action(MR::Action::Pan)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Eraser);
}

void tst_ToolSwitch::turnedStylusIsUsedOnTheWayBackToDrawing()
{
    action(MR::Action::Pan)->trigger();
    m_switch->setTabletPointerType(End::Eraser);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Hand);
    action(MR::Action::Pan)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Eraser);
}

void tst_ToolSwitch::lassoComesBackAndKeepsTheEndForLater()
{
    m_switch->setTool(Tool::Type::Lasso, true);
    m_switch->setTabletPointerType(End::Eraser);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Lasso);
    action(MR::Action::Pan)->trigger();
    action(MR::Action::Pan)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Lasso);
    m_switch->setTool(Tool::Type::Lasso, false);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Eraser);
}

void tst_ToolSwitch::everyChangeIsAnnouncedAhead()
{
    QSignalSpy spy(m_switch.get(), &ToolSwitch::aboutToChangeTool);
    Tool::Type atAnnouncement = Tool::Type::None;
    connect(m_switch.get(), &ToolSwitch::aboutToChangeTool, &spy, [&] { atAnnouncement = tools()->currentToolType(); });
    action(MR::Action::VinylEraser)->trigger();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(atAnnouncement, Tool::Type::Pen);
}

void tst_ToolSwitch::sizeStepsAndResetsReachTheTools()
{
    const auto *pen = static_cast<const Model::DrawingTool *>(tools()->currentTool());
    const double radius = pen->radiusBase() + pen->radiusRange();
    action(MR::Action::IncreasePenSize)->trigger();
    QVERIFY(pen->radiusBase() + pen->radiusRange() > radius);
    action(MR::Action::DecreasePenSize)->trigger();
    QVERIFY(std::abs(pen->radiusBase() + pen->radiusRange() - radius) < 1e-6);
    action(MR::Action::IncreasePenSize)->trigger();
    action(MR::Action::ResetDrawingUserSettings)->trigger();
    QVERIFY(std::abs(pen->radiusBase() + pen->radiusRange() - radius) < 1e-6);
}

void tst_ToolSwitch::actionTurnsItsToolOnAndOff_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<Tool::Type>("type");
    QTest::addColumn<bool>("hasCheck");
    QTest::newRow("hand") << MR::Action::Pan << Tool::Type::Hand << true;
    QTest::newRow("zoom") << MR::Action::Zoom << Tool::Type::Zoom << true;
    QTest::newRow("rotate") << MR::Action::Rotate << Tool::Type::Rotate << true;
    QTest::newRow("all in one") << MR::Action::ZPR << Tool::Type::ZPR << false;
    QTest::newRow("off pegs") << MR::Action::OffPegs << Tool::Type::OffPegs << true;
    QTest::newRow("lasso") << MR::Action::Lasso << Tool::Type::Lasso << true;
    QTest::newRow("cutter") << MR::Action::Cutter << Tool::Type::Cutter << true;
}

void tst_ToolSwitch::actionTurnsItsToolOnAndOff()
{
    QFETCH(MR::Action, which);
    QFETCH(Tool::Type, type);
    QFETCH(bool, hasCheck);
    for (const Tool::Type base : {Tool::Type::Pen, Tool::Type::Eraser}) {
        tools()->setCurrentTool(base, 0);
        action(which)->trigger();
        QCOMPARE(tools()->currentToolType(), type);
        QCOMPARE(action(which)->isChecked(), hasCheck);
        QVERIFY(action(MR::Action::NonDrawingAction)->isChecked());
        action(which)->trigger();
        QCOMPARE(tools()->currentToolType(), base);
        QVERIFY(!action(which)->isChecked());
        QVERIFY(!action(MR::Action::NonDrawingAction)->isChecked());
    }
}

void tst_ToolSwitch::oneToolIsBorrowedByActionAtATime()
{
    action(MR::Action::Pan)->trigger();
    action(MR::Action::Zoom)->trigger();
    QVERIFY(!action(MR::Action::Pan)->isChecked());
    action(MR::Action::Zoom)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
}

void tst_ToolSwitch::floatingSelectionChecksItsAction()
{
    tools()->setCurrentTool(Tool::Type::FloatingSelection, 0);
    QVERIFY(action(MR::Action::FloatingSelection)->isChecked());
    action(MR::Action::Pan)->trigger();
    QVERIFY(!action(MR::Action::FloatingSelection)->isChecked());
    action(MR::Action::Pan)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::FloatingSelection);
    action(MR::Action::Draw)->trigger();
    QVERIFY(!action(MR::Action::FloatingSelection)->isChecked());
}

void tst_ToolSwitch::presetTakesItsPenUp_data()
{
    using Pen = Tool::PenType;
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<Tool::PenType>("pen");
    // In percent of the pen's limits, as the program comes with them.
    QTest::addColumn<double>("sizeLower");
    QTest::addColumn<double>("sizeUpper");
    QTest::newRow("pencil 1") << MR::Action::PencilPreset1 << Pen::Pencil << 5.0 << 12.31;
    QTest::newRow("pencil 2") << MR::Action::PencilPreset2 << Pen::Pencil << 8.72 << 32.82;
    QTest::newRow("pencil 3") << MR::Action::PencilPreset3 << Pen::Pencil << 1.17 << 8.21;
    QTest::newRow("marker 1") << MR::Action::MarkerPreset1 << Pen::Marker << 2.33 << 4.33;
    QTest::newRow("marker 2") << MR::Action::MarkerPreset2 << Pen::Marker << 2.83 << 10.75;
    QTest::newRow("marker 3") << MR::Action::MarkerPreset3 << Pen::Marker << 1.67 << 22.0;
    QTest::newRow("brush 1") << MR::Action::BrushPreset1 << Pen::Brush << 0.0 << 6.67;
    QTest::newRow("brush 2") << MR::Action::BrushPreset2 << Pen::Brush << 0.27 << 16.5;
    QTest::newRow("brush 3") << MR::Action::BrushPreset3 << Pen::Brush << 3.07 << 38.97;
}

void tst_ToolSwitch::presetTakesItsPenUp()
{
    QFETCH(MR::Action, which);
    QFETCH(Tool::PenType, pen);
    QFETCH(double, sizeLower);
    QFETCH(double, sizeUpper);
    for (const Tool::Type base : {Tool::Type::Pen, Tool::Type::Eraser, Tool::Type::Hand}) {
        tools()->setCurrentTool(base, 0);
        action(which)->trigger();
        QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
        QCOMPARE(tools()->currentPenType(), pen);
        const auto *tool = static_cast<const Model::DrawingTool *>(tools()->currentTool());
        QCOMPARE(tool->sizeMinPercent(), sizeLower);
        QCOMPARE(tool->sizeMaxPercent(), sizeUpper);
    }
    action(MR::Action::ResetDrawingUserSettings)->trigger();
}

void tst_ToolSwitch::presetStaysTheRangeOfItsPen()
{
    action(MR::Action::BrushPreset3)->trigger();
    tools()->setCurrentTool(Tool::Type::Eraser, 0);
    // As the next start of the program does.
    Model::DrawingTool *brush = tools()->pen(Tool::PenType::Brush);
    ToolManager::loadPreset(brush, MR::ToolPreset::Default);
    QCOMPARE(brush->sizeMaxPercent(), 38.97);
    action(MR::Action::ResetDrawingUserSettings)->trigger();
}

void tst_ToolSwitch::toggleUnderABorrowedToolGoesOnFromTheChosenOne()
{
    action(MR::Action::Pan)->trigger();
    action(MR::Action::DrawEraseToggle)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Eraser);
    action(MR::Action::Pan)->trigger();
    action(MR::Action::DrawEraseToggle)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
}

void tst_ToolSwitch::heldToolUncoversTheBorrowedOne()
{
    action(MR::Action::Pan)->trigger();
    m_switch->holdTool(Tool::Type::ZPR);
    m_switch->holdTool(Tool::Type::OffPegs);
    QCOMPARE(tools()->currentToolType(), Tool::Type::OffPegs);
    m_switch->releaseTool(Tool::Type::OffPegs);
    QCOMPARE(tools()->currentToolType(), Tool::Type::ZPR);
    m_switch->releaseTool(Tool::Type::ZPR);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Hand);
    // It is not held.
    m_switch->releaseTool(Tool::Type::Hand);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Hand);
    m_switch->setTool(Tool::Type::Hand, false);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
}

void tst_ToolSwitch::heldToolCanBeReleasedUnderAnother()
{
    m_switch->holdTool(Tool::Type::Hand);
    m_switch->holdTool(Tool::Type::Zoom);
    m_switch->releaseTool(Tool::Type::Hand);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Zoom);
    m_switch->releaseTool(Tool::Type::Zoom);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
}

void tst_ToolSwitch::choosingAToolLetsGoOfAllOthers()
{
    m_switch->holdTool(Tool::Type::ZPR);
    action(MR::Action::Cutter)->trigger();
    m_switch->releaseTool(Tool::Type::ZPR);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Cutter);
}

void tst_ToolSwitch::toolSetByOthersLetsGoOfAllOthers()
{
    m_switch->holdTool(Tool::Type::ZPR);
    tools()->setCurrentTool(Tool::Type::FloatingSelection, 0);
    m_switch->releaseTool(Tool::Type::ZPR);
    QCOMPARE(tools()->currentToolType(), Tool::Type::FloatingSelection);
    tools()->setCurrentTool(Tool::Type::Hand, 0);
    QVERIFY(action(MR::Action::Pan)->isChecked());
    m_switch->holdTool(Tool::Type::ZPR);
    m_switch->releaseTool(Tool::Type::ZPR);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Hand);
}

void tst_ToolSwitch::penAdjustmentIsNoChoice()
{
    action(MR::Action::VinylEraser)->trigger();
    tools()->setCurrentTool(Tool::Type::PenAdjustment, 0);
    m_switch->holdTool(Tool::Type::OffPegs);
    m_switch->releaseTool(Tool::Type::OffPegs);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Eraser);
}

void tst_ToolSwitch::turnedStylusIsUsedWhenAHeldToolIsReleased()
{
    m_switch->holdTool(Tool::Type::ZPR);
    m_switch->setTabletPointerType(End::Eraser);
    QCOMPARE(tools()->currentToolType(), Tool::Type::ZPR);
    m_switch->releaseTool(Tool::Type::ZPR);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Eraser);
}

void tst_ToolSwitch::nothingIsAnnouncedWhereNothingChanges()
{
    QSignalSpy spy(m_switch.get(), &ToolSwitch::aboutToChangeTool);
    action(MR::Action::Draw)->trigger();
    m_switch->releaseTool(Tool::Type::ZPR);
    m_switch->setTool(Tool::Type::Zoom, false);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
}

void tst_ToolSwitch::middleButtonUncoversTheToolOfAnAction_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<Tool::Type>("type");
    QTest::newRow("zoom") << MR::Action::Zoom << Tool::Type::Zoom;
    QTest::newRow("rotate") << MR::Action::Rotate << Tool::Type::Rotate;
    QTest::newRow("all in one") << MR::Action::ZPR << Tool::Type::ZPR;
    QTest::newRow("off pegs") << MR::Action::OffPegs << Tool::Type::OffPegs;
}

void tst_ToolSwitch::middleButtonUncoversTheToolOfAnAction()
{
    QFETCH(MR::Action, which);
    QFETCH(Tool::Type, type);
    action(which)->trigger();
    m_switch->setPanHeld(true);
    action(MR::Action::Pan)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Hand);
    action(MR::Action::Pan)->trigger();
    m_switch->setPanHeld(false);
    QCOMPARE(tools()->currentToolType(), type);
    QVERIFY(!action(MR::Action::Pan)->isChecked());
    action(which)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
}

void tst_ToolSwitch::middleButtonLeavesWhatIsHeldAndWhatIsBeneath()
{
    action(MR::Action::Pan)->trigger();
    m_switch->holdTool(Tool::Type::Zoom);
    m_switch->setPanHeld(true);
    action(MR::Action::Pan)->trigger();
    action(MR::Action::Pan)->trigger();
    m_switch->setPanHeld(false);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Zoom);
    m_switch->releaseTool(Tool::Type::Zoom);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Hand);
}

void tst_ToolSwitch::middleButtonEndsWhereItsActionIsDisabled()
{
    m_switch->setPanHeld(true);
    action(MR::Action::Pan)->trigger();
    action(MR::Action::Pan)->setEnabled(false);
    m_switch->setPanHeld(false);
    action(MR::Action::Pan)->setEnabled(true);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
    QVERIFY(!action(MR::Action::Pan)->isChecked());
}

void tst_ToolSwitch::handKeyReleasedUnderTheMiddleButtonTakesNothingAway()
{
    m_switch->setPanHeld(true);
    action(MR::Action::Pan)->trigger();
    m_switch->releaseTool(Tool::Type::Hand);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Hand);
    m_switch->setPanHeld(false);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
}

void tst_ToolSwitch::toolTakenUpOverTheMiddleButtonStays()
{
    m_switch->setPanHeld(true);
    action(MR::Action::Pan)->trigger();
    action(MR::Action::Rotate)->trigger();
    m_switch->setPanHeld(false);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Rotate);
    action(MR::Action::Rotate)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Pen);
}

void tst_ToolSwitch::leavingTheFloatingSelectionIsAskedAbout_data()
{
    QTest::addColumn<bool>("isAllowed");
    QTest::addColumn<bool>("isBorrowing");
    QTest::newRow("allowed") << true << false;
    QTest::newRow("refused") << false << false;
    QTest::newRow("allowed, under a borrowed tool") << true << true;
    QTest::newRow("refused, under a borrowed tool") << false << true;
}

void tst_ToolSwitch::leavingTheFloatingSelectionIsAskedAbout()
{
    QFETCH(bool, isAllowed);
    QFETCH(bool, isBorrowing);
    tools()->setCurrentTool(Tool::Type::FloatingSelection, 0);
    if (isBorrowing)
        action(MR::Action::Pan)->trigger();
    QList<Tool::Type> asked;
    m_switch->setLeavingFloatingSelection([&](Tool::Type type) {
        asked << type;
        tools()->setCurrentTool(Tool::Type::FloatingSelection, 0);
        return isAllowed;
    });
    action(MR::Action::Erase)->trigger();
    QCOMPARE(asked, QList<Tool::Type>{Tool::Type::Eraser});
    QCOMPARE(tools()->currentToolType(), isAllowed ? Tool::Type::Eraser : Tool::Type::FloatingSelection);
    QCOMPARE(action(MR::Action::Erase)->isChecked(), isAllowed);
    QCOMPARE(action(MR::Action::FloatingSelection)->isChecked(), !isAllowed);
    m_switch->setLeavingFloatingSelection({});
}

void tst_ToolSwitch::refusedLeaveChangesNothing()
{
    action(MR::Action::Marker)->trigger();
    action(MR::Action::RubberEraser)->trigger();
    tools()->setCurrentTool(Tool::Type::FloatingSelection, 0);
    action(MR::Action::Pan)->trigger();
    const double size = tools()->pen(Tool::PenType::Brush)->sizeMaxPercent();
    m_switch->setLeavingFloatingSelection([](Tool::Type) { return false; });
    for (const MR::Action which : {MR::Action::Erase, MR::Action::Pencil, MR::Action::VinylEraser,
                                   MR::Action::BrushPreset3, MR::Action::Cutter, MR::Action::DrawEraseToggle}) {
        action(which)->trigger();
        QCOMPARE(tools()->currentToolType(), Tool::Type::Hand);
        QCOMPARE(tools()->latestPaperToolType(), Tool::Type::FloatingSelection);
        QCOMPARE(tools()->currentPenType(), Tool::PenType::Marker);
        QCOMPARE(tools()->currentEraserType(), Tool::EraserType::RubberEraser);
        QVERIFY(action(MR::Action::Pan)->isChecked());
        QVERIFY(action(MR::Action::Marker)->isChecked());
        QVERIFY(!action(MR::Action::Cutter)->isChecked());
    }
    QCOMPARE(tools()->pen(Tool::PenType::Brush)->sizeMaxPercent(), size);
    // What is borrowed can still be given back.
    action(MR::Action::Pan)->trigger();
    QCOMPARE(tools()->currentToolType(), Tool::Type::FloatingSelection);
    m_switch->setLeavingFloatingSelection({});
}

void tst_ToolSwitch::borrowedToolsDoNotLeaveTheFloatingSelection()
{
    tools()->setCurrentTool(Tool::Type::FloatingSelection, 0);
    int asked = 0;
    m_switch->setLeavingFloatingSelection([&](Tool::Type) {
        ++asked;
        return true;
    });
    for (const MR::Action which : {MR::Action::Pan, MR::Action::Zoom, MR::Action::Rotate, MR::Action::OffPegs}) {
        action(which)->trigger();
        action(which)->trigger();
        QCOMPARE(tools()->currentToolType(), Tool::Type::FloatingSelection);
    }
    m_switch->holdTool(Tool::Type::Scrubbing);
    m_switch->releaseTool(Tool::Type::Scrubbing);
    m_switch->setTool(Tool::Type::FloatingSelection, true);
    QCOMPARE(asked, 0);
    m_switch->setLeavingFloatingSelection({});
}

void tst_ToolSwitch::allThatIsBorrowedIsGivenBack()
{
    m_switch->setTool(Tool::Type::Lasso, true);
    action(MR::Action::Pan)->trigger();
    m_switch->holdTool(Tool::Type::ZPR);
    m_switch->giveBackAll();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Lasso);
    m_switch->releaseTool(Tool::Type::ZPR);
    QCOMPARE(tools()->currentToolType(), Tool::Type::Lasso);
    m_switch->giveBackAll();
    QCOMPARE(tools()->currentToolType(), Tool::Type::Lasso);
}

void tst_ToolSwitch::penAdjustmentIsGivenBackWithTheRest()
{
    for (const auto &[which, type] :
         {std::pair(MR::Action::Draw, Tool::Type::Pen), std::pair(MR::Action::Erase, Tool::Type::Eraser)}) {
        action(which)->trigger();
        tools()->setCurrentTool(Tool::Type::PenAdjustment, 0);
        m_switch->giveBackAll();
        QCOMPARE(tools()->currentToolType(), type);
    }
}

void tst_ToolSwitch::toolToDrawWithIsTheStylussOrTheLatest()
{
    action(MR::Action::RubberEraser)->trigger();
    m_switch->setTool(Tool::Type::Lasso, true);
    QCOMPARE(m_switch->toolToDrawWith(), Tool::Type::Eraser);
    tools()->setCurrentTool(Tool::Type::FloatingSelection, 0);
    QCOMPARE(m_switch->toolToDrawWith(), Tool::Type::Eraser);
    m_switch->setTabletPointerType(End::Eraser);
    m_switch->setTabletPointerType(End::Pen);
    QCOMPARE(tools()->currentToolType(), Tool::Type::FloatingSelection);
    QCOMPARE(m_switch->toolToDrawWith(), Tool::Type::Pen);
}

QTEST_MAIN(tst_ToolSwitch)
#include "tst_toolswitch.moc"
