#include "coverageprobes.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/floatingselection.h"
#include "libmodel/strokes/strokedrawing.h"
#include "strokemaking.h"
#include "support/glfixture.h"

#include <QTest>

#include <limits>

using namespace Model;

namespace {

constexpr QSize frameSize(100, 80);
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

std::unique_ptr<Stroke> block(QRect rect, int value = 255)
{
    QImage pixels = blankCoverage(rect.size());
    pixels.fill(value);
    return std::make_unique<BitmapStroke>(pixels, rect);
}

FloatingSelection blockSelection()
{
    return {block(QRect(10, 20, 30, 40)), frameSize};
}

FloatingSelection::Transform moved(double dx, double dy)
{
    FloatingSelection::Transform transform;
    transform.translation = QTransform::fromTranslate(dx, dy);
    return transform;
}

} // namespace

class tst_FloatingSelection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void emptyOneIsNull_data();
    void emptyOneIsNull();
    void settersOfANullOneDoNothing();
    void contentIsOwnedAndPivotIsItsMiddle();
    void productMapsThroughTheScaleFirst();
    void inverseHasNoTraceOfPerspective();
    void copyIsChangedAlone();
    void copiesShareContentAndImage();
    void opacityIsLimited_data();
    void opacityIsLimited();
    void unusableTransformIsRefused_data();
    void unusableTransformIsRefused();
    void imageIsTheCoverageInWholePixels();
    void imageStaysWhereTheContentWasPickedUp();
    void imageReachesOutOfTheFrameByAsMuchAgain();
    void contentFarOutsideHasNoImage();
    void extractedStrokesAreShownInsideThePathOnly();
};

void tst_FloatingSelection::initTestCase()
{
    QVERIFY(TestSupport::startRenderer());
}

void tst_FloatingSelection::emptyOneIsNull_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("default") << 0;
    QTest::newRow("no content") << 1;
    QTest::newRow("content without strokes") << 2;
    QTest::newRow("content without ink") << 3;
}

void tst_FloatingSelection::emptyOneIsNull()
{
    QFETCH(const int, kind);
    FloatingSelection selection;
    if (kind == 1)
        selection = FloatingSelection(nullptr, frameSize);
    if (kind == 2)
        selection = FloatingSelection(std::make_unique<CompoundStroke>(), frameSize);
    if (kind == 3) {
        const TestEraser eraser;
        auto compound = std::make_unique<CompoundStroke>();
        QVERIFY(compound->append(straightStroke(eraser, {10, 10}, {50, 50})));
        selection = FloatingSelection(std::move(compound), frameSize);
    }
    QVERIFY(selection.isNull());
    QCOMPARE(selection.content(), nullptr);
    QVERIFY(selection.rect().isEmpty());
    QVERIFY(selection.imageRect().isEmpty());
    QVERIFY(selection.image().isNull());
}

void tst_FloatingSelection::settersOfANullOneDoNothing()
{
    FloatingSelection selection;
    selection.setOpacity(0.5);
    selection.setTransform(moved(1, 2));
    selection.setCollapsesOnStamp(true);
    QVERIFY(selection.isNull());
    QCOMPARE(selection.opacity(), 1.0);
    QVERIFY(selection.transform() == FloatingSelection::Transform());
    QVERIFY(!selection.collapsesOnStamp());
}

void tst_FloatingSelection::contentIsOwnedAndPivotIsItsMiddle()
{
    auto content = block(QRect(10, 20, 30, 40));
    const Stroke *stroke = content.get();
    const FloatingSelection selection(std::move(content), frameSize);
    QCOMPARE(selection.content(), stroke);
    QCOMPARE(selection.rect(), QRectF(10, 20, 30, 40));
    QCOMPARE(selection.transform().pivot, QPointF(25, 40));
    QVERIFY(selection.transform().paperToContent().isIdentity());
    QCOMPARE(selection.opacity(), 1.0);
    QVERIFY(!selection.collapsesOnStamp());
}

void tst_FloatingSelection::productMapsThroughTheScaleFirst()
{
    FloatingSelection::Transform transform;
    transform.scale = QTransform::fromScale(2, 3);
    transform.rotation = QTransform().rotate(90); // (x, y) to (-y, x)
    transform.translation = QTransform::fromTranslate(100, 1000);
    // (1, 1) becomes (2, 3), then (-3, 2), then (97, 1002).
    const QPointF mapped = transform.paperToContent().map(QPointF(1, 1));
    QVERIFY(std::abs(mapped.x() - 97) < 1e-9 && std::abs(mapped.y() - 1002) < 1e-9);
}

void tst_FloatingSelection::inverseHasNoTraceOfPerspective()
{
    for (int i = 1; i < 500; ++i) {
        FloatingSelection::Transform transform;
        transform.scale = QTransform::fromScale(1.0 + i / 7.0, 1.0 / i);
        transform.rotation = QTransform().rotate(i * 1.7);
        transform.translation = QTransform::fromTranslate(i * 3.1, -i * 0.7);
        const QTransform inverse = transform.contentToPaper();
        QCOMPARE(inverse.m13(), 0.0);
        QCOMPARE(inverse.m23(), 0.0);
        QVERIFY(inverse.m33() == 1.0);
        const QPointF back = inverse.map(transform.paperToContent().map(QPointF(123, 45)));
        QVERIFY(std::abs(back.x() - 123) < 1e-6 && std::abs(back.y() - 45) < 1e-6);
        QVERIFY(transform.isUsable());
    }
}

void tst_FloatingSelection::copyIsChangedAlone()
{
    const FloatingSelection original = blockSelection();
    FloatingSelection copy = original;
    copy.setOpacity(0.25);
    copy.setTransform(moved(5, 6));
    copy.setCollapsesOnStamp(true);
    QCOMPARE(original.opacity(), 1.0);
    QCOMPARE(original.transform().translation, QTransform());
    QCOMPARE(original.transform().pivot, QPointF(25, 40));
    QVERIFY(!original.collapsesOnStamp());
    QCOMPARE(copy.opacity(), 0.25);
    QVERIFY(copy.transform() == moved(5, 6));
    QVERIFY(copy.collapsesOnStamp());
}

void tst_FloatingSelection::copiesShareContentAndImage()
{
    const FloatingSelection original = blockSelection();
    FloatingSelection copy = original;
    copy.setOpacity(0.25);
    QCOMPARE(copy.content(), original.content());
    QCOMPARE(copy.image().constBits(), original.image().constBits());
}

void tst_FloatingSelection::opacityIsLimited_data()
{
    QTest::addColumn<double>("wanted");
    QTest::addColumn<double>("opacity");
    QTest::newRow("below") << -1.0 << 0.0;
    QTest::newRow("within") << 0.3 << 0.3;
    QTest::newRow("above") << 7.0 << 1.0;
    QTest::newRow("no number") << notANumber << 1.0;
}

void tst_FloatingSelection::opacityIsLimited()
{
    QFETCH(const double, wanted);
    FloatingSelection selection = blockSelection();
    selection.setOpacity(wanted);
    QTEST(selection.opacity(), "opacity");
}

void tst_FloatingSelection::unusableTransformIsRefused_data()
{
    QTest::addColumn<FloatingSelection::Transform>("transform");
    const auto row = [](const char *name, const auto &change) {
        FloatingSelection::Transform transform;
        change(transform);
        QTest::newRow(name) << transform;
    };
    row("no number", [](auto &t) { t.translation = QTransform::fromTranslate(notANumber, 0); });
    row("pivot nowhere", [](auto &t) { t.pivot = {0, std::numeric_limits<double>::infinity()}; });
    row("scale to nothing", [](auto &t) { t.scale = QTransform::fromScale(0, 1); });
    row("inverse too large", [](auto &t) { t.scale = QTransform::fromScale(1e-9, 1); });
    row("too far away", [](auto &t) { t.translation = QTransform::fromTranslate(1e12, 0); });
    row("perspective", [](auto &t) { t.rotation = QTransform(1, 0, 0.5, 0, 1, 0, 0, 0, 1); });
}

void tst_FloatingSelection::unusableTransformIsRefused()
{
    QFETCH(const FloatingSelection::Transform, transform);
    FloatingSelection selection = blockSelection();
    selection.setTransform(moved(3, 4));
    QVERIFY(!transform.isUsable());
    selection.setTransform(transform);
    QVERIFY(selection.transform() == moved(3, 4));
}

void tst_FloatingSelection::imageIsTheCoverageInWholePixels()
{
    // 77 over 10 to 39 and 20 to 59, with room for a smoothed rim around it.
    const FloatingSelection selection(block(QRect(10, 20, 30, 40), 77), frameSize);
    const QRect rect = selection.imageRect();
    QVERIFY(rect.contains(QRect(10, 20, 30, 40)));
    const QImage image = selection.image();
    QCOMPARE(image.format(), QImage::Format_Alpha8);
    QCOMPARE(image.size(), rect.size());
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            const int expected = QRect(10, 20, 30, 40).contains(x, y) ? 77 : 0;
            QCOMPARE(coverageAt(image, x - rect.x(), y - rect.y()), expected);
        }
    }
}

void tst_FloatingSelection::imageStaysWhereTheContentWasPickedUp()
{
    FloatingSelection selection = blockSelection();
    const QImage before = selection.image();
    const QRect rect = selection.imageRect();
    selection.setTransform(moved(50, 50));
    QCOMPARE(selection.imageRect(), rect);
    QCOMPARE(selection.rect(), QRectF(10, 20, 30, 40));
    QCOMPARE(selection.image(), before);
}

void tst_FloatingSelection::imageReachesOutOfTheFrameByAsMuchAgain()
{
    // The frame is 100 x 80, so the image ends at -100, -80, 200 and 160.
    const FloatingSelection selection(block(QRect(-500, -500, 1000, 1000)), frameSize);
    QCOMPARE(selection.imageRect(), QRect(-100, -80, 300, 240));
    QCOMPARE(coverageAt(selection.image(), 0, 0), 255);
    QCOMPARE(coverageAt(selection.image(), 299, 239), 255);
}

void tst_FloatingSelection::contentFarOutsideHasNoImage()
{
    const FloatingSelection selection(block(QRect(5000, 0, 10, 10)), frameSize);
    QVERIFY(!selection.isNull());
    QCOMPARE(selection.rect(), QRectF(5000, 0, 10, 10));
    QVERIFY(selection.imageRect().isEmpty());
    QVERIFY(selection.image().isNull());
}

void tst_FloatingSelection::extractedStrokesAreShownInsideThePathOnly()
{
    const TestPen pen({4.0, 4.0});
    StrokeDrawing drawing(frameSize);
    QVERIFY(drawing.addStroke(drawnStroke(pen, frameSize, {10, 40}, {90, 40})));
    const FloatingSelection selection(drawing.extract(rectPath(30, 20, 40, 40)), frameSize);
    const QImage image = selection.image();
    const QPoint origin = selection.imageRect().topLeft();
    for (int y = 30; y < 50; ++y) {
        for (int x = 0; x < 100; ++x) {
            const int inside = x >= 30 && x < 70 ? coverageAt(drawing.image(), x, y) : 0;
            QCOMPARE(coverageAt(image, x - origin.x(), y - origin.y()), inside);
        }
    }
    QCOMPARE(coverageAt(image, 50 - origin.x(), 40 - origin.y()), 255);
}

QTEST_MAIN(tst_FloatingSelection)
#include "tst_floatingselection.moc"
