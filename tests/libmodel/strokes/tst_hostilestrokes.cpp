#include "coverageprobes.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/strokedrawing.h"
#include "strokemaking.h"
#include "support/cputimer.h"
#include "support/glfixture.h"

#include <QDataStream>
#include <QtTest>

#include <array>
#include <functional>
#include <limits>

using namespace Model;
using TestSupport::CpuTimer;

/// Strokes that no hand has drawn: numbers that are none, places that are nowhere, and work without end.
class tst_HostileStrokes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void everyNumberIsChecked_data();
    void everyNumberIsChecked();
    void rectanglesBeyondAllPaperAreRefused_data();
    void rectanglesBeyondAllPaperAreRefused();
    void unknownToolsAreRefused_data();
    void unknownToolsAreRefused();
    void countsBeyondTheBlockAreRefused_data();
    void countsBeyondTheBlockAreRefused();
    void oddTransformsAreSafe_data();
    void oddTransformsAreSafe();
    void endlessWorkIsDrawnInPart_data();
    void endlessWorkIsDrawnInPart();
    void cutOfManyElementsAndChildrenIsReadQuickly_data();
    void cutOfManyElementsAndChildrenIsReadQuickly();
    void firstEditUnderAnEndlessCutIsQuick_data();
    void firstEditUnderAnEndlessCutIsQuick();
    void endlessLineWithItsImageIsReadAndDrawn();
    void endlessWorkThatIsUndoneIsWholeAgain();
    void endlessWorkWithItsImageIsCutShortByTheFirstEdit();
    void endlessWorkThatIsPastedIsDrawnInPart();
    void workOfALargerFrameIsWholeAgainInTheOldOne();
    void undoInPartTouchesTheWholeFrame();

private:
    static constexpr QSize frame{1920, 1080};
    TestPen m_pen{{5, 5, 1, 1}};
};

namespace {

using Writer = std::function<void(QDataStream &)>;

QByteArray bytesOf(const Writer &write)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    write(stream);
    return bytes;
}

void writeFloats(QDataStream &stream, const std::vector<float> &values)
{
    for (const float value : values)
        stream << value;
}

const std::vector<float> identity{1, 0, 0, 0, 1, 0, 0, 0, 1};

/// What follows the children of a compound.
void writeTail(QDataStream &stream, const std::vector<float> &transform = identity)
{
    stream << qint32(0) << qint32(0);
    writeFloats(stream, transform);
}

/// A path from the corners (\a left, 0) and so on of \a count squares of 10 pixels in a row; 5 elements each.
void writeSquares(QDataStream &stream, int count, Qt::FillRule rule, float step)
{
    stream << qint32(5 * count);
    for (int i = 0; i < count; ++i) {
        const float left = float(i) * step;
        const std::array<std::array<float, 2>, 5> corners{
            {{left, 0}, {left + 10, 0}, {left + 10, 10}, {left, 10}, {left, 0}}};
        for (size_t corner = 0; corner < corners.size(); ++corner) {
            stream << qint32(corner == 0 ? 0 : 1);
            writeFloats(stream, {corners[corner][0], corners[corner][1]});
        }
    }
    stream << qint32(5 * (count - 1)) << qint32(rule);
}

/// A pixel of coverage 255 over \a rect.
void writePixel(QDataStream &stream, QRect rect)
{
    stream << qint32(2) << rect << qint32(2) << qint32(1) << qint32(1) << QByteArray::fromHex("0301ff0a");
}

/// A dot of \a radius in the middle of the frame.
void writeDot(QDataStream &stream, float radius)
{
    stream << qint32(0);
    writeFloats(stream, {960, 540, 1, radius});
}

/// A pen stroke of \a count dots of \a radius, without samples.
void writeDots(QDataStream &stream, int count, float radius)
{
    const auto reach = int(radius);
    stream << qint32(0) << true << qint32(1) << QRect(960 - reach, 540 - reach, 2 * reach, 2 * reach) << qint32(0);
    stream << qint32(count);
    for (int i = 0; i < count; ++i)
        writeDot(stream, radius);
}

bool readFrom(const QByteArray &bytes, StrokeDrawing &drawing)
{
    QDataStream stream(bytes);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    return drawing.read(stream);
}

/// Where the numbers of a block of one stroke stand, and what they are when all is well.
struct Fields
{
    std::vector<float> sample{10, 20, 1};
    std::vector<float> point{10, 20, 1, 3};
    std::vector<float> line{10, 20, 60, 20, 1, 1, 3, 3};
    std::vector<float> circle{100, 100, 50};
    std::vector<float> arc{150, 100, 100, 50};
    std::vector<float> arcEnds{1, 1, 3, 3};
    std::vector<float> cut{200, 200, 300, 200, 300, 300};
    std::vector<float> keep{0, 0, 1900, 0, 0, 1000};
    std::vector<float> transform = identity;

    [[nodiscard]] QByteArray block() const
    {
        return bytesOf([this](QDataStream &s) {
            s << frameSize << qint64(1) << qint32(0) << true << qint32(1) << QRect(0, 0, 400, 300);
            s << qint32(1);
            writeFloats(s, sample);
            s << qint32(3) << qint32(0);
            writeFloats(s, point);
            s << qint32(1);
            writeFloats(s, line);
            s << qint32(2);
            writeFloats(s, circle);
            writeFloats(s, arc);
            s << true;
            writeFloats(s, arcEnds);
            writePath(s, cut);
            writePath(s, keep);
            writeFloats(s, transform);
        });
    }

    static constexpr QSize frameSize{1920, 1080};

private:
    static void writePath(QDataStream &stream, const std::vector<float> &points)
    {
        stream << qint32(points.size() / 2);
        for (size_t i = 0; i < points.size(); i += 2) {
            stream << qint32(i == 0 ? 0 : 1);
            writeFloats(stream, {points[i], points[i + 1]});
        }
        stream << qint32(0) << qint32(Qt::WindingFill);
    }
};

} // namespace

void tst_HostileStrokes::everyNumberIsChecked_data()
{
    QTest::addColumn<QByteArray>("block");
    StrokeDrawing good{QSize()};
    QVERIFY(readFrom(Fields().block(), good));

    struct Group
    {
        const char *name;
        std::vector<float> Fields::*numbers;
    };
    const std::array<Group, 9> groups{{{"sample", &Fields::sample},
                                       {"point", &Fields::point},
                                       {"line", &Fields::line},
                                       {"circle", &Fields::circle},
                                       {"arc", &Fields::arc},
                                       {"ends of an arc", &Fields::arcEnds},
                                       {"cut path", &Fields::cut},
                                       {"keep path", &Fields::keep},
                                       {"transform", &Fields::transform}}};
    const std::array<std::pair<const char *, float>, 4> values{
        {{"no number", std::numeric_limits<float>::quiet_NaN()},
         {"infinite", std::numeric_limits<float>::infinity()},
         {"minus infinite", -std::numeric_limits<float>::infinity()},
         {"beyond all paper", 1e30F}}};
    for (const Group &group : groups) {
        for (size_t i = 0; i < (Fields().*group.numbers).size(); ++i) {
            for (const auto &[name, value] : values) {
                Fields fields;
                (fields.*group.numbers)[i] = value;
                QTest::addRow("%s %zu %s", group.name, i, name) << fields.block();
            }
        }
    }
    // Radii have a sign that is wrong, and a transform can make a perspective that there is none of.
    const auto row = [](const char *name, std::vector<float> Fields::*numbers, size_t i, float value) {
        Fields fields;
        (fields.*numbers)[i] = value;
        QTest::newRow(name) << fields.block();
    };
    row("negative radius of a point", &Fields::point, 3, -1);
    row("negative radius of a line's start", &Fields::line, 6, -1);
    row("negative radius of a line's end", &Fields::line, 7, -1);
    row("negative circle", &Fields::circle, 2, -1);
    row("negative radius of an arc's start", &Fields::arcEnds, 2, -1);
    row("negative radius of an arc's end", &Fields::arcEnds, 3, -1);
    row("perspective along x", &Fields::transform, 2, 0.5F);
    row("perspective along y", &Fields::transform, 5, 0.5F);
    row("no common divisor", &Fields::transform, 8, 0);
}

void tst_HostileStrokes::everyNumberIsChecked()
{
    QFETCH(QByteArray, block);
    StrokeDrawing read{QSize()};
    QVERIFY(!readFrom(block, read));
}

void tst_HostileStrokes::rectanglesBeyondAllPaperAreRefused_data()
{
    QTest::addColumn<int>("edge");
    QTest::addColumn<int>("value");
    for (int edge = 0; edge < 4; ++edge) {
        QTest::addRow("edge %d far out", edge) << edge << std::numeric_limits<int>::max();
        QTest::addRow("edge %d far out on the other side", edge) << edge << std::numeric_limits<int>::min();
    }
}

void tst_HostileStrokes::rectanglesBeyondAllPaperAreRefused()
{
    QFETCH(int, edge);
    QFETCH(int, value);
    std::array<qint32, 4> edges{0, 0, 99, 99};
    edges[size_t(edge)] = value;
    const auto writeEdges = [&](QDataStream &s) {
        for (const qint32 one : edges)
            s << one;
    };
    StrokeDrawing line{QSize()};
    QVERIFY(!readFrom(bytesOf([&](QDataStream &s) {
                          s << frame << qint64(1) << qint32(0) << true << qint32(1);
                          writeEdges(s);
                          s << qint32(0) << qint32(0);
                          writeTail(s);
                      }),
                      line));
    StrokeDrawing bitmap{QSize()};
    QVERIFY(!readFrom(bytesOf([&](QDataStream &s) {
                          s << frame << qint64(1) << qint32(2);
                          writeEdges(s);
                          s << qint32(-1);
                          writeTail(s);
                      }),
                      bitmap));
}

void tst_HostileStrokes::unknownToolsAreRefused_data()
{
    QTest::addColumn<bool>("isPen");
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("isKnown");
    for (const bool isPen : {true, false}) {
        for (const int kind : {std::numeric_limits<int>::min(), -1, 0, 2, 3, std::numeric_limits<int>::max()})
            QTest::addRow("%s %d", isPen ? "pen" : "eraser", kind) << isPen << kind << (kind == 0 || kind == 2);
    }
}

void tst_HostileStrokes::unknownToolsAreRefused()
{
    QFETCH(bool, isPen);
    QFETCH(int, kind);
    QFETCH(bool, isKnown);
    StrokeDrawing read{QSize()};
    QCOMPARE(readFrom(bytesOf([&](QDataStream &s) {
                          s << frame << qint64(1) << qint32(0) << isPen << kind << QRect(0, 0, 9, 9);
                          s << qint32(0) << qint32(0);
                          writeTail(s);
                      }),
                      read),
             isKnown);
}

void tst_HostileStrokes::countsBeyondTheBlockAreRefused_data()
{
    QTest::addColumn<QByteArray>("children");
    const auto row = [](const char *name, const Writer &children) { QTest::newRow(name) << bytesOf(children); };
    const qint32 most = std::numeric_limits<qint32>::max();
    for (const qint32 count : {most, qint32(-1), std::numeric_limits<qint32>::min()}) {
        row(qPrintable(QString("%1 children").arg(count)), [=](QDataStream &s) { s << qint64(count); });
        row(qPrintable(QString("%1 samples").arg(count)),
            [=](QDataStream &s) { s << qint64(1) << qint32(0) << true << qint32(1) << QRect(0, 0, 9, 9) << count; });
        row(qPrintable(QString("%1 segments").arg(count)), [=](QDataStream &s) {
            s << qint64(1) << qint32(0) << true << qint32(1) << QRect(0, 0, 9, 9) << qint32(0) << count;
        });
        row(qPrintable(QString("%1 elements of a cut").arg(count)), [=](QDataStream &s) { s << qint64(0) << count; });
        row(qPrintable(QString("%1 elements of a keep path").arg(count)),
            [=](QDataStream &s) { s << qint64(0) << qint32(0) << count; });
    }
    row("a bitmap of 2^31 x 2^31", [=](QDataStream &s) {
        s << qint64(1) << qint32(2) << QRect(0, 0, 9, 9) << qint32(2) << most << most << QByteArray::fromHex("0a");
    });
    row("a bitmap of negative size", [=](QDataStream &s) {
        s << qint64(1) << qint32(2) << QRect(0, 0, 9, 9) << qint32(2) << qint32(-4) << qint32(-4);
        s << QByteArray::fromHex("0a");
    });
    row("a bitmap whose data would be 4 GB", [=](QDataStream &s) {
        s << qint64(1) << qint32(2) << QRect(0, 0, 9, 9) << qint32(2) << qint32(4) << qint32(4) << quint32(0xfffffffe);
    });
}

void tst_HostileStrokes::countsBeyondTheBlockAreRefused()
{
    QFETCH(QByteArray, children);
    const QByteArray head = bytesOf([](QDataStream &s) { s << frame; });
    const QByteArray tail = bytesOf([](QDataStream &s) { writeTail(s); });
    StrokeDrawing read{QSize()};
    QVERIFY(!readFrom(head + children + tail, read));
    QVERIFY(read.isEmpty());
    QVERIFY(read.image().isNull());
}

void tst_HostileStrokes::oddTransformsAreSafe_data()
{
    QTest::addColumn<std::vector<float>>("transform");
    const float huge = 6e7F;
    QTest::newRow("everything on one point") << std::vector<float>{0, 0, 0, 0, 0, 0, 50, 50, 1};
    QTest::newRow("everything on one line") << std::vector<float>{1, 1, 0, 1, 1, 0, 0, 0, 1};
    QTest::newRow("no height") << std::vector<float>{1, 0, 0, 0, 0, 0, 0, 20, 1};
    QTest::newRow("huge") << std::vector<float>{huge, 0, 0, 0, huge, 0, 0, 0, 1};
    QTest::newRow("huge and turned") << std::vector<float>{huge, huge, 0, -huge, huge, 0, -huge, huge, 1};
    QTest::newRow("far away") << std::vector<float>{1, 0, 0, 0, 1, 0, huge, -huge, 1};
    QTest::newRow("tiny") << std::vector<float>{1e-30F, 0, 0, 0, 1e-30F, 0, 0, 0, 1};
    QTest::newRow("mirrored") << std::vector<float>{-1, 0, 0, 0, -1, 0, 200, 200, 1};
}

void tst_HostileStrokes::oddTransformsAreSafe()
{
    QFETCH(std::vector<float>, transform);
    // Twice, within each other, and with both masks.
    Fields inner;
    inner.transform = transform;
    const QByteArray group = inner.block().mid(2 * int(sizeof(qint32)));
    const QByteArray block =
        bytesOf([&](QDataStream &s) { s << frame << qint64(2) << qint32(1); }) + group + bytesOf([&](QDataStream &s) {
            writePixel(s, QRect(100, 100, 50, 50));
            writeSquares(s, 3, Qt::WindingFill, 20);
            s << qint32(0);
            writeFloats(s, transform);
        });
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(block, read));
    QCOMPARE(read.image().size(), frame);
    read.cutPath(rectPath(0, 0, 300, 200));
    read.addStroke(straightStroke(m_pen, {10, 500}, {900, 500}));
    QVERIFY(coverageAt(read.image(), 500, 500) > 240);
    const auto part = read.extract(rectPath(400, 400, 200, 200));
    QVERIFY(!part->isEmpty());
    read.resize({800, 600}, MR::FitMode::FitModeStretch);
    read.rebuild(QRect(QPoint(0, 0), read.size()));
    QCOMPARE(read.image().size(), QSize(800, 600));
    QVERIFY(read.removeLastStroke());
}

void tst_HostileStrokes::endlessWorkIsDrawnInPart_data()
{
    QTest::addColumn<QByteArray>("children");
    QTest::addColumn<int>("count");
    QTest::newRow("a million dots as large as the frame")
        << bytesOf([](QDataStream &s) { writeDots(s, 1'000'000, 1200); }) << 1;
    QTest::newRow("ten thousand lines of a hundred such dots") << bytesOf([](QDataStream &s) {
        for (int i = 0; i < 10'000; ++i)
            writeDots(s, 100, 1200);
    }) << 10'000;
    QTest::newRow("200,000 pixels as large as the frame") << bytesOf([](QDataStream &s) {
        for (int i = 0; i < 200'000; ++i)
            writePixel(s, QRect(QPoint(0, 0), frame));
    }) << 200'000;
    QTest::newRow("groups with masks of many corners") << bytesOf([](QDataStream &s) {
        for (int i = 0; i < 200; ++i) {
            s << qint32(1) << qint64(1);
            writePixel(s, QRect(QPoint(0, 0), frame));
            writeSquares(s, 2000, Qt::OddEvenFill, 0.5F);
            s << qint32(0);
            writeFloats(s, {1, 0, 0, 0, 100, 0, 0, 0, 1});
        }
    }) << 200;
    QTest::newRow("groups of 2000 levels around the frame") << bytesOf([](QDataStream &s) {
        for (int i = 0; i < 2000; ++i) {
            s << qint32(1) << qint64(2);
            writePixel(s, QRect(0, 0, 2, 2));
        }
        writePixel(s, QRect(QPoint(0, 0), frame));
        for (int i = 0; i < 2000; ++i)
            writeTail(s);
    }) << 1;
}

void tst_HostileStrokes::endlessWorkIsDrawnInPart()
{
    QFETCH(QByteArray, children);
    QFETCH(int, count);
    // A line that a hand has drawn stands before, and stays.
    const auto line = straightStroke(m_pen, {10, 20}, {100, 20});
    const QByteArray block = bytesOf([&](QDataStream &s) {
                                 s << frame << qint64(count + 1) << qint32(0);
                                 line->write(s);
                             }) +
                             children + bytesOf([](QDataStream &s) { writeTail(s); });
    CpuTimer timer;
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(block, read));
    QVERIFY2(timer.milliseconds() < 10'000, qPrintable(QString::number(timer.milliseconds())));
    QVERIFY(read.isShownInPart());
    QCOMPARE(read.strokes().count(), count + 1);
    QVERIFY(coverageAt(read.image(), 50, 20) > 240);

    timer = CpuTimer();
    read.cutPath(rectPath(60, 0, 100, 100));
    QVERIFY2(timer.milliseconds() < 10'000, qPrintable(QString::number(timer.milliseconds())));
    QVERIFY(read.isShownInPart());
    QVERIFY(coverageAt(read.image(), 50, 20) > 240);
    QCOMPARE(coverageAt(read.image(), 70, 20), 0);

    // What is stored has all the strokes, and no picture that would be taken for theirs.
    const QByteArray stored = bytesOf([&](QDataStream &s) { read.write(s); });
    QVERIFY(stored.endsWith(QByteArray(4, char(0xff))));
    StrokeDrawing again{QSize()};
    QVERIFY(readFrom(stored, again));
    QCOMPARE(again.strokes().recursiveCount(), read.strokes().recursiveCount());
    QVERIFY(again.isShownInPart());
}

void tst_HostileStrokes::cutOfManyElementsAndChildrenIsReadQuickly_data()
{
    QTest::addColumn<Qt::FillRule>("rule");
    QTest::newRow("winding") << Qt::WindingFill;
    QTest::newRow("odd-even") << Qt::OddEvenFill;
}

void tst_HostileStrokes::cutOfManyElementsAndChildrenIsReadQuickly()
{
    QFETCH(Qt::FillRule, rule);
    // The children lie where the path's bounds are and the path is not, the worst case for a test of each with each.
    constexpr int children = 100'000;
    constexpr int squares = 20'000;
    const QByteArray block = bytesOf([&](QDataStream &s) {
        s << frame << qint64(children);
        for (int i = 0; i < children; ++i)
            writePixel(s, QRect(12, 2, 3, 3));
        writeSquares(s, squares, rule, 30);
        writeSquares(s, squares, rule, 0.0001F);
        writeFloats(s, identity);
    });
    CpuTimer timer;
    StrokeDrawing read{QSize()};
    const bool isWhole = readFrom(block, read);
    QVERIFY2(timer.milliseconds() < 10'000, qPrintable(QString::number(timer.milliseconds())));
    QVERIFY(isWhole);
    QCOMPARE(read.strokes().count(), children);
    QCOMPARE(read.strokes().cutPath().elementCount(), 5 * squares);
}

void tst_HostileStrokes::firstEditUnderAnEndlessCutIsQuick_data()
{
    using Edit = std::function<void(StrokeDrawing &)>;
    QTest::addColumn<Edit>("edit");
    QTest::newRow("cut") << Edit([](StrokeDrawing &drawing) { drawing.cutPath(rectPath(600, 300, 200, 200)); });
    QTest::newRow("undo") << Edit([](StrokeDrawing &drawing) { QVERIFY(drawing.removeLastStroke()); });
    QTest::newRow("resize") << Edit([](StrokeDrawing &drawing) {
        drawing.resize({800, 600}, MR::FitMode::FitModeStretch);
    });
    QTest::newRow("move") << Edit(
        [](StrokeDrawing &drawing) { drawing.restoreTransform(QTransform::fromTranslate(3, 4)); });
    QTest::newRow("copy") << Edit(
        [](StrokeDrawing &drawing) { QVERIFY(!drawing.extract(rectPath(600, 300, 900, 700))->isEmpty()); });
}

void tst_HostileStrokes::firstEditUnderAnEndlessCutIsQuick()
{
    QFETCH(std::function<void(StrokeDrawing &)>, edit);
    // 100,000 lines to and fro across the whole frame, each crossing most of the others, over 1000 pixels; the image
    // is stored, so that reading has no reason to draw it.
    constexpr int lines = 100'000;
    const QByteArray block = bytesOf([&](QDataStream &s) {
        s << frame << qint64(1000);
        for (int i = 0; i < 1000; ++i)
            writePixel(s, QRect(i, 10, 900, 900));
        s << qint32(lines);
        for (int i = 0; i < lines; ++i) {
            s << qint32(i == 0 ? 0 : 1);
            writeFloats(s, {i % 2 == 0 ? 0.F : 1919.F, float(i * 7919 % 1080)});
        }
        s << qint32(0) << qint32(Qt::OddEvenFill) << qint32(0);
        writeFloats(s, identity);
        s << qint32(2) << qint32(frame.width()) << qint32(frame.height()) << QByteArray::fromHex("0a");
    });
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(block, read));
    const CpuTimer timer;
    edit(read);
    QVERIFY2(timer.milliseconds() < 10'000, qPrintable(QString::number(timer.milliseconds())));
}

void tst_HostileStrokes::endlessLineWithItsImageIsReadAndDrawn()
{
    // Vertices of 100,000 dots would take more than 2 GB at once.
    constexpr int dots = 100'000;
    const QByteArray block = bytesOf([&](QDataStream &s) {
        s << frame << qint64(1);
        writeDots(s, dots, 2);
        writeTail(s);
        s << qint32(2) << qint32(frame.width()) << qint32(frame.height()) << QByteArray::fromHex("0a");
    });
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(block, read));
    QCOMPARE(coverageAt(read.image(), 960, 540), 0);
    read.rebuild(QRect(950, 530, 20, 20));
    QVERIFY(coverageAt(read.image(), 960, 540) > 240);
    QCOMPARE(coverageAt(read.image(), 966, 540), 0);
}

static QByteArray endlessBlock(QSize frame, const QByteArray &trailer = {})
{
    return bytesOf([&](QDataStream &s) {
               s << frame << qint64(2);
               writePixel(s, QRect(100, 100, 10, 10));
               writeDots(s, 1'000'000, 1200);
               writeTail(s);
           }) +
           trailer;
}

void tst_HostileStrokes::endlessWorkThatIsUndoneIsWholeAgain()
{
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(endlessBlock(frame), read));
    QVERIFY(read.isShownInPart());
    const auto copy = std::static_pointer_cast<StrokeDrawing>(read.clone());
    QVERIFY(copy->isShownInPart());
    QVERIFY(copy->removeLastStroke());
    QVERIFY(!copy->isShownInPart());
    QCOMPARE(coverageAt(copy->image(), 105, 105), 255);
    QVERIFY(!bytesOf([&](QDataStream &s) { copy->write(s); }).endsWith(QByteArray(4, char(0xff))));
    // An empty drawing shows all that it has.
    QVERIFY(read.removeLastStroke());
    QVERIFY(read.removeLastStroke());
    QVERIFY(!read.isShownInPart());
}

void tst_HostileStrokes::endlessWorkWithItsImageIsCutShortByTheFirstEdit()
{
    const QByteArray image = bytesOf([](QDataStream &s) {
        s << qint32(2) << qint32(frame.width()) << qint32(frame.height()) << QByteArray::fromHex("0a");
    });
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(endlessBlock(frame, image), read));
    QVERIFY(!read.isShownInPart());
    CpuTimer timer;
    read.resize({1000, 800}, MR::FitMode::FitModeIgnore);
    QVERIFY2(timer.milliseconds() < 10'000, qPrintable(QString::number(timer.milliseconds())));
    QVERIFY(read.isShownInPart());
    QCOMPARE(read.strokes().count(), 2);
}

void tst_HostileStrokes::endlessWorkThatIsPastedIsDrawnInPart()
{
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(endlessBlock(frame), read));
    StrokeDrawing target(frame);
    CpuTimer timer;
    target.merge(read);
    QVERIFY2(timer.milliseconds() < 10'000, qPrintable(QString::number(timer.milliseconds())));
    QVERIFY(target.isShownInPart());
    QCOMPARE(coverageAt(target.image(), 105, 105), 255);
}

void tst_HostileStrokes::workOfALargerFrameIsWholeAgainInTheOldOne()
{
    // Many patches on the left, which are nothing in a small frame, and the newest on the right.
    constexpr QSize small(100, 100);
    constexpr int patches = 70'000;
    const QByteArray block = bytesOf([&](QDataStream &s) {
        s << small << qint64(patches + 1);
        for (int i = 0; i < patches; ++i)
            writePixel(s, QRect(0, 0, 50, 100));
        writePixel(s, QRect(70, 70, 10, 10));
        writeTail(s);
        s << qint32(2) << qint32(small.width()) << qint32(small.height()) << QByteArray::fromHex("0a");
    });
    StrokeDrawing drawing{QSize()};
    QVERIFY(readFrom(block, drawing));
    QVERIFY(!drawing.isShownInPart());
    drawing.resize({2900, 2900}, MR::FitMode::FitModeStretch);
    QVERIFY(drawing.isShownInPart());
    QCOMPARE(coverageAt(drawing.image(), 29 * 75, 29 * 75), 0);
    drawing.resize(small, MR::FitMode::FitModeStretch);
    QVERIFY(!drawing.isShownInPart());
    QCOMPARE(coverageAt(drawing.image(), 75, 75), 255);
}

void tst_HostileStrokes::undoInPartTouchesTheWholeFrame()
{
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(endlessBlock(frame), read));
    QVERIFY(read.isShownInPart());
    QImage pixels(4, 4, QImage::Format_Alpha8);
    pixels.fill(90);
    QVERIFY(read.addStroke(std::make_unique<BitmapStroke>(pixels, QRect(10, 10, 4, 4))));
    QVERIFY(read.removeLastStroke());
    QCOMPARE(read.touchedRect(), QRect(QPoint(0, 0), frame));
}

QTEST_MAIN(tst_HostileStrokes)
#include "tst_hostilestrokes.moc"
