#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libui/paper/floatingselectionview.h"
#include "libui/paper/viewtransform.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <cmath>

using namespace UI;
using Zone = FloatingSelectionView::Zone;
using Transform = Model::FloatingSelection::Transform;

namespace {

constexpr QSize frameSize(400, 300);
constexpr QRect usable(0, 0, 600, 500);
constexpr QRect content(150, 80, 160, 130); // on the paper

Model::FloatingSelection selectionOf(QRect rect, int value = 255)
{
    QImage pixels = Model::blankCoverage(rect.size());
    pixels.fill(value);
    return {std::make_unique<Model::BitmapStroke>(pixels, rect), frameSize};
}

/// How the sheet lies, by name: turned, mirrored, zoomed, off its pegs.
ViewTransform viewNamed(const QByteArray &name)
{
    ViewTransform view;
    view.setUsableRect(usable);
    view.setPaperRect(QRectF({0, 0}, frameSize));
    if (name.contains("zoomed in"))
        view.setZoomLevel(1.6);
    if (name.contains("zoomed out"))
        view.setZoomLevel(0.7);
    if (name.contains("turned"))
        view.rotateTo(33);
    if (name.contains("mirrored"))
        view.setMirrored(true);
    if (name.contains("off"))
        view.setOffPegs(QTransform().translate(20, -10).rotate(12));
    return view;
}

void addViews()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"upright", "zoomed in", "zoomed out", "turned", "mirrored", "turned, mirrored",
                             "off its pegs", "zoomed in, turned, mirrored, off its pegs"})
        QTest::newRow(name) << QByteArray(name);
}

/// A selection over a view, as the paper holds them.
struct Stage
{
    explicit Stage(const QByteArray &name, QRect rect = content) : view(viewNamed(name))
    {
        floating.setSelection(selectionOf(rect));
        floating.rebuildHandles(view, 1.0);
    }

    /// Where a point of the content is seen in the widget.
    [[nodiscard]] QPointF seen(QPointF point) const
    {
        return view.paperToWidget().map(floating.shownTransform().paperToContent().inverted().map(point));
    }

    void drag(Zone zone, QPointF from, QPointF to, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        floating.beginDrag(zone, from);
        floating.dragTo((from + to) / 2.0 + QPointF(3, -4), modifiers, view);
        floating.dragTo(to, modifiers, view);
    }

    ViewTransform view;
    FloatingSelectionView floating;
};

bool isNear(QPointF a, QPointF b)
{
    constexpr double hundredth = 0.01; // of a pixel
    return std::hypot(a.x() - b.x(), a.y() - b.y()) < hundredth;
}

/// What paint() makes of a blank image.
QImage painted(const Stage &stage, const QRect &rect = usable, QColor color = Qt::red)
{
    QImage image(usable.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    stage.floating.paint(&painter, rect, stage.view, color);
    return image;
}

bool isBlank(const QImage &image, const QRect &rect)
{
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            if (qAlpha(image.pixel(x, y)) != 0)
                return false;
        }
    }
    return true;
}

} // namespace

Q_DECLARE_METATYPE(Zone)

class tst_FloatingSelectionView : public QObject
{
    Q_OBJECT

private slots:
    void withoutASelectionItIsNothing();
    void handlesLieWhereTheSelectionIsSeen_data() { addViews(); }
    void handlesLieWhereTheSelectionIsSeen();
    void handlesFollowTheView();
    void moveKeepsThePointUnderThePointer_data() { addViews(); }
    void moveKeepsThePointUnderThePointer();
    void moveFollowsAViewThatScrolls();
    void turnFollowsThePointer_data() { addViews(); }
    void turnFollowsThePointer();
    void scaledCornerFollowsThePointer_data() { addViews(); }
    void scaledCornerFollowsThePointer();
    void shiftScalesEvenly();
    void shiftIsLookedAtAnewAtTheSamePlace();
    void scaleByALengthOfASideStaysAsItRan();
    void scaleAndTurnFollowsThePointer_data() { addViews(); }
    void scaleAndTurnFollowsThePointer();
    void pivotIsDraggedAlone();
    void pivotStaysOnThePaperThroughTurnAndScale();
    void zoneWithoutADragChangesNothing_data();
    void zoneWithoutADragChangesNothing();
    void runningIsShownAndSettledAtTheEnd();
    void everyMoveStartsFromThePress();
    void dragThatComesBackChangesNothing();
    void newTransformDropsWhatIsRunning();
    void newPressDropsADragWithoutEnd();
    void unusableTransformIsRefused();
    void moveWithoutAPressDoesNothing();
    void pictureLiesWhereTheContentIsSeen_data() { addViews(); }
    void pictureLiesWhereTheContentIsSeen();
    void pictureHasColourAndOpacity();
    void nothingIsPaintedOutOfTheRect();
    void nothingIsPaintedOutOfTheBounds_data() { addViews(); }
    void nothingIsPaintedOutOfTheBounds();
    void paintingLeavesThePainterAsItWas();
};

void tst_FloatingSelectionView::withoutASelectionItIsNothing()
{
    FloatingSelectionView floating;
    const ViewTransform view = viewNamed("upright");
    floating.rebuildHandles(view, 1.0);
    QVERIFY(floating.isNull());
    QCOMPARE(floating.zoneAt({300, 250}), Zone::Outside);
    QVERIFY(floating.bounds(view).isEmpty());
    floating.beginDrag(Zone::Move, {300, 250});
    floating.dragTo({100, 100}, Qt::NoModifier, view);
    QVERIFY(!floating.isDragging());
    QVERIFY(!floating.endDrag());
}

void tst_FloatingSelectionView::handlesLieWhereTheSelectionIsSeen()
{
    QFETCH(const QByteArray, name);
    // Far enough for pivot and marks at every zoom level.
    const Stage stage(name, QRect(60, 40, 260, 200));
    const QRectF rect = stage.floating.selection().rect();
    for (const QPointF corner : {rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight()}) {
        QCOMPARE(stage.floating.zoneAt(stage.seen(corner)), Zone::Scale);
        // Away from the middle along the diagonal of the handle, which has equal parts of both sides.
        const QPointF sign(corner.x() > rect.center().x() ? 1 : -1, corner.y() > rect.center().y() ? 1 : -1);
        const QPointF outward = stage.seen(corner + sign) - stage.seen(corner);
        const QPointF direction = outward / std::hypot(outward.x(), outward.y());
        QCOMPARE(stage.floating.zoneAt(stage.seen(corner) + direction * 17), Zone::Rotate);
        const double degrees = std::atan2(direction.y(), direction.x()) * 180.0 / M_PI;
        QVERIFY(std::abs(std::remainder(stage.floating.handleAngleAt(stage.seen(corner)) - degrees, 360.0)) < 0.01);
    }
    QCOMPARE(stage.floating.zoneAt(stage.seen(rect.center())), Zone::Pivot);
    QCOMPARE(stage.floating.zoneAt(stage.seen({rect.center().x(), rect.top()})), Zone::HorizontalEdge);
    QCOMPARE(stage.floating.zoneAt(stage.seen({rect.left(), rect.center().y()})), Zone::VerticalEdge);
    QCOMPARE(stage.floating.zoneAt(stage.seen({120, 80})), Zone::Move);
    QCOMPARE(stage.floating.zoneAt(stage.seen({0, 0})), Zone::Outside);
}

void tst_FloatingSelectionView::handlesFollowTheView()
{
    Stage stage("upright");
    const QPointF before = stage.seen(content.topLeft());
    QCOMPARE(stage.floating.zoneAt(before), Zone::Scale);
    stage.view.panTo({0, 0}, {-70, -40});
    stage.floating.rebuildHandles(stage.view, 1.5);
    QCOMPARE(stage.floating.zoneAt(before), Zone::Move);
    QCOMPARE(stage.floating.zoneAt(stage.seen(content.topLeft()) + QPointF(7, 7)), Zone::Scale);
}

void tst_FloatingSelectionView::moveKeepsThePointUnderThePointer()
{
    QFETCH(const QByteArray, name);
    Stage stage(name);
    const QPointF held(170, 100);
    const QPointF from = stage.seen(held);
    const QPointF to = from + QPointF(-61, 43);
    QCOMPARE(stage.floating.zoneAt(from), Zone::Move);
    stage.drag(Zone::Move, from, to);
    QVERIFY(isNear(stage.seen(held), to));
    QVERIFY(stage.floating.endDrag());
    QVERIFY(isNear(stage.seen(held), to));
    QCOMPARE(stage.floating.zoneAt(to), Zone::Move);
}

void tst_FloatingSelectionView::moveFollowsAViewThatScrolls()
{
    Stage stage("turned");
    const QPointF held(170, 100);
    const QPointF from = stage.seen(held);
    stage.floating.beginDrag(Zone::Move, from);
    for (int i = 0; i < 5; ++i) {
        stage.view.panTo({0, 0}, {12, -7});
        stage.floating.rebuildHandles(stage.view, 1.0);
        stage.floating.dragTo(from + QPointF(40, 40), Qt::NoModifier, stage.view);
        QVERIFY(isNear(stage.seen(held), from + QPointF(40, 40)));
    }
}

void tst_FloatingSelectionView::turnFollowsThePointer()
{
    QFETCH(const QByteArray, name);
    Stage stage(name);
    const QPointF pivot = stage.seen(stage.floating.transform().pivot);
    const QPointF from = stage.seen(content.bottomRight());
    // A right angle clockwise on the screen, mirrored or not.
    const QPointF way = from - pivot;
    const QPointF to = pivot + QPointF(-way.y(), way.x());
    stage.drag(Zone::Rotate, from, to);
    QVERIFY(isNear(stage.seen(content.bottomRight()), to));
    QVERIFY(isNear(stage.seen(stage.floating.shownTransform().pivot), pivot));
}

void tst_FloatingSelectionView::scaledCornerFollowsThePointer()
{
    QFETCH(const QByteArray, name);
    const QRectF rect(content);
    for (const QPointF corner : {rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight()}) {
        Stage stage(name);
        const QPointF pivot = stage.seen(stage.floating.transform().pivot);
        const QPointF from = stage.seen(corner) + QPointF(1, -2);
        QCOMPARE(stage.floating.zoneAt(from), Zone::Scale);
        const QPointF to = from + QPointF(17, 23);
        stage.drag(Zone::Scale, from, to);
        QVERIFY(isNear(stage.seen(corner), to - QPointF(1, -2)));
        QVERIFY(isNear(stage.seen(stage.floating.shownTransform().pivot), pivot));
    }
}

void tst_FloatingSelectionView::shiftScalesEvenly()
{
    Stage stage("upright");
    const QPointF from = stage.seen(QRectF(content).bottomRight());
    stage.drag(Zone::Scale, from, from + QPointF(40, 0), Qt::ShiftModifier);
    // r = (80, 65), d = (40, 0): 10625 / (10625 + 3200).
    const QTransform scale = stage.floating.shownTransform().scale;
    QVERIFY(std::abs(scale.m11() - 10625.0 / 13825.0) < 1e-9);
    QVERIFY(std::abs(scale.m22() - 10625.0 / 13825.0) < 1e-9);
}

void tst_FloatingSelectionView::shiftIsLookedAtAnewAtTheSamePlace()
{
    Stage stage("upright");
    const QPointF from = stage.seen(QRectF(content).bottomRight());
    const QPointF to = from + QPointF(40, 0);
    stage.drag(Zone::Scale, from, to);
    const Transform uneven = stage.floating.shownTransform();
    QVERIFY(std::abs(uneven.scale.m11() - 80.0 / 120.0) < 1e-9);
    QVERIFY(std::abs(uneven.scale.m22() - 1.0) < 1e-9);
    stage.floating.dragTo(to, Qt::ShiftModifier, stage.view);
    QVERIFY(std::abs(stage.floating.shownTransform().scale.m22() - 10625.0 / 13825.0) < 1e-9);
    stage.floating.dragTo(to, Qt::NoModifier, stage.view);
    QVERIFY(stage.floating.shownTransform() == uneven);
}

void tst_FloatingSelectionView::scaleByALengthOfASideStaysAsItRan()
{
    Stage stage("upright");
    const QPointF from = stage.seen(QRectF(content).bottomRight());
    stage.drag(Zone::Scale, from, from + QPointF(-40, -10));
    const Transform before = stage.floating.shownTransform();
    stage.floating.dragTo(from + QPointF(-80, -10), Qt::NoModifier, stage.view); // onto the pivot's column
    QVERIFY(stage.floating.shownTransform() == before);
}

void tst_FloatingSelectionView::scaleAndTurnFollowsThePointer()
{
    QFETCH(const QByteArray, name);
    Stage stage(name);
    const QPointF held = QRectF(content).bottomRight();
    const QPointF pivot = stage.seen(stage.floating.transform().pivot);
    const QPointF from = stage.seen(held);
    const QPointF to = from + QPointF(-30, 55);
    stage.drag(Zone::ScaleRotate, from, to);
    QVERIFY(isNear(stage.seen(held), to));
    QVERIFY(isNear(stage.seen(stage.floating.shownTransform().pivot), pivot));
    const QTransform toPaper = stage.floating.shownTransform().paperToContent().inverted();
    QVERIFY(std::abs(toPaper.m11() - toPaper.m22()) < 1e-9 && std::abs(toPaper.m12() + toPaper.m21()) < 1e-9);
}

void tst_FloatingSelectionView::pivotIsDraggedAlone()
{
    Stage stage("turned, mirrored", QRect(60, 40, 260, 200));
    const QPointF from = stage.seen(stage.floating.transform().pivot);
    QCOMPARE(stage.floating.zoneAt(from), Zone::Pivot);
    const QTransform before = stage.floating.transform().paperToContent();
    stage.drag(Zone::Pivot, from, from + QPointF(31, 17));
    QVERIFY(isNear(stage.seen(stage.floating.shownTransform().pivot), from + QPointF(31, 17)));
    QVERIFY(stage.floating.endDrag());
    QCOMPARE(stage.floating.transform().paperToContent(), before);
    QCOMPARE(stage.floating.zoneAt(from + QPointF(31, 17)), Zone::Pivot);
}

void tst_FloatingSelectionView::pivotStaysOnThePaperThroughTurnAndScale()
{
    Stage stage("mirrored");
    Transform transform = stage.floating.transform();
    transform.pivot = {150, 90};
    stage.floating.setTransform(transform);
    const QPointF pivot = stage.seen(transform.pivot);
    for (const Zone zone : {Zone::Rotate, Zone::Scale, Zone::ScaleRotate, Zone::Rotate, Zone::Scale}) {
        const QPointF from = stage.seen(QRectF(content).bottomRight());
        stage.drag(zone, from, from + QPointF(21, -13));
        QVERIFY(stage.floating.endDrag());
        QVERIFY(isNear(stage.seen(stage.floating.transform().pivot), pivot));
    }
}

void tst_FloatingSelectionView::zoneWithoutADragChangesNothing_data()
{
    QTest::addColumn<Zone>("zone");
    QTest::newRow("mark of a horizontal side") << Zone::HorizontalEdge;
    QTest::newRow("mark of a vertical side") << Zone::VerticalEdge;
    QTest::newRow("outside") << Zone::Outside;
}

void tst_FloatingSelectionView::zoneWithoutADragChangesNothing()
{
    QFETCH(const Zone, zone);
    Stage stage("upright");
    const Transform before = stage.floating.transform();
    stage.drag(zone, {300, 200}, {350, 250});
    QVERIFY(stage.floating.shownTransform() == before);
    QVERIFY(!stage.floating.endDrag());
    QVERIFY(stage.floating.transform() == before);
}

void tst_FloatingSelectionView::runningIsShownAndSettledAtTheEnd()
{
    Stage stage("upright");
    const Transform before = stage.floating.transform();
    stage.drag(Zone::Move, {300, 200}, {350, 250});
    QVERIFY(stage.floating.isDragging());
    QCOMPARE(stage.floating.draggedZone(), Zone::Move);
    QVERIFY(stage.floating.transform() == before);
    const Transform shown = stage.floating.shownTransform();
    QVERIFY(shown != before);
    QVERIFY(stage.floating.endDrag());
    QVERIFY(!stage.floating.isDragging());
    QVERIFY(stage.floating.transform() == shown);
    QVERIFY(!stage.floating.endDrag());
}

void tst_FloatingSelectionView::everyMoveStartsFromThePress()
{
    Stage many("turned");
    Stage one("turned");
    const QPointF from = many.seen(QRectF(content).bottomRight());
    for (const Zone zone : {Zone::Move, Zone::Rotate, Zone::Scale, Zone::ScaleRotate}) {
        many.floating.beginDrag(zone, from);
        for (int i = 0; i < 50; ++i)
            many.floating.dragTo(from + QPointF(i, 40 - 2 * i), Qt::NoModifier, many.view);
        one.floating.beginDrag(zone, from);
        one.floating.dragTo(from + QPointF(49, -58), Qt::NoModifier, one.view);
        QVERIFY(many.floating.endDrag());
        QVERIFY(one.floating.endDrag());
        QVERIFY(many.floating.transform() == one.floating.transform());
    }
}

void tst_FloatingSelectionView::dragThatComesBackChangesNothing()
{
    Stage stage("upright");
    stage.floating.beginDrag(Zone::Move, {300, 200});
    stage.floating.dragTo({350, 250}, Qt::NoModifier, stage.view);
    stage.floating.dragTo({300, 200}, Qt::NoModifier, stage.view);
    QVERIFY(!stage.floating.endDrag());
}

void tst_FloatingSelectionView::newTransformDropsWhatIsRunning()
{
    Stage stage("upright");
    stage.drag(Zone::Move, {300, 200}, {350, 250});
    Transform other;
    other.translation = QTransform::fromTranslate(9, 9);
    stage.floating.setTransform(other);
    QVERIFY(!stage.floating.isDragging());
    QVERIFY(stage.floating.transform() == other);
    QVERIFY(stage.floating.shownTransform() == other);
    QCOMPARE(stage.floating.zoneAt(stage.seen(content.topLeft())), Zone::Scale);
}

void tst_FloatingSelectionView::newPressDropsADragWithoutEnd()
{
    Stage stage("upright");
    const Transform before = stage.floating.transform();
    stage.drag(Zone::Move, {300, 200}, {350, 250});
    stage.floating.beginDrag(Zone::Move, {300, 200});
    QVERIFY(stage.floating.shownTransform() == before);
    QVERIFY(!stage.floating.endDrag());
}

void tst_FloatingSelectionView::unusableTransformIsRefused()
{
    Stage stage("upright");
    const Transform before = stage.floating.transform();
    Transform flat;
    flat.scale = QTransform::fromScale(0, 0);
    stage.floating.setTransform(flat);
    QVERIFY(stage.floating.transform() == before);
    stage.floating.beginDrag(Zone::Move, {300, 200});
    stage.floating.dragTo({qQNaN(), 10}, Qt::NoModifier, stage.view);
    QVERIFY(!stage.floating.endDrag());
}

void tst_FloatingSelectionView::moveWithoutAPressDoesNothing()
{
    Stage stage("upright");
    stage.floating.dragTo({350, 250}, Qt::NoModifier, stage.view);
    QVERIFY(stage.floating.shownTransform() == stage.floating.transform());
    QVERIFY(!stage.floating.isDragging());
}

void tst_FloatingSelectionView::pictureLiesWhereTheContentIsSeen()
{
    QFETCH(const QByteArray, name);
    Stage stage(name, QRect(60, 40, 260, 200));
    stage.drag(Zone::Rotate, {400, 300}, {390, 330});
    QVERIFY(stage.floating.endDrag());
    const QImage image = painted(stage);
    // Between the handles, at least 20 pixels away from sides, marks and pivot.
    for (const QPointF point : {QPointF(110, 90), QPointF(270, 90), QPointF(110, 190), QPointF(270, 190)}) {
        const QPoint at = stage.seen(point).toPoint();
        QVERIFY(usable.contains(at));
        QCOMPARE(image.pixelColor(at), QColor(Qt::red));
    }
    for (const QPointF point : {QPointF(10, 140), QPointF(190, -10), QPointF(370, 140), QPointF(190, 290)}) {
        const QPoint at = stage.seen(point).toPoint();
        QCOMPARE(usable.contains(at) ? qAlpha(image.pixel(at)) : 0, 0);
    }
}

void tst_FloatingSelectionView::pictureHasColourAndOpacity()
{
    Stage stage("upright");
    Model::FloatingSelection selection = selectionOf(content, 128);
    selection.setOpacity(0.5);
    stage.floating.setSelection(selection);
    const QPoint at = stage.seen({180, 110}).toPoint();
    // Coverage 128 at half the opacity is 64 of 255, whatever the colour.
    for (const QColor &color : {QColor(Qt::blue), QColor(200, 100, 50)}) {
        const QColor pixel = painted(stage, usable, color).pixelColor(at);
        QVERIFY(std::abs(pixel.alpha() - 64) <= 1);
        QVERIFY(std::abs(pixel.red() - color.red()) <= 3);
        QVERIFY(std::abs(pixel.green() - color.green()) <= 3);
        QVERIFY(std::abs(pixel.blue() - color.blue()) <= 3);
    }
}

void tst_FloatingSelectionView::nothingIsPaintedOutOfTheRect()
{
    const Stage stage("turned");
    const QRect rect(280, 200, 60, 70);
    const QImage image = painted(stage, rect);
    QVERIFY(!isBlank(image, rect));
    const QRegion outside = QRegion(usable) - rect;
    for (const QRect &part : outside)
        QVERIFY(isBlank(image, part));
    // Inside, it is the same as without a limit.
    QCOMPARE(image.copy(rect), painted(stage).copy(rect));
}

void tst_FloatingSelectionView::nothingIsPaintedOutOfTheBounds()
{
    QFETCH(const QByteArray, name);
    Stage stage(name);
    stage.drag(Zone::Scale, stage.seen(content.bottomRight()), stage.seen({330, 200}));
    const QRegion outside = QRegion(usable) - stage.floating.bounds(stage.view);
    const QImage image = painted(stage);
    for (const QRect &part : outside)
        QVERIFY(isBlank(image, part));
}

void tst_FloatingSelectionView::paintingLeavesThePainterAsItWas()
{
    const Stage stage("turned");
    QImage image(usable.size(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setOpacity(0.75);
    const QPen pen = painter.pen();
    stage.floating.paint(&painter, usable, stage.view, Qt::red);
    QCOMPARE(painter.opacity(), 0.75);
    QCOMPARE(painter.pen(), pen);
    QVERIFY(painter.transform().isIdentity());
    QVERIFY(!painter.hasClipping());
    QVERIFY(!painter.testRenderHint(QPainter::SmoothPixmapTransform));
}

QTEST_MAIN(tst_FloatingSelectionView)
#include "tst_floatingselectionview.moc"
