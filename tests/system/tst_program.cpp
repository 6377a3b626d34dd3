#include "system/programdriver.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// The window's inside, away from the shadows and menus, where the sheet lies.
QRect sheetArea(const QRect &window)
{
    return window.adjusted(window.width() / 8, window.height() / 8, -window.width() / 8, -window.height() / 8);
}

/// A wave across \a area, from left to right.
QList<QPoint> wave(const QRect &area)
{
    QList<QPoint> points;
    for (int step = 0; step <= 40; ++step) {
        const double x = area.left() + area.width() * (0.2 + 0.6 * step / 40.0);
        const double y = area.center().y() + area.height() * 0.2 * std::sin(step * 0.3);
        points << QPoint(qRound(x), qRound(y));
    }
    return points;
}

/// How many pixels of \a image are clearly bluish, as the first layer's ink is and neither paper nor desk.
int inkedPixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qBlue(pixel) - qRed(pixel) > 30)
                ++count;
        }
    }
    return count;
}

/// The largest difference of a channel between two pictures of the same size; 255 when the sizes differ.
int largestDifference(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return 255;
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            largest = std::max(
                {largest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
        }
    }
    return largest;
}

QByteArray contentOf(const QString &filename)
{
    QFile file(filename);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The real program, started as a person starts it, with real mouse and keys on a real X server.
class tst_Program : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void drawnUndoneRedoneSavedAndReopened();
    void unreadableArgumentIsToldAndANewSceneOpens();
    void brokenFileIsToldAndANewSceneOpens();
    void closingAModifiedSceneAsksAndCancelKeepsTheWindow();
    void withoutOpenGLItSaysSoAndEnds();
    void windowComesBackWhereItWas();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_Program::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    QVERIFY(QDir::setCurrent(m_folder->path()));
}

void tst_Program::drawnUndoneRedoneSavedAndReopened()
{
    const QString path = m_folder->filePath("walk.mr");
    QImage saved;
    {
        ProgramDriver program;
        program.start();
        const quint64 window = program.waitForWindow("^Untitled: ");
        QVERIFY(window);
        const QRect area = sheetArea(program.geometry(window));
        const QImage blank = program.grabWhenSettled(area);
        QCOMPARE(inkedPixels(blank), 0);

        program.key("6");
        program.drag(wave(area));
        const QImage drawn = program.grabWhenSettled(area);
        QVERIFY(inkedPixels(drawn) > 300);
        QVERIFY(program.title(window).contains('*'));

        program.key("ctrl+z");
        QCOMPARE(program.grabWhenSettled(area), blank);
        QVERIFY(!program.title(window).contains('*'));

        program.key("ctrl+shift+z");
        QVERIFY(largestDifference(program.grabWhenSettled(area), drawn) <= 2);

        // A pencil line and a gap rubbed into the brush's are part of the picture, too.
        program.key("4");
        program.drag({area.topLeft() + QPoint(40, 40), area.topLeft() + QPoint(90, 70), area.center()});
        program.key("2");
        program.drag({area.center() - QPoint(60, 90), area.center() + QPoint(60, 90)});
        // A new view repaints the window as a whole, as it is painted when the file is opened.
        program.key("ctrl+0");
        program.key("ctrl+1");
        saved = program.grabWhenSettled(area);
        QVERIFY(largestDifference(saved, drawn) > 50);

        program.key("ctrl+s");
        QVERIFY(program.waitForDialog("^Save Scene$"));
        program.type(path);
        program.key("Return");
        QTRY_VERIFY_WITH_TIMEOUT(program.title(window).startsWith("walk.mr: "), 10000);
        QVERIFY(!program.title(window).contains('*'));
        program.key("ctrl+q");
        QCOMPARE(program.waitForExit(), 0);
    }
    QVERIFY(contentOf(path).contains("<!DOCTYPE mr>"));

    ProgramDriver program;
    program.start({path});
    const quint64 window = program.waitForWindow("^walk.mr: ");
    QVERIFY(window);
    program.key("ctrl+0");
    program.key("ctrl+1");
    QCOMPARE(program.grabWhenSettled(sheetArea(program.geometry(window))), saved);

    const QString again = m_folder->filePath("again.mr");
    program.key("ctrl+shift+s");
    QVERIFY(program.waitForDialog("^Save Scene$"));
    program.type(again);
    program.key("Return");
    QTRY_VERIFY_WITH_TIMEOUT(program.title(window).startsWith("again.mr: "), 10000);
    QCOMPARE(contentOf(again), contentOf(path));
    program.key("ctrl+q");
    QCOMPARE(program.waitForExit(), 0);
}

void tst_Program::unreadableArgumentIsToldAndANewSceneOpens()
{
    ProgramDriver program;
    program.start({m_folder->filePath("nowhere.mr")});
    QVERIFY(program.waitForDialog("^nowhere.mr$"));
    program.key("Return");
    QVERIFY(program.waitForWindow("^Untitled: "));
    program.key("ctrl+q");
    QCOMPARE(program.waitForExit(), 0);
}

void tst_Program::brokenFileIsToldAndANewSceneOpens()
{
    QFile file(m_folder->filePath("broken.mr"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<?xml version=\"1.0\"?><!DOCTYPE mr><mr version=\"0.3\"></mr>");
    file.close();

    ProgramDriver program;
    program.start({file.fileName()});
    QVERIFY(program.waitForDialog("^Mirelle$"));
    program.key("Return");
    QVERIFY(program.waitForWindow("^Untitled: "));
    program.key("ctrl+q");
    QCOMPARE(program.waitForExit(), 0);
}

void tst_Program::closingAModifiedSceneAsksAndCancelKeepsTheWindow()
{
    ProgramDriver program;
    program.start();
    const quint64 window = program.waitForWindow("^Untitled: ");
    QVERIFY(window);
    program.drag(wave(sheetArea(program.geometry(window))));
    QTRY_VERIFY(program.title(window).contains('*'));

    program.key("ctrl+q");
    QVERIFY(program.waitForDialog("^Save$"));
    program.key("Escape");
    QTest::qWait(300);
    QVERIFY(program.title(window).contains('*'));

    program.key("ctrl+q");
    QVERIFY(program.waitForDialog("^Save$"));
    // The button after the first one throws the changes away.
    program.key("Tab");
    program.key("space");
    QCOMPARE(program.waitForExit(), 0);
}

void tst_Program::withoutOpenGLItSaysSoAndEnds()
{
    ProgramDriver program;
    program.start({}, {"QT_XCB_GL_INTEGRATION=none"});
    QVERIFY(program.waitForDialog("^Mirelle$"));
    program.key("Return");
    const int exitCode = program.waitForExit();
    QCOMPARE(exitCode, 255);
    QVERIFY(program.standardError().contains("OpenGL"));
}

void tst_Program::windowComesBackWhereItWas()
{
    const auto sizeOfTheWindow = [](ProgramDriver &program, QSize newSize) {
        program.start();
        const quint64 window = program.waitForWindow("^Untitled: ");
        if (newSize.isValid())
            program.resize(window, newSize);
        const QSize size = program.geometry(window).size();
        program.key("ctrl+q");
        program.waitForExit();
        return size;
    };
    ProgramDriver first;
    QCOMPARE(sizeOfTheWindow(first, {900, 640}), QSize(900, 640));
    ProgramDriver second;
    QCOMPARE(sizeOfTheWindow(second, {}), QSize(900, 640));
}

QTEST_MAIN(tst_Program)
#include "tst_program.moc"
