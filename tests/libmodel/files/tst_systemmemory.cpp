#include "libmodel/files/systemmemory.h"

#include "libmodel/files/memorybudget.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

using namespace Model;

namespace {

constexpr qint64 mebibyte = qint64(1) << 20;
constexpr qint64 unlimited = std::numeric_limits<qint64>::max();

} // namespace

class tst_SystemMemory : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void availableMemoryCounts();
    void addressSpaceLimitsIt();
    void leastLimitOfTheGroupsCounts_data();
    void leastLimitOfTheGroupsCounts();
    void withoutWordOfItPhysicalMemoryCounts_data();
    void withoutWordOfItPhysicalMemoryCounts();
    void budgetTakesThreeQuarters();

private:
    void write(const QString &name, const QByteArray &content) const;
    [[nodiscard]] SystemMemory memory() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_SystemMemory::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    write("meminfo", "MemTotal:       16384000 kB\nMemFree:            1024 kB\nMemAvailable:    8192000 kB\n");
}

void tst_SystemMemory::write(const QString &name, const QByteArray &content) const
{
    const QString path = m_folder->filePath(name);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

SystemMemory tst_SystemMemory::memory() const
{
    return {m_folder->filePath("meminfo"), m_folder->filePath("cgroup"), m_folder->filePath("groups"), unlimited};
}

void tst_SystemMemory::availableMemoryCounts()
{
    QCOMPARE(memory().usable(), 8192000LL * 1024);
}

void tst_SystemMemory::addressSpaceLimitsIt()
{
    SystemMemory limited = memory();
    limited.addressSpace = 100 * mebibyte;
    QCOMPARE(limited.usable(), 100 * mebibyte);
    limited.addressSpace = unlimited;
    QCOMPARE(limited.usable(), 8192000LL * 1024);
}

void tst_SystemMemory::leastLimitOfTheGroupsCounts_data()
{
    QTest::addColumn<QByteArray>("root");
    QTest::addColumn<QByteArray>("outer");
    QTest::addColumn<QByteArray>("inner");
    QTest::addColumn<qint64>("expected");
    const qint64 all = 8192000LL * 1024;
    QTest::newRow("none") << QByteArray() << QByteArray() << QByteArray() << all;
    QTest::newRow("no limits") << QByteArray("max\n") << QByteArray("max\n") << QByteArray("max\n") << all;
    QTest::newRow("its own") << QByteArray() << QByteArray("max\n") << QByteArray("104857600\n") << 100 * mebibyte;
    QTest::newRow("the one around it") << QByteArray() << QByteArray("52428800\n") << QByteArray("104857600\n")
                                       << 50 * mebibyte;
    QTest::newRow("that of the container")
        << QByteArray("10485760\n") << QByteArray("max\n") << QByteArray("max\n") << 10 * mebibyte;
    QTest::newRow("above what is there") << QByteArray() << QByteArray() << QByteArray("9223372036854775807\n") << all;
    QTest::newRow("no number") << QByteArray("much\n") << QByteArray("-5\n") << QByteArray("\n") << all;
}

void tst_SystemMemory::leastLimitOfTheGroupsCounts()
{
    QFETCH(const QByteArray, root);
    QFETCH(const QByteArray, outer);
    QFETCH(const QByteArray, inner);
    QFETCH(const qint64, expected);
    write("cgroup", "1:name=other:/elsewhere\n0::/outer/inner\n");
    write("groups/elsewhere/memory.max", "1\n");
    const auto writeLimit = [this](const QString &name, const QByteArray &content) {
        if (!content.isEmpty())
            write(name, content);
    };
    writeLimit("groups/memory.max", root);
    writeLimit("groups/outer/memory.max", outer);
    writeLimit("groups/outer/inner/memory.max", inner);
    QCOMPARE(memory().usable(), expected);
}

void tst_SystemMemory::withoutWordOfItPhysicalMemoryCounts_data()
{
    QTest::addColumn<QByteArray>("meminfo");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no such line") << QByteArray("MemTotal: 1 kB\n");
    QTest::newRow("no number") << QByteArray("MemAvailable: some kB\n");
    QTest::newRow("another unit") << QByteArray("MemAvailable: 1 MB\n");
    QTest::newRow("too much") << QByteArray("MemAvailable: 9223372036854775807 kB\n");
    QTest::newRow("negative") << QByteArray("MemAvailable: -1 kB\n");
}

void tst_SystemMemory::withoutWordOfItPhysicalMemoryCounts()
{
    QFETCH(const QByteArray, meminfo);
    write("meminfo", meminfo);
    // No computer that runs this has less than a quarter of a gigabyte, or more than a few hundred thousand of them.
    QVERIFY(memory().usable() > 256 * mebibyte);
    QVERIFY(memory().usable() < qint64(1) << 48);
}

void tst_SystemMemory::budgetTakesThreeQuarters()
{
    // What is available changes from moment to moment.
    const double budget = double(MemoryBudget().bytesLeft());
    const double usable = double(SystemMemory().usable());
    QVERIFY2(budget > 0.6 * usable && budget < 0.9 * usable, QByteArray::number(budget / usable).constData());
}

QTEST_APPLESS_MAIN(tst_SystemMemory)
#include "tst_systemmemory.moc"
