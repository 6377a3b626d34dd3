#include "libmodel/strokes/fittransform.h"

#include <QtTest>

using Model::fitTransform;

class tst_FitTransform : public QObject
{
    Q_OBJECT

private slots:
    void corners_data();
    void corners();
    void sizeWithoutAreaGivesTheIdentity();
    void longFrameKeepsAHeight();
};

void tst_FitTransform::corners_data()
{
    QTest::addColumn<MR::FitMode>("mode");
    QTest::addColumn<QPointF>("topLeft");
    QTest::addColumn<QPointF>("bottomRight");
    // A frame of 100 x 100 into one of 400 x 200.
    QTest::newRow("stretch") << MR::FitMode::FitModeStretch << QPointF(0, 0) << QPointF(400, 200);
    QTest::newRow("keep aspect") << MR::FitMode::FitModeKeepAspect << QPointF(100, 0) << QPointF(300, 200);
    QTest::newRow("expand") << MR::FitMode::FitModeKeepAspectByExpanding << QPointF(0, -100) << QPointF(400, 300);
    QTest::newRow("crop") << MR::FitMode::FitModeCropCenter << QPointF(150, 50) << QPointF(250, 150);
    QTest::newRow("ignore") << MR::FitMode::FitModeIgnore << QPointF(0, 0) << QPointF(100, 100);
}

void tst_FitTransform::corners()
{
    QFETCH(MR::FitMode, mode);
    QFETCH(QPointF, topLeft);
    QFETCH(QPointF, bottomRight);
    const QTransform transform = fitTransform({100, 100}, {400, 200}, mode);
    QCOMPARE(transform.map(QPointF(0, 0)), topLeft);
    QCOMPARE(transform.map(QPointF(100, 100)), bottomRight);
}

void tst_FitTransform::sizeWithoutAreaGivesTheIdentity()
{
    QVERIFY(fitTransform({}, {400, 200}, MR::FitMode::FitModeStretch).isIdentity());
    QVERIFY(fitTransform({0, 10}, {400, 200}, MR::FitMode::FitModeKeepAspect).isIdentity());
}

void tst_FitTransform::longFrameKeepsAHeight()
{
    const QTransform fit = fitTransform({1000, 1}, {10, 10}, MR::FitMode::FitModeKeepAspect);
    QVERIFY(fit.isInvertible());
    QCOMPARE(fit.mapRect(QRectF(0, 0, 1000, 1)).size(), QSizeF(10, 1));
}

QTEST_APPLESS_MAIN(tst_FitTransform)
#include "tst_fittransform.moc"
