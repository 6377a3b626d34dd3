#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/coverage.h"

#include <QPainterPath>
#include <QTransform>
#include <QtTest>

using namespace Model;

class tst_BitmapStroke : public QObject
{
    Q_OBJECT

private slots:
    void drawsItsPixelsOverItsRect();
    void drawsOnTopByThePenTable();
    void staysWithinTheDirtyRect();
    void isSeenThroughTheTransform();
    void movedByHalfPixelsAllPartsLieWhereTheWholeDoes();
    void doubledImageIsHalvedOnPaper();
    void cutInsideLeavesThePixelsAlone();
    void cutOutsideCropsAtItsOwnScale();
    void cutOutsideLeavesAtLeastAPixel();
    void cutOutsideNeverAddsPixels();
    void cutOutsideEmptiesWhatIsElsewhere();
    void emptinessIsThatOfTheRect();
};

namespace {

QImage solid(QSize size, int value)
{
    QImage image = blankCoverage(size);
    image.fill(value);
    return image;
}

int at(const QImage &image, int x, int y)
{
    return image.constScanLine(y)[x];
}

QPainterPath rectPath(const QRectF &rect)
{
    QPainterPath path;
    path.addRect(rect);
    return path;
}

} // namespace

void tst_BitmapStroke::drawsItsPixelsOverItsRect()
{
    QImage pixels = solid({4, 3}, 10);
    pixels.scanLine(2)[3] = 200;
    QImage target = blankCoverage({20, 20});
    const QRect touched = BitmapStroke(pixels, QRect(5, 6, 4, 3)).render(target, target.rect(), {}, {}, 1.0);
    QCOMPARE(touched, QRect(5, 6, 4, 3));
    QCOMPARE(at(target, 5, 6), 10);
    QCOMPARE(at(target, 8, 8), 200);
    QCOMPARE(at(target, 4, 6), 0);
    QCOMPARE(at(target, 9, 8), 0);
    QCOMPARE(at(target, 8, 9), 0);
}

void tst_BitmapStroke::drawsOnTopByThePenTable()
{
    QImage target = solid({8, 8}, 128);
    BitmapStroke(solid({8, 8}, 128), QRect(0, 0, 8, 8)).render(target, target.rect(), {}, {}, 1.0);
    // 128 + 127 * 128 / 255, cut: 128 + 63.
    QCOMPARE(at(target, 3, 3), 191);
}

void tst_BitmapStroke::staysWithinTheDirtyRect()
{
    QImage target = blankCoverage({20, 20});
    const BitmapStroke stroke(solid({10, 10}, 90), QRect(0, 0, 10, 10));
    QCOMPARE(stroke.render(target, QRect(8, 2, 5, 3), {}, {}, 1.0), QRect(8, 2, 2, 3));
    QCOMPARE(at(target, 8, 2), 90);
    QCOMPARE(at(target, 7, 2), 0);
    QCOMPARE(at(target, 8, 5), 0);
    QVERIFY(stroke.render(target, QRect(15, 0, 5, 20), {}, {}, 1.0).isNull());
}

void tst_BitmapStroke::isSeenThroughTheTransform()
{
    QImage target = blankCoverage({30, 30});
    const QTransform transform = QTransform::fromScale(2, 2) * QTransform::fromTranslate(3, 4);
    const BitmapStroke stroke(solid({5, 5}, 255), QRect(1, 1, 5, 5));
    QCOMPARE(stroke.render(target, target.rect(), transform, {}, 1.0), QRect(5, 6, 10, 10));
    QCOMPARE(at(target, 10, 11), 255);
}

void tst_BitmapStroke::movedByHalfPixelsAllPartsLieWhereTheWholeDoes()
{
    // A block from 7 to 11 that goes 3.5 to the left stands from 3.5 to 7.5: half pixels go up, so that is 4 to 7.
    const QTransform moved = QTransform::fromTranslate(-3.5, 0);
    const BitmapStroke stroke(solid({4, 2}, 194), QRect(7, 1, 4, 2));
    QImage whole = blankCoverage({10, 4});
    stroke.render(whole, whole.rect(), moved, {}, 1.0);
    QImage parts = blankCoverage({10, 4});
    for (int x = 0; x < 10; ++x)
        stroke.render(parts, QRect(x, 0, 1, 4), moved, {}, 1.0);
    for (int x = 0; x < 10; ++x) {
        QCOMPARE(at(whole, x, 1), x >= 4 && x <= 7 ? at(whole, 5, 1) : 0);
        QCOMPARE(at(parts, x, 1), at(whole, x, 1));
    }
    QVERIFY(at(whole, 5, 1) > 0);
}

void tst_BitmapStroke::doubledImageIsHalvedOnPaper()
{
    QImage target = blankCoverage({20, 20});
    BitmapStroke(solid({20, 20}, 120), QRect(5, 5, 10, 10)).render(target, target.rect(), {}, {}, 1.0);
    QCOMPARE(at(target, 10, 10), 120);
    QCOMPARE(at(target, 4, 10), 0);
    QCOMPARE(at(target, 15, 10), 0);
}

void tst_BitmapStroke::cutInsideLeavesThePixelsAlone()
{
    BitmapStroke stroke(solid({4, 4}, 9), QRect(5, 5, 4, 4));
    QVERIFY(stroke.cutInside(rectPath({0, 0, 100, 100})));
    QCOMPARE(stroke.boundingRect(), QRect(5, 5, 4, 4));
    QCOMPARE(stroke.image().size(), QSize(4, 4));
}

void tst_BitmapStroke::cutOutsideCropsAtItsOwnScale()
{
    QImage pixels = solid({20, 20}, 1);
    pixels.scanLine(8)[6] = 77;
    BitmapStroke stroke(pixels, QRect(100, 100, 10, 10));
    // Aligned bounds: from (103, 104) to (107, 109).
    QVERIFY(stroke.cutOutside(rectPath({103.2, 104.4, 3.1, 4.2})));
    QCOMPARE(stroke.boundingRect(), QRect(103, 104, 4, 5));
    QCOMPARE(stroke.image().size(), QSize(8, 10));
    QCOMPARE(at(stroke.image(), 0, 0), 77);
}

void tst_BitmapStroke::cutOutsideLeavesAtLeastAPixel()
{
    // A pixel of the image stands for ten of the paper; what is kept is a tenth of one, at the far corner.
    BitmapStroke stroke(solid({4, 4}, 9), QRect(0, 0, 40, 40));
    QVERIFY(stroke.cutOutside(rectPath({39, 39, 1, 1})));
    QCOMPARE(stroke.boundingRect(), QRect(39, 39, 1, 1));
    QCOMPARE(stroke.image().size(), QSize(1, 1));
    QCOMPARE(at(stroke.image(), 0, 0), 9);
}

// A file may have a rectangle of one pixel's width and a million's height over a row of pixels. By the scale of its
// width its half would have 350 million rows.
void tst_BitmapStroke::cutOutsideNeverAddsPixels()
{
    BitmapStroke stroke(solid(QSize(700, 2), 9), QRect(0, 0, 1, 1'000'000));
    QVERIFY(stroke.cutOutside(rectPath(QRectF(0, 0, 1, 500'000))));
    QCOMPARE(stroke.boundingRect(), QRect(0, 0, 1, 500'000));
    QCOMPARE(stroke.image().size(), QSize(700, 2));
}

void tst_BitmapStroke::cutOutsideEmptiesWhatIsElsewhere()
{
    BitmapStroke stroke(solid({4, 4}, 9), QRect(5, 5, 4, 4));
    QVERIFY(stroke.cutOutside(rectPath({50, 50, 10, 10})));
    QVERIFY(stroke.isEmpty());
    QVERIFY(stroke.image().isNull());
}

void tst_BitmapStroke::emptinessIsThatOfTheRect()
{
    QVERIFY(BitmapStroke().isEmpty());
    QVERIFY(BitmapStroke(solid({4, 4}, 9), QRect()).isEmpty());
    QVERIFY(!BitmapStroke(QImage(), QRect(0, 0, 1, 1)).isEmpty());
}

QTEST_MAIN(tst_BitmapStroke)
#include "tst_bitmapstroke.moc"
