#include "coverageprobes.h"
#include "libmodel/strokes/smoothsampling.h"

#include <QtTest>

using namespace Model;

class tst_SmoothSampling : public QObject
{
    Q_OBJECT

private slots:
    void pixelOnPixelIsTheSame();
    void betweenTwoPixelsIsTheirMean();
    void doubledPictureIsHalvedToTheMeanOfFour();
    void enlargedRampIsARamp();
    void outsideIsNothing();
    void edgeIsNotDarkened();
    void quarterTurnTurnsThePixels();
    void endlessNumbersMakeNothing();

private:
    /// Rows of 10, 20, 30, ... with 3 more in each row.
    static QImage ramp(QSize size)
    {
        QImage image(size, QImage::Format_Alpha8);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                image.scanLine(y)[x] = uchar(10 * (x + 1) + 3 * y);
        }
        return image;
    }
};

void tst_SmoothSampling::pixelOnPixelIsTheSame()
{
    const QImage source = ramp({12, 9});
    QCOMPARE(sampledSmoothly(source, {}, source.rect()), source);
    QCOMPARE(sampledSmoothly(source, {}, QRect(3, 2, 5, 4)), source.copy(3, 2, 5, 4));
    QCOMPARE(sampledSmoothly(source, QTransform::fromTranslate(2, 1), QRect(0, 0, 5, 4)), source.copy(2, 1, 5, 4));
}

void tst_SmoothSampling::betweenTwoPixelsIsTheirMean()
{
    const QImage between = sampledSmoothly(ramp({12, 9}), QTransform::fromTranslate(0.5, 0), QRect(0, 0, 10, 9));
    for (int x = 0; x < 10; ++x)
        QCOMPARE(coverageAt(between, x, 0), 10 * (x + 1) + 5);
}

void tst_SmoothSampling::doubledPictureIsHalvedToTheMeanOfFour()
{
    const QImage halved = sampledSmoothly(ramp({12, 8}), QTransform::fromScale(2, 2), QRect(0, 0, 6, 4));
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 6; ++x) {
            // The mean of 10, 20 and the two below them is 15 and a half of 3 more, rounded.
            QCOMPARE(coverageAt(halved, x, y), 20 * x + 15 + 6 * y + 2);
        }
    }
}

void tst_SmoothSampling::enlargedRampIsARamp()
{
    const QImage large = sampledSmoothly(ramp({12, 8}), QTransform::fromScale(0.1, 0.1), QRect(0, 0, 120, 80));
    for (int x = 5; x < 114; ++x)
        QVERIFY(std::abs(coverageAt(large, x, 5) - (10.0 + (x + 0.5 - 5.0))) <= 1.0);
}

void tst_SmoothSampling::outsideIsNothing()
{
    QImage solid({4, 4}, QImage::Format_Alpha8);
    solid.fill(200);
    const QImage around = sampledSmoothly(solid, {}, QRect(-3, -3, 10, 10));
    QCOMPARE(inkOf(around), QRect(3, 3, 4, 4));
}

void tst_SmoothSampling::edgeIsNotDarkened()
{
    QImage solid({4, 4}, QImage::Format_Alpha8);
    solid.fill(200);
    const QImage large = sampledSmoothly(solid, QTransform::fromScale(0.25, 0.25), QRect(0, 0, 16, 16));
    for (const QPoint corner : {QPoint(0, 0), QPoint(15, 0), QPoint(0, 15), QPoint(15, 15)})
        QCOMPARE(coverageAt(large, corner.x(), corner.y()), 200);
}

void tst_SmoothSampling::quarterTurnTurnsThePixels()
{
    const QImage source = ramp({12, 9});
    // A pixel of the result at x, y shows the source's at y, 8 - x.
    const QImage turned = sampledSmoothly(source, QTransform(0, -1, 1, 0, 0, 9), QRect(0, 0, 9, 12));
    for (int y = 0; y < 12; ++y) {
        for (int x = 0; x < 9; ++x)
            QCOMPARE(coverageAt(turned, x, y), coverageAt(source, y, 8 - x));
    }
}

void tst_SmoothSampling::endlessNumbersMakeNothing()
{
    const QImage source = ramp({12, 9});
    for (const double number : {qInf(), -qInf(), qQNaN(), 1.0e300}) {
        const QTransform transform(number, 0, 0, 1, number, 0);
        QVERIFY(inkOf(sampledSmoothly(source, transform, QRect(0, 0, 5, 5))).isNull());
    }
}

QTEST_APPLESS_MAIN(tst_SmoothSampling)
#include "tst_smoothsampling.moc"
