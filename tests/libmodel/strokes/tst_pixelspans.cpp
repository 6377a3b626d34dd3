// Sets of pixels against the same sets as lists of booleans.

#include "libmodel/strokes/pixelspans.h"
#include "support/randomnumbers.h"

#include <QTest>

#include <vector>

using Model::PixelSpans;

class tst_PixelSpans : public QObject
{
    Q_OBJECT

private slots:
    void noneMeetsNothing();
    void rectangleHasItsPixels();
    void touchingSpansBecomeOne();
    void setsCombinePixelByPixel_data();
    void setsCombinePixelByPixel();
    void meetsLooksAtPixels();
};

namespace {

constexpr int width = 40;
constexpr int height = 12;
const QRect area(-5, -3, width, height);

using Pixels = std::vector<std::vector<bool>>;

Pixels noPixels()
{
    return Pixels(height, std::vector<bool>(width));
}

Pixels pixelsOf(const PixelSpans &spans)
{
    Pixels pixels = noPixels();
    spans.forEach(area, [&](QRect row) {
        for (int x = row.left(); x <= row.right(); ++x)
            pixels[size_t(row.top() - area.top())][size_t(x - area.left())] = true;
    });
    return pixels;
}

PixelSpans randomSpans(TestSupport::RandomNumbers &random, int top, int rows)
{
    PixelSpans result(top);
    for (int i = 0; i < rows; ++i) {
        std::vector<PixelSpans::Span> row;
        for (int x = area.left(); x < area.right() - 5 && random.chance(80);) {
            const int left = x + random.between(0, 6);
            const int end = left + random.between(0, 6);
            row.push_back({left, std::min(end, area.right() + 1)});
            x = end;
        }
        result.addRow(row);
    }
    return result;
}

} // namespace

void tst_PixelSpans::noneMeetsNothing()
{
    QVERIFY(!PixelSpans().meets(area));
    QVERIFY(!PixelSpans(QRect()).meets(area));
    QVERIFY(pixelsOf(PixelSpans()) == noPixels());
}

void tst_PixelSpans::rectangleHasItsPixels()
{
    Pixels expected = noPixels();
    for (int y = 2; y < 5; ++y) {
        for (int x = 10; x < 17; ++x)
            expected[size_t(y)][size_t(x)] = true;
    }
    QVERIFY(pixelsOf(PixelSpans(QRect(area.left() + 10, area.top() + 2, 7, 3))) == expected);
}

void tst_PixelSpans::touchingSpansBecomeOne()
{
    PixelSpans spans(0);
    const std::vector<PixelSpans::Span> row{{0, 3}, {3, 5}, {4, 9}, {10, 10}, {12, 14}};
    spans.addRow(row);
    QList<QRect> runs;
    spans.forEach(QRect(0, 0, 100, 1), [&](QRect run) { runs.append(run); });
    QCOMPARE(runs, QList<QRect>({QRect(0, 0, 9, 1), QRect(12, 0, 2, 1)}));
}

void tst_PixelSpans::setsCombinePixelByPixel_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 30; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

void tst_PixelSpans::setsCombinePixelByPixel()
{
    QFETCH(const int, seed);
    TestSupport::RandomNumbers random{quint64(seed)};
    const PixelSpans a = randomSpans(random, area.top() + random.between(0, 5), random.between(0, 7));
    const PixelSpans b = randomSpans(random, area.top() + random.between(0, 5), random.between(0, 7));
    const QRect cut(area.left() + random.between(0, 20), area.top() + random.between(0, 6), 15, 4);
    const Pixels inA = pixelsOf(a);
    const Pixels inB = pixelsOf(b);
    Pixels united = noPixels();
    Pixels limited = noPixels();
    Pixels without = noPixels();
    Pixels within = noPixels();
    for (size_t y = 0; y < height; ++y) {
        for (size_t x = 0; x < width; ++x) {
            united[y][x] = inA[y][x] || inB[y][x];
            limited[y][x] = inA[y][x] && inB[y][x];
            without[y][x] = inA[y][x] && !inB[y][x];
            within[y][x] = inA[y][x] && cut.contains(area.left() + int(x), area.top() + int(y));
        }
    }
    QVERIFY(pixelsOf(a.unitedWith(b)) == united);
    QVERIFY(pixelsOf(a.limitedTo(b)) == limited);
    QVERIFY(pixelsOf(a.without(b)) == without);
    QVERIFY(pixelsOf(a.within(cut)) == within);
}

void tst_PixelSpans::meetsLooksAtPixels()
{
    TestSupport::RandomNumbers random{77};
    const PixelSpans spans = randomSpans(random, area.top(), height);
    const Pixels pixels = pixelsOf(spans);
    for (int i = 0; i < 500; ++i) {
        const QRect rect(area.left() + random.between(0, width - 6), area.top() + random.between(0, height - 4),
                         random.between(0, 5), random.between(0, 3));
        bool expected = false;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x)
                expected = expected || pixels[size_t(y - area.top())][size_t(x - area.left())];
        }
        QCOMPARE(spans.meets(rect), expected);
    }
}

QTEST_APPLESS_MAIN(tst_PixelSpans)
#include "tst_pixelspans.moc"
