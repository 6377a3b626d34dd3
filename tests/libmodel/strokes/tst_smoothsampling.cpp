#include "coverageprobes.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/smoothsampling.h"
#include "support/cputimer.h"
#include "support/randomnumbers.h"

#include <QtTest>

#include <cmath>

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
    void everyPixelIsThatOfItsOwnReckoning_data();
    void everyPixelIsThatOfItsOwnReckoning();
    void partsAreThoseOfTheWhole_data() { everyPixelIsThatOfItsOwnReckoning_data(); }
    void partsAreThoseOfTheWhole();
    void blankStretchesCostNextToNothing();

private:
    static QImage someInk(QSize size);

    /// One pixel of the result, from the formula for it.
    static int expectedAt(const QImage &source, const QTransform &toSource, QPoint pixel)
    {
        const double x = pixel.x() + 0.5;
        const double y = pixel.y() + 0.5;
        const double sourceX = toSource.m11() * x + toSource.m21() * y + toSource.dx();
        const double sourceY = toSource.m12() * x + toSource.m22() * y + toSource.dy();
        const double edge = 1.0 / 1024; // to which side a centre on an edge falls, a rounding must not decide
        if (!(sourceX >= -edge && sourceX < source.width() - edge && sourceY >= -edge &&
              sourceY < source.height() - edge))
            return 0;
        const int left = int(std::floor(sourceX - 0.5));
        const int top = int(std::floor(sourceY - 0.5));
        const int toRight = int((sourceX - 0.5 - left) * 256);
        const int down = int((sourceY - 0.5 - top) * 256);
        const auto at = [&](int column, int row) {
            return coverageAt(source, qBound(0, column, source.width() - 1), qBound(0, row, source.height() - 1));
        };
        const int above = at(left, top) * (256 - toRight) + at(left + 1, top) * toRight;
        const int below = at(left, top + 1) * (256 - toRight) + at(left + 1, top + 1) * toRight;
        return (above * (256 - down) + below * down + 32768) / 65536;
    }

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

/// Blots here and there on a blank ground, and noise at the far corner.
QImage tst_SmoothSampling::someInk(QSize size)
{
    TestSupport::RandomNumbers random(11);
    QImage image = blankCoverage(size);
    for (int i = 0; i < 12; ++i) {
        const QPoint at(random.between(0, size.width() - 1), random.between(0, size.height() - 1));
        for (const QRect rect = QRect(at, QSize(9, 7)) & image.rect(); int y : {rect.top(), rect.bottom()}) {
            for (int x = rect.left(); x <= rect.right(); ++x)
                image.scanLine(y)[x] = uchar(random.between(1, 255));
        }
    }
    for (int y = size.height() * 3 / 4; y < size.height(); ++y) {
        for (int x = size.width() * 3 / 4; x < size.width(); ++x)
            image.scanLine(y)[x] = uchar(random.between(0, 255));
    }
    return image;
}

void tst_SmoothSampling::everyPixelIsThatOfItsOwnReckoning_data()
{
    QTest::addColumn<QTransform>("toSource");
    QTest::newRow("pixel on pixel") << QTransform();
    QTest::newRow("moved by whole pixels") << QTransform::fromTranslate(-17, 5);
    QTest::newRow("moved by parts of pixels") << QTransform::fromTranslate(0.3, -0.7);
    QTest::newRow("two for one") << QTransform::fromScale(2, 2);
    QTest::newRow("two for one, begun off the picture") << QTransform(2, 0, 0, 2, -22, -6);
    QTest::newRow("two for one, by an odd pixel") << QTransform(2, 0, 0, 2, 1, 3);
    QTest::newRow("two for one, moved by half a pixel") << QTransform(2, 0, 0, 2, 0.5, 0);
    QTest::newRow("two for one across, three down") << QTransform::fromScale(2, 3);
    QTest::newRow("three for one across, two down") << QTransform::fromScale(3, 2);
    QTest::newRow("nearly two for one") << QTransform::fromScale(2.001, 1.999);
    QTest::newRow("mirrored") << QTransform(-2, 0, 0, 2, 400, 0);
    QTest::newRow("upside down") << QTransform(2, 0, 0, -2, 0, 300);
    QTest::newRow("a quarter turn") << QTransform(0, -2, 2, 0, 0, 300);
    QTest::newRow("turned a little") << QTransform(2, 0, 0, 2, -30, 40).rotate(1);
    QTest::newRow("turned") << QTransform::fromTranslate(120, -50).rotate(33).scale(1.7, 0.6);
    QTest::newRow("sheared") << QTransform(1, 0, 0.25, 1, 0, 0);
    QTest::newRow("much larger") << QTransform::fromScale(0.03, 0.04);
    QTest::newRow("much smaller") << QTransform::fromScale(37, 23);
    QTest::newRow("too small to be seen") << QTransform::fromScale(1.0e6, 1.0e6);
    QTest::newRow("flat") << QTransform(0, 0, 0, 1, 20, 0);
}

void tst_SmoothSampling::everyPixelIsThatOfItsOwnReckoning()
{
    QFETCH(QTransform, toSource);
    for (const QSize size : {QSize(400, 300), QSize(399, 301), QSize(1, 300), QSize(2, 2)}) {
        const QImage source = someInk(size);
        const QRect pixels(-11, -5, 233, 171);
        const QImage sampled = sampledSmoothly(source, toSource, pixels);
        QCOMPARE(sampled.size(), pixels.size());
        for (int y = 0; y < pixels.height(); ++y) {
            for (int x = 0; x < pixels.width(); ++x)
                QCOMPARE(coverageAt(sampled, x, y), expectedAt(source, toSource, pixels.topLeft() + QPoint(x, y)));
        }
    }
}

void tst_SmoothSampling::partsAreThoseOfTheWhole()
{
    QFETCH(QTransform, toSource);
    const QImage source = someInk({400, 300});
    const QRect pixels(-11, -5, 233, 171);
    const QImage whole = sampledSmoothly(source, toSource, pixels);
    TestSupport::RandomNumbers random(5);
    for (int i = 0; i < 60; ++i) {
        const QPoint at(random.between(0, 232), random.between(0, 170));
        const QRect part = QRect(at, QSize(random.between(1, 90), random.between(1, 30))) & whole.rect();
        QCOMPARE(sampledSmoothly(source, toSource, part.translated(pixels.topLeft())), whole.copy(part));
    }
}

void tst_SmoothSampling::blankStretchesCostNextToNothing()
{
    constexpr qint64 mostMilliseconds = 400; // a sample of each pixel takes some thirty times as long
    QImage source = blankCoverage({4000, 4000});
    source.scanLine(2000)[2000] = 255;
    const TestSupport::CpuTimer timer;
    for (int i = 0; i < 20; ++i)
        QVERIFY(!inkOf(sampledSmoothly(source, QTransform().rotate(5), QRect(1900, 1700, 300, 300))).isNull());
    for (int i = 0; i < 20; ++i)
        QCOMPARE(sampledSmoothly(source, QTransform().rotate(5), QRect(0, 0, 4000, 4000)).width(), 4000);
    QVERIFY2(timer.milliseconds() < mostMilliseconds, qPrintable(QString::number(timer.milliseconds())));
}

QTEST_APPLESS_MAIN(tst_SmoothSampling)
#include "tst_smoothsampling.moc"
