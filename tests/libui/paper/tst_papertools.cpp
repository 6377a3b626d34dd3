#include "libmodel/tools/fixedcursortools.h"
#include "libmodel/tools/toolmanager.h"
#include "libmodel/tools/zprtool.h"
#include "paperhand.h"
#include "support/glfixture.h"

#include <QSignalSpy>
#include <QTest>

#include <cmath>

using Model::Tool;
using TestSupport::addDevices;
using TestSupport::answerOffPegs;
using TestSupport::Hand;
using TestSupport::isNear;
using TestSupport::PaperStage;
using TestSupport::toolOf;

/// What every tool makes of press, move and release, and what the view tools do to the view.
class tst_PaperTools : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void everyToolDoesItsWork_data();
    void everyToolDoesItsWork();
    void zoomDragTellsTheLevelOnShow_data() { addDevices(); }
    void zoomDragTellsTheLevelOnShow();
    void rotateDragTurnsAboutTheViewCentre_data() { addDevices(); }
    void rotateDragTurnsAboutTheViewCentre();
    void zprZoneIsFixedAtThePress_data();
    void zprZoneIsFixedAtThePress();
    void zprToolIsToldThePressPosition();
    void zprCursorFollowsTheZones();
    void zprCursorIsRightFromTheStart();
    void doubleTapSetsTheViewBack_data();
    void doubleTapSetsTheViewBack();
    void inputIsAnnouncedToAssistiveTechnology();
};

void tst_PaperTools::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void tst_PaperTools::everyToolDoesItsWork_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("pen");
    QTest::addColumn<QString>("work");
    const char *works[] = {"stroke", "stroke", "view",    "view",  "view",    "view",   "frame",
                           "lasso",  "lasso",  "nothing", "scrub", "nothing", "nothing"};
    for (int type = 0; type <= 12; ++type) {
        for (const bool pen : {true, false})
            QTest::addRow("%d by %s", type, pen ? "pen" : "mouse") << type << pen << QString::fromLatin1(works[type]);
    }
}

void tst_PaperTools::everyToolDoesItsWork()
{
    QFETCH(int, type);
    QFETCH(bool, pen);
    QFETCH(QString, work);
    PaperStage stage;
    answerOffPegs(stage);
    const QSignalSpy frames(stage.paper.get(), &UI::Paper::offPegsTransformChanged);
    const QSignalSpy lassos(stage.paper.get(), &UI::Paper::lassoingCompleted);
    const QSignalSpy scrubs(stage.paper.get(), &UI::Paper::scrubOffsetChanged);
    const QSignalSpy stamps(stage.paper.get(), &UI::Paper::floatingSelectionStamped);
    const QTransform view = stage.paper->view().widgetToDesk();
    stage.paper->setMinMaxScrubOffset(-100, 100);
    stage.useTool(static_cast<Tool::Type>(type));
    Hand hand(stage, pen);
    hand.press({240, 210});
    QVERIFY(stage.paper->isDevicePressed());
    hand.move({262, 220});
    hand.move({280, 230});
    hand.release({280, 230});

    QVERIFY(!stage.paper->isDevicePressed());
    QVERIFY(!stage.scene()->hasActiveStroke());
    QCOMPARE(stage.strokes.size(), size_t(work == QLatin1String("stroke") ? 1 : 0));
    QCOMPARE(stage.paper->view().widgetToDesk() != view, work == QLatin1String("view"));
    QCOMPARE(frames.count(), work == QLatin1String("frame") ? 1 : 0);
    QCOMPARE(stage.paper->view().isOffPegs(), work == QLatin1String("frame"));
    QCOMPARE(lassos.count(), work == QLatin1String("lasso") ? 1 : 0);
    QCOMPARE(scrubs.count() > 0, work == QLatin1String("scrub"));
    QCOMPARE(stamps.count(), 0);
    // What the pointer does afterwards, without a contact, changes nothing.
    const QTransform settled = stage.paper->view().widgetToPaper();
    stage.hover({300, 300});
    QVERIFY(stage.paper->view().widgetToPaper() == settled);
}

void tst_PaperTools::zoomDragTellsTheLevelOnShow()
{
    QFETCH(bool, pen);
    PaperStage stage;
    stage.useTool(Tool::Type::Zoom);
    const QSignalSpy levels(stage.paper.get(), &UI::Paper::zoomLevelChanged);
    const QPointF held = stage.toPaper({200, 150});
    Hand hand(stage, pen);
    hand.press({200, 150});
    hand.move({250, 200});
    // 50 of 500 and 50 of 400, times 5, plus 1.
    const double level = std::hypot(0.1, 0.125) * 5.0 + 1.0;
    QCOMPARE(levels.count(), 1);
    QVERIFY(std::abs(levels.last().first().toDouble() - level) < 1e-6);
    QVERIFY(std::abs(stage.paper->zoomLevel() - level) < 1e-6);
    QVERIFY(isNear(stage.toWidget(held), {200, 150}));
    hand.release({250, 200});
    QCOMPARE(levels.count(), 1);
    QVERIFY(std::abs(stage.paper->view().zoomLevel() - level) < 1e-6);
}

void tst_PaperTools::rotateDragTurnsAboutTheViewCentre()
{
    QFETCH(bool, pen);
    PaperStage stage;
    stage.useTool(Tool::Type::Rotate);
    Hand hand(stage, pen);
    // From the right of the centre to above it: a quarter counter-clockwise.
    hand.drag({350, 200}, {250, 100});
    QVERIFY(std::abs(stage.paper->view().rotation() - 90.0) < 1e-6);
    QVERIFY(isNear(stage.toWidget({200, 150}), {250, 200}));
    stage.paper->resetView();
    stage.paper->setMirrorView(true);
    const QPointF held = stage.toPaper({350, 200});
    hand.drag({350, 200}, {250, 100});
    QVERIFY(isNear(stage.toWidget(held), {250, 100}));
}

void tst_PaperTools::zprZoneIsFixedAtThePress_data()
{
    QTest::addColumn<QPointF>("press");
    QTest::addColumn<QString>("does");
    // 500 x 400: circles of 80 and 160 about (250, 200).
    QTest::addRow("pan zone") << QPointF(250, 150) << QStringLiteral("pan");
    QTest::addRow("rotate zone") << QPointF(250, 80) << QStringLiteral("rotate");
    QTest::addRow("zoom zone") << QPointF(40, 30) << QStringLiteral("zoom");
}

void tst_PaperTools::zprZoneIsFixedAtThePress()
{
    QFETCH(QPointF, press);
    QFETCH(QString, does);
    PaperStage stage;
    stage.useTool(Tool::Type::ZPR);
    Hand hand(stage, true);
    const QPointF held = stage.toPaper(press);
    hand.press(press);
    for (const QPointF to : {QPointF(260, 210), QPointF(380, 200), QPointF(480, 390), QPointF(300, 90)}) {
        hand.move(to);
        const UI::ViewTransform &view = stage.paper->view();
        QCOMPARE(std::abs(view.shownZoomLevel() - 1.0) > 1e-6, does == QLatin1String("zoom"));
        QCOMPARE(std::abs(view.shownRotation()) > 1e-6, does == QLatin1String("rotate"));
        QCOMPARE(isNear(stage.toWidget(held), to), does == QLatin1String("pan"));
        if (does == QLatin1String("rotate"))
            QVERIFY(isNear(stage.toWidget({200, 150}), {250, 200}));
    }
    hand.release({300, 90});
}

void tst_PaperTools::zprToolIsToldThePressPosition()
{
    PaperStage stage;
    stage.useTool(Tool::Type::ZPR);
    Hand hand(stage, false);
    hand.press({123, 77});
    QCOMPARE(toolOf<Model::ZPRTool>(Tool::Type::ZPR)->pressPosGlobal(), stage.paper->mapToGlobal(QPoint(123, 77)));
    hand.release({123, 77});
}

void tst_PaperTools::zprCursorFollowsTheZones()
{
    using Cursor = Model::ZPRTool::ZPRCursorType;
    PaperStage stage;
    stage.useTool(Tool::Type::ZPR);
    const auto *tool = toolOf<Model::ZPRTool>(Tool::Type::ZPR);
    stage.hover({250, 150});
    QCOMPARE(tool->cursorType(), Cursor::Pan);
    stage.hover({250, 80});
    QCOMPARE(tool->cursorType(), Cursor::Rotate);
    stage.hover({40, 30});
    QCOMPARE(tool->cursorType(), Cursor::Zoom);
    // While it is down the cursor stays, and takes up what lies under it afterwards.
    Hand hand(stage, false);
    hand.press({40, 30});
    hand.move({250, 150});
    QCOMPARE(tool->cursorType(), Cursor::Zoom);
    hand.release({250, 150});
    QCOMPARE(tool->cursorType(), Cursor::Pan);
}

void tst_PaperTools::zprCursorIsRightFromTheStart()
{
    PaperStage stage;
    stage.hover({250, 80});
    stage.useTool(Tool::Type::ZPR);
    QCOMPARE(toolOf<Model::ZPRTool>(Tool::Type::ZPR)->cursorType(), Model::ZPRTool::ZPRCursorType::Rotate);
    QCOMPARE(stage.paper->cursor().pixmap().toImage(),
             toolOf<Model::RotateTool>(Tool::Type::Rotate)->cursor().pixmap().toImage());
}

void tst_PaperTools::doubleTapSetsTheViewBack_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<bool>("pen");
    QTest::addColumn<QString>("what");
    for (const bool pen : {true, false}) {
        const char *device = pen ? "pen" : "mouse";
        QTest::addRow("hand, %s", device) << 2 << QPointF(90, 90) << pen << QStringLiteral("pan");
        QTest::addRow("zoom, %s", device) << 3 << QPointF(90, 90) << pen << QStringLiteral("zoom");
        QTest::addRow("rotate, %s", device) << 4 << QPointF(90, 90) << pen << QStringLiteral("rotate");
        QTest::addRow("pan zone, %s", device) << 5 << QPointF(250, 150) << pen << QStringLiteral("pan");
        QTest::addRow("rotate zone, %s", device) << 5 << QPointF(250, 80) << pen << QStringLiteral("rotate");
        QTest::addRow("zoom zone, %s", device) << 5 << QPointF(40, 30) << pen << QStringLiteral("zoom");
    }
}

void tst_PaperTools::doubleTapSetsTheViewBack()
{
    QFETCH(int, type);
    QFETCH(QPointF, position);
    QFETCH(bool, pen);
    QFETCH(QString, what);
    PaperStage stage;
    stage.paper->setZoomLevel(2.0);
    stage.paper->rotatePaperTo(30.0);
    stage.wheel({100, 100}, {40, 25}, {});
    stage.useTool(static_cast<Tool::Type>(type));
    Hand(stage, pen).tapTwice(position);
    const UI::ViewTransform &view = stage.paper->view();
    QCOMPARE(std::abs(view.zoomLevel() - 1.0) < 1e-6, what == QLatin1String("zoom"));
    QCOMPARE(std::abs(view.rotation()) < 1e-6, what == QLatin1String("rotate"));
    QCOMPARE(isNear(stage.toWidget({200, 150}), {250, 200}), what == QLatin1String("pan"));
    QVERIFY(!stage.paper->isDevicePressed());
}

void tst_PaperTools::inputIsAnnouncedToAssistiveTechnology()
{
    const PaperStage stage;
    QVERIFY(!stage.paper->accessibleName().isEmpty());
    QVERIFY(!stage.paper->accessibleDescription().isEmpty());
    QVERIFY(stage.paper->focusPolicy() & Qt::TabFocus);
    QVERIFY(stage.paper->focusPolicy() & Qt::ClickFocus);
}

QTEST_MAIN(tst_PaperTools)
#include "tst_papertools.moc"
