// Strokes that come to a drawing and leave it, and the pixels that they make.

#include "coverageprobes.h"
#include "libmodel/strokes/compoundstroke.h"
#include "strokedrawingfixture.h"
#include "support/glfixture.h"

#include <QtTest>

#include <random>

using namespace Model;

class tst_StrokeDrawingStrokes : public StrokeDrawingFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void emptyDrawingHoldsNoImage();
    void nullStrokeIsRefused();
    void emptyStrokeIsRefused_data();
    void emptyStrokeIsRefused();
    void eraserOnEmptyDrawingIsDropped();
    void firstStrokesPixelsAreTakenOver();
    void strokeWithoutAnImageIsRendered();
    void liveAndRenderedStrokesGiveTheSameDrawing();
    void eraserTakesCoverageAway();
    void drawingOverAnErasedSpotShowsTheNewerLine();
    void fullCoverageStaysFull();
    void halfOverHalfGives191();
    void compoundAndBitmapStrokesAreAdded();
    void removingTheOnlyStrokeLeavesNoImage();
    void undoRestoresThePixels();
    void changesResetTheCopyIdentifier();
    void storedStrokeKnowsNoTool();
    void cloneIsIndependent();
};

void tst_StrokeDrawingStrokes::emptyDrawingHoldsNoImage()
{
    const StrokeDrawing drawing(frame);
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
    QVERIFY(drawing.inkedRect().isEmpty());
    QCOMPARE(drawing.size(), frame);
    QCOMPARE(drawing.type(), Drawing::Type::Stroke);
}

void tst_StrokeDrawingStrokes::nullStrokeIsRefused()
{
    StrokeDrawing drawing(frame);
    QVERIFY(!drawing.addStroke(nullptr));
    QVERIFY(!drawing.removeLastStroke());
    QVERIFY(drawing.isEmpty());
}

void tst_StrokeDrawingStrokes::emptyStrokeIsRefused_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("single") << int(Stroke::Type::Single);
    QTest::newRow("compound") << int(Stroke::Type::Compound);
    QTest::newRow("bitmap") << int(Stroke::Type::Bitmap);
}

void tst_StrokeDrawingStrokes::emptyStrokeIsRefused()
{
    QFETCH(int, type);
    std::unique_ptr<Stroke> stroke;
    if (type == int(Stroke::Type::Single))
        stroke = std::make_unique<SingleStroke>(frame, &m_pen);
    else if (type == int(Stroke::Type::Compound))
        stroke = std::make_unique<CompoundStroke>();
    else
        stroke = std::make_unique<BitmapStroke>();
    StrokeDrawing drawing(frame);
    const QUuid id = QUuid::createUuid();
    drawing.setCopyId(id);
    QVERIFY(!drawing.addStroke(std::move(stroke)));
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
    QCOMPARE(drawing.copyId(), id);
}

void tst_StrokeDrawingStrokes::eraserOnEmptyDrawingIsDropped()
{
    StrokeDrawing drawing(frame);
    const QUuid id = QUuid::createUuid();
    drawing.setCopyId(id);
    QVERIFY(!drawing.addStroke(eraser({10, 10}, {100, 100})));
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
    QCOMPARE(drawing.copyId(), id);
}

void tst_StrokeDrawingStrokes::firstStrokesPixelsAreTakenOver()
{
    StrokeDrawing drawing(frame);
    auto stroke = pen({50, 50}, {200, 100});
    const QImage live = stroke->image().copy();
    const uchar *bytes = stroke->image().constBits();
    QVERIFY(drawing.addStroke(std::move(stroke)));
    QCOMPARE(drawing.image().constBits(), bytes);
    QCOMPARE(largestDifference(drawing.image(), live), 0);
    QVERIFY(static_cast<const SingleStroke &>(drawing.strokes().at(0)).image().isNull());
}

void tst_StrokeDrawingStrokes::strokeWithoutAnImageIsRendered()
{
    StrokeDrawing drawing(frame);
    QVERIFY(drawing.addStroke(straightStroke(m_pen, {50, 50}, {200, 50})));
    QCOMPARE(drawing.image().size(), frame);
    QVERIFY(coverageAt(drawing.image(), 120, 50) > 240);
    QVERIFY(drawing.addStroke(straightStroke(m_eraser, {120, 20}, {120, 80})));
    QVERIFY(coverageAt(drawing.image(), 120, 50) < 15);
}

void tst_StrokeDrawingStrokes::liveAndRenderedStrokesGiveTheSameDrawing()
{
    StrokeDrawing live(frame);
    StrokeDrawing rendered(frame);
    live.addStroke(drawnStroke(m_pencil, frame, {50, 50}, {333, 207}));
    rendered.addStroke(straightStroke(m_pencil, {50, 50}, {333, 207}));
    QVERIFY(largestDifference(live.image(), rendered.image()) <= 2);
}

void tst_StrokeDrawingStrokes::eraserTakesCoverageAway()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    QVERIFY(drawing.addStroke(eraser({200, 50}, {200, 150})));
    QVERIFY(coverageAt(drawing.image(), 200, 100) < 15);
    QVERIFY(coverageAt(drawing.image(), 100, 100) > 240);
}

void tst_StrokeDrawingStrokes::drawingOverAnErasedSpotShowsTheNewerLine()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.addStroke(eraser({200, 50}, {200, 150}));
    drawing.addStroke(pen({200, 20}, {200, 180}));
    QVERIFY(coverageAt(drawing.image(), 200, 100) > 240);
    drawing.rebuild(QRect(QPoint(0, 0), frame));
    QVERIFY(coverageAt(drawing.image(), 200, 100) > 240);
}

void tst_StrokeDrawingStrokes::fullCoverageStaysFull()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(solid(255));
    drawing.addStroke(pen({50, 100}, {350, 100}));
    QCOMPARE(coverageAt(drawing.image(), 200, 100), 255);
}

void tst_StrokeDrawingStrokes::halfOverHalfGives191()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(solid(128));
    drawing.addStroke(solid(128));
    // 128 + 127 * 128 / 255 = 128 + 63.7, cut.
    QCOMPARE(coverageAt(drawing.image(), 402, 300), 191);
}

void tst_StrokeDrawingStrokes::compoundAndBitmapStrokesAreAdded()
{
    StrokeDrawing drawing(frame);
    auto compound = std::make_unique<CompoundStroke>();
    compound->append(straightStroke(m_pen, {50, 100}, {350, 100}));
    QVERIFY(drawing.addStroke(std::move(compound)));
    QVERIFY(coverageAt(drawing.image(), 200, 100) > 240);
    QVERIFY(drawing.addStroke(solid(7)));
    QCOMPARE(coverageAt(drawing.image(), 0, 0), 7);
    QCOMPARE(drawing.strokes().count(), 2);
}

void tst_StrokeDrawingStrokes::removingTheOnlyStrokeLeavesNoImage()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const auto stroke = drawing.removeLastStroke();
    QVERIFY(stroke);
    QCOMPARE(stroke->type(), Stroke::Type::Single);
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
}

void tst_StrokeDrawingStrokes::undoRestoresThePixels()
{
    constexpr unsigned seed = 20260;
    qInfo("seed %u", seed);
    std::mt19937 random(seed);
    const auto point = [&] { return QPointF(random() % 403, random() % 301); };
    StrokeDrawing drawing(frame);
    for (int i = 0; i < 12; ++i)
        drawing.addStroke(i % 4 == 3 ? eraser(point(), point()) : drawnStroke(m_pencil, frame, point(), point()));
    drawing.rebuild(QRect(QPoint(0, 0), frame));
    const QImage before = drawing.image().copy();
    for (int i = 0; i < 8; ++i) {
        drawing.addStroke(i % 3 == 1 ? eraser(point(), point()) : drawnStroke(m_pencil, frame, point(), point()));
        QVERIFY(drawing.removeLastStroke());
        // The same up to the last bit of what OpenGL interpolates.
        QVERIFY(largestDifference(drawing.image(), before) <= 1);
    }
}

void tst_StrokeDrawingStrokes::changesResetTheCopyIdentifier()
{
    StrokeDrawing drawing(frame);
    const QUuid id = QUuid::createUuid();
    const auto mark = [&] { drawing.setCopyId(id); };
    mark();
    drawing.addStroke(pen({50, 100}, {350, 100}));
    QVERIFY(drawing.copyId().isNull());
    drawing.addStroke(pen({50, 200}, {350, 200}));
    mark();
    drawing.removeLastStroke();
    QVERIFY(drawing.copyId().isNull());
    mark();
    drawing.cutPath(rectPath(100, 0, 50, 300));
    QVERIFY(drawing.copyId().isNull());
    mark();
    drawing.rebuild(QRect(0, 0, 10, 10));
    QCOMPARE(drawing.copyId(), id);
}

void tst_StrokeDrawingStrokes::storedStrokeKnowsNoTool()
{
    StrokeDrawing drawing(frame);
    // A stroke that still had its tool would go on with the next sample.
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const auto stroke = drawing.removeLastStroke();
    auto &single = static_cast<SingleStroke &>(*stroke);
    const size_t segments = single.segments().size();
    single.addSample(sampleAt(350, 250));
    QCOMPARE(single.segments().size(), segments);
}

void tst_StrokeDrawingStrokes::cloneIsIndependent()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.setName(QStringLiteral("a hand"));
    const auto copy = drawing.clone();
    const auto &other = static_cast<const StrokeDrawing &>(*copy);
    const QImage before = drawing.image().copy();
    drawing.addStroke(pen({50, 200}, {350, 200}));
    QCOMPARE(other.strokes().count(), 1);
    QCOMPARE(largestDifference(other.image(), before), 0);
    QCOMPARE(other.name(), QStringLiteral("a hand"));
}

QTEST_MAIN(tst_StrokeDrawingStrokes)
#include "tst_strokedrawing_strokes.moc"
