#include "libui/paper/drawingarea.h"
#include "libui/paper/paper.h"

#include <QSignalSpy>
#include <QTest>

class tst_DrawingArea : public QObject
{
    Q_OBJECT

private slots:
    void paperFillsTheArea();
    void resizesAreSentOn();
    void movesAreSentOn();
};

void tst_DrawingArea::paperFillsTheArea()
{
    UI::DrawingArea area;
    area.resize(432, 321);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));
    QCOMPARE(area.paper()->geometry(), QRect(0, 0, 432, 321));
}

void tst_DrawingArea::resizesAreSentOn()
{
    QWidget window;
    UI::DrawingArea area(&window);
    area.resize(200, 200);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QSignalSpy resized(&area, &UI::DrawingArea::resized);
    area.resize(300, 150);
    QCOMPARE(resized.count(), 1);
    QCOMPARE(resized.first().first().toSize(), QSize(300, 150));
}

void tst_DrawingArea::movesAreSentOn()
{
    QWidget window;
    UI::DrawingArea area(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QSignalSpy moved(&area, &UI::DrawingArea::moved);
    area.move(25, 35);
    QCOMPARE(moved.count(), 1);
    QCOMPARE(moved.first().first().toPoint(), QPoint(25, 35));
}

QTEST_MAIN(tst_DrawingArea)
#include "tst_drawingarea.moc"
