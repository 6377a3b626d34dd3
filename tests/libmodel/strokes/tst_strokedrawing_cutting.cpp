// Parts cut out of a drawing and taken from it, and drawings merged.

#include "coverageprobes.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/imagedrawing.h"
#include "strokedrawingfixture.h"
#include "support/glfixture.h"

#include <QtTest>

using namespace Model;

class tst_StrokeDrawingCutting : public StrokeDrawingFixture
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void cutRemovesWhatIsInside();
    void strokeAcrossAnOldCutIsFullyVisible();
    void cutOfEverythingLeavesNoImage();
    void extractLeavesTheDrawingAlone();
    void cutAndExtractAddUpToTheWhole();
    void mergeAddsTheOthersStrokes();
    void mergeOfAnImageDoesNothing();
    void mergeOfAnEmptyDrawingChangesNothing();
};

void tst_StrokeDrawingCutting::cutRemovesWhatIsInside()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.cutPath(rectPath(150, 50, 100, 100));
    QVERIFY(coverageAt(drawing.image(), 100, 100) > 240);
    QCOMPARE(coverageAt(drawing.image(), 200, 100), 0);
    QVERIFY(coverageAt(drawing.image(), 300, 100) > 240);
}

void tst_StrokeDrawingCutting::strokeAcrossAnOldCutIsFullyVisible()
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

void tst_StrokeDrawingCutting::cutOfEverythingLeavesNoImage()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(pen({50, 100}, {350, 100}));
    drawing.cutPath(rectPath(0, 0, 403, 301));
    QVERIFY(drawing.isEmpty());
    QVERIFY(drawing.image().isNull());
}

void tst_StrokeDrawingCutting::extractLeavesTheDrawingAlone()
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

void tst_StrokeDrawingCutting::cutAndExtractAddUpToTheWhole()
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

void tst_StrokeDrawingCutting::mergeAddsTheOthersStrokes()
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

void tst_StrokeDrawingCutting::mergeOfAnImageDoesNothing()
{
    StrokeDrawing drawing(frame);
    drawing.merge(ImageDrawing(QImage(4, 4, QImage::Format_RGB32)));
    QVERIFY(drawing.isEmpty());
}

void tst_StrokeDrawingCutting::mergeOfAnEmptyDrawingChangesNothing()
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

QTEST_MAIN(tst_StrokeDrawingCutting)
#include "tst_strokedrawing_cutting.moc"
