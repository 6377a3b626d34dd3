// What a floating selection leaves when it is stamped.

#include "coverageprobes.h"
#include "libmodel/strokes/floatingselection.h"
#include "pickupmaking.h"
#include "support/glfixture.h"
#include "support/watchedprogress.h"

#include <QtTest>

using namespace Model;

class tst_FloatingStamp : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void nullSelectionLeavesNothing();
    void bitmapContentIsPutIntoAGroup();
    void stampHasTheContentsTransformThenTheInverse();
    void stampInPlaceKnowsItsPicture();
    void stampIsTakenByItsPicture_data();
    void stampIsTakenByItsPicture();
    void preparedPictureIsWhatTheStrokesMake_data();
    void preparedPictureIsWhatTheStrokesMake();
    void preparationGoesOnWhereItStopped();
    void otherPlaceBeginsAnew();
    void copiesShareThePreparation();
    void collapsedStampIsOneBitmap();
    void collapsedStampIsMadeOnceForEachPlace();
    void cancelledStampIsNull();
    void collapsedStampLosesNothingOutOfTheFrame_data();
    void collapsedStampLosesNothingOutOfTheFrame();
    void stampThatWouldBeHugeKeepsItsStrokes();
    void cutOutIsAFlagOfItsOwn();

private:
    static constexpr QSize frame{400, 300};
    static constexpr int scale = 2;

    static FloatingSelection picked(quint64 seed)
    {
        PickUpMaker maker(seed, frame);
        StrokeDrawing drawing(frame);
        for (int i = 0; i < 30; ++i)
            drawing.addStroke(maker.anyLine());
        return {drawing.extract(rectPath(90.3, 60.7, 200, 180)), frame};
    }
    static FloatingSelection::Transform turned(double degrees)
    {
        FloatingSelection::Transform transform;
        transform.rotation = QTransform().translate(200, 150).rotate(degrees).translate(-200, -150);
        transform.translation = QTransform::fromTranslate(15.5, -8);
        return transform;
    }
    static void prepare(const FloatingSelection &selection)
    {
        int calls = 0;
        while (!selection.prepareStamp(5) && ++calls < 1000)
            ;
    }
};

void tst_FloatingStamp::nullSelectionLeavesNothing()
{
    QCOMPARE(FloatingSelection().stampStroke(scale, nullptr), nullptr);
    QVERIFY(FloatingSelection().prepareStamp(5));
}

void tst_FloatingStamp::bitmapContentIsPutIntoAGroup()
{
    PickUpMaker maker(1, frame);
    const FloatingSelection selection(maker.bitmap(), frame);
    const auto stamp = selection.stampStroke(scale, nullptr);
    QCOMPARE(stamp->count(), 1);
    QCOMPARE(stamp->at(0).type(), Stroke::Type::Bitmap);
    QVERIFY(stamp->transform().isIdentity());
}

void tst_FloatingStamp::stampHasTheContentsTransformThenTheInverse()
{
    auto content = std::make_unique<CompoundStroke>();
    content->append(straightStroke(TestPen(), {100, 100}, {150, 130}));
    content->setTransform(QTransform::fromScale(2, 3));
    FloatingSelection selection(std::move(content), frame);
    FloatingSelection::Transform transform;
    transform.scale = QTransform::fromScale(0.5, 0.25);
    transform.translation = QTransform::fromTranslate(-10, 20);
    selection.setTransform(transform);
    const auto stamp = selection.stampStroke(scale, nullptr);
    // (1, 1) of the content is (2, 3) on the paper. Taking the translation back makes it (12, -17), and the scale (24,
    // -68).
    QCOMPARE(stamp->transform().map(QPointF(1, 1)), QPointF(24, -68));
    QCOMPARE(stamp->transform().m33(), 1.0);
}

void tst_FloatingStamp::stampInPlaceKnowsItsPicture()
{
    const FloatingSelection selection = picked(2);
    const auto stamp = selection.stampStroke(scale, nullptr);
    QVERIFY(!stamp->picture().isNull());
    QCOMPARE(stamp->picture(), renderedOn(frame, *stamp).copy(stamp->pictureRect()));
}

void tst_FloatingStamp::stampIsTakenByItsPicture_data()
{
    QTest::addColumn<double>("degrees");
    QTest::newRow("in place") << 0.0;
    QTest::newRow("turned") << 25.0;
}

void tst_FloatingStamp::stampIsTakenByItsPicture()
{
    QFETCH(const double, degrees);
    FloatingSelection selection = picked(3);
    if (degrees > 0)
        selection.setTransform(turned(degrees));
    prepare(selection);
    StrokeDrawing drawing(frame);
    drawing.addStroke(straightStroke(TestPen{{4, 4, 0.5, 0.5}}, {0, 0}, {400, 300}));
    drawing.addStroke(selection.stampStroke(scale, nullptr));
    QCOMPARE(drawing.image(), renderedOn(frame, drawing.strokes()));
    const auto &kept = static_cast<const CompoundStroke &>(drawing.strokes().at(1));
    QVERIFY(kept.picture().isNull());
}

void tst_FloatingStamp::preparedPictureIsWhatTheStrokesMake_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("in many calls") << 0;
    QTest::newRow("in a few") << 10;
    QTest::newRow("in one") << 10'000;
}

void tst_FloatingStamp::preparedPictureIsWhatTheStrokesMake()
{
    QFETCH(const int, milliseconds);
    FloatingSelection selection = picked(4);
    selection.setTransform(turned(33));
    int calls = 1;
    while (!selection.prepareStamp(milliseconds))
        QVERIFY(++calls < 1000);
    QVERIFY(milliseconds > 0 || calls > 1);
    const auto stamp = selection.stampStroke(scale, nullptr);
    QVERIFY(!stamp->picture().isNull());
    QCOMPARE(stamp->picture(), renderedOn(frame, *stamp).copy(stamp->pictureRect()));
}

void tst_FloatingStamp::preparationGoesOnWhereItStopped()
{
    FloatingSelection selection = picked(5);
    selection.setTransform(turned(10));
    QVERIFY(!selection.prepareStamp(0));
    // What is begun is made whole for the stamp.
    const auto stamp = selection.stampStroke(scale, nullptr);
    QCOMPARE(stamp->picture(), renderedOn(frame, *stamp).copy(stamp->pictureRect()));
    QVERIFY(selection.prepareStamp(0));
}

void tst_FloatingStamp::otherPlaceBeginsAnew()
{
    FloatingSelection selection = picked(6);
    selection.setTransform(turned(10));
    prepare(selection);
    selection.setTransform(turned(20));
    QVERIFY(selection.stampStroke(scale, nullptr)->picture().isNull());
    QVERIFY(!selection.prepareStamp(0));
    prepare(selection);
    const auto stamp = selection.stampStroke(scale, nullptr);
    QCOMPARE(stamp->picture(), renderedOn(frame, *stamp).copy(stamp->pictureRect()));
}

void tst_FloatingStamp::copiesShareThePreparation()
{
    FloatingSelection selection = picked(7);
    selection.setTransform(turned(10));
    FloatingSelection copy = selection;
    copy.setCutOut(true);
    copy.setOpacity(0.5);
    prepare(selection);
    QVERIFY(copy.prepareStamp(0));
    QCOMPARE(copy.stampStroke(scale, nullptr)->picture().constBits(),
             selection.stampStroke(scale, nullptr)->picture().constBits());
}

void tst_FloatingStamp::collapsedStampIsOneBitmap()
{
    FloatingSelection selection = picked(8);
    selection.setTransform(turned(10));
    selection.setCollapsesOnStamp(true);
    QVERIFY(selection.prepareStamp(0));
    TestSupport::WatchedProgress progress;
    const auto stamp = selection.stampStroke(scale, &progress);
    QCOMPARE(stamp->recursiveCount(), 2);
    const auto &bitmap = static_cast<const BitmapStroke &>(stamp->at(0));
    QCOMPARE(bitmap.image().size(), bitmap.boundingRect().size() * scale);
    QVERIFY(!progress.events().isEmpty());
    selection.setCollapsesOnStamp(false);
    QVERIFY(selection.stampStroke(scale, nullptr)->recursiveCount() > 2);
}

void tst_FloatingStamp::collapsedStampIsMadeOnceForEachPlace()
{
    FloatingSelection selection = picked(9);
    selection.setCollapsesOnStamp(true);
    const auto pixels = [](const CompoundStroke &stamp) {
        return static_cast<const BitmapStroke &>(stamp.at(0)).image().constBits();
    };
    const auto first = selection.stampStroke(scale, nullptr);
    QCOMPARE(pixels(*selection.stampStroke(scale, nullptr)), pixels(*first));
    selection.setTransform(turned(10));
    QVERIFY(pixels(*selection.stampStroke(scale, nullptr)) != pixels(*first));
}

void tst_FloatingStamp::cancelledStampIsNull()
{
    FloatingSelection selection = picked(10);
    selection.setCollapsesOnStamp(true);
    TestSupport::WatchedProgress progress(1);
    QCOMPARE(selection.stampStroke(scale, &progress), nullptr);
    QVERIFY(selection.stampStroke(scale, nullptr) != nullptr);
}

void tst_FloatingStamp::collapsedStampLosesNothingOutOfTheFrame_data()
{
    QTest::addColumn<QPoint>("by");
    QTest::newRow("partly out of reach") << QPoint(-450, 0);
    QTest::newRow("far away") << QPoint(5000, 300);
}

void tst_FloatingStamp::collapsedStampLosesNothingOutOfTheFrame()
{
    QFETCH(QPoint, by);
    QImage image = blankCoverage({120, 80});
    image.fill(255);
    const QRect place(10, 20, 120, 80);
    FloatingSelection selection(std::make_unique<BitmapStroke>(image, place), frame);
    FloatingSelection::Transform transform;
    transform.translation = QTransform::fromTranslate(-by.x(), -by.y());
    selection.setTransform(transform);
    selection.setCollapsesOnStamp(true);
    const auto stamp = selection.stampStroke(scale, nullptr);
    QCOMPARE(stamp->boundingRect(), place.translated(by));
    QVERIFY(stamp->transform().isIdentity());
    const auto &bitmap = dynamic_cast<const BitmapStroke &>(stamp->at(0));
    QCOMPARE(bitmap.image().size(), place.size() * scale);
    QCOMPARE(bitmap.image().constScanLine(80)[120], uchar(255));
}

void tst_FloatingStamp::stampThatWouldBeHugeKeepsItsStrokes()
{
    QImage image = blankCoverage({40, 40});
    image.fill(255);
    // At twice its size it would have more than 64 million pixels.
    const QRect place(-2000, -2000, 4010, 4010);
    FloatingSelection selection(std::make_unique<BitmapStroke>(image, place), frame);
    selection.setCollapsesOnStamp(true);
    for (int round = 0; round < 2; ++round) {
        const auto stamp = selection.stampStroke(scale, nullptr);
        QCOMPARE(stamp->boundingRect(), place);
        QCOMPARE(dynamic_cast<const BitmapStroke &>(stamp->at(0)).image().size(), image.size());
    }
}

void tst_FloatingStamp::cutOutIsAFlagOfItsOwn()
{
    FloatingSelection null;
    null.setCutOut(true);
    QVERIFY(!null.isCutOut());
    const FloatingSelection selection = picked(11);
    FloatingSelection copy = selection;
    copy.setCutOut(true);
    QVERIFY(copy.isCutOut());
    QVERIFY(!selection.isCutOut());
}

QTEST_MAIN(tst_FloatingStamp)
#include "tst_floatingstamp.moc"
