#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/tools/offpegstool.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"
#include "libui/paper/viewzones.h"
#include "paperhand.h"
#include "support/glfixture.h"

#include <QFocusEvent>
#include <QSignalSpy>
#include <QTest>

#include <functional>

using Model::Tool;
using TestSupport::Hand;
using TestSupport::PaperStage;
using UI::Paper;

namespace {

/// A press that edits.
struct Edit
{
    const char *name;
    Tool::Type tool;
    QPointF press;
};

const Edit edits[] = {
    {"stroke", Tool::Type::Pen, {240, 210}},
    {"erasing", Tool::Type::Eraser, {240, 210}},
    {"off pegs", Tool::Type::OffPegs, {240, 210}},
    {"button", Tool::Type::OffPegs, {250, 360}},
    {"lasso", Tool::Type::Lasso, {240, 210}},
    {"cutter", Tool::Type::Cutter, {240, 210}},
    {"floating selection", Tool::Type::FloatingSelection, {220, 240}},
    {"stamp", Tool::Type::FloatingSelection, {60, 60}},
};

void addEdits()
{
    QTest::addColumn<int>("edit");
    for (int edit = 0; edit < int(std::size(edits)); ++edit)
        QTest::addRow("%s", edits[edit].name) << edit;
}

/// Two frames off their pegs, the first one active, and a floating selection.
class EditStage : public PaperStage
{
public:
    EditStage()
    {
        scene()->addBlankDrawing(0, 1);
        scene()->setFrameRange(1, 2, 1, 0);
        scene()->setOffPegsTransform(1, QTransform::fromTranslate(30, 20));
        scene()->setOffPegsTransform(2, QTransform::fromTranslate(-50, 0));
        QImage image(160, 140, QImage::Format_Alpha8);
        image.fill(255);
        const QRect place(120, 80, 160, 140);
        mrScene->setFloatingSelection({std::make_unique<Model::BitmapStroke>(image, place), {400, 300}});
        QObject::connect(paper.get(), &Paper::offPegsTransformChanged, paper.get(), [this] { ++told; });
        QObject::connect(paper.get(), &Paper::lassoingCompleted, paper.get(), [this] { ++told; });
        QObject::connect(paper.get(), &Paper::floatingSelectionTransformChanged, paper.get(), [this] { ++told; });
        QObject::connect(paper.get(), &Paper::floatingSelectionStamped, paper.get(), [this] { ++told; });
    }

    /// Ends showing another frame when it is told of an edit, as the end of playback does.
    void answer() { QObject::connect(paper.get(), &Paper::aboutToBeginEdit, scene(), &Model::Scene::unsetScrubFrame); }

    /// Edits that were begun or told so far.
    int edited() const { return told + int(strokes.size()); }

    int told = 0;
};

} // namespace

/// Presses that edit are told ahead, and edit the frame that is on show then.
class tst_PaperEdits : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void editIsAnnouncedBeforeItBegins_data() { addEdits(); }
    void editIsAnnouncedBeforeItBegins();
    void drawingIsAskedForAfterTheEditWasAnnounced();
    void otherPressesAnnounceNoEdit();
    void editOfAnotherFrameOnShowDoesNotBegin_data() { addEdits(); }
    void editOfAnotherFrameOnShowDoesNotBegin();
    void editBeginsOnceTheActiveFrameIsBack_data() { addEdits(); }
    void editBeginsOnceTheActiveFrameIsBack();
    void moveOffThePegsIsThatOfTheActiveFrame();
    void zoneIsTakenOnTheFrameThatCameBack();
    void pushedButtonLeavesAFrameThatIsNotActive();
    void dragThatEndsOverAnotherFrameIsNotTold_data();
    void dragThatEndsOverAnotherFrameIsNotTold();
    void selectionThatIsTakenAwayIsNotStamped();
    void cursorFollowsAFrameThatIsPutBack();
    void whatIsTakenAwayMeanwhileEditsNothing_data();
    void whatIsTakenAwayMeanwhileEditsNothing();
};

void tst_PaperEdits::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void tst_PaperEdits::editIsAnnouncedBeforeItBegins()
{
    QFETCH(int, edit);
    EditStage stage;
    stage.useTool(edits[edit].tool);
    const QTransform view = stage.paper->view().widgetToPaper();
    int announced = 0;
    connect(stage.paper.get(), &Paper::aboutToBeginEdit, this, [&] {
        ++announced;
        QVERIFY(!stage.scene()->hasActiveStroke());
        QCOMPARE(stage.edited(), 0);
        QVERIFY(stage.paper->view().widgetToPaper() == view);
    });
    const QPointF press = edits[edit].press;
    stage.penPress(press);
    QCOMPARE(announced, 1);
    stage.penMove(press + QPointF(2, 1));
    stage.penRelease(press + QPointF(2, 1));
    QCOMPARE(announced, 1);
    QCOMPARE(stage.edited(), 1);
}

void tst_PaperEdits::drawingIsAskedForAfterTheEditWasAnnounced()
{
    PaperStage stage;
    QStringList order;
    connect(stage.paper.get(), &Paper::aboutToBeginStroke, this, [&] { order.append(QStringLiteral("stroke")); });
    connect(stage.paper.get(), &Paper::aboutToBeginEdit, this, [&] { order.append(QStringLiteral("edit")); });
    stage.penLine({{200, 200}, {240, 200}});
    QCOMPARE(order, QStringList({QStringLiteral("edit"), QStringLiteral("stroke")}));
}

void tst_PaperEdits::otherPressesAnnounceNoEdit()
{
    EditStage stage;
    const QSignalSpy announced(stage.paper.get(), &Paper::aboutToBeginEdit);
    Hand hand(stage, true);
    for (const auto type :
         {Tool::Type::Hand, Tool::Type::Zoom, Tool::Type::Rotate, Tool::Type::ZPR, Tool::Type::Scrubbing}) {
        stage.useTool(type);
        hand.drag({240, 210}, {250, 220});
    }
    stage.useTool(Tool::Type::Pen);
    hand.press({240, 210}, Qt::ControlModifier);
    hand.release({240, 210});
    stage.useTool(Tool::Type::Pen, 1);
    hand.drag({240, 210}, {250, 220});
    for (const Edit &edit : edits) {
        stage.useTool(edit.tool);
        const UI::InputSuspension suspension;
        hand.drag(edit.press, edit.press + QPointF(2, 1));
    }
    stage.mrScene->setFloatingSelection({});
    stage.useTool(Tool::Type::FloatingSelection);
    hand.drag({240, 210}, {250, 220});
    QCOMPARE(announced.count(), 0);
}

void tst_PaperEdits::editOfAnotherFrameOnShowDoesNotBegin()
{
    QFETCH(int, edit);
    EditStage stage;
    stage.useTool(edits[edit].tool);
    stage.scene()->setScrubFrame(2);
    const QTransform view = stage.paper->view().widgetToPaper();
    const QPointF press = edits[edit].press;
    Hand(stage, true).drag(press, press + QPointF(2, 1));
    QCOMPARE(stage.edited(), 0);
    QVERIFY(stage.paper->view().widgetToPaper() == view);
}

void tst_PaperEdits::editBeginsOnceTheActiveFrameIsBack()
{
    QFETCH(int, edit);
    EditStage stage;
    stage.answer();
    stage.useTool(edits[edit].tool);
    stage.scene()->setScrubFrame(2);
    const QPointF press = edits[edit].press;
    Hand(stage, true).drag(press, press + QPointF(2, 1));
    QCOMPARE(stage.edited(), 1);
}

void tst_PaperEdits::moveOffThePegsIsThatOfTheActiveFrame()
{
    EditStage stage;
    stage.answer();
    connect(stage.paper.get(), &Paper::offPegsTransformChanged, stage.paper.get(),
            [&](const QTransform &transform) { stage.scene()->setCurrentDrawingOffPegsTransform(transform); });
    stage.useTool(Tool::Type::OffPegs);
    stage.scene()->setScrubFrame(2);
    Hand(stage, true).drag({240, 210}, {250, 210});
    // 10 to the right at 100 percent; the transform leads from the desk to the paper.
    QCOMPARE(stage.scene()->offPegsTransformOfFrame(1), QTransform::fromTranslate(20, 20));
    QCOMPARE(stage.scene()->offPegsTransformOfFrame(2), QTransform::fromTranslate(-50, 0));
}

void tst_PaperEdits::zoneIsTakenOnTheFrameThatCameBack()
{
    EditStage stage;
    stage.answer();
    stage.scene()->setOffPegsTransform(1, {});
    stage.useTool(Tool::Type::OffPegs);
    stage.scene()->setScrubFrame(2);
    const auto *tool = qobject_cast<Model::OffPegsTool *>(Model::ToolManager::instance()->tool(Tool::Type::OffPegs));
    const QPointF button = UI::ViewZones(stage.paper->view().usableRect(), 1.0).button().center();
    stage.hover(button);
    QCOMPARE(tool->cursorType(), Model::OffPegsTool::OPCursorType::PutBack);
    // The active frame is on its pegs: there is no button, and outside of the ellipse a drag turns.
    Hand hand(stage, false);
    hand.press(button);
    QCOMPARE(tool->cursorType(), Model::OffPegsTool::OPCursorType::Rotate);
    hand.move({450, 200});
    QVERIFY(stage.paper->view().isOffPegs());
    hand.release({450, 200});
    QCOMPARE(stage.told, 1);
}

void tst_PaperEdits::pushedButtonLeavesAFrameThatIsNotActive()
{
    EditStage stage;
    stage.useTool(Tool::Type::OffPegs);
    const QPointF button = UI::ViewZones(stage.paper->view().usableRect(), 1.0).button().center();
    Hand hand(stage, true);
    hand.press(button);
    stage.scene()->setScrubFrame(2);
    hand.release(button);
    QCOMPARE(stage.told, 0);
    QVERIFY(stage.paper->view().isOffPegs());
}

void tst_PaperEdits::dragThatEndsOverAnotherFrameIsNotTold_data()
{
    QTest::addColumn<Tool::Type>("tool");
    QTest::newRow("off pegs") << Tool::Type::OffPegs;
    QTest::newRow("lasso") << Tool::Type::Lasso;
}

void tst_PaperEdits::dragThatEndsOverAnotherFrameIsNotTold()
{
    QFETCH(Tool::Type, tool);
    EditStage stage;
    stage.useTool(tool);
    Hand hand(stage, true);
    hand.press({240, 210});
    hand.move({260, 230});
    stage.scene()->setScrubFrame(2);
    hand.move({280, 210});
    hand.release({280, 210});
    QCOMPARE(stage.told, 0);
    QCOMPARE(stage.paper->view().offPegs(), QTransform::fromTranslate(-50, 0));
}

void tst_PaperEdits::selectionThatIsTakenAwayIsNotStamped()
{
    EditStage stage;
    stage.useTool(Tool::Type::FloatingSelection);
    QObject::connect(stage.paper.get(), &Paper::aboutToBeginEdit, stage.paper.get(),
                     [&stage] { stage.mrScene->setFloatingSelection({}); });
    Hand hand(stage, true);
    hand.press({60, 60});
    hand.release({60, 60});
    QCOMPARE(stage.edited(), 0);
}

void tst_PaperEdits::cursorFollowsAFrameThatIsPutBack()
{
    using Cursor = Model::OffPegsTool::OPCursorType;
    EditStage stage;
    stage.useTool(Tool::Type::OffPegs);
    const QPointF button = UI::ViewZones(stage.paper->view().usableRect(), 1.0).button().center();
    stage.hover(button);
    const auto *tool = dynamic_cast<Model::OffPegsTool *>(Model::ToolManager::instance()->tool(Tool::Type::OffPegs));
    QCOMPARE(tool->cursorType(), Cursor::PutBack);
    stage.scene()->setOffPegsTransform(1, QTransform());
    QVERIFY(tool->cursorType() != Cursor::PutBack);
}

void tst_PaperEdits::whatIsTakenAwayMeanwhileEditsNothing_data()
{
    QTest::addColumn<int>("edit");
    QTest::addColumn<QString>("what");
    for (int edit = 0; edit < int(std::size(edits)); ++edit) {
        for (const char *what : {"scene", "contact", "tool", "input"})
            QTest::addRow("%s, %s", edits[edit].name, what) << edit << QString::fromLatin1(what);
    }
}

void tst_PaperEdits::whatIsTakenAwayMeanwhileEditsNothing()
{
    QFETCH(int, edit);
    QFETCH(QString, what);
    EditStage stage;
    stage.useTool(edits[edit].tool);
    std::unique_ptr<UI::InputSuspension> suspension;
    connect(stage.paper.get(), &Paper::aboutToBeginEdit, this, [&] {
        QFocusEvent out(QEvent::FocusOut);
        if (what == QLatin1String("scene"))
            stage.paper->setCurrentScene(nullptr);
        else if (what == QLatin1String("contact"))
            QCoreApplication::sendEvent(stage.paper.get(), &out);
        else if (what == QLatin1String("tool"))
            stage.useTool(Tool::Type::Zoom);
        else
            suspension = std::make_unique<UI::InputSuspension>();
    });
    const QPointF press = edits[edit].press;
    Hand(stage, true).drag(press, press + QPointF(2, 1));
    QCOMPARE(stage.edited(), 0);
    QVERIFY(!stage.paper->isDevicePressed());
}

QTEST_MAIN(tst_PaperEdits)
#include "tst_paperedits.moc"
