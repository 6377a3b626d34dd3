// A drawing on paper and as a thumbnail, alone and with a stroke in progress.

#include "coverageprobes.h"
#include "strokedrawingfixture.h"
#include "support/glfixture.h"

#include <QtTest>

using namespace Model;

class tst_StrokeDrawingPainting : public StrokeDrawingFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void indexedViewSharesTheBytes();
    void paintShowsCoverageInTheTablesColour();
    void paintStaysWithinTheRect();
    void penInProgressShowsOnTop();
    void penInProgressShowsOnAnEmptyDrawing();
    void eraserInProgressTakesAway();
    void thumbnailNeedsSizeTableAndContent();
    void thumbnailKeepsColourAndRaisesOpacity();
    void thumbnailIsKeptByColourUntilAChange();
};

void tst_StrokeDrawingPainting::indexedViewSharesTheBytes()
{
    QImage coverage = blankCoverage(frame);
    coverage.scanLine(300)[402] = 9;
    const QImage view = indexedView(coverage, colorTable(Qt::blue));
    QCOMPARE(view.constBits(), coverage.constBits());
    QCOMPARE(view.bytesPerLine(), coverage.bytesPerLine());
    QCOMPARE(view.pixel(402, 300), qRgba(0, 0, 255, 9));
}

void tst_StrokeDrawingPainting::paintShowsCoverageInTheTablesColour()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const QImage paper = painted(drawing, QRect(QPoint(0, 0), frame));
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            const QRgb pixel = paper.pixel(x, y);
            const int white = 255 - coverageAt(drawing.image(), x, y);
            QVERIFY(qRed(pixel) >= 254);
            QVERIFY(std::abs(qGreen(pixel) - white) <= 1 && std::abs(qBlue(pixel) - white) <= 1);
        }
    }
}

void tst_StrokeDrawingPainting::paintStaysWithinTheRect()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const QImage paper = painted(drawing, QRect(190, 90, 21, 30));
    QCOMPARE(paper.pixelColor(189, 100), QColor(Qt::white));
    QVERIFY(paper.pixelColor(190, 100).green() < 15);
    QVERIFY(paper.pixelColor(210, 100).green() < 15);
    QCOMPARE(paper.pixelColor(211, 100), QColor(Qt::white));
}

void tst_StrokeDrawingPainting::penInProgressShowsOnTop()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const QImage before = drawing.image().copy();
    const auto active = pen({50, 200}, {350, 200});
    const QImage paper = painted(drawing, QRect(QPoint(0, 0), frame), active.get());
    QVERIFY(paper.pixelColor(200, 100).green() < 15);
    QVERIFY(paper.pixelColor(200, 200).green() < 15);
    QCOMPARE(largestDifference(drawing.image(), before), 0);
    const QImage part = painted(drawing, QRect(100, 150, 37, 100), active.get());
    QCOMPARE(part.copy(100, 150, 37, 100), paper.copy(100, 150, 37, 100));
    QCOMPARE(part.pixelColor(137, 200), QColor(Qt::white));
}

void tst_StrokeDrawingPainting::penInProgressShowsOnAnEmptyDrawing()
{
    const StrokeDrawing drawing(frame);
    const auto active = pen({50, 200}, {350, 200});
    QVERIFY(painted(drawing, QRect(QPoint(0, 0), frame), active.get()).pixelColor(200, 200).green() < 15);
    const auto erasing = eraser({50, 200}, {350, 200});
    QCOMPARE(painted(drawing, QRect(QPoint(0, 0), frame), erasing.get()).pixelColor(200, 200), QColor(Qt::white));
    QVERIFY(drawing.image().isNull());
}

void tst_StrokeDrawingPainting::eraserInProgressTakesAway()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const auto active = eraser({200, 50}, {200, 150});
    const QImage paper = painted(drawing, QRect(QPoint(0, 0), frame), active.get());
    QVERIFY(paper.pixelColor(200, 100).green() > 240);
    QVERIFY(paper.pixelColor(100, 100).green() < 15);
}

void tst_StrokeDrawingPainting::thumbnailNeedsSizeTableAndContent()
{
    StrokeDrawing drawing(frame);
    QVERIFY(drawing.thumbnail({40, 30}, colorTable(Qt::red)).isNull());
    drawing.addStroke(pen({50, 100}, {350, 100}));
    QVERIFY(drawing.thumbnail({}, colorTable(Qt::red)).isNull());
    QVERIFY(drawing.thumbnail({40, 30}, {}).isNull());
    QVERIFY(!drawing.thumbnail({40, 30}, colorTable(Qt::red)).isNull());
}

void tst_StrokeDrawingPainting::thumbnailKeepsColourAndRaisesOpacity()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(solid(10));
    const QColor color(200, 30, 90);
    const QImage thumbnail = drawing.thumbnail({40, 40}, colorTable(color));
    QCOMPARE(thumbnail.size(), frame.scaled(40, 40, Qt::KeepAspectRatio));
    QCOMPARE(thumbnail.pixel(20, 15), qRgba(200, 30, 90, 80));
    drawing.addStroke(solid(200));
    QCOMPARE(drawing.thumbnail({40, 40}, colorTable(color)).pixel(20, 15), qRgba(200, 30, 90, 255));
}

void tst_StrokeDrawingPainting::thumbnailIsKeptByColourUntilAChange()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const qint64 red = drawing.thumbnail({40, 40}, colorTable(Qt::red)).cacheKey();
    QVERIFY(drawing.thumbnail({40, 40}, colorTable(Qt::blue)).cacheKey() != red);
    QCOMPARE(drawing.thumbnail({40, 40}, colorTable(Qt::red)).cacheKey(), red);
    QVERIFY(drawing.thumbnail({41, 41}, colorTable(Qt::red)).cacheKey() != red);
    const qint64 larger = drawing.thumbnail({41, 41}, colorTable(Qt::red)).cacheKey();
    drawing.addStroke(pen({50, 200}, {350, 200}));
    QVERIFY(drawing.thumbnail({41, 41}, colorTable(Qt::red)).cacheKey() != larger);
}

QTEST_MAIN(tst_StrokeDrawingPainting)
#include "tst_strokedrawing_painting.moc"
