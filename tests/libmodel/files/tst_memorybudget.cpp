#include "libmodel/files/memorybudget.h"

#include <QTest>

#include <limits>

using namespace Model;

class tst_MemoryBudget : public QObject
{
    Q_OBJECT

private slots:
    void takesWhatThereIs();
    void nothingIsTakenBeyondIt();
    void hugeDemandsDoNotOverflow();
    void defaultFollowsTheComputer();
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

void tst_MemoryBudget::defaultFollowsTheComputer()
{
    // No computer that runs this has less than a quarter of a gigabyte, or more than a few hundred thousand of them.
    const MemoryBudget budget;
    QVERIFY(budget.bytesLeft() > qint64(1) << 28);
    QVERIFY(budget.bytesLeft() < qint64(1) << 48);
}

QTEST_MAIN(tst_MemoryBudget)
#include "tst_memorybudget.moc"
