#include "libmodel/scene/picturepainter.h"

#include "libmodel/strokes/inktiles.h"

#include <QPainter>
#include <QTest>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>

namespace {

/// Noise of every colour and opacity, premultiplied.
QImage noise(QSize size, unsigned seed)
{
    std::mt19937 random(seed);
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            reinterpret_cast<QRgb *>(picture.scanLine(y))[x] = qPremultiply(QRgb(random()));
    }
    return picture;
}

std::array<int, 4> channelsOf(QRgb pixel)
{
    return {qRed(pixel), qGreen(pixel), qBlue(pixel), qAlpha(pixel)};
}

QRgb rawPixel(const QImage &picture, int x, int y)
{
    return reinterpret_cast<const QRgb *>(picture.constScanLine(y))[x];
}

/// The exact mean of a square, pixels outside of the picture being those of its edge.
std::array<double, 4> meanOf(const QImage &picture, int left, int top, int side)
{
    std::array<double, 4> sum{};
    for (int y = top; y < top + side; ++y) {
        for (int x = left; x < left + side; ++x) {
            const auto channels = channelsOf(
                rawPixel(picture, std::clamp(x, 0, picture.width() - 1), std::clamp(y, 0, picture.height() - 1)));
            for (size_t i = 0; i < sum.size(); ++i)
                sum[i] += channels[i];
        }
    }
    for (double &value : sum)
        value /= side * side;
    return sum;
}

int largestDifference(const QImage &a, const QImage &b)
{
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const auto p = channelsOf(rawPixel(a, x, y));
            const auto q = channelsOf(rawPixel(b, x, y));
            for (size_t i = 0; i < p.size(); ++i)
                largest = std::max(largest, std::abs(p[i] - q[i]));
        }
    }
    return largest;
}

QImage blank(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

class tst_PicturePainter : public QObject
{
    Q_OBJECT

private slots:
    void reductionLeavesAtLeastHalfTheSize_data();
    void reductionLeavesAtLeastHalfTheSize();
    void nothingIsReducedWithoutSmoothing();
    void reductionCountsDevicePixels();
    void alignmentGoesOutwards_data();
    void alignmentGoesOutwards();
    void pixelsAreMeansOfTheirSquares_data();
    void pixelsAreMeansOfTheirSquares();
    void edgeRepeatsOutside();
    void tilesWithoutInkAreLeftTransparent();
    void paintsTheMeansAtAPowerOfTwo_data();
    void paintsTheMeansAtAPowerOfTwo();
    void paintsPixelForPixelAtFullSize();
    void thinLinesStayWholeWhenSmall();
    void pictureLiesAtItsOrigin();
    void partsAreThoseOfTheWhole_data();
    void partsAreThoseOfTheWhole();
    void partOutsideOfThePicturePaintsNothing();
};

void tst_PicturePainter::reductionLeavesAtLeastHalfTheSize_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("factor");
    QTest::addRow("enlarged") << 3.0 << 1;
    QTest::addRow("full size") << 1.0 << 1;
    QTest::addRow("a little over half") << 0.501 << 1;
    QTest::addRow("half") << 0.5 << 2;
    QTest::addRow("a little under half") << 0.499 << 2;
    QTest::addRow("a third") << 1.0 / 3.0 << 2;
    QTest::addRow("a quarter") << 0.25 << 4;
    QTest::addRow("a fifth") << 0.2 << 4;
    QTest::addRow("an eighth") << 0.125 << 8;
    QTest::addRow("a sixteenth") << 0.0625 << 16;
    QTest::addRow("less than any view shows") << 0.01 << 16;
}

void tst_PicturePainter::reductionLeavesAtLeastHalfTheSize()
{
    QFETCH(double, scale);
    QFETCH(int, factor);
    for (const double degrees : {0.0, 20.0, -90.0}) {
        for (const double mirror : {1.0, -1.0}) {
            QImage device = blank({8, 8});
            QPainter painter(&device);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.rotate(degrees);
            painter.scale(mirror * scale, scale);
            QCOMPARE(Model::reductionFor(&painter), factor);
        }
    }
}

void tst_PicturePainter::nothingIsReducedWithoutSmoothing()
{
    QImage device = blank({8, 8});
    QPainter painter(&device);
    painter.scale(0.1, 0.1);
    QCOMPARE(Model::reductionFor(&painter), 1);
}

void tst_PicturePainter::reductionCountsDevicePixels()
{
    QImage device = blank({16, 16});
    device.setDevicePixelRatio(2.0);
    QPainter painter(&device);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.scale(0.25, 0.25);
    QCOMPARE(Model::reductionFor(&painter), 2);
}

void tst_PicturePainter::alignmentGoesOutwards_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<int>("step");
    QTest::addColumn<QRect>("aligned");
    QTest::addRow("already") << QRect(8, 16, 24, 8) << 8 << QRect(8, 16, 24, 8);
    QTest::addRow("by one") << QRect(7, 15, 26, 10) << 8 << QRect(0, 8, 40, 24);
    QTest::addRow("below zero") << QRect(-1, -8, 2, 8) << 4 << QRect(-4, -8, 8, 8);
    QTest::addRow("step one") << QRect(-3, 5, 7, 9) << 1 << QRect(-3, 5, 7, 9);
}

void tst_PicturePainter::alignmentGoesOutwards()
{
    QFETCH(QRect, rect);
    QFETCH(int, step);
    QTEST(Model::alignedTo(rect, step), "aligned");
}

void tst_PicturePainter::pixelsAreMeansOfTheirSquares_data()
{
    QTest::addColumn<int>("factor");
    for (const int factor : {1, 2, 4, 8, 16})
        QTest::addRow("%d", factor) << factor;
}

void tst_PicturePainter::pixelsAreMeansOfTheirSquares()
{
    QFETCH(int, factor);
    const QImage picture = noise({160, 96}, 7);
    const QRect part(16, 32, 128, 48);
    const QImage reduced = Model::reducedPicture(picture, part, factor);
    QCOMPARE(reduced.size(), part.size() / factor);
    for (int y = 0; y < reduced.height(); ++y) {
        for (int x = 0; x < reduced.width(); ++x) {
            const auto mean = meanOf(picture, part.left() + x * factor, part.top() + y * factor, factor);
            const auto pixel = channelsOf(rawPixel(reduced, x, y));
            for (size_t i = 0; i < mean.size(); ++i)
                QVERIFY(std::abs(pixel[i] - mean[i]) <= 0.5);
        }
    }
}

void tst_PicturePainter::edgeRepeatsOutside()
{
    const QImage picture = noise({13, 9}, 3);
    const QImage reduced = Model::reducedPicture(picture, QRect(-4, -4, 24, 20), 4);
    for (const QPoint at : {QPoint(0, 0), QPoint(4, 0), QPoint(4, 3), QPoint(2, 3), QPoint(5, 4)}) {
        const auto mean = meanOf(picture, 4 * at.x() - 4, 4 * at.y() - 4, 4);
        const auto pixel = channelsOf(rawPixel(reduced, at.x(), at.y()));
        for (size_t i = 0; i < mean.size(); ++i)
            QVERIFY(std::abs(pixel[i] - mean[i]) <= 0.5);
    }
}

void tst_PicturePainter::tilesWithoutInkAreLeftTransparent()
{
    QImage picture = blank({400, 200});
    QPainter(&picture).fillRect(210, 77, 30, 9, QColor(200, 100, 50, 180));
    Model::InkTiles ink(picture.size());
    ink.add(QRect(210, 77, 30, 9));
    for (const int factor : {2, 4, 8}) {
        QCOMPARE(Model::reducedPicture(picture, picture.rect(), factor, &ink),
                 Model::reducedPicture(picture, picture.rect(), factor));
    }
    // The map is believed: a picture full of ink comes out empty where the map says so.
    const QImage full = noise({400, 200}, 5);
    const QImage reduced = Model::reducedPicture(full, full.rect(), 4, &ink);
    QCOMPARE(qAlpha(rawPixel(reduced, 2, 2)), 0);
    QVERIFY(qAlpha(rawPixel(reduced, 55, 20)) > 0);
}

void tst_PicturePainter::paintsTheMeansAtAPowerOfTwo_data()
{
    pixelsAreMeansOfTheirSquares_data();
}

void tst_PicturePainter::paintsTheMeansAtAPowerOfTwo()
{
    QFETCH(int, factor);
    const QImage picture = noise({128, 64}, 11);
    QImage device = blank(picture.size() / factor);
    QPainter painter(&device);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.scale(1.0 / factor, 1.0 / factor);
    Model::paintPicture(&painter, picture, {0, 0}, picture.rect());
    painter.end();
    for (int y = 0; y < device.height(); ++y) {
        for (int x = 0; x < device.width(); ++x) {
            const auto mean = meanOf(picture, x * factor, y * factor, factor);
            const auto pixel = channelsOf(rawPixel(device, x, y));
            for (size_t i = 0; i < mean.size(); ++i)
                QVERIFY(std::abs(pixel[i] - mean[i]) <= 1.5);
        }
    }
}

void tst_PicturePainter::paintsPixelForPixelAtFullSize()
{
    const QImage picture = noise({40, 30}, 2);
    QImage device = blank({60, 50});
    QPainter painter(&device);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.translate(8, 16);
    Model::paintPicture(&painter, picture, {0, 0}, picture.rect());
    painter.end();
    QCOMPARE(device.copy(8, 16, 40, 30), picture);
}

void tst_PicturePainter::thinLinesStayWholeWhenSmall()
{
    // Slanted, 2 pixels wide, shown at a fifth: each column has as much ink as the line has, a fifth of 2 pixels.
    QImage picture = blank({800, 400});
    QPainter line(&picture);
    line.setRenderHint(QPainter::Antialiasing);
    line.setPen(QPen(Qt::black, 2.0, Qt::SolidLine, Qt::FlatCap));
    line.drawLine(QPointF(0, 50), QPointF(800, 250));
    line.end();
    QImage device = blank({160, 80});
    QPainter painter(&device);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.scale(0.2, 0.2);
    Model::paintPicture(&painter, picture, {0, 0}, picture.rect());
    painter.end();
    const double expected = 255.0 * 0.2 * 2.0 / std::cos(std::atan2(200.0, 800.0));
    for (int x = 10; x < 150; ++x) {
        int inked = 0;
        for (int y = 0; y < device.height(); ++y)
            inked += qAlpha(rawPixel(device, x, y));
        QVERIFY2(std::abs(inked - expected) < 0.2 * expected, qPrintable(QString::number(inked)));
    }
}

void tst_PicturePainter::pictureLiesAtItsOrigin()
{
    const QImage whole = noise({256, 128}, 9);
    const auto painted = [](const QImage &picture, QPoint origin, QRect rect) {
        QImage device = blank({64, 32});
        QPainter painter(&device);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.scale(0.25, 0.25);
        Model::paintPicture(&painter, picture, origin, rect);
        return device;
    };
    constexpr QRect part(64, 32, 128, 64);
    const QImage cut = whole.copy(part);
    const QRect inner = part.adjusted(8, 8, -8, -8);
    QCOMPARE(painted(cut, part.topLeft(), inner), painted(whole, {0, 0}, inner));
}

void tst_PicturePainter::partsAreThoseOfTheWhole_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("degrees");
    QTest::addRow("enlarged") << 1.7 << 0.0;
    QTest::addRow("small") << 0.3 << 0.0;
    QTest::addRow("smaller") << 0.11 << 0.0;
    QTest::addRow("small, turned") << 0.3 << 25.0;
    QTest::addRow("turned") << 0.8 << -70.0;
}

void tst_PicturePainter::partsAreThoseOfTheWhole()
{
    QFETCH(double, scale);
    QFETCH(double, degrees);
    const QImage picture = noise({400, 300}, 21);
    const QTransform toDevice = QTransform().translate(60, 40).rotate(degrees).scale(scale, scale);
    const auto painted = [&](QRect deviceRect) {
        QImage device = blank({300, 240});
        QPainter painter(&device);
        painter.setClipRect(deviceRect);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.setTransform(toDevice);
        const QRectF around = QRectF(deviceRect).adjusted(-1, -1, 1, 1);
        const QRect rect = toDevice.inverted().mapRect(around).toAlignedRect().adjusted(-1, -1, 1, 1);
        Model::paintPicture(&painter, picture, {0, 0}, rect & picture.rect());
        return device;
    };
    const QImage whole = painted(QRect(0, 0, 300, 240));
    for (const QRect part : {QRect(61, 43, 17, 11), QRect(70, 60, 31, 5), QRect(0, 0, 90, 77)}) {
        // Noise is the hardest there is: the painter steps through a turned picture in fractions of a pixel, from
        // where it begins, and a fraction on is another colour.
        QVERIFY(largestDifference(painted(part).copy(part), whole.copy(part)) <= 8);
    }
}

void tst_PicturePainter::partOutsideOfThePicturePaintsNothing()
{
    const QImage picture = noise({40, 30}, 2);
    QImage device = blank({60, 50});
    QPainter painter(&device);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.scale(0.5, 0.5);
    Model::paintPicture(&painter, picture, {0, 0}, QRect(50, 0, 10, 10));
    Model::paintPicture(&painter, picture, {0, 0}, QRect());
    Model::paintPicture(&painter, QImage(), {0, 0}, QRect(0, 0, 10, 10));
    painter.end();
    QCOMPARE(device, blank({60, 50}));
}

QTEST_APPLESS_MAIN(tst_PicturePainter)
#include "tst_picturepainter.moc"
