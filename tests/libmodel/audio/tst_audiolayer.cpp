#include "libmodel/audio/audiolayer.h"

#include <QTest>

#include <limits>

using namespace Model;

class TestAudioLayer : public QObject
{
    Q_OBJECT

private slots:
    void newLayerIsAudibleAndSilent();
    void bytesAreKeptAsTheyCame();
    void offsetIsRoundedToHundredths_data();
    void offsetIsRoundedToHundredths();
    void offsetThatIsNoNumberIsIgnored();
    void rateSetsTheFrameDuration();
    void badRatesAreIgnored();
    void negativeOffsetStaysWhereItIsInTime();
    void positiveOffsetStaysWhereItIsOnTheSheet();
    void firstRateRescalesNothing();
    void framesCannotBeInserted();
    void audibleIsSwitched();
};

void TestAudioLayer::newLayerIsAudibleAndSilent()
{
    const AudioLayer layer;
    QCOMPARE(layer.layerType(), 4);
    QCOMPARE(layer.numFrames(), 0);
    QVERIFY(!layer.isValidFrame(1));
    QVERIFY(layer.isAudible());
    QVERIFY(layer.originalAudioData().isEmpty());
    QCOMPARE(layer.offsetFrames(), 0.0);
}

void TestAudioLayer::bytesAreKeptAsTheyCame()
{
    AudioLayer layer;
    const QByteArray bytes("RIFF\0\xff\x01", 7);
    layer.setOriginalAudioData(bytes);
    QCOMPARE(layer.originalAudioData(), bytes);
}

void TestAudioLayer::offsetIsRoundedToHundredths_data()
{
    QTest::addColumn<double>("given");
    QTest::addColumn<double>("kept");
    QTest::newRow("whole") << 10.0 << 10.0;
    QTest::newRow("down") << 3.1234 << 3.12;
    QTest::newRow("up") << 3.1267 << 3.13;
    // 0.125 and 0.375 are exact in binary: halves go away from zero.
    QTest::newRow("half") << 0.125 << 0.13;
    QTest::newRow("negative half") << -0.125 << -0.13;
    QTest::newRow("half of an odd") << 0.375 << 0.38;
    QTest::newRow("negative") << -7.891 << -7.89;
    QTest::newRow("to zero") << 0.004 << 0.0;
}

void TestAudioLayer::offsetIsRoundedToHundredths()
{
    QFETCH(double, given);
    QFETCH(double, kept);
    AudioLayer layer;
    layer.setOffset(given);
    QVERIFY(qAbs(layer.offsetFrames() - kept) < 1e-12);
}

void TestAudioLayer::offsetThatIsNoNumberIsIgnored()
{
    AudioLayer layer;
    layer.setOffset(2.5);
    layer.setOffset(std::numeric_limits<double>::quiet_NaN());
    layer.setOffset(std::numeric_limits<double>::infinity());
    QCOMPARE(layer.offsetFrames(), 2.5);
}

void TestAudioLayer::rateSetsTheFrameDuration()
{
    AudioLayer layer;
    QCOMPARE(layer.frameDurationUs(), 0.0);
    layer.setFrameRate(25);
    QCOMPARE(layer.frameRate(), 25.0);
    QCOMPARE(layer.frameDurationUs(), 40000.0);
}

void TestAudioLayer::badRatesAreIgnored()
{
    AudioLayer layer;
    layer.setFrameRate(25);
    layer.setFrameRate(0);
    layer.setFrameRate(-12);
    layer.setFrameRate(std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(layer.frameRate(), 25.0);
}

void TestAudioLayer::negativeOffsetStaysWhereItIsInTime()
{
    AudioLayer layer;
    layer.setFrameRate(12);
    layer.setOffset(-6);
    layer.setFrameRate(24);
    // Half a second is 6 frames at 12 and 12 frames at 24.
    QCOMPARE(layer.offsetFrames(), -12.0);
}

void TestAudioLayer::positiveOffsetStaysWhereItIsOnTheSheet()
{
    AudioLayer layer;
    layer.setFrameRate(12);
    layer.setOffset(6);
    layer.setFrameRate(24);
    QCOMPARE(layer.offsetFrames(), 6.0);
}

void TestAudioLayer::firstRateRescalesNothing()
{
    AudioLayer layer;
    layer.setOffset(-6);
    layer.setFrameRate(24);
    QCOMPARE(layer.offsetFrames(), -6.0);
}

void TestAudioLayer::framesCannotBeInserted()
{
    AudioLayer layer;
    layer.insertBlankAfter(0);
    layer.insertCloneAfter(0);
    QCOMPARE(layer.numFrames(), 0);
}

void TestAudioLayer::audibleIsSwitched()
{
    AudioLayer layer;
    layer.setAudible(false);
    QVERIFY(!layer.isAudible());
}

QTEST_MAIN(TestAudioLayer)
#include "tst_audiolayer.moc"
