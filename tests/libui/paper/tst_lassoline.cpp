#include "libmodel/tools/pentool.h"
#include "libui/paper/lassoline.h"

#include <QTest>

#include <cmath>
#include <numbers>

using UI::LassoLine;

namespace {

/// A pen's way round \a center, \a turns times.
void drawCircle(LassoLine &line, QPointF center, double radius, double turns)
{
    constexpr int steps = 60;
    for (int i = 0; i <= steps * turns; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / steps;
        (void)line.add({center + radius * QPointF(std::cos(angle), std::sin(angle)), 0.5, quint32(5 * i)});
    }
}

} // namespace

/// The lasso's line and the area that it gives.
class tst_LassoLine : public QObject
{
    Q_OBJECT

private slots:
    void circleGivesItsArea();
    void openLineIsClosed();
    void secondRoundAddsNothing();
    void tapGivesAnEmptyArea();
    void addedPiecesCoverTheLine();
    void withoutALineNothingHappens();

private:
    Model::PenTool m_pen{Model::Tool::PenType::Pencil};
};

void tst_LassoLine::circleGivesItsArea()
{
    LassoLine line;
    line.begin({400, 300}, &m_pen);
    QVERIFY(line.isActive());
    drawCircle(line, {200, 150}, 80.0, 1.0);
    const QPainterPath area = line.finish();
    QVERIFY(!line.isActive());
    QVERIFY(area.contains(QPointF(200, 150)));
    QVERIFY(area.contains(QPointF(200, 80)));
    QVERIFY(!area.contains(QPointF(200, 60)));
    QVERIFY(!area.contains(QPointF(290, 150)));
}

void tst_LassoLine::openLineIsClosed()
{
    LassoLine line;
    line.begin({400, 300}, &m_pen);
    // Three quarters of a circle: the chord closes it.
    drawCircle(line, {200, 150}, 80.0, 0.75);
    const QPainterPath area = line.finish();
    QVERIFY(area.contains(QPointF(170, 150)));
    QVERIFY(!area.contains(QPointF(260, 100)));
}

void tst_LassoLine::secondRoundAddsNothing()
{
    LassoLine line;
    line.begin({400, 300}, &m_pen);
    drawCircle(line, {200, 150}, 80.0, 2.0);
    const QPainterPath area = line.finish();
    QVERIFY(area.contains(QPointF(200, 150)));
    // What was encircled twice is inside by any rule of filling.
    QPainterPath evenOdd = area;
    evenOdd.setFillRule(Qt::OddEvenFill);
    QVERIFY(evenOdd.contains(QPointF(200, 150)));
}

void tst_LassoLine::tapGivesAnEmptyArea()
{
    LassoLine line;
    line.begin({400, 300}, &m_pen);
    (void)line.add({{100, 100}, 0.5, 0});
    const QPainterPath area = line.finish();
    QVERIFY(area.boundingRect().width() * area.boundingRect().height() < 1.0);
    QVERIFY(!line.isActive());
}

void tst_LassoLine::addedPiecesCoverTheLine()
{
    LassoLine line;
    line.begin({400, 300}, &m_pen);
    QRectF covered;
    for (int i = 0; i < 40; ++i)
        covered |= line.add({QPointF(20 + 8 * i, 100 + 30 * std::sin(0.3 * i)), 0.5, quint32(i)});
    QVERIFY(covered.adjusted(-1, -1, 1, 1).contains(line.path().boundingRect()));
    QVERIFY(line.bounds().adjusted(-1, -1, 1, 1).contains(line.path().boundingRect()));
}

void tst_LassoLine::withoutALineNothingHappens()
{
    LassoLine line;
    QVERIFY(line.add({{1, 1}, 0.5, 0}).isNull());
    QVERIFY(line.path().isEmpty());
    QVERIFY(line.finish().isEmpty());
}

QTEST_MAIN(tst_LassoLine)
#include "tst_lassoline.moc"
