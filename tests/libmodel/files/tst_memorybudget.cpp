#include "libmodel/files/memorybudget.h"

#include <QFile>
#include <QTest>

#include <algorithm>
#include <limits>

using namespace Model;

class tst_MemoryBudget : public QObject
{
    Q_OBJECT

private slots:
    void takesWhatThereIs();
    void nothingIsTakenBeyondIt();
    void hugeDemandsDoNotOverflow();
    void defaultLeavesAQuarterOfWhatIsFree();
};

void tst_MemoryBudget::takesWhatThereIs()
{
    MemoryBudget budget(100);
    QVERIFY(budget.take(60));
    QCOMPARE(budget.bytesLeft(), 40);
    QVERIFY(budget.take(0));
    QVERIFY(budget.take(40));
    QCOMPARE(budget.bytesLeft(), 0);
    QVERIFY(budget.take(0));
}

void tst_MemoryBudget::nothingIsTakenBeyondIt()
{
    MemoryBudget budget(100);
    QVERIFY(!budget.take(101));
    QCOMPARE(budget.bytesLeft(), 100);
}

void tst_MemoryBudget::hugeDemandsDoNotOverflow()
{
    MemoryBudget budget(100);
    QVERIFY(!budget.take(std::numeric_limits<qint64>::max()));
    QCOMPARE(budget.bytesLeft(), 100);
}

/// What the system says is to be had without swapping, in bytes; -1 where it says nothing.
static qint64 availableMemory()
{
    QFile file("/proc/meminfo");
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("MemAvailable:"))
            return line.simplified().split(' ').value(1).toLongLong() * 1024;
    }
    return -1;
}

void tst_MemoryBudget::defaultLeavesAQuarterOfWhatIsFree()
{
    const qint64 before = availableMemory();
    if (before < 0)
        QSKIP("This system does not tell how much memory is free");
    const MemoryBudget budget;
    // What others take or give back at the same time must not matter.
    const qint64 most = std::max(before, availableMemory());
    QVERIFY2(budget.bytesLeft() <= most / 4 * 3 + most / 20, qPrintable(QString::number(budget.bytesLeft())));
    QVERIFY(budget.bytesLeft() > 0);
}

QTEST_MAIN(tst_MemoryBudget)
#include "tst_memorybudget.moc"
