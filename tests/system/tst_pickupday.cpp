#include "system/programdriver.h"
#include "system/screenlines.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <numbers>

using namespace ScreenLines;

namespace {

constexpr double lineHeight = 0.3;
constexpr double newHeight = 0.62;
/// Rings the middle of the line, and where that lies once it was moved down.
constexpr QRectF middle(0.4, 0.22, 0.2, 0.16);
constexpr QRectF movedMiddle(0.4, 0.54, 0.2, 0.16);
/// What the ring surely took of the line, and what it surely left.
constexpr QRectF insideOfRing(0.43, 0.25, 0.14, 0.1);
constexpr QRectF leftOfRing(0.2, 0.25, 0.17, 0.1);
constexpr QRectF rightOfRing(0.63, 0.25, 0.17, 0.1);
constexpr int somePixels = 60;

/// The frame of a floating selection in \a picture, found by the light squares on its corners. Null if nothing floats.
QRect handles(const QImage &picture)
{
    constexpr QRgb lightPanel = qRgb(221, 216, 213);
    constexpr int halfFilling = 4; // of a square, which has a dark rim
    QRect rect;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if ((picture.pixel(x, y) & RGB_MASK) == (lightPanel & RGB_MASK))
                rect |= QRect(x, y, 1, 1);
        }
    }
    return rect.isNull() ? rect : rect.adjusted(halfFilling, halfFilling, -halfFilling, -halfFilling);
}

/// A quarter turn about \a pivot, clockwise, from \a start.
QList<QPoint> quarterTurn(QPoint pivot, QPoint start)
{
    const QPointF arm = start - pivot;
    constexpr int steps = 24;
    QList<QPoint> points;
    for (int step = 0; step <= steps; ++step) {
        const double angle = std::numbers::pi / 2.0 * step / steps;
        points << pivot + QPointF(arm.x() * std::cos(angle) - arm.y() * std::sin(angle),
                                  arm.x() * std::sin(angle) + arm.y() * std::cos(angle))
                              .toPoint();
    }
    return points;
}

/// In steps, from the middle of the part \a from to that of the part \a to.
QList<QPoint> way(const QRect &area, const QRectF &from, const QRectF &to)
{
    const QPoint start = pointIn(area, from.center().x(), from.center().y());
    const QPoint end = pointIn(area, to.center().x(), to.center().y());
    constexpr int steps = 15;
    QList<QPoint> points;
    for (int step = 0; step <= steps; ++step)
        points << start + (end - start) * step / steps;
    return points;
}

} // namespace

/// Parts of a drawing as things to handle: the real program under a window manager, with a person's mouse and keys.
class tst_PickUpDay : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void copyIsMovedStampedAndTakenBack();
    void cutTurnedStampedSavedAndReadAgain();
    void whatWasCutIsInTheFileThoughItFloats();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_PickUpDay::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(m_folder->path()));
}

void tst_PickUpDay::copyIsMovedStampedAndTakenBack()
{
    ProgramDriver program;
    program.start();
    const quint64 window = program.waitForWindow("^Untitled: ");
    QVERIFY(window);
    const QRect area = sheetArea(program.geometry(window));
    const auto look = [&] { return program.grabWhenSettled(area); };
    program.key("6");
    program.drag(levelLine(area, lineHeight));
    const QImage drawn = look();
    QVERIFY(inkIn(drawn, insideOfRing) > somePixels);

    // A ring around nothing picks up nothing.
    program.key("l");
    program.drag(ring(area, QRectF(0.3, 0.7, 0.2, 0.2)));
    QCOMPARE(look(), drawn);

    program.drag(ring(area, middle));
    QVERIFY(!handles(look()).isNull());
    program.drag(way(area, middle, movedMiddle));
    QImage picture = look();
    QVERIFY(inkIn(picture, movedMiddle) > somePixels);
    QVERIFY(inkIn(picture, insideOfRing) > somePixels);

    program.key("Return");
    const QImage stamped = look();
    QVERIFY(handles(stamped).isNull());
    QVERIFY(inkIn(stamped, movedMiddle) > somePixels);
    QVERIFY(inkIn(stamped, insideOfRing) > somePixels);

    // Back in three steps: the stamp, the way, the picking up.
    program.key("ctrl+z");
    picture = look();
    QVERIFY(!handles(picture).isNull());
    QVERIFY(inkIn(picture, movedMiddle) > somePixels);
    program.key("ctrl+z");
    picture = look();
    QVERIFY(!handles(picture).isNull());
    QCOMPARE(inkIn(picture, movedMiddle), 0);
    program.key("ctrl+z");
    QCOMPARE(look(), drawn);

    // And there again.
    for (int step = 0; step < 3; ++step)
        program.key("ctrl+shift+z");
    QCOMPARE(look(), stamped);
    program.key("ctrl+q");
    QVERIFY(program.waitForDialog("^Save$"));
    program.key("Tab");
    program.key("space");
    QCOMPARE(program.waitForExit(), 0);
}

void tst_PickUpDay::cutTurnedStampedSavedAndReadAgain()
{
    const QString path = m_folder->filePath("pieces.mr");
    ProgramDriver program;
    program.start();
    const quint64 window = program.waitForWindow("^Untitled: ");
    QVERIFY(window);
    const QRect area = sheetArea(program.geometry(window));
    const auto look = [&] { return program.grabWhenSettled(area); };
    program.key("6");
    program.drag(levelLine(area, lineHeight));
    const QImage drawn = look();

    program.key("x");
    program.drag(ring(area, middle));
    program.drag(way(area, middle, movedMiddle));
    QImage picture = look();
    QCOMPARE(inkIn(picture, insideOfRing), 0);
    QVERIFY(inkIn(picture, leftOfRing) > somePixels);
    QVERIFY(inkIn(picture, rightOfRing) > somePixels);
    QVERIFY(inkIn(picture, movedMiddle) > somePixels);

    // By the circle beyond the bottom right corner, about the middle: a level piece becomes an upright one.
    const QRect frame = handles(picture);
    QVERIFY(!frame.isNull());
    constexpr QPoint beyondCorner(12, 12);
    program.drag(quarterTurn(area.topLeft() + frame.center(), area.topLeft() + frame.bottomRight() + beyondCorner));
    const double halfLength = 0.07 * area.width() / area.height();
    const QRectF above(0.47, newHeight - halfLength, 0.06, 0.6 * halfLength);
    const QRectF below(0.47, newHeight + 0.4 * halfLength, 0.06, 0.6 * halfLength);
    const QRectF toTheLeft(0.41, newHeight - 0.02, 0.05, 0.04);
    picture = look();
    QVERIFY(inkIn(picture, above) > somePixels / 2);
    QVERIFY(inkIn(picture, below) > somePixels / 2);
    QCOMPARE(inkIn(picture, toTheLeft), 0);

    // A press outside stamps, and draws nothing itself.
    const QRectF outside(0.1, 0.75, 0.2, 0.2);
    program.drag({pointIn(area, 0.2, 0.85), pointIn(area, 0.22, 0.86)});
    const QImage stamped = look();
    QVERIFY(handles(stamped).isNull());
    QCOMPARE(inkIn(stamped, outside), 0);
    QVERIFY(inkIn(stamped, above) > somePixels / 2);
    QVERIFY(inkIn(stamped, below) > somePixels / 2);

    program.key("ctrl+s");
    QVERIFY(program.waitForDialog("^Save Scene$"));
    program.type(path);
    program.key("Return");
    QTRY_VERIFY_WITH_TIMEOUT(program.title(window).startsWith("pieces.mr: "), 10000);

    // All of it can still be taken back.
    for (int step = 0; step < 4; ++step)
        program.key("ctrl+z");
    QCOMPARE(look(), drawn);
    for (int step = 0; step < 4; ++step)
        program.key("ctrl+shift+z");
    QCOMPARE(look(), stamped);
    QTRY_VERIFY(!program.title(window).contains('*'));
    program.key("ctrl+q");
    QCOMPARE(program.waitForExit(), 0);

    ProgramDriver again;
    again.start({path});
    QVERIFY(again.waitForWindow("^pieces.mr: "));
    QCOMPARE(again.grabWhenSettled(area), stamped);
    again.key("ctrl+q");
    QCOMPARE(again.waitForExit(), 0);
}

void tst_PickUpDay::whatWasCutIsInTheFileThoughItFloats()
{
    const QString path = m_folder->filePath("floating.mr");
    ProgramDriver program;
    program.start();
    const quint64 window = program.waitForWindow("^Untitled: ");
    QVERIFY(window);
    const QRect area = sheetArea(program.geometry(window));
    program.key("6");
    program.drag(levelLine(area, lineHeight));
    program.key("x");
    program.drag(ring(area, middle));
    program.drag(way(area, middle, movedMiddle));
    QVERIFY(!handles(program.grabWhenSettled(area)).isNull());
    program.key("ctrl+s");
    QVERIFY(program.waitForDialog("^Save Scene$"));
    program.type(path);
    program.key("Return");
    QTRY_VERIFY_WITH_TIMEOUT(program.title(window).startsWith("floating.mr: "), 10000);
    QTRY_VERIFY(!program.title(window).contains('*'));
    program.key("ctrl+q");
    QCOMPARE(program.waitForExit(), 0);

    ProgramDriver again;
    again.start({path});
    QVERIFY(again.waitForWindow("^floating.mr: "));
    const QImage picture = again.grabWhenSettled(area);
    QCOMPARE(inkIn(picture, insideOfRing), 0);
    QVERIFY(inkIn(picture, leftOfRing) > somePixels);
    QVERIFY(inkIn(picture, movedMiddle) > somePixels);
    QVERIFY(handles(picture).isNull());
    again.key("ctrl+q");
    QCOMPARE(again.waitForExit(), 0);
}

QTEST_MAIN(tst_PickUpDay)
#include "tst_pickupday.moc"
