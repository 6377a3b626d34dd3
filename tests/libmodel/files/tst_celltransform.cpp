#include "libmodel/files/celltransform.h"

#include <QTest>

#include <cmath>

/// The angles here are set by their sine and cosine; y is down, so an angle from x towards y is positive.
class tst_CellTransform : public QObject
{
    Q_OBJECT

private slots:
    void rotationIsRead_data();
    void rotationIsRead();
    void rotationSurvivesAnEvenScale();
    void moveAloneHasNoRotation();
    void turnIsAboutTheMovedOrigin();
    void missingNumbersAreLeftOut();
};

void tst_CellTransform::rotationIsRead_data()
{
    QTest::addColumn<double>("m11");
    QTest::addColumn<double>("m12");
    QTest::addColumn<double>("m21");
    QTest::addColumn<double>("m22");
    QTest::addColumn<double>("degrees");
    const double half = std::sqrt(0.5);
    const double sqrt3 = std::sqrt(3.0);
    QTest::newRow("identity") << 1.0 << 0.0 << 0.0 << 1.0 << 0.0;
    QTest::newRow("30 degrees") << sqrt3 / 2 << 0.5 << -0.5 << sqrt3 / 2 << 30.0;
    QTest::newRow("45 degrees") << half << half << -half << half << 45.0;
    QTest::newRow("90 degrees") << 0.0 << 1.0 << -1.0 << 0.0 << 90.0;
    QTest::newRow("120 degrees") << -0.5 << sqrt3 / 2 << -sqrt3 / 2 << -0.5 << 120.0;
    QTest::newRow("-60 degrees") << 0.5 << -sqrt3 / 2 << sqrt3 / 2 << 0.5 << -60.0;
    QTest::newRow("half a turn counts as negative") << -1.0 << 0.0 << 0.0 << -1.0 << -180.0;
    QTest::newRow("null matrix") << 0.0 << 0.0 << 0.0 << 0.0 << 0.0;
    QTest::newRow("first row within the tolerance of null") << 1e-13 << -1e-13 << 0.0 << 0.0 << 0.0;
    // Only the second row is left: the angle whose sine its x part is, turned round where the row points down.
    QTest::newRow("second row down") << 0.0 << 0.0 << 0.0 << 1.0 << 0.0;
    QTest::newRow("second row to the left") << 0.0 << 0.0 << -1.0 << 0.0 << -90.0;
    QTest::newRow("second row to the right") << 0.0 << 0.0 << 1.0 << 0.0 << 90.0;
    QTest::newRow("second row left and down") << 0.0 << 0.0 << -half << half << 45.0;
    QTest::newRow("second row left and up") << 0.0 << 0.0 << -half << -half << -45.0;
}

void tst_CellTransform::rotationIsRead()
{
    QFETCH(double, m11);
    QFETCH(double, m12);
    QFETCH(double, m21);
    QFETCH(double, m22);
    QFETCH(double, degrees);
    const double found = Model::rotationDegrees(QTransform(m11, m12, m21, m22, 5, 7));
    QVERIFY2(std::abs(found - degrees) < 1e-9, QByteArray::number(found, 'g', 17).constData());
}

void tst_CellTransform::rotationSurvivesAnEvenScale()
{
    const double half = std::sqrt(0.5);
    QVERIFY(std::abs(Model::rotationDegrees(QTransform(3 * half, 3 * half, -3 * half, 3 * half, 0, 0)) - 45) < 1e-9);
}

void tst_CellTransform::moveAloneHasNoRotation()
{
    QCOMPARE(Model::rotationDegrees(QTransform::fromTranslate(100, -20)), 0.0);
}

void tst_CellTransform::turnIsAboutTheMovedOrigin()
{
    const QTransform transform = Model::cellTransform(10, 20, 90);
    QCOMPARE(transform.map(QPointF(0, 0)), QPointF(10, 20));
    // A quarter turn takes the x axis to where y was, which is down.
    QCOMPARE(transform.map(QPointF(3, 0)), QPointF(10, 23));
}

void tst_CellTransform::missingNumbersAreLeftOut()
{
    QVERIFY(Model::cellTransform({}, {}, {}).isIdentity());
    QCOMPARE(Model::cellTransform(4, {}, {}).map(QPointF(1, 1)), QPointF(5, 1));
    QCOMPARE(Model::cellTransform({}, 4, {}).map(QPointF(1, 1)), QPointF(1, 5));
    QCOMPARE(Model::cellTransform({}, {}, 180).map(QPointF(1, 1)), QPointF(-1, -1));
}

QTEST_GUILESS_MAIN(tst_CellTransform)
#include "tst_celltransform.moc"
