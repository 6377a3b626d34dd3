#include "coverageprobes.h"
#include "libmodel/render/offscreenrenderer.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/strokedrawing.h"
#include "strokemaking.h"
#include "support/glfixture.h"

#include <QtTest>

#include <cmath>
#include <random>

using namespace Model;

// Drawing any part of a drawing anew makes the bytes that drawing all of it has made. Undo relies on that.
class tst_Redrawing : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void partsAreTheBytesOfTheWhole_data() { addSeeds(12); }
    void partsAreTheBytesOfTheWhole();
    void imagesOfPartsAreTheBytesOfTheWhole_data() { addSeeds(12); }
    void imagesOfPartsAreTheBytesOfTheWhole();
    void contentMovedByWholePixelsIsTheSameBytes_data() { addSeeds(8); }
    void contentMovedByWholePixelsIsTheSameBytes();
    void scaledImagesOfPartsAreTheBytesOfTheWhole_data() { addSeeds(6); }
    void scaledImagesOfPartsAreTheBytesOfTheWhole();
    void singleStrokesInPartsAreTheBytesOfTheWhole();
    void bitmapsInPartsAreTheBytesOfTheWhole_data();
    void bitmapsInPartsAreTheBytesOfTheWhole();
    void masksInPartsAreTheBytesOfTheWhole();
    void anotherFramebufferSizeChangesNoBytesButTheGrain();
    void strokesAddedOneByOneAreTheBytesOfARebuild_data() { addSeeds(8); }
    void strokesAddedOneByOneAreTheBytesOfARebuild();
    void takingTheLastStrokeBackGivesTheBytesFromBefore_data() { addSeeds(8); }
    void takingTheLastStrokeBackGivesTheBytesFromBefore();
    void moreLinesThanWindowsAreDrawnInTheirOrder();
    void redrawnLineLooksAsItDidUnderThePen_data();
    void redrawnLineLooksAsItDidUnderThePen();

private:
    static constexpr QSize frame{700, 500};

    static void addSeeds(int count)
    {
        QTest::addColumn<unsigned>("seed");
        for (int seed = 1; seed <= count; ++seed)
            QTest::addRow("seed %d", seed) << unsigned(seed);
    }
};

namespace {

/// Everything that a drawing can hold, at random.
class Maker
{
public:
    Maker(unsigned seed, QSize frame, bool withPencil = true) : m_random(seed), m_frame(frame), m_withPencil(withPencil)
    {
    }

    double between(double least, double most) { return std::uniform_real_distribution<double>(least, most)(m_random); }
    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(m_random); }
    QPointF place() { return {between(-60, m_frame.width() + 60), between(-60, m_frame.height() + 60)}; }

    QRect rect()
    {
        const QPoint topLeft(upTo(m_frame.width() - 1), upTo(m_frame.height() - 1));
        const int most = upTo(4) == 0 ? 3 : 260;
        return QRect(topLeft, QSize(1 + upTo(most), 1 + upTo(most))) & QRect(QPoint(0, 0), m_frame);
    }

    /// A curve of a hand, with pressure; a dot now and then.
    std::unique_ptr<SingleStroke> line()
    {
        const double radius = upTo(5) == 0 ? between(8, 30) : between(0.3, 6);
        const Tip tip{radius, radius * between(1.0, 2.5), 0.5, 1.0};
        std::unique_ptr<DrawingTool> tool;
        if (upTo(3) == 0)
            tool = std::make_unique<TestEraser>(tip, Tool::EraserType(upTo(2)));
        else
            tool = std::make_unique<TestPen>(tip, Tool::PenType(m_withPencil ? upTo(2) : 1 + upTo(1)));
        auto stroke = std::make_unique<SingleStroke>(tool.get());
        QPointF point = place();
        double angle = between(0, 360);
        const double bend = between(-25, 25);
        const double step = between(3, 22);
        const int samples = 1 + upTo(30);
        for (int i = 0; i < samples; ++i) {
            stroke->addSample({point, between(0.2, 1.0), 0});
            angle += bend + between(-10, 10);
            point += QLineF::fromPolar(step, angle).p2();
        }
        stroke->finish();
        return stroke;
    }

    std::unique_ptr<BitmapStroke> bitmap()
    {
        const int scale = 1 + upTo(2);
        const QRect rect(place().toPoint(), QSize(5 + upTo(120), 5 + upTo(120)));
        QImage image = blankCoverage(rect.size() * scale);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.scanLine(y)[x] = uchar((x * 7 + y * 13) % 31 < 15 ? upTo(255) : 0);
        }
        return std::make_unique<BitmapStroke>(image, rect);
    }

    QPainterPath path()
    {
        QPainterPath path;
        const QPointF center = place();
        const double size = between(20, 250);
        if (upTo(2) == 0) {
            path.addEllipse(center, size, size * between(0.3, 1.0));
        } else if (upTo(3) == 0) {
            path.addRect(QRectF(center, QSizeF(size, size * between(0.3, 2.0))));
        } else {
            const int corners = 3 + upTo(40);
            for (int i = 0; i < corners; ++i) {
                const QPointF corner = center + QLineF::fromPolar(size * between(0.5, 1.2), 360.0 * i / corners).p2();
                i == 0 ? path.moveTo(corner) : path.lineTo(corner);
            }
            path.closeSubpath();
        }
        return path;
    }

    QTransform transform()
    {
        const QPointF middle(m_frame.width() / 2.0, m_frame.height() / 2.0);
        QTransform result;
        result.translate(middle.x() + between(-80, 80), middle.y() + between(-80, 80));
        switch (upTo(4)) {
        case 0:
            result.rotate(between(0, 360));
            break;
        case 1:
            result.scale(between(0.3, 2.0), between(0.3, 2.0));
            break;
        case 2:
            result.rotate(between(0, 360));
            result.scale(-between(0.5, 1.5), between(0.5, 1.5));
            break;
        case 3:
            result.scale(2, 2);
            break;
        default:
            break;
        }
        return result.translate(-middle.x(), -middle.y());
    }

    std::unique_ptr<CompoundStroke> compound(int depth)
    {
        auto result = std::make_unique<CompoundStroke>();
        const int children = 3 + upTo(6);
        for (int i = 0; i < children; ++i) {
            const int kind = upTo(9);
            if (kind == 0)
                result->append(bitmap());
            else if (kind <= 2 && depth > 0)
                result->append(compound(depth - 1));
            else
                result->append(line());
        }
        if (upTo(1) == 0)
            result->addCut(path());
        if (upTo(2) == 0)
            result->setKeep(path());
        if (upTo(1) == 0)
            result->setTransform(transform());
        return result;
    }

    std::unique_ptr<CompoundStroke> drawing()
    {
        auto result = std::make_unique<CompoundStroke>();
        for (int i = 0; i < 12; ++i) {
            if (i % 3 == 1)
                result->append(compound(2));
            else
                result->append(line());
        }
        return result;
    }

private:
    std::mt19937 m_random;
    QSize m_frame;
    bool m_withPencil;
};

QImage drawn(const Stroke &stroke, QSize size, const QTransform &transform = {}, QPoint textureOffset = {},
             double scale = 1.0)
{
    QImage image = blankCoverage(size);
    stroke.render(image, image.rect(), transform, textureOffset, scale);
    return image;
}

/// The part \a rect of an image that \a stroke is drawn into, drawn into an image of its own.
QImage drawnPart(const Stroke &stroke, QRect rect, const QTransform &transform = {}, double scale = 1.0)
{
    const QTransform moved = transform * QTransform::fromTranslate(-rect.x(), -rect.y());
    return drawn(stroke, rect.size(), moved, rect.topLeft(), scale);
}

void clear(QImage &image, QRect rect)
{
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        std::fill_n(image.scanLine(y) + rect.left(), rect.width(), uchar(0));
}

QByteArray told(QRect rect, const QImage &actual, const QImage &expected)
{
    return QStringLiteral("%1,%2 %3x%4: differs by up to %5")
        .arg(rect.x())
        .arg(rect.y())
        .arg(rect.width())
        .arg(rect.height())
        .arg(largestDifference(actual, expected))
        .toLocal8Bit();
}

/// Draws many parts of \a stroke into images of their own and compares them with \a whole.
void compareParts(const Stroke &stroke, const QImage &whole, Maker &maker, int count, const QTransform &transform = {},
                  double scale = 1.0)
{
    QVERIFY(!inkOf(whole).isEmpty());
    for (int i = 0; i < count; ++i) {
        const QRect rect = maker.rect();
        const QImage part = drawnPart(stroke, rect, transform, scale);
        const QImage expected = whole.copy(rect);
        QVERIFY2(part == expected, told(rect, part, expected));
    }
}

} // namespace

void tst_Redrawing::partsAreTheBytesOfTheWhole()
{
    QFETCH(unsigned, seed);
    Maker maker(seed, frame);
    const auto drawing = maker.drawing();
    const QImage whole = drawn(*drawing, frame);
    QVERIFY(!inkOf(whole).isEmpty());
    QImage redrawn = whole.copy();
    for (int i = 0; i < 60; ++i) {
        const QRect rect = maker.rect();
        clear(redrawn, rect);
        drawing->render(redrawn, rect, {}, {}, 1.0);
        QVERIFY2(redrawn == whole, told(rect, redrawn, whole));
    }
}

void tst_Redrawing::imagesOfPartsAreTheBytesOfTheWhole()
{
    QFETCH(unsigned, seed);
    Maker maker(seed + 100, frame);
    const auto drawing = maker.drawing();
    compareParts(*drawing, drawn(*drawing, frame), maker, 60);
}

// All of it moves, but for the grain, which stays on the paper: so the pencil is left out, or its paper moved along.
void tst_Redrawing::contentMovedByWholePixelsIsTheSameBytes()
{
    QFETCH(unsigned, seed);
    const bool withPencil = seed % 2 == 0;
    Maker maker(seed + 200, frame, withPencil);
    const auto drawing = maker.drawing();
    const QImage before = drawn(*drawing, frame);
    for (const QPoint shift : {QPoint(1, 0), QPoint(37, -21), QPoint(-113, 64)}) {
        const QTransform moved = QTransform::fromTranslate(shift.x(), shift.y());
        const QImage after = drawn(*drawing, frame, moved, withPencil ? -shift : QPoint(0, 0));
        const QRect common = before.rect() & before.rect().translated(-shift);
        const QImage expected = before.copy(common);
        const QImage actual = after.copy(common.translated(shift));
        QVERIFY2(actual == expected, told(common, actual, expected));
    }
}

void tst_Redrawing::scaledImagesOfPartsAreTheBytesOfTheWhole()
{
    QFETCH(unsigned, seed);
    Maker maker(seed + 300, frame);
    const auto drawing = maker.drawing();
    const QTransform doubled = QTransform::fromTranslate(-150, -100) * QTransform::fromScale(2, 2);
    compareParts(*drawing, drawn(*drawing, frame, doubled, {}, 2.0), maker, 40, doubled, 2.0);
}

void tst_Redrawing::singleStrokesInPartsAreTheBytesOfTheWhole()
{
    Maker maker(5, frame);
    int visible = 0;
    for (int i = 0; i < 40; ++i) {
        const auto line = maker.line();
        const QTransform transform = maker.transform();
        const QImage whole = drawn(*line, frame, transform);
        if (inkOf(whole).isEmpty())
            continue;
        ++visible;
        compareParts(*line, whole, maker, 10, transform);
    }
    QVERIFY(visible > 20);
}

void tst_Redrawing::bitmapsInPartsAreTheBytesOfTheWhole_data()
{
    QTest::addColumn<QTransform>("transform");
    QTest::newRow("in its place") << QTransform();
    QTest::newRow("moved by halves") << QTransform::fromTranslate(3.5, -7.5);
    QTest::newRow("a third") << QTransform::fromScale(1.0 / 3.0, 1.0 / 3.0);
    QTest::newRow("three times") << QTransform::fromScale(3, 3) * QTransform::fromTranslate(-700.3, -300.1);
    QTest::newRow("turned") << QTransform().translate(350, 250).rotate(33.3).translate(-350, -250);
    QTest::newRow("turned by a right angle") << QTransform().translate(350, 250).rotate(90).translate(-350, -250);
    QTest::newRow("mirrored") << QTransform(-1.1, 0, 0, 0.9, 700, 0);
    QTest::newRow("sheared") << QTransform(1, 0.3, -0.4, 1, 50.7, -60.2);
}

void tst_Redrawing::bitmapsInPartsAreTheBytesOfTheWhole()
{
    QFETCH(QTransform, transform);
    Maker maker(6, frame);
    for (const int scale : {1, 2, 3}) {
        QImage image = blankCoverage(QSize(400, 300) * scale);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.scanLine(y)[x] = uchar(maker.upTo(255));
        }
        const BitmapStroke stroke(image, QRect(150, 100, 400, 300));
        compareParts(stroke, drawn(stroke, frame, transform), maker, 40, transform);
    }
}

void tst_Redrawing::masksInPartsAreTheBytesOfTheWhole()
{
    Maker maker(7, frame);
    for (int i = 0; i < 40; ++i) {
        QImage solid(frame, QImage::Format_Alpha8);
        solid.fill(255);
        CompoundStroke compound;
        compound.append(std::make_unique<BitmapStroke>(solid, solid.rect()));
        const bool isCut = i % 2 == 0;
        QTransform transform;
        if (i % 4 > 1)
            transform = maker.transform();
        if (isCut)
            compound.addCut(maker.path());
        else
            compound.setKeep(maker.path());
        const QImage whole = drawn(compound, frame, transform);
        if (!inkOf(whole).isEmpty())
            compareParts(compound, whole, maker, 20, transform);
    }
}

// The grain and the pairs of rows are counted from the lower edge of the framebuffers; nothing else may depend on them.
void tst_Redrawing::anotherFramebufferSizeChangesNoBytesButTheGrain()
{
    Maker maker(8, frame, false);
    const auto drawing = maker.drawing();
    const QImage before = drawn(*drawing, frame);
    for (const QSize size : {QSize(1920, 1080), QSize(333, 212), QSize(64, 64)}) {
        OffscreenRenderer::instance()->resize(size);
        QCOMPARE(OffscreenRenderer::instance()->size(), size);
        const QImage after = drawn(*drawing, frame);
        QVERIFY2(after == before, told(after.rect(), after, before));
    }
    OffscreenRenderer::instance()->resize(frame);
}

void tst_Redrawing::strokesAddedOneByOneAreTheBytesOfARebuild()
{
    QFETCH(unsigned, seed);
    Maker maker(seed + 400, frame);
    StrokeDrawing drawing(frame);
    for (int i = 0; i < 14; ++i) {
        drawing.addStroke(i % 4 == 3 ? std::unique_ptr<Stroke>(maker.compound(1)) : maker.line());
        if (i == 8)
            drawing.cutPath(maker.path());
    }
    const QImage before = drawing.image().copy();
    QVERIFY(!inkOf(before).isEmpty());
    drawing.rebuild(QRect(QPoint(0, 0), frame));
    QVERIFY2(drawing.image() == before, told(before.rect(), drawing.image(), before));
}

void tst_Redrawing::takingTheLastStrokeBackGivesTheBytesFromBefore()
{
    QFETCH(unsigned, seed);
    Maker maker(seed + 500, frame);
    StrokeDrawing drawing(frame);
    std::vector<QImage> states;
    for (int i = 0; i < 12; ++i) {
        const QImage before = drawing.image().copy();
        if (drawing.addStroke(i % 4 == 3 ? std::unique_ptr<Stroke>(maker.compound(1)) : maker.line()))
            states.push_back(before);
    }
    QVERIFY(states.size() > 6);
    for (; !states.empty(); states.pop_back()) {
        QVERIFY(drawing.removeLastStroke());
        QVERIFY2(drawing.image() == states.back(), told({}, drawing.image(), states.back()));
    }
}

// Pens and erasers in turn over the same place, more than the renderer lets wait at a time: each takes from what came
// before it, and nothing from what comes after.
void tst_Redrawing::moreLinesThanWindowsAreDrawnInTheirOrder()
{
    const TestPen pen({6, 6, 0.3, 0.3});
    const TestEraser eraser({4, 4, 0.4, 0.4});
    CompoundStroke compound;
    int expected = 0;
    for (int i = 0; i < 150; ++i) {
        const bool erases = i % 3 == 2;
        compound.append(straightStroke(erases ? static_cast<const Tool &>(eraser) : pen, {40, 50}, {400, 50}));
    }
    const QImage image = drawn(compound, frame);
    // What one of each makes, in the middle of the line.
    const auto alone = [&](const Tool &tool) {
        return coverageAt(drawn(*straightStroke(tool, {40, 50}, {400, 50}), frame), 200, 50);
    };
    const int penValue = alone(pen);
    const int eraserValue = alone(eraser);
    QVERIFY(penValue > 60 && eraserValue > 80);
    for (int i = 0; i < 150; ++i)
        expected = i % 3 == 2 ? (255 - eraserValue) * expected / 255 : expected + (255 - expected) * penValue / 255;
    QCOMPARE(coverageAt(image, 200, 50), expected);
}

void tst_Redrawing::redrawnLineLooksAsItDidUnderThePen_data()
{
    QTest::addColumn<QSize>("framebuffers");
    QTest::addColumn<int>("pen");
    for (const QSize size : {QSize(700, 500), QSize(701, 501)}) {
        for (int pen = 0; pen < 3; ++pen)
            QTest::addRow("pen %d, %d rows", pen, size.height()) << size << pen;
    }
}

// Under the pen each segment was drawn by itself, with its vertices elsewhere in the framebuffer: that moves the last
// bits of their places, and nothing else.
void tst_Redrawing::redrawnLineLooksAsItDidUnderThePen()
{
    QFETCH(QSize, framebuffers);
    QFETCH(int, pen);
    OffscreenRenderer::instance()->resize(framebuffers);
    const TestPen tool({1, 9, 0.2, 1}, Tool::PenType(pen));
    SingleStroke stroke(frame, &tool);
    for (int i = 0; i < 90; ++i) {
        const double angle = i / 14.0;
        stroke.addSample({{330 + 2.9 * i * std::cos(angle), 250 + 2.1 * i * std::sin(angle)}, 0.1 + i / 120.0, 0});
        stroke.renderLatestSegment();
    }
    QVERIFY(stroke.segments().size() > 60);
    const QImage redrawn = drawn(stroke, frame);
    QVERIFY2(largestDifference(stroke.image(), redrawn) <= 3, told({}, redrawn, stroke.image()));
    OffscreenRenderer::instance()->resize(frame);
}

QTEST_MAIN(tst_Redrawing)
#include "tst_redrawing.moc"
