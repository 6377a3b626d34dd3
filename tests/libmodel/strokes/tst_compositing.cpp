#include "libmodel/strokes/compositing.h"

#include <QImage>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <functional>

namespace {

using Rule = std::function<int(int destination, int source)>;

// The definitions; divisions of whole numbers cut.
int pen(int d, int s)
{
    return d + (255 - d) * s / 255;
}

int eraser(int d, int s)
{
    return (255 - s) * d / 255;
}

int stronger(int d, int s)
{
    return std::max(d, s);
}

QImage even(QSize size, int value)
{
    QImage image(size, QImage::Format_Alpha8);
    image.fill(value);
    return image;
}

/// Pixels of all values, about half of them 0 in stretches, as in line art.
QImage noise(QSize size, quint32 seed)
{
    QRandomGenerator random(seed);
    QImage image(size, QImage::Format_Alpha8);
    for (int y = 0; y < size.height(); ++y) {
        uchar *row = image.scanLine(y);
        bool empty = false;
        for (int x = 0; x < size.width(); ++x) {
            if (x % 9 == 0)
                empty = random.bounded(2) == 0;
            row[x] = empty ? 0 : static_cast<uchar>(random.bounded(256));
        }
    }
    return image;
}

/// What compositing should make, pixel by pixel with bounds checked one at a time.
QImage expectedResult(const QImage &destination, const QImage &source, QRect rect, QPoint offset, const Rule &rule)
{
    QImage result = destination.copy();
    for (int y = 0; y < source.height(); ++y) {
        for (int x = 0; x < source.width(); ++x) {
            const QPoint to = QPoint(x, y) + offset;
            if (!rect.contains(x, y) || !destination.rect().contains(to))
                continue;
            const int value = rule(destination.constScanLine(to.y())[to.x()], source.constScanLine(y)[x]);
            result.scanLine(to.y())[to.x()] = static_cast<uchar>(value);
        }
    }
    return result;
}

} // namespace

class tst_Compositing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tablesHoldTheTwoRules();
    void blocksEqualTheTablesForAllPairs_data();
    void blocksEqualTheTablesForAllPairs();
    void halfOverHalfGives191();
    void fullCoverageStaysFullUnderAPen();
    void eraserOfFullCoverageLeavesNothing();
    void emptySourceChangesNothing();
    void maximumKeepsTheStronger();
    void rectanglesAndOffsetsAreClippedToBothImages_data();
    void rectanglesAndOffsetsAreClippedToBothImages();
    void sharedDestinationLeavesItsCopyAlone();
    void imagesOfOtherDepthsAreLeftAlone();
    void nullImagesAreLeftAlone();
};

void tst_Compositing::tablesHoldTheTwoRules()
{
    Model::initializeCompositingTables();
    Model::initializeCompositingTables();
    for (int d = 0; d < 256; ++d) {
        for (int s = 0; s < 256; ++s) {
            QCOMPARE(int(Model::penTable()[size_t(d)][size_t(s)]), pen(d, s));
            QCOMPARE(int(Model::eraserTable()[size_t(d)][size_t(s)]), eraser(d, s));
        }
    }
}

void tst_Compositing::blocksEqualTheTablesForAllPairs_data()
{
    QTest::addColumn<bool>("isPen");
    QTest::newRow("pen") << true;
    QTest::newRow("eraser") << false;
}

void tst_Compositing::blocksEqualTheTablesForAllPairs()
{
    QFETCH(bool, isPen);
    // Row d, column s: every pair once. 256 pixels a row are whole blocks; 251 and 5 leave a rest.
    QImage source(256, 256, QImage::Format_Alpha8);
    QImage destination(256, 256, QImage::Format_Alpha8);
    for (int d = 0; d < 256; ++d) {
        for (int s = 0; s < 256; ++s) {
            source.scanLine(d)[s] = static_cast<uchar>(s);
            destination.scanLine(d)[s] = static_cast<uchar>(d);
        }
    }
    QImage whole = destination.copy();
    Model::composite(whole, source, source.rect(), isPen);
    QImage inParts = destination.copy();
    Model::composite(inParts, source, QRect(0, 0, 251, 256), isPen);
    Model::composite(inParts, source, QRect(251, 0, 5, 256), isPen);
    for (int d = 0; d < 256; ++d) {
        for (int s = 0; s < 256; ++s) {
            const int expected = isPen ? pen(d, s) : eraser(d, s);
            QCOMPARE(int(whole.constScanLine(d)[s]), expected);
            QCOMPARE(int(inParts.constScanLine(d)[s]), expected);
        }
    }
}

void tst_Compositing::halfOverHalfGives191()
{
    QImage image = even(QSize(40, 3), 128);
    Model::composite(image, even(QSize(40, 3), 128), image.rect(), true);
    QCOMPARE(image, even(QSize(40, 3), 191));
}

void tst_Compositing::fullCoverageStaysFullUnderAPen()
{
    for (int s = 0; s < 256; ++s) {
        QImage image = even(QSize(33, 1), 255);
        Model::composite(image, even(QSize(33, 1), s), image.rect(), true);
        QCOMPARE(image, even(QSize(33, 1), 255));
    }
}

void tst_Compositing::eraserOfFullCoverageLeavesNothing()
{
    QImage image = noise(QSize(77, 9), 3);
    Model::composite(image, even(QSize(77, 9), 255), image.rect(), false);
    QCOMPARE(image, even(QSize(77, 9), 0));
}

void tst_Compositing::emptySourceChangesNothing()
{
    const QImage before = noise(QSize(77, 9), 4);
    QImage image = before.copy();
    Model::composite(image, even(QSize(77, 9), 0), image.rect(), true);
    Model::composite(image, even(QSize(77, 9), 0), image.rect(), false);
    Model::compositeMax(image, even(QSize(77, 9), 0), image.rect(), {});
    QCOMPARE(image, before);
}

void tst_Compositing::maximumKeepsTheStronger()
{
    const QImage before = noise(QSize(77, 19), 5);
    const QImage source = noise(QSize(77, 19), 6);
    QImage image = before.copy();
    Model::compositeMax(image, source, source.rect(), {});
    QCOMPARE(image, expectedResult(before, source, source.rect(), {}, stronger));
}

void tst_Compositing::rectanglesAndOffsetsAreClippedToBothImages_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QPoint>("offset");
    QTest::newRow("all") << QRect(0, 0, 61, 41) << QPoint(0, 0);
    QTest::newRow("inside") << QRect(13, 7, 29, 17) << QPoint(5, 9);
    QTest::newRow("rect beyond the source") << QRect(-10, -10, 500, 500) << QPoint(3, 4);
    QTest::newRow("lands left and above") << QRect(0, 0, 61, 41) << QPoint(-20, -11);
    QTest::newRow("lands right and below") << QRect(0, 0, 61, 41) << QPoint(60, 50);
    QTest::newRow("lands outside") << QRect(0, 0, 61, 41) << QPoint(100, 0);
    QTest::newRow("lands outside, above") << QRect(0, 0, 61, 41) << QPoint(0, -41);
    QTest::newRow("one pixel") << QRect(60, 40, 1, 1) << QPoint(-60, -40);
    QTest::newRow("empty") << QRect() << QPoint(0, 0);
    QTest::newRow("rect outside") << QRect(61, 0, 5, 5) << QPoint(0, 0);
}

void tst_Compositing::rectanglesAndOffsetsAreClippedToBothImages()
{
    QFETCH(QRect, rect);
    QFETCH(QPoint, offset);
    const QImage source = noise(QSize(61, 41), 11);
    const QImage before = noise(QSize(90, 70), 12);
    QImage penned = before.copy();
    Model::composite(penned, source, rect, true, offset);
    QCOMPARE(penned, expectedResult(before, source, rect, offset, pen));
    QImage erased = before.copy();
    Model::composite(erased, source, rect, false, offset);
    QCOMPARE(erased, expectedResult(before, source, rect, offset, eraser));
    QImage larger = before.copy();
    Model::compositeMax(larger, source, rect, offset);
    QCOMPARE(larger, expectedResult(before, source, rect, offset, stronger));
}

void tst_Compositing::sharedDestinationLeavesItsCopyAlone()
{
    const QImage before = noise(QSize(50, 20), 21);
    QImage image = before;
    Model::composite(image, before, before.rect(), true);
    QCOMPARE(before, noise(QSize(50, 20), 21));
    QCOMPARE(image, expectedResult(before, before, before.rect(), {}, pen));
}

void tst_Compositing::imagesOfOtherDepthsAreLeftAlone()
{
    QImage colour(20, 20, QImage::Format_ARGB32);
    colour.fill(Qt::blue);
    const QImage before = colour.copy();
    Model::composite(colour, even(QSize(20, 20), 200), colour.rect(), true);
    QCOMPARE(colour, before);
    QImage mask = even(QSize(20, 20), 9);
    Model::composite(mask, colour, colour.rect(), true);
    QCOMPARE(mask, even(QSize(20, 20), 9));
}

void tst_Compositing::nullImagesAreLeftAlone()
{
    QImage none;
    Model::composite(none, even(QSize(20, 20), 200), QRect(0, 0, 20, 20), true);
    QVERIFY(none.isNull());
    QImage mask = even(QSize(20, 20), 9);
    Model::compositeMax(mask, QImage(), QRect(0, 0, 20, 20), {});
    QCOMPARE(mask, even(QSize(20, 20), 9));
}

QTEST_APPLESS_MAIN(tst_Compositing)
#include "tst_compositing.moc"
