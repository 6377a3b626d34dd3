// Strokes that are made one bitmap.

#include "coverageprobes.h"
#include "libmodel/render/offscreenrenderer.h"
#include "pickupmaking.h"
#include "support/glfixture.h"
#include "support/watchedprogress.h"

#include <QtTest>

using namespace Model;

class tst_StrokeCollapse : public QObject
{
    Q_OBJECT

private slots:
    void linesNeedARenderer();
    void bitmapsNeedNoRenderer();
    void onlyOneBitmapIsLeft();
    void lookStays_data();
    void lookStays();
    void emptyOneGetsAnEmptyBitmap();
    void onlyErasersGetAnEmptyBitmap();
    void imageHasScaleTimesThePixels_data();
    void imageHasScaleTimesThePixels();
    void rectangleLimitsTheBitmap();
    void masksAndTransformAreGone();
    void progressIsLedThroughAllStrokes();
    void cancelChangesNothing();
    void tooLargeOneIsLeftAlone();
    void noScaleIsRefused();
    void collapsedDrawingCanBeCutAndMoved();
    void collapsedDrawingCanBeCutIntoPieces();
    void changesForgetThePicture_data();
    void changesForgetThePicture();
    void copyKnowsThePicture();

private:
    static constexpr QSize frame{400, 300};

    static CompoundStroke someLines(quint64 seed, int count = 12)
    {
        PickUpMaker maker(seed, frame);
        CompoundStroke compound;
        for (int i = 0; i < count; ++i)
            compound.append(maker.anyLine());
        return compound;
    }
    static const BitmapStroke &bitmapOf(const CompoundStroke &compound)
    {
        return static_cast<const BitmapStroke &>(compound.at(0));
    }
    static std::unique_ptr<BitmapStroke> patch(QRect rect, int value = 200)
    {
        QImage image = blankCoverage(rect.size());
        image.fill(value);
        return std::make_unique<BitmapStroke>(image, rect);
    }
};

// The first two come before the renderer is there.
void tst_StrokeCollapse::linesNeedARenderer()
{
    QVERIFY(!OffscreenRenderer::instance()->isInitialized());
    CompoundStroke compound = someLines(1);
    const int before = compound.recursiveCount();
    QVERIFY(!compound.collapse(2, QRect(), nullptr));
    QCOMPARE(compound.recursiveCount(), before);
}

void tst_StrokeCollapse::bitmapsNeedNoRenderer()
{
    CompoundStroke compound;
    compound.append(patch(QRect(10, 10, 5, 5)));
    QVERIFY(compound.collapse(1, QRect(), nullptr));
    QVERIFY(TestSupport::startRenderer(frame));
}

void tst_StrokeCollapse::onlyOneBitmapIsLeft()
{
    CompoundStroke compound = someLines(2);
    QVERIFY(compound.collapse(2, QRect(), nullptr));
    QCOMPARE(compound.count(), 1);
    QCOMPARE(compound.recursiveCount(), 2);
    QCOMPARE(compound.at(0).type(), Stroke::Type::Bitmap);
}

void tst_StrokeCollapse::lookStays_data()
{
    QTest::addColumn<int>("scale");
    QTest::newRow("1") << 1;
    QTest::newRow("2") << 2;
}

void tst_StrokeCollapse::lookStays()
{
    QFETCH(const int, scale);
    const TestPen marker{{4, 4, 1, 1}};
    CompoundStroke compound;
    compound.append(straightStroke(marker, {50, 50}, {350, 200}));
    compound.append(straightStroke(TestEraser{{8, 8, 1, 1}}, {200, 50}, {200, 250}));
    const QImage before = renderedOn(frame, compound);
    QVERIFY(compound.collapse(scale, QRect(), nullptr));
    const QImage after = renderedOn(frame, compound);
    // At a rim, two by two pixels are not quite the one that they become.
    QVERIFY(largestDifference(after, before) <= (scale == 1 ? 0 : 40));
    QVERIFY(coverageAt(after, 100, 75) > 240);
    QVERIFY(coverageAt(after, 200, 125) < 10);
}

void tst_StrokeCollapse::emptyOneGetsAnEmptyBitmap()
{
    CompoundStroke compound;
    QVERIFY(compound.collapse(2, QRect(), nullptr));
    QCOMPARE(compound.count(), 1);
    QVERIFY(compound.at(0).isEmpty());
    QVERIFY(bitmapOf(compound).boundingRect().isNull());
    QVERIFY(bitmapOf(compound).image().isNull());
}

void tst_StrokeCollapse::onlyErasersGetAnEmptyBitmap()
{
    CompoundStroke compound;
    compound.append(straightStroke(TestEraser(), {50, 50}, {350, 200}));
    QVERIFY(compound.boundingRect().isNull());
    QVERIFY(compound.collapse(2, QRect(), nullptr));
    QVERIFY(compound.at(0).isEmpty());
}

void tst_StrokeCollapse::imageHasScaleTimesThePixels_data()
{
    QTest::addColumn<int>("scale");
    for (const int scale : {1, 2, 3})
        QTest::addRow("%d", scale) << scale;
}

void tst_StrokeCollapse::imageHasScaleTimesThePixels()
{
    QFETCH(const int, scale);
    CompoundStroke compound = someLines(3);
    const QRect bounds = compound.boundingRect();
    QVERIFY(compound.collapse(scale, QRect(), nullptr));
    QCOMPARE(bitmapOf(compound).boundingRect(), bounds);
    QCOMPARE(bitmapOf(compound).image().size(), bounds.size() * scale);
    QCOMPARE(compound.boundingRect(), bounds);
}

void tst_StrokeCollapse::rectangleLimitsTheBitmap()
{
    CompoundStroke compound;
    compound.append(patch(QRect(10, 20, 100, 50)));
    compound.append(patch(QRect(300, 20, 10, 10)));
    QVERIFY(compound.collapse(2, QRect(50, 0, 100, 40), nullptr));
    QCOMPARE(bitmapOf(compound).boundingRect(), QRect(50, 20, 100, 20));
    QCOMPARE(coverageAt(renderedOn(frame, compound), 60, 30), 200);
}

void tst_StrokeCollapse::masksAndTransformAreGone()
{
    CompoundStroke compound;
    compound.append(patch(QRect(0, 0, 50, 50)));
    compound.addCut(rectPath(0, 0, 20, 50));
    compound.setTransform(QTransform::fromTranslate(100, 30));
    QVERIFY(compound.collapse(1, QRect(), nullptr));
    QVERIFY(compound.transform().isIdentity());
    QVERIFY(compound.cutPath().isEmpty() && compound.keepPath().isEmpty());
    const QImage image = renderedOn(frame, compound);
    QCOMPARE(coverageAt(image, 110, 40), 0);
    QCOMPARE(coverageAt(image, 130, 40), 200);
}

void tst_StrokeCollapse::progressIsLedThroughAllStrokes()
{
    auto inner = std::make_unique<CompoundStroke>(someLines(4, 3));
    CompoundStroke compound = someLines(5, 4);
    compound.append(std::move(inner));
    TestSupport::WatchedProgress progress;
    // 4 lines, 3 lines, and a step for each of the two groups.
    QVERIFY(compound.collapse(2, QRect(), &progress));
    QStringList steps = progress.events();
    steps.removeAll("look");
    QCOMPARE(steps.first(), "0 of 9");
    QCOMPARE(steps.last(), "9");
}

void tst_StrokeCollapse::cancelChangesNothing()
{
    PickUpMaker maker(6, frame);
    StrokeDrawing drawing(frame);
    for (int i = 0; i < 10; ++i)
        drawing.addStroke(maker.anyLine());
    const QImage before = drawing.image();
    const QUuid id = QUuid::createUuid();
    drawing.setCopyId(id);
    for (const int look : {1, 3}) {
        TestSupport::WatchedProgress progress(look);
        QVERIFY(!drawing.collapse(2, QRect(), &progress));
        QCOMPARE(drawing.strokes().recursiveCount(), 11);
        QCOMPARE(drawing.image(), before);
        QCOMPARE(drawing.copyId(), id);
    }
}

void tst_StrokeCollapse::tooLargeOneIsLeftAlone()
{
    CompoundStroke compound;
    compound.append(patch(QRect(0, 0, 10, 10)));
    compound.setTransform(QTransform::fromScale(100'000, 100'000));
    QVERIFY(!compound.collapse(2, QRect(), nullptr));
    QCOMPARE(bitmapOf(compound).boundingRect(), QRect(0, 0, 10, 10));
    QVERIFY(compound.collapse(2, QRect(0, 0, 500, 400), nullptr));
}

void tst_StrokeCollapse::noScaleIsRefused()
{
    CompoundStroke compound;
    compound.append(patch(QRect(0, 0, 10, 10)));
    QVERIFY(!compound.collapse(0, QRect(), nullptr));
    QVERIFY(!compound.collapse(-2, QRect(), nullptr));
}

void tst_StrokeCollapse::collapsedDrawingCanBeCutAndMoved()
{
    StrokeDrawing drawing(frame);
    drawing.addStroke(straightStroke(TestPen{{4, 4, 1, 1}}, {50, 100}, {350, 100}));
    QVERIFY(drawing.collapse(2, QRect(), nullptr));
    auto part = drawing.extract(rectPath(100, 50, 100, 100));
    QVERIFY(drawing.cutPath(rectPath(100, 50, 100, 100)));
    QVERIFY(coverageAt(drawing.image(), 150, 100) < 2);
    QVERIFY(coverageAt(drawing.image(), 250, 100) > 240);
    part->setTransform(part->transform() * QTransform::fromTranslate(0, 80));
    drawing.addStroke(std::move(part));
    QVERIFY(coverageAt(drawing.image(), 150, 180) > 240);
    QVERIFY(coverageAt(drawing.image(), 250, 180) < 2);
}

void tst_StrokeCollapse::collapsedDrawingCanBeCutIntoPieces()
{
    PickUpMaker maker(7, frame);
    StrokeDrawing drawing(frame);
    for (int i = 0; i < 40; ++i)
        drawing.addStroke(maker.anyLine());
    QVERIFY(drawing.collapse(2, QRect(), nullptr));
    for (int i = 0; i < 10; ++i) {
        const QPainterPath path = maker.lasso(40, 150);
        auto part = drawing.extract(path);
        if (part->isEmpty())
            continue;
        QCOMPARE(part->picture(), renderedOn(frame, *part).copy(part->pictureRect()));
        drawing.cutPath(path);
        part->setTransform(part->transform() * maker.placing());
        drawing.addStroke(std::move(part));
        QCOMPARE(drawing.image(), renderedOn(frame, drawing.strokes()));
    }
}

void tst_StrokeCollapse::changesForgetThePicture_data()
{
    using Change = std::function<void(CompoundStroke &)>;
    QTest::addColumn<Change>("change");
    QTest::newRow("append") << Change([](CompoundStroke &c) { c.append(patch(QRect(0, 0, 5, 5))); });
    QTest::newRow("removeLast") << Change([](CompoundStroke &c) { c.removeLast(); });
    QTest::newRow("setTransform") << Change([](CompoundStroke &c) { c.setTransform(QTransform::fromScale(2, 2)); });
    QTest::newRow("addCut") << Change([](CompoundStroke &c) { c.addCut(rectPath(0, 0, 50, 50)); });
    QTest::newRow("setKeep") << Change([](CompoundStroke &c) { c.setKeep(rectPath(0, 0, 50, 50)); });
    QTest::newRow("cutInside") << Change([](CompoundStroke &c) { c.cutInside(rectPath(0, 0, 400, 300)); });
    QTest::newRow("cutOutside") << Change([](CompoundStroke &c) { c.cutOutside(rectPath(0, 0, 5, 5)); });
    QTest::newRow("keepOldest") << Change([](CompoundStroke &c) { c.keepOldest(1); });
    QTest::newRow("collapse") << Change([](CompoundStroke &c) { c.collapse(1, QRect(), nullptr); });
}

void tst_StrokeCollapse::changesForgetThePicture()
{
    QFETCH(const std::function<void(CompoundStroke &)>, change);
    CompoundStroke compound = someLines(8);
    compound.setPicture(renderedOn(frame, compound), QRect(QPoint(0, 0), frame));
    change(compound);
    QVERIFY(compound.picture().isNull());
    QVERIFY(compound.pictureRect().isNull());
}

void tst_StrokeCollapse::copyKnowsThePicture()
{
    CompoundStroke compound = someLines(9);
    compound.setPicture(renderedOn(frame, compound), QRect(QPoint(0, 0), frame));
    const auto copy = compound.clone();
    const auto &same = static_cast<const CompoundStroke &>(*copy);
    QCOMPARE(same.picture().constBits(), compound.picture().constBits());
    QCOMPARE(same.pictureRect(), QRect(QPoint(0, 0), frame));
}

QTEST_MAIN(tst_StrokeCollapse)
#include "tst_strokecollapse.moc"
