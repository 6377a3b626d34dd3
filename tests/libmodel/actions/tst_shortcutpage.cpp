#include "libmodel/actions/shortcutpage.h"

#include "libmodel/actions/actionmanager.h"
#include "support/isolatedstore.h"

#include <QAction>
#include <QTest>
#include <QUndoStack>
#include <QXmlStreamReader>

using namespace Model;

namespace {

/// A row of one of the page's tables.
struct PageRow
{
    QStringList keys;
    QString text;
};

/// What stands in the tables of \a kind; nothing if the page is no well-formed document.
QList<PageRow> rowsOf(const QString &page, const QString &kind)
{
    QXmlStreamReader xml(page);
    QList<PageRow> rows;
    bool inside = false;
    int cell = 0;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("table"))
            inside = xml.attributes().value(QLatin1String("class")) == kind;
        if (!inside || !xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("tr")) {
            rows.append(PageRow());
            cell = 0;
        } else if (xml.name() == QLatin1String("td") && ++cell == 2) {
            rows.last().text = xml.readElementText();
        } else if (xml.name() == QLatin1String("kbd")) {
            rows.last().keys << xml.readElementText();
        }
    }
    return xml.hasError() ? QList<PageRow>() : rows;
}

QStringList portable(const QList<QKeySequence> &shortcuts)
{
    QStringList texts;
    for (const QKeySequence &shortcut : shortcuts)
        texts << shortcut.toString(QKeySequence::PortableText);
    return texts;
}

/// Is \a action one of those for paint and colours, which the catalogue holds a place for?
bool hasNothingBehindIt(const QAction *action)
{
    const QStringList names{"NewPaintLayer", "NewPaintLayerWithCloneStructure", "Palette", "ColorPickerTool",
                            "FillTool"};
    return names.contains(action->property("MRActionName").toString());
}

} // namespace

class tst_ShortcutPage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void everyShortcutOfTheCatalogueStandsInThePageAndNoOther();
    void keysWithNothingBehindThemAreLeftOut();
    void noTwoRowsReadTheSame();
    void keysThatMeanMarkupAreWrittenSafely();
    void gesturesOfHeldKeysAreTold_data();
    void gesturesOfHeldKeysAreTold();
    void linksStayAmongThePages();

private:
    IsolatedStore m_store;
};

void tst_ShortcutPage::initTestCase()
{
    ActionManager *manager = ActionManager::instance();
    manager->createActions();
    static QUndoStack stack;
    manager->insertUndoActions(stack.createUndoAction(manager, QStringLiteral("&Undo")),
                               stack.createRedoAction(manager, QStringLiteral("&Redo")));
}

void tst_ShortcutPage::everyShortcutOfTheCatalogueStandsInThePageAndNoOther()
{
    QStringList expected;
    for (const QAction *action : ActionManager::instance()->actions()) {
        if (!action->shortcuts().isEmpty() && !hasNothingBehindIt(action))
            expected << action->iconText() + QLatin1String(": ") + portable(action->shortcuts()).join(QLatin1Char(' '));
    }
    QVERIFY(expected.size() > 90);
    const QList<PageRow> rows = rowsOf(shortcutPage(), QStringLiteral("actions"));
    QStringList found;
    for (const PageRow &row : rows) {
        // What is only there to tell it from another of the same name does not count.
        const QString text = row.text.startsWith(QLatin1String("Reset User Settings ("))
                                 ? QStringLiteral("Reset User Settings")
                                 : row.text;
        found << text + QLatin1String(": ") + row.keys.join(QLatin1Char(' '));
    }
    QCOMPARE(found, expected);
}

void tst_ShortcutPage::keysWithNothingBehindThemAreLeftOut()
{
    QStringList keys;
    for (const char *kind : {"actions", "gestures"}) {
        for (const PageRow &row : rowsOf(shortcutPage(), QLatin1String(kind)))
            keys << row.keys;
    }
    QVERIFY(keys.contains(QLatin1String("D")));
    for (const char *key : {"C", "I", "F", "Ctrl+Shift+N"})
        QVERIFY2(!keys.contains(QLatin1String(key)), key);
}

void tst_ShortcutPage::noTwoRowsReadTheSame()
{
    QSet<QString> texts;
    for (const PageRow &row : rowsOf(shortcutPage(), QStringLiteral("actions"))) {
        QVERIFY2(!texts.contains(row.text), qPrintable(row.text));
        texts.insert(row.text);
    }
    QVERIFY(!texts.isEmpty());
}

void tst_ShortcutPage::keysThatMeanMarkupAreWrittenSafely()
{
    const QString page = shortcutPage();
    QVERIFY(page.contains(QLatin1String("<kbd>Ctrl+&lt;</kbd>")));
    QVERIFY(page.contains(QLatin1String("<kbd>Ctrl+&gt;</kbd>")));
    QVERIFY(page.contains(QLatin1String("<kbd>&amp;</kbd>")));
}

void tst_ShortcutPage::gesturesOfHeldKeysAreTold_data()
{
    QTest::addColumn<QString>("key");
    for (const char *key :
         {"Space",  "Return", "Enter",  "Shift", "Ctrl+Alt", "D",      "E",      "Q",      "W",      "S",      "Z",
          "H",      "R",      "Esc",    "F10",   "Ctrl+[",   "Ctrl+]", "Ctrl+2", "Ctrl+3", "Ctrl+4", "Ctrl+5", "Ctrl+6",
          "Ctrl+7", "Ctrl+8", "Ctrl+9", "1",     "2",        "3",      "4",      "6",      "7",      "8",      "9"})
        QTest::newRow(key) << QString::fromLatin1(key);
}

void tst_ShortcutPage::gesturesOfHeldKeysAreTold()
{
    QFETCH(QString, key);
    int found = 0;
    for (const PageRow &row : rowsOf(shortcutPage(), QStringLiteral("gestures"))) {
        if (row.keys.contains(key) && !row.text.isEmpty())
            ++found;
    }
    QCOMPARE(found, 1);
}

void tst_ShortcutPage::linksStayAmongThePages()
{
    QXmlStreamReader xml(shortcutPage());
    QStringList links;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.attributes().hasAttribute(QLatin1String("href")))
            links << xml.attributes().value(QLatin1String("href")).toString();
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    const QStringList expected{"style.css", "index.html", "tutorials.html"};
    QCOMPARE(links, expected);
}

QTEST_MAIN(tst_ShortcutPage)
#include "tst_shortcutpage.moc"
