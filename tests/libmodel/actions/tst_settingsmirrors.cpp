#include "libmodel/actions/settingsmirrors.h"

#include "libmodel/actions/actionmanager.h"
#include "support/isolatedstore.h"

#include <QAction>
#include <QMetaEnum>
#include <QSettings>
#include <QTest>

#include <functional>

using namespace Model;
using MR::Action;

namespace {

QAction *actionOf(Action id)
{
    return ActionManager::instance()->mrAction(id)->action;
}

/// A setting, whatever its type, as a number.
struct Setting
{
    std::function<int()> get;
    std::function<void(int)> set;
};

template<typename T, typename Value>
Setting setting(T (Settings::*get)() const, void (Settings::*set)(Value))
{
    return {[get] { return static_cast<int>((Settings::instance()->*get)()); },
            [set](int value) { (Settings::instance()->*set)(static_cast<T>(value)); }};
}

/// What the actions of a group make of a setting.
struct Group
{
    Setting setting;
    QList<std::pair<int, Action>> choices;
};

/// Values that rise by one from 0 together with the actions.
QList<std::pair<int, Action>> inOrder(Action first, int count)
{
    QList<std::pair<int, Action>> choices;
    for (int value = 0; value < count; ++value)
        choices << std::pair(value, static_cast<Action>(static_cast<int>(first) + value));
    return choices;
}

} // namespace

Q_DECLARE_METATYPE(Setting)
Q_DECLARE_METATYPE(Group)

class tst_SettingsMirrors : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void actionsStartAsTheSettingsAre();
    void storedNumberThatNoActionStandsForGivesWayToTheDefault_data();
    void storedNumberThatNoActionStandsForGivesWayToTheDefault();
    void gridStaysOffAtTheStart();

    void actionsOfAGroupAndTheirSettingFollowEachOther_data();
    void actionsOfAGroupAndTheirSettingFollowEachOther();
    void switchAndItsSettingFollowEachOther_data();
    void switchAndItsSettingFollowEachOther();
    void choiceIsStored();

    void togglingTheCursorFlipsItsType();
    void thumbnailsStepAndStopAtTheEnds();
    void dragModeActivatesTheOtherOne();
    void nextGridTypeGoesRoundAndShowsTheGrid();
    void choosingAGridTypeShowsTheGrid_data();
    void choosingAGridTypeShowsTheGrid();
    void gridTypeSetElsewhereDoesNotShowTheGrid();

private:
    IsolatedStore m_store;
};

void tst_SettingsMirrors::initTestCase()
{
    // None of these is offered: no number, one that makes no sense, and one between those that are.
    m_store.load(QStringLiteral("Preferences/AutoSave/IntervalMins"), QStringLiteral("abc"));
    m_store.load(QStringLiteral("Preferences/AutoSave/NumFiles"), 0);
    m_store.load(QStringLiteral("Preferences/UIScalePercent"), 110);
    Settings *settings = Settings::instance();
    settings->setTransparencyType(MR::TransparencyType::TransparencyDarkGrey);
    settings->setClonesLockedForDrawing(true);
    settings->setDrawCursorOpacity(MR::DrawCursorOpacity::Opaque);
    settings->setGridType(MR::GridType::Thirds);
    settings->setThumbnailSize(MR::ThumbnailSize::ThumbnailLarge);
    settings->setSlideMode(true);
    settings->setShowXSheetTopBar(true);
    settings->setCollapseAutomatically(true);
    settings->setAutoSaveEnabled(true);
    ActionManager::instance()->createActions();
}

void tst_SettingsMirrors::actionsStartAsTheSettingsAre()
{
    for (const Action action : {Action::TransparencyShownAsDarkGrey, Action::ClonesLockedForDrawing,
                                Action::GridTypeThirds, Action::ThumbnailSizeLarge, Action::SlideMode,
                                Action::XSheetTopBar, Action::CollapseVectorDataAutomatically, Action::AutoSave})
        QVERIFY2(actionOf(action)->isChecked(), qPrintable(actionOf(action)->text()));
    for (const Action action :
         {Action::FaintCursor, Action::ShowBeyondButtons, Action::AddClonesMode, Action::FreelyDrawOnClones})
        QVERIFY2(!actionOf(action)->isChecked(), qPrintable(actionOf(action)->text()));
    const Settings *settings = Settings::instance();
    QCOMPARE(settings->transparencyType(), MR::TransparencyType::TransparencyDarkGrey);
    QCOMPARE(settings->drawCursorOpacity(), MR::DrawCursorOpacity::Opaque);
    QCOMPARE(settings->thumbnailSize(), MR::ThumbnailSize::ThumbnailLarge);
    QVERIFY(settings->slideMode());
}

void tst_SettingsMirrors::storedNumberThatNoActionStandsForGivesWayToTheDefault_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("expected");
    QTest::addColumn<QString>("path");
    QTest::addColumn<Action>("checked");
    const Settings *settings = Settings::instance();
    QTest::newRow("interval") << settings->autoSaveIntervalMins() << 15 << "Preferences/AutoSave/IntervalMins"
                              << Action::AutoSaveInterval15Min;
    QTest::newRow("files") << settings->autoSaveNumFiles() << 3 << "Preferences/AutoSave/NumFiles"
                           << Action::AutoSaveFiles3;
    QTest::newRow("scale") << settings->uiScalePercent() << 100 << "Preferences/UIScalePercent" << Action::UIScale100;
}

void tst_SettingsMirrors::storedNumberThatNoActionStandsForGivesWayToTheDefault()
{
    QFETCH(int, expected);
    QFETCH(QString, path);
    QFETCH(Action, checked);
    QTEST(expected, "value");
    QCOMPARE(QSettings().value(path), QVariant(expected));
    QVERIFY(actionOf(checked)->isChecked());
}

void tst_SettingsMirrors::gridStaysOffAtTheStart()
{
    QVERIFY(!actionOf(Action::GridOnOff)->isChecked());
}

void tst_SettingsMirrors::actionsOfAGroupAndTheirSettingFollowEachOther_data()
{
    QTest::addColumn<Group>("group");
    const auto row = [](const char *name, const Setting &setting, const QList<std::pair<int, Action>> &choices) {
        QTest::newRow(name) << Group{setting, choices};
    };
    row("autosave interval", setting(&Settings::autoSaveIntervalMins, &Settings::setAutoSaveIntervalMins),
        {{5, Action::AutoSaveInterval5Min},
         {15, Action::AutoSaveInterval15Min},
         {30, Action::AutoSaveInterval30Min},
         {60, Action::AutoSaveInterval60Min}});
    row("autosave files", setting(&Settings::autoSaveNumFiles, &Settings::setAutoSaveNumFiles),
        {{1, Action::AutoSaveFiles1},
         {2, Action::AutoSaveFiles2},
         {3, Action::AutoSaveFiles3},
         {5, Action::AutoSaveFiles5},
         {9, Action::AutoSaveFiles9}});
    row("scale", setting(&Settings::uiScalePercent, &Settings::setUiScalePercent),
        {{75, Action::UIScale75}, {100, Action::UIScale100}, {125, Action::UIScale125}, {150, Action::UIScale150}});
    row("transparency", setting(&Settings::transparencyType, &Settings::setTransparencyType),
        inOrder(Action::TransparencyShownAsSmallCheckersLight, 8));
    row("grid", setting(&Settings::gridType, &Settings::setGridType), inOrder(Action::GridTypeFieldGuide, 5));
    row("thumbnails", setting(&Settings::thumbnailSize, &Settings::setThumbnailSize),
        inOrder(Action::ThumbnailSizeTiny, 4));
    row("drag mode", setting(&Settings::slideMode, &Settings::setSlideMode),
        {{1, Action::SlideMode}, {0, Action::AddClonesMode}});
    row("clones", setting(&Settings::clonesLockedForDrawing, &Settings::setClonesLockedForDrawing),
        {{0, Action::FreelyDrawOnClones}, {1, Action::ClonesLockedForDrawing}});
}

void tst_SettingsMirrors::actionsOfAGroupAndTheirSettingFollowEachOther()
{
    QFETCH(Group, group);
    for (const auto &[value, action] : group.choices) {
        actionOf(action)->trigger();
        QCOMPARE(group.setting.get(), value);
    }
    for (const auto &[value, action] : group.choices) {
        group.setting.set(value);
        for (const auto &[otherValue, other] : group.choices)
            QCOMPARE(actionOf(other)->isChecked(), other == action);
    }
}

void tst_SettingsMirrors::switchAndItsSettingFollowEachOther_data()
{
    QTest::addColumn<Action>("action");
    QTest::addColumn<Setting>("setting");
    QTest::addColumn<int>("whenChecked");
    QTest::newRow("autosave") << Action::AutoSave << setting(&Settings::autoSaveEnabled, &Settings::setAutoSaveEnabled)
                              << 1;
    QTest::newRow("beyond buttons") << Action::ShowBeyondButtons
                                    << setting(&Settings::showBeyondButtons, &Settings::setShowBeyondButtons) << 1;
    QTest::newRow("top bar") << Action::XSheetTopBar
                             << setting(&Settings::showXSheetTopBar, &Settings::setShowXSheetTopBar) << 1;
    QTest::newRow("collapsing") << Action::CollapseVectorDataAutomatically
                                << setting(&Settings::collapseAutomatically, &Settings::setCollapseAutomatically) << 1;
    QTest::newRow("faint cursor") << Action::FaintCursor
                                  << setting(&Settings::drawCursorOpacity, &Settings::setDrawCursorOpacity)
                                  << static_cast<int>(MR::DrawCursorOpacity::Faint);
}

void tst_SettingsMirrors::switchAndItsSettingFollowEachOther()
{
    QFETCH(Action, action);
    QFETCH(Setting, setting);
    QFETCH(int, whenChecked);
    for (const bool checked : {false, true, false, true}) {
        actionOf(action)->setChecked(checked);
        QCOMPARE(setting.get() == whenChecked, checked);
    }
    actionOf(action)->trigger();
    QCOMPARE(setting.get(), 1 - whenChecked);
    setting.set(whenChecked);
    QVERIFY(actionOf(action)->isChecked());
    setting.set(1 - whenChecked);
    QVERIFY(!actionOf(action)->isChecked());
}

void tst_SettingsMirrors::choiceIsStored()
{
    actionOf(Action::AutoSaveFiles9)->trigger();
    QCOMPARE(QSettings().value(QStringLiteral("Preferences/AutoSave/NumFiles")).toInt(), 9);
    actionOf(Action::GridTypeDiagonals)->trigger();
    QCOMPARE(QSettings().value(QStringLiteral("Preferences/Grid/Type")).toString(), QStringLiteral("Diagonals"));
}

void tst_SettingsMirrors::togglingTheCursorFlipsItsType()
{
    QCOMPARE(Settings::instance()->drawCursorType(), MR::DrawCursorType::AdaptToSize);
    actionOf(Action::ToggleCursor)->trigger();
    QCOMPARE(Settings::instance()->drawCursorType(), MR::DrawCursorType::FixedSmall);
    actionOf(Action::ToggleCursor)->trigger();
    QCOMPARE(Settings::instance()->drawCursorType(), MR::DrawCursorType::AdaptToSize);
}

void tst_SettingsMirrors::thumbnailsStepAndStopAtTheEnds()
{
    Settings *settings = Settings::instance();
    settings->setThumbnailSize(MR::ThumbnailSize::ThumbnailTiny);
    QList<int> sizes;
    for (int step = 0; step < 4; ++step) {
        actionOf(Action::ThumbnailSizeLarger)->trigger();
        sizes << static_cast<int>(settings->thumbnailSize());
    }
    for (int step = 0; step < 4; ++step) {
        actionOf(Action::ThumbnailSizeSmaller)->trigger();
        sizes << static_cast<int>(settings->thumbnailSize());
    }
    const QList<int> expected{1, 2, 3, 3, 2, 1, 0, 0};
    QCOMPARE(sizes, expected);
    QVERIFY(actionOf(Action::ThumbnailSizeTiny)->isChecked());
}

void tst_SettingsMirrors::dragModeActivatesTheOtherOne()
{
    actionOf(Action::AddClonesMode)->trigger();
    actionOf(Action::ToggleXSheetDragMode)->trigger();
    QVERIFY(actionOf(Action::SlideMode)->isChecked());
    QVERIFY(Settings::instance()->slideMode());
    actionOf(Action::ToggleXSheetDragMode)->trigger();
    QVERIFY(actionOf(Action::AddClonesMode)->isChecked());
    QVERIFY(!actionOf(Action::SlideMode)->isChecked());
}

void tst_SettingsMirrors::nextGridTypeGoesRoundAndShowsTheGrid()
{
    Settings::instance()->setGridType(MR::GridType::Thirds);
    actionOf(Action::GridOnOff)->setChecked(false);
    QList<int> types;
    for (int step = 0; step < 5; ++step) {
        actionOf(Action::GridTypeNext)->trigger();
        types << static_cast<int>(Settings::instance()->gridType());
        QVERIFY(actionOf(Action::GridOnOff)->isChecked());
    }
    const QList<int> expected{3, 4, 0, 1, 2};
    QCOMPARE(types, expected);
    QVERIFY(actionOf(Action::GridTypeThirds)->isChecked());
}

void tst_SettingsMirrors::choosingAGridTypeShowsTheGrid_data()
{
    QTest::addColumn<MR::GridType>("before");
    QTest::newRow("another one") << MR::GridType::Thirds;
    QTest::newRow("the one that was hidden") << MR::GridType::Safety;
}

void tst_SettingsMirrors::choosingAGridTypeShowsTheGrid()
{
    QFETCH(MR::GridType, before);
    Settings::instance()->setGridType(before);
    actionOf(Action::GridOnOff)->setChecked(false);
    actionOf(Action::GridTypeSafety)->trigger();
    QVERIFY(actionOf(Action::GridOnOff)->isChecked());
    QCOMPARE(Settings::instance()->gridType(), MR::GridType::Safety);
}

void tst_SettingsMirrors::gridTypeSetElsewhereDoesNotShowTheGrid()
{
    Settings::instance()->setGridType(MR::GridType::Thirds);
    actionOf(Action::GridOnOff)->setChecked(false);
    Settings::instance()->setGridType(MR::GridType::FieldGuide);
    QVERIFY(actionOf(Action::GridTypeFieldGuide)->isChecked());
    QVERIFY(!actionOf(Action::GridOnOff)->isChecked());
}

QTEST_MAIN(tst_SettingsMirrors)
#include "tst_settingsmirrors.moc"
