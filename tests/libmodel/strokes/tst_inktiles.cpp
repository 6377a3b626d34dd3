#include "libmodel/strokes/inktiles.h"

#include <QImage>
#include <QRandomGenerator>
#include <QTest>

using namespace Model;

namespace {

QImage blank(QSize size)
{
    QImage image(size, QImage::Format_Alpha8);
    image.fill(0);
    return image;
}

/// The pixels that the runs cover, each counted.
QImage covered(const InkTiles &tiles, QRect rect)
{
    QImage count = blank(tiles.size());
    tiles.forEachRun(rect, [&](QRect run) {
        for (int y = run.top(); y <= run.bottom(); ++y) {
            for (int x = run.left(); x <= run.right(); ++x)
                ++count.scanLine(y)[x];
        }
    });
    return count;
}

/// Does the tile of 64 x 8 pixels that (x, y) lies in hold anything?
bool tileHasInk(const QImage &coverage, int x, int y)
{
    const QRect tile = QRect(x / 64 * 64, y / 8 * 8, 64, 8) & coverage.rect();
    for (int line = tile.top(); line <= tile.bottom(); ++line) {
        for (int i = tile.left(); i <= tile.right(); ++i) {
            if (coverage.constScanLine(line)[i] != 0)
                return true;
        }
    }
    return false;
}

} // namespace

class tst_InkTiles : public QObject
{
    Q_OBJECT

private slots:
    void mapOfNothingIsEmpty();
    void onePixelInksItsTile_data();
    void onePixelInksItsTile();
    void runsAreThePixelsOfInkedTilesWithinTheRect();
    void scanForgetsWhatIsGone();
    void scanLeavesOtherTilesAlone();
    void addedRectIsInked();
    void addedMapIsTakenWithinTheRect();
    void mapOfAnotherSizeIsNotAdded();
    void clearedMapIsEmpty();
};

void tst_InkTiles::mapOfNothingIsEmpty()
{
    InkTiles tiles;
    QVERIFY(tiles.isEmpty());
    tiles.add(QRect(0, 0, 100, 100));
    tiles.scan(blank({100, 100}), QRect(0, 0, 100, 100));
    QVERIFY(tiles.isEmpty());
    QVERIFY(!tiles.meets(QRect(0, 0, 100, 100)));
    QCOMPARE(tiles.size(), QSize(0, 0));
    // A rectangle that lies around the place where the picture would be.
    tiles.add(QRect(-5, -5, 20, 20));
    QVERIFY(!tiles.meets(QRect(-5, -5, 20, 20)));
    QVERIFY(InkTiles(QSize(-3, 5)).isEmpty());
}

void tst_InkTiles::onePixelInksItsTile_data()
{
    QTest::addColumn<QPoint>("pixel");
    for (const QPoint pixel : {QPoint(0, 0), {63, 7}, {64, 8}, {199, 0}, {0, 49}, {199, 49}, {130, 23}})
        QTest::addRow("%d, %d", pixel.x(), pixel.y()) << pixel;
}

void tst_InkTiles::onePixelInksItsTile()
{
    QFETCH(QPoint, pixel);
    QImage coverage = blank({200, 50});
    coverage.scanLine(pixel.y())[pixel.x()] = 1;
    InkTiles tiles(coverage.size());
    tiles.scan(coverage, coverage.rect());
    QRect run;
    int runs = 0;
    tiles.forEachRun(coverage.rect(), [&](QRect found) {
        run = found;
        ++runs;
    });
    QCOMPARE(runs, 1);
    QCOMPARE(run, QRect(pixel.x() / 64 * 64, pixel.y() / 8 * 8, 64, 8) & coverage.rect());
}

void tst_InkTiles::runsAreThePixelsOfInkedTilesWithinTheRect()
{
    constexpr quint32 seed = 20111;
    QRandomGenerator random(seed);
    // Wide enough for more tiles in a row than a word has bits.
    const QSize size(64 * 70 + 13, 45);
    for (int round = 0; round < 10; ++round) {
        QImage coverage = blank(size);
        for (int i = 0; i < 150; ++i)
            coverage.scanLine(random.bounded(size.height()))[random.bounded(size.width())] = 200;
        InkTiles tiles(size);
        tiles.scan(coverage, coverage.rect());
        const QRect rect(random.bounded(-100, 3000), random.bounded(-10, 30), random.bounded(1, 4000),
                         random.bounded(1, 40));
        const QImage count = covered(tiles, rect);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                const int expected = rect.contains(x, y) && tileHasInk(coverage, x, y) ? 1 : 0;
                QVERIFY2(count.constScanLine(y)[x] == expected,
                         qPrintable(QString("seed %1, round %2 at %3, %4").arg(seed).arg(round).arg(x).arg(y)));
            }
        }
    }
}

void tst_InkTiles::scanForgetsWhatIsGone()
{
    QImage coverage = blank({200, 50});
    coverage.scanLine(20)[100] = 9;
    InkTiles tiles(coverage.size());
    tiles.scan(coverage, coverage.rect());
    QVERIFY(tiles.meets(QRect(100, 20, 1, 1)));
    coverage.fill(0);
    tiles.scan(coverage, QRect(100, 20, 1, 1));
    QVERIFY(tiles.isEmpty());
}

void tst_InkTiles::scanLeavesOtherTilesAlone()
{
    QImage coverage = blank({200, 50});
    InkTiles tiles(coverage.size());
    tiles.add(QRect(0, 0, 1, 1));
    coverage.scanLine(40)[150] = 9;
    tiles.scan(coverage, QRect(64, 0, 64, 50));
    QVERIFY(tiles.meets(QRect(0, 0, 64, 8)));
    QVERIFY(!tiles.meets(QRect(64, 0, 136, 50)));
}

void tst_InkTiles::addedRectIsInked()
{
    InkTiles tiles(QSize(200, 50));
    tiles.add(QRect(60, 6, 10, 4));
    // Two columns and two rows of tiles.
    const QImage count = covered(tiles, QRect(0, 0, 200, 50));
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 200; ++x)
            QCOMPARE(int(count.constScanLine(y)[x]), x < 128 && y < 16 ? 1 : 0);
    }
}

void tst_InkTiles::addedMapIsTakenWithinTheRect()
{
    InkTiles other(QSize(200, 50));
    other.add(QRect(0, 0, 200, 50));
    InkTiles tiles(QSize(200, 50));
    tiles.add(other, QRect(70, 10, 1, 1));
    QVERIFY(tiles.meets(QRect(64, 8, 64, 8)));
    QVERIFY(!tiles.meets(QRect(0, 0, 64, 50)));
    QVERIFY(!tiles.meets(QRect(0, 16, 200, 34)));
}

void tst_InkTiles::mapOfAnotherSizeIsNotAdded()
{
    InkTiles other(QSize(300, 50));
    other.add(QRect(0, 0, 300, 50));
    InkTiles tiles(QSize(200, 50));
    tiles.add(other, QRect(0, 0, 200, 50));
    QVERIFY(tiles.isEmpty());
}

void tst_InkTiles::clearedMapIsEmpty()
{
    InkTiles tiles(QSize(200, 50));
    tiles.add(QRect(0, 0, 200, 50));
    QVERIFY(!tiles.isEmpty());
    tiles.clear();
    QVERIFY(tiles.isEmpty());
    QCOMPARE(tiles.size(), QSize(200, 50));
}

QTEST_MAIN(tst_InkTiles)
#include "tst_inktiles.moc"
