#include "libmodel/strokes/rleimage.h"

#include <QDataStream>
#include <QImage>
#include <QRandomGenerator>
#include <QTest>
#include <QtEndian>

#include <functional>
#include <limits>

using Model::RleImage;

namespace {

QImage image(QSize size, const std::function<int(int x, int y)> &pixel)
{
    QImage result(size, QImage::Format_Alpha8);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            result.scanLine(y)[x] = static_cast<uchar>(pixel(x, y));
    }
    return result;
}

QImage row(const QByteArray &pixels)
{
    return image(QSize(int(pixels.size()), 1), [&](int x, int) { return uchar(pixels[x]); });
}

QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray result;
    for (const int value : values)
        result.append(static_cast<char>(value));
    return result;
}

template<typename Number>
QByteArray bigEndian(Number value)
{
    QByteArray result(sizeof(Number), 0);
    qToBigEndian(value, result.data());
    return result;
}

/// An image read from a stream that somebody else has written.
RleImage fromStream(qint32 width, qint32 height, const QByteArray &data)
{
    QByteArray block;
    QDataStream out(&block, QIODevice::WriteOnly);
    out.setVersion(19);
    out << width << height << data;
    QDataStream in(block);
    RleImage result;
    result.read(in);
    return result;
}

/// The encoding by its description, one pixel at a time.
QByteArray encodedByHand(const QImage &source)
{
    QByteArray data;
    int pendingRows = 0;
    const auto counted = [&data](int opcode, int count) {
        if (count < 256)
            data += bytes({opcode, count});
        else if (count <= 65535)
            data += bytes({opcode + 1}) + bigEndian(quint16(count));
        else
            data += bytes({opcode + 2}) + bigEndian(qint32(count));
    };
    const auto flushRows = [&] {
        if (pendingRows == 1)
            data += bytes({6});
        else if (pendingRows > 1)
            counted(7, pendingRows);
        pendingRows = 0;
    };
    for (int y = 0; y < source.height(); ++y) {
        const uchar *pixels = source.constScanLine(y);
        const auto literal = [&](int from, int count) {
            counted(3, count);
            data.append(reinterpret_cast<const char *>(pixels + from), count);
        };
        bool empty = pixels[0] == 0;
        int start = 0;
        for (int x = 1; x < source.width(); ++x) {
            const bool e = pixels[x] == 0;
            if (e == empty || (!empty && x + 1 < source.width() && pixels[x + 1] != 0))
                continue;
            flushRows();
            if (empty)
                counted(0, x - start);
            else
                literal(start, x - start);
            start = x;
            empty = e;
        }
        if (!empty) {
            flushRows();
            literal(start, source.width() - start);
        }
        ++pendingRows;
    }
    return data + bytes({10});
}

} // namespace

class tst_RleImage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyImageIsOneByte();
    void rowOfWidthOne_data();
    void rowOfWidthOne();
    void countsTakeTheNarrowestOperand_data();
    void countsTakeTheNarrowestOperand();
    void singleGapStaysInTheLiteral();
    void doubleGapSplitsTheLiteral();
    void gapAtTheEndOfTheRowIsNotWritten();
    void rowStepsAreCountedAndResetTheColumn_data();
    void rowStepsAreCountedAndResetTheColumn();
    void randomImagesComeBackAndEqualTheDescription_data();
    void randomImagesComeBackAndEqualTheDescription();
    void imagesOfAnotherDepthGiveAnEmptyOne();
    void paddingOfRowsDoesNotCount();
    void streamHoldsSizeAndData();
    void streamComesBack();
    void cutOffStreamGivesAnEmptyImage();
    void copiesAreIndependent();

    void damagedDataGivesANullImage_data();
    void damagedDataGivesANullImage();
    void unknownOpcodesAreIgnored();
    void dataAfterTheEndIsIgnored();
    void sizesOutOfBoundsGiveANullImage_data();
    void sizesOutOfBoundsGiveANullImage();
    void everyTruncationGivesANullImage();
    void randomBytesNeverHarm();
};

void tst_RleImage::emptyImageIsOneByte()
{
    const QImage empty = image(QSize(1920, 1080), [](int, int) { return 0; });
    const RleImage encoded(empty);
    QCOMPARE(encoded.data(), bytes({10}));
    QCOMPARE(encoded.toImage(), empty);
}

void tst_RleImage::rowOfWidthOne_data()
{
    QTest::addColumn<int>("pixel");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("inked") << 7 << bytes({3, 1, 7, 10});
    QTest::newRow("empty") << 0 << bytes({10});
}

void tst_RleImage::rowOfWidthOne()
{
    QFETCH(int, pixel);
    const QImage source = image(QSize(1, 1), [pixel](int, int) { return pixel; });
    const RleImage encoded(source);
    QTEST(encoded.data(), "expected");
    QCOMPARE(encoded.toImage(), source);
}

void tst_RleImage::countsTakeTheNarrowestOperand_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("width");
    QTest::newRow("255") << 255 << 0;
    QTest::newRow("256") << 256 << 1;
    QTest::newRow("65535") << 65535 << 1;
    QTest::newRow("65536") << 65536 << 2;
}

void tst_RleImage::countsTakeTheNarrowestOperand()
{
    QFETCH(int, length);
    QFETCH(int, width);
    const QByteArray count = width == 0   ? bytes({length})
                             : width == 1 ? bigEndian(quint16(length))
                                          : bigEndian(qint32(length));
    const QImage literal = row(QByteArray(length, '\x09'));
    QCOMPARE(RleImage(literal).toImage(), literal);
    QCOMPARE(RleImage(literal).data(), bytes({3 + width}) + count + QByteArray(length, '\x09') + bytes({10}));
    const QImage skip = row(QByteArray(length, '\0') + '\x09');
    QCOMPARE(RleImage(skip).toImage(), skip);
    QCOMPARE(RleImage(skip).data(), bytes({width}) + count + bytes({3, 1, 9, 10}));
    const QImage rows = image(QSize(1, length + 1), [length](int, int y) { return y == length ? 9 : 0; });
    QCOMPARE(RleImage(rows).data(), bytes({7 + width}) + count + bytes({3, 1, 9, 10}));
    QCOMPARE(RleImage(rows).toImage(), rows);
}

void tst_RleImage::singleGapStaysInTheLiteral()
{
    QCOMPARE(RleImage(row(bytes({5, 0, 6}))).data(), bytes({3, 3, 5, 0, 6, 10}));
    QCOMPARE(RleImage(row(bytes({5, 0, 6, 0, 7, 7, 0, 8}))).data(), bytes({3, 8, 5, 0, 6, 0, 7, 7, 0, 8, 10}));
}

void tst_RleImage::doubleGapSplitsTheLiteral()
{
    QCOMPARE(RleImage(row(bytes({5, 0, 0, 6}))).data(), bytes({3, 1, 5, 0, 2, 3, 1, 6, 10}));
}

void tst_RleImage::gapAtTheEndOfTheRowIsNotWritten()
{
    QCOMPARE(RleImage(row(bytes({5, 0}))).data(), bytes({3, 1, 5, 10}));
    QCOMPARE(RleImage(row(bytes({5, 0, 0, 0}))).data(), bytes({3, 1, 5, 10}));
    QCOMPARE(RleImage(row(bytes({0, 5, 0}))).data(), bytes({0, 1, 3, 1, 5, 10}));
    const QImage two = image(QSize(3, 2), [](int x, int) { return x == 1 ? 4 : 0; });
    QCOMPARE(RleImage(two).data(), bytes({0, 1, 3, 1, 4, 6, 0, 1, 3, 1, 4, 10}));
    QCOMPARE(RleImage(two).toImage(), two);
}

void tst_RleImage::rowStepsAreCountedAndResetTheColumn_data()
{
    QTest::addColumn<int>("emptyRows");
    QTest::addColumn<QByteArray>("step");
    QTest::newRow("none between") << 0 << bytes({6});
    QTest::newRow("one between") << 1 << bytes({7, 2});
    QTest::newRow("254 between") << 254 << bytes({7, 255});
    QTest::newRow("255 between") << 255 << bytes({8, 1, 0});
    QTest::newRow("65533 between") << 65533 << bytes({8, 255, 254});
}

void tst_RleImage::rowStepsAreCountedAndResetTheColumn()
{
    QFETCH(int, emptyRows);
    QFETCH(QByteArray, step);
    const int last = emptyRows + 1;
    const QImage source =
        image(QSize(2, last + 1), [last](int x, int y) { return x == 1 && (y == 0 || y == last) ? 3 : 0; });
    const RleImage encoded(source);
    QCOMPARE(encoded.data(), bytes({0, 1, 3, 1, 3}) + step + bytes({0, 1, 3, 1, 3, 10}));
    QCOMPARE(encoded.toImage(), source);
}

void tst_RleImage::randomImagesComeBackAndEqualTheDescription_data()
{
    QTest::addColumn<int>("percentOfRunsInked");
    for (const int percent : {0, 3, 20, 50, 90, 100})
        QTest::addRow("%d %%", percent) << percent;
}

void tst_RleImage::randomImagesComeBackAndEqualTheDescription()
{
    QFETCH(int, percentOfRunsInked);
    for (quint32 seed = 1; seed <= 60; ++seed) {
        QRandomGenerator random(seed);
        const QSize size(1 + random.bounded(120), 1 + random.bounded(12));
        QImage source(size, QImage::Format_Alpha8);
        for (int y = 0; y < size.height(); ++y) {
            int x = 0;
            while (x < size.width()) {
                const bool inked = random.bounded(100) < percentOfRunsInked;
                // Short runs meet the rule of single gaps, long ones the scanning by words.
                for (int run = 1 + random.bounded(random.bounded(2) ? 3 : 40); run > 0 && x < size.width(); --run, ++x)
                    source.scanLine(y)[x] = static_cast<uchar>(inked ? 1 + random.bounded(255) : 0);
            }
        }
        const RleImage encoded(source);
        QVERIFY2(encoded.data() == encodedByHand(source), qPrintable(QStringLiteral("seed %1").arg(seed)));
        QVERIFY2(encoded.toImage() == source, qPrintable(QStringLiteral("seed %1").arg(seed)));
    }
}

void tst_RleImage::imagesOfAnotherDepthGiveAnEmptyOne()
{
    const RleImage colour(QImage(10, 10, QImage::Format_ARGB32));
    QCOMPARE(colour.width(), 0);
    QVERIFY(colour.toImage().isNull());
    QVERIFY(RleImage(QImage()).toImage().isNull());
    QVERIFY(RleImage().toImage().isNull());
}

void tst_RleImage::paddingOfRowsDoesNotCount()
{
    QImage source = image(QSize(5, 3), [](int x, int y) { return x == 4 ? 10 + y : 0; });
    for (int y = 0; y < 3; ++y)
        std::fill(source.scanLine(y) + 5, source.scanLine(y) + source.bytesPerLine(), uchar(200));
    const RleImage encoded(source);
    QCOMPARE(encoded.data(), bytes({0, 4, 3, 1, 10, 6, 0, 4, 3, 1, 11, 6, 0, 4, 3, 1, 12, 10}));
    QCOMPARE(encoded.toImage(), source);
}

void tst_RleImage::streamHoldsSizeAndData()
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_4_0);
    RleImage(row(bytes({0, 9}))).write(stream);
    QCOMPARE(stream.version(), 19);
    const QByteArray data = bytes({0, 1, 3, 1, 9, 10});
    QCOMPARE(block, bigEndian(qint32(2)) + bigEndian(qint32(1)) + bigEndian(qint32(data.size())) + data);
}

void tst_RleImage::streamComesBack()
{
    const QImage source = image(QSize(33, 21), [](int x, int y) { return x * y % 3 ? 0 : x + y; });
    QByteArray block;
    QDataStream out(&block, QIODevice::WriteOnly);
    RleImage(source).write(out);
    out << qint32(4711);
    QDataStream in(block);
    RleImage read;
    read.read(in);
    QCOMPARE(read.width(), 33);
    QCOMPARE(read.height(), 21);
    QCOMPARE(read.toImage(), source);
    qint32 next = 0;
    in >> next;
    QCOMPARE(next, 4711);
}

void tst_RleImage::cutOffStreamGivesAnEmptyImage()
{
    QByteArray block;
    QDataStream out(&block, QIODevice::WriteOnly);
    RleImage(row(bytes({1, 2, 3, 4}))).write(out);
    for (int length = 0; length < block.size(); ++length) {
        QDataStream in(block.left(length));
        RleImage read(row(bytes({9})));
        read.read(in);
        QVERIFY(in.status() != QDataStream::Ok);
        QCOMPARE(read.width(), 0);
        QVERIFY(read.toImage().isNull());
    }
}

void tst_RleImage::copiesAreIndependent()
{
    RleImage first(row(bytes({1, 2, 3})));
    const RleImage second(first);
    first = RleImage(row(bytes({7})));
    QCOMPARE(first.toImage(), row(bytes({7})));
    QCOMPARE(second.toImage(), row(bytes({1, 2, 3})));
}

void tst_RleImage::damagedDataGivesANullImage_data()
{
    QTest::addColumn<QByteArray>("data"); // for an image of 4 x 2
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no end") << bytes({3, 1, 9});
    QTest::newRow("skip beyond the row") << bytes({0, 5, 10});
    QTest::newRow("two skips beyond the row") << bytes({0, 3, 0, 2, 10});
    QTest::newRow("literal beyond the row") << bytes({3, 5, 1, 2, 3, 4, 5, 10});
    QTest::newRow("literal after a skip") << bytes({0, 2, 3, 3, 1, 2, 3, 10});
    QTest::newRow("literal cut off") << bytes({3, 4, 1, 2});
    QTest::newRow("rows beyond the image") << bytes({7, 3, 10});
    QTest::newRow("rows used up without an end") << bytes({7, 2, 10});
    QTest::newRow("count cut off, 1 byte") << bytes({0});
    QTest::newRow("count cut off, 2 bytes") << bytes({1, 0});
    QTest::newRow("count cut off, 4 bytes") << bytes({2, 0, 0, 0});
    QTest::newRow("negative skip") << bytes({2}) + bigEndian(qint32(-1)) + bytes({10});
    QTest::newRow("negative literal") << bytes({5}) + bigEndian(qint32(-4)) + bytes({1, 2, 3, 4, 10});
    QTest::newRow("negative rows") << bytes({6, 9}) + bigEndian(qint32(-1)) + bytes({10});
    QTest::newRow("least number") << bytes({5}) + bigEndian(std::numeric_limits<qint32>::min()) + bytes({10});
    QTest::newRow("largest skip twice") << bytes({2}) + bigEndian(std::numeric_limits<qint32>::max()) + bytes({2}) +
                                               bigEndian(std::numeric_limits<qint32>::max()) + bytes({10});
    QTest::newRow("largest rows") << bytes({6, 9}) + bigEndian(std::numeric_limits<qint32>::max()) + bytes({10});
}

void tst_RleImage::damagedDataGivesANullImage()
{
    QFETCH(QByteArray, data);
    QVERIFY(fromStream(4, 2, data).toImage().isNull());
}

void tst_RleImage::unknownOpcodesAreIgnored()
{
    const RleImage read = fromStream(2, 1, bytes({11, 3, 1, 9, 255, 200, 10}));
    QCOMPARE(read.toImage(), row(bytes({9, 0})));
}

void tst_RleImage::dataAfterTheEndIsIgnored()
{
    QCOMPARE(fromStream(2, 1, bytes({3, 2, 8, 9, 10, 3, 200, 1})).toImage(), row(bytes({8, 9})));
}

void tst_RleImage::sizesOutOfBoundsGiveANullImage_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("no width") << 0 << 10;
    QTest::newRow("no height") << 10 << 0;
    QTest::newRow("negative width") << -1 << 10;
    QTest::newRow("negative height") << 10 << -10;
    QTest::newRow("both negative") << -10 << -10;
    QTest::newRow("too wide") << (1 << 20) + 1 << 1;
    QTest::newRow("too high") << 1 << (1 << 20) + 1;
    QTest::newRow("too many pixels") << 65535 << 65535;
    QTest::newRow("largest numbers") << std::numeric_limits<int>::max() << std::numeric_limits<int>::max();
}

void tst_RleImage::sizesOutOfBoundsGiveANullImage()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QVERIFY(fromStream(width, height, bytes({10})).toImage().isNull());
}

void tst_RleImage::everyTruncationGivesANullImage()
{
    const QImage source = image(QSize(20, 6), [](int x, int y) { return (x / 4 + y) % 2 ? x + 1 : 0; });
    const QByteArray whole = RleImage(source).data();
    QCOMPARE(fromStream(20, 6, whole).toImage(), source);
    // A cut never leaves a last byte that reads as an end: the pixels in here are 10 only within literals.
    for (int length = 0; length < whole.size(); ++length)
        QVERIFY(fromStream(20, 6, whole.left(length)).toImage().isNull());
}

void tst_RleImage::randomBytesNeverHarm()
{
    int decoded = 0;
    for (quint32 seed = 0; seed < 20000; ++seed) {
        QRandomGenerator random(seed);
        QByteArray data;
        for (int i = random.bounded(60); i >= 0; --i)
            data.append(static_cast<char>(random.bounded(3) ? random.bounded(12) : random.bounded(256)));
        const QImage result = fromStream(1 + random.bounded(40), 1 + random.bounded(40), data).toImage();
        decoded += result.isNull() ? 0 : 1;
    }
    QVERIFY(decoded > 0 && decoded < 20000);
}

QTEST_APPLESS_MAIN(tst_RleImage)
#include "tst_rleimage.moc"
