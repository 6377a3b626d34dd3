#include "libui/dialogs/collapsedialog.h"

#include "libmodel/base/settings.h"
#include "libui/uistartup.h"
#include "support/isolatedstore.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <memory>

using UI::CollapseDialog;

namespace {

QAbstractButton *button(const QDialog &dialog, const QString &text)
{
    for (QAbstractButton *found : dialog.findChildren<QAbstractButton *>()) {
        if (found->text().remove('&') == text)
            return found;
    }
    return nullptr;
}

QCheckBox *checkBox(const QDialog &dialog)
{
    return dialog.findChild<QCheckBox *>();
}

QLabel *picture(const QDialog &dialog)
{
    for (QLabel *found : dialog.findChildren<QLabel *>()) {
        if (found->text().isEmpty())
            return found;
    }
    return nullptr;
}

void click(QWidget *widget, QPoint position = {})
{
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, position);
}

/// A check box answers on its mark and text, which stand at its left.
void clickBox(const QDialog &dialog)
{
    QCheckBox *box = checkBox(dialog);
    click(box, QPoint(6, box->height() / 2));
}

QString accessibleName(QWidget *widget)
{
    return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
}

} // namespace

class tst_CollapseDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void askedAsWritten();
    void returnCollapses();
    void collapseButtonCollapses();
    void escapeCancels();
    void cancelButtonCancels();
    void closingTheWindowCancels();
    void checkBoxShowsThePreference_data();
    void checkBoxShowsThePreference();
    void tickIsStoredWithYes();
    void tickTakenAwayIsStoredWithYes();
    void tickIsForgottenWithNo_data();
    void tickIsForgottenWithNo();
    void linkAsksForHelpAndLeavesTheQuestionOpen();
    void linkAnswersTheKeyboard_data();
    void linkAnswersTheKeyboard();
    void tabReachesEverythingOnce();
    void spaceTicksTheBoxAndReturnAnswers();
    void everythingHasAName();
    void pictureIsThatOfTheResources();
    void sizesFollowTheScale_data();
    void sizesFollowTheScale();
    void nothingIsCutOffAtAnyScale_data();
    void nothingIsCutOffAtAnyScale();
    void scaleThatChangesUnderItIsFollowed();

private:
    /// On screen, with the keyboard.
    void open();

    std::unique_ptr<IsolatedStore> m_store;
    std::unique_ptr<CollapseDialog> m_dialog;
};

void tst_CollapseDialog::initTestCase()
{
    m_store = std::make_unique<IsolatedStore>();
    UI::startUp();
}

void tst_CollapseDialog::init()
{
    m_store->reset();
    m_dialog = std::make_unique<CollapseDialog>();
}

void tst_CollapseDialog::cleanup()
{
    m_dialog.reset();
    Model::Settings::instance()->setUiScalePercent(100);
}

void tst_CollapseDialog::cleanupTestCase()
{
    UI::shutDown();
    m_store.reset();
}

void tst_CollapseDialog::open()
{
    m_dialog->open();
    m_dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
}

void tst_CollapseDialog::askedAsWritten()
{
    QCOMPARE(m_dialog->windowTitle(), QStringLiteral("Collapse"));
    QStringList texts;
    for (const QLabel *label : m_dialog->findChildren<QLabel *>())
        texts << label->text();
    QVERIFY(texts.contains(QStringLiteral("Collapse the<br/>current drawing?")));
    QVERIFY(button(*m_dialog, QStringLiteral("What's this?")));
    QCOMPARE(checkBox(*m_dialog)->text(), QStringLiteral("Collapse automatically"));
    QVERIFY(button(*m_dialog, QStringLiteral("Cancel")));
    const auto *yes = qobject_cast<QPushButton *>(button(*m_dialog, QStringLiteral("Collapse")));
    QVERIFY(yes);
    QVERIFY(yes->isDefault());
    QVERIFY(!m_dialog->windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
}

void tst_CollapseDialog::returnCollapses()
{
    open();
    QTest::keyClick(m_dialog->focusWidget(), Qt::Key_Return);
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
}

void tst_CollapseDialog::collapseButtonCollapses()
{
    open();
    click(button(*m_dialog, QStringLiteral("Collapse")));
    QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
}

void tst_CollapseDialog::escapeCancels()
{
    open();
    m_dialog->setResult(QDialog::Accepted);
    QTest::keyClick(m_dialog->focusWidget(), Qt::Key_Escape);
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
}

void tst_CollapseDialog::cancelButtonCancels()
{
    open();
    m_dialog->setResult(QDialog::Accepted);
    click(button(*m_dialog, QStringLiteral("Cancel")));
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
}

void tst_CollapseDialog::closingTheWindowCancels()
{
    open();
    m_dialog->setResult(QDialog::Accepted);
    m_dialog->close();
    QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
}

void tst_CollapseDialog::checkBoxShowsThePreference_data()
{
    QTest::addColumn<bool>("automatically");
    QTest::newRow("off") << false;
    QTest::newRow("on") << true;
}

void tst_CollapseDialog::checkBoxShowsThePreference()
{
    QFETCH(bool, automatically);
    Model::Settings::instance()->setCollapseAutomatically(automatically);
    const CollapseDialog dialog;
    QCOMPARE(checkBox(dialog)->isChecked(), automatically);
}

void tst_CollapseDialog::tickIsStoredWithYes()
{
    QSignalSpy changes(Model::Settings::instance(), &Model::Settings::collapseAutomaticallyChanged);
    open();
    clickBox(*m_dialog);
    QVERIFY(checkBox(*m_dialog)->isChecked());
    QVERIFY(!Model::Settings::instance()->collapseAutomatically());
    click(button(*m_dialog, QStringLiteral("Collapse")));
    QVERIFY(Model::Settings::instance()->collapseAutomatically());
    QCOMPARE(changes.size(), 1);
    Model::Settings::instance()->load();
    QVERIFY(Model::Settings::instance()->collapseAutomatically());
}

void tst_CollapseDialog::tickTakenAwayIsStoredWithYes()
{
    Model::Settings::instance()->setCollapseAutomatically(true);
    m_dialog = std::make_unique<CollapseDialog>();
    open();
    clickBox(*m_dialog);
    click(button(*m_dialog, QStringLiteral("Collapse")));
    QVERIFY(!Model::Settings::instance()->collapseAutomatically());
}

void tst_CollapseDialog::tickIsForgottenWithNo_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("Escape") << true;
    QTest::newRow("Cancel") << false;
}

void tst_CollapseDialog::tickIsForgottenWithNo()
{
    QFETCH(bool, byKey);
    open();
    clickBox(*m_dialog);
    QVERIFY(checkBox(*m_dialog)->isChecked());
    if (byKey)
        QTest::keyClick(m_dialog->focusWidget(), Qt::Key_Escape);
    else
        click(button(*m_dialog, QStringLiteral("Cancel")));
    QVERIFY(!m_dialog->isVisible());
    QVERIFY(!Model::Settings::instance()->collapseAutomatically());
}

void tst_CollapseDialog::linkAsksForHelpAndLeavesTheQuestionOpen()
{
    QSignalSpy asked(m_dialog.get(), &CollapseDialog::helpRequested);
    open();
    click(button(*m_dialog, QStringLiteral("What's this?")));
    QCOMPARE(asked.size(), 1);
    QVERIFY(m_dialog->isVisible());
}

void tst_CollapseDialog::linkAnswersTheKeyboard_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("space") << Qt::Key_Space;
    QTest::newRow("Return") << Qt::Key_Return;
}

// Return on the link must not be taken for the answer to the question.
void tst_CollapseDialog::linkAnswersTheKeyboard()
{
    QFETCH(Qt::Key, key);
    QSignalSpy asked(m_dialog.get(), &CollapseDialog::helpRequested);
    open();
    button(*m_dialog, QStringLiteral("What's this?"))->setFocus();
    QTest::keyClick(m_dialog->focusWidget(), key);
    QCOMPARE(asked.size(), 1);
    QVERIFY(m_dialog->isVisible());
}

void tst_CollapseDialog::tabReachesEverythingOnce()
{
    open();
    QWidget *first = m_dialog->focusWidget();
    QCOMPARE(first, button(*m_dialog, QStringLiteral("Collapse")));
    QList<QWidget *> visited;
    do {
        visited << m_dialog->focusWidget();
        QTest::keyClick(m_dialog->focusWidget(), Qt::Key_Tab);
    } while (m_dialog->focusWidget() != first && visited.size() < 20);
    const QList<QWidget *> all{first, button(*m_dialog, QStringLiteral("Cancel")),
                               button(*m_dialog, QStringLiteral("What's this?")), checkBox(*m_dialog)};
    QCOMPARE(visited.size(), all.size());
    for (QWidget *widget : all)
        QVERIFY(visited.contains(widget));
}

void tst_CollapseDialog::spaceTicksTheBoxAndReturnAnswers()
{
    open();
    checkBox(*m_dialog)->setFocus();
    QTest::keyClick(checkBox(*m_dialog), Qt::Key_Space);
    QVERIFY(checkBox(*m_dialog)->isChecked());
    QVERIFY(m_dialog->isVisible());
    QTest::keyClick(checkBox(*m_dialog), Qt::Key_Return);
    QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
    QVERIFY(Model::Settings::instance()->collapseAutomatically());
}

void tst_CollapseDialog::everythingHasAName()
{
    open();
    for (QWidget *widget : m_dialog->findChildren<QWidget *>()) {
        const bool speaks = qobject_cast<QLabel *>(widget) || qobject_cast<QAbstractButton *>(widget);
        QVERIFY(!speaks || !accessibleName(widget).isEmpty());
    }
    QCOMPARE(accessibleName(checkBox(*m_dialog)), QStringLiteral("Collapse automatically"));
}

void tst_CollapseDialog::pictureIsThatOfTheResources()
{
    const QPixmap drawn(QStringLiteral(":/dialogs/CollapseGraphic@2x.png"));
    QVERIFY(!drawn.isNull());
    QCOMPARE(drawn.devicePixelRatio(), 2.0);
    const QSizeF size = drawn.deviceIndependentSize();
    const QPixmap shown = picture(*m_dialog)->pixmap();
    QCOMPARE(shown.deviceIndependentSize(), size);

    // Shrunk to one pixel both must have the same colour, within what rounding takes.
    const auto middle = [](const QPixmap &pixmap) {
        const QImage one = pixmap.toImage().scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        return one.pixelColor(0, 0);
    };
    const QColor a = middle(drawn);
    const QColor b = middle(shown);
    QVERIFY(std::max({qAbs(a.red() - b.red()), qAbs(a.green() - b.green()), qAbs(a.blue() - b.blue())}) <= 3);
}

void tst_CollapseDialog::sizesFollowTheScale_data()
{
    QTest::addColumn<int>("percent");
    for (const int percent : {75, 100, 125, 150})
        QTest::addRow("%d", percent) << percent;
}

void tst_CollapseDialog::sizesFollowTheScale()
{
    QFETCH(int, percent);
    const QSizeF atFull = picture(*m_dialog)->pixmap().deviceIndependentSize();
    const double fontAtFull = checkBox(*m_dialog)->font().pointSizeF();
    Model::Settings::instance()->setUiScalePercent(percent);
    const CollapseDialog dialog;
    const QSizeF size = picture(dialog)->pixmap().deviceIndependentSize();
    QCOMPARE(size.width(), atFull.width() * percent / 100.0);
    QCOMPARE(size.height(), atFull.height() * percent / 100.0);
    for (const QWidget *widget : dialog.findChildren<QWidget *>())
        QCOMPARE(widget->font().pointSizeF(), fontAtFull * percent / 100.0);
}

void tst_CollapseDialog::nothingIsCutOffAtAnyScale_data()
{
    sizesFollowTheScale_data();
}

void tst_CollapseDialog::nothingIsCutOffAtAnyScale()
{
    QFETCH(int, percent);
    Model::Settings::instance()->setUiScalePercent(percent);
    m_dialog = std::make_unique<CollapseDialog>();
    open();
    QList<QRect> taken;
    for (const QWidget *widget : m_dialog->findChildren<QWidget *>()) {
        if (!qobject_cast<const QLabel *>(widget) && !qobject_cast<const QAbstractButton *>(widget))
            continue;
        const QRect rect(widget->mapTo(m_dialog.get(), QPoint()), widget->size());
        QVERIFY(m_dialog->rect().contains(rect));
        QVERIFY(rect.width() >= widget->sizeHint().width() && rect.height() >= widget->sizeHint().height());
        QVERIFY(std::none_of(taken.begin(), taken.end(), [&rect](QRect other) { return other.intersects(rect); }));
        taken << rect;
    }
    QCOMPARE(taken.size(), 6);
}

void tst_CollapseDialog::scaleThatChangesUnderItIsFollowed()
{
    open();
    const QSize before = m_dialog->size();
    Model::Settings::instance()->setUiScalePercent(150);
    const CollapseDialog fresh;
    QTRY_COMPARE(m_dialog->size(), fresh.sizeHint());
    QVERIFY(m_dialog->width() > before.width());
    QVERIFY(m_dialog->height() > before.height());
    QCOMPARE(picture(*m_dialog)->pixmap().size(), picture(fresh)->pixmap().size());
}

QTEST_MAIN(tst_CollapseDialog)
#include "tst_collapsedialog.moc"
