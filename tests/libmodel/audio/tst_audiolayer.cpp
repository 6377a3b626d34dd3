#include "libmodel/audio/audiolayer.h"

#include <QTest>

#include <climits>
#include <limits>

using namespace Model;

namespace {

/// Writes down what a layer asks to be heard.
class Wishes
{
public:
    explicit Wishes(const AudioLayer &layer)
    {
        QObject::connect(&layer, &AudioLayer::startAudio, &m_context, [this] { m_heard += "start"; });
        QObject::connect(&layer, &AudioLayer::stopAudio, &m_context, [this] { m_heard += "stop"; });
        QObject::connect(&layer, &AudioLayer::framesToPlay, &m_context,
                         [this](int first, int last) { m_heard += QString("%1-%2").arg(first).arg(last); });
    }
    QString heard() const { return m_heard.join(' '); }

private:
    QObject m_context;
    QStringList m_heard;
};

} // namespace

class tst_AudioLayer : public QObject
{
    Q_OBJECT

private slots:
    void newLayerIsAudibleAndSilent();
    void bytesAreKeptAsTheyCame();
    void offsetIsRoundedToHundredths_data();
    void offsetIsRoundedToHundredths();
    void offsetThatIsNoNumberIsIgnored();
    void restoredOffsetIsExactlyTheFormer();
    void rateSetsTheFrameDuration();
    void badRatesAreIgnored();
    void negativeOffsetStaysWhereItIsInTime();
    void positiveOffsetStaysWhereItIsOnTheSheet();
    void firstRateRescalesNothing();
    void framesCannotBeInserted();
    void audibleIsSwitched();
    void framesCannotBeRemoved();
    void thereIsNoCopy();
    void layerWithBytesHasASound();
    void scrubbedFrameIsToBeHeardAlone();
    void playingStartsTheOutputFirst();
    void nothingIsHeardOfNoFrames_data();
    void nothingIsHeardOfNoFrames();
    void nothingIsHeardWithoutASound();
    void nothingIsHeardWhileMuted();
};

void tst_AudioLayer::newLayerIsAudibleAndSilent()
{
    const AudioLayer layer;
    QCOMPARE(layer.layerType(), 4);
    QCOMPARE(layer.numFrames(), 0);
    QVERIFY(!layer.isValidFrame(1));
    QVERIFY(layer.isAudible());
    QVERIFY(layer.originalAudioData().isEmpty());
    QCOMPARE(layer.offsetFrames(), 0.0);
}

void tst_AudioLayer::bytesAreKeptAsTheyCame()
{
    AudioLayer layer;
    const QByteArray bytes("RIFF\0\xff\x01", 7);
    layer.setOriginalAudioData(bytes);
    QCOMPARE(layer.originalAudioData(), bytes);
}

void tst_AudioLayer::offsetIsRoundedToHundredths_data()
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

void tst_AudioLayer::offsetIsRoundedToHundredths()
{
    QFETCH(double, given);
    QFETCH(double, kept);
    AudioLayer layer;
    layer.setOffset(given);
    QVERIFY(qAbs(layer.offsetFrames() - kept) < 1e-12);
}

void tst_AudioLayer::offsetThatIsNoNumberIsIgnored()
{
    AudioLayer layer;
    layer.setOffset(2.5);
    layer.setOffset(std::numeric_limits<double>::quiet_NaN());
    layer.setOffset(std::numeric_limits<double>::infinity());
    QCOMPARE(layer.offsetFrames(), 2.5);
}

void tst_AudioLayer::restoredOffsetIsExactlyTheFormer()
{
    AudioLayer layer;
    layer.setFrameRate(12);
    layer.setOffset(-7.13);
    layer.setFrameRate(0.1);
    layer.setFrameRate(7);
    const double former = layer.offsetFrames();
    layer.setFrameRate(60);
    layer.setOffset(3);
    layer.restoreOffset(former);
    QVERIFY(layer.offsetFrames() == former);
    layer.restoreOffset(std::numeric_limits<double>::quiet_NaN());
    layer.restoreOffset(-std::numeric_limits<double>::infinity());
    QCOMPARE(layer.offsetFrames(), former);
}

void tst_AudioLayer::rateSetsTheFrameDuration()
{
    AudioLayer layer;
    QCOMPARE(layer.frameDurationUs(), 0.0);
    layer.setFrameRate(25);
    QCOMPARE(layer.frameRate(), 25.0);
    QCOMPARE(layer.frameDurationUs(), 40000.0);
}

void tst_AudioLayer::badRatesAreIgnored()
{
    AudioLayer layer;
    layer.setFrameRate(25);
    layer.setFrameRate(0);
    layer.setFrameRate(-12);
    layer.setFrameRate(std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(layer.frameRate(), 25.0);
}

void tst_AudioLayer::negativeOffsetStaysWhereItIsInTime()
{
    AudioLayer layer;
    layer.setFrameRate(12);
    layer.setOffset(-6);
    layer.setFrameRate(24);
    // Half a second is 6 frames at 12 and 12 frames at 24.
    QCOMPARE(layer.offsetFrames(), -12.0);
}

void tst_AudioLayer::positiveOffsetStaysWhereItIsOnTheSheet()
{
    AudioLayer layer;
    layer.setFrameRate(12);
    layer.setOffset(6);
    layer.setFrameRate(24);
    QCOMPARE(layer.offsetFrames(), 6.0);
}

void tst_AudioLayer::firstRateRescalesNothing()
{
    AudioLayer layer;
    layer.setOffset(-6);
    layer.setFrameRate(24);
    QCOMPARE(layer.offsetFrames(), -6.0);
}

void tst_AudioLayer::framesCannotBeInserted()
{
    AudioLayer layer;
    layer.insertBlankAfter(0);
    layer.insertCloneAfter(0);
    QCOMPARE(layer.numFrames(), 0);
}

void tst_AudioLayer::audibleIsSwitched()
{
    AudioLayer layer;
    layer.setAudible(false);
    QVERIFY(!layer.isAudible());
}

void tst_AudioLayer::framesCannotBeRemoved()
{
    AudioLayer layer;
    layer.setOriginalAudioData("sound");
    for (const int frameId : {INT_MIN, 0, 1, INT_MAX})
        QVERIFY(layer.removeFrame(frameId).isEmpty());
    QCOMPARE(layer.originalAudioData(), QByteArray("sound"));
}

void tst_AudioLayer::thereIsNoCopy()
{
    QVERIFY(!AudioLayer().clone());
}

void tst_AudioLayer::layerWithBytesHasASound()
{
    AudioLayer layer;
    QVERIFY(!layer.hasAudio());
    layer.setOriginalAudioData("sound");
    QVERIFY(layer.hasAudio());
    layer.setOriginalAudioData({});
    QVERIFY(!layer.hasAudio());
}

void tst_AudioLayer::scrubbedFrameIsToBeHeardAlone()
{
    AudioLayer layer;
    layer.setOriginalAudioData("sound");
    const Wishes wishes(layer);
    layer.scrubFrame(7);
    layer.scrubFrame(8);
    QCOMPARE(wishes.heard(), "7-7 8-8");
}

void tst_AudioLayer::playingStartsTheOutputFirst()
{
    AudioLayer layer;
    layer.setOriginalAudioData("sound");
    const Wishes wishes(layer);
    layer.playFrames(3, 24);
    QCOMPARE(wishes.heard(), "start 3-24");
}

void tst_AudioLayer::nothingIsHeardOfNoFrames_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("before frame 1") << 0 << 24;
    QTest::newRow("far before") << INT_MIN << 24;
    QTest::newRow("behind the last") << 25 << 24;
    QTest::newRow("far behind") << INT_MAX << 24;
}

void tst_AudioLayer::nothingIsHeardOfNoFrames()
{
    QFETCH(int, first);
    QFETCH(int, last);
    AudioLayer layer;
    layer.setOriginalAudioData("sound");
    const Wishes wishes(layer);
    layer.playFrames(first, last);
    if (first < 1)
        layer.scrubFrame(first);
    QCOMPARE(wishes.heard(), "");
}

void tst_AudioLayer::nothingIsHeardWithoutASound()
{
    AudioLayer layer;
    const Wishes wishes(layer);
    layer.scrubFrame(1);
    layer.playFrames(1, 24);
    QCOMPARE(wishes.heard(), "");
}

void tst_AudioLayer::nothingIsHeardWhileMuted()
{
    AudioLayer layer;
    layer.setOriginalAudioData("sound");
    layer.setAudible(false);
    const Wishes wishes(layer);
    layer.scrubFrame(1);
    layer.playFrames(1, 24);
    QCOMPARE(wishes.heard(), "");
    layer.setAudible(true);
    layer.scrubFrame(1);
    QCOMPARE(wishes.heard(), "1-1");
}

QTEST_MAIN(tst_AudioLayer)
#include "tst_audiolayer.moc"
