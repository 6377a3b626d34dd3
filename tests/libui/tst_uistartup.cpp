#include "libui/uistartup.h"

#include "libmodel/base/settings.h"
#include "support/isolatedstore.h"

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
    void fontFollowsTheScaleWhileStarted();
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

void tst_UiStartUp::fontFollowsTheScaleWhileStarted()
{
    const IsolatedStore store;
    UI::startUp();
    const double size = QApplication::font().pointSizeF();
    Model::Settings::instance()->setUiScalePercent(150);
    QCOMPARE(QApplication::font().pointSizeF(), 1.5 * size);
    // A second start begins from the font at scale 1, too.
    UI::shutDown();
    QCOMPARE(QApplication::font().pointSizeF(), size);
    UI::startUp();
    QCOMPARE(QApplication::font().pointSizeF(), 1.5 * size);
    Model::Settings::instance()->setUiScalePercent(100);
    QCOMPARE(QApplication::font().pointSizeF(), size);
}

QTEST_MAIN(tst_UiStartUp)
#include "tst_uistartup.moc"
