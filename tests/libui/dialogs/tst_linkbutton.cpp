#include "libui/dialogs/linkbutton.h"

#include "libmodel/base/settings.h"
#include "libui/uistartup.h"
#include "support/isolatedstore.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

using UI::LinkButton;

class tst_LinkButton : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void answersMouseAndKeys_data();
    void answersMouseAndKeys();
    void looksLikeALink();
    void showsThatItHasTheKeyboard();
    void growsWithTheScale();
    void namesItself();

private:
    std::unique_ptr<IsolatedStore> m_store;
};

void tst_LinkButton::initTestCase()
{
    m_store = std::make_unique<IsolatedStore>();
    UI::startUp();
}

void tst_LinkButton::cleanupTestCase()
{
    Model::Settings::instance()->setUiScalePercent(100);
    UI::shutDown();
    m_store.reset();
}

void tst_LinkButton::answersMouseAndKeys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("clicks");
    QTest::newRow("mouse") << 0 << 1;
    QTest::newRow("Space") << int(Qt::Key_Space) << 1;
    QTest::newRow("Return") << int(Qt::Key_Return) << 1;
    QTest::newRow("Enter") << int(Qt::Key_Enter) << 1;
    QTest::newRow("another key") << int(Qt::Key_A) << 0;
}

void tst_LinkButton::answersMouseAndKeys()
{
    QFETCH(int, key);
    QFETCH(int, clicks);
    LinkButton button(QStringLiteral("More"));
    const QSignalSpy clicked(&button, &QAbstractButton::clicked);
    button.show();
    if (key == 0)
        QTest::mouseClick(&button, Qt::LeftButton);
    else
        QTest::keyClick(&button, Qt::Key(key));
    QCOMPARE(clicked.size(), clicks);
}

void tst_LinkButton::looksLikeALink()
{
    LinkButton button(QStringLiteral("MMMM"));
    QVERIFY(button.font().underline());
    QCOMPARE(button.cursor().shape(), Qt::PointingHandCursor);
    button.resize(button.sizeHint());
    const QImage picture = button.grab().toImage();
    const QColor link = button.palette().color(QPalette::Link);
    QVERIFY(link.blue() - link.red() > 80);
    int linkPixels = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            linkPixels += picture.pixelColor(x, y).blue() - picture.pixelColor(x, y).red() > 40 ? 1 : 0;
    }
    // The line under the text alone has as many.
    QVERIFY(linkPixels >= button.fontMetrics().horizontalAdvance(button.text()) - 2);
}

void tst_LinkButton::showsThatItHasTheKeyboard()
{
    QWidget window;
    QVBoxLayout layout(&window);
    LinkButton button(QStringLiteral("More"));
    LinkButton other(QStringLiteral("Other"));
    layout.addWidget(&button);
    layout.addWidget(&other);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    other.setFocus();
    const QImage without = button.grab().toImage();
    QTest::keyClick(&other, Qt::Key_Tab);
    QVERIFY(button.hasFocus());
    QVERIFY(button.grab().toImage() != without);
}

void tst_LinkButton::growsWithTheScale()
{
    LinkButton button(QStringLiteral("More about it"));
    const QSize before = button.sizeHint();
    Model::Settings::instance()->setUiScalePercent(150);
    QTRY_VERIFY(button.sizeHint().width() > before.width() * 1.3);
    QVERIFY(button.sizeHint().height() > before.height() * 1.3);
    Model::Settings::instance()->setUiScalePercent(100);
    QTRY_COMPARE(button.sizeHint(), before);
}

void tst_LinkButton::namesItself()
{
    LinkButton button(QStringLiteral("More"));
    const QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&button);
    QCOMPARE(interface->text(QAccessible::Name), QStringLiteral("More"));
}

QTEST_MAIN(tst_LinkButton)
#include "tst_linkbutton.moc"
