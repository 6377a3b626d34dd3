#include "libmodel/base/fuzzy.h"

#include <QTest>

using Model::fuzzyEqual;
using Model::isOpacityShown;

class tst_Fuzzy : public QObject
{
    Q_OBJECT

private slots:
    void comparesRelativeToTheSmallerMagnitude_data();
    void comparesRelativeToTheSmallerMagnitude();
    void opacityIsShownAboveATrillionth_data();
    void opacityIsShownAboveATrillionth();
};

void tst_Fuzzy::comparesRelativeToTheSmallerMagnitude_data()
{
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<bool>("equal");

    QTest::newRow("the same") << 12.0 << 12.0 << true;
    QTest::newRow("zeros") << 0.0 << 0.0 << true;
    QTest::newRow("half the tolerance") << 1.0 << 1.0 + 0.5e-12 << true;
    QTest::newRow("twice the tolerance") << 1.0 << 1.0 + 2e-12 << false;
    QTest::newRow("large numbers scale it up") << 1e12 << 1e12 + 0.5 << true;
    QTest::newRow("large numbers too far apart") << 1e12 << 1e12 + 2.0 << false;
    QTest::newRow("nothing but zero equals zero") << 0.0 << 1e-300 << false;
    QTest::newRow("opposite signs") << 1e-13 << -1e-13 << false;
}

void tst_Fuzzy::comparesRelativeToTheSmallerMagnitude()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(bool, equal);
    QCOMPARE(fuzzyEqual(a, b), equal);
    QCOMPARE(fuzzyEqual(b, a), equal);
    QCOMPARE(fuzzyEqual(-a, -b), equal);
}

void tst_Fuzzy::opacityIsShownAboveATrillionth_data()
{
    QTest::addColumn<double>("opacity");
    QTest::addColumn<bool>("shown");

    QTest::newRow("zero") << 0.0 << false;
    QTest::newRow("the limit itself") << 1e-12 << false;
    QTest::newRow("just above") << 1.1e-12 << true;
    QTest::newRow("opaque") << 1.0 << true;
    QTest::newRow("only the magnitude counts") << -0.5 << true;
}

void tst_Fuzzy::opacityIsShownAboveATrillionth()
{
    QFETCH(double, opacity);
    QFETCH(bool, shown);
    QCOMPARE(isOpacityShown(opacity), shown);
}

QTEST_GUILESS_MAIN(tst_Fuzzy)
#include "tst_fuzzy.moc"
