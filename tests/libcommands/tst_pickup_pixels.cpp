// Parts cut out of drawings with real lines: what lies inside a lasso and what stays outside make up the whole, and a
// part that is stamped where it was gives the drawing back.

#include "libmodel/strokes/coverage.h"
#include "pickupstage.h"
#include "support/glfixture.h"

#include <QTest>

#include <algorithm>

using namespace Model;
using namespace TestSupport;

namespace {

constexpr int lines = 14;
constexpr int mostLevels = 2;

/// What is inked twice is as dark as a pen's stroke over another: the rest of the paper is covered by its share.
QImage composed(const QImage &outside, const QImage &inside)
{
    QImage both = outside.copy();
    for (int y = 0; y < both.height(); ++y) {
        for (int x = 0; x < both.width(); ++x) {
            const int there = outside.constScanLine(y)[x];
            both.scanLine(y)[x] = uchar(there + (255 - there) * inside.constScanLine(y)[x] / 255);
        }
    }
    return both;
}

/// The selection's picture as it lies on the frame.
QImage onFrame(const FloatingSelection &selection)
{
    QImage frame = blankCoverage(pickUpFrame);
    const QImage picture = selection.image();
    const QRect rect = selection.imageRect() & frame.rect();
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x)
            frame.scanLine(y)[x] =
                picture.constScanLine(y - selection.imageRect().top())[x - selection.imageRect().left()];
    }
    return frame;
}

int inkedPixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        count += int(std::count_if(image.constScanLine(y), image.constScanLine(y) + image.width(),
                                   [](uchar coverage) { return coverage > 0; }));
    return count;
}

/// Every pixel that \a one or \a other marks.
void unite(QImage &one, const QImage &other)
{
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            one.scanLine(y)[x] = std::max(one.constScanLine(y)[x], other.constScanLine(y)[x]);
    }
}

} // namespace

class tst_PickUpPixels : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(startRenderer(pickUpFrame)); }
    void partsComposedAreTheWhole_data() { lassos_data(); }
    void partsComposedAreTheWhole();
    void partsHaveNoInkOfEachOther_data() { lassos_data(); }
    void partsHaveNoInkOfEachOther();
    void stampInPlaceGivesTheDrawingBack_data() { lassos_data(); }
    void stampInPlaceGivesTheDrawingBack();
    void twentyStampsInPlaceStillGiveItBack_data() { lassos_data(); }
    void twentyStampsInPlaceStillGiveItBack();
    void twentyStampsOfOtherPartsStillGiveItBack_data();
    void twentyStampsOfOtherPartsStillGiveItBack();
    void wholeDrawingPickedUpAndStampedIsTheSame();
    void stampOnSeveralCellsIsTheSameOnAll();
    void bandOfALineIsAPixelToEachSide();

private:
    static void lassos_data();
};

void tst_PickUpPixels::lassos_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<quint64>("seed");
    const QList<std::pair<const char *, Lasso>> kinds{{"round", Lasso::Round},
                                                      {"wobbling", Lasso::Wobbling},
                                                      {"crossing itself", Lasso::Crossing},
                                                      {"going round twice", Lasso::Star}};
    for (const auto &[name, kind] : kinds) {
        for (quint64 seed = 1; seed <= 4; ++seed)
            QTest::addRow("%s, seed %d", name, int(seed)) << int(kind) << seed;
    }
}

void tst_PickUpPixels::partsComposedAreTheWhole()
{
    QFETCH(int, kind);
    QFETCH(quint64, seed);
    RandomNumbers random(seed);
    PickUpStage stage;
    stage.addLines(random, lines);
    const QImage before = stage.image();
    const QPainterPath path = lasso(Lasso(kind), {150, 120}, 70, random);
    QVERIFY(stage.pickUp(path, true));
    const QImage whole = composed(stage.image(), onFrame(stage.selection()));
    QCOMPARE(differenceOutside(bandAround(path), whole, before), 0);
}

void tst_PickUpPixels::partsHaveNoInkOfEachOther()
{
    QFETCH(int, kind);
    QFETCH(quint64, seed);
    RandomNumbers random(seed);
    PickUpStage stage;
    stage.addLines(random, lines);
    const QPainterPath path = lasso(Lasso(kind), {150, 120}, 70, random);
    QVERIFY(stage.pickUp(path, true));
    const QImage outside = stage.image();
    const QImage inside = onFrame(stage.selection());
    const QImage band = bandAround(path);
    QVERIFY(inkedPixels(outside) > 100);
    QVERIFY(inkedPixels(inside) > 100);
    for (int y = 0; y < pickUpFrame.height(); ++y) {
        for (int x = 0; x < pickUpFrame.width(); ++x) {
            if (band.constScanLine(y)[x] > 0)
                continue;
            const bool liesInside = path.contains(QPointF(x + 0.5, y + 0.5));
            const int foreign = liesInside ? outside.constScanLine(y)[x] : inside.constScanLine(y)[x];
            QVERIFY2(foreign == 0, qPrintable(QStringLiteral("%1 at %2, %3").arg(foreign).arg(x).arg(y)));
        }
    }
}

void tst_PickUpPixels::stampInPlaceGivesTheDrawingBack()
{
    QFETCH(int, kind);
    QFETCH(quint64, seed);
    RandomNumbers random(seed);
    PickUpStage stage;
    stage.addLines(random, lines);
    const QImage before = stage.image();
    const QPainterPath path = lasso(Lasso(kind), {150, 120}, 70, random);
    QVERIFY(stage.pickUp(path, true));
    QVERIFY(differenceOutside(bandAround(path), stage.image(), before) > 100);
    stage.stamp();
    QVERIFY(differenceOutside(bandAround(path), stage.image(), before) <= mostLevels);
}

void tst_PickUpPixels::twentyStampsInPlaceStillGiveItBack()
{
    QFETCH(int, kind);
    QFETCH(quint64, seed);
    RandomNumbers random(seed);
    PickUpStage stage;
    stage.addLines(random, lines);
    const QImage before = stage.image();
    const QPainterPath path = lasso(Lasso(kind), {150, 120}, 70, random);
    const QImage band = bandAround(path);
    for (int round = 0; round < 20; ++round) {
        QVERIFY(stage.pickUp(path, true));
        stage.stamp();
    }
    QVERIFY(differenceOutside(band, stage.image(), before) <= mostLevels);
    // Nor is it only what the image has kept: the strokes make the same.
    stage.drawing().rebuild(QRect(QPoint(0, 0), pickUpFrame));
    QVERIFY(differenceOutside(band, stage.image(), before) <= mostLevels);
}

void tst_PickUpPixels::twentyStampsOfOtherPartsStillGiveItBack_data()
{
    QTest::addColumn<quint64>("seed");
    for (quint64 seed = 1; seed <= 4; ++seed)
        QTest::addRow("seed %d", int(seed)) << seed;
}

void tst_PickUpPixels::twentyStampsOfOtherPartsStillGiveItBack()
{
    QFETCH(quint64, seed);
    RandomNumbers random(seed);
    PickUpStage stage;
    stage.addLines(random, lines);
    const QImage before = stage.image();
    QImage band = blankCoverage(pickUpFrame);
    int rounds = 0;
    for (int tries = 0; rounds < 20 && tries < 100; ++tries) {
        const QPainterPath path =
            lasso(Lasso(random.between(0, 3)), QPointF(random.between(30, 290), random.between(30, 210)),
                  random.between(15, 60), random);
        if (!stage.pickUp(path, true))
            continue;
        stage.stamp();
        unite(band, bandAround(path));
        ++rounds;
    }
    QCOMPARE(rounds, 20);
    QVERIFY2(inkedPixels(band) < pickUpFrame.width() * pickUpFrame.height() / 2, "hardly anything is compared");
    QVERIFY(differenceOutside(band, stage.image(), before) <= mostLevels);
    stage.drawing().rebuild(QRect(QPoint(0, 0), pickUpFrame));
    QVERIFY(differenceOutside(band, stage.image(), before) <= mostLevels);
}

void tst_PickUpPixels::wholeDrawingPickedUpAndStampedIsTheSame()
{
    RandomNumbers random(7);
    PickUpStage stage;
    stage.addLines(random, lines);
    const QImage before = stage.image();
    QVERIFY(stage.pickUp(QPainterPath(), true));
    QVERIFY(stage.drawing().isEmpty());
    QCOMPARE(onFrame(stage.selection()), before);
    stage.stamp();
    QCOMPARE(stage.image(), before);
}

void tst_PickUpPixels::stampOnSeveralCellsIsTheSameOnAll()
{
    RandomNumbers random(8);
    PickUpStage stage(4);
    stage.addLines(random, lines);
    stage.addLines(random, 3, 3);
    const QImage third = stage.image(3);
    QVERIFY(stage.pickUp(lasso(Lasso::Wobbling, {150, 120}, 70, random), false));
    FloatingSelection::Transform moved = stage.selection().transform();
    moved.rotation = QTransform().rotate(20);
    moved.translation = QTransform::fromTranslate(-20, 8);
    stage.place(moved);
    stage.stamp({stage.cell(2), stage.cell(3), stage.cell(4)});
    const QImage stamped = stage.image(2);
    QVERIFY(inkedPixels(stamped) > 100);
    QCOMPARE(stage.image(4), stamped);
    QCOMPARE(stage.image(3), composed(third, stamped));
    // It is drawn once for all of them, and what each cell's strokes make is no other picture.
    for (const int frameId : {2, 3, 4}) {
        const QImage image = stage.image(frameId);
        stage.drawing(frameId).rebuild(QRect(QPoint(0, 0), pickUpFrame));
        QCOMPARE(stage.image(frameId), image);
    }
    // Nor is it on one cell.
    for (const int frameId : {2, 3, 4})
        stage.drawing(frameId).removeLastStroke();
    stage.scene().setActiveFrameAndLayer(4, 0, Scene::KeepFrameOnDrawing);
    stage.stamp();
    QCOMPARE(stage.image(4), stamped);
}

// The yardstick itself.
void tst_PickUpPixels::bandOfALineIsAPixelToEachSide()
{
    QPainterPath path;
    path.addRect(50, 60, 100, 80);
    const QImage band = bandAround(path);
    // Centres of pixels lie half a pixel from the line at x = 50.
    QCOMPARE(int(band.constScanLine(100)[48]), 0);
    QCOMPARE(int(band.constScanLine(100)[49]), 255);
    QCOMPARE(int(band.constScanLine(100)[50]), 255);
    QCOMPARE(int(band.constScanLine(100)[51]), 0);
    QCOMPARE(inkedPixels(band), 2 * (2 * 100 + 2 * 80));
}

QTEST_MAIN(tst_PickUpPixels)
#include "tst_pickup_pixels.moc"
