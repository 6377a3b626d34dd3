#include "libui/paper/edgescroll.h"

#include <QTest>

namespace {

constexpr QRectF widget(0, 0, 800, 600);

QPolygonF sheetAt(QPointF topLeft)
{
    return QPolygonF(QRectF(topLeft, QSizeF(300, 200)));
}

} // namespace

class tst_EdgeScroll : public QObject
{
    Q_OBJECT

private slots:
    void stepsLeadAwayFromTheEdge_data();
    void stepsLeadAwayFromTheEdge();
    void stepMustNotLoseThePaper_data();
    void stepMustNotLoseThePaper();
    void turnedPaperCountsByItsOutline();
};

void tst_EdgeScroll::stepsLeadAwayFromTheEdge_data()
{
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<double>("ratio");
    QTest::addColumn<QPointF>("step");
    QTest::addRow("middle") << QPointF(400, 300) << 1.0 << QPointF(0, 0);
    QTest::addRow("just inside") << QPointF(50, 550) << 1.0 << QPointF(0, 0);
    QTest::addRow("left") << QPointF(49, 300) << 1.0 << QPointF(5, 0);
    QTest::addRow("right") << QPointF(751, 300) << 1.0 << QPointF(-5, 0);
    QTest::addRow("top") << QPointF(400, 10) << 1.0 << QPointF(0, 5);
    QTest::addRow("bottom") << QPointF(400, 599) << 1.0 << QPointF(0, -5);
    QTest::addRow("corner") << QPointF(799, 0) << 1.0 << QPointF(-5, 5);
    QTest::addRow("beyond the edge") << QPointF(-30, 300) << 1.0 << QPointF(5, 0);
    QTest::addRow("dense screen") << QPointF(90, 300) << 2.0 << QPointF(10, 0);
    QTest::addRow("dense screen, inside") << QPointF(110, 300) << 2.0 << QPointF(0, 0);
}

void tst_EdgeScroll::stepsLeadAwayFromTheEdge()
{
    QFETCH(QPointF, position);
    QFETCH(double, ratio);
    QFETCH(QPointF, step);
    QCOMPARE(UI::edgeScrollStep(widget, position, ratio), step);
}

void tst_EdgeScroll::stepMustNotLoseThePaper_data()
{
    QTest::addColumn<QPointF>("topLeft");
    QTest::addColumn<QPointF>("step");
    QTest::addColumn<bool>("allowed");
    // The middle of the widget is what lies 50 inside its edges: 50 to 750 and 50 to 550.
    QTest::addRow("in the middle") << QPointF(200, 200) << QPointF(5, 0) << true;
    QTest::addRow("to its brim") << QPointF(740, 200) << QPointF(5, 0) << true;
    QTest::addRow("out of it") << QPointF(748, 200) << QPointF(5, 0) << false;
    QTest::addRow("out of it upwards") << QPointF(200, -148) << QPointF(0, -5) << false;
    QTest::addRow("outside, and farther") << QPointF(780, 200) << QPointF(5, 0) << true;
    QTest::addRow("outside, and back") << QPointF(752, 200) << QPointF(-5, 0) << true;
}

void tst_EdgeScroll::stepMustNotLoseThePaper()
{
    QFETCH(QPointF, topLeft);
    QFETCH(QPointF, step);
    QFETCH(bool, allowed);
    QCOMPARE(UI::mayScroll(widget, sheetAt(topLeft), step, 1.0), allowed);
}

void tst_EdgeScroll::turnedPaperCountsByItsOutline()
{
    // A square on its tip whose bounding box still meets the middle, though the square does not.
    const QPolygonF tip({QPointF(790, -60), QPointF(850, 0), QPointF(790, 60), QPointF(730, 0)});
    QVERIFY(UI::mayScroll(widget, tip, {5, 0}, 1.0));
    const QPolygonF inside = tip.translated(-40, 40);
    QVERIFY(!UI::mayScroll(widget, inside, {40, -40}, 1.0));
}

QTEST_APPLESS_MAIN(tst_EdgeScroll)
#include "tst_edgescroll.moc"
