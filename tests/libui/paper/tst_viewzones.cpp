#include "libui/paper/viewzones.h"

#include <QTest>

using UI::ViewZones;

namespace {

constexpr QRect usable(0, 40, 1000, 600);
constexpr QPointF middle(500, 340);

} // namespace

class tst_ViewZones : public QObject
{
    Q_OBJECT

private slots:
    void zonesLieRoundTheMiddle_data();
    void zonesLieRoundTheMiddle();
    void offPegsPansInAnEllipseAndTurnsOutside();
    void buttonCountsOnlyOffThePegs();
    void buttonIsRounded();
    void zonesFitIntoAnyView_data();
    void zonesFitIntoAnyView();
    void zonesFollowTheInterfaceScale();
    void noViewHasNoZones();
};

void tst_ViewZones::zonesLieRoundTheMiddle_data()
{
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<int>("zone");
    const auto zone = [](ViewZones::Zpr zpr) { return static_cast<int>(zpr); };
    QTest::addRow("middle") << middle << zone(ViewZones::Zpr::Pan);
    // Of 600, a fifth is 120 and two fifths are 240.
    QTest::addRow("inside the inner circle") << middle + QPointF(0, 118) << zone(ViewZones::Zpr::Pan);
    QTest::addRow("outside of it") << middle + QPointF(0, 122) << zone(ViewZones::Zpr::Rotate);
    QTest::addRow("inside the outer circle") << middle + QPointF(-238, 0) << zone(ViewZones::Zpr::Rotate);
    QTest::addRow("outside of that") << middle + QPointF(-242, 0) << zone(ViewZones::Zpr::Zoom);
    QTest::addRow("corner") << QPointF(0, 40) << zone(ViewZones::Zpr::Zoom);
    QTest::addRow("beyond the view") << QPointF(-50, -50) << zone(ViewZones::Zpr::Zoom);
}

void tst_ViewZones::zonesLieRoundTheMiddle()
{
    QFETCH(QPointF, position);
    QFETCH(int, zone);
    const ViewZones zones(usable, 1.0);
    QCOMPARE(static_cast<int>(zones.zprZoneAt(position)), zone);
    QVERIFY(QLineF(zones.center(), middle).length() < 1e-9);
}

void tst_ViewZones::offPegsPansInAnEllipseAndTurnsOutside()
{
    const ViewZones zones(usable, 1.0);
    for (const bool isOffPegs : {false, true}) {
        QCOMPARE(zones.offPegsZoneAt(middle, isOffPegs), ViewZones::OffPegs::Pan);
        QCOMPARE(zones.offPegsZoneAt(middle + QPointF(295, 0), isOffPegs), ViewZones::OffPegs::Pan);
        QCOMPARE(zones.offPegsZoneAt(middle + QPointF(0, 175), isOffPegs), ViewZones::OffPegs::Pan);
        QCOMPARE(zones.offPegsZoneAt(middle + QPointF(295, 175), isOffPegs), ViewZones::OffPegs::Rotate);
        QCOMPARE(zones.offPegsZoneAt({5, 45}, isOffPegs), ViewZones::OffPegs::Rotate);
    }
}

void tst_ViewZones::buttonCountsOnlyOffThePegs()
{
    const ViewZones zones(usable, 1.0);
    const QPointF button = zones.button().center();
    QCOMPARE(zones.offPegsZoneAt(button, true), ViewZones::OffPegs::Button);
    QCOMPARE(zones.offPegsZoneAt(button, false), ViewZones::OffPegs::Rotate);
}

void tst_ViewZones::buttonIsRounded()
{
    const ViewZones zones(usable, 1.0);
    const QRectF button = zones.button();
    QCOMPARE(zones.offPegsZoneAt(button.topLeft() + QPointF(1, 1), true), ViewZones::OffPegs::Rotate);
    QCOMPARE(zones.offPegsZoneAt({button.center().x(), button.top() + 1.0}, true), ViewZones::OffPegs::Button);
    QCOMPARE(zones.offPegsZoneAt({button.left() + 1.0, button.center().y()}, true), ViewZones::OffPegs::Button);
}

void tst_ViewZones::zonesFitIntoAnyView_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<double>("scale");
    for (const double scale : {0.75, 1.0, 1.5}) {
        for (const QSize size : {QSize(64, 64), QSize(64, 800), QSize(1200, 90), QSize(1920, 1080), QSize(3840, 2160)})
            QTest::addRow("%d x %d at %g", size.width(), size.height(), scale) << QRect({0, 10}, size) << scale;
    }
}

void tst_ViewZones::zonesFitIntoAnyView()
{
    QFETCH(QRect, rect);
    QFETCH(double, scale);
    const ViewZones zones(rect, scale);
    QVERIFY(QRectF(rect).contains(zones.outerPath().boundingRect()));
    QVERIFY(zones.outerPath().contains(zones.innerPath()));
    QVERIFY(QRectF(rect).contains(zones.offPegsEllipse().boundingRect()));
    QVERIFY(QRectF(rect).contains(zones.button()));
    QVERIFY(!zones.button().isEmpty());
    QVERIFY(!zones.offPegsEllipse().intersects(zones.button()));
}

void tst_ViewZones::zonesFollowTheInterfaceScale()
{
    const QRect large(0, 0, 4000, 3000);
    const ViewZones plain(large, 1.0);
    const ViewZones scaled(large, 1.5);
    QCOMPARE(scaled.button().size(), 1.5 * plain.button().size());
    QCOMPARE(scaled.innerPath().boundingRect().size(), 1.5 * plain.innerPath().boundingRect().size());
    QCOMPARE(scaled.outerPath().boundingRect().size(), 1.5 * plain.outerPath().boundingRect().size());
}

void tst_ViewZones::noViewHasNoZones()
{
    const ViewZones zones;
    QCOMPARE(zones.zprZoneAt({0, 0}), ViewZones::Zpr::Zoom);
    QCOMPARE(zones.offPegsZoneAt({0, 0}, true), ViewZones::OffPegs::Rotate);
}

QTEST_APPLESS_MAIN(tst_ViewZones)
#include "tst_viewzones.moc"
