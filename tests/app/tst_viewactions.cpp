#include "mainwindowfixture.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/base/settings.h"
#include "libmodel/strokes/strokedrawing.h"
#include "libui/paper/viewtransform.h"

#include <QMenuBar>
#include <QScreen>
#include <QTest>
#include <QUndoStack>
#include <qpa/qwindowsysteminterface.h>

#include <cmath>
#include <numbers>

/// The actions on the view and the light table, triggered and pressed in the real window.
class tst_ViewActions : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void cleanup();
    void zoomInSteps_data();
    void zoomInSteps();
    void zoomOutSteps_data();
    void zoomOutSteps();
    void fixedZoomsAndResetAreReachedByKey();
    void numberPadTurnsTheTopOfTheSheet_data();
    void numberPadTurnsTheTopOfTheSheet();
    void turnsByStepsOfFifteenDegrees();
    void fitActionTellsTheZoomThatFits();
    void mirrorActionMirrorsAndFollows();
    void gridActionShowsTheGrid();
    void choosingAGridSwitchesItOn();
    void backlightActionsFollowTheSettings();
    void keysOfTheViewCommitTheStrokeFirst_data();
    void keysOfTheViewCommitTheStrokeFirst();
    void settingChangesCommitTheStrokeFirst_data();
    void settingChangesCommitTheStrokeFirst();
    void fullScreenKeyFillsTheScreenAndGoesBack();
    void interfaceScaleIsReachedInTheWindowMenu();

private:
    void pressKey(int key, Qt::KeyboardModifiers modifiers = {}, const QString &text = {});
    QPointF topOfSheet() const;
};

void tst_ViewActions::cleanup()
{
    paper()->setMirrorView(false);
    action(MR::Action::GridOnOff)->setChecked(false);
    paper()->resetView();
}

// As the window system reports it: shortcuts take part.
void tst_ViewActions::pressKey(int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QWindow *window = m_window->windowHandle();
    QWindowSystemInterface::handleKeyEvent(window, QEvent::KeyPress, key, modifiers, text);
    QWindowSystemInterface::handleKeyEvent(window, QEvent::KeyRelease, key, modifiers, text);
    QCoreApplication::processEvents();
}

// Where the top of the sheet points on the screen, as a vector of length 1, y down.
QPointF tst_ViewActions::topOfSheet() const
{
    const QTransform paperToWidget = paper()->view().widgetToPaper().inverted();
    const QPointF up = paperToWidget.map(QPointF(0, -100)) - paperToWidget.map(QPointF(0, 0));
    return up / std::hypot(up.x(), up.y());
}

void tst_ViewActions::zoomInSteps_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::newRow("a level") << 1.0 << 1.5;
    QTest::newRow("within 0.005 below a level counts as reached") << 0.997 << 1.5;
    QTest::newRow("within 0.005 above a level counts as reached") << 1.003 << 1.5;
    QTest::newRow("between levels") << 1.2 << 1.5;
    // The paper ends at 16, where the next level is clamped to.
    QTest::newRow("at the largest zoom of the paper") << 12.0 << 16.0;
}

void tst_ViewActions::zoomInSteps()
{
    QFETCH(double, from);
    QFETCH(double, to);
    paper()->setZoomLevel(from);
    action(MR::Action::ZoomIn)->trigger();
    QVERIFY(std::abs(paper()->zoomLevel() - to) < 1e-9);
}

void tst_ViewActions::zoomOutSteps_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::newRow("a level") << 1.0 << 0.75;
    QTest::newRow("between levels") << 1.2 << 1.0;
    QTest::newRow("the smallest") << 0.0625 << 0.0625;
}

void tst_ViewActions::zoomOutSteps()
{
    QFETCH(double, from);
    QFETCH(double, to);
    paper()->setZoomLevel(from);
    action(MR::Action::ZoomOut)->trigger();
    QVERIFY(std::abs(paper()->zoomLevel() - to) < 1e-9);
}

void tst_ViewActions::fixedZoomsAndResetAreReachedByKey()
{
    pressKey(Qt::Key_3, Qt::ControlModifier);
    QVERIFY(std::abs(paper()->zoomLevel() - 3.0) < 1e-9);
    pressKey(Qt::Key_1, Qt::ControlModifier);
    QVERIFY(std::abs(paper()->zoomLevel() - 1.0) < 1e-9);
    pressKey(Qt::Key_0, Qt::ControlModifier);
    QVERIFY(std::abs(paper()->zoomLevel() - paper()->zoomLevelToFit()) < 1e-9);
    pressKey(Qt::Key_0, {}, "0");
    QVERIFY(std::abs(paper()->zoomLevel() - 1.0) < 1e-9);
}

void tst_ViewActions::numberPadTurnsTheTopOfTheSheet_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<double>("clockwise"); // degrees from straight up
    QTest::addColumn<bool>("mirrored");
    const std::pair<int, double> keys[] = {{Qt::Key_8, 0},   {Qt::Key_9, 45},  {Qt::Key_6, 90},  {Qt::Key_3, 135},
                                           {Qt::Key_2, 180}, {Qt::Key_1, 225}, {Qt::Key_4, 270}, {Qt::Key_7, 315}};
    for (const bool mirrored : {false, true}) {
        for (const auto &[key, clockwise] : keys)
            QTest::addRow("%c%s", key, mirrored ? ", mirrored" : "") << key << clockwise << mirrored;
    }
}

void tst_ViewActions::numberPadTurnsTheTopOfTheSheet()
{
    QFETCH(int, key);
    QFETCH(double, clockwise);
    QFETCH(bool, mirrored);
    paper()->setMirrorView(mirrored);
    paper()->rotatePaperTo(20);
    pressKey(key, Qt::KeypadModifier, QString(QChar(key)));
    const double angle = clockwise * std::numbers::pi / 180;
    const QPointF wanted(std::sin(angle), -std::cos(angle));
    const QPointF off = topOfSheet() - wanted;
    QVERIFY2(std::hypot(off.x(), off.y()) < 1e-6,
             qPrintable(QStringLiteral("%1, %2").arg(topOfSheet().x()).arg(topOfSheet().y())));
}

void tst_ViewActions::turnsByStepsOfFifteenDegrees()
{
    const auto clockwise = [this] { return std::atan2(topOfSheet().x(), -topOfSheet().y()) * 180 / std::numbers::pi; };
    pressKey(Qt::Key_BracketRight, Qt::ControlModifier);
    QVERIFY2(std::abs(clockwise() - 15) < 1e-6, qPrintable(QString::number(clockwise())));
    pressKey(Qt::Key_BracketRight, Qt::ControlModifier);
    QVERIFY2(std::abs(clockwise() - 30) < 1e-6, qPrintable(QString::number(clockwise())));
    pressKey(Qt::Key_BracketLeft, Qt::ControlModifier);
    QVERIFY2(std::abs(clockwise() - 15) < 1e-6, qPrintable(QString::number(clockwise())));
}

void tst_ViewActions::fitActionTellsTheZoomThatFits()
{
    paper()->setZoomLevel(1.0);
    const int percent = qRound(paper()->zoomLevelToFit() * 100);
    QVERIFY(percent < 100);
    QCOMPARE(action(MR::Action::FitPaperToView)->text(), QStringLiteral("Fit View (%1%)").arg(percent));
    QVERIFY(action(MR::Action::FitPaperToView)->toolTip().contains(QStringLiteral("(%1%)").arg(percent)));
}

void tst_ViewActions::mirrorActionMirrorsAndFollows()
{
    action(MR::Action::MirrorView)->trigger();
    QVERIFY(paper()->mirrorView());
    paper()->setMirrorView(false);
    QVERIFY(!action(MR::Action::MirrorView)->isChecked());
}

void tst_ViewActions::gridActionShowsTheGrid()
{
    const QImage without = paper()->grab().toImage();
    action(MR::Action::GridOnOff)->trigger();
    QVERIFY(action(MR::Action::GridOnOff)->isChecked());
    QVERIFY(paper()->grab().toImage() != without);
    action(MR::Action::GridOnOff)->trigger();
    QCOMPARE(paper()->grab().toImage(), without);
}

void tst_ViewActions::choosingAGridSwitchesItOn()
{
    const QImage without = paper()->grab().toImage();
    action(MR::Action::GridTypeThirds)->trigger();
    QVERIFY(action(MR::Action::GridOnOff)->isChecked());
    const QImage thirds = paper()->grab().toImage();
    QVERIFY(thirds != without);
    action(MR::Action::GridTypeFieldGuide)->trigger();
    QVERIFY(paper()->grab().toImage() != thirds);
}

void tst_ViewActions::backlightActionsFollowTheSettings()
{
    auto *settings = Model::Settings::instance();
    QVERIFY(action(MR::Action::BacklightOnOff)->isChecked());
    QVERIFY(!action(MR::Action::OnlyBacklightKeyFrames)->isChecked());
    action(MR::Action::BacklightOnOff)->trigger();
    QVERIFY(!settings->backlightSettings().on);
    QVERIFY(!scene()->backlightSettings().on);
    action(MR::Action::OnlyBacklightKeyFrames)->trigger();
    QVERIFY(settings->backlightSettings().onlyKeyFrames);
    settings->setBacklightSettings({});
    QVERIFY(action(MR::Action::BacklightOnOff)->isChecked());
    QVERIFY(!action(MR::Action::OnlyBacklightKeyFrames)->isChecked());
}

void tst_ViewActions::keysOfTheViewCommitTheStrokeFirst_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("fixed zoom") << int(Qt::Key_2) << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("direction") << int(Qt::Key_6) << Qt::KeyboardModifiers(Qt::KeypadModifier);
    QTest::newRow("turn left") << int(Qt::Key_BracketLeft) << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("turn right") << int(Qt::Key_BracketRight) << Qt::KeyboardModifiers(Qt::ControlModifier);
}

void tst_ViewActions::keysOfTheViewCommitTheStrokeFirst()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    press(paperPoint(-50, 0));
    moveTo(paperPoint(50, 0));
    QVERIFY(scene()->hasActiveStroke());
    pressKey(key, modifiers);
    QVERIFY(!scene()->hasActiveStroke());
    QVERIFY(!drawing().isEmpty());
    release(paperPoint(50, 0));
}

void tst_ViewActions::settingChangesCommitTheStrokeFirst_data()
{
    QTest::addColumn<MR::Action>("which");
    using enum MR::Action;
    QTest::newRow("grid") << GridOnOff;
    QTest::newRow("grid type") << GridTypeThirds;
    QTest::newRow("transparency") << TransparencyShownAsBlack;
    QTest::newRow("clones locked") << ClonesLockedForDrawing;
    QTest::newRow("faint cursor") << FaintCursor;
}

// A setting may tell how a stroke is committed, or what it is seen on: it was drawn under the old one.
void tst_ViewActions::settingChangesCommitTheStrokeFirst()
{
    QFETCH(MR::Action, which);
    auto *settings = Model::Settings::instance();
    settings->setGridType(MR::GridType::FieldGuide);
    settings->setTransparencyType(MR::TransparencyType::TransparencyWhite);
    settings->setClonesLockedForDrawing(false);
    const bool checked = action(which)->isChecked();
    press(paperPoint(-50, 0));
    moveTo(paperPoint(50, 0));
    QVERIFY(scene()->hasActiveStroke());
    QList<bool> locked;
    connect(scene()->undoStack(), &QUndoStack::indexChanged, this,
            [&] { locked.append(settings->clonesLockedForDrawing()); });
    QList<bool> drawing;
    const auto connection =
        connect(action(which), &QAction::toggled, this, [&] { drawing.append(scene()->hasActiveStroke()); });
    action(which)->trigger();
    disconnect(connection);
    disconnect(scene()->undoStack(), &QUndoStack::indexChanged, this, nullptr);
    QCOMPARE(drawing, QList<bool>{false});
    QCOMPARE(locked, QList<bool>{false});
    release(paperPoint(50, 0));
    QVERIFY(action(which)->isChecked() != checked);
    settings->setTransparencyType(MR::TransparencyType::TransparencyWhite);
    settings->setClonesLockedForDrawing(false);
    settings->setDrawCursorOpacity(MR::DrawCursorOpacity::Opaque);
}

void tst_ViewActions::fullScreenKeyFillsTheScreenAndGoesBack()
{
    const QSize before = m_window->size();
    QVERIFY(action(MR::Action::FullScreen)->isEnabled());
    const QKeyCombination key = action(MR::Action::FullScreen)->shortcut()[0];
    pressKey(key.key(), key.keyboardModifiers());
    QTRY_COMPARE(m_window->size(), m_window->screen()->size());
    QCOMPARE(action(MR::Action::FullScreen)->text(), QStringLiteral("Exit Full Screen"));
    pressKey(key.key(), key.keyboardModifiers());
    QTRY_COMPARE(m_window->size(), before);
    QCOMPARE(action(MR::Action::FullScreen)->text(), QStringLiteral("Enter Full Screen"));
}

void tst_ViewActions::interfaceScaleIsReachedInTheWindowMenu()
{
    const int before = m_window->menuBar()->sizeHint().height();
    action(MR::Action::UIScale150)->trigger();
    QCOMPARE(Model::Settings::instance()->uiScalePercent(), 150);
    QTRY_VERIFY(m_window->menuBar()->sizeHint().height() > before);
    action(MR::Action::UIScale100)->trigger();
    QTRY_COMPARE(m_window->menuBar()->sizeHint().height(), before);
}

QTEST_MAIN(tst_ViewActions)
#include "tst_viewactions.moc"
