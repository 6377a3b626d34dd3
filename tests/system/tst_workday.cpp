#include "system/programdriver.h"
#include "system/screenlines.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace ScreenLines;

namespace {

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
