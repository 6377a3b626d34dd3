#include "mainwindowfixture.h"

#include "support/messageboxanswer.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QTest>

/// The window as someone meets it who has no mouse, or hears it read out.
class tst_Accessibility : public MainWindowFixture
{
    Q_OBJECT

private slots:
    void everyControlOfTheWindowHasAName();
    void everyMenuEntryHasANameOfItsOwn();
    void entriesThatDoNothingSayWhy();
    void menusOpenByKeyInTheirOrder();
    void everyUsableMenuEntryIsReachedByKey();
    void menusOpenByAltAndLeaveByEscape();
    void tabReachesEveryControl();
    void questionsCanBeAnsweredByKey();
};

namespace {

/// "class name, object name" for messages.
QString labelOf(const QObject *object)
{
    return object
               ? QStringLiteral("%1 '%2'").arg(QLatin1String(object->metaObject()->className()), object->objectName())
               : QStringLiteral("(no object)");
}

bool isInteractive(QAccessibleInterface *item)
{
    static const QSet<QAccessible::Role> roles{
        QAccessible::MenuBar,   QAccessible::MenuItem, QAccessible::ButtonMenu,  QAccessible::PushButton,
        QAccessible::CheckBox,  QAccessible::ComboBox, QAccessible::RadioButton, QAccessible::EditableText,
        QAccessible::SpinBox,   QAccessible::Slider,   QAccessible::PageTab,     QAccessible::List,
        QAccessible::ScrollBar, QAccessible::Canvas,   QAccessible::ToolBar,     QAccessible::Link,
    };
    return item->state().focusable || roles.contains(item->role());
}

/// Names of what is visible below \a item, interactive and has no name.
QStringList nameless(QAccessibleInterface *item)
{
    QStringList result;
    if (!item || !item->isValid() || item->state().invisible)
        return result;
    if (isInteractive(item) && item->text(QAccessible::Name).trimmed().isEmpty())
        result << QStringLiteral("%1, role %2").arg(labelOf(item->object())).arg(item->role());
    for (int index = 0; index < item->childCount(); ++index)
        result << nameless(item->child(index));
    return result;
}

/// The menu bar's menus, all levels, each before its sub-menus.
QList<QMenu *> menusBelow(const QWidget *parent)
{
    QList<QMenu *> menus;
    for (const QAction *entry : parent->actions()) {
        if (QMenu *menu = entry->menu()) {
            menus << menu;
            menus << menusBelow(menu);
        }
    }
    return menus;
}

bool isUsable(const QAction *entry)
{
    return entry->isEnabled() && entry->isVisible() && !entry->isSeparator();
}

QString plain(QString text)
{
    return text.remove(QLatin1Char('&'));
}

QMenu *openMenu()
{
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
{
    QWidget *target = QApplication::activePopupWidget();
    if (!target)
        target = QApplication::focusWidget();
    QVERIFY(target);
    QTest::keyClick(target, key, modifiers);
}

void closeMenus()
{
    while (QWidget *popup = QApplication::activePopupWidget())
        popup->close();
}

/// Goes down the open menu \a menu by key, and into its sub-menus. \return every entry that was selected on the way.
QSet<const QAction *> entriesByKey(QMenu *menu)
{
    QSet<const QAction *> reached;
    for (int step = 0; step <= menu->actions().size(); ++step) {
        const QAction *entry = menu->activeAction();
        if (!entry) {
            pressKey(Qt::Key_Down);
            continue;
        }
        if (reached.contains(entry))
            break;
        reached << entry;
        if (QMenu *below = entry->menu(); below && isUsable(entry)) {
            pressKey(Qt::Key_Right);
            if (openMenu() == below) {
                reached += entriesByKey(below);
                pressKey(Qt::Key_Left);
            }
        }
        if (openMenu() != menu)
            break;
        pressKey(Qt::Key_Down);
    }
    return reached;
}

} // namespace

void tst_Accessibility::everyControlOfTheWindowHasAName()
{
    QAccessibleInterface *window = QAccessible::queryAccessibleInterface(m_window.get());
    QVERIFY(window);
    QVERIFY(!window->text(QAccessible::Name).isEmpty());
    const QStringList offenders = nameless(window);
    QVERIFY2(offenders.isEmpty(), qPrintable(offenders.join(QStringLiteral("; "))));
}

void tst_Accessibility::everyMenuEntryHasANameOfItsOwn()
{
    const QList<QMenu *> menus = menusBelow(m_window->menuBar());
    QVERIFY(menus.size() > 9);
    for (QMenu *menu : menus) {
        QVERIFY2(!plain(menu->title()).isEmpty(), qPrintable(labelOf(menu)));
        QAccessibleInterface *item = QAccessible::queryAccessibleInterface(menu);
        QVERIFY(item);
        QCOMPARE(item->childCount(), menu->actions().size());
        QSet<QString> names;
        for (int index = 0; index < item->childCount(); ++index) {
            QAccessibleInterface *entry = item->child(index);
            if (menu->actions().at(index)->isSeparator())
                continue;
            const QString name = entry->text(QAccessible::Name);
            QVERIFY2(!name.isEmpty(), qPrintable(menu->title()));
            // Two entries do the same to different tools; their keys, which are read out as well, tell them apart.
            const QString heard = name + QLatin1Char(' ') + menu->actions().at(index)->shortcut().toString();
            QVERIFY2(!names.contains(heard), qPrintable(menu->title() + QStringLiteral(": ") + heard));
            names << heard;
        }
    }
}

void tst_Accessibility::entriesThatDoNothingSayWhy()
{
    QStringList offenders;
    for (const QMenu *menu : menusBelow(m_window->menuBar())) {
        QVERIFY(menu->toolTipsVisible());
        for (const QAction *entry : menu->actions()) {
            // What is not of the catalogue tells something by being there.
            const bool isAction = entry->property("MRActionName").isValid();
            const bool saysMore = !entry->toolTip().isEmpty() && entry->toolTip() != plain(entry->text());
            if (isAction && !entry->isEnabled() && !saysMore)
                offenders << entry->text();
        }
    }
    QVERIFY2(offenders.isEmpty(), qPrintable(offenders.join(QStringLiteral("; "))));
}

void tst_Accessibility::menusOpenByKeyInTheirOrder()
{
    paper()->setFocus();
    const QList<QAction *> titles = m_window->menuBar()->actions();
    pressKey(Qt::Key_F10);
    if (!openMenu())
        pressKey(Qt::Key_Down);
    for (const QAction *title : titles) {
        QTRY_VERIFY2(openMenu() && openMenu()->title() == title->text(), qPrintable(title->text()));
        // From the title, not from an entry with a sub-menu, which the key would open.
        openMenu()->setActiveAction(nullptr);
        pressKey(Qt::Key_Right);
    }
    // Behind the last comes the first.
    QTRY_VERIFY(openMenu() && openMenu()->title() == titles.first()->text());
    closeMenus();
}

void tst_Accessibility::everyUsableMenuEntryIsReachedByKey()
{
    QStringList missed;
    for (QAction *title : m_window->menuBar()->actions()) {
        paper()->setFocus();
        m_window->menuBar()->setActiveAction(title);
        QMenu *menu = openMenu();
        QVERIFY(menu);
        const QSet<const QAction *> reached = entriesByKey(menu);
        closeMenus();
        QList<QMenu *> all = menusBelow(menu);
        all.prepend(menu);
        for (const QMenu *below : all) {
            if (below != menu && !isUsable(below->menuAction()))
                continue;
            for (const QAction *entry : below->actions()) {
                if (isUsable(entry) && !reached.contains(entry))
                    missed << below->title() + QStringLiteral(": ") + entry->text();
            }
        }
    }
    QVERIFY2(missed.isEmpty(), qPrintable(missed.join(QStringLiteral("; "))));
}

void tst_Accessibility::menusOpenByAltAndLeaveByEscape()
{
    paper()->setFocus();
    QTest::keyClick(paper(), Qt::Key_H, Qt::AltModifier);
    QVERIFY(openMenu());
    QCOMPARE(plain(openMenu()->title()), QStringLiteral("Help"));
    // The first leaves the menu, the second the bar.
    pressKey(Qt::Key_Escape);
    QVERIFY(!openMenu());
    pressKey(Qt::Key_Escape);
    QTRY_COMPARE(QApplication::focusWidget(), paper());
}

void tst_Accessibility::tabReachesEveryControl()
{
    paper()->setFocus();
    QSet<const QWidget *> reached;
    for (int step = 0; step < 100; ++step) {
        reached << QApplication::focusWidget();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QStringList missed;
    for (const QWidget *widget : m_window->findChildren<QWidget *>()) {
        // The menu bar is reached by F10 and Alt.
        const bool counts = widget->window() == m_window.get() && widget->isVisible() && widget->isEnabled() &&
                            widget->focusPolicy() != Qt::NoFocus && !qobject_cast<const QMenuBar *>(widget);
        if (counts && !reached.contains(widget))
            missed << labelOf(widget);
    }
    QVERIFY2(missed.isEmpty(), qPrintable(missed.join(QStringLiteral("; "))));
    QVERIFY(reached.contains(paper()));
}

void tst_Accessibility::questionsCanBeAnsweredByKey()
{
    drawLine();
    MessageBoxAnswer answer(QMessageBox::Cancel);
    QStringList offenders;
    QSet<QString> buttons;
    answer.beforeAnswering([&] {
        QWidget *box = QApplication::activeModalWidget();
        offenders = nameless(QAccessible::queryAccessibleInterface(box));
        for (int step = 0; step < 10; ++step) {
            // The window manager may not have activated the box yet.
            if (const auto *button = qobject_cast<QAbstractButton *>(box->focusWidget()))
                buttons << plain(button->text());
            QTest::keyClick(box->focusWidget() ? box->focusWidget() : box, Qt::Key_Tab);
        }
    });
    QVERIFY(!m_window->maybeSave());
    QCOMPARE(answer.count(), 1);
    QVERIFY2(offenders.isEmpty(), qPrintable(offenders.join(QStringLiteral("; "))));
    QCOMPARE(buttons, (QSet<QString>{QStringLiteral("Save"), QStringLiteral("Discard"), QStringLiteral("Cancel")}));
}

QTEST_MAIN(tst_Accessibility)
#include "tst_accessibility.moc"
