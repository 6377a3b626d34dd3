#include "libmodel/actions/settingsmirrors.h"

#include "libmodel/actions/actionmanager.h"
#include "support/isolatedstore.h"

#include <QAction>
#include <QTest>

using namespace Model;
using Transparency = MR::TransparencyType;

namespace {

QAction *actionOf(MR::Action id)
{
    return ActionManager::instance()->mrAction(id)->action;
}

/// The values of the eight transparencies and of their actions rise together.
QAction *transparencyAction(int type)
{
    return actionOf(
        static_cast<MR::Action>(static_cast<int>(MR::Action::TransparencyShownAsSmallCheckersLight) + type));
}

} // namespace

class tst_SettingsMirrors : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void actionsStartAsTheSettingsAre();
    void transparencyActionsAndSettingFollowEachOther();
    void cloneActionsAndSettingFollowEachOther();
    void faintCursorAndSettingFollowEachOther();
    void togglingTheCursorFlipsItsType();

private:
    IsolatedStore m_store;
};

void tst_SettingsMirrors::initTestCase()
{
    Settings::instance()->setTransparencyType(Transparency::TransparencyDarkGrey);
    Settings::instance()->setClonesLockedForDrawing(true);
    Settings::instance()->setDrawCursorOpacity(MR::DrawCursorOpacity::Opaque);
    ActionManager::instance()->createActions();
}

void tst_SettingsMirrors::actionsStartAsTheSettingsAre()
{
    QVERIFY(actionOf(MR::Action::TransparencyShownAsDarkGrey)->isChecked());
    QVERIFY(actionOf(MR::Action::ClonesLockedForDrawing)->isChecked());
    QVERIFY(!actionOf(MR::Action::FaintCursor)->isChecked());
    QCOMPARE(Settings::instance()->transparencyType(), Transparency::TransparencyDarkGrey);
    QCOMPARE(Settings::instance()->drawCursorOpacity(), MR::DrawCursorOpacity::Opaque);
}

void tst_SettingsMirrors::transparencyActionsAndSettingFollowEachOther()
{
    for (int type = 0; type < 8; ++type) {
        transparencyAction(type)->trigger();
        QCOMPARE(static_cast<int>(Settings::instance()->transparencyType()), type);
    }
    for (int type = 0; type < 8; ++type) {
        Settings::instance()->setTransparencyType(static_cast<Transparency>(type));
        for (int other = 0; other < 8; ++other)
            QCOMPARE(transparencyAction(other)->isChecked(), other == type);
    }
}

void tst_SettingsMirrors::cloneActionsAndSettingFollowEachOther()
{
    actionOf(MR::Action::FreelyDrawOnClones)->trigger();
    QVERIFY(!Settings::instance()->clonesLockedForDrawing());
    actionOf(MR::Action::ClonesLockedForDrawing)->trigger();
    QVERIFY(Settings::instance()->clonesLockedForDrawing());
    Settings::instance()->setClonesLockedForDrawing(false);
    QVERIFY(actionOf(MR::Action::FreelyDrawOnClones)->isChecked());
    QVERIFY(!actionOf(MR::Action::ClonesLockedForDrawing)->isChecked());
}

void tst_SettingsMirrors::faintCursorAndSettingFollowEachOther()
{
    actionOf(MR::Action::FaintCursor)->setChecked(true);
    QCOMPARE(Settings::instance()->drawCursorOpacity(), MR::DrawCursorOpacity::Faint);
    actionOf(MR::Action::FaintCursor)->trigger();
    QCOMPARE(Settings::instance()->drawCursorOpacity(), MR::DrawCursorOpacity::Opaque);
    Settings::instance()->setDrawCursorOpacity(MR::DrawCursorOpacity::Faint);
    QVERIFY(actionOf(MR::Action::FaintCursor)->isChecked());
}

void tst_SettingsMirrors::togglingTheCursorFlipsItsType()
{
    QCOMPARE(Settings::instance()->drawCursorType(), MR::DrawCursorType::AdaptToSize);
    actionOf(MR::Action::ToggleCursor)->trigger();
    QCOMPARE(Settings::instance()->drawCursorType(), MR::DrawCursorType::FixedSmall);
    actionOf(MR::Action::ToggleCursor)->trigger();
    QCOMPARE(Settings::instance()->drawCursorType(), MR::DrawCursorType::AdaptToSize);
}

QTEST_MAIN(tst_SettingsMirrors)
#include "tst_settingsmirrors.moc"
