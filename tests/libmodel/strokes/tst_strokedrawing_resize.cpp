// A drawing of another size: its content, its transform, and the way back.

#include "coverageprobes.h"
#include "libmodel/strokes/compoundstroke.h"
#include "strokedrawingfixture.h"
#include "support/glfixture.h"

#include <QDataStream>
#include <QtTest>

using namespace Model;

class tst_StrokeDrawingResize : public StrokeDrawingFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void resizeFitsTheContent();
    void restoredTransformBringsThePixelsBack();
    void resizeOfAnEmptyDrawingOnlyTakesTheSize();
    void undoAfterResizingAnEmptyDrawingLeavesItEmpty();
    void undoWalksBackThroughAResize();
    void removingUnderATransformRestoresThePixels();
    void resizeAndMergeResetTheCopyIdentifier();
    void contentScaledWithoutEndStaysReadable();
};

void tst_StrokeDrawingResize::resizeFitsTheContent()
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

void tst_StrokeDrawingResize::restoredTransformBringsThePixelsBack()
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

void tst_StrokeDrawingResize::resizeOfAnEmptyDrawingOnlyTakesTheSize()
{
    StrokeDrawing drawing(QSize(100, 100));
    drawing.resize({400, 200}, MR::FitMode::FitModeStretch);
    QCOMPARE(drawing.size(), QSize(400, 200));
    QVERIFY(drawing.image().isNull());
}

void tst_StrokeDrawingResize::undoAfterResizingAnEmptyDrawingLeavesItEmpty()
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

void tst_StrokeDrawingResize::undoWalksBackThroughAResize()
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

void tst_StrokeDrawingResize::removingUnderATransformRestoresThePixels()
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

void tst_StrokeDrawingResize::resizeAndMergeResetTheCopyIdentifier()
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

void tst_StrokeDrawingResize::contentScaledWithoutEndStaysReadable()
{
    StrokeDrawing drawing(QSize(1, 1));
    drawing.addStroke(drawnStroke(m_pen, {1, 1}, {0, 0}, {1, 1}));
    // Each time 8192 times as wide; five times would be 10^19.
    for (int i = 0; i < 5; ++i) {
        drawing.resize({8192, 1}, MR::FitMode::FitModeStretch);
        drawing.resize({1, 1}, MR::FitMode::FitModeIgnore);
    }
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setFloatingPointPrecision(QDataStream::SinglePrecision);
    QVERIFY(drawing.write(out));
    StrokeDrawing read{QSize()};
    QDataStream in(bytes);
    in.setFloatingPointPrecision(QDataStream::SinglePrecision);
    QVERIFY(read.read(in));
    QCOMPARE(read.strokes().count(), 1);
}

QTEST_MAIN(tst_StrokeDrawingResize)
#include "tst_strokedrawing_resize.moc"
