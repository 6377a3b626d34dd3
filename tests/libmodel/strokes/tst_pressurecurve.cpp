#include "libmodel/strokes/pressurecurve.h"
#include "testtools.h"

#include <QtTest>

#include <cmath>

class tst_PressureCurve : public QObject
{
    Q_OBJECT

private slots:
    void radiusIsExponential_data();
    void radiusIsExponential();
    void opacityIsLinear();
};

void tst_PressureCurve::radiusIsExponential_data()
{
    QTest::addColumn<double>("pressure");
    QTest::addColumn<double>("share");
    QTest::newRow("none") << 0.0 << 0.0;
    QTest::newRow("full") << 1.0 << 1.0;
    // 100 to the power of 1/2 is 10.
    QTest::newRow("half, as a mouse gives") << 0.5 << 9.0 / 99.0;
    QTest::newRow("quarter") << 0.25 << (std::sqrt(10.0) - 1) / 99.0;
}

void tst_PressureCurve::radiusIsExponential()
{
    QFETCH(double, pressure);
    QFETCH(double, share);
    const TestPen pen({3, 14, 0, 1});
    QVERIFY(std::abs(Model::radiusAt(pen, pressure) - (3 + 11 * share)) < 1e-12);
}

void tst_PressureCurve::opacityIsLinear()
{
    const TestPen pen({3, 14, 0.2, 0.6});
    for (int i = 0; i <= 10; ++i)
        QVERIFY(std::abs(Model::opacityAt(pen, i / 10.0) - (0.2 + 0.04 * i)) < 1e-12);
}

QTEST_MAIN(tst_PressureCurve)
#include "tst_pressurecurve.moc"
