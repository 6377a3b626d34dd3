#include "libmodel/images/exrwriter.h"

#include "support/brokendisks.h"
#include "support/exrparser.h"
#include "support/watcheddisk.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace Model;
using namespace TestSupport;

namespace {

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QImage filled(QImage::Format format, const QColor &color, QSize size = {4, 3})
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

ExrFile written(const QImage &image)
{
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("picture.exr");
    return parseExr(writeExr(image, fileName) ? contentOf(fileName) : QByteArray());
}

const QRegularExpression saveError("^Save EXR err: .");

} // namespace

class tst_ExrWriter : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void channelsAreABGRInHalfFloatsWithoutCompression();
    void coloursAreInLinearLight_data();
    void coloursAreInLinearLight();
    void alphaIsKeptAsItIs();
    void premultipliedColoursAreDivided();
    void everyPixelIsInItsPlace();
    void wideAndHighImagesKeepTheirShape_data();
    void wideAndHighImagesKeepTheirShape();
    void nullImageIsRefused();
    void otherFormatsAreRefused_data();
    void otherFormatsAreRefused();
    void refusedImageLeavesTheOldFile();
    void fileThatStoodThereIsReplaced();
    void missingFolderIsAnError();
    void fullDiskLeavesTheOldFile_data();
    void fullDiskLeavesTheOldFile();
    void readOnlyFolderIsAnError();
    void namesMayHaveSpacesAndAnyLetters();
    void reasonIsToldForADevice();
    void diskThatFailsLateLeavesTheOldFile();
    void nameWithoutRoomForATemporaryOneIsAnError();
    void lackOfMemoryIsAnErrorWhereverItStrikes();
    void otherProgramsReadTheFile();
};

void tst_ExrWriter::init()
{
    QTest::failOnWarning(QRegularExpression("."));
}

void tst_ExrWriter::channelsAreABGRInHalfFloatsWithoutCompression()
{
    const ExrFile file = written(filled(QImage::Format_ARGB32, Qt::red));
    QCOMPARE(file.error, QString());
    QCOMPARE(file.channels, QStringList({"A", "B", "G", "R"}));
    QCOMPARE(file.compression, 0);
    QCOMPARE(file.size, QSize(4, 3));
}

void tst_ExrWriter::coloursAreInLinearLight_data()
{
    QTest::addColumn<int>("value");
    for (const int value : {0, 1, 2, 17, 64, 127, 128, 200, 254, 255})
        QTest::addRow("%d", value) << value;
}

void tst_ExrWriter::coloursAreInLinearLight()
{
    QFETCH(int, value);
    const double linear = std::pow(value / 255.0, 2.2);
    QImage image(3, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(value, 0, 255, 255));
    image.setPixel(1, 0, qRgba(255, value, 0, 255));
    image.setPixel(2, 0, qRgba(0, 255, value, 255));
    const ExrFile file = written(image);
    QCOMPARE(file.error, QString());
    const char *const own[] = {"R", "G", "B"};
    for (int x = 0; x < 3; ++x) {
        QVERIFY(isNearestHalf(file.at(own[x], x, 0), linear));
        QCOMPARE(file.at(own[(x + 1) % 3], x, 0), 0.0F);
        QCOMPARE(file.at(own[(x + 2) % 3], x, 0), 1.0F);
    }
}

void tst_ExrWriter::alphaIsKeptAsItIs()
{
    QImage image(256, 1, QImage::Format_ARGB32);
    for (int alpha = 0; alpha < 256; ++alpha)
        image.setPixel(alpha, 0, qRgba(10, 20, 30, alpha));
    const ExrFile file = written(image);
    QCOMPARE(file.error, QString());
    for (int alpha = 0; alpha < 256; ++alpha)
        QVERIFY2(isNearestHalf(file.at("A", alpha, 0), alpha / 255.0), qPrintable(QString::number(alpha)));
}

void tst_ExrWriter::premultipliedColoursAreDivided()
{
    QImage image(2, 1, QImage::Format_ARGB32_Premultiplied);
    // A fifth of full red, and half of nothing but green: both colours are full ones.
    reinterpret_cast<QRgb *>(image.scanLine(0))[0] = qRgba(51, 0, 0, 51);
    reinterpret_cast<QRgb *>(image.scanLine(0))[1] = qRgba(0, 128, 0, 128);
    const ExrFile file = written(image);
    QCOMPARE(file.error, QString());
    QCOMPARE(file.at("R", 0, 0), 1.0F);
    QVERIFY(isNearestHalf(file.at("A", 0, 0), 0.2));
    QCOMPARE(file.at("G", 1, 0), 1.0F);
    QVERIFY(isNearestHalf(file.at("A", 1, 0), 128 / 255.0));
    QCOMPARE(file.at("R", 1, 0), 0.0F);
}

void tst_ExrWriter::everyPixelIsInItsPlace()
{
    QImage image(7, 5, QImage::Format_ARGB32);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 7; ++x)
            image.setPixel(x, y, qRgba(7 * x, 11 * y, 255 - 7 * x, 100 + 20 * y + x));
    }
    const ExrFile file = written(image);
    QCOMPARE(file.error, QString());
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 7; ++x) {
            QVERIFY(isNearestHalf(file.at("R", x, y), std::pow(7 * x / 255.0, 2.2)));
            QVERIFY(isNearestHalf(file.at("G", x, y), std::pow(11 * y / 255.0, 2.2)));
            QVERIFY(isNearestHalf(file.at("B", x, y), std::pow((255 - 7 * x) / 255.0, 2.2)));
            QVERIFY(isNearestHalf(file.at("A", x, y), (100 + 20 * y + x) / 255.0));
        }
    }
}

void tst_ExrWriter::wideAndHighImagesKeepTheirShape_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("a line") << QSize(3000, 1);
    QTest::newRow("a column") << QSize(1, 3000);
    QTest::newRow("odd") << QSize(33, 65);
}

void tst_ExrWriter::wideAndHighImagesKeepTheirShape()
{
    QFETCH(QSize, size);
    const ExrFile file = written(filled(QImage::Format_ARGB32, Qt::white, size));
    QCOMPARE(file.error, QString());
    QCOMPARE(file.size, size);
    QCOMPARE(file.at("B", size.width() - 1, size.height() - 1), 1.0F);
}

void tst_ExrWriter::nullImageIsRefused()
{
    const QTemporaryDir folder;
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(QImage(), folder.filePath("picture.exr")));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void tst_ExrWriter::otherFormatsAreRefused_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("without alpha") << QImage::Format_RGB32;
    QTest::newRow("bytes") << QImage::Format_RGBA8888;
    QTest::newRow("bytes, premultiplied") << QImage::Format_RGBA8888_Premultiplied;
    QTest::newRow("coverage") << QImage::Format_Alpha8;
    QTest::newRow("grey") << QImage::Format_Grayscale8;
    QTest::newRow("wide") << QImage::Format_RGBA64;
}

void tst_ExrWriter::otherFormatsAreRefused()
{
    QFETCH(QImage::Format, format);
    const QTemporaryDir folder;
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(filled(format, Qt::red), folder.filePath("picture.exr")));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void tst_ExrWriter::refusedImageLeavesTheOldFile()
{
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("picture.exr");
    QVERIFY(writeExr(filled(QImage::Format_ARGB32, Qt::red), fileName));
    const QByteArray before = contentOf(fileName);
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(QImage(), fileName));
    QCOMPARE(contentOf(fileName), before);
}

void tst_ExrWriter::fileThatStoodThereIsReplaced()
{
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("picture.exr");
    QVERIFY(writeExr(filled(QImage::Format_ARGB32, Qt::red, {50, 50}), fileName));
    QVERIFY(writeExr(filled(QImage::Format_ARGB32, Qt::blue), fileName));
    const ExrFile file = parseExr(contentOf(fileName));
    QCOMPARE(file.error, QString());
    QCOMPARE(file.at("B", 0, 0), 1.0F);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("picture.exr"));
}

void tst_ExrWriter::missingFolderIsAnError()
{
    const QTemporaryDir folder;
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(filled(QImage::Format_ARGB32, Qt::red), folder.filePath("gone/picture.exr")));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void tst_ExrWriter::fullDiskLeavesTheOldFile_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<int>("missing");
    QTest::newRow("the last byte has no place") << 100 << 1;
    QTest::newRow("the last thousand bytes have no place") << 100 << 1000;
    QTest::newRow("hardly a byte has a place") << 100 << 80000;
    QTest::newRow("the last byte of a file that fits into a buffer") << 10 << 1;
}

void tst_ExrWriter::fullDiskLeavesTheOldFile()
{
    QFETCH(int, side);
    QFETCH(int, missing);
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("picture.exr");
    const QImage large = filled(QImage::Format_ARGB32, Qt::blue, {side, side});
    QVERIFY(writeExr(large, folder.filePath("large.exr")));
    const auto needed = contentOf(folder.filePath("large.exr")).size();
    QVERIFY(needed > missing);
    QVERIFY(QFile::remove(folder.filePath("large.exr")));
    QVERIFY(writeExr(filled(QImage::Format_ARGB32, Qt::red), fileName));
    const QByteArray before = contentOf(fileName);

    QTest::ignoreMessage(QtWarningMsg, saveError);
    bool done = true;
    {
        const FullDisk full(rlim_t(needed - missing));
        done = writeExr(large, fileName);
    }
    QVERIFY(!done);
    QCOMPARE(contentOf(fileName), before);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("picture.exr"));
}

void tst_ExrWriter::readOnlyFolderIsAnError()
{
    const ReadOnlyFolder folder;
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(filled(QImage::Format_ARGB32, Qt::red), folder.filePath("picture.exr")));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void tst_ExrWriter::namesMayHaveSpacesAndAnyLetters()
{
    const QTemporaryDir folder;
    const QString name = QString::fromUtf8("a walk, größer 🐎.exr");
    QVERIFY(writeExr(filled(QImage::Format_ARGB32, Qt::red), folder.filePath(name)));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList(name));
}

void tst_ExrWriter::reasonIsToldForADevice()
{
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QString reason;
    // Telling it is up to the caller: the log would fail the test.
    QVERIFY(!writeExr(QImage(), buffer, &reason));
    QVERIFY(!reason.isEmpty());
    QVERIFY(buffer.data().isEmpty());
    QVERIFY(writeExr(filled(QImage::Format_ARGB32, Qt::red), buffer, &reason));
    QCOMPARE(parseExr(buffer.data()).error, QString());
}

void tst_ExrWriter::diskThatFailsLateLeavesTheOldFile()
{
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("picture.exr");
    QVERIFY(writeExr(filled(QImage::Format_ARGB32, Qt::red), fileName));
    const QByteArray before = contentOf(fileName);
    QTest::ignoreMessage(QtWarningMsg, "Save EXR err: Input/output error");
    {
        const BrokenDisk disk;
        QVERIFY(!writeExr(filled(QImage::Format_ARGB32, Qt::blue), fileName));
    }
    QCOMPARE(contentOf(fileName), before);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("picture.exr"));
}

void tst_ExrWriter::nameWithoutRoomForATemporaryOneIsAnError()
{
    const QTemporaryDir folder;
    QTest::ignoreMessage(QtWarningMsg, "Save EXR err: File name too long");
    QVERIFY(!writeExr(filled(QImage::Format_ARGB32, Qt::red), folder.filePath(QString(246, 'n') + ".exr")));
}

void tst_ExrWriter::lackOfMemoryIsAnErrorWhereverItStrikes()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("the sanitizer itself takes more address space than this limit leaves");
#else
    // Nothing is to be converted: images have a warning of their own for it.
    const QImage image = filled(QImage::Format_ARGB32, Qt::red, {1000, 1000});
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QVERIFY(writeExr(image, buffer, nullptr));
    const QByteArray whole = buffer.data();
    const auto written = [&](rlim_t limit) {
        buffer.close();
        buffer.open(QIODevice::WriteOnly | QIODevice::Truncate);
        rlimit before = {};
        getrlimit(RLIMIT_AS, &before);
        rlimit lowered = before;
        lowered.rlim_cur = limit;
        setrlimit(RLIMIT_AS, &lowered);
        QString reason;
        const bool done = writeExr(image, buffer, &reason);
        setrlimit(RLIMIT_AS, &before);
        return done ? QString() : reason;
    };
    QFile sizes("/proc/self/statm");
    QVERIFY(sizes.open(QIODevice::ReadOnly));
    const auto taken = rlim_t(sizes.readAll().split(' ').first().toULongLong()) * rlim_t(sysconf(_SC_PAGESIZE));
    int lacking = 0;
    int done = 0;
    // Sixteen megabytes of planes, eight of lines and eight of a file, with all that lies between.
    for (rlim_t megabytes = 0; megabytes < 120; megabytes += 2) {
        const QString reason = written(taken + (megabytes << 20));
        if (reason.isEmpty()) {
            QCOMPARE(buffer.data(), whole);
            ++done;
        } else {
            QCOMPARE(reason, QString("Not enough memory"));
            ++lacking;
        }
    }
    QVERIFY(lacking > 0);
    QVERIFY(done > 0);
#endif
}

void tst_ExrWriter::otherProgramsReadTheFile()
{
    const QString reader = QStandardPaths::findExecutable("exrheader");
    QVERIFY2(!reader.isEmpty(), "exrheader of the package openexr is not installed");
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("picture.exr");
    QVERIFY(writeExr(filled(QImage::Format_ARGB32_Premultiplied, Qt::red, {40, 30}), fileName));
    QProcess process;
    process.start(reader, {fileName});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    const QString told = QString::fromUtf8(process.readAllStandardOutput());
    QVERIFY2(told.contains("compression (type compression): none"), qPrintable(told));
    QVERIFY2(told.contains("dataWindow (type box2i): (0 0) - (39 29)"), qPrintable(told));
    for (const char *channel : {"A", "B", "G", "R"})
        QVERIFY2(told.contains(QString("%1, 16-bit floating-point").arg(channel)), qPrintable(told));
}

QTEST_GUILESS_MAIN(tst_ExrWriter)
#include "tst_exrwriter.moc"
