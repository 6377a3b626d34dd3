#include "libmodel/images/exrwriter.h"

#include "support/brokendisks.h"
#include "support/exrparser.h"

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

class TstExrWriter : public QObject
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
    void otherProgramsReadTheFile();
};

void TstExrWriter::init()
{
    QTest::failOnWarning(QRegularExpression("."));
}

void TstExrWriter::channelsAreABGRInHalfFloatsWithoutCompression()
{
    const ExrFile file = written(filled(QImage::Format_ARGB32, Qt::red));
    QCOMPARE(file.error, QString());
    QCOMPARE(file.channels, QStringList({"A", "B", "G", "R"}));
    QCOMPARE(file.compression, 0);
    QCOMPARE(file.size, QSize(4, 3));
}

void TstExrWriter::coloursAreInLinearLight_data()
{
    QTest::addColumn<int>("value");
    for (const int value : {0, 1, 2, 17, 64, 127, 128, 200, 254, 255})
        QTest::addRow("%d", value) << value;
}

void TstExrWriter::coloursAreInLinearLight()
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

void TstExrWriter::alphaIsKeptAsItIs()
{
    QImage image(256, 1, QImage::Format_ARGB32);
    for (int alpha = 0; alpha < 256; ++alpha)
        image.setPixel(alpha, 0, qRgba(10, 20, 30, alpha));
    const ExrFile file = written(image);
    QCOMPARE(file.error, QString());
    for (int alpha = 0; alpha < 256; ++alpha)
        QVERIFY2(isNearestHalf(file.at("A", alpha, 0), alpha / 255.0), qPrintable(QString::number(alpha)));
}

void TstExrWriter::premultipliedColoursAreDivided()
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

void TstExrWriter::everyPixelIsInItsPlace()
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

void TstExrWriter::wideAndHighImagesKeepTheirShape_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("one pixel") << QSize(1, 1);
    QTest::newRow("a line") << QSize(3000, 1);
    QTest::newRow("a column") << QSize(1, 3000);
    QTest::newRow("odd") << QSize(33, 65);
}

void TstExrWriter::wideAndHighImagesKeepTheirShape()
{
    QFETCH(QSize, size);
    const ExrFile file = written(filled(QImage::Format_ARGB32, Qt::white, size));
    QCOMPARE(file.error, QString());
    QCOMPARE(file.size, size);
    QCOMPARE(file.at("B", size.width() - 1, size.height() - 1), 1.0F);
}

void TstExrWriter::nullImageIsRefused()
{
    const QTemporaryDir folder;
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(QImage(), folder.filePath("picture.exr")));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void TstExrWriter::otherFormatsAreRefused_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("without alpha") << QImage::Format_RGB32;
    QTest::newRow("bytes") << QImage::Format_RGBA8888;
    QTest::newRow("bytes, premultiplied") << QImage::Format_RGBA8888_Premultiplied;
    QTest::newRow("coverage") << QImage::Format_Alpha8;
    QTest::newRow("grey") << QImage::Format_Grayscale8;
    QTest::newRow("wide") << QImage::Format_RGBA64;
}

void TstExrWriter::otherFormatsAreRefused()
{
    QFETCH(QImage::Format, format);
    const QTemporaryDir folder;
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(filled(format, Qt::red), folder.filePath("picture.exr")));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void TstExrWriter::refusedImageLeavesTheOldFile()
{
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("picture.exr");
    QVERIFY(writeExr(filled(QImage::Format_ARGB32, Qt::red), fileName));
    const QByteArray before = contentOf(fileName);
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(QImage(), fileName));
    QCOMPARE(contentOf(fileName), before);
}

void TstExrWriter::fileThatStoodThereIsReplaced()
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

void TstExrWriter::missingFolderIsAnError()
{
    const QTemporaryDir folder;
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(filled(QImage::Format_ARGB32, Qt::red), folder.filePath("gone/picture.exr")));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void TstExrWriter::fullDiskLeavesTheOldFile_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<int>("missing");
    QTest::newRow("the last byte has no place") << 100 << 1;
    QTest::newRow("the last thousand bytes have no place") << 100 << 1000;
    QTest::newRow("hardly a byte has a place") << 100 << 80000;
    QTest::newRow("the last byte of a file that fits into a buffer") << 10 << 1;
}

void TstExrWriter::fullDiskLeavesTheOldFile()
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

void TstExrWriter::readOnlyFolderIsAnError()
{
    const ReadOnlyFolder folder;
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(filled(QImage::Format_ARGB32, Qt::red), folder.filePath("picture.exr")));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void TstExrWriter::namesMayHaveSpacesAndAnyLetters()
{
    const QTemporaryDir folder;
    const QString name = QString::fromUtf8("a walk, größer 🐎.exr");
    QVERIFY(writeExr(filled(QImage::Format_ARGB32, Qt::red), folder.filePath(name)));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList(name));
}

void TstExrWriter::reasonIsToldForADevice()
{
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    QString reason;
    QTest::ignoreMessage(QtWarningMsg, saveError);
    QVERIFY(!writeExr(QImage(), buffer, &reason));
    QVERIFY(!reason.isEmpty());
    QVERIFY(buffer.data().isEmpty());
    QVERIFY(writeExr(filled(QImage::Format_ARGB32, Qt::red), buffer, &reason));
    QCOMPARE(parseExr(buffer.data()).error, QString());
}

void TstExrWriter::otherProgramsReadTheFile()
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

QTEST_GUILESS_MAIN(TstExrWriter)
#include "tst_exrwriter.moc"
