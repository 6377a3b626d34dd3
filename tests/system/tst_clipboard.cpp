#include "system/programdriver.h"
#include "system/screenlines.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <cstdlib>
#include <limits>
#include <utility>

using namespace ScreenLines;

namespace {

constexpr double firstLine = 0.3;
constexpr double secondLine = 0.6;
constexpr int aLine = 300;
/// The contrast of a line that shines through from another frame.
constexpr int faint = 10;

constexpr auto privateForm = "application/x-mirelle";

/// What another program gets for \a type from the clipboard; empty when there is no such form.
QByteArray clipboard(const QString &type)
{
    QProcess xclip;
    xclip.start("xclip", {"-selection", "clipboard", "-o", "-t", type});
    return xclip.waitForFinished(20000) && xclip.exitCode() == 0 ? xclip.readAllStandardOutput() : QByteArray();
}

/// Puts \a data onto the clipboard as another program does, under \a type alone.
void offer(const QString &type, const QByteArray &data)
{
    QFile file("offered");
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(data) == data.size());
    file.close();
    // It leaves a process behind, which serves the data and must not hold our ends of the pipes.
    QProcess xclip;
    xclip.setStandardOutputFile(QProcess::nullDevice());
    xclip.setStandardErrorFile(QProcess::nullDevice());
    xclip.start("xclip", {"-selection", "clipboard", "-i", "-t", type, file.fileName()});
    QVERIFY(xclip.waitForFinished(10000));
    QCOMPARE(xclip.exitCode(), 0);
    QTRY_COMPARE(clipboard(type), data);
    QTest::qWait(200); // until the programs know of it
}

/// Red on the left, green on the right.
QByteArray redGreenPng(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            picture.setPixel(x, y, 2 * x < size.width() ? qRgb(220, 30, 30) : qRgb(30, 160, 30));
    }
    QBuffer buffer;
    picture.save(&buffer, "PNG");
    return buffer.data();
}

/// How much of \a picture is red, and how much green.
std::pair<int, int> redAndGreen(const QImage &picture)
{
    int red = 0;
    int green = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            red += qRed(pixel) - qGreen(pixel) > 100 ? 1 : 0;
            green += qGreen(pixel) - qRed(pixel) > 80 ? 1 : 0;
        }
    }
    return {red, green};
}

/// A scene of one reference layer with a single cell, which is empty.
void writeReferenceScene(const QString &filename)
{
    QFile file(filename);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE mr>\n<mr version=\"0.4\">\n"
               "<scene frameWidth=\"640\" frameHeight=\"360\" frameRange=\"1;1\" activeFrameNumber=\"1\" "
               "activeLayerIndex=\"0\" fps=\"12\">\n<layers>\n<ordering>0</ordering>\n"
               "<layer identifier=\"{6b2d1d8e-6f0e-4a36-9d52-0c9f5d0a1b01}\" name=\"Photographs\" linked=\"no\" "
               "visible=\"yes\" type=\"reference\">\n<opacity>1</opacity>\n"
               "<drawing type=\"original\" identifier=\"{6b2d1d8e-6f0e-4a36-9d52-0c9f5d0a1b02}\"/>\n"
               "</layer>\n</layers>\n</scene>\n</mr>\n");
}

QByteArray noise(int size)
{
    QRandomGenerator random(7);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = char(random.bounded(256));
    return bytes;
}

/// \a block with \a number in its stream at \a position.
QByteArray withNumber(QByteArray block, qsizetype position, qint32 number)
{
    qToBigEndian(number, block.data() + position);
    return block;
}

/// A program with its window, as it opens.
struct OpenProgram : ProgramDriver
{
    explicit OpenProgram(const QStringList &arguments = {}, const QString &titleStart = "Untitled")
    {
        start(arguments);
        window = waitForWindow("^" + titleStart + ": ");
        area = sheetArea(geometry(window));
    }
    QImage look() const
    {
        activate(window);
        return grabWhenSettled(area);
    }
    void draw(double height) const
    {
        activate(window);
        key("6");
        drag(levelLine(area, height));
    }
    void press(const QString &combination) const
    {
        activate(window);
        key(combination);
    }
    bool isModified() const { return title(window).contains('*'); }
    /// Ends it without saving. \return its exit code.
    int quit()
    {
        const bool asks = isModified();
        press("ctrl+q");
        if (asks && waitForDialog("^Save$")) {
            key("Tab");
            key("space");
        }
        return waitForExit();
    }

    quint64 window = 0;
    QRect area;
};

} // namespace

/// The real program and its neighbours: a second one of its kind, and programs that know nothing of it.
class tst_Clipboard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void drawingTravelsToAnotherProgramOfItsKind();
    void cutDrawingTravelsAndComesBackWithUndo();
    void holdTravelsWithItsDrawing();
    void copyingLeavesTheSceneUnmodified();
    void otherProgramsGetAPictureWithTheInk();
    void severalDrawingsAreNoPicture();
    void labelIsText();
    void pictureOfAnotherProgramArrivesInAReferenceLayer();
    void pictureIsRefusedOnALayerForDrawing();
    void foreignTextPastesNothing();
    void brokenPrivateFormsAreRefused();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_Clipboard::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(m_folder->path()));
}

void tst_Clipboard::drawingTravelsToAnotherProgramOfItsKind()
{
    OpenProgram one;
    QVERIFY(one.window);
    OpenProgram other;
    QVERIFY(other.window);
    QVERIFY(other.window != one.window);
    one.draw(firstLine);
    const QImage drawn = one.look();
    QVERIFY(ink(drawn, firstLine) > aLine);
    const QImage blank = other.look();
    QCOMPARE(ink(blank, firstLine), 0);

    one.press("ctrl+c");
    other.press("ctrl+v");
    QCOMPARE(other.look(), drawn);
    QTRY_VERIFY(other.isModified());

    // One step, there and back.
    other.press("ctrl+z");
    QCOMPARE(other.look(), blank);
    QTRY_VERIFY(!other.isModified());
    other.press("ctrl+shift+z");
    QCOMPARE(other.look(), drawn);

    // What arrived is a drawing like any other, and a drawing of its own.
    other.draw(secondLine);
    QVERIFY(ink(other.look(), secondLine) > aLine);
    QCOMPARE(one.look(), drawn);
    QCOMPARE(other.quit(), 0);
    QCOMPARE(one.quit(), 0);
}

void tst_Clipboard::cutDrawingTravelsAndComesBackWithUndo()
{
    OpenProgram one;
    OpenProgram other;
    QVERIFY(one.window && other.window);
    one.draw(firstLine);
    const QImage drawn = one.look();
    one.press("ctrl+x");
    QCOMPARE(ink(one.look(), firstLine), 0);
    other.press("ctrl+v");
    QCOMPARE(other.look(), drawn);
    one.press("ctrl+z");
    QCOMPARE(one.look(), drawn);
    QCOMPARE(other.quit(), 0);
    QCOMPARE(one.quit(), 0);
}

void tst_Clipboard::holdTravelsWithItsDrawing()
{
    OpenProgram one;
    OpenProgram other;
    QVERIFY(one.window && other.window);
    one.draw(firstLine);
    one.press("apostrophe");
    one.press("ctrl+a");
    one.press("ctrl+c");
    other.press("ctrl+v");
    QImage picture = other.look();
    QVERIFY(ink(picture, firstLine) > aLine);
    other.press("Right");
    picture = other.look();
    QVERIFY(ink(picture, firstLine) > aLine);

    // On a hold of the first frame a line lands on the drawing of both.
    other.draw(secondLine);
    other.press("Left");
    picture = other.look();
    QVERIFY(ink(picture, firstLine) > aLine);
    QVERIFY(ink(picture, secondLine) > aLine);

    // Behind them stands what was there before: a blank drawing, through which they shine.
    other.press("Right");
    other.press("Right");
    picture = other.look();
    QCOMPARE(ink(picture, firstLine), 0);
    QVERIFY(ink(picture, firstLine, faint) > aLine);
    QCOMPARE(other.quit(), 0);
    QCOMPARE(one.quit(), 0);
}

void tst_Clipboard::copyingLeavesTheSceneUnmodified()
{
    OpenProgram program;
    QVERIFY(program.window);
    program.press("ctrl+c");
    QTRY_VERIFY(!clipboard(privateForm).isEmpty());
    QVERIFY(!program.isModified());
    QCOMPARE(program.quit(), 0);
}

void tst_Clipboard::otherProgramsGetAPictureWithTheInk()
{
    OpenProgram program;
    QVERIFY(program.window);
    program.draw(firstLine);
    program.press("ctrl+c");
    const QByteArray png = clipboard("image/png");
    QVERIFY(png.startsWith("\x89PNG"));
    const QImage picture = QImage::fromData(png, "PNG");
    QCOMPARE(picture.size(), QSize(1920, 1080));
    QCOMPARE(picture.pixel(0, 0), qRgb(255, 255, 255));
    // A level line that crosses about half of the frame, with white above and below.
    QRect inked;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qBlue(picture.pixel(x, y)) - qRed(picture.pixel(x, y)) > 60)
                inked |= QRect(x, y, 1, 1);
        }
    }
    QVERIFY(inked.width() > picture.width() / 4);
    QVERIFY(inked.height() < picture.height() / 10);
    QVERIFY(inked.bottom() < picture.height() / 2);
    QCOMPARE(program.quit(), 0);
}

void tst_Clipboard::severalDrawingsAreNoPicture()
{
    OpenProgram program;
    QVERIFY(program.window);
    program.draw(firstLine);
    program.press("apostrophe");
    program.press("ctrl+a");
    program.press("ctrl+c");
    QTRY_VERIFY(!clipboard(privateForm).isEmpty());
    QVERIFY(clipboard("image/png").isEmpty());
    QVERIFY(clipboard("UTF8_STRING").contains("frames 1-2"));
    QCOMPARE(program.quit(), 0);
}

void tst_Clipboard::labelIsText()
{
    OpenProgram program;
    QVERIFY(program.window);
    program.draw(firstLine);
    program.press("ctrl+c");
    const QByteArray label = clipboard("UTF8_STRING");
    QVERIFY2(label.startsWith("Mirelle scene Untitled, Layer "), label.constData());
    QVERIFY2(label.endsWith(", frame 1"), label.constData());
    QCOMPARE(clipboard("text/plain"), label);
    QCOMPARE(program.quit(), 0);
}

void tst_Clipboard::pictureOfAnotherProgramArrivesInAReferenceLayer()
{
    writeReferenceScene("photographs.mr");
    OpenProgram program({"photographs.mr"}, "photographs.mr");
    QVERIFY(program.window);
    QCOMPARE(redAndGreen(program.look()), std::make_pair(0, 0));
    constexpr QSize size(640, 360);
    offer("image/png", redGreenPng(size));
    program.press("ctrl+v");
    program.key("ctrl+1");
    const QImage pasted = program.look();
    // Pixel for pixel, but for the edges.
    const auto [red, green] = redAndGreen(pasted);
    constexpr int half = size.width() / 2 * size.height();
    QVERIFY(std::abs(red - half) < half / 50);
    QVERIFY(std::abs(green - half) < half / 50);

    program.press("ctrl+z");
    QCOMPARE(redAndGreen(program.look()), std::make_pair(0, 0));
    program.press("ctrl+shift+z");
    QCOMPARE(program.look(), pasted);
    QCOMPARE(program.quit(), 0);
}

void tst_Clipboard::pictureIsRefusedOnALayerForDrawing()
{
    OpenProgram program;
    QVERIFY(program.window);
    const QImage blank = program.look();
    offer("image/png", redGreenPng({640, 360}));
    program.press("ctrl+v");
    QCOMPARE(program.look(), blank);
    QVERIFY(!program.isModified());
    QCOMPARE(program.quit(), 0);
}

void tst_Clipboard::foreignTextPastesNothing()
{
    OpenProgram program;
    QVERIFY(program.window);
    const QImage blank = program.look();
    offer("UTF8_STRING", "Mirelle scene Untitled, Layer 1, frame 1");
    program.press("ctrl+v");
    QCOMPARE(program.look(), blank);
    QVERIFY(!program.isModified());
    QCOMPARE(program.quit(), 0);
}

void tst_Clipboard::brokenPrivateFormsAreRefused()
{
    OpenProgram program;
    QVERIFY(program.window);
    const QImage blank = program.look();
    program.draw(firstLine);
    const QImage drawn = program.look();
    program.press("ctrl+c");
    const QByteArray clip = clipboard(privateForm);
    QVERIFY(clip.size() > 100);

    constexpr int kindAt = 0;
    constexpr int countAt = 4;
    constexpr int headerSize = 8;
    const std::pair<const char *, QByteArray> broken[] = {
        {"random bytes", noise(4096)},
        {"a single byte", QByteArray(1, '\0')},
        {"header alone", clip.left(headerSize)},
        {"half of it", clip.left(clip.size() / 2)},
        {"all but the last byte", clip.chopped(1)},
        {"noise behind the header", clip.left(headerSize) + noise(4096)},
        {"layer of no kind", withNumber(clip, kindAt, 77)},
        {"more frames than bytes", withNumber(clip, countAt, std::numeric_limits<qint32>::max())},
        {"fewer than no frames", withNumber(clip, countAt, -1)},
    };
    for (const auto &[what, block] : broken) {
        offer(privateForm, block);
        program.press("ctrl+v");
        QVERIFY2(program.look() == drawn, what);
    }
    // The last step is the line still, and nothing was undone before that could be redone.
    program.press("ctrl+z");
    QCOMPARE(program.look(), blank);
    QTRY_VERIFY(!program.isModified());
    program.press("ctrl+shift+z");
    QCOMPARE(program.look(), drawn);

    // It is none the worse for it: whole, the same drawing is taken.
    offer(privateForm, clip);
    program.press("ctrl+v");
    program.draw(secondLine);
    QVERIFY(program.look() != drawn);
    program.press("ctrl+z");
    program.press("ctrl+z");
    QCOMPARE(program.look(), drawn);
    QVERIFY(program.isModified());
    QCOMPARE(program.quit(), 0);
}

QTEST_MAIN(tst_Clipboard)
#include "tst_clipboard.moc"
