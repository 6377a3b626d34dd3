#include "coverageprobes.h"
#include "libmodel/strokes/arcsegment.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/linesegment.h"
#include "libmodel/strokes/pointsegment.h"
#include "libmodel/strokes/rleimage.h"
#include "libmodel/strokes/strokedrawing.h"
#include "strokemaking.h"
#include "support/glfixture.h"
#include "support/penstreams.h"

#include <QBuffer>
#include <QDataStream>
#include <QtTest>

#include <functional>
#include <limits>
#include <random>

using namespace Model;

/// Strokes and drawings as bytes: their layout, the way back, and data that nobody should trust.
class tst_StrokeStreams : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(TestSupport::startRenderer(frame)); }
    void segmentsHaveTheirLayout();
    void singleStrokeHasItsLayout();
    void eraserKeepsItsOwnKind();
    void compoundHasItsLayout();
    void bitmapStrokeHasItsLayout();
    void geometrySurvivesInSinglePrecision();
    void drawingComesBackWithTheSamePixelsAndBytes();
    void drawingWithoutAnImageIsRebuilt_data();
    void drawingWithoutAnImageIsRebuilt();
    void imageOfAnotherSizeIsRebuilt_data();
    void imageOfAnotherSizeIsRebuilt();
    void strokesBeforeTheFaultAreKept();
    void strokesOfABrokenGroupAreKept();
    void bitmapsBeyondTheBudgetAreLeftOut();
    void coverageThatIsNotWantedIsPassedOver_data();
    void coverageThatIsNotWantedIsPassedOver();
    void storedBoundsTooSmallAreWidened();
    void unknownChildIsSkipped();
    void unknownSegmentIsSkipped();
    void brokenSamplesLeaveNone();
    void hostileSizesAreRefused_data();
    void hostileSizesAreRefused() { verifyRefused(); }
    void hostileCountsAreRefused_data();
    void hostileCountsAreRefused() { verifyRefused(); }
    void hostileNumbersAreRefused_data();
    void hostileNumbersAreRefused() { verifyRefused(); }
    void bottomlessNestingIsRefused();
    void nestingUpToTheLimitIsRead();
    void truncatedDataNeverReads();
    void flippedBytesDoNoHarm();

private:
    static constexpr QSize frame{120, 90};
    TestPen m_pen{{3, 3, 1, 1}};
    TestEraser m_eraser{{4, 4, 1, 1}, Tool::EraserType::VinylEraser};

    static void verifyRefused();

    void fill(StrokeDrawing &drawing) const
    {
        drawing.addStroke(drawnStroke(m_pen, frame, {10, 10}, {100, 70}));
        drawing.addStroke(drawnStroke(m_eraser, frame, {40, 10}, {40, 80}));
        drawing.cutPath(rectPath(60, 20, 15, 50));
        drawing.addStroke(drawnStroke(m_pen, frame, {10, 80}, {110, 20}));
        QImage image = blankCoverage({20, 20});
        image.fill(50);
        drawing.addStroke(std::make_unique<BitmapStroke>(image, QRect(90, 70, 10, 10)));
    }
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

template<typename Object>
bool readFrom(const QByteArray &bytes, Object &object)
{
    QDataStream stream(bytes);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    const bool done = object.read(stream);
    if (done != (stream.status() == QDataStream::Ok))
        qFatal("What read() answers and what the stream says are different things");
    return done;
}

void writeFloats(QDataStream &stream, const std::vector<float> &values)
{
    for (const float value : values)
        stream << value;
}

/// A pen stroke's head with a marker's kind and some bounds.
void writeHead(QDataStream &stream)
{
    stream << true << qint32(1) << QRect(0, 0, 10, 10);
}

/// What follows the children of a compound: no paths, no transform.
void writeTail(QDataStream &stream)
{
    stream << qint32(0) << qint32(0);
    writeFloats(stream, {1, 0, 0, 0, 1, 0, 0, 0, 1});
}

/// A drawing of 120 x 90 pixels with \a children, which begin with their count.
QByteArray drawingOf(const Writer &children)
{
    return bytesOf([&](QDataStream &s) {
        s << QSize(120, 90);
        children(s);
    });
}

/// A drawing of one single stroke that is \a body behind its kind.
QByteArray strokeOf(const Writer &body)
{
    return drawingOf([&](QDataStream &s) {
        s << qint64(1) << qint32(0);
        body(s);
        writeTail(s);
    });
}

} // namespace

void tst_StrokeStreams::segmentsHaveTheirLayout()
{
    QCOMPARE(bytesOf([](QDataStream &s) {
                 PointSegment({1, 2}, 0.5, 4).write(s);
             }),
             bytesOf([](QDataStream &s) {
                 writeFloats(s, {1, 2, 0.5F, 4});
             }));
    QCOMPARE(bytesOf([](QDataStream &s) {
                 LineSegment({1, 2}, {3, 4}, 0.1, 0.2, 5, 6).write(s);
             }),
             bytesOf([](QDataStream &s) {
                 writeFloats(s, {1, 2, 3, 4, 0.1F, 0.2F, 5, 6});
             }));
    QCOMPARE(bytesOf([](QDataStream &s) {
                 ArcSegment({{1, 2}, 3}, {4, 5}, {6, 7}, true, 0.1, 0.2, 8, 9).write(s);
             }),
             bytesOf([](QDataStream &s) {
                 writeFloats(s, {1, 2, 3, 4, 5, 6, 7});
                 s << quint8(1);
                 writeFloats(s, {0.1F, 0.2F, 8, 9});
             }));
}

void tst_StrokeStreams::singleStrokeHasItsLayout()
{
    SingleStroke stroke(&m_pen);
    stroke.addSample(sampleAt(20, 30, 0.25));
    const QByteArray expected = bytesOf([](QDataStream &s) {
        // The disc of radius 3 around the sample, right and bottom edge inclusive.
        s << quint8(1) << qint32(1) << qint32(17) << qint32(27) << qint32(22) << qint32(32);
        s << qint32(1);
        writeFloats(s, {20, 30, 0.25F});
        s << qint32(1) << qint32(0);
        writeFloats(s, {20, 30, 1, 3});
    });
    QCOMPARE(bytesOf([&](QDataStream &s) { stroke.write(s); }), expected);
}

void tst_StrokeStreams::eraserKeepsItsOwnKind()
{
    SingleStroke stroke(&m_eraser);
    stroke.addSample(sampleAt(20, 30));
    const QByteArray bytes = bytesOf([&](QDataStream &s) { stroke.write(s); });
    QVERIFY(bytes.startsWith(QByteArray::fromHex("0000000002")));
    SingleStroke read(nullptr);
    QVERIFY(readFrom(bytes, read));
    QVERIFY(read.isEraser());
    QCOMPARE(read.eraserType(), Tool::EraserType::VinylEraser);
    QCOMPARE(read.penType(), Tool::PenType::Marker);
    QVERIFY(read.image().isNull());
}

void tst_StrokeStreams::compoundHasItsLayout()
{
    CompoundStroke inner;
    CompoundStroke outer;
    outer.append(inner.clone());
    outer.setTransform(QTransform(1, 2, 3, 4, 5, 6));
    const QByteArray expected = bytesOf([](QDataStream &s) {
        s << qint64(1) << qint32(1);
        s << qint64(0);
        writeTail(s);
        s << qint32(0) << qint32(0);
        writeFloats(s, {1, 2, 0, 3, 4, 0, 5, 6, 1});
    });
    QCOMPARE(bytesOf([&](QDataStream &s) { outer.write(s); }), expected);
}

void tst_StrokeStreams::bitmapStrokeHasItsLayout()
{
    QCOMPARE(bytesOf([](QDataStream &s) { BitmapStroke(QImage(), QRect(1, 2, 3, 4)).write(s); }),
             bytesOf([](QDataStream &s) { s << qint32(1) << qint32(2) << qint32(3) << qint32(5) << qint32(-1); }));
    QImage image = blankCoverage({3, 1});
    image.scanLine(0)[0] = 7;
    // A literal of one pixel, the rest of the row is empty, end.
    QCOMPARE(bytesOf([&](QDataStream &s) { BitmapStroke(image, QRect(1, 2, 3, 1)).write(s); }),
             bytesOf([](QDataStream &s) {
                 s << qint32(1) << qint32(2) << qint32(3) << qint32(2) << qint32(2) << qint32(3) << qint32(1);
                 s << QByteArray::fromHex("0301070a");
             }));
}

void tst_StrokeStreams::geometrySurvivesInSinglePrecision()
{
    const TestPen pen({1, 9, 0.1, 1});
    for (const auto &stream : TestSupport::allPenStreams()) {
        SingleStroke stroke(&pen);
        for (const Sample &sample : stream.samples)
            stroke.addSample(sample);
        const QByteArray bytes = bytesOf([&](QDataStream &s) { stroke.write(s); });
        SingleStroke read(nullptr);
        QVERIFY(readFrom(bytes, read));
        QCOMPARE(read.boundingRect(), stroke.boundingRect());
        QCOMPARE(read.samples().size(), stroke.samples().size());
        QCOMPARE(read.segments().size(), stroke.segments().size());
        for (size_t i = 0; i < read.samples().size(); ++i)
            QCOMPARE(read.samples()[i].point.x(), double(float(stroke.samples()[i].point.x())));
        QCOMPARE(bytesOf([&](QDataStream &s) { read.write(s); }), bytes);
    }
}

void tst_StrokeStreams::drawingComesBackWithTheSamePixelsAndBytes()
{
    StrokeDrawing drawing(frame);
    fill(drawing);
    const QByteArray bytes = bytesOf([&](QDataStream &s) { QVERIFY(drawing.write(s)); });
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(bytes, read));
    QCOMPARE(read.size(), frame);
    QCOMPARE(largestDifference(read.image(), drawing.image()), 0);
    QCOMPARE(read.inkedRect(), drawing.inkedRect());
    QCOMPARE(bytesOf([&](QDataStream &s) { read.write(s); }), bytes);
}

void tst_StrokeStreams::drawingWithoutAnImageIsRebuilt_data()
{
    QTest::addColumn<QByteArray>("trailer");
    QTest::newRow("end of the stream") << QByteArray();
    QTest::newRow("no image") << QByteArray::fromHex("ffffffff");
    QTest::newRow("unknown marker") << QByteArray::fromHex("00000001");
    // 120 x 90, and data that ends without its end opcode.
    QTest::newRow("damaged image") << QByteArray::fromHex("00000002000000780000005a0000000106");
}

void tst_StrokeStreams::drawingWithoutAnImageIsRebuilt()
{
    QFETCH(QByteArray, trailer);
    StrokeDrawing drawing(frame);
    fill(drawing);
    drawing.rebuild(QRect(QPoint(0, 0), frame));
    const QByteArray bytes = bytesOf([&](QDataStream &s) {
        s << frame;
        drawing.strokes().write(s);
    });
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(bytes + trailer, read));
    QVERIFY(largestDifference(read.image(), drawing.image()) <= 2);
}

void tst_StrokeStreams::imageOfAnotherSizeIsRebuilt_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("smaller") << QSize(5, 5);
    QTest::newRow("wider") << QSize(121, 90);
    QTest::newRow("much larger") << QSize(2000, 1000);
}

void tst_StrokeStreams::imageOfAnotherSizeIsRebuilt()
{
    QFETCH(QSize, size);
    StrokeDrawing drawing(frame);
    fill(drawing);
    const QByteArray bytes = bytesOf([&](QDataStream &s) {
        s << frame;
        drawing.strokes().write(s);
        s << qint32(2);
        RleImage(blankCoverage(size)).write(s);
    });
    StrokeDrawing read{QSize()};
    QVERIFY(readFrom(bytes, read));
    QCOMPARE(read.image().size(), frame);
    QVERIFY(!inkOf(read.image()).isNull());
    QCOMPARE(read.strokes().count(), drawing.strokes().count());
}

void tst_StrokeStreams::strokesBeforeTheFaultAreKept()
{
    const auto whole = straightStroke(m_pen, {10, 20}, {100, 20});
    const QByteArray bytes = bytesOf([&](QDataStream &s) {
        s << frame << qint64(3) << qint32(0);
        whole->write(s);
        s << qint32(0);
        writeHead(s);
        s << qint32(1);
        writeFloats(s, {1, std::numeric_limits<float>::quiet_NaN(), 1});
        s << qint32(0) << qint32(0);
        whole->write(s);
        writeTail(s);
    });
    StrokeDrawing read{QSize()};
    QVERIFY(!readFrom(bytes, read));
    QCOMPARE(read.size(), frame);
    QCOMPARE(read.strokes().count(), 1);
    QCOMPARE(read.image().size(), frame);
    QVERIFY(coverageAt(read.image(), 50, 20) > 240);
}

void tst_StrokeStreams::strokesOfABrokenGroupAreKept()
{
    const auto whole = straightStroke(m_pen, {10, 20}, {100, 20});
    const QByteArray bytes = bytesOf([&](QDataStream &s) {
        s << frame << qint64(1) << qint32(1) << qint64(1) << qint32(0);
        whole->write(s);
        s << qint32(0) << qint32(0);
        writeFloats(s, {std::numeric_limits<float>::infinity(), 0, 0, 0, 1, 0, 0, 0, 1});
        writeTail(s);
    });
    StrokeDrawing read{QSize()};
    QVERIFY(!readFrom(bytes, read));
    QCOMPARE(read.strokes().recursiveCount(), 3);
    QVERIFY(coverageAt(read.image(), 50, 20) > 240);
}

void tst_StrokeStreams::bitmapsBeyondTheBudgetAreLeftOut()
{
    // Each takes 2^26 bytes, and there are 2^28.
    const QByteArray bytes = bytesOf([](QDataStream &s) {
        s << qint64(5);
        for (int i = 0; i < 5; ++i) {
            s << qint32(2) << QRect(0, 0, 10, 10) << qint32(2) << qint32(8192) << qint32(8192);
            s << QByteArray::fromHex("0a");
        }
        writeTail(s);
    });
    QDataStream stream(bytes);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    StreamBudget budget;
    budget.imageBytes = qint64(1) << 28;
    CompoundStroke read;
    QVERIFY(read.read(stream, budget));
    QVERIFY(budget.exceedsMemory);
    QCOMPARE(budget.imageBytes, 0);
    QCOMPARE(read.count(), 5);
    for (int i = 0; i < read.count(); ++i)
        QCOMPARE(static_cast<const BitmapStroke &>(read.at(i)).image().isNull(), i == 4);
}

void tst_StrokeStreams::coverageThatIsNotWantedIsPassedOver_data()
{
    QTest::addColumn<bool>("isEmpty");
    QTest::addColumn<qint64>("memory");
    QTest::newRow("no strokes") << true << qint64(1 << 20);
    QTest::newRow("no memory") << false << qint64(0);
}

void tst_StrokeStreams::coverageThatIsNotWantedIsPassedOver()
{
    QFETCH(bool, isEmpty);
    QFETCH(qint64, memory);
    const QByteArray bytes = bytesOf([&](QDataStream &s) {
        s << frame << qint64(isEmpty ? 0 : 1);
        if (!isEmpty) {
            s << qint32(0);
            straightStroke(m_pen, {10, 20}, {100, 20})->write(s);
        }
        writeTail(s);
        s << qint32(2);
        RleImage(blankCoverage(frame)).write(s);
        s << qint32(4711);
    });
    QDataStream stream(bytes);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    StreamBudget budget;
    budget.imageBytes = memory;
    StrokeDrawing read{QSize()};
    QVERIFY(read.read(stream, budget));
    QVERIFY(read.image().isNull());
    QCOMPARE(budget.exceedsMemory, !isEmpty);
    QCOMPARE(budget.imageBytes, memory);
    // What comes behind the drawing is where it should be.
    qint32 next = 0;
    stream >> next;
    QCOMPARE(next, 4711);
}

void tst_StrokeStreams::storedBoundsTooSmallAreWidened()
{
    const QByteArray bytes = bytesOf([](QDataStream &s) {
        s << true << qint32(1) << QRect(10, 10, 5, 5) << qint32(0) << qint32(1) << qint32(0);
        writeFloats(s, {50, 40, 0.5F, 4});
    });
    SingleStroke read(nullptr);
    QVERIFY(readFrom(bytes, read));
    // The stored bounds, the disc from 46 to 54 and from 36 to 44, and a pixel of rim.
    QCOMPARE(read.boundingRect(), QRect(QPoint(9, 9), QPoint(54, 44)));
}

void tst_StrokeStreams::unknownChildIsSkipped()
{
    SingleStroke dot(&m_pen);
    dot.addSample(sampleAt(20, 30));
    const QByteArray bytes = bytesOf([&](QDataStream &s) {
        s << qint64(3) << qint32(17) << qint32(0);
        dot.write(s);
        s << qint32(-4);
        writeTail(s);
    });
    CompoundStroke read;
    QVERIFY(readFrom(bytes, read));
    QCOMPARE(read.count(), 1);
    QCOMPARE(read.boundingRect(), dot.boundingRect());
}

void tst_StrokeStreams::unknownSegmentIsSkipped()
{
    const QByteArray bytes = bytesOf([](QDataStream &s) {
        writeHead(s);
        s << qint32(0) << qint32(2) << qint32(9) << qint32(0);
        writeFloats(s, {1, 2, 0.5F, 4});
    });
    SingleStroke read(nullptr);
    QVERIFY(readFrom(bytes, read));
    QCOMPARE(read.segments().size(), size_t(1));
    QCOMPARE(read.segments().front()->type(), Segment::Type::Point);
}

void tst_StrokeStreams::brokenSamplesLeaveNone()
{
    const QByteArray bytes = bytesOf([](QDataStream &s) {
        writeHead(s);
        s << qint32(2);
        writeFloats(s, {1, 2, 0.5F, std::numeric_limits<float>::infinity(), 1, 1});
        s << qint32(0);
    });
    SingleStroke read(nullptr);
    QVERIFY(!readFrom(bytes, read));
    QVERIFY(read.samples().empty());
}

void tst_StrokeStreams::hostileSizesAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("negative size") << bytesOf([](QDataStream &s) {
        s << QSize(-5, 4) << qint64(0);
        writeTail(s);
    });
    QTest::newRow("size beyond any frame") << bytesOf([](QDataStream &s) {
        s << QSize(40000, 4) << qint64(0);
        writeTail(s);
    });
    QTest::newRow("bounds beyond all paper") << strokeOf([](QDataStream &s) {
        s << true << qint32(1) << QRect(QPoint(-2000000000, 0), QPoint(2000000000, 5)) << qint32(0) << qint32(0);
    });
    QTest::newRow("huge bitmap from little data") << drawingOf([](QDataStream &s) {
        s << qint64(1) << qint32(2) << QRect(0, 0, 10, 10) << qint32(2) << qint32(60000) << qint32(60000);
        s << QByteArray::fromHex("0a");
        writeTail(s);
    });
}

void tst_StrokeStreams::hostileCountsAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("countless children") << drawingOf([](QDataStream &s) {
        s << std::numeric_limits<qint64>::max();
        writeTail(s);
    });
    QTest::newRow("negative children") << drawingOf([](QDataStream &s) {
        s << qint64(-1);
        writeTail(s);
    });
    QTest::newRow("countless samples") << strokeOf([](QDataStream &s) {
        writeHead(s);
        s << std::numeric_limits<qint32>::max();
    });
    QTest::newRow("countless segments") << strokeOf([](QDataStream &s) {
        writeHead(s);
        s << qint32(0) << qint32(0x7000000);
    });
    QTest::newRow("countless path elements") << drawingOf([](QDataStream &s) {
        s << qint64(0) << std::numeric_limits<qint32>::max() << qint32(0);
        writeFloats(s, {1, 0, 0, 0, 1, 0, 0, 0, 1});
    });
}

void tst_StrokeStreams::hostileNumbersAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const float nan = std::numeric_limits<float>::quiet_NaN();
    QTest::newRow("unknown pen") << strokeOf(
        [](QDataStream &s) { s << true << qint32(3) << QRect(0, 0, 1, 1) << qint32(0) << qint32(0); });
    QTest::newRow("segment that is no number") << strokeOf([nan](QDataStream &s) {
        writeHead(s);
        s << qint32(0) << qint32(1) << qint32(0);
        writeFloats(s, {nan, 2, 0.5F, 4});
    });
    QTest::newRow("negative radius") << strokeOf([](QDataStream &s) {
        writeHead(s);
        s << qint32(0) << qint32(1) << qint32(0);
        writeFloats(s, {1, 2, 0.5F, -4});
    });
    QTest::newRow("transform that is no number") << drawingOf([nan](QDataStream &s) {
        s << qint64(0) << qint32(0) << qint32(0);
        writeFloats(s, {nan, 0, 0, 0, 1, 0, 0, 0, 1});
    });
}

void tst_StrokeStreams::bottomlessNestingIsRefused()
{
    constexpr int levels = 200'000;
    StrokeDrawing read(frame);
    QVERIFY(!readFrom(drawingOf([](QDataStream &s) {
                          for (int i = 0; i < levels; ++i)
                              s << qint64(1) << qint32(1);
                          s << qint64(0);
                          for (int i = 0; i <= levels; ++i)
                              writeTail(s);
                      }),
                      read));
    QVERIFY(read.isEmpty());
}

void tst_StrokeStreams::verifyRefused()
{
    QFETCH(QByteArray, bytes);
    StrokeDrawing read(frame);
    QVERIFY(!readFrom(bytes, read));
    QVERIFY(read.isEmpty());
    QVERIFY(read.image().isNull());
}

void tst_StrokeStreams::nestingUpToTheLimitIsRead()
{
    const auto nested = [](int depth) {
        return bytesOf([depth](QDataStream &s) {
            for (int i = 1; i < depth; ++i)
                s << qint64(1) << qint32(1);
            s << qint64(0);
            for (int i = 0; i < depth; ++i)
                writeTail(s);
        });
    };
    CompoundStroke deepest;
    QVERIFY(readFrom(nested(CompoundStroke::maximumDepth), deepest));
    QCOMPARE(deepest.recursiveCount(), CompoundStroke::maximumDepth);
    CompoundStroke tooDeep;
    QVERIFY(!readFrom(nested(CompoundStroke::maximumDepth + 1), tooDeep));
}

void tst_StrokeStreams::truncatedDataNeverReads()
{
    StrokeDrawing drawing(frame);
    fill(drawing);
    const QByteArray strokes = bytesOf([&](QDataStream &s) {
        s << frame;
        drawing.strokes().write(s);
    });
    for (qsizetype size = 0; size < strokes.size(); size += 3) {
        StrokeDrawing read(frame);
        QVERIFY2(!readFrom(strokes.left(size), read), qPrintable(QString::number(size)));
        QVERIFY(read.strokes().recursiveCount() <= drawing.strokes().recursiveCount());
        QVERIFY(read.isEmpty() == read.image().isNull());
    }
}

void tst_StrokeStreams::flippedBytesDoNoHarm()
{
    constexpr unsigned seed = 4711;
    qInfo("seed %u", seed);
    std::mt19937 random(seed);
    StrokeDrawing drawing(frame);
    fill(drawing);
    const QByteArray good = bytesOf([&](QDataStream &s) { drawing.write(s); });
    for (int i = 0; i < 400; ++i) {
        QByteArray bytes = good;
        for (int flips = 1 + int(random() % 4); flips > 0; --flips)
            bytes[qsizetype(random() % size_t(bytes.size()))] = char(random() % 256);
        // The frame stays as it was: a large one is no defect, and only slow to draw.
        bytes.replace(0, 8, good.left(8));
        StrokeDrawing read(frame);
        readFrom(bytes, read);
        read.rebuild(QRect(QPoint(0, 0), frame));
        QVERIFY(read.isEmpty() == read.image().isNull());
    }
}

QTEST_MAIN(tst_StrokeStreams)
#include "tst_strokestreams.moc"
