#include "libmodel/images/imagefilequeue.h"

#include "libmodel/images/exrwriter.h"
#include "support/brokendisks.h"
#include "support/nothreads.h"
#include "support/watcheddisk.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <memory>

using namespace Model;
using namespace TestSupport;

namespace {

using ImageFormat = ExportFramesSettings::ImageFormat;

/// For what must come, in milliseconds.
constexpr int patienceMs = 60000;

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// An image that takes an encoder long for its size.
QImage noise(QSize size, quint32 seed)
{
    QRandomGenerator random(seed);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            row[x] = qPremultiply(random.generate());
    }
    return image;
}

QImage filled(const QColor &color, QSize size = {8, 8})
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

/// What QImage makes of the image by itself.
QByteArray savedByQt(const QImage &image)
{
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("alone.png");
    return image.save(fileName, "png", -1) ? contentOf(fileName) : QByteArray();
}

/// Images that are counted for as long as anybody holds their pixels.
class CountedImages
{
public:
    QImage next(QSize size)
    {
        ++m_alive;
        auto *pixels = new Pixels{noise(size, 1), &m_alive};
        return {pixels->image.constBits(),
                size.width(),
                size.height(),
                pixels->image.bytesPerLine(),
                QImage::Format_ARGB32_Premultiplied,
                [](void *held) {
                    auto *mine = static_cast<Pixels *>(held);
                    --*mine->alive;
                    delete mine;
                },
                pixels};
    }
    [[nodiscard]] int alive() const { return m_alive; }

private:
    struct Pixels
    {
        QImage image;
        std::atomic_int *alive;
    };

    std::atomic_int m_alive = 0;
};

} // namespace

class tst_ImageFileQueue : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void filesAreThoseOfOneThread_data();
    void filesAreThoseOfOneThread();
    void exrFilesAreThoseOfTheWriter();
    void aFileIsThereOnlyWhenThoseBeforeItAre();
    void theLastOfOneNameStays();
    void noHalfFileIsSeenUnderTheName();
    void onlySoManyImagesWaitAsKeepTheThreadsBusy_data();
    void onlySoManyImagesWaitAsKeepTheThreadsBusy();
    void hugeImagesGoOneByOne_data();
    void hugeImagesGoOneByOne();
    void imageIsNotTakenWhenWaitingEnds();
    void finishEndsWhenWaitingDoes();
    void waitingIsToldOften();
    void withoutThreadsTheCallerWrites();
    void cancelForgetsWhatHasNotBegun();
    void queueGoesOnAfterACancel();
    void finishWithoutImagesReturns();
    void finishWaitsForEveryFile();
    void destructionWaitsForEveryFile();
    void failuresAreToldInOrderAndTheRestIsWritten();
    void refusedFileIsToldInItsTurn();
    void nameWithoutRoomForATemporaryOneIsTold();
    void fileHasItsNameOnlyOnTheDisk();
    void diskThatFailsLateLeavesTheOldFile_data();
    void diskThatFailsLateLeavesTheOldFile();
    void fullDiskLeavesTheOldFiles_data();
    void fullDiskLeavesTheOldFiles();
    void readOnlyFolderIsAFailure();

private:
    [[nodiscard]] QString path(int number) const { return m_folder->filePath(QString("%1.png").arg(number)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_ImageFileQueue::init()
{
    QTest::failOnWarning(QRegularExpression("."));
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_ImageFileQueue::filesAreThoseOfOneThread_data()
{
    QTest::addColumn<int>("threads");
    QTest::newRow("one per core") << 0;
    QTest::newRow("one") << 1;
    QTest::newRow("two") << 2;
    QTest::newRow("seven") << 7;
}

void tst_ImageFileQueue::filesAreThoseOfOneThread()
{
    QFETCH(int, threads);
    constexpr int count = 20;
    QList<QByteArray> expected;
    ImageFileQueue queue(ImageFormat::PNG, threads);
    for (int i = 0; i < count; ++i) {
        const QImage image = noise({30 + 5 * i, 80 - 3 * i}, quint32(i));
        expected += savedByQt(image);
        queue.enqueue(image, path(i));
    }
    queue.finish();
    QCOMPARE(queue.failures(), QStringList());
    QCOMPARE(queue.written(), count);
    for (int i = 0; i < count; ++i) {
        QVERIFY(!expected.at(i).isEmpty());
        QCOMPARE(contentOf(path(i)), expected.at(i));
    }
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden).size(), count);
}

void tst_ImageFileQueue::exrFilesAreThoseOfTheWriter()
{
    ImageFileQueue queue(ImageFormat::OpenEXR, 3);
    for (int i = 0; i < 8; ++i)
        queue.enqueue(noise({20 + i, 30}, quint32(i)), path(i));
    queue.finish();
    QCOMPARE(queue.written(), 8);
    for (int i = 0; i < 8; ++i) {
        const QString alone = m_folder->filePath("alone.exr");
        QVERIFY(writeExr(noise({20 + i, 30}, quint32(i)), alone));
        QCOMPARE(contentOf(path(i)), contentOf(alone));
    }
}

void tst_ImageFileQueue::aFileIsThereOnlyWhenThoseBeforeItAre()
{
    constexpr int count = 24;
    const QImage slow = noise({500, 500}, 1);
    const QImage quick = filled(Qt::red);
    // From the last to the first: a file that came meanwhile stands before those that were looked at.
    const auto existing = [this] {
        QString found;
        for (int i = count - 1; i >= 0; --i)
            found.prepend(QFile::exists(path(i)) ? '1' : '0');
        return found;
    };
    ImageFileQueue queue(ImageFormat::PNG, 4);
    for (int i = 0; i < count; ++i) {
        queue.enqueue(i % 4 == 0 ? slow : quick, path(i));
        QVERIFY2(!existing().contains("01"), qPrintable(existing()));
    }
    const QDeadlineTimer deadline(patienceMs);
    while (queue.written() < count && !deadline.hasExpired())
        QVERIFY2(!existing().contains("01"), qPrintable(existing()));
    QCOMPARE(existing().count('1'), count);
}

void tst_ImageFileQueue::theLastOfOneNameStays()
{
    for (int round = 0; round < 10; ++round) {
        ImageFileQueue queue(ImageFormat::PNG, 4);
        queue.enqueue(noise({400, 400}, 1), path(0));
        queue.enqueue(noise({100, 100}, 2), path(0));
        queue.enqueue(filled(Qt::blue), path(0));
        queue.finish();
        QCOMPARE(queue.written(), 3);
        QCOMPARE(contentOf(path(0)), savedByQt(filled(Qt::blue)));
    }
}

void tst_ImageFileQueue::noHalfFileIsSeenUnderTheName()
{
    const QImage image = noise({600, 600}, 1);
    const QByteArray before = savedByQt(filled(Qt::red));
    const QByteArray after = savedByQt(image);
    QVERIFY(filled(Qt::red).save(path(0), "png", -1));
    ImageFileQueue queue(ImageFormat::PNG, 2);
    queue.enqueue(image, path(0));
    QByteArray seen = before;
    const QDeadlineTimer deadline(patienceMs);
    while (seen == before && !deadline.hasExpired())
        seen = contentOf(path(0));
    QCOMPARE(seen, after);
}

void tst_ImageFileQueue::onlySoManyImagesWaitAsKeepTheThreadsBusy_data()
{
    QTest::addColumn<int>("threads");
    QTest::newRow("one") << 1;
    QTest::newRow("two") << 2;
    QTest::newRow("four") << 4;
}

void tst_ImageFileQueue::onlySoManyImagesWaitAsKeepTheThreadsBusy()
{
    QFETCH(int, threads);
    CountedImages images;
    ImageFileQueue queue(ImageFormat::PNG, threads);
    int most = 0;
    for (int i = 0; i < 40; ++i) {
        queue.enqueue(images.next({200, 200}), path(i));
        most = std::max(most, images.alive());
    }
    // As many in work as there are threads, and as many waiting.
    QVERIFY2(most <= 2 * threads, qPrintable(QString::number(most)));
    QVERIFY(most > threads);
    queue.finish();
    QCOMPARE(queue.written(), 40);
    QTRY_COMPARE(images.alive(), 0);
}

void tst_ImageFileQueue::hugeImagesGoOneByOne_data()
{
    // Making a file of one of them takes more than half of the memory that images may take together.
    QTest::addColumn<ImageFormat>("format");
    QTest::addColumn<int>("side");
    QTest::newRow("png") << ImageFormat::PNG << 6900;
    QTest::newRow("exr") << ImageFormat::OpenEXR << 3800;
}

void tst_ImageFileQueue::hugeImagesGoOneByOne()
{
    QFETCH(ImageFormat, format);
    QFETCH(int, side);
    QImage huge(side, side, QImage::Format_ARGB32);
    QVERIFY(!huge.isNull());
    huge.fill(Qt::red);
    std::atomic_int alive = 0;
    const auto counted = [&] {
        ++alive;
        return QImage(
            std::as_const(huge).constBits(), huge.width(), huge.height(), huge.bytesPerLine(), huge.format(),
            [](void *count) { --*static_cast<std::atomic_int *>(count); }, &alive);
    };
    ImageFileQueue queue(format, 4);
    queue.enqueue(counted(), path(1));
    // As long as the first one is here, there is no room for another.
    const bool taken = queue.enqueue(counted(), path(2), [] { return false; });
    QVERIFY(!taken || !QFile::exists(path(2)));
    QVERIFY2(alive <= 1, qPrintable(QString::number(alive)));
    queue.cancel();
    queue.finish();
    QTRY_COMPARE(alive, 0);
}

void tst_ImageFileQueue::imageIsNotTakenWhenWaitingEnds()
{
    ImageFileQueue queue(ImageFormat::PNG, 1);
    const StalledDisk disk;
    // One at the disk, and one behind it.
    QVERIFY(queue.enqueue(filled(Qt::red), path(0)));
    QVERIFY(queue.enqueue(filled(Qt::red), path(1)));
    int calls = 0;
    QVERIFY(!queue.enqueue(filled(Qt::red), path(2), [&] { return ++calls < 3; }));
    QCOMPARE(calls, 3);
    StalledDisk::release();
    queue.finish();
    QCOMPARE(queue.written(), 2);
    QVERIFY(!QFile::exists(path(2)));
}

void tst_ImageFileQueue::finishEndsWhenWaitingDoes()
{
    ImageFileQueue queue(ImageFormat::PNG, 2);
    const StalledDisk disk;
    queue.enqueue(filled(Qt::red), path(0));
    int calls = 0;
    QVERIFY(!queue.finish([&] { return ++calls < 3; }));
    QCOMPARE(calls, 3);
    QCOMPARE(queue.written(), 0);
    // The disk goes on while somebody waits.
    QVERIFY(queue.finish([] {
        StalledDisk::release();
        return true;
    }));
    QCOMPARE(queue.written(), 1);
}

void tst_ImageFileQueue::waitingIsToldOften()
{
    ImageFileQueue queue(ImageFormat::PNG, 1);
    const StalledDisk disk;
    queue.enqueue(filled(Qt::red), path(0));
    QElapsedTimer clock;
    clock.start();
    qint64 shortest = patienceMs;
    qint64 before = 0;
    for (int i = 0; i < 20; ++i) {
        QVERIFY(!queue.finish([] { return false; }));
        shortest = std::min(shortest, clock.elapsed() - before);
        before = clock.elapsed();
    }
    // A busy machine may well be late at times, but not each time.
    QVERIFY2(shortest <= 50, qPrintable(QString::number(shortest)));
}

void tst_ImageFileQueue::withoutThreadsTheCallerWrites()
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Image files are written by 0 threads: ."));
    const NoThreads none;
    QVERIFY(none.isSet());
    ImageFileQueue queue(ImageFormat::PNG, 3);
    for (int i = 0; i < 5; ++i) {
        QVERIFY(queue.enqueue(noise({30, 30}, quint32(i)), path(i)));
        QCOMPARE(contentOf(path(i)), savedByQt(noise({30, 30}, quint32(i))));
    }
    queue.refuse(path(7), "so it is");
    queue.cancel();
    queue.finish();
    QCOMPARE(queue.written(), 5);
    QCOMPARE(queue.failures(), QStringList(path(7) + ": so it is"));
}

void tst_ImageFileQueue::cancelForgetsWhatHasNotBegun()
{
    ImageFileQueue queue(ImageFormat::PNG, 1);
    const StalledDisk disk;
    queue.enqueue(filled(Qt::red), path(0));
    // There is room for this one only when the only thread has begun with the one before.
    queue.enqueue(filled(Qt::red), path(1));
    queue.cancel();
    StalledDisk::release();
    queue.finish();
    QCOMPARE(queue.written(), 1);
    QCOMPARE(contentOf(path(0)), savedByQt(filled(Qt::red)));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList("0.png"));
    QCOMPARE(queue.failures(), QStringList());
}

void tst_ImageFileQueue::queueGoesOnAfterACancel()
{
    ImageFileQueue queue(ImageFormat::PNG, 2);
    for (int i = 0; i < 5; ++i)
        queue.enqueue(noise({300, 300}, quint32(i)), path(i));
    queue.cancel();
    queue.enqueue(filled(Qt::red), path(9));
    queue.finish();
    QCOMPARE(contentOf(path(9)), savedByQt(filled(Qt::red)));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden).size(), queue.written());
}

void tst_ImageFileQueue::finishWithoutImagesReturns()
{
    ImageFileQueue queue(ImageFormat::PNG);
    queue.finish();
    queue.cancel();
    queue.finish();
    QCOMPARE(queue.written(), 0);
    QCOMPARE(queue.failures(), QStringList());
}

void tst_ImageFileQueue::finishWaitsForEveryFile()
{
    ImageFileQueue queue(ImageFormat::PNG, 3);
    for (int i = 0; i < 6; ++i)
        queue.enqueue(noise({300, 300}, quint32(i)), path(i));
    queue.finish();
    for (int i = 0; i < 6; ++i)
        QVERIFY(QFile::exists(path(i)));
}

void tst_ImageFileQueue::destructionWaitsForEveryFile()
{
    {
        ImageFileQueue queue(ImageFormat::PNG, 3);
        for (int i = 0; i < 6; ++i)
            queue.enqueue(noise({300, 300}, quint32(i)), path(i));
    }
    for (int i = 0; i < 6; ++i)
        QCOMPARE(contentOf(path(i)), savedByQt(noise({300, 300}, quint32(i))));
}

void tst_ImageFileQueue::failuresAreToldInOrderAndTheRestIsWritten()
{
    const QString missing = m_folder->filePath("gone/1.png");
    const QString tooLong = m_folder->filePath(QString(300, 'n') + ".png");
    const QString folder = m_folder->filePath("folder.png");
    QVERIFY(QDir().mkdir(folder));
    ImageFileQueue queue(ImageFormat::PNG, 2);
    queue.enqueue(filled(Qt::red), path(0));
    queue.enqueue(filled(Qt::red), missing);
    queue.enqueue(filled(Qt::red), path(1));
    queue.enqueue(filled(Qt::red), tooLong);
    queue.enqueue(filled(Qt::red), folder);
    queue.enqueue(QImage(), path(2));
    queue.enqueue(filled(Qt::red), path(3));
    queue.finish();
    QCOMPARE(queue.written(), 3);
    const QStringList failures = queue.failures();
    QCOMPARE(failures.size(), 4);
    int i = 0;
    for (const QString &name : {missing, tooLong, folder, path(2)}) {
        QVERIFY2(failures.at(i).startsWith(name + ": "), qPrintable(failures.at(i)));
        QVERIFY2(failures.at(i).size() > name.size() + 2, qPrintable(failures.at(i)));
        ++i;
    }
    for (const int whole : {0, 1, 3})
        QCOMPARE(contentOf(path(whole)), savedByQt(filled(Qt::red)));
    QVERIFY(!QFile::exists(path(2)));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden).size(), 3);
}

void tst_ImageFileQueue::refusedFileIsToldInItsTurn()
{
    ImageFileQueue queue(ImageFormat::PNG, 2);
    queue.enqueue(QImage(), path(0));
    queue.refuse(path(1), "so it is");
    queue.enqueue(noise({300, 300}, 1), path(2));
    queue.enqueue(QImage(), path(3));
    queue.finish();
    QCOMPARE(queue.written(), 1);
    QCOMPARE(queue.failures().size(), 3);
    QVERIFY(queue.failures().at(0).startsWith(path(0) + ": "));
    QCOMPARE(queue.failures().at(1), path(1) + ": so it is");
    QVERIFY(queue.failures().at(2).startsWith(path(3) + ": "));
}

void tst_ImageFileQueue::nameWithoutRoomForATemporaryOneIsTold()
{
    // A name may have 255 bytes, and a point and six letters come on top until the file is complete.
    const QString longest = m_folder->filePath(QString(244, 'n') + ".png");
    const QString tooLong = m_folder->filePath(QString(246, 'n') + ".png");
    ImageFileQueue queue(ImageFormat::PNG, 1);
    queue.enqueue(filled(Qt::red), longest);
    queue.enqueue(filled(Qt::red), tooLong);
    queue.finish();
    QCOMPARE(queue.failures(), QStringList(tooLong + ": File name too long"));
    QCOMPARE(contentOf(longest), savedByQt(filled(Qt::red)));
}

void tst_ImageFileQueue::fileHasItsNameOnlyOnTheDisk()
{
    const int before = WatchedDisk::instance().count();
    ImageFileQueue queue(ImageFormat::PNG, 2);
    const StalledDisk disk;
    queue.enqueue(filled(Qt::red), path(0));
    queue.enqueue(filled(Qt::blue), path(1));
    // Both at once: one does not wait for the other to be on the disk.
    QTRY_COMPARE(WatchedDisk::instance().count(), before + 2);
    QVERIFY(!QFile::exists(path(0)));
    QVERIFY(!QFile::exists(path(1)));
    StalledDisk::release();
    queue.finish();
    QCOMPARE(queue.written(), 2);
}

void tst_ImageFileQueue::diskThatFailsLateLeavesTheOldFile_data()
{
    QTest::addColumn<ImageFormat>("format");
    QTest::newRow("png") << ImageFormat::PNG;
    QTest::newRow("exr") << ImageFormat::OpenEXR;
}

void tst_ImageFileQueue::diskThatFailsLateLeavesTheOldFile()
{
    QFETCH(ImageFormat, format);
    QVERIFY(filled(Qt::blue).save(path(0), "png", -1));
    ImageFileQueue queue(format, 2);
    {
        const BrokenDisk disk;
        queue.enqueue(filled(Qt::red), path(0));
        queue.enqueue(filled(Qt::red), path(1));
        queue.finish();
    }
    QCOMPARE(queue.written(), 0);
    QCOMPARE(queue.failures(), QStringList({path(0) + ": Input/output error", path(1) + ": Input/output error"}));
    QCOMPARE(contentOf(path(0)), savedByQt(filled(Qt::blue)));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList("0.png"));
}

void tst_ImageFileQueue::fullDiskLeavesTheOldFiles_data()
{
    QTest::addColumn<ImageFormat>("format");
    QTest::addColumn<int>("side");
    QTest::addColumn<int>("missing");
    QTest::newRow("png, the last byte") << ImageFormat::PNG << 200 << 1;
    QTest::newRow("png, most") << ImageFormat::PNG << 200 << 150000;
    QTest::newRow("png that fits into a buffer") << ImageFormat::PNG << 30 << 1;
    QTest::newRow("exr, the last byte") << ImageFormat::OpenEXR << 200 << 1;
    QTest::newRow("exr, most") << ImageFormat::OpenEXR << 200 << 150000;
    QTest::newRow("exr that fits into a buffer") << ImageFormat::OpenEXR << 30 << 1;
}

void tst_ImageFileQueue::fullDiskLeavesTheOldFiles()
{
    QFETCH(ImageFormat, format);
    QFETCH(int, side);
    QFETCH(int, missing);
    const QImage image = noise({side, side}, 1);
    qint64 needed = 0;
    QByteArray old;
    {
        ImageFileQueue queue(format);
        queue.enqueue(image, path(7));
        queue.enqueue(filled(Qt::red), path(0));
        queue.finish();
        QCOMPARE(queue.written(), 2);
        needed = QFileInfo(path(7)).size();
        old = contentOf(path(0));
        QVERIFY(QFile::remove(path(7)));
    }
    QVERIFY(needed > missing);

    ImageFileQueue queue(format);
    {
        const FullDisk full(rlim_t(needed - missing));
        queue.enqueue(image, path(0));
        queue.enqueue(image, path(1));
        queue.finish();
    }
    QCOMPARE(queue.written(), 0);
    QCOMPARE(queue.failures().size(), 2);
    QCOMPARE(contentOf(path(0)), old);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList("0.png"));
}

void tst_ImageFileQueue::readOnlyFolderIsAFailure()
{
    const ReadOnlyFolder folder;
    ImageFileQueue queue(ImageFormat::PNG, 2);
    queue.enqueue(filled(Qt::red), folder.filePath("1.png"));
    queue.finish();
    QCOMPARE(queue.written(), 0);
    QCOMPARE(queue.failures().size(), 1);
    QVERIFY(QDir(folder.path()).isEmpty());
}

QTEST_GUILESS_MAIN(tst_ImageFileQueue)
#include "tst_imagefilequeue.moc"
