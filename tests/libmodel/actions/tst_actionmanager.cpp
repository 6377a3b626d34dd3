#include "libmodel/actions/actionmanager.h"

#include "libmodel/actions/actiontable.h"
#include "support/isolatedstore.h"

#include <QAction>
#include <QActionGroup>
#include <QGuiApplication>
#include <QMetaEnum>
#include <QTest>
#include <QUndoGroup>
#include <QUndoStack>

using namespace Model;

namespace {

QAction *actionOf(MR::Action id)
{
    const ActionRecord *record = ActionManager::instance()->mrAction(id);
    return record ? record->action : nullptr;
}

QString flagsOf(const QAction &action)
{
    QString flags;
    if (action.isCheckable())
        flags += QLatin1Char('c');
    if (!action.autoRepeat())
        flags += QLatin1Char('r');
    if (!action.isEnabled())
        flags += QLatin1Char('d');
    return flags;
}

} // namespace

class tst_ActionManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void actionsAreAsCatalogued_data();
    void actionsAreAsCatalogued();
    void everyActionCarriesItsKey();
    void shortcutsHoldInTheWholeApplication();
    void toolTipTellsTheFirstShortcut_data();
    void toolTipTellsTheFirstShortcut();
    void platformWithoutAKeyForSavingAsGetsOne();
    void iconsNotDrawnAreLeftOut();

    void exclusiveGroupsHaveTheirMembers_data();
    void exclusiveGroupsHaveTheirMembers();
    void pensAreNoGroup();
    void nonDrawingMemberIsHiddenAndUnchecksTheOthers();

    void noActionIsNullWithoutAReport();
    void actionThatNothingCreatesIsReported();
    void undoActionsGetKeysAndToolTips();
    void insertingTwiceKeepsTheNewerAndReports();

    void secondFaceTakesTheNumber();
    void actionWithoutASecondFaceKeepsItsFirst();
    void disablingRemembersWhatWasEnabled();
    void restoringWithoutDisablingChangesNothing();
    void actionEnteredWhileDisabledStaysEnabled();
    void hiddenActionKeepsItsState();

    void actionGivesWhatTheRecordHolds();
    void actionsGivesAllThereAre();
    void enteredActionBecomesAChild();
    void actionWithoutANameIsReportedAndNotEntered();
};

void tst_ActionManager::initTestCase()
{
    const IsolatedStore store;
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Testprogram"));
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    ActionManager::instance()->createActions();
}

void tst_ActionManager::actionsAreAsCatalogued_data()
{
    QTest::addColumn<MR::Action>("action");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("shortcuts");
    QTest::addColumn<QString>("flags");

    using enum MR::Action;
    const auto row = [](MR::Action action, const char *text, const QStringList &shortcuts, const char *flags) {
        QTest::newRow(QMetaEnum::fromType<MR::Action>().valueToKey(static_cast<int>(action)))
            << action << QString::fromUtf8(text) << shortcuts << QString::fromLatin1(flags);
    };
    row(NewScene, "New Scene...", {"Ctrl+N"}, "");
    row(OpenScene, "Open Scene...", {"Ctrl+O"}, "");
    row(SaveScene, "Save Scene", {"Ctrl+S"}, "");
    row(SaveSceneAs, "Save Scene As...", {"Ctrl+Shift+S"}, "");
    row(ExportFrames, "Frames...", {}, "");
    row(Quit, "&Quit", {"Ctrl+Q"}, "");
    row(Draw, "&Draw (Latest Drawing Tool)", {"D"}, "cr");
    row(Erase, "&Erase (Latest Erasing Tool)", {"E"}, "cr");
    // What is hidden counts as disabled.
    row(NonDrawingAction, "Dummy non-drawing action", {}, "cd");
    row(DrawEraseToggle, "Draw/Erase Toggle", {"."}, "r");
    row(Pencil, "Pencil (P)", {"4", "P"}, "cr");
    row(Marker, "Marker (M)", {"5", "M"}, "cr");
    row(Brush, "Brush (B)", {"6", "B"}, "cr");
    row(KneadedEraser, "Kneaded Eraser", {"1"}, "cr");
    row(RubberEraser, "Rubber Eraser", {"2"}, "cr");
    row(VinylEraser, "Vinyl Eraser", {"3"}, "cr");
    row(ResetDrawingUserSettings, "Reset User Settings", {"Ctrl+Shift+D"}, "");
    row(ResetErasingUserSettings, "Reset User Settings", {"Ctrl+Shift+E"}, "");
    row(DecreasePenSize, "Decrease Pen Size", {"["}, "");
    row(IncreasePenSize, "Increase Pen Size", {"]"}, "");
    row(ToggleCursor, "Toggle Cursor (Crosshair/Dot)", {","}, "");
    row(Pan, "&Hand Tool", {"H"}, "cr");
    row(ResetView, "Reset View (0°, 100%, Centered)", {"0"}, "");
    row(FitPaperToView, "Fit View (?%)", {"Ctrl+0"}, "");
    row(ZoomIn, "Zoom In", {"Ctrl+=", "Ctrl++"}, "");
    row(ZoomOut, "Zoom Out", {"Ctrl+-"}, "");
    row(ViewToX1, "X1 (100%)", {"Ctrl+1"}, "");
    row(About, "About Testprogram", {}, "");
    row(FaintCursor, "Faint Cursor", {}, "c");
    row(FreelyDrawOnClones, "Freely draw on Clones - Original will update", {}, "c");
    row(ClonesLockedForDrawing, "Clones are locked for drawing", {}, "c");
    row(TransparencyShownAsSmallCheckersLight, "Small Checkers, Light", {}, "cr");
    row(TransparencyShownAsSmallCheckersDark, "Small Checkers, Dark", {}, "cr");
    row(TransparencyShownAsLargeCheckersLight, "Large Checkers, Light", {}, "cr");
    row(TransparencyShownAsLargeCheckersDark, "Large Checkers, Dark", {}, "cr");
    row(TransparencyShownAsWhite, "White", {}, "cr");
    row(TransparencyShownAsLightGrey, "Light Grey", {}, "cr");
    row(TransparencyShownAsDarkGrey, "Dark Grey", {}, "cr");
    row(TransparencyShownAsBlack, "Black", {}, "cr");
}

void tst_ActionManager::actionsAreAsCatalogued()
{
    QFETCH(MR::Action, action);
    const QAction *tested = actionOf(action);
    QVERIFY(tested);
    QTEST(tested->text(), "text");
    QStringList shortcuts;
    for (const QKeySequence &shortcut : tested->shortcuts())
        shortcuts << shortcut.toString(QKeySequence::PortableText);
    QTEST(shortcuts, "shortcuts");
    QTEST(flagsOf(*tested), "flags");
    QCOMPARE(tested->parent(), ActionManager::instance());
}

void tst_ActionManager::everyActionCarriesItsKey()
{
    int count = 0;
    for (const ActionRow &row : actionTable()) {
        if (row.flags & ActionRow::Given)
            continue;
        const QMetaEnum meta = QMetaEnum::fromType<MR::Action>();
        QCOMPARE(actionOf(row.action)->property("MRActionName").toString(),
                 QString::fromLatin1(meta.valueToKey(static_cast<int>(row.action))));
        ++count;
    }
    QCOMPARE(count, 39);
}

void tst_ActionManager::shortcutsHoldInTheWholeApplication()
{
    QCOMPARE(actionOf(MR::Action::Pencil)->shortcutContext(), Qt::ApplicationShortcut);
    QCOMPARE(actionOf(MR::Action::SaveScene)->shortcutContext(), Qt::ApplicationShortcut);
}

void tst_ActionManager::toolTipTellsTheFirstShortcut_data()
{
    QTest::addColumn<MR::Action>("action");
    QTest::addColumn<QString>("toolTip");
    // The name without mnemonic and dots, and one shortcut, as the platform writes it.
    QTest::newRow("one shortcut") << MR::Action::Pan << "Hand Tool [H]";
    QTest::newRow("dots go") << MR::Action::NewScene << "New Scene [Ctrl+N]";
    QTest::newRow("two shortcuts") << MR::Action::Pencil << "Pencil (P) [4]";
    QTest::newRow("no shortcut") << MR::Action::FaintCursor << "Faint Cursor";
}

void tst_ActionManager::toolTipTellsTheFirstShortcut()
{
    QFETCH(MR::Action, action);
    QTEST(actionOf(action)->toolTip(), "toolTip");
}

void tst_ActionManager::platformWithoutAKeyForSavingAsGetsOne()
{
    const QKeySequence expected(QStringLiteral("Ctrl+Shift+S"));
    QCOMPARE(actionOf(MR::Action::SaveSceneAs)->shortcuts(), QList<QKeySequence>{expected});
}

void tst_ActionManager::iconsNotDrawnAreLeftOut()
{
    // No resources are compiled into this test.
    QVERIFY(actionOf(MR::Action::Draw)->icon().isNull());
    QVERIFY(ActionManager::instance()->mrAction(MR::Action::Draw)->icon.isNull());
}

void tst_ActionManager::exclusiveGroupsHaveTheirMembers_data()
{
    QTest::addColumn<QList<MR::Action>>("members");
    using enum MR::Action;
    QTest::newRow("drawing") << QList<MR::Action>{Draw, Erase, NonDrawingAction};
    QTest::newRow("erasers") << QList<MR::Action>{KneadedEraser, RubberEraser, VinylEraser};
    QTest::newRow("clones") << QList<MR::Action>{FreelyDrawOnClones, ClonesLockedForDrawing};
    QTest::newRow("transparency") << QList<MR::Action>{TransparencyShownAsSmallCheckersLight,
                                                       TransparencyShownAsSmallCheckersDark,
                                                       TransparencyShownAsLargeCheckersLight,
                                                       TransparencyShownAsLargeCheckersDark,
                                                       TransparencyShownAsWhite,
                                                       TransparencyShownAsLightGrey,
                                                       TransparencyShownAsDarkGrey,
                                                       TransparencyShownAsBlack};
}

void tst_ActionManager::exclusiveGroupsHaveTheirMembers()
{
    QFETCH(QList<MR::Action>, members);
    const QActionGroup *group = actionOf(members.first())->actionGroup();
    QVERIFY(group);
    QVERIFY(group->isExclusive());
    QList<QAction *> expected;
    for (const MR::Action member : members)
        expected << actionOf(member);
    QCOMPARE(group->actions(), expected);
}

void tst_ActionManager::pensAreNoGroup()
{
    for (const auto pen : {MR::Action::Pencil, MR::Action::Marker, MR::Action::Brush})
        QVERIFY(!actionOf(pen)->actionGroup());
}

void tst_ActionManager::nonDrawingMemberIsHiddenAndUnchecksTheOthers()
{
    QVERIFY(!actionOf(MR::Action::NonDrawingAction)->isVisible());
    actionOf(MR::Action::Draw)->setChecked(true);
    actionOf(MR::Action::NonDrawingAction)->setChecked(true);
    QVERIFY(!actionOf(MR::Action::Draw)->isChecked());
    QVERIFY(!actionOf(MR::Action::Erase)->isChecked());
}

void tst_ActionManager::noActionIsNullWithoutAReport()
{
    static int messages;
    messages = 0;
    const auto previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) { ++messages; });
    const ActionRecord *record = ActionManager::instance()->mrAction(MR::Action::NoAction);
    qInstallMessageHandler(previous);
    QCOMPARE(record, nullptr);
    QCOMPARE(messages, 0);
}

void tst_ActionManager::actionThatNothingCreatesIsReported()
{
    QTest::ignoreMessage(QtDebugMsg, "Model::ActionManager::mrAction action not found Toggle1Or3Drawings");
    QCOMPARE(ActionManager::instance()->mrAction(MR::Action::Toggle1Or3Drawings), nullptr);
}

void tst_ActionManager::undoActionsGetKeysAndToolTips()
{
    QUndoStack stack;
    QObject owner;
    QAction *undo = stack.createUndoAction(&owner, QStringLiteral("&Undo"));
    QAction *redo = stack.createRedoAction(&owner, QStringLiteral("&Redo"));
    ActionManager::instance()->insertUndoActions(undo, redo);
    QCOMPARE(actionOf(MR::Action::Undo), undo);
    QCOMPARE(actionOf(MR::Action::Redo), redo);
    QCOMPARE(undo->shortcut(), QKeySequence(QKeySequence::Undo));
    QCOMPARE(redo->shortcut(), QKeySequence(QKeySequence::Redo));
    QCOMPARE(undo->toolTip(), QStringLiteral("Undo [Ctrl+Z]"));
    QCOMPARE(undo->property("MRActionName").toString(), QStringLiteral("Undo"));
    QCOMPARE(redo->property("MRActionName").toString(), QStringLiteral("Redo"));
    QCOMPARE(undo->parent(), ActionManager::instance());

    // What outlives this test must not point to what does not.
    QTest::ignoreMessage(QtDebugMsg, "Replacing action \"Undo\"");
    QTest::ignoreMessage(QtDebugMsg, "Replacing action \"Redo\"");
    ActionManager::instance()->insertUndoActions(new QAction(ActionManager::instance()),
                                                 new QAction(ActionManager::instance()));
}

void tst_ActionManager::insertingTwiceKeepsTheNewerAndReports()
{
    ActionManager *manager = ActionManager::instance();
    auto *undo = new QAction(QStringLiteral("Newer undo"), manager);
    auto *redo = new QAction(QStringLiteral("Newer redo"), manager);
    QTest::ignoreMessage(QtDebugMsg, "Replacing action \"Undo\"");
    QTest::ignoreMessage(QtDebugMsg, "Replacing action \"Redo\"");
    manager->insertUndoActions(undo, redo);
    QCOMPARE(actionOf(MR::Action::Undo), undo);
    QCOMPARE(manager->mrAction(MR::Action::Undo)->text, QStringLiteral("Newer undo"));
}

void tst_ActionManager::secondFaceTakesTheNumber()
{
    QAction action(QStringLiteral("&Copy"));
    action.setShortcut(QKeySequence(QStringLiteral("Ctrl+C")));
    QPixmap pixmap(4, 4);
    pixmap.fill(Qt::red);
    const ActionRecord record{.action = &action,
                              .text = action.text(),
                              .icon = {},
                              .alternateText = QStringLiteral("Copy %n Drawings"),
                              .alternateIcon = QIcon(pixmap)};
    record.showFace(1, 3);
    QCOMPARE(action.text(), QStringLiteral("Copy 3 Drawings"));
    QCOMPARE(action.toolTip(), QStringLiteral("Copy 3 Drawings [Ctrl+C]"));
    QVERIFY(!action.icon().isNull());
    record.showFace(0, 1);
    QCOMPARE(action.text(), QStringLiteral("&Copy"));
    QCOMPARE(action.toolTip(), QStringLiteral("Copy [Ctrl+C]"));
    QVERIFY(action.icon().isNull());
}

void tst_ActionManager::actionWithoutASecondFaceKeepsItsFirst()
{
    QAction *draw = actionOf(MR::Action::Draw);
    const QString text = draw->text();
    ActionManager::instance()->setActionFace(MR::Action::Draw, 1, 2);
    QCOMPARE(draw->text(), text);
}

void tst_ActionManager::disablingRemembersWhatWasEnabled()
{
    ActionManager *manager = ActionManager::instance();
    actionOf(MR::Action::SaveScene)->setEnabled(false);
    manager->disableAllActions();
    for (const ActionRow &row : actionTable())
        QVERIFY(!actionOf(row.action)->isEnabled());
    manager->restoreAllActions();
    QVERIFY(!actionOf(MR::Action::SaveScene)->isEnabled());
    QVERIFY(actionOf(MR::Action::OpenScene)->isEnabled());
    QVERIFY(actionOf(MR::Action::Undo)->isEnabled());
    actionOf(MR::Action::SaveScene)->setEnabled(true);
}

void tst_ActionManager::restoringWithoutDisablingChangesNothing()
{
    ActionManager *manager = ActionManager::instance();
    manager->restoreAllActions();
    QVERIFY(actionOf(MR::Action::OpenScene)->isEnabled());
    // Nor does a second one put back an older state.
    manager->disableAllActions();
    manager->restoreAllActions();
    actionOf(MR::Action::OpenScene)->setEnabled(false);
    manager->restoreAllActions();
    QVERIFY(!actionOf(MR::Action::OpenScene)->isEnabled());
    actionOf(MR::Action::OpenScene)->setEnabled(true);
}

void tst_ActionManager::actionEnteredWhileDisabledStaysEnabled()
{
    ActionManager *manager = ActionManager::instance();
    manager->disableAllActions();
    QTest::ignoreMessage(QtDebugMsg, "Replacing action \"Undo\"");
    auto *undo = new QAction(manager);
    manager->insertAction(MR::Action::Undo, undo);
    manager->restoreAllActions();
    QVERIFY(undo->isEnabled());
}

void tst_ActionManager::hiddenActionKeepsItsState()
{
    ActionManager *manager = ActionManager::instance();
    QAction *hidden = actionOf(MR::Action::NonDrawingAction);
    manager->disableAllActions();
    manager->restoreAllActions();
    hidden->setVisible(true);
    const bool enabled = hidden->isEnabled();
    hidden->setVisible(false);
    QVERIFY(enabled);
}

void tst_ActionManager::actionGivesWhatTheRecordHolds()
{
    const ActionManager *manager = ActionManager::instance();
    QVERIFY(manager->action(MR::Action::Draw));
    QCOMPARE(manager->action(MR::Action::Draw), manager->mrAction(MR::Action::Draw)->action);
    QCOMPARE(manager->action(MR::Action::NoAction), nullptr);
    QTest::ignoreMessage(QtDebugMsg, "Model::ActionManager::mrAction action not found Toggle1Or3Drawings");
    QCOMPARE(manager->action(MR::Action::Toggle1Or3Drawings), nullptr);
}

void tst_ActionManager::actionsGivesAllThereAre()
{
    const QList<QAction *> all = ActionManager::instance()->actions();
    const QMetaEnum meta = QMetaEnum::fromType<MR::Action>();
    QSet<QString> names;
    int previous = -1;
    for (const QAction *action : all) {
        const QString name = action->property("MRActionName").toString();
        const int value = meta.keyToValue(name.toLatin1().constData());
        QVERIFY2(value > previous, qPrintable(name));
        previous = value;
        names.insert(name);
    }
    for (const ActionRow &row : actionTable())
        QVERIFY(names.contains(QString::fromLatin1(meta.valueToKey(static_cast<int>(row.action)))));
    QCOMPARE(all.size(), qsizetype(actionTable().size()));
}

void tst_ActionManager::enteredActionBecomesAChild()
{
    QObject owner;
    auto *redo = new QAction(&owner);
    QTest::ignoreMessage(QtDebugMsg, "Replacing action \"Redo\"");
    ActionManager::instance()->insertAction(MR::Action::Redo, redo);
    QCOMPARE(redo->parent(), ActionManager::instance());
}

void tst_ActionManager::actionWithoutANameIsReportedAndNotEntered()
{
    ActionManager *manager = ActionManager::instance();
    const QList<QAction *> before = manager->actions();
    QAction action;
    QTest::ignoreMessage(QtDebugMsg,
                         "Model::ActionManager::ActionManagerPrivate::insertAction Tried to add unnamed action");
    manager->insertAction(static_cast<MR::Action>(100000), &action);
    QCOMPARE(manager->actions(), before);
    QCOMPARE(action.parent(), nullptr);
    QVERIFY(!action.property("MRActionName").isValid());
}

QTEST_MAIN(tst_ActionManager)
#include "tst_actionmanager.moc"
