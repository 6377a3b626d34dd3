#include "app/webpages.h"

#include "libmodel/actions/shortcutpage.h"
#include "libui/paper/inputsuspension.h"
#include "support/messageboxanswer.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>
#include <QXmlStreamReader>

#include <utility>

using Page = WebPages::Page;

namespace {

constexpr Page allPages[] = {Page::KeyboardShortcuts, Page::CommunityForum, Page::ProvideFeedback, Page::VideoTutorials,
                             Page::Collapsing};

/// Stands in for the user's browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    /// \a slot is the name of the member that takes the addresses.
    explicit Browser(const char *slot = "show")
    {
        QDesktopServices::setUrlHandler(QStringLiteral("https"), this, slot);
        QDesktopServices::setUrlHandler(QStringLiteral("file"), this, slot);
    }
    ~Browser() override
    {
        QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
        QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    }

    QList<QUrl> shown;

public slots:
    void show(const QUrl &url) { shown << url; }
};

void writeFile(const QString &filename)
{
    QFile file(filename);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

QByteArray contentOf(const QString &filename)
{
    QFile file(filename);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Where the references of a page lead; reports a page that is no well-formed document.
QStringList referencesOf(const QString &filename, QString &error)
{
    QXmlStreamReader xml(contentOf(filename));
    QStringList references;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        for (const auto *attribute : {"href", "src"}) {
            if (xml.attributes().hasAttribute(QLatin1String(attribute)))
                references << xml.attributes().value(QLatin1String(attribute)).toString();
        }
    }
    error = xml.errorString();
    return references;
}

} // namespace

class tst_WebPages : public QObject
{
    Q_OBJECT

private slots:
    void hostHasItsPages_data();
    void hostHasItsPages();
    void hostMayHaveAPort();
    void withoutAHostTheBundledPagesOpen_data();
    void withoutAHostTheBundledPagesOpen();
    void firstFolderThatHasThePageCounts();
    void folderOfThePagesNameIsNoPage();

    void pageIsHandedToTheBrowser();
    void bundledPageIsHandedToTheBrowser();
    void missingPageIsNamed();
    void hostThatCanBeNoneIsTold_data();
    void hostThatCanBeNoneIsTold();
    void nobodyDrawsBehindAMessage();
    void pageThatNoBrowserTakesIsNamed();

    void installationHasItsPagesInTheLastFolder();
    void buildHasAllPagesBesideTheProgram();
    void shortcutPageBesideTheProgramIsThatOfTheCatalogue();
    void bundledPagesReferOnlyToEachOther();
};

void tst_WebPages::hostHasItsPages_data()
{
    QTest::addColumn<Page>("page");
    QTest::addColumn<QString>("expected");
    QTest::newRow("shortcuts") << Page::KeyboardShortcuts << "https://studio.test/mirelle-keyboard-shortcuts-for-pc/";
    QTest::newRow("forum") << Page::CommunityForum << "https://studio.test/forums/forum/community/";
    QTest::newRow("feedback") << Page::ProvideFeedback << "https://studio.test/forums/forum/provide-feedback/";
    QTest::newRow("tutorials") << Page::VideoTutorials << "https://studio.test/tutorials/";
    QTest::newRow("collapsing") << Page::Collapsing << "https://studio.test/mirelle-collapsing/";
}

void tst_WebPages::hostHasItsPages()
{
    QFETCH(Page, page);
    // Bundled pages do not matter then.
    const WebPages pages(QStringLiteral("studio.test"), WebPages::bundledFolders());
    QTEST(pages.url(page).toString(), "expected");
}

void tst_WebPages::hostMayHaveAPort()
{
    const QUrl url = WebPages(QStringLiteral("studio.test:8443"), {}).url(Page::CommunityForum);
    QCOMPARE(url, QUrl(QStringLiteral("https://studio.test:8443/forums/forum/community/")));
    QCOMPARE(url.port(), 8443);
}

void tst_WebPages::withoutAHostTheBundledPagesOpen_data()
{
    QTest::addColumn<Page>("page");
    QTest::addColumn<QString>("file");
    QTest::newRow("shortcuts") << Page::KeyboardShortcuts << "keyboard-shortcuts.html";
    QTest::newRow("forum") << Page::CommunityForum << "forum.html";
    QTest::newRow("feedback") << Page::ProvideFeedback << "feedback.html";
    QTest::newRow("tutorials") << Page::VideoTutorials << "tutorials.html";
    QTest::newRow("collapsing") << Page::Collapsing << "collapsing.html";
}

void tst_WebPages::withoutAHostTheBundledPagesOpen()
{
    QFETCH(Page, page);
    QFETCH(QString, file);
    const QTemporaryDir folder;
    const WebPages pages(QString(), {folder.path()});
    QVERIFY(!pages.url(page).isValid());
    writeFile(folder.filePath(file));
    QCOMPARE(pages.url(page), QUrl::fromLocalFile(folder.filePath(file)));
}

void tst_WebPages::firstFolderThatHasThePageCounts()
{
    const QTemporaryDir first;
    const QTemporaryDir second;
    const WebPages pages(QString(), {first.path(), second.path()});
    writeFile(second.filePath(QStringLiteral("forum.html")));
    QCOMPARE(pages.url(Page::CommunityForum), QUrl::fromLocalFile(second.filePath(QStringLiteral("forum.html"))));
    writeFile(first.filePath(QStringLiteral("forum.html")));
    QCOMPARE(pages.url(Page::CommunityForum), QUrl::fromLocalFile(first.filePath(QStringLiteral("forum.html"))));
}

void tst_WebPages::folderOfThePagesNameIsNoPage()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("forum.html")));
    QVERIFY(!WebPages(QString(), {folder.path()}).url(Page::CommunityForum).isValid());
}

void tst_WebPages::pageIsHandedToTheBrowser()
{
    const Browser browser;
    QWidget window;
    QVERIFY(WebPages(QStringLiteral("studio.test"), {}).open(Page::ProvideFeedback, &window));
    QCOMPARE(browser.shown, QList<QUrl>{QUrl(QStringLiteral("https://studio.test/forums/forum/provide-feedback/"))});
}

void tst_WebPages::bundledPageIsHandedToTheBrowser()
{
    const Browser browser;
    QWidget window;
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("tutorials.html"));
    writeFile(file);
    QVERIFY(WebPages(QString(), {folder.path()}).open(Page::VideoTutorials, &window));
    QCOMPARE(browser.shown, QList<QUrl>{QUrl::fromLocalFile(file)});
}

void tst_WebPages::missingPageIsNamed()
{
    const Browser browser;
    const MessageBoxAnswer answer(QMessageBox::Ok);
    QWidget window;
    const QTemporaryDir folder;
    const QString beside = folder.filePath(QStringLiteral("beside"));
    QVERIFY(!WebPages(QString(), {beside, folder.path()}).open(Page::CommunityForum, &window));
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.text(),
             QStringLiteral("Cannot find the page forum.html. It belongs in this folder:\n%1").arg(folder.path()));
    QVERIFY(browser.shown.isEmpty());
}

void tst_WebPages::hostThatCanBeNoneIsTold_data()
{
    QTest::addColumn<QString>("host");
    QTest::newRow("with a blank") << "exa mple.test";
    QTest::newRow("port too high") << "studio.test:99999";
    QTest::newRow("port of letters") << "studio.test:port";
}

void tst_WebPages::hostThatCanBeNoneIsTold()
{
    QFETCH(QString, host);
    const Browser browser;
    const MessageBoxAnswer answer(QMessageBox::Ok);
    QWidget window;
    QVERIFY(!WebPages(host, WebPages::bundledFolders()).open(Page::CommunityForum, &window));
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.text(),
             host + QLatin1String(" is no host that web pages could be on.\nThe program was built with that address."));
    QVERIFY(browser.shown.isEmpty());
}

void tst_WebPages::nobodyDrawsBehindAMessage()
{
    MessageBoxAnswer answer(QMessageBox::Ok);
    bool wasSuspended = false;
    answer.beforeAnswering([&wasSuspended] { wasSuspended = UI::InputSuspension::isActive(); });
    QWidget window;
    QVERIFY(!WebPages(QString(), {}).open(Page::CommunityForum, &window));
    QCOMPARE(answer.count(), 1);
    QVERIFY(wasSuspended);
    QVERIFY(!UI::InputSuspension::isActive());
}

void tst_WebPages::pageThatNoBrowserTakesIsNamed()
{
    const Browser browser("noSuchSlot");
    const MessageBoxAnswer answer(QMessageBox::Ok);
    QWidget window;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No such method .*noSuchSlot")));
    QVERIFY(!WebPages(QStringLiteral("studio.test"), {}).open(Page::KeyboardShortcuts, &window));
    QCOMPARE(answer.count(), 1);
    QCOMPARE(answer.text(), QStringLiteral("Cannot open the page "
                                           "https://studio.test/mirelle-keyboard-shortcuts-for-pc/.\n"
                                           "Is there a web browser?"));
}

void tst_WebPages::installationHasItsPagesInTheLastFolder()
{
    // Wherever it is moved to, its documents lie as they do now, as seen from its program.
    const QString pages = QStringLiteral(MIRELLE_INSTALLED_DOCUMENTS "/help");
    const QString way = QDir(QStringLiteral(MIRELLE_INSTALLED_PROGRAMS)).relativeFilePath(pages);
    const QStringList folders = WebPages::bundledFolders();
    QCOMPARE(folders.size(), 2);
    QCOMPARE(folders.constLast(), QDir::cleanPath(QDir(QCoreApplication::applicationDirPath()).filePath(way)));
}

void tst_WebPages::buildHasAllPagesBesideTheProgram()
{
    const QString beside = WebPages::bundledFolders().constFirst();
    const WebPages pages(QString(), {beside});
    for (const Page page : allPages) {
        const QUrl url = pages.url(page);
        QVERIFY(url.isLocalFile());
        QCOMPARE(QFileInfo(url.toLocalFile()).path(), QCoreApplication::applicationDirPath() + QLatin1String("/help"));
    }
}

void tst_WebPages::shortcutPageBesideTheProgramIsThatOfTheCatalogue()
{
    const QUrl url = WebPages(QString(), WebPages::bundledFolders()).url(Page::KeyboardShortcuts);
    QCOMPARE(contentOf(url.toLocalFile()), Model::shortcutPage().toUtf8());
}

void tst_WebPages::bundledPagesReferOnlyToEachOther()
{
    const QDir folder(WebPages::bundledFolders().constFirst());
    const QStringList files = folder.entryList({QStringLiteral("*.html")}, QDir::Files);
    QCOMPARE(files.size(), 7);
    for (const QString &file : files) {
        QString error;
        const QStringList references = referencesOf(folder.filePath(file), error);
        QVERIFY2(error.isEmpty(), qPrintable(file + QLatin1String(": ") + error));
        QVERIFY(references.contains(QLatin1String("style.css")));
        for (const QString &reference : references)
            QVERIFY2(QFileInfo(folder, reference).isFile() && !reference.contains(QLatin1Char('/')),
                     qPrintable(file + QLatin1String(" refers to ") + reference));
    }
}

QTEST_MAIN(tst_WebPages)
#include "tst_webpages.moc"
