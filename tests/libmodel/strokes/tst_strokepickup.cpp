// What is picked up and cut out at random, again and again: nothing that can be seen may get lost, the pictures that
// are known must be those that the strokes make, and neither strokes nor time may grow without end.

#include "coverageprobes.h"
#include "libmodel/strokes/changedtiles.h"
#include "pickupmaking.h"
#include "support/glfixture.h"

#include <QElapsedTimer>
#include <QtTest>

using namespace Model;

class tst_StrokePickUp : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void randomPartsLookLikeMaskedWholes_data();
    void randomPartsLookLikeMaskedWholes();
    void randomCutsLookLikeMaskedWholes_data();
    void randomCutsLookLikeMaskedWholes();
    void imageAndPicturesAreWhatTheStrokesMake_data();
    void imageAndPicturesAreWhatTheStrokesMake();
    void strokesOutsideAreLeftOut();
    void emptyPathTakesEverything();
    void cutBesideEverythingIsRefused();
    void samePathKeptAndCutLeavesNothing();
    void eraserWithoutInkInReachGoes();
    void eraserThatStillErasesStays();
    void cutsApartOfEachOtherAreOneMask();
    void twentyRoundsAtOnePlaceAddNothing();
    void roundsAtRandomPlacesStayBounded();
    void lineOverTheRestOfAStampIsNotMasked();
    void bitmapCroppedToNothingIsGoneFromThePicture();
    void richPathBringsNothingHiddenBack();
    void richPathsTakeTheirPartQuickly_data();
    void richPathsTakeTheirPartQuickly();
    void endlessMasksAreCutQuickly_data();
    void endlessMasksAreCutQuickly();

private:
    static constexpr QSize frame{640, 480};

    static std::unique_ptr<StrokeDrawing> drawingOf(int lines, PickUpMaker &maker);
    static std::unique_ptr<StrokeDrawing> handled(quint64 seed, int steps);
    static void step(StrokeDrawing &drawing, PickUpMaker &maker);
};

namespace {

void seeds(int count)
{
    QTest::addColumn<int>("seed");
    for (int seed = 1; seed <= count; ++seed)
        QTest::addRow("seed %d", seed) << seed;
}

/// \a drawing's strokes limited to \a path by a mask alone, or without what lies inside of it.
std::unique_ptr<CompoundStroke> masked(const StrokeDrawing &drawing, const QPainterPath &path, bool isKept)
{
    auto inner = std::make_unique<CompoundStroke>(drawing.strokes());
    auto outer = std::make_unique<CompoundStroke>();
    outer->append(std::move(inner));
    if (isKept)
        outer->setKeep(path);
    else
        outer->addCut(path);
    return outer;
}

QImage blankIfNull(const QImage &image, QSize size)
{
    return image.isNull() ? blankCoverage(size) : image;
}

} // namespace

std::unique_ptr<StrokeDrawing> tst_StrokePickUp::drawingOf(int lines, PickUpMaker &maker)
{
    auto drawing = std::make_unique<StrokeDrawing>(frame);
    for (int i = 0; i < lines; ++i)
        drawing->addStroke(maker.anyLine());
    return drawing;
}

/// One thing that a user may do: draw, cut, or cut and stamp.
void tst_StrokePickUp::step(StrokeDrawing &drawing, PickUpMaker &maker)
{
    const int kind = maker.random().between(0, 5);
    if (kind == 0) {
        drawing.addStroke(maker.anyLine());
    } else if (kind == 1) {
        drawing.addStroke(maker.bitmap());
    } else if (kind == 2) {
        drawing.cutPath(maker.lasso(30, 150));
    } else {
        const QPainterPath path = maker.lasso(50, 250);
        auto part = drawing.extract(path);
        if (part->isEmpty())
            return;
        if (kind == 3)
            drawing.cutPath(path);
        if (kind != 5)
            part->setTransform(part->transform() * maker.placing());
        drawing.addStroke(std::move(part));
    }
}

std::unique_ptr<StrokeDrawing> tst_StrokePickUp::handled(quint64 seed, int steps)
{
    PickUpMaker maker(seed, frame);
    auto drawing = drawingOf(40, maker);
    for (int i = 0; i < steps; ++i)
        step(*drawing, maker);
    return drawing;
}

void tst_StrokePickUp::randomPartsLookLikeMaskedWholes_data()
{
    seeds(12);
}

void tst_StrokePickUp::randomPartsLookLikeMaskedWholes()
{
    QFETCH(const int, seed);
    const auto drawing = handled(quint64(seed), 8);
    PickUpMaker maker(quint64(seed) + 1000, frame);
    for (int i = 0; i < 4; ++i) {
        const QPainterPath path = maker.lasso(60, 300);
        const auto expected = masked(*drawing, path, true);
        const auto part = drawing->extract(path);
        const QImage lines = maskLinesOf(frame, *expected, path);
        QCOMPARE(differingPixels(renderedOn(frame, *part), renderedOn(frame, *expected), lines), 0);
        QVERIFY(part->recursiveCount() <= expected->recursiveCount());
    }
}

void tst_StrokePickUp::randomCutsLookLikeMaskedWholes_data()
{
    seeds(12);
}

void tst_StrokePickUp::randomCutsLookLikeMaskedWholes()
{
    QFETCH(const int, seed);
    const auto drawing = handled(quint64(seed), 8);
    PickUpMaker maker(quint64(seed) + 2000, frame);
    const QPainterPath path = maker.lasso(60, 300);
    const auto expected = masked(*drawing, path, false);
    drawing->cutPath(path);
    const QImage lines = maskLinesOf(frame, *expected, path);
    const QImage image = blankIfNull(drawing->image(), frame);
    QCOMPARE(differingPixels(image, renderedOn(frame, *expected), lines), 0);
}

void tst_StrokePickUp::imageAndPicturesAreWhatTheStrokesMake_data()
{
    seeds(16);
}

void tst_StrokePickUp::imageAndPicturesAreWhatTheStrokesMake()
{
    QFETCH(const int, seed);
    PickUpMaker maker(quint64(seed), frame);
    const auto drawing = drawingOf(40, maker);
    for (int i = 0; i < 12; ++i) {
        step(*drawing, maker);
        const QImage image = blankIfNull(drawing->image(), frame);
        QCOMPARE(differingPixels(image, renderedOn(frame, drawing->strokes()), QImage()), 0);
        const auto part = drawing->extract(maker.lasso(60, 250));
        if (part->isEmpty())
            continue;
        const QRect rect = part->pictureRect();
        QCOMPARE(part->picture().size(), rect.size());
        const QImage rendered = renderedOn(frame, *part);
        QCOMPARE(differingPixels(part->picture(), rendered.copy(rect), QImage()), 0);
        QVERIFY(rect.contains(inkOf(rendered)) || inkOf(rendered).isEmpty());
    }
}

void tst_StrokePickUp::strokesOutsideAreLeftOut()
{
    TestPen pen;
    StrokeDrawing drawing(frame);
    for (int i = 0; i < 10; ++i)
        drawing.addStroke(straightStroke(pen, {20.0 + 60 * i, 100}, {50.0 + 60 * i, 200}));
    // The rectangle around the third line meets it, and that of the fourth does not.
    const auto part = drawing.extract(rectPath(10, 90, 170, 150));
    QCOMPARE(part->recursiveCount(), 1 + 3);
    QVERIFY(drawing.cutPath(rectPath(10, 90, 170, 150)));
    QCOMPARE(drawing.strokes().recursiveCount(), 1 + 7);
}

void tst_StrokePickUp::emptyPathTakesEverything()
{
    PickUpMaker maker(5, frame);
    const auto drawing = drawingOf(20, maker);
    const auto part = drawing->extract(QPainterPath());
    QCOMPARE(part->recursiveCount(), drawing->strokes().recursiveCount());
    QCOMPARE(part->picture(), drawing->image().copy(part->pictureRect()));
    QVERIFY(!drawing->cutPath(QPainterPath()));
}

void tst_StrokePickUp::cutBesideEverythingIsRefused()
{
    TestPen pen;
    StrokeDrawing drawing(frame);
    drawing.addStroke(straightStroke(pen, {20, 100}, {200, 200}));
    const QUuid id = QUuid::createUuid();
    drawing.setCopyId(id);
    QVERIFY(!drawing.cutPath(rectPath(300, 300, 50, 50)));
    // Within the line's bounds, but not on it.
    QVERIFY(!drawing.cutPath(rectPath(150, 105, 40, 20)));
    QVERIFY(drawing.extract(rectPath(150, 105, 40, 20))->isEmpty());
    QCOMPARE(drawing.copyId(), id);
    QVERIFY(drawing.cutPath(rectPath(100, 100, 50, 100)));
    QVERIFY(drawing.copyId().isNull());
}

void tst_StrokePickUp::samePathKeptAndCutLeavesNothing()
{
    PickUpMaker maker(6, frame);
    const auto drawing = drawingOf(60, maker);
    const QPainterPath path = maker.lasso(100, 200);
    drawing->cutPath(path);
    QVERIFY(drawing->extract(path)->isEmpty());
    QVERIFY(!drawing->cutPath(path));
}

void tst_StrokePickUp::eraserWithoutInkInReachGoes()
{
    TestPen pen;
    TestEraser eraser;
    StrokeDrawing drawing(frame);
    drawing.addStroke(straightStroke(pen, {50, 100}, {100, 100}));
    drawing.addStroke(straightStroke(pen, {300, 100}, {400, 100}));
    drawing.addStroke(straightStroke(eraser, {50, 90}, {100, 110}));
    // The first line goes, and with it the eraser, of which some stays in sight.
    QVERIFY(drawing.cutPath(rectPath(30, 95, 100, 12)));
    QCOMPARE(drawing.strokes().recursiveCount(), 1 + 1);
}

void tst_StrokePickUp::eraserThatStillErasesStays()
{
    TestPen pen;
    TestEraser eraser;
    StrokeDrawing drawing(frame);
    drawing.addStroke(straightStroke(pen, {50, 100}, {400, 100}));
    drawing.addStroke(straightStroke(eraser, {200, 50}, {200, 150}));
    QVERIFY(drawing.cutPath(rectPath(30, 50, 100, 100)));
    QCOMPARE(drawing.strokes().recursiveCount(), 1 + 2);
    QVERIFY(coverageAt(drawing.image(), 200, 100) < 10);
    QVERIFY(coverageAt(drawing.image(), 300, 100) > 240);
}

void tst_StrokePickUp::cutsApartOfEachOtherAreOneMask()
{
    TestPen pen;
    StrokeDrawing drawing(frame);
    drawing.addStroke(straightStroke(pen, {20, 100}, {600, 130}));
    for (int i = 0; i < 5; ++i) {
        QVERIFY(drawing.cutPath(rectPath(50.3 + 100 * i, 20.7, 40, 200)));
        QCOMPARE(drawing.image(), renderedOn(frame, drawing.strokes()));
    }
    QCOMPARE(drawing.strokes().nesting(), 1);
    QVERIFY(coverageAt(drawing.image(), 120, 105) > 0);
    QCOMPARE(coverageAt(drawing.image(), 170, 107), 0);
}

void tst_StrokePickUp::twentyRoundsAtOnePlaceAddNothing()
{
    PickUpMaker maker(7, frame);
    const auto drawing = drawingOf(80, maker);
    const QPainterPath path = maker.lasso(150, 200);
    const auto round = [&] {
        auto part = drawing->extract(path);
        drawing->cutPath(path);
        drawing->addStroke(std::move(part));
        return drawing->strokes().recursiveCount();
    };
    const QImage before = drawing->image();
    const int first = round();
    for (int i = 0; i < 20; ++i)
        QCOMPARE(round(), first);
    QVERIFY(drawing->strokes().nesting() <= 3);
    const QImage lines = maskLinesOf(frame, drawing->strokes(), path);
    QCOMPARE(differingPixels(drawing->image(), before, lines, 2), 0);
    QCOMPARE(drawing->image(), renderedOn(frame, drawing->strokes()));
}

void tst_StrokePickUp::roundsAtRandomPlacesStayBounded()
{
    constexpr int rounds = 50;
    constexpr int lines = 80;
    PickUpMaker maker(8, frame);
    const auto drawing = drawingOf(lines, maker);
    for (int i = 0; i < rounds; ++i) {
        const QPainterPath path = maker.lasso(100, 200);
        auto part = drawing->extract(path);
        if (part->isEmpty())
            continue;
        drawing->cutPath(path);
        drawing->addStroke(std::move(part));
    }
    qInfo() << drawing->strokes().recursiveCount() << "strokes," << drawing->strokes().nesting() << "levels";
    // Each lasso's line meets some of the lines, and makes two of each of these.
    QVERIFY(drawing->strokes().recursiveCount() < lines + rounds * (lines / 2));
    QVERIFY(drawing->strokes().nesting() <= rounds + 2);
    QCOMPARE(drawing->image(), renderedOn(frame, drawing->strokes()));
}

void tst_StrokePickUp::lineOverTheRestOfAStampIsNotMasked()
{
    TestPen pen;
    StrokeDrawing drawing(frame);
    auto stamp = std::make_unique<CompoundStroke>();
    stamp->append(straightStroke(pen, {100, 100}, {300, 100}));
    stamp->append(straightStroke(pen, {120, 200}, {160, 200}));
    stamp->setKeep(rectPath(0, 0, 200.5, 480));
    drawing.addStroke(std::move(stamp));
    // Without the second line the stamp is all that the drawing holds, and so is its mask.
    QVERIFY(drawing.cutPath(rectPath(110, 180, 60, 40)));
    drawing.addStroke(straightStroke(pen, {400, 300}, {500, 300}));
    drawing.rebuild(QRect({0, 0}, frame));
    QVERIFY(coverageAt(drawing.image(), 450, 300) > 240);
    QVERIFY(coverageAt(drawing.image(), 150, 100) > 240);
    QCOMPARE(coverageAt(drawing.image(), 250, 100), 0);
    (void)drawing.removeLastStroke();
    drawing.addStroke(straightStroke(pen, {400, 350}, {500, 350}));
    drawing.rebuild(QRect({0, 0}, frame));
    QVERIFY(coverageAt(drawing.image(), 450, 350) > 240);
}

void tst_StrokePickUp::bitmapCroppedToNothingIsGoneFromThePicture()
{
    QImage pixels = blankCoverage({20, 20});
    pixels.fill(255);
    auto scaled = std::make_unique<CompoundStroke>();
    scaled->append(std::make_unique<BitmapStroke>(pixels, QRect(40, 10, 20, 20)));
    scaled->setTransform(QTransform(1.25, 0, 0, 1, 0.5, 0));
    StrokeDrawing drawing(frame);
    drawing.addStroke(std::move(scaled));
    drawing.addStroke(std::make_unique<BitmapStroke>(pixels, QRect(20, 10, 20, 20)));
    // The scaled one begins at 50.5.
    const auto part = drawing.extract(rectPath(2, 5, 48.45, 30));
    QCOMPARE(part->picture(), renderedOn(frame, *part).copy(part->pictureRect()));
}

void tst_StrokePickUp::richPathBringsNothingHiddenBack()
{
    constexpr int corners = 9000;
    TestPen pen;
    auto stamp = std::make_unique<CompoundStroke>();
    stamp->append(straightStroke(pen, {100, 100}, {300, 100}));
    stamp->append(straightStroke(pen, {120, 200}, {160, 200}));
    stamp->setKeep(rectPath(0, 0, 200.5, 480));
    StrokeDrawing drawing(frame);
    drawing.addStroke(std::move(stamp));
    QVERIFY(drawing.cutPath(rectPath(110, 180, 60, 40)));
    QPainterPath path(QPointF(1, 1));
    for (int i = 0; i < corners; ++i)
        path.lineTo(1 + 638.0 * i / corners, 1);
    path.lineTo(639, 479);
    path.lineTo(1, 479);
    path.closeSubpath();
    const QImage part = renderedOn(frame, *drawing.extract(path));
    QVERIFY(coverageAt(part, 150, 100) > 240);
    QCOMPARE(coverageAt(part, 250, 100), 0);
}

void tst_StrokePickUp::richPathsTakeTheirPartQuickly_data()
{
    QTest::addColumn<int>("corners");
    for (const int corners : {3'000, 8'000, 12'000})
        QTest::addRow("%d corners", corners) << corners;
}

void tst_StrokePickUp::richPathsTakeTheirPartQuickly()
{
    QFETCH(const int, corners);
    PickUpMaker maker(9, frame);
    const auto drawing = drawingOf(100, maker);
    // A hand that goes to and fro for a minute or two.
    constexpr int farthest = 40;
    QPointF at(frame.width() / 2.0, frame.height() / 2.0);
    QPainterPath scribble(at);
    for (int i = 1; i < corners; ++i) {
        at += QPointF(maker.random().between(-farthest, farthest), maker.random().between(-farthest, farthest));
        at = {std::clamp(at.x(), 0.0, double(frame.width())), std::clamp(at.y(), 0.0, double(frame.height()))};
        scribble.lineTo(at);
    }
    scribble.closeSubpath();
    scribble.setFillRule(Qt::WindingFill);
    QElapsedTimer timer;
    timer.start();
    const auto part = drawing->extract(scribble);
    drawing->cutPath(scribble);
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString("%1 ms").arg(timer.elapsed())));
    QVERIFY(!part->isEmpty());
}

void tst_StrokePickUp::endlessMasksAreCutQuickly_data()
{
    QTest::addColumn<int>("levels");
    QTest::addColumn<int>("corners");
    QTest::addColumn<double>("scale");
    QTest::newRow("deep") << CompoundStroke::maximumDepth - 8 << 40 << 1.0;
    QTest::newRow("long outlines") << 20 << 200'000 << 1.0;
    QTest::newRow("outlines beyond the frame") << 500 << 100 << 1e4;
}

void tst_StrokePickUp::endlessMasksAreCutQuickly()
{
    QFETCH(const int, levels);
    QFETCH(const int, corners);
    QFETCH(const double, scale);
    auto content = std::make_unique<CompoundStroke>();
    QImage image = blankCoverage(frame);
    image.fill(255);
    content->append(std::make_unique<BitmapStroke>(image, image.rect()));
    QPainterPath zigzag;
    for (int i = 0; i < corners; ++i)
        zigzag.lineTo(i % 2 == 0 ? 300 : 0, 480.0 * i / corners);
    const QTransform placed = QTransform().translate(300, 240).scale(scale, scale).translate(-300, -240);
    for (int level = 1; level < levels; ++level) {
        auto outer = std::make_unique<CompoundStroke>();
        outer->append(std::make_unique<BitmapStroke>(image.copy(0, 0, 4, 4), QRect(level % 600, 470, 4, 4)));
        outer->append(std::move(content));
        outer->addCut(placed.map(zigzag));
        content = std::move(outer);
    }
    ChangedTiles changed{QImage()};
    CompoundStroke part(*content);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(part.limitTo(rectPath(310.5, 20, 200, 400), QRect(-640, -480, 1920, 1440), changed));
    QVERIFY(content->takeAway(rectPath(310.5, 20, 200, 400), QRect(-640, -480, 1920, 1440), changed));
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString("%1 ms").arg(timer.elapsed())));
    QVERIFY(part.nesting() <= CompoundStroke::maximumDepth);
}

QTEST_MAIN(tst_StrokePickUp)
#include "tst_strokepickup.moc"
