#include "libmodel/base/settings.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/tools/floatingselectiontool.h"
#include "libmodel/tools/toolmanager.h"
#include "libui/paper/inputsuspension.h"
#include "paperstage.h"
#include "support/glfixture.h"

#include <QSignalSpy>
#include <QTest>
#include <qpa/qwindowsysteminterface.h>

#include <cmath>

using Model::FloatingSelection;
using Model::Tool;
using TestSupport::PaperStage;
using Cursor = Model::FloatingSelectionTool::FSCursorType;

namespace {

/// Paper pixels; on an ordinary stage 50 further right and down.
constexpr QRect place(120, 80, 160, 140);

bool isNear(QPointF a, QPointF b, double within = 1e-6)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= within;
}

/// A stage with a black block floating on it, told as the main window tells it.
class SelectionStage : public PaperStage
{
public:
    SelectionStage()
    {
        QImage image(place.size(), QImage::Format_Alpha8);
        image.fill(255);
        mrScene->setFloatingSelection(
            FloatingSelection(std::make_unique<Model::BitmapStroke>(image, place), {400, 300}));
        QObject::connect(paper.get(), &UI::Paper::floatingSelectionTransformChanged, mrScene.get(),
                         &Model::MRScene::setFloatingSelectionTransform);
        useTool(Tool::Type::FloatingSelection);
    }

    FloatingSelection::Transform transform() const { return mrScene->floatingSelection().transform(); }
    /// Where a point of the content lies on the paper.
    QPointF laid(QPointF content) const { return transform().paperToContent().inverted().map(content); }
    const Model::FloatingSelectionTool &tool() const
    {
        return *qobject_cast<Model::FloatingSelectionTool *>(
            Model::ToolManager::instance()->tool(Tool::Type::FloatingSelection));
    }
    Cursor cursorType() const { return tool().cursorType(); }
    void shift(bool down)
    {
        QWindowSystemInterface::handleKeyEvent(paper->windowHandle(), down ? QEvent::KeyPress : QEvent::KeyRelease,
                                               Qt::Key_Shift, down ? Qt::ShiftModifier : Qt::NoModifier);
        QWindowSystemInterface::flushWindowSystemEvents();
    }
};

} // namespace

/// The floating selection under the pointer.
class tst_PaperSelection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void dragInsideMovesTheSelection_data();
    void dragInsideMovesTheSelection();
    void dragBackToItsStartTellsNothing();
    void pressOutsideStamps();
    void pressWithoutASelectionDoesNothing();
    void suspendedInputLeavesTheSelection();
    void cursorFollowsTheZones();
    void cornerScalesAboutThePivot();
    void shiftInTheMiddleOfAScaleMakesItEven();
    void selectionOfTheSceneIsFollowed();
    void changedViewKeepsWhatIsHeld();
    void paperScrollsAtTheEdge();
    void paperDoesNotScrollForOtherDrags();
    void handlesCursorIsTurnedWithTheHandle_data();
    void handlesCursorIsTurnedWithTheHandle();
    void handlesFollowTheInterfaceScale();
    void sceneHasTheLastWordOnTheSelection();
    void onlyTheSelectionIsRepainted();
    void isSeenWhileItsToolIsChosen();
    void isHiddenWhileAnotherFrameIsOnShow();
    void pressOverAHiddenOneIsToldFirst();
    void dragIsGivenUp();
    void lassoIsGivenUp();
    void nothingElseIsGivenUp();
};

void tst_PaperSelection::initTestCase()
{
    QVERIFY(TestSupport::startRenderer({1920, 1080}));
}

void tst_PaperSelection::dragInsideMovesTheSelection_data()
{
    QTest::addColumn<double>("level");
    QTest::addColumn<double>("degrees");
    QTest::addColumn<bool>("mirrored");
    QTest::addRow("plain") << 1.0 << 0.0 << false;
    QTest::addRow("zoomed") << 2.0 << 0.0 << false;
    QTest::addRow("turned and mirrored") << 1.5 << 40.0 << true;
}

void tst_PaperSelection::dragInsideMovesTheSelection()
{
    QFETCH(double, level);
    QFETCH(double, degrees);
    QFETCH(bool, mirrored);
    SelectionStage stage;
    stage.paper->setMirrorView(mirrored);
    stage.paper->rotatePaperTo(degrees);
    stage.paper->setZoomLevel(level);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged);
    // Off the pivot in the middle.
    const QPointF content(170, 180);
    const QPointF press = stage.toWidget(content);
    stage.penPress(press);
    stage.penMove(press + QPointF(20, -10));
    stage.penMove(press + QPointF(30, -15));
    QCOMPARE(told.count(), 0);
    stage.penRelease(press + QPointF(30, -15));
    QCOMPARE(told.count(), 1);
    QVERIFY(isNear(stage.toWidget(stage.laid(content)), press + QPointF(30, -15)));
}

void tst_PaperSelection::dragBackToItsStartTellsNothing()
{
    SelectionStage stage;
    const QSignalSpy told(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged);
    const QPointF press = stage.toWidget({170, 180});
    stage.penPress(press);
    stage.penMove(press + QPointF(30, -15));
    stage.penMove(press);
    stage.penRelease(press);
    QCOMPARE(told.count(), 0);
    QVERIFY(stage.transform().paperToContent().isIdentity());
}

void tst_PaperSelection::pressOutsideStamps()
{
    SelectionStage stage;
    const QSignalSpy stamped(stage.paper.get(), &UI::Paper::floatingSelectionStamped);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged);
    stage.mousePress({60, 60}, Qt::LeftButton, Qt::AltModifier);
    QCOMPARE(stamped.count(), 1);
    QCOMPARE(stamped.first().first().value<Qt::KeyboardModifiers>(), Qt::AltModifier);
    stage.mouseMove({250, 200});
    stage.mouseRelease({250, 200});
    QCOMPARE(stamped.count(), 1);
    QCOMPARE(told.count(), 0);
}

void tst_PaperSelection::pressWithoutASelectionDoesNothing()
{
    SelectionStage stage;
    stage.mrScene->setFloatingSelection({});
    const QSignalSpy stamped(stage.paper.get(), &UI::Paper::floatingSelectionStamped);
    stage.penPress({60, 60});
    stage.penRelease({60, 60});
    QCOMPARE(stamped.count(), 0);
}

void tst_PaperSelection::suspendedInputLeavesTheSelection()
{
    SelectionStage stage;
    const QSignalSpy stamped(stage.paper.get(), &UI::Paper::floatingSelectionStamped);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged);
    const UI::InputSuspension suspension;
    stage.penLine({{60, 60}, {90, 90}});
    stage.pause(2000);
    stage.penLine({stage.toWidget({170, 180}), stage.toWidget({180, 190})});
    QCOMPARE(stamped.count() + told.count(), 0);
}

void tst_PaperSelection::cursorFollowsTheZones()
{
    SelectionStage stage;
    stage.hover(stage.toWidget({170, 180}));
    QCOMPARE(stage.cursorType(), Cursor::Move);
    stage.hover({60, 60});
    QCOMPARE(stage.cursorType(), Cursor::Stamp);
    // The middle of the block is its pivot, its corners scale.
    stage.hover(stage.toWidget({200, 150}));
    QCOMPARE(stage.cursorType(), Cursor::Pivot);
    stage.hover(stage.toWidget(place.topLeft()));
    QCOMPARE(stage.cursorType(), Cursor::Scale);
    // With the view the handles move away from under the pointer.
    stage.paper->setZoomLevel(0.25);
    stage.hover(stage.toWidget(place.topLeft()) + QPointF(-120, -100));
    QCOMPARE(stage.cursorType(), Cursor::Stamp);
}

void tst_PaperSelection::cornerScalesAboutThePivot()
{
    SelectionStage stage;
    // The bottom right corner, 80 right and 70 down of the pivot, to one and a half times as far.
    const QPointF corner = stage.toWidget(QPointF(280, 220));
    const QPointF to = stage.toWidget(QPointF(200 + 120, 150 + 105));
    stage.penLine({corner, corner + QPointF(5, 5), to});
    QVERIFY(isNear(stage.laid({200, 150}), {200, 150}, 1e-3));
    QVERIFY(isNear(stage.laid({280, 220}), {320, 255}, 1e-3));
}

void tst_PaperSelection::shiftInTheMiddleOfAScaleMakesItEven()
{
    SelectionStage stage;
    const QPointF corner = stage.toWidget(QPointF(280, 220));
    const auto even = [](const QTransform &scale) { return std::abs(scale.m11() - scale.m22()) < 1e-9; };
    const auto ending = [&](int shifts) {
        stage.mrScene->setFloatingSelectionTransform(
            {.scale = {}, .rotation = {}, .translation = {}, .pivot = QPointF(200, 150)});
        stage.penPress(corner);
        stage.penMove(corner + QPointF(40, 0));
        for (int i = 0; i < shifts; ++i)
            stage.shift(i % 2 == 0);
        stage.penLeavesRange();
        stage.penRelease(corner);
        stage.shift(false);
        stage.pause(2000);
        return stage.transform().scale;
    };
    QVERIFY(!even(ending(0)));
    const QTransform held = ending(1);
    QVERIFY(even(held));
    // (r.r) / (r.(r + d)) with r = (80, 70) and d = (40, 0).
    QVERIFY(std::abs(held.m11() - 11300.0 / 14500.0) < 1e-9);
    QVERIFY(!even(ending(2)));
}

void tst_PaperSelection::selectionOfTheSceneIsFollowed()
{
    SelectionStage stage;
    const QImage floating = stage.repainted();
    FloatingSelection::Transform moved = stage.transform();
    moved.translation = QTransform::fromTranslate(-30, 0);
    stage.mrScene->setFloatingSelectionTransform(moved);
    const QImage there = stage.repainted();
    QVERIFY(there != floating);
    QCOMPARE(stage.screen(), there);
    stage.mrScene->setFloatingSelection({});
    QVERIFY(stage.repainted() != there);
    QCOMPARE(stage.screen(), stage.repainted());
}

void tst_PaperSelection::changedViewKeepsWhatIsHeld()
{
    SelectionStage stage;
    const QPointF content(170, 180);
    const QPointF press = stage.toWidget(content);
    stage.penPress(press);
    stage.penMove(press + QPointF(10, 10));
    stage.paper->setZoomLevel(2.0);
    stage.paper->rotatePaperTo(20.0);
    stage.penMove(press + QPointF(15, 20));
    stage.penRelease(press + QPointF(15, 20));
    QVERIFY(isNear(stage.toWidget(stage.laid(content)), press + QPointF(15, 20), 1e-3));
}

void tst_PaperSelection::paperScrollsAtTheEdge()
{
    SelectionStage stage;
    const QPointF content(170, 180);
    stage.penPress(stage.toWidget(content));
    stage.penMove({480, 200});
    const QPointF before = stage.toWidget({0, 0});
    QTRY_VERIFY(stage.toWidget({0, 0}).x() <= before.x() - 25.0);
    // To the left alone, in steps of 5, and what is held stays under the pen.
    const QPointF way = stage.toWidget({0, 0}) - before;
    QVERIFY(std::abs(std::remainder(way.x(), 5.0)) < 1e-6 && std::abs(way.y()) < 1e-9);
    // It ends where the paper would be lost: within 50 of the opposite edge at the most.
    const auto right = [&] { return stage.toWidget({400, 0}).x(); };
    QTRY_VERIFY_WITH_TIMEOUT(right() < 60.0, 20000);
    QTest::qWait(100);
    QVERIFY2(right() >= 50.0, qPrintable(QString::number(right())));
    // Away from the edge it rests.
    stage.penMove({300, 200});
    const QPointF rest = stage.toWidget({0, 0});
    QTest::qWait(50);
    QVERIFY(isNear(stage.toWidget({0, 0}), rest));
    stage.penRelease({300, 200});
    QVERIFY(isNear(stage.toWidget(stage.laid(content)), {300, 200}, 1e-3));
}

void tst_PaperSelection::paperDoesNotScrollForOtherDrags()
{
    SelectionStage stage;
    const QPointF before = stage.toWidget({0, 0});
    stage.penPress(stage.toWidget({280, 220}));
    stage.penMove({480, 380});
    QTest::qWait(60);
    QVERIFY(isNear(stage.toWidget({0, 0}), before));
    stage.penRelease({480, 380});
    stage.useTool(Tool::Type::Lasso);
    stage.pause(2000);
    stage.penPress({250, 200});
    stage.penMove({490, 390});
    QTest::qWait(60);
    QVERIFY(isNear(stage.toWidget({0, 0}), before));
    stage.penRelease({490, 390});
}

void tst_PaperSelection::handlesCursorIsTurnedWithTheHandle_data()
{
    QTest::addColumn<double>("turn");
    QTest::addRow("upright") << 0.0;
    QTest::addRow("turned") << 30.0;
}

void tst_PaperSelection::handlesCursorIsTurnedWithTheHandle()
{
    QFETCH(double, turn);
    SelectionStage stage;
    stage.paper->rotatePaperTo(turn);
    // Clockwise from a handle to the right; the view is turned counter-clockwise.
    const std::pair<QPoint, double> corners[] = {
        {{120, 80}, -135.0}, {{280, 80}, -45.0}, {{280, 220}, 45.0}, {{120, 220}, 135.0}};
    for (const auto &[corner, angle] : corners) {
        stage.hover(stage.toWidget(corner));
        QCOMPARE(stage.cursorType(), Cursor::Scale);
        QVERIFY(std::abs(std::remainder(stage.tool().handleAngle() - (angle - turn), 360.0)) < 1.0);
    }
}

void tst_PaperSelection::handlesFollowTheInterfaceScale()
{
    SelectionStage stage;
    auto *settings = Model::Settings::instance();
    const int before = settings->uiScalePercent();
    settings->setUiScalePercent(100);
    // Just outside of the outermost handle of a corner.
    QPointF position = stage.toWidget(place.topLeft());
    do {
        position -= QPointF(1, 1);
        stage.hover(position);
    } while (stage.cursorType() != Cursor::Stamp);
    settings->setUiScalePercent(150);
    const Cursor larger = stage.cursorType();
    settings->setUiScalePercent(before);
    QVERIFY(larger != Cursor::Stamp);
}

void tst_PaperSelection::sceneHasTheLastWordOnTheSelection()
{
    SelectionStage stage;
    // Nobody moves the selection in the scene.
    QObject::disconnect(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged, nullptr, nullptr);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged);
    const QImage before = stage.screen();
    const QPointF press = stage.toWidget({170, 180});
    stage.penLine({press, press + QPointF(30, -15)});
    QCOMPARE(told.count(), 1);
    QCOMPARE(stage.screen(), before);
    QCOMPARE(stage.repainted(), before);
}

void tst_PaperSelection::onlyTheSelectionIsRepainted()
{
    SelectionStage stage;
    (void)stage.screen();
    const QPointF press = stage.toWidget({170, 180});
    stage.penPress(press);
    for (int i = 1; i <= 6; ++i) {
        stage.penMove(press + QPointF(9 * i, -4 * i));
        QCOMPARE(stage.screen(), stage.repainted());
    }
    stage.penRelease(press + QPointF(54, -24));
    QCOMPARE(stage.screen(), stage.repainted());
}

void tst_PaperSelection::isSeenWhileItsToolIsChosen()
{
    SelectionStage stage;
    const QImage floating = stage.repainted();
    // Borrowed tools leave it in sight, chosen ones do not.
    for (const auto type : {Tool::Type::Hand, Tool::Type::Zoom, Tool::Type::ZPR, Tool::Type::Scrubbing}) {
        stage.useTool(type);
        QCOMPARE(stage.screen(), floating);
        QCOMPARE(stage.repainted(), floating);
    }
    QImage without;
    for (const auto type : {Tool::Type::Pen, Tool::Type::Eraser, Tool::Type::Lasso, Tool::Type::Cutter}) {
        stage.useTool(Tool::Type::FloatingSelection);
        QCOMPARE(stage.screen(), floating);
        stage.useTool(type);
        QVERIFY(stage.repainted() != floating);
        QVERIFY(without.isNull() || stage.repainted() == without);
        without = stage.repainted();
        QCOMPARE(stage.screen(), without);
    }
    // Put elsewhere while it is out of sight it comes back there.
    FloatingSelection::Transform moved = stage.transform();
    moved.translation = QTransform::fromTranslate(-30, 0);
    stage.mrScene->setFloatingSelectionTransform(moved);
    QCOMPARE(stage.screen(), without);
    stage.useTool(Tool::Type::FloatingSelection);
    QVERIFY(stage.repainted() != floating);
    moved.translation = QTransform();
    stage.mrScene->setFloatingSelectionTransform(moved);
    QCOMPARE(stage.repainted(), floating);
}

void tst_PaperSelection::isHiddenWhileAnotherFrameIsOnShow()
{
    SelectionStage stage;
    stage.scene()->addBlankDrawing(0, 1);
    stage.scene()->setActiveFrameAndLayer(1, 0, Model::Scene::KeepFrameOnDrawing);
    const QImage floating = stage.repainted();
    stage.scene()->setScrubFrame(2);
    const QImage hidden = stage.repainted();
    QVERIFY(hidden != floating);
    QCOMPARE(stage.screen(), hidden);
    stage.scene()->unsetScrubFrame();
    QCOMPARE(stage.screen(), floating);
    QCOMPARE(stage.repainted(), floating);
}

void tst_PaperSelection::pressOverAHiddenOneIsToldFirst()
{
    SelectionStage stage;
    stage.scene()->addBlankDrawing(0, 1);
    stage.scene()->setActiveFrameAndLayer(1, 0, Model::Scene::KeepFrameOnDrawing);
    stage.scene()->setScrubFrame(2);
    const QSignalSpy stamped(stage.paper.get(), &UI::Paper::floatingSelectionStamped);
    // Nobody ends the show: nothing is meant.
    stage.penPress({60, 60});
    stage.penRelease({60, 60});
    QCOMPARE(stamped.count(), 0);
    stage.pause(2000);
    QObject::connect(stage.paper.get(), &UI::Paper::aboutToBeginEdit, stage.scene(), &Model::Scene::unsetScrubFrame);
    stage.penPress({60, 60});
    stage.penRelease({60, 60});
    QCOMPARE(stamped.count(), 1);
}

void tst_PaperSelection::dragIsGivenUp()
{
    SelectionStage stage;
    const QSignalSpy told(stage.paper.get(), &UI::Paper::floatingSelectionTransformChanged);
    const QImage before = stage.repainted();
    const QPointF press = stage.toWidget({170, 180});
    stage.penPress(press);
    stage.penMove(press + QPointF(30, -15));
    QVERIFY(stage.paper->isPickingUp());
    QVERIFY(stage.repainted() != before);
    stage.paper->giveUpPickingUp();
    QVERIFY(!stage.paper->isPickingUp());
    QCOMPARE(stage.screen(), before);
    stage.penMove(press + QPointF(60, -15));
    stage.penRelease(press + QPointF(60, -15));
    QCOMPARE(told.count(), 0);
    QCOMPARE(stage.repainted(), before);
    QVERIFY(stage.transform().paperToContent().isIdentity());
}

void tst_PaperSelection::lassoIsGivenUp()
{
    SelectionStage stage;
    stage.useTool(Tool::Type::Lasso);
    const QSignalSpy told(stage.paper.get(), &UI::Paper::lassoingCompleted);
    const QImage before = stage.repainted();
    stage.penPress({100, 100});
    stage.penMove({200, 100});
    stage.penMove({200, 200});
    QVERIFY(stage.paper->isPickingUp());
    QVERIFY(stage.repainted() != before);
    stage.paper->giveUpPickingUp();
    QVERIFY(!stage.paper->isPickingUp());
    QCOMPARE(stage.screen(), before);
    stage.penMove({100, 200});
    stage.penRelease({100, 100});
    QCOMPARE(told.count(), 0);
    QCOMPARE(stage.repainted(), before);
}

void tst_PaperSelection::nothingElseIsGivenUp()
{
    SelectionStage stage;
    stage.paper->giveUpPickingUp();
    stage.useTool(Tool::Type::Hand);
    const QPointF before = stage.toWidget({0, 0});
    stage.penPress({100, 100});
    stage.penMove({120, 100});
    QVERIFY(!stage.paper->isPickingUp());
    stage.paper->giveUpPickingUp();
    stage.penMove({140, 100});
    stage.penRelease({140, 100});
    QVERIFY(isNear(stage.toWidget({0, 0}), before + QPointF(40, 0)));
}

QTEST_MAIN(tst_PaperSelection)
#include "tst_paperselection.moc"
