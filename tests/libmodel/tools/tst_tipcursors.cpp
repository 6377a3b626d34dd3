#include "libmodel/tools/tipcursors.h"

#include "libmodel/tools/cursors.h"
#include "libmodel/tools/erasertool.h"
#include "libmodel/tools/pentool.h"
#include "support/isolatedstore.h"

#include <QElapsedTimer>
#include <QImage>
#include <QSignalSpy>
#include <QTest>

using namespace Model;

namespace {

QImage pictureOf(const QCursor &cursor)
{
    return cursor.pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
}

/// Where the centre of a picture of this side lies: in its middle, and one pixel on.
double centerOf(const QImage &picture)
{
    return picture.width() / 2.0 + 1.0;
}

int alphaAt(const QImage &picture, double dx, double dy)
{
    const double center = centerOf(picture);
    return qAlpha(picture.pixel(qFloor(center + dx), qFloor(center + dy)));
}

/// Counts the pictures it makes.
class CountingPen : public PenTool
{
public:
    using PenTool::PenTool;

    [[nodiscard]] QCursor makeCursor(double inner, double outer, double scale, bool faint) const override
    {
        ++made;
        return PenTool::makeCursor(inner, outer, scale, faint);
    }

    mutable int made = 0;
};

} // namespace

class tst_TipCursors : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_store.reset(); }

    void penPictureIsTheCircleWithRoomForTheArms_data();
    void penPictureIsTheCircleWithRoomForTheArms();
    void eraserPictureIsTwiceTheCircleAndABit_data();
    void eraserPictureIsTwiceTheCircleAndABit();
    void circleHasTheOuterRadius();
    void armsLeaveTheInnerRadiusFree();
    void eraserHasNoArms();
    void faintIsHalfAsDark();
    void linesHaveTheirColours();
    void ringFillsTheRangeOfSizes();

    void adaptingCursorIsMadeOfTheRadii();
    void adaptingCursorFollowsTheViewScale();
    void cursorIsToldOnlyWhenItChanges();
    void cursorIsMadeOnce();
    void eraserTooLargeForACursorShowsTheFixedOne();

private:
    IsolatedStore m_store;
};

void tst_TipCursors::penPictureIsTheCircleWithRoomForTheArms_data()
{
    QTest::addColumn<double>("outer");
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("side");
    QTest::newRow("at least eight") << 0.25 << 1.0 << 8;
    QTest::newRow("a multiple of four") << 11.0 << 1.0 << 20;
    QTest::newRow("rounded first") << 9.8 << 1.0 << 20;
    QTest::newRow("scaled") << 10.0 << 3.0 << 60;
}

void tst_TipCursors::penPictureIsTheCircleWithRoomForTheArms()
{
    QFETCH(double, outer);
    QFETCH(double, scale);
    QFETCH(int, side);
    const QCursor cursor = penTipCursor(0.5, outer, scale, false);
    QCOMPARE(cursor.pixmap().size(), QSize(side + 28, side + 28));
    QCOMPARE(cursor.pixmap().devicePixelRatio(), 2.0);
    // Half of (side + 28) / 2 + 1, rounded down.
    const int hotSpot = ((side + 28) / 2 + 1) / 2;
    QCOMPARE(cursor.hotSpot(), QPoint(hotSpot, hotSpot));
}

void tst_TipCursors::eraserPictureIsTwiceTheCircleAndABit_data()
{
    penPictureIsTheCircleWithRoomForTheArms_data();
}

void tst_TipCursors::eraserPictureIsTwiceTheCircleAndABit()
{
    QFETCH(double, outer);
    QFETCH(double, scale);
    QFETCH(int, side);
    const QCursor cursor = eraserTipCursor(outer, scale, false);
    QCOMPARE(cursor.pixmap().size(), QSize(2 * side + 14, 2 * side + 14));
    QCOMPARE(cursor.pixmap().devicePixelRatio(), 2.0);
    const int hotSpot = (side + 7 + 1) / 2;
    QCOMPARE(cursor.hotSpot(), QPoint(hotSpot, hotSpot));
}

void tst_TipCursors::circleHasTheOuterRadius()
{
    for (const QCursor &cursor : {penTipCursor(0.0, 40.0, 1.0, false), eraserTipCursor(40.0, 1.0, false)}) {
        const QImage picture = pictureOf(cursor);
        // On a diagonal, where no arm is: nothing well inside, dark on the line, nothing well outside.
        const double diagonal = std::sqrt(0.5);
        QCOMPARE(alphaAt(picture, 35 * diagonal, 35 * diagonal), 0);
        QVERIFY(alphaAt(picture, 40 * diagonal, 40 * diagonal) > 120);
        QCOMPARE(alphaAt(picture, 46 * diagonal, 46 * diagonal), 0);
        QVERIFY(alphaAt(picture, -40 * diagonal, 40 * diagonal) > 120);
    }
}

void tst_TipCursors::armsLeaveTheInnerRadiusFree()
{
    // Circle of 80, arms from 20 to 54 of the centre.
    const QImage picture = pictureOf(penTipCursor(20.0, 40.0, 1.0, false));
    QCOMPARE(picture.width(), 108);
    for (const QPoint direction : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
        QCOMPARE(alphaAt(picture, 15 * direction.x(), 15 * direction.y()), 0);
        QVERIFY(alphaAt(picture, 30 * direction.x(), 30 * direction.y()) > 0);
        QVERIFY(alphaAt(picture, 50 * direction.x(), 50 * direction.y()) > 0);
    }
    QCOMPARE(alphaAt(picture, 0, 0), 0);
}

void tst_TipCursors::eraserHasNoArms()
{
    const QImage picture = pictureOf(eraserTipCursor(40.0, 1.0, false));
    QCOMPARE(alphaAt(picture, 30, 0), 0);
    QCOMPARE(alphaAt(picture, 0, -60), 0);
}

void tst_TipCursors::faintIsHalfAsDark()
{
    const QImage faint = pictureOf(penTipCursor(10.0, 40.0, 1.0, true));
    const QImage opaque = pictureOf(penTipCursor(10.0, 40.0, 1.0, false));
    // The middle of an arm has nothing else under it: alpha 51 or 102, at three quarters.
    QVERIFY(std::abs(alphaAt(faint, 25, 0) - 0.75 * 51) <= 1.5);
    QVERIFY(std::abs(alphaAt(opaque, 25, 0) - 0.75 * 102) <= 1.5);
    QVERIFY(alphaAt(faint, -28, 28) < alphaAt(opaque, -28, 28));
}

void tst_TipCursors::linesHaveTheirColours()
{
    const QImage picture = pictureOf(penTipCursor(10.0, 40.0, 1.0, false));
    const int center = qRound(centerOf(picture));
    // An arm is two pixels wide with two pixels of light on each side.
    const QRgb arm = picture.pixel(center + 25, center);
    const QRgb above = picture.pixel(center + 25, center - 2);
    const QRgb below = picture.pixel(center + 25, center + 2);
    QCOMPARE(qRed(arm), 0);
    QCOMPARE(qRed(above), 255);
    QCOMPARE(qRed(below), 255);
    // White at alpha 64, three quarters of it.
    QVERIFY(std::abs(qAlpha(above) - 0.75 * 64) <= 1.5);
    QCOMPARE(qAlpha(picture.pixel(center + 25, center - 5)), 0);
    QCOMPARE(qAlpha(picture.pixel(center + 25, center + 5)), 0);
}

void tst_TipCursors::ringFillsTheRangeOfSizes()
{
    const QImage picture = pictureOf(sizeRangeCursor(20.0, 40.0, 1.0));
    const double diagonal = std::sqrt(0.5);
    QCOMPARE(alphaAt(picture, 12 * diagonal, 12 * diagonal), 0);
    QVERIFY(std::abs(alphaAt(picture, 30 * diagonal, 30 * diagonal) - 0.25 * 255) <= 1.5);
    QCOMPARE(alphaAt(picture, 46 * diagonal, 46 * diagonal), 0);
    QVERIFY(alphaAt(picture, 50, 0) > 0);
}

void tst_TipCursors::adaptingCursorIsMadeOfTheRadii()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangeLimits(20, 60);
    QCOMPARE(pictureOf(tool.cursor()), pictureOf(tool.makeCursor(10.0, 30.0, 1.0, true)));
    Settings::instance()->setDrawCursorOpacity(MR::DrawCursorOpacity::Opaque);
    QCOMPARE(pictureOf(tool.cursor()), pictureOf(tool.makeCursor(10.0, 30.0, 1.0, false)));
}

void tst_TipCursors::adaptingCursorFollowsTheViewScale()
{
    PenTool tool(Tool::PenType::Pencil);
    tool.setSizeRangeLimits(20, 60);
    // Three logical pixels per paper pixel are six of the picture.
    tool.setViewScale(3.0);
    QCOMPARE(pictureOf(tool.cursor()), pictureOf(tool.makeCursor(10.0, 30.0, 6.0, true)));
    QCOMPARE(tool.cursor().pixmap().deviceIndependentSize(), QSizeF(194, 194));
    tool.setViewScale(0.0);
    QCOMPARE(tool.viewScale(), 3.0);
}

void tst_TipCursors::cursorIsToldOnlyWhenItChanges()
{
    PenTool tool(Tool::PenType::Pencil);
    QSignalSpy changes(&tool, &Tool::cursorChanged);
    tool.setSizeRangePercent(10, 50);
    QCOMPARE(changes.size(), 1);
    tool.setSizeRangePercent(10, 50);
    tool.setOpacityRangePercent(3, 4);
    tool.updateCursor();
    QCOMPARE(changes.size(), 1);
    tool.setViewScale(2.0);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes[1][0].value<QCursor>(), tool.cursor());
}

void tst_TipCursors::cursorIsMadeOnce()
{
    const CountingPen tool(Tool::PenType::Pencil);
    QCOMPARE(tool.made, 0);
    (void)tool.cursor();
    (void)tool.cursor();
    QCOMPARE(tool.made, 1);
}

void tst_TipCursors::eraserTooLargeForACursorShowsTheFixedOne()
{
    EraserTool tool(Tool::EraserType::RubberEraser);
    tool.setSizeRangeLimits(20, 60);
    // A circle of 60 x 4.2 logical pixels is 504 of the picture, which is twice as large and 14.
    tool.setViewScale(4.2);
    QCOMPARE(tool.cursor().pixmap().width(), 1022);
    // With 516 it would be 1046.
    tool.setViewScale(4.3);
    QCOMPARE(tool.cursor().pixmap().cacheKey(), cursorPixmap(QStringLiteral("pointer-eraseFixedFaint")).cacheKey());
}

QTEST_MAIN(tst_TipCursors)
#include "tst_tipcursors.moc"
