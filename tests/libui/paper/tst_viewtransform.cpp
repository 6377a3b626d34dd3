#include "libui/paper/viewtransform.h"

#include <QRandomGenerator>
#include <QTest>

#include <cmath>

using UI::ViewTransform;

namespace {

constexpr double tolerance = 1e-6;

bool isNear(QPointF a, QPointF b, double within = tolerance)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) < within;
}

#define COMPARE_POINTS(actual, expected)                                                                               \
    QVERIFY2(isNear(actual, expected), qPrintable(QStringLiteral("(%1, %2) is not (%3, %4)")                           \
                                                      .arg((actual).x())                                               \
                                                      .arg((actual).y())                                               \
                                                      .arg((expected).x())                                             \
                                                      .arg((expected).y())))
#define COMPARE_NUMBERS(actual, expected)                                                                              \
    QVERIFY2(std::abs((actual) - (expected)) < tolerance,                                                              \
             qPrintable(QStringLiteral("%1 is not %2").arg(actual).arg(expected)))

/// A view of 800 x 600 onto a sheet of 1920 x 1080.
ViewTransform ordinaryView()
{
    ViewTransform view;
    view.setUsableRect({0, 0, 800, 600});
    view.setPaperRect({0, 0, 1920, 1080});
    return view;
}

void addRandomStep(ViewTransform &view, QRandomGenerator &random)
{
    const auto point = [&] { return QPointF(random.bounded(800.0), random.bounded(600.0)); };
    switch (random.bounded(6)) {
    case 0:
        view.panTo(point(), point());
        break;
    case 1:
        view.zoomAt(point(), 0.3 + random.bounded(3.0));
        break;
    case 2:
        view.rotatePaperTo(random.bounded(360.0) - 180.0);
        break;
    case 3:
        view.rotatePaperToNext(random.bounded(2) ? 45.0 : -15.0);
        break;
    case 4:
        view.setMirrored(!view.isMirrored());
        break;
    default:
        view.setPanDelta(point(), point());
        view.commitDelta();
        break;
    }
}

ViewTransform randomView(quint32 seed)
{
    QRandomGenerator random(seed);
    ViewTransform view = ordinaryView();
    for (int i = 0; i < 20; ++i)
        addRandomStep(view, random);
    return view;
}

void addSeeds()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 25; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

} // namespace

class tst_ViewTransform : public QObject
{
    Q_OBJECT

private slots:
    void firstSheetIsCentredAtFullSize();
    void panCarriesThePointFromHereToThere_data() { addSeeds(); }
    void panCarriesThePointFromHereToThere();
    void zoomKeepsThePointUnderTheCursor_data() { addSeeds(); }
    void zoomKeepsThePointUnderTheCursor();
    void zoomFactorAboveOneZoomsOut();
    void zoomCannotPassTheLimitsEvenByRepetition_data();
    void zoomCannotPassTheLimitsEvenByRepetition();
    void hugeFactorsLandOnTheLimits();
    void zoomLevelCountsDevicePixels();
    void levelsThatAreNoneChangeNothing();
    void zoomKeepsTheViewCentre();
    void zoomCenteringOnOriginKeepsTheSheetsMiddle();
    void rotateToSetsTheAngle_data();
    void rotateToSetsTheAngle();
    void positiveAngleTurnsThePictureCounterClockwise();
    void rotationKeepsTheViewCentreAndTheZoom();
    void rotateToNextStepsFromTheNearestMultiple_data();
    void rotateToNextStepsFromTheNearestMultiple();
    void rotateToNextByNothingDoesNothing();
    void mirrorFlipsAboutTheCentre();
    void mirrorLeavesZoomAndRotationAsTheyRead();
    void mirroringTwiceGivesTheViewBack();
    void mirrorTurnsRotationSigns();
    void fitFillsTheViewLessItsMargin_data();
    void fitFillsTheViewLessItsMargin();
    void fitOfATinySheetStopsAtTheLimit();
    void resetIsUprightCentredAndFullSize_data() { addSeeds(); }
    void resetIsUprightCentredAndFullSize();
    void resetCentresAFrameThatIsTurnedOffItsPegs_data() { addSeeds(); }
    void resetCentresAFrameThatIsTurnedOffItsPegs();
    void resizeKeepsWhatIsAtTheCentre_data() { addSeeds(); }
    void resizeKeepsWhatIsAtTheCentre();
    void newSheetSizeKeepsThePlaceFromTheTopLeft();
    void newSheetSizeHoldsThePlaceWithinTheSheet();
    void invertedSheetHasItsMiddleAtTheCentre();
    void deviceRatioKeepsLevelAndCentre();
    void runningPanShowsWhatTheCommittedPanGives();
    void transformsUndoEachOther_data() { addSeeds(); }
    void transformsUndoEachOther();
    void offPegsMovesThePaperButNotTheDesk();
    void singularOffPegsIsTakenAsIdentity();
    void boundsUniteSheetAndFrameOffThePegs();
    void emptyViewFitsAtOne();
};

void tst_ViewTransform::firstSheetIsCentredAtFullSize()
{
    const ViewTransform view = ordinaryView();
    COMPARE_POINTS(view.paperToWidget().map(QPointF(960, 540)), QPointF(400, 300));
    COMPARE_NUMBERS(view.zoomLevel(), 1.0);
    COMPARE_NUMBERS(view.rotation(), 0.0);
}

void tst_ViewTransform::panCarriesThePointFromHereToThere()
{
    QFETCH(quint32, seed);
    ViewTransform view = randomView(seed);
    const QPointF from(123.5, 77.25);
    const QPointF to(640.0, 512.75);
    const QPointF held = view.widgetToPaper().map(from);
    view.panTo(from, to);
    COMPARE_POINTS(view.paperToWidget().map(held), to);
}

void tst_ViewTransform::zoomKeepsThePointUnderTheCursor()
{
    QFETCH(quint32, seed);
    ViewTransform view = randomView(seed);
    QRandomGenerator random(seed);
    for (int i = 0; i < 50; ++i) {
        const QPointF cursor(random.bounded(800.0), random.bounded(600.0));
        const QPointF held = view.widgetToPaper().map(cursor);
        view.zoomAt(cursor, 0.5 + random.bounded(1.2));
        COMPARE_POINTS(view.paperToWidget().map(held), cursor);
    }
}

void tst_ViewTransform::zoomFactorAboveOneZoomsOut()
{
    ViewTransform view = ordinaryView();
    view.zoomAt({10, 10}, 4.0);
    COMPARE_NUMBERS(view.zoomLevel(), 0.25);
}

void tst_ViewTransform::zoomCannotPassTheLimitsEvenByRepetition_data()
{
    QTest::addColumn<double>("factor");
    QTest::addColumn<double>("limit");
    QTest::addRow("in") << 0.9 << 16.0;
    QTest::addRow("out") << 1.1 << 1.0 / 16.0;
}

void tst_ViewTransform::zoomCannotPassTheLimitsEvenByRepetition()
{
    QFETCH(double, factor);
    QFETCH(double, limit);
    ViewTransform view = ordinaryView();
    view.setDeviceRatio(1.5);
    for (int i = 0; i < 100; ++i)
        view.zoomAt({5, 590}, factor);
    COMPARE_NUMBERS(view.zoomLevel(), limit);
}

void tst_ViewTransform::hugeFactorsLandOnTheLimits()
{
    ViewTransform view = ordinaryView();
    view.zoomAt({0, 0}, 1e9);
    COMPARE_NUMBERS(view.zoomLevel(), 1.0 / 16.0);
    view.zoomAt({0, 0}, -1.0);
    COMPARE_NUMBERS(view.zoomLevel(), 16.0);
    view.setZoomLevel(24.0);
    COMPARE_NUMBERS(view.zoomLevel(), 16.0);
}

void tst_ViewTransform::zoomLevelCountsDevicePixels()
{
    ViewTransform view = ordinaryView();
    view.setDeviceRatio(2.0);
    view.setZoomLevel(1.0);
    // Two device pixels to a logical one: a paper pixel is half a logical pixel wide.
    const QTransform shown = view.paperToWidget();
    COMPARE_POINTS(shown.map(QPointF(1, 0)) - shown.map(QPointF(0, 0)), QPointF(0.5, 0));
    COMPARE_NUMBERS(view.zoomScale(), 2.0);
}

void tst_ViewTransform::levelsThatAreNoneChangeNothing()
{
    ViewTransform view = ordinaryView();
    for (const double level : {0.0, -1.0, std::nan("")}) {
        view.setZoomLevel(level);
        view.setZoomLevelCenteringOnOrigin(level);
        COMPARE_NUMBERS(view.zoomLevel(), 1.0);
    }
}

void tst_ViewTransform::zoomKeepsTheViewCentre()
{
    ViewTransform view = ordinaryView();
    view.panTo({0, 0}, {333, -120});
    const QPointF held = view.widgetToPaper().map(QPointF(400, 300));
    view.setZoomLevel(3.0);
    COMPARE_POINTS(view.widgetToPaper().map(QPointF(400, 300)), held);
    COMPARE_NUMBERS(view.zoomLevel(), 3.0);
}

void tst_ViewTransform::zoomCenteringOnOriginKeepsTheSheetsMiddle()
{
    ViewTransform view = ordinaryView();
    view.panTo({0, 0}, {333, -120});
    view.setZoomLevelCenteringOnOrigin(0.5);
    COMPARE_POINTS(view.paperToWidget().map(QPointF(960, 540)), QPointF(733, 180));
    COMPARE_NUMBERS(view.zoomLevel(), 0.5);
}

void tst_ViewTransform::rotateToSetsTheAngle_data()
{
    QTest::addColumn<double>("degrees");
    QTest::addColumn<double>("expected");
    for (const double degrees : {0.0, 1.0, 45.0, 90.0, 135.0, 179.0, -30.0, -90.0, -179.0})
        QTest::addRow("%g", degrees) << degrees << degrees;
    QTest::addRow("270 is -90") << 270.0 << -90.0;
    QTest::addRow("-270 is 90") << -270.0 << 90.0;
    QTest::addRow("720 is 0") << 720.0 << 0.0;
}

void tst_ViewTransform::rotateToSetsTheAngle()
{
    QFETCH(double, degrees);
    QFETCH(double, expected);
    ViewTransform view = ordinaryView();
    view.rotateTo(17.0);
    view.rotateTo(degrees);
    COMPARE_NUMBERS(view.rotation(), expected);
}

void tst_ViewTransform::positiveAngleTurnsThePictureCounterClockwise()
{
    ViewTransform view = ordinaryView();
    view.rotateTo(90.0);
    // The paper's right then points up on screen, where y runs down.
    const QTransform shown = view.paperToWidget();
    COMPARE_POINTS(shown.map(QPointF(1, 0)) - shown.map(QPointF(0, 0)), QPointF(0, -1));
}

void tst_ViewTransform::rotationKeepsTheViewCentreAndTheZoom()
{
    ViewTransform view = ordinaryView();
    view.panTo({0, 0}, {-50, 20});
    view.setZoomLevel(2.5);
    const QPointF held = view.widgetToPaper().map(QPointF(400, 300));
    view.rotateTo(33.0);
    COMPARE_POINTS(view.widgetToPaper().map(QPointF(400, 300)), held);
    COMPARE_NUMBERS(view.zoomLevel(), 2.5);
}

void tst_ViewTransform::rotateToNextStepsFromTheNearestMultiple_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("step");
    QTest::addColumn<bool>("mirrored");
    QTest::addColumn<double>("expected");
    QTest::addRow("from a multiple") << 0.0 << 45.0 << false << 45.0;
    QTest::addRow("back") << 0.0 << -45.0 << false << -45.0;
    QTest::addRow("from below the half: down, then on") << 7.0 << 15.0 << false << 15.0;
    QTest::addRow("from above the half: up, then on") << 8.0 << 15.0 << false << 30.0;
    QTest::addRow("negative") << -8.0 << -15.0 << false << -30.0;
    QTest::addRow("over the half turn") << 135.0 << 90.0 << false << -90.0;
    QTest::addRow("mirrored, on") << 0.0 << 45.0 << true << -45.0;
    QTest::addRow("mirrored, back") << 30.0 << -15.0 << true << 45.0;
}

void tst_ViewTransform::rotateToNextStepsFromTheNearestMultiple()
{
    QFETCH(double, from);
    QFETCH(double, step);
    QFETCH(bool, mirrored);
    QFETCH(double, expected);
    ViewTransform view = ordinaryView();
    view.setMirrored(mirrored);
    // A hair further out, so that the half turn's rounding is not left to chance.
    view.rotateTo(from + (from > 0.0 ? 1e-9 : -1e-9));
    view.rotatePaperToNext(step);
    COMPARE_NUMBERS(view.rotation(), expected);
}

void tst_ViewTransform::rotateToNextByNothingDoesNothing()
{
    ViewTransform view = ordinaryView();
    view.rotateTo(12.0);
    view.rotatePaperToNext(0.0);
    COMPARE_NUMBERS(view.rotation(), 12.0);
}

void tst_ViewTransform::mirrorFlipsAboutTheCentre()
{
    ViewTransform view = ordinaryView();
    const QPointF seenLeft = view.widgetToPaper().map(QPointF(100, 50));
    view.setMirrored(true);
    COMPARE_POINTS(view.paperToWidget().map(seenLeft), QPointF(700, 50));
}

void tst_ViewTransform::mirrorLeavesZoomAndRotationAsTheyRead()
{
    ViewTransform view = ordinaryView();
    view.setZoomLevel(1.75);
    view.rotateTo(-62.0);
    view.setMirrored(true);
    COMPARE_NUMBERS(view.zoomLevel(), 1.75);
    COMPARE_NUMBERS(view.rotation(), -62.0);
}

void tst_ViewTransform::mirroringTwiceGivesTheViewBack()
{
    ViewTransform view = randomView(7);
    const QTransform before = view.widgetToPaper();
    view.setMirrored(!view.isMirrored());
    view.setMirrored(!view.isMirrored());
    for (const QPointF point : {QPointF(0, 0), QPointF(800, 0), QPointF(250, 600)})
        COMPARE_POINTS(view.widgetToPaper().map(point), before.map(point));
}

void tst_ViewTransform::mirrorTurnsRotationSigns()
{
    ViewTransform view = ordinaryView();
    view.setMirrored(true);
    view.rotatePaperTo(30.0);
    COMPARE_NUMBERS(view.rotation(), -30.0);
    // What the user sees turns the same way as on a plain view: the side that is seen on the right points up.
    const QTransform shown = view.paperToWidget();
    const QPointF left = shown.map(QPointF(-1, 0)) - shown.map(QPointF(0, 0));
    COMPARE_POINTS(left, QPointF(std::sqrt(3.0) / 2.0, -0.5));
}

void tst_ViewTransform::fitFillsTheViewLessItsMargin_data()
{
    QTest::addColumn<double>("degrees");
    QTest::addColumn<double>("level");
    // 800 x 600 less 4 on every side is 792 x 592.
    QTest::addRow("upright: width decides") << 0.0 << 792.0 / 1920.0;
    QTest::addRow("upside down") << 180.0 << 792.0 / 1920.0;
    QTest::addRow("on its side: height decides") << 90.0 << 592.0 / 1920.0;
    // Turned by 45 degrees the bounds are a square of (1920 + 1080) / sqrt 2.
    QTest::addRow("on its corner") << 45.0 << 592.0 * std::sqrt(2.0) / 3000.0;
}

void tst_ViewTransform::fitFillsTheViewLessItsMargin()
{
    QFETCH(double, degrees);
    QFETCH(double, level);
    ViewTransform view = ordinaryView();
    view.setZoomLevel(3.3);
    view.panTo({0, 0}, {-500, 140});
    view.rotateTo(degrees);
    COMPARE_NUMBERS(view.zoomLevelToFit(), level);
    view.fit();
    COMPARE_NUMBERS(view.zoomLevel(), level);
    COMPARE_POINTS(view.paperToWidget().map(QPointF(960, 540)), QPointF(400, 300));
    QVERIFY(QRectF(3.999, 3.999, 792.002, 592.002).contains(view.bounds()));
}

void tst_ViewTransform::fitOfATinySheetStopsAtTheLimit()
{
    ViewTransform view = ordinaryView();
    view.setPaperRect({0, 0, 2, 2});
    view.fit();
    COMPARE_NUMBERS(view.zoomLevel(), 16.0);
    COMPARE_POINTS(view.paperToWidget().map(QPointF(1, 1)), QPointF(400, 300));
}

void tst_ViewTransform::resetIsUprightCentredAndFullSize()
{
    QFETCH(quint32, seed);
    ViewTransform view = randomView(seed);
    const bool mirrored = view.isMirrored();
    view.reset();
    COMPARE_NUMBERS(view.zoomLevel(), 1.0);
    COMPARE_NUMBERS(view.rotation(), 0.0);
    COMPARE_POINTS(view.paperToWidget().map(QPointF(960, 540)), QPointF(400, 300));
    QCOMPARE(view.isMirrored(), mirrored);
}

void tst_ViewTransform::resetCentresAFrameThatIsTurnedOffItsPegs()
{
    QFETCH(quint32, seed);
    ViewTransform view = randomView(seed);
    view.setOffPegs(QTransform().rotate(30).translate(-200, 40));
    view.reset();
    COMPARE_NUMBERS(view.zoomLevel(), 1.0);
    COMPARE_NUMBERS(view.rotation(), 0.0);
    COMPARE_POINTS(view.bounds().center(), QPointF(400, 300));
    const QPointF corner = view.paperToWidget().map(QPointF(0, 0));
    view.reset();
    COMPARE_POINTS(view.paperToWidget().map(QPointF(0, 0)), corner);
}

void tst_ViewTransform::resizeKeepsWhatIsAtTheCentre()
{
    QFETCH(quint32, seed);
    ViewTransform view = randomView(seed);
    const QPointF held = view.widgetToPaper().map(QPointF(400, 300));
    const double rotation = view.rotation();
    const double level = view.zoomLevel();
    view.setUsableRect({0, 40, 1001, 700});
    COMPARE_POINTS(view.widgetToPaper().map(QPointF(500.5, 390)), held);
    COMPARE_NUMBERS(view.rotation(), rotation);
    COMPARE_NUMBERS(view.zoomLevel(), level);
}

void tst_ViewTransform::newSheetSizeKeepsThePlaceFromTheTopLeft()
{
    ViewTransform view = ordinaryView();
    view.panTo({0, 0}, {-100, 50}); // the centre is now at (1060, 490), off the middle of (960, 540)
    view.setPaperRect({0, 0, 3000, 2000});
    COMPARE_POINTS(view.widgetToPaper().map(QPointF(400, 300)), QPointF(1060, 490));
    view.setPaperRect({100, 200, 3000, 2000});
    COMPARE_POINTS(view.widgetToPaper().map(QPointF(400, 300)), QPointF(1160, 690));
    COMPARE_NUMBERS(view.zoomLevel(), 1.0);
}

void tst_ViewTransform::newSheetSizeHoldsThePlaceWithinTheSheet()
{
    ViewTransform view = ordinaryView();
    view.panTo({0, 0}, {-900, 500}); // near the upper right corner
    view.setPaperRect({0, 0, 1000, 500});
    COMPARE_POINTS(view.widgetToPaper().map(QPointF(400, 300)), QPointF(1000, 40));
    view.setPaperRect({0, 0, 1000, 30});
    COMPARE_POINTS(view.widgetToPaper().map(QPointF(400, 300)), QPointF(1000, 30));
}

void tst_ViewTransform::invertedSheetHasItsMiddleAtTheCentre()
{
    ViewTransform view = ordinaryView();
    view.panTo({0, 0}, {-100, 50});
    view.setPaperRect({0, 0, -10, -20});
    COMPARE_POINTS(view.widgetToPaper().map(QPointF(400, 300)), QPointF(-5, -10));
}

void tst_ViewTransform::deviceRatioKeepsLevelAndCentre()
{
    ViewTransform view = ordinaryView();
    view.setZoomLevel(3.0);
    const QPointF held = view.widgetToPaper().map(QPointF(400, 300));
    view.setDeviceRatio(2.0);
    COMPARE_NUMBERS(view.zoomLevel(), 3.0);
    COMPARE_POINTS(view.widgetToPaper().map(QPointF(400, 300)), held);
    view.setDeviceRatio(0.0);
    COMPARE_NUMBERS(view.deviceRatio(), 2.0);
}

void tst_ViewTransform::runningPanShowsWhatTheCommittedPanGives()
{
    ViewTransform panned = randomView(3);
    ViewTransform running = panned;
    running.setPanDelta({10, 10}, {500, 500});
    running.setPanDelta({10, 10}, {90, -45}); // replaces, not adds
    panned.panTo({10, 10}, {90, -45});
    COMPARE_POINTS(running.widgetToPaper().map(QPointF(1, 2)), panned.widgetToPaper().map(QPointF(1, 2)));
    running.commitDelta();
    COMPARE_POINTS(running.widgetToPaper().map(QPointF(1, 2)), panned.widgetToPaper().map(QPointF(1, 2)));
    running.commitDelta();
    COMPARE_POINTS(running.widgetToPaper().map(QPointF(1, 2)), panned.widgetToPaper().map(QPointF(1, 2)));
}

void tst_ViewTransform::transformsUndoEachOther()
{
    QFETCH(quint32, seed);
    const ViewTransform view = randomView(seed);
    for (const QPointF point : {QPointF(0, 0), QPointF(1920, 0), QPointF(33.3, 1080)}) {
        COMPARE_POINTS(view.widgetToPaper().map(view.paperToWidget().map(point)), point);
        COMPARE_POINTS(view.widgetToDesk().map(view.deskToWidget().map(point)), point);
    }
}

void tst_ViewTransform::offPegsMovesThePaperButNotTheDesk()
{
    ViewTransform view = ordinaryView();
    const QTransform desk = view.widgetToDesk();
    view.setOffPegs(QTransform::fromTranslate(30, -10));
    QCOMPARE(view.widgetToDesk(), desk);
    COMPARE_POINTS(view.widgetToPaper().map(QPointF(400, 300)), QPointF(990, 530));
}

void tst_ViewTransform::singularOffPegsIsTakenAsIdentity()
{
    ViewTransform view = ordinaryView();
    view.setOffPegs(QTransform::fromScale(0.0, 1.0));
    QVERIFY(view.offPegs().isIdentity());
}

void tst_ViewTransform::boundsUniteSheetAndFrameOffThePegs()
{
    ViewTransform view = ordinaryView();
    const QRectF sheet = view.bounds();
    view.setOffPegs(QTransform::fromTranslate(-200, 0)); // the frame lies 200 to the right of its pegs
    COMPARE_POINTS(view.bounds().topLeft(), sheet.topLeft());
    COMPARE_POINTS(view.bounds().bottomRight(), sheet.bottomRight() + QPointF(200, 0));
}

void tst_ViewTransform::emptyViewFitsAtOne()
{
    COMPARE_NUMBERS(ViewTransform().zoomLevelToFit(), 1.0);
    ViewTransform view;
    view.setUsableRect({0, 0, 6, 6});
    view.setPaperRect({0, 0, 100, 100});
    COMPARE_NUMBERS(view.zoomLevelToFit(), 1.0);
}

QTEST_GUILESS_MAIN(tst_ViewTransform)
#include "tst_viewtransform.moc"
