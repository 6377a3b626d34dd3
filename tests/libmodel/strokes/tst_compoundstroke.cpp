#include "coverageprobes.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "strokemaking.h"
#include "support/cputimer.h"
#include "support/glfixture.h"

#include <QDataStream>
#include <QtTest>

#include <cmath>
#include <random>

using namespace Model;

class tst_CompoundStroke : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void nullIsNotAppended();
    void boundsAreThoseOfTheChildrenWithoutErasers();
    void boundsFollowTheTransform();
    void removeLastHandsTheNewestOver();
    void appendWrapsUnderATransform();
    void appendWrapsUnderACut();
    void appendDoesNotWrapWithoutNeed();
    void appendToNothingResetsTransformAndMasks();
    void removeLastUnwrapsWhatAppendHasWrapped();
    void removeLastLeavesAppendedCompoundsWhole();
    void removeLastReachesIntoAPushedDownCompound();
    void pushDownWrapsATransformOnly();
    void copyIsDeep();
    void recursiveCountCountsEveryStrokeAndCompound();
    void cutOfNothingFails();
    void partlyCutStrokeSurvivesUnderTheCutPath();
    void cutOfEverythingLeavesNoCutPath();
    void cutBesideAllStrokesIsForgotten();
    void secondCutIsUnitedWithTheFirst();
    void cutReachesThroughTransforms();
    void keepDropsWhatIsOutsideAndLimitsTheBounds();
    void keepAroundEverythingIsForgotten();
    void orderMattersBetweenPenAndEraser();
    void eraserStaysWithinItsCompound();
    void keepPathLimitsThePixels();
    void cutPathRemovesThePixels();
    void movedCompoundKeepsItsLook();
    void scratchImagesDoNotLeakAcrossTheDirtyRect();
    void deepNestingRenders();
    void cutOfManyCrossingsGoesOnTopOfTheOldOne();
    void cutOfManyCrossingsStandsByItself();
    void cutByALongHandDrawnPathIsUnited();
    void unwrappingMakesNoTransformThatCannotBeRead();

private:
    static constexpr QSize frame{400, 300};
    TestPen m_pen{{5, 5, 1, 1}};
    TestEraser m_eraser{{5, 5, 1, 1}};

    QImage rendered(const Stroke &stroke) const
    {
        QImage image = blankCoverage(frame);
        stroke.render(image, image.rect(), QTransform(), QPoint(), 1.0);
        return image;
    }
    std::unique_ptr<SingleStroke> pen(QPointF from, QPointF to) const { return straightStroke(m_pen, from, to); }
    std::unique_ptr<SingleStroke> eraser(QPointF from, QPointF to) const { return straightStroke(m_eraser, from, to); }
};

void tst_CompoundStroke::nullIsNotAppended()
{
    CompoundStroke compound;
    QVERIFY(!compound.append(nullptr));
    QVERIFY(compound.isEmpty());
    QVERIFY(compound.boundingRect().isNull());
}

void tst_CompoundStroke::boundsAreThoseOfTheChildrenWithoutErasers()
{
    CompoundStroke compound;
    QVERIFY(compound.append(eraser({10, 10}, {20, 10})));
    QVERIFY(compound.boundingRect().isNull());
    compound.append(pen({100, 100}, {200, 100}));
    // Radius 5 and a pixel of rim.
    QCOMPARE(compound.boundingRect(), QRect(QPoint(94, 94), QPoint(205, 105)));
}

void tst_CompoundStroke::boundsFollowTheTransform()
{
    CompoundStroke compound;
    compound.append(pen({100, 100}, {200, 100}));
    compound.setTransform(QTransform::fromTranslate(10.5, -4));
    QCOMPARE(compound.boundingRect(), QRect(QPoint(104, 90), QPoint(216, 101)));
}

void tst_CompoundStroke::removeLastHandsTheNewestOver()
{
    CompoundStroke compound;
    QVERIFY(!compound.removeLast());
    compound.append(pen({10, 10}, {20, 10}));
    auto second = pen({100, 100}, {200, 100});
    const Stroke *address = second.get();
    compound.append(std::move(second));
    QCOMPARE(compound.removeLast().get(), address);
    QCOMPARE(compound.count(), 1);
    QCOMPARE(compound.boundingRect(), QRect(QPoint(4, 4), QPoint(25, 15)));
}

void tst_CompoundStroke::appendWrapsUnderATransform()
{
    CompoundStroke compound;
    compound.append(pen({10, 10}, {20, 10}));
    compound.setTransform(QTransform::fromTranslate(50, 0));
    const QRect before = compound.boundingRect();
    compound.append(pen({10, 10}, {20, 10}));
    QCOMPARE(compound.count(), 2);
    QVERIFY(compound.transform().isIdentity());
    QCOMPARE(compound.at(0).type(), Stroke::Type::Compound);
    QCOMPARE(compound.at(0).boundingRect(), before);
    QCOMPARE(compound.at(1).boundingRect(), QRect(QPoint(4, 4), QPoint(25, 15)));
}

void tst_CompoundStroke::appendWrapsUnderACut()
{
    CompoundStroke compound;
    compound.append(pen({10, 50}, {200, 50}));
    compound.addCut(rectPath(80, 0, 40, 100));
    compound.append(pen({100, 20}, {100, 80}));
    QCOMPARE(compound.count(), 2);
    QVERIFY(compound.cutPath().isEmpty());
    QVERIFY(!static_cast<const CompoundStroke &>(compound.at(0)).cutPath().isEmpty());
    const QImage image = rendered(compound);
    QVERIFY(coverageAt(image, 50, 50) > 200);
    QCOMPARE(coverageAt(image, 88, 50), 0);
    QVERIFY(coverageAt(image, 100, 50) > 200);
}

void tst_CompoundStroke::appendDoesNotWrapWithoutNeed()
{
    CompoundStroke compound;
    compound.append(pen({10, 10}, {20, 10}));
    compound.append(pen({10, 10}, {20, 10}));
    QCOMPARE(compound.count(), 2);
    QCOMPARE(compound.at(0).type(), Stroke::Type::Single);
}

void tst_CompoundStroke::appendToNothingResetsTransformAndMasks()
{
    CompoundStroke compound;
    compound.setTransform(QTransform::fromTranslate(50, 0));
    compound.setKeep(rectPath(200, 200, 10, 10));
    compound.append(pen({10, 10}, {20, 10}));
    QCOMPARE(compound.count(), 1);
    QCOMPARE(compound.at(0).type(), Stroke::Type::Single);
    QVERIFY(compound.transform().isIdentity());
    QVERIFY(compound.keepPath().isEmpty());
    QCOMPARE(compound.boundingRect(), QRect(QPoint(4, 4), QPoint(25, 15)));
}

void tst_CompoundStroke::removeLastUnwrapsWhatAppendHasWrapped()
{
    CompoundStroke compound;
    compound.append(pen({10, 10}, {20, 10}));
    compound.append(pen({10, 30}, {20, 30}));
    compound.setTransform(QTransform::fromTranslate(50, 0));
    for (int i = 0; i < 3; ++i) {
        compound.append(pen({10, 60}, {20, 60}));
        compound.setTransform(QTransform::fromScale(2, 2));
        QVERIFY(compound.removeLast());
        QCOMPARE(compound.count(), 2);
        QCOMPARE(compound.recursiveCount(), 3);
        // First moved, then doubled.
        QCOMPARE(compound.transform().map(QPointF(10, 10)), QPointF(120, 20));
        compound.setTransform(QTransform::fromTranslate(50, 0));
    }
    // The bounds in own coordinates are (4, 24) to (26, 36).
    const auto second = compound.removeLast();
    QCOMPARE(second->boundingRect(), QRect(QPoint(4, 24), QPoint(25, 35)));
    QCOMPARE(compound.boundingRect(), QRect(QPoint(54, 4), QPoint(75, 15)));
}

void tst_CompoundStroke::removeLastLeavesAppendedCompoundsWhole()
{
    CompoundStroke compound;
    auto pasted = std::make_unique<CompoundStroke>();
    pasted->append(pen({10, 10}, {20, 10}));
    pasted->append(pen({10, 30}, {20, 30}));
    const Stroke *address = pasted.get();
    compound.append(std::move(pasted));
    compound.append(pen({10, 60}, {20, 60}));
    compound.removeLast();
    QCOMPARE(compound.count(), 1);
    const auto last = compound.removeLast();
    QCOMPARE(last.get(), address);
    QCOMPARE(static_cast<const CompoundStroke &>(*last).count(), 2);
}

void tst_CompoundStroke::removeLastReachesIntoAPushedDownCompound()
{
    CompoundStroke compound;
    compound.append(pen({10, 10}, {20, 10}));
    compound.append(pen({10, 30}, {20, 30}));
    compound.setTransform(QTransform::fromTranslate(50, 0));
    compound.pushDown();
    const CompoundStroke copy(compound);
    QCOMPARE(compound.removeLast()->boundingRect(), QRect(QPoint(4, 24), QPoint(25, 35)));
    QCOMPARE(compound.count(), 1);
    QCOMPARE(compound.boundingRect(), QRect(QPoint(54, 4), QPoint(75, 15)));
    QCOMPARE(copy.recursiveCount(), 4);
    QCOMPARE(CompoundStroke(copy).removeLast()->type(), Stroke::Type::Single);
}

void tst_CompoundStroke::pushDownWrapsATransformOnly()
{
    CompoundStroke compound;
    compound.append(pen({10, 10}, {20, 10}));
    compound.pushDown();
    QCOMPARE(compound.at(0).type(), Stroke::Type::Single);
    compound.setTransform(QTransform::fromScale(2, 2));
    const QRect bounds = compound.boundingRect();
    compound.pushDown();
    QCOMPARE(compound.count(), 1);
    QCOMPARE(compound.at(0).type(), Stroke::Type::Compound);
    QVERIFY(compound.transform().isIdentity());
    QCOMPARE(compound.boundingRect(), bounds);
}

void tst_CompoundStroke::copyIsDeep()
{
    CompoundStroke compound;
    compound.append(pen({10, 10}, {20, 10}));
    const CompoundStroke copy(compound);
    QVERIFY(&copy.at(0) != &compound.at(0));
    compound.removeLast();
    QCOMPARE(copy.count(), 1);
    QCOMPARE(copy.boundingRect(), QRect(QPoint(4, 4), QPoint(25, 15)));
}

void tst_CompoundStroke::recursiveCountCountsEveryStrokeAndCompound()
{
    CompoundStroke compound;
    QCOMPARE(compound.recursiveCount(), 1);
    compound.append(pen({10, 10}, {20, 10}));
    compound.append(std::make_unique<BitmapStroke>());
    QCOMPARE(compound.recursiveCount(), 3);
    compound.setTransform(QTransform::fromTranslate(1, 1));
    compound.append(pen({10, 10}, {20, 10}));
    // The outer one, the inner one with its two, and the new one.
    QCOMPARE(compound.recursiveCount(), 5);
}

void tst_CompoundStroke::cutOfNothingFails()
{
    CompoundStroke compound;
    QVERIFY(!compound.addCut(rectPath(0, 0, 10, 10)));
    QVERIFY(compound.cutPath().isEmpty());
}

void tst_CompoundStroke::partlyCutStrokeSurvivesUnderTheCutPath()
{
    CompoundStroke compound;
    compound.append(pen({10, 50}, {200, 50}));
    const auto before = rendered(compound);
    QVERIFY(compound.addCut(rectPath(100, 0, 300, 100)));
    QCOMPARE(compound.count(), 1);
    QVERIFY(!compound.at(0).isEmpty());
    const QImage after = rendered(compound);
    QCOMPARE(coverageAt(after, 60, 50), coverageAt(before, 60, 50));
    QVERIFY(coverageAt(before, 150, 50) > 200);
    QCOMPARE(coverageAt(after, 150, 50), 0);
}

void tst_CompoundStroke::cutOfEverythingLeavesNoCutPath()
{
    CompoundStroke compound;
    compound.append(pen({10, 50}, {200, 50}));
    compound.append(pen({10, 70}, {200, 70}));
    QVERIFY(compound.addCut(rectPath(0, 0, 400, 300)));
    QVERIFY(compound.isEmpty());
    QVERIFY(compound.cutPath().isEmpty());
    QVERIFY(compound.boundingRect().isNull());
}

void tst_CompoundStroke::cutBesideAllStrokesIsForgotten()
{
    CompoundStroke compound;
    compound.append(pen({10, 50}, {200, 50}));
    QVERIFY(compound.addCut(rectPath(0, 200, 400, 100)));
    QVERIFY(compound.cutPath().isEmpty());
}

void tst_CompoundStroke::secondCutIsUnitedWithTheFirst()
{
    CompoundStroke compound;
    compound.append(pen({10, 50}, {300, 50}));
    compound.addCut(rectPath(50, 0, 50, 100));
    compound.addCut(rectPath(200, 0, 50, 100));
    QVERIFY(compound.cutPath().contains(QPointF(75, 50)));
    QVERIFY(compound.cutPath().contains(QPointF(225, 50)));
    QVERIFY(!compound.cutPath().contains(QPointF(150, 50)));
}

void tst_CompoundStroke::cutReachesThroughTransforms()
{
    CompoundStroke inner;
    inner.append(pen({10, 50}, {100, 50}));
    CompoundStroke outer;
    auto moved = inner.clone();
    static_cast<CompoundStroke &>(*moved).setTransform(QTransform::fromTranslate(200, 100));
    outer.append(std::move(moved));
    // Where the stroke would be without its move: nothing is dropped.
    outer.cutInside(rectPath(0, 0, 150, 100));
    QCOMPARE(outer.count(), 1);
    outer.cutInside(rectPath(200, 130, 150, 40));
    QVERIFY(outer.isEmpty());
}

void tst_CompoundStroke::keepDropsWhatIsOutsideAndLimitsTheBounds()
{
    CompoundStroke compound;
    compound.append(pen({10, 50}, {200, 50}));
    compound.append(pen({10, 250}, {200, 250}));
    compound.setKeep(rectPath(50.5, 0, 50, 100));
    QCOMPARE(compound.count(), 1);
    QCOMPARE(compound.boundingRect(), QRect(QPoint(50, 44), QPoint(100, 55)));
}

void tst_CompoundStroke::keepAroundEverythingIsForgotten()
{
    CompoundStroke compound;
    compound.append(pen({10, 50}, {200, 50}));
    compound.setKeep(rectPath(0, 0, 400, 300));
    QVERIFY(compound.keepPath().isEmpty());
    QCOMPARE(compound.count(), 1);
}

void tst_CompoundStroke::orderMattersBetweenPenAndEraser()
{
    CompoundStroke compound;
    compound.append(pen({50, 100}, {350, 100}));
    compound.append(eraser({200, 50}, {200, 150}));
    QImage image = rendered(compound);
    QVERIFY(coverageAt(image, 100, 100) > 240);
    QVERIFY(coverageAt(image, 200, 100) < 15);
    compound.append(pen({50, 100}, {350, 100}));
    image = rendered(compound);
    QVERIFY(coverageAt(image, 200, 100) > 240);
}

void tst_CompoundStroke::eraserStaysWithinItsCompound()
{
    CompoundStroke outer;
    outer.append(pen({50, 100}, {350, 100}));
    auto inner = std::make_unique<CompoundStroke>();
    inner->append(pen({50, 150}, {350, 150}));
    inner->append(eraser({200, 50}, {200, 200}));
    outer.append(std::move(inner));
    const QImage image = rendered(outer);
    QVERIFY(coverageAt(image, 200, 100) > 240);
    QVERIFY(coverageAt(image, 200, 150) < 15);
}

void tst_CompoundStroke::keepPathLimitsThePixels()
{
    CompoundStroke compound;
    compound.append(pen({50, 100}, {350, 100}));
    const QImage before = rendered(compound);
    compound.setKeep(rectPath(100, 90, 60, 20.5));
    const QImage after = rendered(compound);
    QCOMPARE(coverageAt(after, 99, 100), 0);
    QCOMPARE(coverageAt(after, 100, 100), coverageAt(before, 100, 100));
    QCOMPARE(coverageAt(after, 159, 100), coverageAt(before, 159, 100));
    QCOMPARE(coverageAt(after, 160, 100), 0);
}

void tst_CompoundStroke::cutPathRemovesThePixels()
{
    CompoundStroke compound;
    compound.append(pen({50, 100}, {350, 100}));
    const QImage before = rendered(compound);
    compound.addCut(rectPath(100, 0, 60.5, 300));
    const QImage after = rendered(compound);
    QCOMPARE(coverageAt(after, 99, 100), coverageAt(before, 99, 100));
    QCOMPARE(coverageAt(after, 100, 100), 0);
    QCOMPARE(coverageAt(after, 159, 100), 0);
    // Half of this pixel lies in the path.
    QVERIFY(std::abs(coverageAt(after, 160, 100) - coverageAt(before, 160, 100) / 2) <= 2);
    QCOMPARE(coverageAt(after, 161, 100), coverageAt(before, 161, 100));
}

void tst_CompoundStroke::movedCompoundKeepsItsLook()
{
    CompoundStroke compound;
    compound.append(pen({50, 100}, {150, 120}));
    const QImage before = rendered(compound);
    compound.setTransform(QTransform::fromTranslate(100, 50));
    const QImage after = rendered(compound);
    QVERIFY(largestDifference(before.copy(30, 80, 150, 70), after.copy(130, 130, 150, 70)) <= 2);
}

void tst_CompoundStroke::scratchImagesDoNotLeakAcrossTheDirtyRect()
{
    CompoundStroke compound;
    compound.append(pen({50, 100}, {350, 120}));
    compound.append(eraser({200, 50}, {210, 150}));
    compound.addCut(rectPath(240, 0, 30, 300));
    compound.append(pen({100, 30}, {300, 200}));
    compound.append(std::make_unique<BitmapStroke>(QImage(rendered(compound)), QRect(QPoint(20, 30), frame)));
    const QImage whole = rendered(compound);
    const QRect part(160, 70, 77, 61);
    QImage image = blankCoverage(frame);
    QVERIFY(part.contains(compound.render(image, part, QTransform(), QPoint(), 1.0)));
    QVERIFY(part.contains(inkOf(image)));
    const int difference = largestDifference(image.copy(part), whole.copy(part));
    QVERIFY2(difference <= 3, qPrintable(QString::number(difference)));
}

void tst_CompoundStroke::deepNestingRenders()
{
    CompoundStroke compound;
    compound.append(pen({50, 100}, {350, 100}));
    for (int i = 0; i < CompoundStroke::maximumDepth - 1; ++i) {
        compound.setTransform(QTransform::fromTranslate(i % 2 ? 1 : -1, 0));
        compound.pushDown();
    }
    const CompoundStroke copy(compound);
    QCOMPARE(copy.recursiveCount(), CompoundStroke::maximumDepth + 1);
    QVERIFY(coverageAt(rendered(copy), 200, 100) > 240);
}

/// Lines to and fro between \a corners random points of \a rect, each crossing about every fourth of the others.
static QPainterPath scribble(int corners, QRect rect)
{
    std::mt19937 random(1);
    QPainterPath path(rect.topLeft());
    for (int i = 0; i < corners; ++i) {
        const int x = rect.left() + int(random() % unsigned(rect.width()));
        path.lineTo(x, rect.top() + int(random() % unsigned(rect.height())));
    }
    path.closeSubpath();
    return path;
}

/// A compound as it comes from a file: under the cut \a path, whatever that is.
static std::unique_ptr<CompoundStroke> storedWithCut(const QPainterPath &path, const Stroke &child)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::ReadWrite);
    stream << qint64(1) << qint32(child.type());
    child.write(stream);
    stream << path << QPainterPath() << QTransform();
    QDataStream in(bytes);
    auto compound = std::make_unique<CompoundStroke>();
    return compound->read(in) ? std::move(compound) : nullptr;
}

void tst_CompoundStroke::cutOfManyCrossingsGoesOnTopOfTheOldOne()
{
    // 20,000 lines cross each other 50 million times. A thousand take Qt ten seconds, and twice as many a minute.
    const QPainterPath stored = scribble(20'000, QRect(0, 0, 100, 300));
    const auto compound = storedWithCut(stored, *pen({20, 100}, {380, 100}));
    QVERIFY(compound);
    const TestSupport::CpuTimer timer;
    QVERIFY(compound->addCut(rectPath(200, 50, 50, 100)));
    QVERIFY2(timer.milliseconds() < 2000, qPrintable(QString::number(timer.milliseconds())));
    QCOMPARE(compound->count(), 1);
    QCOMPARE(compound->nesting(), 2);
    QCOMPARE(compound->cutPath().boundingRect(), QRectF(200, 50, 50, 100));
    const QImage image = rendered(*compound);
    QVERIFY(coverageAt(image, 150, 100) > 240);
    QCOMPARE(coverageAt(image, 225, 100), 0);
    // What was cut before stays cut: the lines leave hardly half of it.
    int left = 0;
    for (int x = 20; x < 90; ++x)
        left += coverageAt(image, x, 100) > 240 ? 1 : 0;
    QVERIFY(left < 60);
}

void tst_CompoundStroke::cutOfManyCrossingsStandsByItself()
{
    CompoundStroke compound;
    compound.append(pen({20, 100}, {380, 100}));
    const TestSupport::CpuTimer timer;
    QVERIFY(compound.addCut(scribble(5000, QRect(0, 0, 100, 300))));
    QVERIFY2(timer.milliseconds() < 2000, qPrintable(QString::number(timer.milliseconds())));
    QCOMPARE(compound.nesting(), 1);
    // The next one is under a transform.
    compound.setTransform(QTransform::fromTranslate(0, 50));
    QVERIFY(compound.addCut(rectPath(200, 50, 50, 100)));
    QCOMPARE(compound.nesting(), 2);
    QVERIFY(compound.transform().isIdentity());
    const QImage image = rendered(compound);
    QVERIFY(coverageAt(image, 150, 150) > 240);
    QCOMPARE(coverageAt(image, 225, 150), 0);
}

void tst_CompoundStroke::cutByALongHandDrawnPathIsUnited()
{
    // Two trembling circles of 3000 corners each.
    constexpr int corners = 3000;
    const auto circle = [](double centre) {
        QPainterPath path;
        for (int i = 0; i < corners; ++i) {
            const double angle = 2 * M_PI * i / corners;
            const double radius = 60 + i * 7919 % 13 / 10.0;
            const QPointF point(centre + radius * std::cos(angle), 100 + radius * std::sin(angle));
            i == 0 ? path.moveTo(point) : path.lineTo(point);
        }
        path.closeSubpath();
        return path;
    };
    CompoundStroke compound;
    compound.append(pen({20, 100}, {380, 100}));
    QVERIFY(compound.addCut(circle(150)));
    QVERIFY(compound.addCut(circle(220)));
    QCOMPARE(compound.nesting(), 1);
    const QImage image = rendered(compound);
    QCOMPARE(coverageAt(image, 120, 100), 0);
    QCOMPARE(coverageAt(image, 250, 100), 0);
    QVERIFY(coverageAt(image, 300, 100) > 240);
}

void tst_CompoundStroke::unwrappingMakesNoTransformThatCannotBeRead()
{
    CompoundStroke compound;
    compound.append(pen({1, 1}, {2, 2}));
    compound.setTransform(QTransform::fromScale(6e7, 6e7));
    compound.pushDown();
    compound.setTransform(QTransform::fromScale(100, 100));
    compound.unwrap();
    QCOMPARE(compound.nesting(), 2);
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    compound.write(stream);
    QDataStream in(bytes);
    CompoundStroke read;
    QVERIFY(read.read(in));
    QCOMPARE(read.recursiveCount(), 3);
}

QTEST_MAIN(tst_CompoundStroke)
#include "tst_compoundstroke.moc"
