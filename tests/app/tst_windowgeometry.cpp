#include "app/windowgeometry.h"

#include <QScreen>
#include <QTest>
#include <QWidget>

class tst_WindowGeometry : public QObject
{
    Q_OBJECT

private slots:
    void firstPlaceIsLimitedAndInTheMiddle_data();
    void firstPlaceIsLimitedAndInTheMiddle();
    void windowIsBroughtOntoAScreen_data();
    void windowIsBroughtOntoAScreen();
    void storedGeometryIsRestored();
    void storedGeometryOffAllScreensIsBroughtBack();
    void maximizedWindowIsRestoredMaximized();
    void brokenGeometryGivesTheFirstPlace();
};

void tst_WindowGeometry::firstPlaceIsLimitedAndInTheMiddle_data()
{
    QTest::addColumn<QRect>("available");
    QTest::addColumn<QRect>("place");
    // 24 pixels are for the title bar.
    QTest::newRow("small screen") << QRect(0, 0, 1280, 800) << QRect(0, 24, 1280, 776);
    QTest::newRow("panel above") << QRect(0, 30, 1280, 770) << QRect(0, 54, 1280, 746);
    QTest::newRow("wide screen") << QRect(0, 0, 2500, 1024) << QRect(200, 24, 2100, 1000);
    QTest::newRow("huge screen") << QRect(0, 0, 4100, 2224) << QRect(1000, 524, 2100, 1200);
}

void tst_WindowGeometry::firstPlaceIsLimitedAndInTheMiddle()
{
    QFETCH(QRect, available);
    const QRect place = WindowGeometry::firstPlace(available, 24);
    QTEST(place, "place");
}

void tst_WindowGeometry::windowIsBroughtOntoAScreen_data()
{
    QTest::addColumn<QRect>("frame");
    QTest::addColumn<QRect>("place");
    // Two screens side by side, the second one lower.
    QTest::newRow("inside") << QRect(100, 100, 800, 600) << QRect(100, 100, 800, 600);
    QTest::newRow("on the second screen") << QRect(2000, 400, 800, 600) << QRect(2000, 400, 800, 600);
    QTest::newRow("over two screens") << QRect(1500, 400, 800, 600) << QRect(1500, 400, 800, 600);
    QTest::newRow("below the bottom, title bar in reach") << QRect(100, 900, 800, 600) << QRect(100, 900, 800, 600);
    QTest::newRow("to the right of all") << QRect(9000, 400, 800, 600) << QRect(1120, 400, 800, 600);
    QTest::newRow("far above") << QRect(100, -5000, 800, 600) << QRect(100, 0, 800, 600);
    QTest::newRow("title bar above the screen") << QRect(100, -300, 800, 600) << QRect(100, 0, 800, 600);
    QTest::newRow("a sliver is seen") << QRect(-780, 300, 800, 600) << QRect(0, 300, 800, 600);
    QTest::newRow("a sliver of the second screen") << QRect(3180, 400, 800, 600) << QRect(2400, 400, 800, 600);
    QTest::newRow("larger than the screen") << QRect(-9000, 0, 4000, 3000) << QRect(0, 0, 1920, 1080);
}

void tst_WindowGeometry::windowIsBroughtOntoAScreen()
{
    QFETCH(QRect, frame);
    const QList<QRect> screens{QRect(0, 0, 1920, 1080), QRect(1920, 200, 1280, 1024)};
    QTEST(WindowGeometry::broughtOnto(screens, frame), "place");
}

void tst_WindowGeometry::storedGeometryIsRestored()
{
    QWidget former;
    former.setGeometry(150, 120, 700, 500);
    QWidget window;
    WindowGeometry::restore(window, former.saveGeometry());
    QCOMPARE(window.geometry(), QRect(150, 120, 700, 500));
}

void tst_WindowGeometry::storedGeometryOffAllScreensIsBroughtBack()
{
    for (const QPoint far : {QPoint(20000, 300), QPoint(-20000, 300), QPoint(300, 20000), QPoint(300, -20000)}) {
        QWidget former;
        former.setGeometry(QRect(far, QSize(700, 500)));
        QWidget window;
        WindowGeometry::restore(window, former.saveGeometry());
        QVERIFY(window.screen()->availableGeometry().contains(window.frameGeometry()));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTRY_VERIFY(window.screen()->availableGeometry().contains(window.geometry()));
    }
}

void tst_WindowGeometry::maximizedWindowIsRestoredMaximized()
{
    QWidget former;
    former.setGeometry(150, 120, 700, 500);
    former.setWindowState(Qt::WindowMaximized);
    QWidget window;
    WindowGeometry::restore(window, former.saveGeometry());
    QVERIFY(window.isMaximized());
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(window.width() > 1500);
}

void tst_WindowGeometry::brokenGeometryGivesTheFirstPlace()
{
    for (const QByteArray &stored : {QByteArray(), QByteArray("broken"), QByteArray(66, '\xff')}) {
        QWidget window;
        WindowGeometry::restore(window, stored);
        const QRect available = window.screen()->availableGeometry();
        QVERIFY(available.contains(window.geometry()));
        QCOMPARE(window.width(), std::min(2100, available.width()));
    }
}

QTEST_MAIN(tst_WindowGeometry)
#include "tst_windowgeometry.moc"
