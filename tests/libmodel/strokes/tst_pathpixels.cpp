// What an outline encloses, against Qt's painter and its hit test.

#include "coverageprobes.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/pathpixels.h"
#include "pickupmaking.h"

#include <QPainter>
#include <QTest>

#include <limits>

using namespace Model;

class tst_PathPixels : public QObject
{
    Q_OBJECT

private slots:
    void rectangleIsToldToThePixel();
    void softMaskAgrees_data();
    void softMaskAgrees();
    void fillRuleCounts();
    void mappedPathIsWhereItIsMapped();
    void samePathGivesTheSamePixels();
    void unusablePathIsRefused_data();
    void unusablePathIsRefused();

private:
    static constexpr QSize frame{200, 160};
    static constexpr qint64 muchWork = 1 << 22;

    static PathPixels pixelsOf(const QPainterPath &path, const QTransform &transform = {})
    {
        qint64 workLeft = muchWork;
        return PathPixels::of(path, transform, QRect(QPoint(0, 0), frame), workLeft).value_or(PathPixels());
    }
    static bool has(const PixelSpans &spans, int x, int y) { return spans.meets(QRect(x, y, 1, 1)); }
};

void tst_PathPixels::rectangleIsToldToThePixel()
{
    // The middles of 20 to 49 and 30 to 69 lie in it.
    const PathPixels pixels = pixelsOf(rectPath(20.25, 30.4, 30, 40));
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            QCOMPARE(has(pixels.inside, x, y), QRect(20, 30, 30, 40).contains(x, y));
            QCOMPARE(has(pixels.touched(), x, y), has(pixels.inside, x, y) || has(pixels.rim, x, y));
        }
    }
    QVERIFY(has(pixels.rim, 20, 50) && has(pixels.rim, 50, 50));
    QVERIFY(!has(pixels.rim, 35, 50) && !has(pixels.rim, 100, 50));
    QVERIFY(has(pixels.full(), 35, 50) && !has(pixels.full(), 20, 50));
}

void tst_PathPixels::softMaskAgrees_data()
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= 20; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

void tst_PathPixels::softMaskAgrees()
{
    QFETCH(const int, seed);
    PickUpMaker maker(quint64(seed), frame);
    QPainterPath path = maker.lasso(20, 100);
    if (seed % 2 == 0)
        path.addEllipse(maker.point(), 30.3, 17.9);
    path = seed % 3 == 0 ? path.simplified() : path;
    QImage mask = blankCoverage(frame);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, Qt::black);
    painter.end();
    const PathPixels pixels = pixelsOf(path);
    const PixelSpans touched = pixels.touched();
    const PixelSpans full = pixels.full();
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            const int coverage = coverageAt(mask, x, y);
            QVERIFY2(coverage == 0 || has(touched, x, y), qPrintable(QString("%1 %2").arg(x).arg(y)));
            QVERIFY2(coverage == 255 || !has(full, x, y), qPrintable(QString("%1 %2").arg(x).arg(y)));
            if (!has(pixels.rim, x, y))
                QCOMPARE(has(pixels.inside, x, y), coverage > 127);
        }
    }
}

void tst_PathPixels::fillRuleCounts()
{
    QPainterPath twice = rectPath(10, 10, 100, 100);
    twice.addRect(40, 40, 20, 20);
    QVERIFY(!has(pixelsOf(twice).inside, 50, 50));
    twice.setFillRule(Qt::WindingFill);
    QVERIFY(has(pixelsOf(twice).inside, 50, 50));
    QVERIFY(has(pixelsOf(twice).inside, 20, 20));
}

void tst_PathPixels::mappedPathIsWhereItIsMapped()
{
    // A quarter turn takes (x, y) to (-y, x), so 10 to 29 and 40 to 89 become 10 to 59 of 100 - y, and 10 to 29.
    const QTransform quarter = QTransform().translate(100, 0).rotate(90);
    const PathPixels pixels = pixelsOf(rectPath(10, 40, 20, 50), quarter);
    for (int y = 0; y < frame.height(); y += 3) {
        for (int x = 0; x < frame.width(); x += 3)
            QCOMPARE(has(pixels.inside, x, y), QRect(10, 10, 50, 20).contains(x, y));
    }
}

void tst_PathPixels::samePathGivesTheSamePixels()
{
    PickUpMaker maker(3, frame);
    const QPainterPath path = maker.lasso(50, 70);
    const PixelSpans nothing = pixelsOf(path).inside.without(pixelsOf(path).inside);
    QVERIFY(!nothing.meets(QRect(QPoint(0, 0), frame)));
}

void tst_PathPixels::unusablePathIsRefused_data()
{
    QTest::addColumn<QPainterPath>("path");
    QTest::addColumn<QTransform>("transform");
    QTest::addColumn<qint64>("workLeft");
    QPainterPath zigzag;
    for (int i = 0; i < 20'000; ++i)
        zigzag.lineTo(i % 2 * 100, i);
    QTest::newRow("too many corners") << zigzag << QTransform() << muchWork;
    QTest::newRow("too far away") << rectPath(0, 0, 10, 10) << QTransform::fromScale(1e9, 1e9) << muchWork;
    QTest::newRow("nowhere") << rectPath(0, 0, 10, 10)
                             << QTransform::fromTranslate(std::numeric_limits<double>::quiet_NaN(), 0) << muchWork;
    QTest::newRow("no time") << rectPath(0, 0, 100, 100) << QTransform() << qint64(10);
}

void tst_PathPixels::unusablePathIsRefused()
{
    QFETCH(const QPainterPath, path);
    QFETCH(const QTransform, transform);
    QFETCH(qint64, workLeft);
    QVERIFY(!PathPixels::of(path, transform, QRect(QPoint(0, 0), frame), workLeft));
    QVERIFY(workLeft >= 0);
}

QTEST_MAIN(tst_PathPixels)
#include "tst_pathpixels.moc"
