#include "app/catalogueaction.h"
#include "app/fullscreen.h"

#include <QScreen>
#include <QTest>
#include <QWidget>

class tst_FullScreen : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void actionFillsTheScreenAndGoesBack();
    void maximizedWindowIsMaximizedAgain();
    void textFollowsTheWindowWhoeverChangesIt();

private:
    QAction *m_action = nullptr;
};

void tst_FullScreen::initTestCase()
{
    Model::ActionManager::instance()->createActions();
    m_action = catalogueAction(MR::Action::FullScreen);
    m_action->setEnabled(true);
}

void tst_FullScreen::actionFillsTheScreenAndGoesBack()
{
    QWidget window;
    window.setGeometry(200, 200, 600, 400);
    new FullScreen(&window);
    QCOMPARE(m_action->text(), QStringLiteral("Enter Full Screen"));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    m_action->trigger();
    QTRY_COMPARE(window.size(), window.screen()->size());
    QVERIFY(window.isFullScreen());
    QCOMPARE(m_action->text(), QStringLiteral("Exit Full Screen"));
    QVERIFY(m_action->toolTip().startsWith("Exit Full Screen"));

    m_action->trigger();
    QTRY_COMPARE(window.size(), QSize(600, 400));
    QCOMPARE(m_action->text(), QStringLiteral("Enter Full Screen"));
}

void tst_FullScreen::maximizedWindowIsMaximizedAgain()
{
    QWidget window;
    window.setGeometry(200, 200, 600, 400);
    new FullScreen(&window);
    window.showMaximized();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(window.isMaximized() && window.width() > 1500);
    m_action->trigger();
    QTRY_COMPARE(window.size(), window.screen()->size());
    m_action->trigger();
    QTRY_VERIFY(window.isMaximized() && !window.isFullScreen());
}

void tst_FullScreen::textFollowsTheWindowWhoeverChangesIt()
{
    QWidget window;
    new FullScreen(&window);
    window.showFullScreen();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(m_action->text(), QStringLiteral("Exit Full Screen"));
    window.showNormal();
    QTRY_COMPARE(m_action->text(), QStringLiteral("Enter Full Screen"));
}

QTEST_MAIN(tst_FullScreen)
#include "tst_fullscreen.moc"
