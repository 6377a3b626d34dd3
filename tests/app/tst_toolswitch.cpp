#include "app/toolswitch.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/tools/drawingtool.h"
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

QTEST_MAIN(tst_ToolSwitch)
#include "tst_toolswitch.moc"
