#include "mainwindowfixture.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/actions/shortcutpage.h"

#include <QMenu>
#include <QMenuBar>
#include <QShortcut>
#include <QTest>
#include <QUndoStack>
#include <qpa/qwindowsysteminterface.h>

namespace {

using enum MR::Action;

/// A sub-menu: the actions that stand in it, in order.
struct SubMenu
{
    QString title;
    QList<MR::Action> actions;
};

/// A menu: what stands in it, in order, sub-menus by their titles.
struct Menu
{
    QString title;
    QList<QVariant> entries;
    QList<SubMenu> subMenus;
};

QVariant a(MR::Action action)
{
    return QVariant::fromValue(action);
}

/// What must stand in the menus, in order; more may stand between.
QList<Menu> expectedMenus()
{
    return {
        {"File",
         {a(NewScene), a(OpenScene), "Open Recent", a(SaveScene), a(SaveSceneAs), a(Import), "Export", a(SceneSettings),
          a(Quit)},
         {{"Export", {ExportFrames, ExportExposureSheet, ExportVideo}}}},
        {"Edit",
         {a(Undo), a(Redo), a(AddCloneDrawing), a(AddBlankDrawing), a(InsertBlankDrawing), a(TurnCloneIntoOriginal),
          a(CutDrawing), a(CopyDrawing), a(PasteDrawing), a(ClearDrawingMakingBlank), a(LoseDrawingMakingHold),
          a(DiscardDrawing), a(DeleteCloneDrawing), a(BackDeleteDrawing), a(SelectAllDrawings),
          a(CloneEachSelectedDrawingOnce), a(CycleSelectedDrawingsOnce)},
         {}},
        {"Draw",
         {a(Draw), a(Erase), a(DrawEraseToggle), "Drawing Tools", "Erasing Tools", a(ResetDrawingUserSettings),
          a(ResetErasingUserSettings), a(DrawSettings), a(EraseSettings), a(ToggleCursor)},
         {{"Drawing Tools",
           {Pencil, PencilPreset1, PencilPreset2, PencilPreset3, Marker, MarkerPreset1, MarkerPreset2, MarkerPreset3,
            Brush, BrushPreset1, BrushPreset2, BrushPreset3}},
          {"Erasing Tools", {KneadedEraser, RubberEraser, VinylEraser}}}},
        {"Flip && Play",
         {a(Play), a(PlayLoop), a(PlayBackwards), a(PlayStopAndStay), "Playback Mode",
          "Playback Rate (Frames Per Second)", "Flipping (Use Keyboard)", a(JumpToStart), a(JumpToEnd),
          "Range - Start && End", a(MuteAudio), a(DiscardAudio)},
         {{"Playback Mode", {PlayLoop, PlayOnce}},
          {"Playback Rate (Frames Per Second)",
           {FrameRate06, FrameRate12, FrameRate12_5, FrameRate15, FrameRate24, FrameRate25, FrameRate30, FrameRate50,
            FrameRate60, FrameRateCustom}},
          {"Flipping (Use Keyboard)",
           {StepBack, StepForward, StepBackSkippingLocalClones, StepForwardSkippingLocalClones, SkipBackToKeyDrawing,
            SkipForwardToKeyDrawing, ReturnFlip}},
          {"Range - Start && End",
           {RangeStartStepBack, RangeStartStepForward, RangeEndStepBack, RangeEndStepForward, RangeStartToFirstFrame,
            RangeEndToLastFrame}}}},
        {"Light Table",
         {a(CustomizeBacklight), "Zoom View", "Rotate View", "Grid", a(MarkAsKeyDrawing), a(UnmarkAllKeyDrawings),
          a(OnlyBacklightKeyFrames), a(MirrorView), a(OffPegs)},
         {{"Zoom View", {Pan, Zoom, ResetView, FitPaperToView, ZoomIn, ZoomOut, ViewToX1}},
          {"Rotate View", {Rotate}},
          {"Grid",
           {GridOnOff, GridTypeFieldGuide, GridTypeSafety, GridTypeThirds, GridTypeDiagonals, GridTypeRenaissance}}}},
        {"X-Sheet",
         {a(XSheetShow), a(XSheetOppositeSide), a(XSheetLeftSide), a(XSheetRightSide), a(XSheetDetachSeparateWindow),
          a(AddClonesMode), "Active Layer", "What to Display Beyond Last Drawing", a(MergeLayerDown),
          a(UnlinkAllLayers), a(LinkAllLayers), "Thumbnail Size"},
         {{"Active Layer",
           {NewLayer, DuplicateActiveLayer, LayerAbove, LayerBelow, LayerTop, LayerBottom, DiscardActiveLayer,
            LayerVisibility, LayerLink}},
          {"What to Display Beyond Last Drawing",
           {ShowNothingBeyond, FreezeLastDrawingBeyond, CycleDrawingsBeyond, ShowBeyondButtons}},
          {"Thumbnail Size", {ThumbnailSizeTiny, ThumbnailSizeSmall, ThumbnailSizeMedium, ThumbnailSizeLarge}}}},
        {"Pick Up",
         {a(Lasso), a(Cutter), a(PickUpAllOfThisDrawing), a(StampFloatingSelection),
          a(StampFloatingSelectionKeepFloating), a(DropFloatingSelection), a(GetLatestFloatingSelectionBack),
          a(FloatingSelection), a(CollapseVectorData), a(CollapseVectorDataAutomatically)},
         {}},
        {"Window",
         {a(ReferenceDisplay), a(ToolBar), a(ToolBarOppositeSide), a(CustomizeToolBar), a(PrimarySpeedDial),
          a(SecondarySpeedDial), a(CustomizeSpeedDials), a(Settings)},
         {}},
        {"&Help", {a(KeyboardShortcuts), a(CommunityForum), a(ProvideFeedback), a(About)}, {}},
    };
}

/// Is \a entry what stands at \a expected (an action, or the title of a sub-menu)?
bool isThat(const QAction *entry, const QVariant &expected)
{
    if (expected.metaType() == QMetaType::fromType<MR::Action>())
        return entry == action(expected.value<MR::Action>());
    return entry->menu() && entry->menu()->title() == expected.toString();
}

} // namespace

/// The menus of the real window.
class tst_MenuBar : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void menusStandInTheirOrder();
    void actionsStandInTheirOrder();
    void noMenuBeginsOrEndsWithALineOrHasTwoInARow();
    void everyWorkingActionStandsInAMenu();
    void ownEntriesHaveKeysOfTheirOwn();
    void ownKeysStandInThePageOfShortcuts();
    void toolTipsAreShownInAllMenus();
    void unavailableEntryTellsWhatItLacks();
    void ownEntriesNeedAScene();
    void frameIsPutOnThePegsFromTheMenu();
    void f10OpensTheFirstMenu();
    void altAndALetterOpensTheMenu();
    void menusAreWalkedThroughByKey();

private:
    QMenuBar *menuBar() const { return m_window->menuBar(); }
    QList<QMenu *> allMenus() const;
    void pressKey(int key, Qt::KeyboardModifiers modifiers = {});
    void closeMenus();
};

QList<QMenu *> tst_MenuBar::allMenus() const
{
    QList<QMenu *> menus;
    for (const QAction *top : menuBar()->actions()) {
        menus.append(top->menu());
        for (const QAction *entry : top->menu()->actions()) {
            if (entry->menu())
                menus.append(entry->menu());
        }
    }
    return menus;
}

void tst_MenuBar::pressKey(int key, Qt::KeyboardModifiers modifiers)
{
    const QWidget *popup = QApplication::activePopupWidget();
    QWindow *window = popup ? popup->windowHandle() : m_window->windowHandle();
    QWindowSystemInterface::handleKeyEvent(window, QEvent::KeyPress, key, modifiers);
    QWindowSystemInterface::handleKeyEvent(window, QEvent::KeyRelease, key, modifiers);
    QCoreApplication::processEvents();
}

void tst_MenuBar::closeMenus()
{
    while (QApplication::activePopupWidget())
        pressKey(Qt::Key_Escape);
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    // Once more for the menu bar itself, which has the keyboard then.
    pressKey(Qt::Key_Escape);
}

void tst_MenuBar::menusStandInTheirOrder()
{
    QStringList titles;
    for (const QAction *top : menuBar()->actions())
        titles.append(top->text());
    const QStringList expected{"File",    "Edit",    "Draw",   "Flip && Play", "Light Table",
                               "X-Sheet", "Pick Up", "Window", "&Help"};
    QCOMPARE(titles, expected);
}

void tst_MenuBar::actionsStandInTheirOrder()
{
    const QList<Menu> expected = expectedMenus();
    for (int i = 0; i < expected.size(); ++i) {
        const QMenu *menu = menuBar()->actions().at(i)->menu();
        auto entry = expected.at(i).entries.begin();
        for (const QAction *candidate : menu->actions()) {
            if (entry != expected.at(i).entries.end() && isThat(candidate, *entry))
                ++entry;
        }
        QVERIFY2(entry == expected.at(i).entries.end(), qPrintable(expected.at(i).title));
        for (const SubMenu &sub : expected.at(i).subMenus) {
            const QList<QAction *> entries = menu->actions();
            const auto found =
                std::ranges::find_if(entries, [&sub](const QAction *top) { return isThat(top, sub.title); });
            QVERIFY2(found != entries.end(), qPrintable(sub.title));
            auto wanted = sub.actions.begin();
            for (const QAction *candidate : (*found)->menu()->actions()) {
                if (wanted != sub.actions.end() && candidate == action(*wanted))
                    ++wanted;
            }
            QVERIFY2(wanted == sub.actions.end(), qPrintable(sub.title));
        }
    }
}

void tst_MenuBar::noMenuBeginsOrEndsWithALineOrHasTwoInARow()
{
    for (const QMenu *menu : allMenus()) {
        const QList<QAction *> entries = menu->actions();
        QVERIFY(!entries.isEmpty());
        QVERIFY2(!entries.constFirst()->isSeparator() && !entries.constLast()->isSeparator(),
                 qPrintable(menu->title()));
        for (int i = 1; i < entries.size(); ++i)
            QVERIFY2(!entries.at(i)->isSeparator() || !entries.at(i - 1)->isSeparator(), qPrintable(menu->title()));
    }
}

void tst_MenuBar::everyWorkingActionStandsInAMenu()
{
    QSet<const QAction *> reachable;
    for (const QMenu *menu : allMenus()) {
        for (const QAction *entry : menu->actions())
            reachable.insert(entry);
    }
    for (const QAction *candidate : Model::ActionManager::instance()->actions()) {
        const bool isYetToCome = candidate->toolTip().endsWith("Not in this version yet");
        if (candidate->isVisible() && !isYetToCome)
            QVERIFY2(reachable.contains(candidate), qPrintable(candidate->text()));
    }
}

void tst_MenuBar::ownEntriesHaveKeysOfTheirOwn()
{
    QSet<QKeySequence> taken;
    for (const QAction *candidate : Model::ActionManager::instance()->actions()) {
        for (const QKeySequence &key : candidate->shortcuts())
            taken.insert(key);
    }
    int own = 0;
    for (const QMenu *menu : allMenus()) {
        for (const QAction *entry : menu->actions()) {
            if (entry->parent() == Model::ActionManager::instance() || entry->shortcut().isEmpty())
                continue;
            QVERIFY2(!taken.contains(entry->shortcut()), qPrintable(entry->text()));
            taken.insert(entry->shortcut());
            ++own;
        }
    }
    QCOMPARE(own, 8 + 8 + 2); // zooms, directions, turns
}

void tst_MenuBar::ownKeysStandInThePageOfShortcuts()
{
    QStringList own;
    for (const QMenu *menu : allMenus()) {
        for (const QAction *entry : menu->actions()) {
            if (entry->parent() != Model::ActionManager::instance() && !entry->shortcut().isEmpty())
                own.append(entry->shortcut().toString(QKeySequence::PortableText));
        }
    }
    for (const QShortcut *shortcut : menuBar()->findChildren<QShortcut *>())
        own.append(shortcut->key().toString(QKeySequence::PortableText));
    QVERIFY(own.contains("F10") && own.contains("Num+8"));
    // Each row of the page is a line. Those of the number pad share one.
    const QStringList rows = Model::shortcutPage().split('\n').filter("<kbd>");
    for (const QString &key : own) {
        const QString cell = "<kbd>" + QString(key).remove("Num+") + "</kbd>";
        const bool isListed = std::ranges::any_of(rows, [&](const QString &row) {
            return row.contains(cell) && row.contains("On the number pad") == key.startsWith("Num+");
        });
        QVERIFY2(isListed, qPrintable(key));
    }
}

void tst_MenuBar::toolTipsAreShownInAllMenus()
{
    for (const QMenu *menu : allMenus())
        QVERIFY2(menu->toolTipsVisible(), qPrintable(menu->title()));
}

void tst_MenuBar::unavailableEntryTellsWhatItLacks()
{
    for (const QAction *candidate : Model::ActionManager::instance()->actions()) {
        if (!candidate->isVisible() || candidate->isEnabled())
            continue;
        const QStringList lines = candidate->toolTip().split('\n');
        QVERIFY2(lines.size() == 2 && !lines.at(1).isEmpty(), qPrintable(candidate->toolTip()));
    }
    QVERIFY(action(MR::Action::SceneSettings)->toolTip().endsWith("\nNot in this version yet"));
}

void tst_MenuBar::ownEntriesNeedAScene()
{
    QList<const QAction *> own;
    for (const QMenu *menu : allMenus()) {
        for (const QAction *entry : menu->actions()) {
            if (entry->parent() != Model::ActionManager::instance() && !entry->shortcut().isEmpty())
                own.append(entry);
        }
    }
    QCOMPARE(own.size(), 18);
    for (const QAction *entry : own)
        QVERIFY2(entry->isEnabled() && !entry->toolTip().contains('\n'), qPrintable(entry->toolTip()));
    // In a window that is closed nothing is left to look at.
    scene()->undoStack()->setClean();
    QVERIFY(m_window->close());
    QVERIFY(!m_window->currentScene());
    for (const QAction *entry : own) {
        QVERIFY2(!entry->isEnabled(), qPrintable(entry->text()));
        QCOMPARE(entry->toolTip(), entry->iconText() + "\nNo scene is open");
    }
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->newSceneIfNoneOpen();
    for (const QAction *entry : own)
        QVERIFY2(entry->isEnabled() && !entry->toolTip().contains('\n'), qPrintable(entry->toolTip()));
}

void tst_MenuBar::frameIsPutOnThePegsFromTheMenu()
{
    QAction *entry = nullptr;
    for (const QMenu *menu : allMenus()) {
        for (QAction *candidate : menu->actions()) {
            if (candidate->text() == "Put Frame On the Pegs")
                entry = candidate;
        }
    }
    QVERIFY(entry && !entry->isEnabled());
    QCOMPARE(entry->toolTip(), QStringLiteral("Put Frame On the Pegs\nThe frame is on its pegs"));
    action(MR::Action::AddBlankDrawing)->trigger();
    scene()->setCurrentDrawingOffPegsTransform(QTransform::fromTranslate(20, 10));
    QVERIFY(entry->isEnabled());
    action(MR::Action::StepBack)->trigger();
    QVERIFY(!entry->isEnabled());
    action(MR::Action::StepForward)->trigger();
    entry->trigger();
    QVERIFY(scene()->offPegsTransformOfFrame(2).isIdentity());
    QVERIFY(!entry->isEnabled());
    action(MR::Action::Undo)->trigger();
    QCOMPARE(scene()->offPegsTransformOfFrame(2), QTransform::fromTranslate(20, 10));
    QVERIFY(entry->isEnabled());
    // Nothing that is under way is lost, and nothing goes on over it.
    action(MR::Action::Marker)->trigger();
    press(paperPoint(-20, 0));
    moveTo(paperPoint(0, 20));
    moveTo(paperPoint(30, 0));
    entry->trigger();
    release(paperPoint(30, 0));
    QVERIFY(scene()->offPegsTransformOfFrame(2).isIdentity());
    QCOMPARE(scene()->undoStack()->undoText(), QStringLiteral("Put Frame On the Pegs"));
    QCOMPARE(scene()->undoStack()->text(scene()->undoStack()->index() - 2), QStringLiteral("Draw"));
    action(MR::Action::Undo)->trigger();
    action(MR::Action::Play)->trigger();
    QVERIFY(entry->isEnabled());
    entry->trigger();
    QCOMPARE(action(MR::Action::Play)->text(), QStringLiteral("Play"));
    QCOMPARE(scene()->scrubFrame(), -1);
    QVERIFY(scene()->offPegsTransformOfFrame(2).isIdentity());
    newCleanScene();
    QVERIFY(!entry->isEnabled());
}

void tst_MenuBar::f10OpensTheFirstMenu()
{
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    paper()->setFocus();
    pressKey(Qt::Key_F10);
    QMenu *first = menuBar()->actions().constFirst()->menu();
    QTRY_VERIFY(first->isVisible());
    QVERIFY(QTest::qWaitForWindowExposed(first));
    closeMenus();
    QTRY_VERIFY(paper()->hasFocus());
}

void tst_MenuBar::altAndALetterOpensTheMenu()
{
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    pressKey(Qt::Key_H, Qt::AltModifier);
    QMenu *help = menuBar()->actions().constLast()->menu();
    QTRY_VERIFY(help->isVisible());
    closeMenus();
}

void tst_MenuBar::menusAreWalkedThroughByKey()
{
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QStringList titles;
    for (const QAction *top : menuBar()->actions())
        titles.append(top->text());
    const auto openMenu = [this] {
        for (const QAction *top : menuBar()->actions()) {
            if (top->menu()->isVisible())
                return top->text();
        }
        return QString();
    };
    pressKey(Qt::Key_F10);
    QStringList seen;
    // Where the first entry that can be chosen is a sub-menu, it opens on the way.
    for (int presses = 0; presses < 2 * titles.size() && seen.size() < titles.size(); ++presses) {
        if (seen.isEmpty() || seen.constLast() != openMenu())
            seen.append(openMenu());
        pressKey(Qt::Key_Right);
    }
    QCOMPARE(seen, titles);
    closeMenus();
}

QTEST_MAIN(tst_MenuBar)
#include "tst_menubar.moc"
