#include "libui/paper/floatingdrag.h"
#include "support/randomnumbers.h"

#include <QLineF>
#include <QTest>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

using namespace UI;
using FloatingDrag::Transform;
using TestSupport::RandomNumbers;

namespace {

const QRectF rect(100, 50, 200, 100); // content
constexpr QPointF middle(200, 100);

constexpr double tolerance = 1e-6;

bool isNear(QPointF a, QPointF b)
{
    const double reach = std::max({1.0, std::abs(b.x()), std::abs(b.y())});
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= tolerance * reach;
}

Transform untouched()
{
    Transform transform;
    transform.pivot = middle;
    return transform;
}

QPointF toPaper(const Transform &transform, QPointF content)
{
    return transform.paperToContent().inverted().map(content);
}

std::array<QPointF, 4> corners()
{
    return {rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()};
}

QPointF randomPoint(RandomNumbers &random)
{
    return {random.between(-300, 600) + 0.37, random.between(-300, 600) + 0.61};
}

/// Any usable place that drags can have left a selection at: moved, turned, scaled by other factors in both directions,
/// with the pivot off its middle.
Transform randomPlace(RandomNumbers &random)
{
    Transform usable = untouched();
    for (int i = 0; i < 6; ++i) {
        Transform place = usable;
        const QPointF press = randomPoint(random);
        const QPointF now = randomPoint(random);
        const QPointF corner = corners()[size_t(random.between(0, 3))];
        switch (random.between(0, 4)) {
        case 0:
            place = FloatingDrag::moved(place, press, now);
            break;
        case 1:
            place = FloatingDrag::rotated(place, press, now);
            break;
        case 2:
            place = FloatingDrag::pivotMoved(place, press, press + (now - press) / 50.0);
            break;
        case 3:
            place = FloatingDrag::scaled(place, corner, press, press + (now - press) / 50.0, false).value_or(place);
            break;
        default:
            place = FloatingDrag::scaledAndRotated(place, press, now).value_or(place);
            break;
        }
        usable = place.isUsable() ? place : usable;
    }
    return usable;
}

} // namespace

/// What dragging makes of a floating selection's transform. The random places print their seed when they fail.
class tst_FloatingDrag : public QObject
{
    Q_OBJECT

private slots:
    void noWayChangesNothing();
    void moveTakesTheContentUnderThePressToThePointer();
    void movedSelectionTakesItsPivotAlong();
    void pivotGoesToThePointerAndNothingElse();
    void quarterTurnOfThePointerIsAQuarterTurnOfTheSelection();
    void turnIsRigidAboutThePivot();
    void turnFromThePivotItselfIsNone();
    void scaleFollowsTheRatioOfTheSides_data();
    void scaleFollowsTheRatioOfTheSides();
    void evenScaleFollowsTheWayAlongTheDiagonal();
    void draggedCornerFollowsThePointer();
    void scaleKeepsThePivotAndTheRightAngles();
    void wayAsLongAsASideChangesNothing_data();
    void wayAsLongAsASideChangesNothing();
    void scaleBeyondThePivotMirrors();
    void cornerAbovePivotScalesInOneDirectionOnly();
    void scaleBeyondTheLimitsIsRefused_data();
    void scaleBeyondTheLimitsIsRefused();
    void scaleAndTurnBringsThePressToThePointer();
    void scaleAndTurnIsEven();
};

void tst_FloatingDrag::noWayChangesNothing()
{
    for (quint64 seed = 0; seed < 200; ++seed) {
        RandomNumbers random(seed);
        const Transform from = randomPlace(random);
        const QPointF press = randomPoint(random);
        const auto scaled = FloatingDrag::scaled(from, rect.bottomRight(), press, press, false);
        const auto both = FloatingDrag::scaledAndRotated(from, press, press);
        // The pivot may have come to lie on a corner, or under the press.
        for (const Transform &to :
             {FloatingDrag::moved(from, press, press), FloatingDrag::pivotMoved(from, press, press),
              FloatingDrag::rotated(from, press, press), scaled.value_or(from), both.value_or(from)}) {
            for (const QPointF corner : corners())
                QVERIFY2(isNear(toPaper(to, corner), toPaper(from, corner)), qPrintable(QString::number(seed)));
            QVERIFY(isNear(to.pivot, from.pivot));
        }
    }
}

void tst_FloatingDrag::moveTakesTheContentUnderThePressToThePointer()
{
    for (quint64 seed = 0; seed < 500; ++seed) {
        RandomNumbers random(seed);
        const Transform from = randomPlace(random);
        const QPointF press = randomPoint(random);
        const QPointF now = randomPoint(random);
        const Transform to = FloatingDrag::moved(from, press, now);
        for (const QPointF corner : corners())
            QVERIFY2(isNear(toPaper(to, corner), toPaper(from, corner) + now - press),
                     qPrintable(QString::number(seed)));
        QCOMPARE(to.scale, from.scale);
        QCOMPARE(to.rotation, from.rotation);
    }
}

void tst_FloatingDrag::movedSelectionTakesItsPivotAlong()
{
    const Transform to = FloatingDrag::moved(untouched(), {0, 0}, {7, -9});
    QCOMPARE(to.pivot, middle);
    QCOMPARE(toPaper(to, to.pivot), middle + QPointF(7, -9));
}

void tst_FloatingDrag::pivotGoesToThePointerAndNothingElse()
{
    for (quint64 seed = 0; seed < 200; ++seed) {
        RandomNumbers random(seed);
        const Transform from = randomPlace(random);
        const QPointF press = toPaper(from, from.pivot);
        const QPointF now = randomPoint(random);
        const Transform to = FloatingDrag::pivotMoved(from, press, now);
        QVERIFY2(isNear(toPaper(to, to.pivot), now), qPrintable(QString::number(seed)));
        QCOMPARE(to.paperToContent(), from.paperToContent());
    }
}

void tst_FloatingDrag::quarterTurnOfThePointerIsAQuarterTurnOfTheSelection()
{
    // From the right of the pivot to above it, y being down: what was on the right comes to the top.
    const Transform to = FloatingDrag::rotated(untouched(), middle + QPointF(50, 0), middle + QPointF(0, -20));
    QVERIFY(isNear(toPaper(to, middle), middle));
    QVERIFY(isNear(toPaper(to, middle + QPointF(100, 0)), middle + QPointF(0, -100)));
    QVERIFY(isNear(toPaper(to, middle + QPointF(0, 50)), middle + QPointF(50, 0)));
    QVERIFY(to.scale.isIdentity());
    QVERIFY(to.translation.isIdentity());
}

void tst_FloatingDrag::turnIsRigidAboutThePivot()
{
    using Number = std::complex<double>;
    const auto number = [](QPointF point) { return Number(point.x(), point.y()); };
    for (quint64 seed = 0; seed < 500; ++seed) {
        RandomNumbers random(seed);
        const Transform from = randomPlace(random);
        const QPointF press = randomPoint(random);
        const QPointF now = randomPoint(random);
        const Number pivot = number(toPaper(from, from.pivot));
        const Number way = (number(now) - pivot) / (number(press) - pivot);
        const Number turn = way / std::abs(way);
        const Transform to = FloatingDrag::rotated(from, press, now);
        for (const QPointF corner : corners()) {
            const Number expected = pivot + turn * (number(toPaper(from, corner)) - pivot);
            QVERIFY2(isNear(toPaper(to, corner), {expected.real(), expected.imag()}),
                     qPrintable(QString::number(seed)));
        }
        QCOMPARE(to.pivot, from.pivot);
    }
}

void tst_FloatingDrag::turnFromThePivotItselfIsNone()
{
    QVERIFY(FloatingDrag::rotated(untouched(), middle, {0, 0}) == untouched());
    QVERIFY(FloatingDrag::rotated(untouched(), {0, 0}, middle) == untouched());
}

void tst_FloatingDrag::scaleFollowsTheRatioOfTheSides_data()
{
    QTest::addColumn<QPointF>("way");
    QTest::newRow("larger") << QPointF(100, 25);
    QTest::newRow("smaller") << QPointF(-50, -10);
    QTest::newRow("wider and lower") << QPointF(30, -30);
    QTest::newRow("one direction") << QPointF(20, 0);
}

void tst_FloatingDrag::scaleFollowsTheRatioOfTheSides()
{
    QFETCH(const QPointF, way);
    // From the pivot, 200 x 100, to the bottom right, 300 x 150.
    const double x = 100 / (100 + way.x());
    const double y = 50 / (50 + way.y());
    const auto to = FloatingDrag::scaled(untouched(), rect.bottomRight(), {0, 0}, way, false);
    QVERIFY(to);
    QVERIFY(std::abs(to->scale.m11() - x) < tolerance && std::abs(to->scale.m22() - y) < tolerance);
    QVERIFY(std::abs(to->scale.m12()) < tolerance && std::abs(to->scale.m21()) < tolerance);
    QVERIFY(isNear(to->scale.map(middle), middle));
    QVERIFY(to->rotation.isIdentity());
    QVERIFY(to->translation.isIdentity());
}

void tst_FloatingDrag::evenScaleFollowsTheWayAlongTheDiagonal()
{
    // r = (100, 50), r . r = 12500; d = (40, -20), r . d = 3000.
    const auto to = FloatingDrag::scaled(untouched(), rect.bottomRight(), {5, 5}, {45, -15}, true);
    QVERIFY(to);
    const double factor = 12500.0 / 15500.0;
    QVERIFY(std::abs(to->scale.m11() - factor) < tolerance && std::abs(to->scale.m22() - factor) < tolerance);
    QVERIFY(isNear(toPaper(*to, middle), middle));
}

void tst_FloatingDrag::draggedCornerFollowsThePointer()
{
    int scaled = 0;
    for (quint64 seed = 0; seed < 500; ++seed) {
        RandomNumbers random(seed);
        const Transform from = randomPlace(random);
        const QPointF corner = corners()[size_t(random.between(0, 3))];
        const QPointF way(random.between(-40, 40) + 0.3, random.between(-40, 40) + 0.7);
        const QPointF press = toPaper(from, corner) + QPointF(2, -3);
        const QPointF side = corner - from.pivot;
        const auto to = FloatingDrag::scaled(from, corner, press, press + way, false);
        if (!to || std::abs(side.x()) < 1.0 || std::abs(side.y()) < 1.0)
            continue;
        ++scaled;
        QVERIFY2(isNear(toPaper(*to, corner), toPaper(from, corner) + way), qPrintable(QString::number(seed)));
    }
    QVERIFY(scaled > 400);
}

void tst_FloatingDrag::scaleKeepsThePivotAndTheRightAngles()
{
    for (quint64 seed = 0; seed < 500; ++seed) {
        RandomNumbers random(seed);
        const Transform to = randomPlace(random);
        const auto scaled = FloatingDrag::scaled(to, rect.topLeft(), {0, 0}, {7, 11}, random.chance(50));
        if (!scaled)
            continue;
        QVERIFY2(isNear(toPaper(*scaled, to.pivot), toPaper(to, to.pivot)), qPrintable(QString::number(seed)));
        const QPointF x = toPaper(*scaled, rect.topRight()) - toPaper(*scaled, rect.topLeft());
        const QPointF y = toPaper(*scaled, rect.bottomLeft()) - toPaper(*scaled, rect.topLeft());
        const double cosine = QPointF::dotProduct(x, y) / std::hypot(x.x(), x.y()) / std::hypot(y.x(), y.y());
        QVERIFY2(std::abs(cosine) < tolerance, qPrintable(QString::number(seed)));
    }
}

void tst_FloatingDrag::wayAsLongAsASideChangesNothing_data()
{
    QTest::addColumn<QPointF>("way");
    QTest::addColumn<bool>("evenly");
    QTest::newRow("width") << QPointF(-100, 10) << false;
    QTest::newRow("height") << QPointF(10, -50) << false;
    QTest::newRow("but for rounding") << QPointF(-100 * (1 + 1e-14), 10) << false;
    QTest::newRow("evenly") << QPointF(-100, -50) << true;
    QTest::newRow("evenly, another way round") << QPointF(-125, 0) << true; // r . d is -12500 as well
}

void tst_FloatingDrag::wayAsLongAsASideChangesNothing()
{
    QFETCH(const QPointF, way);
    QFETCH(const bool, evenly);
    QVERIFY(!FloatingDrag::scaled(untouched(), rect.bottomRight(), {3, 3}, QPointF(3, 3) + way, evenly));
}

void tst_FloatingDrag::scaleBeyondThePivotMirrors()
{
    const auto to = FloatingDrag::scaled(untouched(), rect.bottomRight(), {0, 0}, {-200, 0}, false);
    QVERIFY(to);
    QVERIFY(isNear(toPaper(*to, rect.topRight()), rect.topLeft()));
    QVERIFY(isNear(toPaper(*to, rect.bottomRight()), rect.bottomLeft()));
    QVERIFY(to->paperToContent().determinant() < 0.0);
}

void tst_FloatingDrag::cornerAbovePivotScalesInOneDirectionOnly()
{
    Transform from = untouched();
    from.pivot = {rect.right(), middle.y()}; // in the middle of the right side
    const auto to = FloatingDrag::scaled(from, rect.topRight(), {0, 0}, {30, -50}, false);
    QVERIFY(to);
    QVERIFY(isNear(toPaper(*to, rect.topRight()), rect.topRight() + QPointF(0, -50)));
    QVERIFY(isNear(toPaper(*to, rect.topLeft()), rect.topLeft() + QPointF(0, -50)));
    from.pivot = rect.topRight();
    QVERIFY(!FloatingDrag::scaled(from, rect.topRight(), {0, 0}, {30, -50}, true));
}

void tst_FloatingDrag::scaleBeyondTheLimitsIsRefused_data()
{
    QTest::addColumn<QPointF>("way");
    QTest::addColumn<bool>("isDone");
    QTest::newRow("to 1/500") << QPointF(-100 * (1 - 0.002), 0) << true;
    QTest::newRow("to 1/2000") << QPointF(-100 * (1 - 0.0005), 0) << false;
    QTest::newRow("to 500") << QPointF(100 * 499, 0) << true;
    QTest::newRow("to 2000") << QPointF(100 * 1999, 0) << false;
    QTest::newRow("nowhere") << QPointF(qQNaN(), 0) << false;
    QTest::newRow("too far") << QPointF(qInf(), 0) << false;
}

void tst_FloatingDrag::scaleBeyondTheLimitsIsRefused()
{
    QFETCH(const QPointF, way);
    const auto to = FloatingDrag::scaled(untouched(), rect.bottomRight(), {0, 0}, way, false);
    QTEST(to.has_value(), "isDone");
}

void tst_FloatingDrag::scaleAndTurnBringsThePressToThePointer()
{
    for (quint64 seed = 0; seed < 500; ++seed) {
        RandomNumbers random(seed);
        const Transform from = randomPlace(random);
        const QPointF press = randomPoint(random);
        const QPointF now = randomPoint(random);
        const QPointF content = from.paperToContent().map(press);
        const double before = QLineF(toPaper(from, from.pivot), press).length();
        const double after = QLineF(toPaper(from, from.pivot), now).length();
        const auto to = FloatingDrag::scaledAndRotated(from, press, now);
        if (!to || before < 5.0 || after < 5.0)
            continue;
        QVERIFY2(isNear(toPaper(*to, from.pivot), toPaper(from, from.pivot)), qPrintable(QString::number(seed)));
        const QPointF wanted = now;
        QVERIFY2(isNear(toPaper(*to, content), wanted), qPrintable(QString::number(seed)));
    }
}

void tst_FloatingDrag::scaleAndTurnIsEven()
{
    // Twice as far from the pivot, and a quarter turn clockwise.
    const auto to = FloatingDrag::scaledAndRotated(untouched(), middle + QPointF(50, 0), middle + QPointF(0, 100));
    QVERIFY(to);
    QVERIFY(isNear(toPaper(*to, middle + QPointF(10, 0)), middle + QPointF(0, 20)));
    QVERIFY(isNear(toPaper(*to, middle + QPointF(0, 10)), middle + QPointF(-20, 0)));
}

QTEST_APPLESS_MAIN(tst_FloatingDrag)
#include "tst_floatingdrag.moc"
