#include "app/helpactions.h"

#include "libmodel/actions/actionmanager.h"
#include "libui/paper/inputsuspension.h"
#include "support/isolatedstore.h"
#include "support/messageboxanswer.h"

#include <QAction>
#include <QDesktopServices>
#include <QTest>
#include <QWidget>

#include <memory>

using MR::Action;
using Page = WebPages::Page;

/// The entries of the help menu.
class tst_HelpActions : public QObject
{
    Q_OBJECT

public slots:
    /// Stands in for the user's browser.
    void show(const QUrl &url) { m_shown << url; }

private slots:
    void initTestCase();
    void init() { m_shown.clear(); }
    void cleanupTestCase();

    void entryOpensItsPage_data();
    void entryOpensItsPage();
    void aboutTellsNameAndVersion();
    void nobodyDrawsBehindAbout();

private:
    IsolatedStore m_store;
    std::unique_ptr<QWidget> m_window;
    QList<QUrl> m_shown;
};

void tst_HelpActions::initTestCase()
{
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Testprogram"));
    Model::ActionManager::instance()->createActions();
    m_window = std::make_unique<QWidget>();
    new HelpActions(m_window.get());
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "show");
    QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "show");
}

void tst_HelpActions::cleanupTestCase()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
}

void tst_HelpActions::entryOpensItsPage_data()
{
    QTest::addColumn<Action>("entry");
    QTest::addColumn<Page>("page");
    QTest::newRow("shortcuts") << Action::KeyboardShortcuts << Page::KeyboardShortcuts;
    QTest::newRow("forum") << Action::CommunityForum << Page::CommunityForum;
    QTest::newRow("feedback") << Action::ProvideFeedback << Page::ProvideFeedback;
    QTest::newRow("tutorials") << Action::VideoTutorials << Page::VideoTutorials;
}

void tst_HelpActions::entryOpensItsPage()
{
    QFETCH(Action, entry);
    QFETCH(Page, page);
    const QUrl expected = WebPages().url(page);
    QVERIFY(expected.isValid());
    Model::ActionManager::instance()->action(entry)->trigger();
    QCOMPARE(m_shown, QList<QUrl>{expected});
}

void tst_HelpActions::aboutTellsNameAndVersion()
{
    const MessageBoxAnswer answer(QMessageBox::Ok);
    Model::ActionManager::instance()->action(Action::About)->trigger();
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.title(), QStringLiteral("About Testprogram"));
    QVERIFY2(answer.text().startsWith(QLatin1String("Testprogram " MIRELLE_VERSION "\n")), qPrintable(answer.text()));
    QVERIFY(m_shown.isEmpty());
}

void tst_HelpActions::nobodyDrawsBehindAbout()
{
    MessageBoxAnswer answer(QMessageBox::Ok);
    bool wasSuspended = false;
    answer.beforeAnswering([&wasSuspended] { wasSuspended = UI::InputSuspension::isActive(); });
    Model::ActionManager::instance()->action(Action::About)->trigger();
    QCOMPARE(answer.count(), 1);
    QVERIFY(wasSuspended);
    QVERIFY(!UI::InputSuspension::isActive());
}

QTEST_MAIN(tst_HelpActions)
#include "tst_helpactions.moc"
