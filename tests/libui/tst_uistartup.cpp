#include "libui/uistartup.h"

#include <QApplication>
#include <QFile>
#include <QFontDatabase>
#include <QPalette>
#include <QTest>

class tst_UiStartUp : public QObject
{
    Q_OBJECT

private slots:
    void resourcesFontAndPaletteAreThere();
    void secondStartDoesNothing();
    void startsAgainAfterShutDown();
    void laterStartKeepsThePlatformsFamily();
};

void tst_UiStartUp::resourcesFontAndPaletteAreThere()
{
    UI::startUp();
    QVERIFY(QFile::exists(QStringLiteral(":/paper/linenBG.png")));
    QVERIFY(QFontDatabase::families().contains(QStringLiteral("Passion One")));
    QCOMPARE(QApplication::font().families().first(), QStringLiteral("Lucida Sans Unicode"));
    const QColor ground = QApplication::palette().color(QPalette::Window);
    QCOMPARE(ground.red() - ground.blue(), 8);
}

void tst_UiStartUp::secondStartDoesNothing()
{
    UI::startUp();
    QApplication::setPalette(QPalette(Qt::green));
    UI::startUp();
    QVERIFY(QApplication::palette().color(QPalette::Button) == QPalette(Qt::green).color(QPalette::Button));
}

void tst_UiStartUp::startsAgainAfterShutDown()
{
    UI::startUp();
    QApplication::setPalette(QPalette(Qt::green));
    UI::shutDown();
    UI::startUp();
    QVERIFY(QApplication::palette().color(QPalette::Button) != QPalette(Qt::green).color(QPalette::Button));
}

void tst_UiStartUp::laterStartKeepsThePlatformsFamily()
{
    UI::startUp();
    UI::shutDown();
    UI::startUp();
    const QStringList expected{QStringLiteral("Lucida Sans Unicode"),
                               QFontDatabase::systemFont(QFontDatabase::GeneralFont).family()};
    QCOMPARE(QApplication::font().families(), expected);
}

QTEST_MAIN(tst_UiStartUp)
#include "tst_uistartup.moc"
