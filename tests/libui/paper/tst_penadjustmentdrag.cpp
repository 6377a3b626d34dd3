#include "libui/paper/penadjustmentdrag.h"

#include <QTest>

#include <cmath>

using UI::PenAdjustmentDrag;
using Direction = UI::PenAdjustmentDrag::Direction;

class tst_PenAdjustmentDrag : public QObject
{
    Q_OBJECT

private slots:
    void directionIsChosenByTheFirstWay_data();
    void directionIsChosenByTheFirstWay();
    void factorGrowsByAQuarterEveryTenPixels_data();
    void factorGrowsByAQuarterEveryTenPixels();
    void directionStaysUntilTheEnd();
};

void tst_PenAdjustmentDrag::directionIsChosenByTheFirstWay_data()
{
    QTest::addColumn<QPointF>("way");
    QTest::addColumn<int>("direction");
    const auto row = [](const char *name, QPointF way, Direction direction) {
        QTest::addRow("%s", name) << way << static_cast<int>(direction);
    };
    row("not far enough", {6, 3}, Direction::None);
    row("just far enough", {6, 4}, Direction::Size);
    row("left", {-10, 0}, Direction::Size);
    row("up", {0, -10}, Direction::Opacity);
    row("as much of both", {5, 5}, Direction::Opacity);
}

void tst_PenAdjustmentDrag::directionIsChosenByTheFirstWay()
{
    QFETCH(QPointF, way);
    QFETCH(int, direction);
    PenAdjustmentDrag drag({100, 100}, 10);
    drag.moveTo(QPointF(100, 100) + way);
    QCOMPARE(static_cast<int>(drag.direction()), direction);
    if (drag.direction() == Direction::None)
        QCOMPARE(drag.factor(), 1.0);
}

void tst_PenAdjustmentDrag::factorGrowsByAQuarterEveryTenPixels_data()
{
    QTest::addColumn<QPointF>("way");
    QTest::addColumn<double>("factor");
    QTest::addRow("right") << QPointF(10, 0) << 1.25;
    QTest::addRow("right, twice as far") << QPointF(20, 3) << 1.5625;
    QTest::addRow("left") << QPointF(-10, 0) << 0.8;
    QTest::addRow("up") << QPointF(0, -10) << 1.25;
    QTest::addRow("down") << QPointF(0, 10) << 0.8;
    QTest::addRow("half a step") << QPointF(1, -15) << std::sqrt(1.25 * 1.25 * 1.25);
}

void tst_PenAdjustmentDrag::factorGrowsByAQuarterEveryTenPixels()
{
    QFETCH(QPointF, way);
    QFETCH(double, factor);
    PenAdjustmentDrag drag({100, 100}, 10);
    drag.moveTo(QPointF(100, 100) + way);
    QVERIFY(std::abs(drag.factor() - factor) < 1e-9);
}

void tst_PenAdjustmentDrag::directionStaysUntilTheEnd()
{
    PenAdjustmentDrag drag({100, 100}, 10);
    drag.moveTo({112, 100});
    drag.moveTo({105, 300});
    QCOMPARE(drag.direction(), Direction::Size);
    QVERIFY(std::abs(drag.factor() - std::pow(1.25, 0.5)) < 1e-9);
    // Back at the press nothing is changed, but the direction is kept.
    drag.moveTo({100, 100});
    QCOMPARE(drag.factor(), 1.0);
    QCOMPARE(drag.direction(), Direction::Size);
}

QTEST_APPLESS_MAIN(tst_PenAdjustmentDrag)
#include "tst_penadjustmentdrag.moc"
