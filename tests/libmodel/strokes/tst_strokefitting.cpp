#include "libmodel/strokes/arcsegment.h"
#include "libmodel/strokes/controlpoint.h"
#include "libmodel/strokes/linesegment.h"
#include "libmodel/strokes/pointsegment.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/fixedcursortools.h"
#include "support/penstreams.h"
#include "testtools.h"

#include <QtTest>

#include <cmath>
#include <memory>

using namespace Model;

/// How samples become segments.
class tst_StrokeFitting : public QObject
{
    Q_OBJECT

private slots:
    void penDownAndUpGivesOneDot();
    void mousePressureGivesNineNinetyNinthsOfTheRange();
    void otherToolsOnlyCollectSamples();
    void firstMoveIsALineOverSixTenths();
    void restingPenIsChasedUntilLessThanAPixelIsLeft();
    void finishClosesUpToTheLastSample();
    void drawingOnAfterARestStartsWithALine();
    void turnGivesATangentArc_data();
    void turnGivesATangentArc();
    void angleOfLessThanOneDegreeGivesALine_data();
    void angleOfLessThanOneDegreeGivesALine();
    void reversalGivesACornerAtThePreviousSample();
    void cornerBeginsBeyondNinetyDegrees_data();
    void cornerBeginsBeyondNinetyDegrees();
    void hoveringSetsTheFirstTangent();
    void shortHoverSetsNoTangent();
    void firstTurnBeyondFortyFiveDegreesLosesTheDot();
    void firstTurnKeepsTheDotWithinFortyFiveDegrees_data();
    void firstTurnKeepsTheDotWithinFortyFiveDegrees();
    void firstTurnMayFinishTheStroke();
    void tooLittleWayAddsNothing();
    void pursuitRuleHolds_data();
    void pursuitRuleHolds();
    void jointsAreContinuous_data();
    void jointsAreContinuous();

private:
    static void addStreams();
};

namespace {

constexpr double follow = 0.6;

bool isNear(double a, double b, double tolerance = 1e-9)
{
    return std::abs(a - b) <= tolerance;
}

bool isNear(QPointF a, QPointF b, double tolerance = 1e-9)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= tolerance;
}

template<typename SegmentClass>
const SegmentClass &segment(const SingleStroke &stroke, size_t index)
{
    const auto *result = dynamic_cast<const SegmentClass *>(stroke.segments().at(index).get());
    if (!result)
        qFatal("Segment %d is of another kind", int(index));
    return *result;
}

QPointF startOf(const Segment &segment)
{
    if (const auto *line = dynamic_cast<const LineSegment *>(&segment))
        return line->start();
    if (const auto *arc = dynamic_cast<const ArcSegment *>(&segment))
        return arc->start();
    return dynamic_cast<const PointSegment &>(segment).position();
}

QPointF endOf(const Segment &segment)
{
    if (const auto *line = dynamic_cast<const LineSegment *>(&segment))
        return line->end();
    if (const auto *arc = dynamic_cast<const ArcSegment *>(&segment))
        return arc->end();
    return dynamic_cast<const PointSegment &>(segment).position();
}

/// A stroke whose last control point is (60, 50) with a tangent to the right: samples at (0, 50) and (100, 50).
std::unique_ptr<SingleStroke> strokeToTheRight(const Tool *tool)
{
    auto stroke = std::make_unique<SingleStroke>(tool);
    stroke->addSample(sampleAt(0, 50));
    stroke->addSample(sampleAt(100, 50));
    return stroke;
}

/// Samples nearer than a pixel to the one before never reach a stroke.
std::vector<Sample> accepted(const TestSupport::PenStream &stream)
{
    std::vector<Sample> result;
    for (const Sample &sample : stream.samples) {
        if (result.empty() ||
            std::hypot(sample.point.x() - result.back().point.x(), sample.point.y() - result.back().point.y()) >= 1.0)
            result.push_back(sample);
    }
    return result;
}

/// What one step may add: a line or an arc that covers \a fraction of the way from \a from to \a sample.
void verifyStep(const ControlPoint &from, const Sample &sample, const Segment &added, double fraction)
{
    QVERIFY(isNear(startOf(added), from.point));
    if (const auto *line = dynamic_cast<const LineSegment *>(&added)) {
        QVERIFY(isNear(line->end(), from.point + fraction * (sample.point - from.point)));
        return;
    }
    const auto &arc = dynamic_cast<const ArcSegment &>(added);
    const double radius = arc.circle().radius;
    const QLineF toSample(arc.circle().center, sample.point);
    QVERIFY(isNear(toSample.length(), radius, 1e-6 * radius));
    QVERIFY(isNear(QLineF(arc.circle().center, arc.end()).length(), radius, 1e-6 * radius));
    const double turned = arc.isClockwise() ? arc.startAngle() - toSample.angle() : toSample.angle() - arc.startAngle();
    const double whole = std::fmod(turned + 720.0, 360.0);
    QVERIFY(isNear(std::abs(arc.sweep()), fraction * whole, 1e-6));
}

} // namespace

void tst_StrokeFitting::penDownAndUpGivesOneDot()
{
    const TestPen pen({2, 13, 0.1, 0.9});
    SingleStroke stroke(&pen);
    stroke.addSample(sampleAt(12.5, 40.25, 1.0));
    stroke.finish();
    QCOMPARE(stroke.segments().size(), size_t(1));
    const auto &dot = segment<PointSegment>(stroke, 0);
    QCOMPARE(dot.position(), QPointF(12.5, 40.25));
    QVERIFY(isNear(dot.radius(), 13));
    QVERIFY(isNear(dot.opacity(), 0.9));
    QCOMPARE(stroke.controlPoints().size(), size_t(1));
    QVERIFY(stroke.controlPoints().front().tangent.isNull());
}

void tst_StrokeFitting::mousePressureGivesNineNinetyNinthsOfTheRange()
{
    const TestPen pen({2, 13, 0, 1});
    const auto stroke = strokeToTheRight(&pen);
    const SegmentEnds &ends = segment<LineSegment>(*stroke, 1).ends();
    QVERIFY(isNear(ends.radiusStart, 2 + 11.0 * 9 / 99));
    QVERIFY(isNear(ends.radiusEnd, 2 + 11.0 * 9 / 99));
    QVERIFY(isNear(ends.opacityEnd, 0.5));
}

void tst_StrokeFitting::otherToolsOnlyCollectSamples()
{
    const HandTool hand;
    SingleStroke stroke(&hand);
    stroke.addSample(sampleAt(0, 0));
    stroke.addSample(sampleAt(50, 0));
    stroke.processPending();
    stroke.finish();
    QCOMPARE(stroke.samples().size(), size_t(2));
    QVERIFY(stroke.segments().empty());
    QVERIFY(stroke.isEmpty());
    QVERIFY(!stroke.isPen() && !stroke.isEraser());
}

void tst_StrokeFitting::firstMoveIsALineOverSixTenths()
{
    const TestPen pen({2, 13, 0, 1});
    SingleStroke stroke(&pen);
    stroke.addSample(sampleAt(10, 20, 0.2));
    stroke.addSample(sampleAt(20, 40, 0.7));
    QCOMPARE(stroke.segments().size(), size_t(2));
    const auto &line = segment<LineSegment>(stroke, 1);
    QCOMPARE(line.start(), QPointF(10, 20));
    QVERIFY(isNear(line.end(), QPointF(16, 32)));
    QVERIFY(isNear(line.ends().opacityStart, 0.2));
    QVERIFY(isNear(line.ends().opacityEnd, 0.2 + 0.6 * 0.5));
    const ControlPoint &last = stroke.controlPoints().back();
    QVERIFY(isNear(last.pressure, 0.5));
    QVERIFY(isNear(last.point, QPointF(16, 32)));
    QVERIFY(isNear(last.tangent.p2(), QPointF(22, 44)));
    QVERIFY(stroke.hasTangent());
}

void tst_StrokeFitting::restingPenIsChasedUntilLessThanAPixelIsLeft()
{
    const TestPen pen;
    const auto stroke = strokeToTheRight(&pen);
    // What is left of the way after the move and each tick: 40, 16, 6.4, 2.56, 1.024. The next step would be 0.61 long.
    const double ends[] = {60, 84, 93.6, 97.44, 98.976};
    for (size_t i = 0; i < 5; ++i) {
        QCOMPARE(stroke->segments().size(), i + 2);
        QVERIFY(isNear(segment<LineSegment>(*stroke, i + 1).end(), QPointF(ends[i], 50)));
        stroke->processPending();
    }
    QCOMPARE(stroke->segments().size(), size_t(6));
    stroke->processPending();
    QCOMPARE(stroke->segments().size(), size_t(6));
}

void tst_StrokeFitting::finishClosesUpToTheLastSample()
{
    const TestPen pen;
    const auto stroke = strokeToTheRight(&pen);
    stroke->finish();
    QVERIFY(isNear(endOf(*stroke->segments().back()), QPointF(100, 50)));
    QVERIFY(!stroke->hasTangent());
}

void tst_StrokeFitting::drawingOnAfterARestStartsWithALine()
{
    const TestPen pen;
    const auto stroke = strokeToTheRight(&pen);
    stroke->finish();
    stroke->addSample(sampleAt(100, 100));
    const auto &line = segment<LineSegment>(*stroke, stroke->segments().size() - 1);
    QVERIFY(isNear(line.start(), QPointF(100, 50)));
    QVERIFY(isNear(line.end(), QPointF(100, 80)));
    QVERIFY(stroke->hasTangent());
}

void tst_StrokeFitting::turnGivesATangentArc_data()
{
    QTest::addColumn<double>("side");
    QTest::addColumn<bool>("clockwise");
    QTest::newRow("to the right") << 1.0 << true;
    QTest::newRow("to the left") << -1.0 << false;
}

void tst_StrokeFitting::turnGivesATangentArc()
{
    QFETCH(double, side);
    QFETCH(bool, clockwise);
    const TestPen pen({2, 13, 0, 1});
    const auto stroke = strokeToTheRight(&pen);
    // From (60, 50) to the right and on to (160, 50 +- 100): a quarter of a circle of radius 100 around (60, 50 +-
    // 100).
    stroke->addSample(sampleAt(160, 50 + 100 * side, 0.9));
    const auto &arc = segment<ArcSegment>(*stroke, 2);
    QVERIFY(isNear(arc.circle().center, QPointF(60, 50 + 100 * side), 1e-6));
    QVERIFY(isNear(arc.circle().radius, 100, 1e-6));
    QCOMPARE(arc.isClockwise(), clockwise);
    const double radians = follow * std::acos(-1.0) / 2;
    const QPointF end(60 + 100 * std::sin(radians), 50 + side * (100 - 100 * std::cos(radians)));
    QVERIFY(isNear(arc.end(), end, 1e-6));
    QVERIFY(isNear(std::abs(arc.sweep()), 54, 1e-6));
    QVERIFY(isNear(arc.ends().opacityEnd, 0.5 + follow * 0.4));
    QLineF tangent = stroke->controlPoints().back().tangent;
    tangent.setLength(1.0);
    QVERIFY(isNear(tangent.p1(), end, 1e-6));
    QVERIFY(isNear(tangent.p2() - tangent.p1(), QPointF(std::cos(radians), side * std::sin(radians)), 1e-6));
    QVERIFY(stroke->hasTangent());
}

void tst_StrokeFitting::angleOfLessThanOneDegreeGivesALine_data()
{
    QTest::addColumn<double>("degrees");
    QTest::addColumn<bool>("isLine");
    QTest::newRow("half a degree left") << 0.5 << true;
    QTest::newRow("half a degree right") << -0.5 << true;
    QTest::newRow("straight on") << 0.0 << true;
    QTest::newRow("one and a half left") << 1.5 << false;
    QTest::newRow("one and a half right") << -1.5 << false;
}

void tst_StrokeFitting::angleOfLessThanOneDegreeGivesALine()
{
    QFETCH(double, degrees);
    QFETCH(bool, isLine);
    const TestPen pen;
    const auto stroke = strokeToTheRight(&pen);
    QLineF way(60, 50, 160, 50);
    way.setAngle(degrees);
    stroke->addSample(sampleAt(way.x2(), way.y2()));
    QCOMPARE(stroke->segments().back()->type() == Segment::Type::Line, isLine);
    QVERIFY(stroke->hasTangent());
}

void tst_StrokeFitting::reversalGivesACornerAtThePreviousSample()
{
    const TestPen pen({2, 13, 0, 1});
    SingleStroke stroke(&pen);
    stroke.addSample(sampleAt(0, 50, 0.5));
    stroke.addSample(sampleAt(100, 50, 0.8));
    stroke.addSample(sampleAt(20, 50, 0.4));
    // Up to the turning point, and 0.6 of the way back to (20, 50).
    QCOMPARE(stroke.segments().size(), size_t(4));
    const auto &leg = segment<LineSegment>(stroke, 2);
    QVERIFY(isNear(leg.start(), QPointF(60, 50)));
    QVERIFY(isNear(leg.end(), QPointF(100, 50)));
    QVERIFY(isNear(leg.ends().opacityEnd, 0.8));
    const auto &back = segment<LineSegment>(stroke, 3);
    QVERIFY(isNear(back.start(), QPointF(100, 50)));
    QVERIFY(isNear(back.end(), QPointF(52, 50)));
    QVERIFY(isNear(back.ends().opacityEnd, 0.8 + follow * (0.4 - 0.8)));
    QVERIFY(stroke.controlPoints()[2].tangent.isNull());
    QVERIFY(!stroke.hasTangent());
    // With no tangent, the next piece is a line as well, whatever its direction.
    stroke.addSample(sampleAt(52, 90));
    QCOMPARE(stroke.segments().back()->type(), Segment::Type::Line);
}

void tst_StrokeFitting::cornerBeginsBeyondNinetyDegrees_data()
{
    QTest::addColumn<double>("degrees");
    QTest::addColumn<int>("added");
    QTest::newRow("89 left") << 89.0 << 1;
    QTest::newRow("89 right") << -89.0 << 1;
    QTest::newRow("91 left") << 91.0 << 2;
    QTest::newRow("91 right") << -91.0 << 2;
}

void tst_StrokeFitting::cornerBeginsBeyondNinetyDegrees()
{
    QFETCH(double, degrees);
    QFETCH(int, added);
    const TestPen pen;
    const auto stroke = strokeToTheRight(&pen);
    QLineF way(60, 50, 160, 50);
    way.setAngle(degrees);
    stroke->addSample(sampleAt(way.x2(), way.y2()));
    QCOMPARE(int(stroke->segments().size()), 2 + added);
    QCOMPARE(stroke->segments().back()->type() == Segment::Type::Arc, added == 1);
}

void tst_StrokeFitting::hoveringSetsTheFirstTangent()
{
    const TestPen pen;
    SingleStroke stroke(&pen);
    stroke.addFirstSample(sampleAt(100, 100), {90, 100});
    QVERIFY(stroke.hasTangent());
    QCOMPARE(stroke.controlPoints().front().tangent, QLineF(100, 100, 110, 100));
    // 26.6 degrees to the side: an arc at once, and the dot stays.
    stroke.addSample(sampleAt(140, 120));
    QCOMPARE(stroke.segments().size(), size_t(2));
    QCOMPARE(stroke.segments()[0]->type(), Segment::Type::Point);
    QCOMPARE(stroke.segments()[1]->type(), Segment::Type::Arc);
}

void tst_StrokeFitting::shortHoverSetsNoTangent()
{
    const TestPen pen;
    SingleStroke stroke(&pen);
    stroke.addFirstSample(sampleAt(100, 100), {95, 100});
    QVERIFY(!stroke.hasTangent());
    QVERIFY(stroke.controlPoints().front().tangent.isNull());
}

void tst_StrokeFitting::firstTurnBeyondFortyFiveDegreesLosesTheDot()
{
    const TestPen pen;
    SingleStroke stroke(&pen);
    stroke.addFirstSample(sampleAt(100, 100), {90, 100});
    stroke.addSample(sampleAt(100, 150));
    QCOMPARE(stroke.segments().size(), size_t(1));
    const auto &line = segment<LineSegment>(stroke, 0);
    QVERIFY(isNear(line.end(), QPointF(100, 130)));
    QCOMPARE(stroke.controlPoints().size(), size_t(2));

    SingleStroke still(&pen);
    still.addFirstSample(sampleAt(100, 100), {90, 100});
    still.addSample(sampleAt(100, 101.5));
    QCOMPARE(still.segments().size(), size_t(1));
    QCOMPARE(still.segments()[0]->type(), Segment::Type::Point);
}

void tst_StrokeFitting::firstTurnKeepsTheDotWithinFortyFiveDegrees_data()
{
    QTest::addColumn<double>("turn");
    QTest::addColumn<bool>("keepsDot");
    QTest::newRow("44 to the left") << 44.0 << true;
    QTest::newRow("46 to the left") << 46.0 << false;
    QTest::newRow("44 to the right") << -44.0 << true;
    QTest::newRow("46 to the right") << -46.0 << false;
    QTest::newRow("135 to the left") << 135.0 << false;
    QTest::newRow("straight back") << 180.0 << false;
}

void tst_StrokeFitting::firstTurnKeepsTheDotWithinFortyFiveDegrees()
{
    QFETCH(double, turn);
    QFETCH(bool, keepsDot);
    const TestPen pen;
    SingleStroke stroke(&pen);
    stroke.addFirstSample(sampleAt(100, 100), {90, 100});
    const QPointF way = QLineF::fromPolar(50, turn).p2();
    stroke.addSample(sampleAt(100 + way.x(), 100 + way.y()));
    QCOMPARE(stroke.segments().size(), size_t(keepsDot ? 2 : 1));
    QCOMPARE(stroke.segments().front()->type(), keepsDot ? Segment::Type::Point : Segment::Type::Line);
    QCOMPARE(stroke.segments().back()->type(), keepsDot ? Segment::Type::Arc : Segment::Type::Line);
}

void tst_StrokeFitting::firstTurnMayFinishTheStroke()
{
    // A sample too near for 0.6 of the way, but far enough for all of it.
    const TestPen pen;
    SingleStroke stroke(&pen);
    stroke.addFirstSample(sampleAt(100, 100), {90, 100});
    stroke.addSample(sampleAt(100, 101.5));
    QCOMPARE(stroke.segments().front()->type(), Segment::Type::Point);
    stroke.finish();
    QCOMPARE(stroke.segments().size(), size_t(1));
    QVERIFY(isNear(segment<LineSegment>(stroke, 0).start(), QPointF(100, 100)));
    QVERIFY(isNear(segment<LineSegment>(stroke, 0).end(), QPointF(100, 101.5)));
    QVERIFY(!stroke.hasTangent());
}

void tst_StrokeFitting::tooLittleWayAddsNothing()
{
    const TestPen pen;
    const auto stroke = strokeToTheRight(&pen);
    // 0.6 of 1.6 pixels, straight on and in a bow.
    stroke->addSample(sampleAt(61.6, 50));
    QCOMPARE(stroke->segments().size(), size_t(2));
    stroke->addSample(sampleAt(61.4, 50.7));
    QCOMPARE(stroke->segments().size(), size_t(2));
    QVERIFY(stroke->hasTangent());
}

void tst_StrokeFitting::addStreams()
{
    QTest::addColumn<int>("stream");
    int index = 0;
    for (const auto &stream : TestSupport::allPenStreams())
        QTest::newRow(qPrintable(stream.name)) << index++;
}

void tst_StrokeFitting::pursuitRuleHolds_data()
{
    addStreams();
}

void tst_StrokeFitting::pursuitRuleHolds()
{
    QFETCH(int, stream);
    const TestPen pen;
    SingleStroke stroke(&pen);
    const auto samples = accepted(TestSupport::allPenStreams().at(size_t(stream)));
    QVERIFY(samples.size() > 100);
    int corners = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
        const size_t segments = stroke.segments().size();
        const size_t points = stroke.controlPoints().size();
        stroke.addSample(samples[i]);
        if (i == 0 || stroke.controlPoints().size() == points)
            continue;
        const bool isCorner = stroke.controlPoints()[points].tangent.isNull();
        if (isCorner) {
            ++corners;
            QCOMPARE(stroke.controlPoints()[points].point, samples[i - 1].point);
        }
        const size_t last = stroke.controlPoints().size() - 1;
        QVERIFY(stroke.segments().size() - segments == last - points + 1);
        if (!isCorner || last > points) {
            verifyStep(stroke.controlPoints()[last - 1], samples[i], *stroke.segments().back(), follow);
            const Segment &added = *stroke.segments().back();
            QVERIFY(QLineF(startOf(added), endOf(added)).length() >= 1.0);
        }
        if (QTest::currentTestFailed())
            return;
    }
    QVERIFY(stroke.segments().size() <= samples.size() + size_t(corners));
    stroke.finish();
    const QPointF end = endOf(*stroke.segments().back());
    QVERIFY(isNear(end, samples.back().point, 1.0));
}

void tst_StrokeFitting::jointsAreContinuous_data()
{
    addStreams();
}

void tst_StrokeFitting::jointsAreContinuous()
{
    QFETCH(int, stream);
    const TestPen pen({1, 12, 0, 1});
    SingleStroke stroke(&pen);
    for (const Sample &sample : accepted(TestSupport::allPenStreams().at(size_t(stream))))
        stroke.addSample(sample);
    stroke.finish();
    QRect bounds;
    for (size_t i = 1; i < stroke.segments().size(); ++i) {
        const Segment &before = *stroke.segments()[i - 1];
        const Segment &after = *stroke.segments()[i];
        bounds |= after.boundingRect();
        QCOMPARE(startOf(after), endOf(before));
        const ControlPoint &joint = stroke.controlPoints()[i - 1];
        QCOMPARE(joint.point, endOf(before));
        const auto *arc = dynamic_cast<const ArcSegment *>(&after);
        if (!arc)
            continue;
        // An arc leaves along the tangent in which the piece before it came in: at right angles to its own radius.
        const QPointF spoke = arc->start() - arc->circle().center;
        const QPointF direction = joint.tangent.p2() - joint.tangent.p1();
        const double cosine = QPointF::dotProduct(spoke, direction) / std::hypot(spoke.x(), spoke.y()) /
                              std::hypot(direction.x(), direction.y());
        QVERIFY(isNear(cosine, 0, 1e-6));
        const double cross = spoke.x() * direction.y() - spoke.y() * direction.x();
        QCOMPARE(cross > 0, arc->isClockwise());
    }
    QVERIFY(stroke.boundingRect().contains(bounds));
}

QTEST_MAIN(tst_StrokeFitting)
#include "tst_strokefitting.moc"
