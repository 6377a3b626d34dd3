#include "libmodel/actions/actionmanager.h"

#include "libmodel/actions/actiontable.h"
#include "support/isolatedstore.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QGuiApplication>
#include <QMetaEnum>
#include <QPointer>
#include <QTest>
#include <QTranslator>
#include <QUndoGroup>
#include <QUndoStack>

#include <cstdio>

using namespace Model;

namespace {

QAction *actionOf(MR::Action id)
{
    const ActionRecord *record = ActionManager::instance()->mrAction(id);
    return record ? record->action : nullptr;
}

const char *keyOf(MR::Action action)
{
    return QMetaEnum::fromType<MR::Action>().valueToKey(static_cast<int>(action));
}

/// Gives each text back with the number that it was translated for.
class NumberTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *source, const char *, int n) const override
    {
        if (qstrcmp(context, "Model::ActionManager") != 0 || n < 0)
            return {};
        return QStringLiteral("%1 (%2)").arg(QString::fromUtf8(source)).arg(n);
    }
    [[nodiscard]] bool isEmpty() const override { return false; }
};

} // namespace

class tst_ActionManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void everyActionCarriesItsKey();
    void shortcutsHoldInTheWholeApplication();
    void toolTipTellsTheFirstShortcut_data();
    void toolTipTellsTheFirstShortcut();
    void platformWithoutAKeyForSavingAsGetsOne();
    void iconsNotDrawnAreLeftOut();

    void exclusiveGroupsHaveTheirMembers_data();
    void exclusiveGroupsHaveTheirMembers();
    void noOtherGroupsExist();
    void ofSeveralThatStartCheckedOneIs();
    void menusShowNoIcons();
    void pensAreNoGroup();
    void nonDrawingMemberIsHiddenAndUnchecksTheOthers();

    void noActionIsNullWithoutAReport();
    void actionThatNothingCreatesIsReported();
    void undoActionsGetKeysAndToolTips();
    void insertingTwiceKeepsTheNewerAndReports();

    void secondFaceTakesTheNumber();
    void secondFaceIsTranslatedForTheNumber();
    void playReadsStopWhilePlaying();
    void actionWithoutASecondFaceKeepsItsFirst();
    void unavailableActionTellsWhy();
    void reasonStaysWhenTheFaceChanges();
    void unavailableWithoutAReasonKeepsTheToolTip();
    void availabilityWaitsForRestoring_data();
    void availabilityWaitsForRestoring();
    void hiddenActionBecomesAvailableUnseen();
    void availabilityOfWhatIsNotThereIsReported();
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

void tst_ActionManager::everyActionCarriesItsKey()
{
    int count = 0;
    for (const ActionRow &row : actionTable()) {
        if (row.flags & ActionRow::Given)
            continue;
        QCOMPARE(actionOf(row.action)->property("MRActionName").toString(), QString::fromLatin1(keyOf(row.action)));
        QCOMPARE(actionOf(row.action)->parent(), ActionManager::instance());
        ++count;
    }
    QCOMPARE(count, 194);
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
    QTest::newRow("short name of its own") << MR::Action::OffPegs << "Off Pegs Tool";
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
    // The members of these groups follow each other without a gap.
    const auto row = [](const char *name, MR::Action first, MR::Action last) {
        QList<MR::Action> members;
        for (int value = static_cast<int>(first); value <= static_cast<int>(last); ++value)
            members << static_cast<MR::Action>(value);
        QTest::newRow(name) << members;
    };
    row("drawing", Draw, NonDrawingAction);
    row("erasers", KneadedEraser, VinylEraser);
    row("repeating", PlayLoop, PlayOnce);
    row("frame rates", FrameRate06, FrameRateCustom);
    row("grids", GridTypeFieldGuide, GridTypeRenaissance);
    row("drag modes", SlideMode, AddClonesMode);
    row("beyond", ShowNothingBeyond, CycleDrawingsBeyond);
    row("thumbnails", ThumbnailSizeTiny, ThumbnailSizeLarge);
    row("clones", FreelyDrawOnClones, ClonesLockedForDrawing);
    row("transparency", TransparencyShownAsSmallCheckersLight, TransparencyShownAsBlack);
    row("sides", XSheetLeftSide, XSheetRightSide);
    row("autosave intervals", AutoSaveInterval5Min, AutoSaveInterval60Min);
    row("autosave files", AutoSaveFiles1, AutoSaveFiles9);
    row("scales", UIScale75, UIScale150);
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

void tst_ActionManager::noOtherGroupsExist()
{
    QSet<QActionGroup *> groups;
    int members = 0;
    for (const QAction *action : ActionManager::instance()->actions()) {
        if (action->actionGroup()) {
            groups.insert(action->actionGroup());
            ++members;
        }
    }
    QCOMPARE(groups.size(), 14);
    QCOMPARE(members, 3 + 3 + 2 + 10 + 5 + 2 + 3 + 4 + 2 + 8 + 2 + 4 + 5 + 4);
}

void tst_ActionManager::ofSeveralThatStartCheckedOneIs()
{
    QVERIFY(actionRow(MR::Action::SlideMode)->flags & actionRow(MR::Action::AddClonesMode)->flags & ActionRow::Checked);
    QVERIFY(actionOf(MR::Action::SlideMode)->isChecked() != actionOf(MR::Action::AddClonesMode)->isChecked());
}

void tst_ActionManager::menusShowNoIcons()
{
    for (const QAction *action : ActionManager::instance()->actions())
        QVERIFY2(!action->isIconVisibleInMenu(), qPrintable(action->text()));
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

void tst_ActionManager::secondFaceIsTranslatedForTheNumber()
{
    NumberTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    ActionManager::instance()->setActionFace(MR::Action::CopyDrawing, 1, 7);
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(actionOf(MR::Action::CopyDrawing)->text(), QStringLiteral("Copy Selected Drawings (7)"));
    ActionManager::instance()->setActionFace(MR::Action::CopyDrawing, 0, 1);
    QCOMPARE(actionOf(MR::Action::CopyDrawing)->text(), QStringLiteral("Copy Drawing"));
}

void tst_ActionManager::playReadsStopWhilePlaying()
{
    const QAction *play = actionOf(MR::Action::Play);
    ActionManager::instance()->setActionFace(MR::Action::Play, 1, 1);
    QCOMPARE(play->text(), QStringLiteral("Stop"));
    QCOMPARE(play->toolTip(), QStringLiteral("Stop [Space]"));
    ActionManager::instance()->setActionFace(MR::Action::Play, 0, 1);
    QCOMPARE(play->text(), QStringLiteral("Play"));
    QCOMPARE(play->toolTip(), QStringLiteral("Play [Space]"));
}

void tst_ActionManager::unavailableActionTellsWhy()
{
    ActionManager *manager = ActionManager::instance();
    const QAction *clone = actionOf(MR::Action::AddCloneDrawing);
    manager->setAvailable(MR::Action::AddCloneDrawing, false, QStringLiteral("There is no drawing."));
    QVERIFY(!clone->isEnabled());
    QCOMPARE(clone->toolTip(), QStringLiteral("Add Clone Drawing [']\nThere is no drawing."));
    manager->setAvailable(MR::Action::AddCloneDrawing, false, QStringLiteral("The layer is hidden."));
    QCOMPARE(clone->toolTip(), QStringLiteral("Add Clone Drawing [']\nThe layer is hidden."));
    manager->setAvailable(MR::Action::AddCloneDrawing, true, QStringLiteral("Not told"));
    QVERIFY(clone->isEnabled());
    QCOMPARE(clone->toolTip(), QStringLiteral("Add Clone Drawing [']"));
}

void tst_ActionManager::reasonStaysWhenTheFaceChanges()
{
    ActionManager *manager = ActionManager::instance();
    const QAction *discard = actionOf(MR::Action::DiscardDrawing);
    manager->setAvailable(MR::Action::DiscardDrawing, false, QStringLiteral("No."));
    manager->setActionFace(MR::Action::DiscardDrawing, 1, 2);
    QCOMPARE(discard->toolTip(), QStringLiteral("Delete Selected Drawings [Ctrl+Del]\nNo."));
    manager->setActionFace(MR::Action::DiscardDrawing, 0, 1);
    manager->setAvailable(MR::Action::DiscardDrawing, true);
    QCOMPARE(discard->toolTip(), QStringLiteral("Delete Drawing [Ctrl+Del]"));
}

void tst_ActionManager::unavailableWithoutAReasonKeepsTheToolTip()
{
    ActionManager::instance()->setAvailable(MR::Action::Zoom, false);
    QVERIFY(!actionOf(MR::Action::Zoom)->isEnabled());
    QCOMPARE(actionOf(MR::Action::Zoom)->toolTip(), QStringLiteral("Zoom [Z]"));
    ActionManager::instance()->setAvailable(MR::Action::Zoom, true);
}

void tst_ActionManager::availabilityWaitsForRestoring_data()
{
    QTest::addColumn<MR::Action>("action");
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("after");
    for (const MR::Action action : {MR::Action::Play, MR::Action::Undo}) {
        for (const bool before : {false, true}) {
            for (const bool after : {false, true})
                QTest::addRow("%s from %d to %d", keyOf(action), before, after) << action << before << after;
        }
    }
}

void tst_ActionManager::availabilityWaitsForRestoring()
{
    QFETCH(MR::Action, action);
    QFETCH(bool, before);
    QFETCH(bool, after);
    ActionManager *manager = ActionManager::instance();
    manager->setAvailable(action, before);
    manager->disableAllActions();
    manager->setAvailable(action, after, QStringLiteral("Why"));
    QVERIFY(!actionOf(action)->isEnabled());
    manager->restoreAllActions();
    QCOMPARE(actionOf(action)->isEnabled(), after);
    QCOMPARE(actionOf(action)->toolTip().endsWith(QLatin1String("\nWhy")), !after);
    manager->setAvailable(action, true);
}

void tst_ActionManager::hiddenActionBecomesAvailableUnseen()
{
    ActionManager *manager = ActionManager::instance();
    QAction *hidden = actionOf(MR::Action::MuteAudio);
    hidden->setVisible(false);
    manager->setAvailable(MR::Action::MuteAudio, false);
    manager->setAvailable(MR::Action::MuteAudio, true);
    QVERIFY(!hidden->isVisible());
    hidden->setVisible(true);
    QVERIFY(hidden->isEnabled());
    hidden->setVisible(false);
    manager->setAvailable(MR::Action::MuteAudio, false);
    hidden->setVisible(true);
    const bool enabled = hidden->isEnabled();
    manager->setAvailable(MR::Action::MuteAudio, true);
    QVERIFY(!enabled);
}

void tst_ActionManager::availabilityOfWhatIsNotThereIsReported()
{
    QTest::ignoreMessage(QtDebugMsg, "Model::ActionManager::mrAction action not found Toggle1Or3Drawings");
    ActionManager::instance()->setAvailable(MR::Action::Toggle1Or3Drawings, true);
    ActionManager::instance()->setAvailable(MR::Action::NoAction, true);
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

// No test function outlives the application, so its end is looked at here.
int main(int argc, char **argv)
{
    QPointer<ActionManager> catalogue;
    int failures = 0;
    {
        const QApplication application(argc, argv);
        tst_ActionManager test;
        QTEST_SET_MAIN_SOURCE_PATH
        failures = QTest::qExec(&test, argc, argv);
        catalogue = ActionManager::instance();
    }
    if (catalogue) {
        std::fputs("FAIL!  : the catalogue outlives the application\n", stderr);
        ++failures;
    }
    return failures;
}

#include "tst_actionmanager.moc"
