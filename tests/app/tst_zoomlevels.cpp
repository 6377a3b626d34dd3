#include "app/zoomlevels.h"

#include <QTest>

class tst_ZoomLevels : public QObject
{
    Q_OBJECT

private slots:
    void steppingInTakesTheNextLevel_data();
    void steppingInTakesTheNextLevel();
    void steppingOutTakesTheLevelBelow_data();
    void steppingOutTakesTheLevelBelow();
    void steppingInVisitsAllEighteenLevelsAndComesRound();
};

void tst_ZoomLevels::steppingInTakesTheNextLevel_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::newRow("from 100 percent") << 1.0 << 1.5;
    QTest::newRow("just past a level counts as on it") << 1.003 << 1.5;
    QTest::newRow("just short of a level counts as on it") << 0.9951 << 1.5;
    QTest::newRow("a little more than the tolerance short of a level goes to it") << 0.994 << 1.0;
    QTest::newRow("far below the levels") << 0.001 << 0.0625;
    QTest::newRow("past the largest comes round to the smallest") << 24.0 << 0.0625;
    QTest::newRow("from 16 to the largest") << 16.0 << 24.0;
}

void tst_ZoomLevels::steppingInTakesTheNextLevel()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QCOMPARE(ZoomLevels::next(from), to);
}

void tst_ZoomLevels::steppingOutTakesTheLevelBelow_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("to");
    QTest::newRow("from 100 percent") << 1.0 << 0.75;
    QTest::newRow("just past a level counts as on it") << 1.003 << 0.75;
    QTest::newRow("more than the tolerance past a level goes to it") << 1.006 << 1.0;
    QTest::newRow("from 150 percent") << 1.5 << 1.0;
    QTest::newRow("at the smallest stays") << 0.0625 << 0.0625;
    QTest::newRow("below the smallest goes to it") << 0.01 << 0.0625;
    QTest::newRow("far above the levels") << 100.0 << 24.0;
}

void tst_ZoomLevels::steppingOutTakesTheLevelBelow()
{
    QFETCH(double, from);
    QFETCH(double, to);
    QCOMPARE(ZoomLevels::previous(from), to);
}

void tst_ZoomLevels::steppingInVisitsAllEighteenLevelsAndComesRound()
{
    QList<double> expected;
    for (int exponent = -4; exponent <= 4; ++exponent)
        expected << std::pow(2.0, exponent) << 1.5 * std::pow(2.0, exponent);
    QList<double> visited = {ZoomLevels::smallest};
    for (double level = ZoomLevels::next(ZoomLevels::smallest); level > ZoomLevels::smallest;
         level = ZoomLevels::next(level))
        visited << level;
    QCOMPARE(visited, expected);
}

QTEST_APPLESS_MAIN(tst_ZoomLevels)
#include "tst_zoomlevels.moc"
