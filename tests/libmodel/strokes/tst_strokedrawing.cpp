#include "coverageprobes.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/colortable.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/inktiles.h"
#include "libmodel/strokes/strokedrawing.h"
#include "strokemaking.h"
#include "support/glfixture.h"
#include "support/penstreams.h"

#include <QDataStream>
#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>

#include <random>

using namespace Model;

class TestStrokeDrawing : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void emptyDrawingHoldsNoImage();
    void nullStrokeIsRefused();
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
    void inkedRectHoldsAllInk();
    void mapHoldsAllInk();
    void changesStayInsideTheTouchedRect();
    void cutRemovesWhatIsInside();
    void strokeAcrossAnOldCutIsFullyVisible();
    void cutOfEverythingLeavesNoImage();
    void extractLeavesTheDrawingAlone();
    void cutAndExtractAddUpToTheWhole();
    void mergeAddsTheOthersStrokes();
    void mergeOfAnImageDoesNothing();
    void resizeFitsTheContent();
    void restoredTransformBringsThePixelsBack();
    void resizeOfAnEmptyDrawingOnlyTakesTheSize();
    void undoAfterResizingAnEmptyDrawingLeavesItEmpty();
    void undoWalksBackThroughAResize();
    void removingUnderATransformRestoresThePixels();
    void resizeAndMergeResetTheCopyIdentifier();
    void emptyStrokeIsRefused_data();
    void emptyStrokeIsRefused();
    void mergeOfAnEmptyDrawingChangesNothing();
    void storedStrokeKnowsNoTool();
    void cloneIsIndependent();
    void indexedViewSharesTheBytes();
    void paintShowsCoverageInTheTablesColour();
    void paintStaysWithinTheRect();
    void penInProgressShowsOnTop();
    void penInProgressShowsOnAnEmptyDrawing();
    void eraserInProgressTakesAway();
    void thumbnailNeedsSizeTableAndContent();
    void thumbnailKeepsColourAndRaisesOpacity();
    void thumbnailIsKeptByColourUntilAChange();

private:
    static constexpr QSize frame{403, 301}; // no multiple of 4: rows are padded

    TestPen m_pen{{5, 5, 1, 1}};
    TestPen m_pencil{{1, 6, 0.5, 1}, Tool::PenType::Pencil};
    TestEraser m_eraser{{8, 8, 1, 1}};

    std::unique_ptr<SingleStroke> pen(QPointF from, QPointF to) const { return drawnStroke(m_pen, frame, from, to); }
    std::unique_ptr<SingleStroke> eraser(QPointF from, QPointF to) const
    {
        return drawnStroke(m_eraser, frame, from, to);
    }
    static QImage painted(const StrokeDrawing &drawing, QRect rect, const SingleStroke *active = nullptr)
    {
        QImage paper(frame, QImage::Format_ARGB32_Premultiplied);
        paper.fill(Qt::white);
        QPainter painter(&paper);
        if (active)
            drawing.paintWithActiveStroke(&painter, colorTable(Qt::red), rect, *active);
        else
            drawing.paint(&painter, colorTable(Qt::red), rect);
        return paper;
    }
    static std::unique_ptr<BitmapStroke> solid(int value)
    {
        QImage image = blankCoverage(frame);
        image.fill(value);
        return std::make_unique<BitmapStroke>(image, QRect(QPoint(0, 0), frame));
    }
};

void TestStrokeDrawing::emptyDrawingHoldsNoImage()
{
    const StrokeDrawing drawing(frame);
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
    QVERIFY(drawing.inkedRect().isEmpty());
    QCOMPARE(drawing.size(), frame);
    QCOMPARE(drawing.type(), Drawing::Type::Stroke);
}

void TestStrokeDrawing::nullStrokeIsRefused()
{
    StrokeDrawing drawing(frame);
    QVERIFY(!drawing.addStroke(nullptr));
    QVERIFY(!drawing.removeLastStroke());
    QVERIFY(drawing.isEmpty());
}

void TestStrokeDrawing::eraserOnEmptyDrawingIsDropped()
{
    StrokeDrawing drawing(frame);
    const QUuid id = QUuid::createUuid();
    drawing.setCopyId(id);
    QVERIFY(!drawing.addStroke(eraser({10, 10}, {100, 100})));
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
    QCOMPARE(drawing.copyId(), id);
}

void TestStrokeDrawing::firstStrokesPixelsAreTakenOver()
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

void TestStrokeDrawing::strokeWithoutAnImageIsRendered()
{
    StrokeDrawing drawing(frame);
    QVERIFY(drawing.addStroke(straightStroke(m_pen, {50, 50}, {200, 50})));
    QCOMPARE(drawing.image().size(), frame);
    QVERIFY(coverageAt(drawing.image(), 120, 50) > 240);
    QVERIFY(drawing.addStroke(straightStroke(m_eraser, {120, 20}, {120, 80})));
    QVERIFY(coverageAt(drawing.image(), 120, 50) < 15);
}

void TestStrokeDrawing::liveAndRenderedStrokesGiveTheSameDrawing()
{
    StrokeDrawing live(frame);
    StrokeDrawing rendered(frame);
    live.addStroke(drawnStroke(m_pencil, frame, {50, 50}, {333, 207}));
    rendered.addStroke(straightStroke(m_pencil, {50, 50}, {333, 207}));
    QVERIFY(largestDifference(live.image(), rendered.image()) <= 2);
}

void TestStrokeDrawing::eraserTakesCoverageAway()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    QVERIFY(drawing.addStroke(eraser({200, 50}, {200, 150})));
    QVERIFY(coverageAt(drawing.image(), 200, 100) < 15);
    QVERIFY(coverageAt(drawing.image(), 100, 100) > 240);
}

void TestStrokeDrawing::drawingOverAnErasedSpotShowsTheNewerLine()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.addStroke(eraser({200, 50}, {200, 150}));
    drawing.addStroke(pen({200, 20}, {200, 180}));
    QVERIFY(coverageAt(drawing.image(), 200, 100) > 240);
    drawing.rebuild(QRect(QPoint(0, 0), frame));
    QVERIFY(coverageAt(drawing.image(), 200, 100) > 240);
}

void TestStrokeDrawing::fullCoverageStaysFull()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(solid(255));
    drawing.addStroke(pen({50, 100}, {350, 100}));
    QCOMPARE(coverageAt(drawing.image(), 200, 100), 255);
}

void TestStrokeDrawing::halfOverHalfGives191()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(solid(128));
    drawing.addStroke(solid(128));
    // 128 + 127 * 128 / 255 = 128 + 63.7, cut.
    QCOMPARE(coverageAt(drawing.image(), 402, 300), 191);
}

void TestStrokeDrawing::compoundAndBitmapStrokesAreAdded()
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

void TestStrokeDrawing::removingTheOnlyStrokeLeavesNoImage()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const auto stroke = drawing.removeLastStroke();
    QVERIFY(stroke);
    QCOMPARE(stroke->type(), Stroke::Type::Single);
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
}

void TestStrokeDrawing::undoRestoresThePixels()
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

void TestStrokeDrawing::changesResetTheCopyIdentifier()
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

void TestStrokeDrawing::inkedRectHoldsAllInk()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({380, 40}, {450, 90}));
    drawing.addStroke(pen({100, 100}, {150, 120}));
    QVERIFY(drawing.inkedRect().contains(inkOf(drawing.image())));
    QVERIFY(QRect(QPoint(0, 0), frame).contains(drawing.inkedRect()));
    QVERIFY(drawing.inkedRect().left() > 80);
    drawing.resize({200, 150}, MR::FitMode::FitModeStretch);
    QVERIFY(drawing.inkedRect().contains(inkOf(drawing.image())));
}

void TestStrokeDrawing::mapHoldsAllInk()
{
    const quint32 seed = QRandomGenerator::global()->generate();
    std::mt19937 random(seed);
    const auto below = [&](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    const auto part = [&] { return QRect(below(450) - 20, below(330) - 20, 1 + below(90), 1 + below(60)); };
    auto drawing = std::make_shared<StrokeDrawing>(frame);
    QTransform formerTransform;
    for (int step = 0; step < 300; ++step) {
        switch (below(12)) {
        case 0:
        case 1:
            drawing->removeLastStroke();
            break;
        case 2: {
            const QRect cut = part();
            drawing->cutPath(rectPath(cut.x(), cut.y(), cut.width(), cut.height()));
            break;
        }
        case 3:
            formerTransform = drawing->strokes().transform();
            drawing->resize(below(2) == 0 ? frame : QSize(257, 190), MR::FitMode::FitModeStretch);
            break;
        case 4: {
            QByteArray bytes;
            QDataStream out(&bytes, QIODevice::WriteOnly);
            QVERIFY(drawing->write(out));
            QDataStream in(bytes);
            QVERIFY(drawing->read(in));
            break;
        }
        case 5:
            drawing = std::dynamic_pointer_cast<StrokeDrawing>(drawing->clone());
            break;
        case 6:
            drawing->restoreTransform(formerTransform);
            break;
        case 7:
            drawing->addStroke(eraser(part().topLeft(), part().center()));
            break;
        default: {
            const QRect rect = part();
            QImage image(rect.size(), QImage::Format_Alpha8);
            image.fill(1 + below(255));
            drawing->addStroke(std::make_unique<BitmapStroke>(image, rect));
        }
        }
        if (below(3) != 0)
            continue;
        const QImage &image = drawing->image();
        QImage mapped(image.size(), QImage::Format_Alpha8);
        mapped.fill(0);
        drawing->ink().forEachRun(image.rect(), [&](QRect run) {
            for (int y = run.top(); y <= run.bottom(); ++y)
                std::fill_n(mapped.scanLine(y) + run.left(), run.width(), uchar(1));
        });
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.constScanLine(y)[x] != 0 && mapped.constScanLine(y)[x] == 0)
                    QFAIL(qPrintable(QString("seed %1, step %2 at %3, %4").arg(seed).arg(step).arg(x).arg(y)));
            }
        }
    }
}

void TestStrokeDrawing::changesStayInsideTheTouchedRect()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.rebuild(QRect(QPoint(0, 0), frame));
    const auto isChangedOutside = [&](const QImage &before) {
        for (int y = 0; y < frame.height(); ++y) {
            for (int x = 0; x < frame.width(); ++x) {
                if (!drawing.touchedRect().contains(x, y) &&
                    coverageAt(before, x, y) != coverageAt(drawing.image(), x, y))
                    return true;
            }
        }
        return false;
    };
    for (int step = 0; step < 60; ++step) {
        const double scale = 0.3 + 0.043 * step;
        auto scaled = std::make_unique<CompoundStroke>();
        if (step % 2 == 0)
            scaled->append(pen({40.3, 30.6 + step}, {110.2, 30.6 + step}));
        else
            scaled->append(drawnStroke(m_pencil, frame, {40.3, 60.5}, {90.2, 60.5}));
        scaled->setTransform(QTransform::fromScale(scale, scale));
        const QImage before = drawing.image().copy();
        QVERIFY(drawing.addStroke(std::move(scaled)));
        QVERIFY(!isChangedOutside(before));
        QVERIFY(QRect(QPoint(0, 0), frame).contains(drawing.touchedRect()));
        const QImage after = drawing.image().copy();
        QVERIFY(drawing.removeLastStroke());
        QVERIFY(!isChangedOutside(after));
    }
}

void TestStrokeDrawing::cutRemovesWhatIsInside()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.cutPath(rectPath(150, 50, 100, 100));
    QVERIFY(coverageAt(drawing.image(), 100, 100) > 240);
    QCOMPARE(coverageAt(drawing.image(), 200, 100), 0);
    QVERIFY(coverageAt(drawing.image(), 300, 100) > 240);
}

void TestStrokeDrawing::strokeAcrossAnOldCutIsFullyVisible()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.cutPath(rectPath(150, 50, 100, 100));
    drawing.addStroke(pen({50, 130}, {350, 130}));
    QVERIFY(coverageAt(drawing.image(), 200, 130) > 240);
    drawing.rebuild(QRect(QPoint(0, 0), frame));
    QVERIFY(coverageAt(drawing.image(), 200, 130) > 240);
    QCOMPARE(coverageAt(drawing.image(), 200, 100), 0);
}

void TestStrokeDrawing::cutOfEverythingLeavesNoImage()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.cutPath(rectPath(0, 0, 403, 301));
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
}

void TestStrokeDrawing::extractLeavesTheDrawingAlone()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const QImage before = drawing.image().copy();
    const auto part = drawing.extract(rectPath(150, 50, 100, 100));
    QCOMPARE(part->count(), 1);
    QCOMPARE(part->boundingRect(), QRect(QPoint(150, 94), QPoint(249, 105)));
    QCOMPARE(largestDifference(drawing.image(), before), 0);
    QCOMPARE(drawing.strokes().count(), 1);
}

void TestStrokeDrawing::cutAndExtractAddUpToTheWhole()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 180}));
    drawing.rebuild(QRect(QPoint(0, 0), frame));
    const QImage before = drawing.image().copy();
    const QPainterPath path = rectPath(150, 50, 100, 200);
    auto part = drawing.extract(path);
    drawing.cutPath(path);
    drawing.addStroke(std::move(part));
    QVERIFY(largestDifference(drawing.image(), before) <= 1);
}

void TestStrokeDrawing::mergeAddsTheOthersStrokes()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    StrokeDrawing other(frame);
    other.addStroke(pen({50, 200}, {350, 200}));
    drawing.merge(other);
    QCOMPARE(drawing.strokes().count(), 2);
    QVERIFY(coverageAt(drawing.image(), 200, 100) > 240);
    QVERIFY(coverageAt(drawing.image(), 200, 200) > 240);
    QCOMPARE(other.strokes().count(), 1);
}

void TestStrokeDrawing::mergeOfAnImageDoesNothing()
{
    StrokeDrawing drawing(frame);
    drawing.merge(ImageDrawing(QImage(4, 4, QImage::Format_RGB32)));
    QVERIFY(drawing.isEmpty());
}

void TestStrokeDrawing::resizeFitsTheContent()
{
    StrokeDrawing drawing(QSize(100, 100));
    drawing.addStroke(drawnStroke(m_pen, {100, 100}, {20, 50}, {80, 50}));
    drawing.resize({400, 200}, MR::FitMode::FitModeKeepAspect);
    QCOMPARE(drawing.image().size(), QSize(400, 200));
    // Twice the size, and 100 further to the right.
    QVERIFY(coverageAt(drawing.image(), 200, 100) > 240);
    QVERIFY(coverageAt(drawing.image(), 200, 92) > 200);
    QCOMPARE(coverageAt(drawing.image(), 200, 88), 0);
    QCOMPARE(coverageAt(drawing.image(), 120, 100), 0);
    QVERIFY(coverageAt(drawing.image(), 145, 100) > 240);
}

void TestStrokeDrawing::restoredTransformBringsThePixelsBack()
{
    StrokeDrawing drawing(QSize(101, 67));
    drawing.addStroke(drawnStroke(m_pen, {101, 67}, {20, 20}, {80, 50}));
    const QImage before = drawing.image();
    const QTransform transform = drawing.strokes().transform();
    drawing.resize({33, 49}, MR::FitMode::FitModeStretch);
    drawing.resize({101, 67}, MR::FitMode::FitModeStretch);
    drawing.setCopyId(QUuid::createUuid());
    drawing.restoreTransform(transform * QTransform::fromTranslate(5, 0));
    QVERIFY(drawing.copyId().isNull());
    QVERIFY(drawing.image() != before);
    drawing.restoreTransform(transform);
    QCOMPARE(drawing.strokes().transform(), transform);
    QCOMPARE(drawing.image(), before);
    // Nothing is made anew for the transform that it has.
    const qint64 key = drawing.image().cacheKey();
    drawing.restoreTransform(transform);
    QCOMPARE(drawing.image().cacheKey(), key);
}

void TestStrokeDrawing::resizeOfAnEmptyDrawingOnlyTakesTheSize()
{
    StrokeDrawing drawing(QSize(100, 100));
    drawing.resize({400, 200}, MR::FitMode::FitModeStretch);
    QCOMPARE(drawing.size(), QSize(400, 200));
    QVERIFY(drawing.image().isNull());
}

void TestStrokeDrawing::undoAfterResizingAnEmptyDrawingLeavesItEmpty()
{
    StrokeDrawing drawing(QSize(100, 100));
    drawing.resize(frame, MR::FitMode::FitModeStretch);
    QVERIFY(drawing.addStroke(pen({50, 100}, {350, 100})));
    QCOMPARE(drawing.strokes().at(0).type(), Stroke::Type::Single);
    QVERIFY(drawing.removeLastStroke());
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
    QVERIFY(!drawing.addStroke(eraser({10, 10}, {100, 100})));
    QVERIFY(!drawing.removeLastStroke());
}

void TestStrokeDrawing::undoWalksBackThroughAResize()
{
    StrokeDrawing drawing(QSize(100, 100));
    drawing.addStroke(drawnStroke(m_pen, {100, 100}, {20, 20}, {80, 20}));
    drawing.addStroke(drawnStroke(m_pen, {100, 100}, {20, 60}, {80, 60}));
    drawing.resize({200, 200}, MR::FitMode::FitModeStretch);
    drawing.addStroke(drawnStroke(m_pen, {200, 200}, {20, 180}, {180, 180}));
    QVERIFY(drawing.removeLastStroke());
    QCOMPARE(coverageAt(drawing.image(), 100, 180), 0);
    QVERIFY(coverageAt(drawing.image(), 100, 120) > 240);
    const auto second = drawing.removeLastStroke();
    QVERIFY(second);
    QCOMPARE(second->type(), Stroke::Type::Single);
    QCOMPARE(coverageAt(drawing.image(), 100, 120), 0);
    QVERIFY(coverageAt(drawing.image(), 100, 40) > 240);
    QVERIFY(drawing.removeLastStroke());
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
}

void TestStrokeDrawing::removingUnderATransformRestoresThePixels()
{
    StrokeDrawing drawing(QSize(100, 100));
    drawing.addStroke(drawnStroke(m_pen, {100, 100}, {20, 20}, {80, 80}));
    drawing.addStroke(drawnStroke(m_pen, {100, 100}, {20, 80}, {80, 20}));
    drawing.resize({301, 203}, MR::FitMode::FitModeKeepAspect);
    QVERIFY(drawing.removeLastStroke());
    const QImage left = drawing.image().copy();
    drawing.rebuild(QRect(0, 0, 301, 203));
    QVERIFY(largestDifference(left, drawing.image()) <= 1);
    // Twice the size and 49 to the right, about: the one that was taken off ran through the lower left.
    QCOMPARE(coverageAt(left, 99, 152), 0);
    QVERIFY(coverageAt(left, 99, 50) > 240);
}

void TestStrokeDrawing::resizeAndMergeResetTheCopyIdentifier()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.setCopyId(QUuid::createUuid());
    drawing.resize({200, 150}, MR::FitMode::FitModeStretch);
    QVERIFY(drawing.copyId().isNull());
    StrokeDrawing other(frame);
    other.addStroke(pen({50, 200}, {350, 200}));
    drawing.setCopyId(QUuid::createUuid());
    drawing.merge(other);
    QVERIFY(drawing.copyId().isNull());
}

void TestStrokeDrawing::emptyStrokeIsRefused_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("single") << int(Stroke::Type::Single);
    QTest::newRow("compound") << int(Stroke::Type::Compound);
    QTest::newRow("bitmap") << int(Stroke::Type::Bitmap);
}

void TestStrokeDrawing::emptyStrokeIsRefused()
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

void TestStrokeDrawing::mergeOfAnEmptyDrawingChangesNothing()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const QUuid id = QUuid::createUuid();
    drawing.setCopyId(id);
    StrokeDrawing other(QSize(100, 100));
    other.resize(frame, MR::FitMode::FitModeStretch);
    drawing.merge(other);
    QCOMPARE(drawing.strokes().count(), 1);
    QCOMPARE(drawing.copyId(), id);
}

void TestStrokeDrawing::storedStrokeKnowsNoTool()
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

void TestStrokeDrawing::cloneIsIndependent()
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

void TestStrokeDrawing::indexedViewSharesTheBytes()
{
    QImage coverage = blankCoverage(frame);
    coverage.scanLine(300)[402] = 9;
    const QImage view = indexedView(coverage, colorTable(Qt::blue));
    QCOMPARE(view.constBits(), coverage.constBits());
    QCOMPARE(view.bytesPerLine(), coverage.bytesPerLine());
    QCOMPARE(view.pixel(402, 300), qRgba(0, 0, 255, 9));
}

void TestStrokeDrawing::paintShowsCoverageInTheTablesColour()
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

void TestStrokeDrawing::paintStaysWithinTheRect()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const QImage paper = painted(drawing, QRect(190, 90, 21, 30));
    QCOMPARE(paper.pixelColor(189, 100), QColor(Qt::white));
    QVERIFY(paper.pixelColor(190, 100).green() < 15);
    QVERIFY(paper.pixelColor(210, 100).green() < 15);
    QCOMPARE(paper.pixelColor(211, 100), QColor(Qt::white));
}

void TestStrokeDrawing::penInProgressShowsOnTop()
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

void TestStrokeDrawing::penInProgressShowsOnAnEmptyDrawing()
{
    const StrokeDrawing drawing(frame);
    const auto active = pen({50, 200}, {350, 200});
    QVERIFY(painted(drawing, QRect(QPoint(0, 0), frame), active.get()).pixelColor(200, 200).green() < 15);
    const auto erasing = eraser({50, 200}, {350, 200});
    QCOMPARE(painted(drawing, QRect(QPoint(0, 0), frame), erasing.get()).pixelColor(200, 200), QColor(Qt::white));
    QVERIFY(drawing.image().isNull());
}

void TestStrokeDrawing::eraserInProgressTakesAway()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    const auto active = eraser({200, 50}, {200, 150});
    const QImage paper = painted(drawing, QRect(QPoint(0, 0), frame), active.get());
    QVERIFY(paper.pixelColor(200, 100).green() > 240);
    QVERIFY(paper.pixelColor(100, 100).green() < 15);
}

void TestStrokeDrawing::thumbnailNeedsSizeTableAndContent()
{
    StrokeDrawing drawing(frame);
    QVERIFY(drawing.thumbnail({40, 30}, colorTable(Qt::red)).isNull());
    drawing.addStroke(pen({50, 100}, {350, 100}));
    QVERIFY(drawing.thumbnail({}, colorTable(Qt::red)).isNull());
    QVERIFY(drawing.thumbnail({40, 30}, {}).isNull());
    QVERIFY(!drawing.thumbnail({40, 30}, colorTable(Qt::red)).isNull());
}

void TestStrokeDrawing::thumbnailKeepsColourAndRaisesOpacity()
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

void TestStrokeDrawing::thumbnailIsKeptByColourUntilAChange()
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

QTEST_MAIN(TestStrokeDrawing)
#include "tst_strokedrawing.moc"
