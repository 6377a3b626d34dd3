#include "coverageprobes.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/render/vertexstreams.h"
#include "libmodel/strokes/controlpoint.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/segment.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/pentool.h"
#include "strokemaking.h"
#include "support/glfixture.h"
#include "support/penstreams.h"

#include <QPainter>
#include <QPainterPath>
#include <QTransform>
#include <QtTest>

using namespace Model;

class tst_SingleStroke : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer({800, 600})); }
    void kindComesFromTheTool();
    void strokeWithoutToolIsAMarkerPen();
    void imageIsBlankAndOfTheGivenSize();
    void boundsAreGrownByAPixel();
    void nearnessIsBelowOnePixel();
    void pathRunsThroughTheSegments();
    void cloneIsIndependentAndSharesSegments();
    void cutInsideDropsOnlyWhatIsWhollyInside();
    void cutOutsideDropsOnlyWhatIsWhollyOutside();
    void latestSegmentNeedsImageAndSegments();
    void latestSegmentReportsItsRectSampleAndTail();
    void latestSegmentOffTheImageIsClipped();
    void liveImageEqualsTheRenderedStroke_data();
    void liveImageEqualsTheRenderedStroke();
    void segmentAfterACornerBringsItsOwnStartCap();
    void leavingOutDoubleCapsChangesNoPixel_data();
    void leavingOutDoubleCapsChangesNoPixel();
    void renderReturnsTheDirtyRectOrNull();
    void rotatedStrokeBesideTheRectIsNull();
    void renderInPartsEqualsTheWhole();
    void liveCornerShowsItsSecondLegOnly();
    void tailIsDrawnForPensOnly();
    void tailRectIsGrownByTwiceTheRadius();
    void tailTakesTheOpacityOfTheLastSample();
};

namespace {

const QSize frame(800, 600);

QImage rendered(const SingleStroke &stroke, QRect rect)
{
    QImage image = blankCoverage(frame);
    stroke.render(image, rect, QTransform(), QPoint(), 1.0);
    return image;
}

} // namespace

void tst_SingleStroke::kindComesFromTheTool()
{
    const TestPen brush({}, Tool::PenType::Brush);
    const SingleStroke pen(&brush);
    QVERIFY(pen.isPen() && !pen.isEraser());
    QCOMPARE(pen.penType(), Tool::PenType::Brush);
    const TestEraser vinyl({}, Tool::EraserType::VinylEraser);
    const SingleStroke eraser(&vinyl);
    QVERIFY(eraser.isEraser() && !eraser.isPen());
    QCOMPARE(eraser.eraserType(), Tool::EraserType::VinylEraser);
}

void tst_SingleStroke::strokeWithoutToolIsAMarkerPen()
{
    const SingleStroke stroke(nullptr);
    QVERIFY(stroke.isPen());
    QCOMPARE(stroke.penType(), Tool::PenType::Marker);
    QCOMPARE(stroke.eraserType(), Tool::EraserType::RubberEraser);
    QVERIFY(stroke.isEmpty());
    QVERIFY(stroke.boundingRect().isNull());
    QVERIFY(stroke.toPath().isEmpty());
}

void tst_SingleStroke::imageIsBlankAndOfTheGivenSize()
{
    const TestPen pen;
    const SingleStroke stroke({101, 7}, &pen);
    QCOMPARE(stroke.image().size(), QSize(101, 7));
    QCOMPARE(stroke.image().format(), QImage::Format_Alpha8);
    QVERIFY(inkOf(stroke.image()).isNull());
    QVERIFY(SingleStroke(&pen).image().isNull());
}

void tst_SingleStroke::boundsAreGrownByAPixel()
{
    const TestPen pen({3, 3, 1, 1});
    SingleStroke stroke(&pen);
    stroke.addSample(sampleAt(50, 60));
    // The disc reaches from 47 to 53 and from 57 to 63.
    QCOMPARE(stroke.boundingRect(), QRect(46, 56, 8, 8));
}

void tst_SingleStroke::nearnessIsBelowOnePixel()
{
    const TestPen pen;
    SingleStroke stroke(&pen);
    QVERIFY(!stroke.isNearLastSample(sampleAt(0, 0)));
    stroke.addSample(sampleAt(10, 10));
    QVERIFY(stroke.isNearLastSample(sampleAt(10.7, 10.7)));
    QVERIFY(!stroke.isNearLastSample(sampleAt(11, 10)));
}

void tst_SingleStroke::pathRunsThroughTheSegments()
{
    const TestPen pen;
    const auto stroke = straightStroke(pen, {10, 10}, {110, 10});
    const QPainterPath path = stroke->toPath();
    QCOMPARE(QPointF(path.elementAt(0)), QPointF(10, 10));
    QVERIFY(std::abs(path.currentPosition().x() - 110) < 1e-9);
    QVERIFY(std::abs(path.length() - 100) < 1e-6);
}

void tst_SingleStroke::cloneIsIndependentAndSharesSegments()
{
    const TestPen pen;
    auto stroke = straightStroke(pen, {10, 10}, {110, 10});
    const auto copy = stroke->clone();
    const auto &single = static_cast<const SingleStroke &>(*copy);
    QCOMPARE(single.segments().front().get(), stroke->segments().front().get());
    const size_t count = single.segments().size();
    stroke->addSample(sampleAt(300, 300));
    QCOMPARE(single.segments().size(), count);
    QCOMPARE(single.samples().size(), size_t(2));
}

void tst_SingleStroke::cutInsideDropsOnlyWhatIsWhollyInside()
{
    const TestPen pen;
    auto stroke = straightStroke(pen, {10, 10}, {110, 10});
    QVERIFY(stroke->cutInside(rectPath(50, 0, 200, 50)));
    QVERIFY(!stroke->isEmpty());
    QVERIFY(stroke->cutInside(rectPath(0, 0, 200, 50)));
    QVERIFY(stroke->isEmpty());
}

void tst_SingleStroke::cutOutsideDropsOnlyWhatIsWhollyOutside()
{
    const TestPen pen;
    auto stroke = straightStroke(pen, {10, 10}, {110, 10});
    QVERIFY(stroke->cutOutside(rectPath(100, 0, 50, 50)));
    QVERIFY(!stroke->isEmpty());
    QVERIFY(stroke->cutOutside(rectPath(0, 0, 200, 200)));
    QVERIFY(!stroke->isEmpty());
    QVERIFY(stroke->cutOutside(rectPath(200, 200, 50, 50)));
    QVERIFY(stroke->isEmpty());
    QVERIFY(stroke->boundingRect().isNull());
}

void tst_SingleStroke::latestSegmentNeedsImageAndSegments()
{
    const TestPen pen;
    SingleStroke withoutImage(&pen);
    withoutImage.addSample(sampleAt(10, 10));
    QVERIFY(withoutImage.renderLatestSegment().isNull());
    SingleStroke withoutSegments(frame, &pen);
    QVERIFY(withoutSegments.renderLatestSegment().isNull());
}

void tst_SingleStroke::latestSegmentReportsItsRectSampleAndTail()
{
    const TestPen pen({3, 3, 1, 1});
    SingleStroke stroke(frame, &pen);
    stroke.addSample(sampleAt(50, 60));
    QCOMPARE(stroke.renderLatestSegment(), QRect(46, 56, 8, 8));
    stroke.addSample(sampleAt(150, 60));
    // The line from 50 to 110 with its radius and rim, and the sample at 150 with three pixels around it.
    const QRect changed = stroke.renderLatestSegment();
    QCOMPARE(changed, QRect(QPoint(46, 56), QPoint(153, 63)));
    QVERIFY(changed.contains(inkOf(stroke.image())));
    QImage paper(frame, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&paper);
    stroke.drawTail(&painter, Qt::black, paper.rect(), 10);
    painter.end();
    // The tail runs from 110 to 150 at y = 60; 20 more on each side.
    QCOMPARE(stroke.renderLatestSegment(), changed | QRect(QPoint(90, 40), QPoint(169, 79)));
}

void tst_SingleStroke::latestSegmentOffTheImageIsClipped()
{
    const TestPen pen({3, 3, 1, 1});
    SingleStroke stroke({100, 100}, &pen);
    stroke.addSample(sampleAt(98, 50));
    QVERIFY(QRect(0, 0, 100, 100).contains(stroke.renderLatestSegment()));
    stroke.addSample(sampleAt(900000, 50));
    QVERIFY(QRect(0, 0, 100, 100).contains(stroke.renderLatestSegment()));
    QCOMPARE(coverageAt(stroke.image(), 99, 50) > 200, true);
}

void tst_SingleStroke::liveImageEqualsTheRenderedStroke_data()
{
    QTest::addColumn<int>("pen");
    QTest::newRow("pencil") << 0;
    QTest::newRow("marker") << 1;
    QTest::newRow("brush") << 2;
}

void tst_SingleStroke::liveImageEqualsTheRenderedStroke()
{
    QFETCH(int, pen);
    const TestPen tool({1, 9, 0.2, 1}, Tool::PenType(pen));
    SingleStroke stroke(frame, &tool);
    for (const Sample &sample : TestSupport::slowCurve().samples) {
        stroke.addSample(sample);
        stroke.renderLatestSegment();
    }
    QVERIFY(stroke.segments().size() > 50);
    // Rounding in the vertex shader differs with the position of the piece in its image.
    const int difference = largestDifference(stroke.image(), rendered(stroke, QRect(QPoint(), frame)));
    QVERIFY2(difference <= 3, qPrintable(QString::number(difference)));
}

void tst_SingleStroke::segmentAfterACornerBringsItsOwnStartCap()
{
    const TestPen pen({6, 6, 1, 1}, Tool::PenType::Marker);
    SingleStroke stroke(frame, &pen);
    for (const double x : {50.0, 100.0, 150.0, 200.0}) {
        stroke.addSample(sampleAt(x, 100));
        stroke.renderLatestSegment();
    }
    const size_t before = stroke.segments().size();
    stroke.addSample(sampleAt(100, 101));
    // The leg up to the turn at 200 is not drawn on its own; the line back from there is the newest segment.
    QCOMPARE(stroke.segments().size(), before + 2);
    QCOMPARE(coverageAt(stroke.image(), 203, 100), 0);
    stroke.renderLatestSegment();
    // The cap's disc reaches to 206.
    QVERIFY(coverageAt(stroke.image(), 203, 100) > 200);
}

void tst_SingleStroke::leavingOutDoubleCapsChangesNoPixel_data()
{
    QTest::addColumn<double>("largestSize");
    QTest::newRow("thin") << 2.0;
    QTest::newRow("middling") << 18.0;
    QTest::newRow("thick") << 180.0;
}

void tst_SingleStroke::leavingOutDoubleCapsChangesNoPixel()
{
    QFETCH(double, largestSize);
    PenTool marker(Tool::PenType::Marker);
    marker.setSizeRangeLimits(1, largestSize);
    marker.setSizeRangePercent(0, 100);
    marker.setOpacityRangeLimits(0.2, 1);
    marker.setOpacityRangePercent(0, 100);
    SingleStroke stroke(&marker);
    for (const Sample &sample : TestSupport::slowCurve().samples)
        stroke.addSample(sample);
    stroke.finish();

    VertexStreams vertices;
    for (const auto &segment : stroke.segments()) {
        segment->addStartCap(vertices);
        segment->addBody(vertices);
        segment->addEndCap(vertices);
    }
    QImage expected = blankCoverage(frame);
    OffscreenRenderer::instance()->renderPen(expected, Tool::PenType::Marker, {}, 1.0F, expected.rect(), {}, vertices);
    const QImage actual = rendered(stroke, QRect(QPoint(), frame));
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x)
            QVERIFY(std::abs(int(actual.constScanLine(y)[x]) - int(expected.constScanLine(y)[x])) <= 1);
    }
}

void tst_SingleStroke::renderReturnsTheDirtyRectOrNull()
{
    const TestPen pen;
    const auto stroke = straightStroke(pen, {100, 100}, {200, 100});
    QImage image = blankCoverage(frame);
    const QRect hit(90, 90, 30, 30);
    QCOMPARE(stroke->render(image, hit, {}, {}, 1.0), hit);
    QVERIFY(hit.contains(inkOf(image)));
    QVERIFY(stroke->render(image, QRect(300, 300, 30, 30), {}, {}, 1.0).isNull());
    QVERIFY(SingleStroke(&pen).render(image, hit, {}, {}, 1.0).isNull());
}

void tst_SingleStroke::rotatedStrokeBesideTheRectIsNull()
{
    const TestPen pen;
    const auto stroke = straightStroke(pen, {100, 100}, {300, 100});
    QImage image = blankCoverage(frame);
    // Turned down by 45 degrees around its start, the line leaves two corners of its bounds free.
    const QTransform turned =
        QTransform::fromTranslate(-100, -100) * QTransform().rotate(45) * QTransform::fromTranslate(100, 100);
    QVERIFY(stroke->render(image, QRect(200, 100, 20, 20), turned, {}, 1.0).isNull());
    QCOMPARE(stroke->render(image, QRect(160, 160, 20, 20), turned, {}, 1.0), QRect(160, 160, 20, 20));
    QVERIFY(coverageAt(image, 170, 170) > 200);
}

void tst_SingleStroke::renderInPartsEqualsTheWhole()
{
    const TestPen pencil({1, 9, 0.2, 1}, Tool::PenType::Pencil);
    SingleStroke stroke(&pencil);
    for (const Sample &sample : TestSupport::spiral().samples)
        stroke.addSample(sample);
    const QImage whole = rendered(stroke, QRect(QPoint(), frame));
    QImage parts = blankCoverage(frame);
    for (int y = 0; y < frame.height(); y += 100) {
        for (int x = 0; x < frame.width(); x += 97)
            stroke.render(parts, QRect(x, y, 97, 100), {}, {}, 1.0);
    }
    // The same up to the last bit of what OpenGL interpolates.
    QVERIFY(largestDifference(whole, parts) <= 1);
}

void tst_SingleStroke::liveCornerShowsItsSecondLegOnly()
{
    // To the right, and back to the left and far down: the leg up to the turn at x = 300 is never the newest segment.
    const TestPen pen({3, 3, 1, 1});
    SingleStroke stroke(frame, &pen);
    for (const QPointF point : {QPointF(100, 100), QPointF(300, 100), QPointF(100, 400)}) {
        stroke.addSample({point, 1.0, 0});
        stroke.renderLatestSegment();
    }
    QCOMPARE(stroke.segments().size(), size_t(4));
    // The first move ends at x = 220.
    QVERIFY(coverageAt(stroke.image(), 150, 100) > 240);
    QCOMPARE(coverageAt(stroke.image(), 260, 100), 0);
    QVERIFY(coverageAt(stroke.image(), 240, 190) > 240);
    QVERIFY(coverageAt(rendered(stroke, QRect(QPoint(), frame)), 260, 100) > 240);
}

void tst_SingleStroke::tailIsDrawnForPensOnly()
{
    const auto inkOfTail = [](SingleStroke &stroke, bool isExpected) {
        QImage paper(100, 100, QImage::Format_ARGB32_Premultiplied);
        paper.fill(Qt::transparent);
        QPainter painter(&paper);
        const QRect touched = stroke.drawTail(&painter, Qt::black, paper.rect(), 1);
        painter.end();
        const QRect ink = inkOf(paper.convertToFormat(QImage::Format_Alpha8));
        return touched.isEmpty() != isExpected && ink.isNull() != isExpected && touched.contains(ink) == isExpected;
    };
    const TestPen pen({2, 2, 1, 1});
    SingleStroke drawn(&pen);
    SingleStroke empty(&pen);
    const TestEraser rubber({2, 2, 1, 1});
    SingleStroke eraser(&rubber);
    for (SingleStroke *stroke : {&drawn, &eraser}) {
        stroke->addSample(sampleAt(10, 10));
        stroke->addSample(sampleAt(90, 10));
    }
    QVERIFY(inkOfTail(drawn, true));
    QVERIFY(inkOfTail(eraser, false));
    QVERIFY(inkOfTail(empty, false));
}

void tst_SingleStroke::tailRectIsGrownByTwiceTheRadius()
{
    const TestPen pen;
    SingleStroke stroke(&pen);
    stroke.addSample(sampleAt(100, 100));
    stroke.addSample(sampleAt(50, 100));
    // The line ends at (70, 100), the sample is at (50, 100); 3 to each side.
    QImage paper(200, 200, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&paper);
    QCOMPARE(stroke.drawTail(&painter, Qt::black, paper.rect(), 1.5), QRect(QPoint(47, 97), QPoint(72, 102)));
    QCOMPARE(stroke.drawTail(&painter, Qt::black, QRect(0, 0, 60, 100), 1.5), QRect(QPoint(47, 97), QPoint(59, 99)));
}

void tst_SingleStroke::tailTakesTheOpacityOfTheLastSample()
{
    const TestPen pen({2, 2, 0.2, 0.6});
    SingleStroke stroke(&pen);
    stroke.addSample(sampleAt(10, 50, 0.5));
    stroke.addSample(sampleAt(190, 50, 0.5));
    QImage paper(200, 100, QImage::Format_ARGB32_Premultiplied);
    paper.fill(Qt::transparent);
    QPainter painter(&paper);
    const QPen before = painter.pen();
    stroke.drawTail(&painter, Qt::red, paper.rect(), 4);
    QCOMPARE(painter.pen(), before);
    painter.end();
    int strongest = 0;
    for (int x = 120; x < 190; ++x)
        strongest = std::max(strongest, qAlpha(paper.pixel(x, 50)));
    // 0.2 + 0.4 * 0.5 = 0.4 of 255 is 102.
    QVERIFY(std::abs(strongest - 102) <= 1);
    QCOMPARE(coverageAt(paper.convertToFormat(QImage::Format_Alpha8), 60, 50), 0);
}

QTEST_MAIN(tst_SingleStroke)
#include "tst_singlestroke.moc"
