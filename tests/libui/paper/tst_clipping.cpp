#include "libui/paper/clipping.h"

#include <QTest>

using namespace UI;

class tst_Clipping : public QObject
{
    Q_OBJECT

private slots:
    void lineIsCutToTheRectangle_data();
    void lineIsCutToTheRectangle();
    void linesThatMissGiveNothing_data();
    void linesThatMissGiveNothing();
    void polygonWithinStaysWhole();
    void polygonAroundBecomesTheRectangle();
    void polygonAsideBecomesEmpty();
    void cornerIsCutOff();
};

namespace {

constexpr QRectF frame(0, 0, 100, 50);

double area(const QPolygonF &polygon)
{
    double sum = 0.0;
    for (qsizetype i = 0; i < polygon.size(); ++i) {
        const QPointF a = polygon[i];
        const QPointF b = polygon[(i + 1) % polygon.size()];
        sum += a.x() * b.y() - b.x() * a.y();
    }
    return std::abs(sum) / 2.0;
}

} // namespace

void tst_Clipping::lineIsCutToTheRectangle_data()
{
    QTest::addColumn<QLineF>("line");
    QTest::addColumn<QLineF>("expected");
    QTest::addRow("inside") << QLineF(10, 10, 20, 40) << QLineF(10, 10, 20, 40);
    QTest::addRow("through, level") << QLineF(-50, 25, 1e9, 25) << QLineF(0, 25, 100, 25);
    QTest::addRow("through, upwards") << QLineF(30, 80, 30, -80) << QLineF(30, 50, 30, 0);
    QTest::addRow("diagonal") << QLineF(-100, -50, 200, 100) << QLineF(0, 0, 100, 50);
    QTest::addRow("ends inside") << QLineF(-10, 20, 10, 20) << QLineF(0, 20, 10, 20);
}

void tst_Clipping::lineIsCutToTheRectangle()
{
    QFETCH(QLineF, line);
    QFETCH(QLineF, expected);
    const auto cut = clippedLine(line, frame);
    QVERIFY(cut);
    QVERIFY(QLineF(cut->p1(), expected.p1()).length() < 1e-6);
    QVERIFY(QLineF(cut->p2(), expected.p2()).length() < 1e-6);
}

void tst_Clipping::linesThatMissGiveNothing_data()
{
    QTest::addColumn<QLineF>("line");
    QTest::addRow("beside, upright") << QLineF(-1, 0, -1, 50);
    QTest::addRow("below, level") << QLineF(0, 51, 100, 51);
    QTest::addRow("past the corner") << QLineF(90, -20, 120, 10);
    QTest::addRow("ends before") << QLineF(-50, 25, -10, 25);
}

void tst_Clipping::linesThatMissGiveNothing()
{
    QFETCH(QLineF, line);
    QVERIFY(!clippedLine(line, frame));
}

void tst_Clipping::polygonWithinStaysWhole()
{
    const QPolygonF triangle({{10, 10}, {90, 10}, {50, 40}});
    QCOMPARE(clippedPolygon(triangle, frame), triangle);
}

void tst_Clipping::polygonAroundBecomesTheRectangle()
{
    const QPolygonF diamond({{50, -1e6}, {1e6, 25}, {50, 1e6}, {-1e6, 25}});
    const QPolygonF cut = clippedPolygon(diamond, frame);
    QVERIFY(std::abs(area(cut) - 5000.0) < 1e-6);
    QCOMPARE(cut.boundingRect(), frame);
}

void tst_Clipping::polygonAsideBecomesEmpty()
{
    QVERIFY(clippedPolygon(QPolygonF(QRectF(101, 0, 10, 10)), frame).isEmpty());
}

void tst_Clipping::cornerIsCutOff()
{
    // A square that reaches into the rectangle by 10 x 10.
    QVERIFY(std::abs(area(clippedPolygon(QPolygonF(QRectF(90, 40, 100, 100)), frame)) - 100.0) < 1e-9);
}

QTEST_GUILESS_MAIN(tst_Clipping)
#include "tst_clipping.moc"
