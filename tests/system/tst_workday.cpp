#include "system/programdriver.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

namespace {

QRect sheetArea(const QRect &window)
{
    return window.adjusted(window.width() / 8, window.height() / 8, -window.width() / 8, -window.height() / 8);
}

/// A level line across \a area at \a height (0 to 1 from its top).
QList<QPoint> levelLine(const QRect &area, double height)
{
    QList<QPoint> points;
    for (int step = 0; step <= 20; ++step)
        points << area.topLeft() + QPoint(area.width() * (20 + 3 * step) / 100, int(area.height() * height));
    return points;
}

/// How dark the blue line is that crosses \a picture at \a height: pixels whose blue stands out by more than
/// \a contrast, in a band around it.
int ink(const QImage &picture, double height, int contrast = 60)
{
    const int middle = int(picture.height() * height);
    int count = 0;
    for (int y = std::max(0, middle - 12); y < std::min(picture.height(), middle + 12); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            count += qBlue(pixel) - qRed(pixel) > contrast ? 1 : 0;
        }
    }
    return count;
}

constexpr double firstLine = 0.3;
constexpr double secondLine = 0.5;
constexpr double thirdLine = 0.7;
constexpr int aLine = 300;
/// The contrast of a line that shines through from another frame.
constexpr int faint = 10;

} // namespace

/// A day's work in small: the real program under a window manager, with a person's mouse and keys.
class tst_Workday : public QObject
{
    Q_OBJECT

private slots:
    void drawFlipZoomUndoSaveAndQuit();
    void heldKeysGiveTheToolBack();
};

void tst_Workday::drawFlipZoomUndoSaveAndQuit()
{
    QTemporaryDir folder;
    QVERIFY(QDir::setCurrent(folder.path()));
    const QString path = folder.filePath("day.mr");
    ProgramDriver program;
    program.start();
    const quint64 window = program.waitForWindow("^Untitled: ");
    QVERIFY(window);
    const QRect area = sheetArea(program.geometry(window));
    const auto look = [&] { return program.grabWhenSettled(area); };

    // Two drawings, one behind the other.
    program.key("6");
    program.drag(levelLine(area, firstLine));
    QVERIFY(ink(look(), firstLine) > aLine);
    program.key("ctrl+Down");
    program.drag(levelLine(area, secondLine));
    QVERIFY(ink(look(), secondLine) > aLine);

    // Flipping: each frame shows its own line, and the other one shines through.
    program.key("Left");
    QImage picture = look();
    QVERIFY(ink(picture, firstLine) > aLine);
    QCOMPARE(ink(picture, secondLine), 0);
    QVERIFY(ink(picture, secondLine, faint) > aLine);
    program.key("Right");
    picture = look();
    QVERIFY(ink(picture, secondLine) > aLine);
    QCOMPARE(ink(picture, firstLine), 0);

    // Without the backlight only one is left.
    program.key("shift+space");
    QCOMPARE(ink(look(), firstLine), 0);
    program.holdKey("Return");
    QTRY_VERIFY_WITH_TIMEOUT(ink(look(), firstLine) > aLine, 5000);
    program.releaseKey("Return");
    QTRY_VERIFY_WITH_TIMEOUT(ink(look(), secondLine) > aLine && ink(look(), firstLine) == 0, 5000);
    const QImage unzoomed = look();

    // The view by key.
    const QString titleBefore = program.title(window);
    program.key("ctrl+equal");
    QTRY_VERIFY(program.title(window) != titleBefore);
    QVERIFY(look() != unzoomed);
    program.key("ctrl+1");
    QTRY_VERIFY(program.title(window).endsWith(" 100%"));

    // A line too many, and back.
    program.key("ctrl+0");
    const QImage good = look();
    program.drag(levelLine(area, thirdLine));
    QVERIFY(ink(look(), thirdLine) > aLine);
    program.key("ctrl+z");
    QCOMPARE(look(), good);

    program.key("ctrl+s");
    QVERIFY(program.waitForDialog("^Save Scene$"));
    program.type(path);
    program.key("Return");
    QTRY_VERIFY_WITH_TIMEOUT(program.title(window).startsWith("day.mr: "), 10000);
    const qint64 savedSize = QFileInfo(path).size();
    QVERIFY(savedSize > 0);

    // Quitting with something unsaved asks; Save is the answer that Return gives.
    program.drag(levelLine(area, thirdLine));
    QTRY_VERIFY(program.title(window).contains('*'));
    program.key("ctrl+q");
    QVERIFY(program.waitForDialog("^Save$"));
    program.key("Return");
    QCOMPARE(program.waitForExit(), 0);
    QVERIFY(QFileInfo(path).size() > savedSize);

    ProgramDriver again;
    again.start({path});
    QVERIFY(again.waitForWindow("^day.mr: "));
    again.key("ctrl+0");
    picture = again.grabWhenSettled(area);
    QVERIFY(ink(picture, secondLine) > aLine / 2);
    QVERIFY(ink(picture, thirdLine) > aLine / 2);
    again.key("ctrl+q");
    QCOMPARE(again.waitForExit(), 0);
}

void tst_Workday::heldKeysGiveTheToolBack()
{
    QTemporaryDir folder;
    QVERIFY(QDir::setCurrent(folder.path()));
    ProgramDriver program;
    program.start();
    const quint64 window = program.waitForWindow("^Untitled: ");
    QVERIFY(window);
    const QRect area = sheetArea(program.geometry(window));
    program.key("6");
    const QImage before = program.grabWhenSettled(program.geometry(window));

    // The space bar pans in the middle of the view, and draws nothing.
    program.moveMouse(area.center());
    program.holdKey("space");
    program.drag({area.center(), area.center() + QPoint(10, 6), area.center() + QPoint(30, 20)});
    program.releaseKey("space");
    QVERIFY(!program.title(window).contains('*'));
    const QImage panned = program.grabWhenSettled(program.geometry(window));
    QVERIFY(panned != before);

    // So does the hand tool's key; afterwards the brush draws again.
    program.holdKey("h");
    program.drag({area.center(), area.center() + QPoint(10, 6), area.center() + QPoint(30, 20)});
    program.releaseKey("h");
    QVERIFY(!program.title(window).contains('*'));
    QVERIFY(program.grabWhenSettled(program.geometry(window)) != panned);
    program.drag(levelLine(area, secondLine));
    QTRY_VERIFY(program.title(window).contains('*'));
    QVERIFY(ink(program.grabWhenSettled(area), secondLine) > aLine);
    program.key("ctrl+q");
    QVERIFY(program.waitForDialog("^Save$"));
    program.key("Tab");
    program.key("space");
    QCOMPARE(program.waitForExit(), 0);
}

QTEST_MAIN(tst_Workday)
#include "tst_workday.moc"
