#include "libmodel/strokes/changedtiles.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/pixelspans.h"

#include <QTest>

using namespace Model;

class tst_ChangedTiles : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsChangedAtFirst();
    void rectanglesCoverWhatWasAdded();
    void lossWithoutInkIsNone();
    void withoutAPictureNothingIsNoted();

private:
    static constexpr QSize size{100, 70};
};

void tst_ChangedTiles::nothingIsChangedAtFirst()
{
    QVERIFY(ChangedTiles(blankCoverage(size)).rects().isEmpty());
}

void tst_ChangedTiles::rectanglesCoverWhatWasAdded()
{
    ChangedTiles changed(blankCoverage(size));
    changed.add(QRect(40, 10, 5, 40));
    changed.add(QRect(90, 65, 500, 500));
    changed.add(QRect(-50, -50, 20, 20));
    // Tiles are 32 x 32: one column of two, and the last in the corner, cut to the picture.
    QCOMPARE(changed.rects(), QList<QRect>({QRect(32, 0, 32, 64), QRect(64, 64, 36, 6)}));
}

void tst_ChangedTiles::lossWithoutInkIsNone()
{
    QImage picture = blankCoverage(size);
    picture.scanLine(50)[70] = 1;
    ChangedTiles changed(picture);
    changed.addLoss(PixelSpans(QRect(0, 0, 70, 70)), QRect(0, 0, 100, 70));
    QVERIFY(changed.rects().isEmpty());
    changed.addLoss(PixelSpans(QRect(0, 0, 71, 70)), QRect(0, 0, 100, 50));
    QVERIFY(changed.rects().isEmpty());
    changed.addLoss(PixelSpans(QRect(0, 0, 71, 70)), QRect(0, 0, 100, 70));
    QCOMPARE(changed.rects(), QList<QRect>({QRect(64, 32, 32, 32)}));
}

void tst_ChangedTiles::withoutAPictureNothingIsNoted()
{
    ChangedTiles changed{QImage()};
    changed.add(QRect(0, 0, 50, 50));
    changed.addLoss(PixelSpans(QRect(0, 0, 50, 50)), QRect(0, 0, 50, 50));
    QVERIFY(changed.rects().isEmpty());
}

QTEST_APPLESS_MAIN(tst_ChangedTiles)
#include "tst_changedtiles.moc"
