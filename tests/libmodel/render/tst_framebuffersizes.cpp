#include "libmodel/render/framebuffersizes.h"

#include <QList>
#include <QTest>

using Model::largestBuildableSize;
using Model::preferredFramebufferSize;
using Model::tileCount;

/// The framebuffers' size, decided apart from any driver.
class tst_FramebufferSizes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anySizeIsTakenAsItIsWhereSupported();
    void withoutAnySizeSidesAreRoundedUpToPowersOfTwo_data();
    void withoutAnySizeSidesAreRoundedUpToPowersOfTwo();
    void emptyWantedSizeGivesANullSize();
    void firstBuildableSizeIsTaken();
    void sizeIsHalvedUntilItCanBeBuilt();
    void halvingEndsWhenASideReachesZero();
    void tilesCoverTheImageRoundedUp_data();
    void tilesCoverTheImageRoundedUp();
};

void tst_FramebufferSizes::anySizeIsTakenAsItIsWhereSupported()
{
    QCOMPARE(preferredFramebufferSize(QSize(1921, 1079), true), QSize(1921, 1079));
}

void tst_FramebufferSizes::withoutAnySizeSidesAreRoundedUpToPowersOfTwo_data()
{
    QTest::addColumn<QSize>("wanted");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("HD") << QSize(1920, 1080) << QSize(2048, 2048);
    QTest::newRow("powers stay") << QSize(512, 64) << QSize(512, 64);
    QTest::newRow("one above a power") << QSize(513, 65) << QSize(1024, 128);
    QTest::newRow("one pixel") << QSize(1, 1) << QSize(1, 1);
    QTest::newRow("three pixels") << QSize(3, 2) << QSize(4, 2);
}

void tst_FramebufferSizes::withoutAnySizeSidesAreRoundedUpToPowersOfTwo()
{
    QFETCH(QSize, wanted);
    QTEST(preferredFramebufferSize(wanted, false), "expected");
}

void tst_FramebufferSizes::emptyWantedSizeGivesANullSize()
{
    QCOMPARE(preferredFramebufferSize(QSize(0, 10), true), QSize(0, 0));
    QCOMPARE(preferredFramebufferSize(QSize(-5, 10), false), QSize(0, 0));
    QCOMPARE(preferredFramebufferSize(QSize(), true), QSize(0, 0));
}

void tst_FramebufferSizes::firstBuildableSizeIsTaken()
{
    int tries = 0;
    const QSize size = largestBuildableSize(QSize(640, 480), [&](QSize) { return ++tries == 1; });
    QCOMPARE(size, QSize(640, 480));
    QCOMPARE(tries, 1);
}

void tst_FramebufferSizes::sizeIsHalvedUntilItCanBeBuilt()
{
    QList<QSize> tried;
    const QSize size = largestBuildableSize(QSize(8001, 4000), [&](QSize candidate) {
        tried.append(candidate);
        return candidate.width() <= 2000;
    });
    QCOMPARE(size, QSize(2000, 1000));
    QCOMPARE(tried, (QList<QSize>{{8001, 4000}, {4000, 2000}, {2000, 1000}}));
}

void tst_FramebufferSizes::halvingEndsWhenASideReachesZero()
{
    int tries = 0;
    const auto never = [&](QSize candidate) {
        ++tries;
        return candidate.isEmpty();
    };
    QCOMPARE(largestBuildableSize(QSize(1024, 4), never), QSize(0, 0));
    QCOMPARE(tries, 3); // 1024 x 4, 512 x 2, 256 x 1
    QCOMPARE(largestBuildableSize(QSize(0, 0), never), QSize(0, 0));
    QCOMPARE(tries, 3);
}

void tst_FramebufferSizes::tilesCoverTheImageRoundedUp_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("tile");
    QTest::addColumn<int>("expected");
    QTest::newRow("one") << 100 << 100 << 1;
    QTest::newRow("smaller than a tile") << 1 << 100 << 1;
    QTest::newRow("one more pixel") << 101 << 100 << 2;
    QTest::newRow("exact") << 300 << 100 << 3;
    QTest::newRow("nothing to cover") << 0 << 100 << 0;
    QTest::newRow("no tile") << 100 << 0 << 0;
}

void tst_FramebufferSizes::tilesCoverTheImageRoundedUp()
{
    QFETCH(int, length);
    QFETCH(int, tile);
    QTEST(tileCount(length, tile), "expected");
}

QTEST_GUILESS_MAIN(tst_FramebufferSizes)
#include "tst_framebuffersizes.moc"
