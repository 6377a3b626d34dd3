#include "libmodel/strokes/blending.h"

#include "libmodel/strokes/colortable.h"
#include "libmodel/strokes/coveragepainter.h"
#include "libmodel/strokes/inktiles.h"

#include <QColor>
#include <QPainter>
#include <QRandomGenerator>
#include <QTest>

#include <cmath>

using namespace Model;

namespace {

constexpr QSize size(150, 60);

/// Runs of every value, with gaps of all lengths between them.
QImage someCoverage(QRandomGenerator &random)
{
    QImage coverage(size, QImage::Format_Alpha8);
    coverage.fill(0);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = random.bounded(40); x < size.width(); x += 1 + random.bounded(25)) {
            const int end = std::min(x + random.bounded(12), size.width());
            for (; x < end; ++x)
                coverage.scanLine(y)[x] = static_cast<uchar>(random.bounded(4) == 0 ? 255 : random.bounded(256));
        }
    }
    return coverage;
}

/// A picture of which a part is transparent, a part opaque, a part between.
QImage somePicture(QRandomGenerator &random)
{
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int alpha = y < 20 ? 0 : y < 40 ? 255 : random.bounded(256);
            reinterpret_cast<QRgb *>(picture.scanLine(y))[x] =
                qRgba(random.bounded(alpha + 1), random.bounded(alpha + 1), random.bounded(alpha + 1), alpha);
        }
    }
    return picture;
}

QImage indexed(const QImage &coverage, const QList<QRgb> &table)
{
    QImage image(coverage.size(), QImage::Format_Indexed8);
    for (int y = 0; y < coverage.height(); ++y)
        std::copy_n(coverage.constScanLine(y), coverage.width(), image.scanLine(y));
    image.setColorTable(table);
    return image;
}

int largestDifference(const QImage &one, const QImage &other)
{
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int i = 0; i < 4 * one.width(); ++i)
            largest = std::max(largest, std::abs(one.constScanLine(y)[i] - other.constScanLine(y)[i]));
    }
    return largest;
}

} // namespace

class tst_Blending : public QObject
{
    Q_OBJECT

private slots:
    void coverageIsBlendedAsThePainterDoes_data();
    void coverageIsBlendedAsThePainterDoes();
    void coverageIsBlendedByItsDefinition();
    void opaqueCoverageReplaces();
    void partOutsideOfTheImagesIsLeftOut();
    void mapChangesNothingButTime();
    void picturesAreBlendedAsThePainterDoes();
    void otherFormatsAreLeftAlone();
    void painterIsFollowed_data();
    void painterIsFollowed();
};

void tst_Blending::coverageIsBlendedAsThePainterDoes_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<double>("factor");
    QTest::addColumn<double>("opacity");
    const QList<QColor> colors{Qt::black, Qt::white, QColor(255, 0, 0), QColor(37, 128, 201)};
    for (const QColor &color : colors) {
        for (const double factor : {1.0, 0.3, 0.15}) {
            for (const double opacity : {1.0, 0.999, 0.5, 0.3, 0.01, 0.0})
                QTest::addRow("%s, %g, %g", qPrintable(color.name()), factor, opacity) << color << factor << opacity;
        }
    }
}

void tst_Blending::coverageIsBlendedAsThePainterDoes()
{
    QFETCH(QColor, color);
    QFETCH(double, factor);
    QFETCH(double, opacity);
    constexpr quint32 seed = 20111;
    QRandomGenerator random(seed);
    const QImage coverage = someCoverage(random);
    const QList<QRgb> table = colorTable(color, factor);
    QImage expected = somePicture(random);
    QImage blended = expected.copy();
    QPainter painter(&expected);
    painter.setOpacity(opacity);
    painter.drawImage(0, 0, indexed(coverage, table));
    painter.end();
    blendCoverage(blended, {0, 0}, coverage, coverage.rect(), BlendColors(table, opacity));
    const int difference = largestDifference(blended, expected);
    QVERIFY2(difference <= 1, qPrintable(QString("seed %1: differs by %2").arg(seed).arg(difference)));
}

void tst_Blending::coverageIsBlendedByItsDefinition()
{
    // Green at half coverage and 0.8 over opaque red: 0.4 of green on 0.6 of red.
    QImage picture(16, 1, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::red);
    QImage coverage(16, 1, QImage::Format_Alpha8);
    coverage.fill(128);
    blendCoverage(picture, {0, 0}, coverage, coverage.rect(), BlendColors(colorTable(QColor(0, 255, 0)), 0.8));
    const double alpha = 128 / 255.0 * 0.8;
    for (int x = 0; x < 16; ++x) {
        const QRgb pixel = picture.pixel(x, 0);
        QVERIFY(std::abs(qGreen(pixel) - 255 * alpha) <= 1.5);
        QVERIFY(std::abs(qRed(pixel) - 255 * (1 - alpha)) <= 1.5);
        QCOMPARE(qBlue(pixel), 0);
        QCOMPARE(qAlpha(pixel), 255);
    }
}

void tst_Blending::opaqueCoverageReplaces()
{
    QImage picture(11, 1, QImage::Format_ARGB32_Premultiplied);
    picture.fill(qRgba(3, 2, 1, 100));
    QImage coverage(11, 1, QImage::Format_Alpha8);
    coverage.fill(255);
    blendCoverage(picture, {0, 0}, coverage, coverage.rect(), BlendColors(colorTable(QColor(10, 20, 30)), 1.0));
    for (int x = 0; x < 11; ++x)
        QCOMPARE(picture.pixel(x, 0), qRgb(10, 20, 30));
}

void tst_Blending::partOutsideOfTheImagesIsLeftOut()
{
    QImage coverage(20, 20, QImage::Format_Alpha8);
    coverage.fill(255);
    const BlendColors black(colorTable(Qt::black), 1.0);
    for (const QPoint at : {QPoint(-5, -5), {90, 50}, {-100, 0}, {3, 200}}) {
        QImage picture(100, 60, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        // A part that hangs over the coverage by 4 pixels on each side.
        blendCoverage(picture, at, coverage, QRect(-4, -4, 28, 28), black);
        const QRect inked = QRect(at + QPoint(4, 4), coverage.size());
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 100; ++x)
                QCOMPARE(qAlpha(picture.pixel(x, y)), inked.contains(x, y) ? 255 : 0);
        }
    }
}

void tst_Blending::mapChangesNothingButTime()
{
    constexpr quint32 seed = 20111;
    QRandomGenerator random(seed);
    QImage coverage(size, QImage::Format_Alpha8);
    coverage.fill(0);
    for (int i = 0; i < 6; ++i)
        coverage.scanLine(random.bounded(size.height()))[random.bounded(size.width())] = 180;
    InkTiles ink(size);
    ink.scan(coverage, coverage.rect());
    const BlendColors colors(colorTable(QColor(10, 200, 30), 0.5), 0.7);
    const QImage before = somePicture(random);
    QImage with = before.copy();
    QImage without = before.copy();
    blendCoverage(with, {7, -3}, coverage, coverage.rect(), colors, &ink);
    blendCoverage(without, {7, -3}, coverage, coverage.rect(), colors);
    QVERIFY2(without != before, qPrintable(QString("seed %1").arg(seed)));
    QVERIFY2(with == without, qPrintable(QString("seed %1").arg(seed)));
}

void tst_Blending::picturesAreBlendedAsThePainterDoes()
{
    constexpr quint32 seed = 20111;
    QRandomGenerator random(seed);
    const QImage below = somePicture(random);
    QImage above = somePicture(random);
    // Let the parts of the one meet those of the other.
    above = above.mirrored();
    QImage expected = below.copy();
    QPainter painter(&expected);
    painter.drawImage(0, 0, above);
    painter.end();
    const QRect rect(3, 5, 140, 50);
    QImage blended(size, QImage::Format_ARGB32_Premultiplied);
    blended.fill(qRgba(1, 2, 3, 4));
    blendPictures(blended, below, above, rect);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            if (!rect.contains(x, y))
                QCOMPARE(reinterpret_cast<const QRgb *>(blended.constScanLine(y))[x], qRgba(1, 2, 3, 4));
        }
    }
    const int difference = largestDifference(blended.copy(rect), expected.copy(rect));
    QVERIFY2(difference <= 1, qPrintable(QString("seed %1: differs by %2").arg(seed).arg(difference)));
}

void tst_Blending::otherFormatsAreLeftAlone()
{
    QImage picture(8, 8, QImage::Format_RGB16);
    picture.fill(Qt::white);
    const QImage before = picture.copy();
    QImage coverage(8, 8, QImage::Format_Alpha8);
    coverage.fill(255);
    blendCoverage(picture, {0, 0}, coverage, coverage.rect(), BlendColors(colorTable(Qt::black), 1.0));
    blendPictures(picture, picture.copy(), picture.copy(), picture.rect());
    QCOMPARE(picture, before);
    QImage other(4, 4, QImage::Format_ARGB32_Premultiplied);
    other.fill(Qt::white);
    QImage large(8, 8, QImage::Format_ARGB32_Premultiplied);
    large.fill(Qt::black);
    blendPictures(large, other, other, large.rect());
    QCOMPARE(large.pixel(0, 0), qRgb(0, 0, 0));
}

void tst_Blending::painterIsFollowed_data()
{
    QTest::addColumn<QTransform>("transform");
    QTest::addColumn<QRect>("clip");
    QTest::addColumn<QImage::Format>("format");
    QTest::addColumn<QPainter::CompositionMode>("mode");
    const QTransform none;
    const auto premultiplied = QImage::Format_ARGB32_Premultiplied;
    const auto sourceOver = QPainter::CompositionMode_SourceOver;
    QTest::newRow("plain") << none << QRect() << premultiplied << sourceOver;
    QTest::newRow("shifted") << QTransform::fromTranslate(7, -5) << QRect() << premultiplied << sourceOver;
    QTest::newRow("shifted by parts") << QTransform::fromTranslate(7.5, 0.25) << QRect() << premultiplied << sourceOver;
    QTest::newRow("scaled") << QTransform::fromScale(0.5, 2) << QRect() << premultiplied << sourceOver;
    QTest::newRow("turned") << QTransform().rotate(30) << QRect() << premultiplied << sourceOver;
    QTest::newRow("clipped") << none << QRect(20, 10, 50, 20) << premultiplied << sourceOver;
    QTest::newRow("without alpha") << none << QRect() << QImage::Format_RGB32 << sourceOver;
    QTest::newRow("another mode") << none << QRect() << premultiplied << QPainter::CompositionMode_DestinationOut;
}

void tst_Blending::painterIsFollowed()
{
    QFETCH(QTransform, transform);
    QFETCH(QRect, clip);
    QFETCH(QImage::Format, format);
    QFETCH(QPainter::CompositionMode, mode);
    constexpr quint32 seed = 20111;
    QRandomGenerator random(seed);
    const QImage coverage = someCoverage(random);
    const QList<QRgb> table = colorTable(QColor(10, 200, 130));
    const QImage before = somePicture(random).convertToFormat(format);
    const QRect part(10, 5, 100, 40);
    QImage expected = before.copy();
    QImage painted = before.copy();
    for (QImage *image : {&expected, &painted}) {
        QPainter painter(image);
        if (!clip.isNull())
            painter.setClipRect(clip);
        painter.setTransform(transform);
        painter.setCompositionMode(mode);
        painter.setOpacity(0.6);
        if (image == &expected)
            painter.drawImage(QPoint(12, 3), indexed(coverage, table).copy(part));
        else
            paintCoverage(&painter, {12, 3}, coverage, part, table);
    }
    QVERIFY(largestDifference(painted, before) > 20);
    const int difference = largestDifference(painted, expected);
    QVERIFY2(difference <= 1, qPrintable(QString("seed %1: differs by %2").arg(seed).arg(difference)));
}

QTEST_MAIN(tst_Blending)
#include "tst_blending.moc"
