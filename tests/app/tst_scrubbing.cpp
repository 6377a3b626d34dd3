#include "app/scrubbing.h"

#include "keystage.h"

#include "libmodel/actions/actionmanager.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/scene/scene.h"
#include "support/glfixture.h"
#include "support/isolatedstore.h"

#include <QSignalSpy>
#include <QTest>

using Model::Tool;

class tst_Scrubbing : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void toolIsBorrowedForItsTime();
    void offsetsAreFramesFromTheActiveOne_data();
    void offsetsAreFramesFromTheActiveOne();
    void landingTellsTheFrameOnShow();
    void landingWhereItBeganTellsNothing();
    void withoutLandingTheActiveFrameIsThereAgain();
    void landingNobodyAnswersLeavesNothingOnShow();
    void dragRunsThroughTheFrames();
    void dragBeyondTheRangeIsHeldToItAtItsEnd();
    void dragThatIsCutShortIsHeldToTheRangeToo();
    void nextScrubCountsFromItsOwnBeginning();
    void soundIsOnForItsTime();
    void offsetsAfterItsEndShowNothing();
    void toolTakenUpEndsIt_data();
    void toolTakenUpEndsIt();
    void viewToolLeavesItRunning_data();
    void viewToolLeavesItRunning();
    void nothingWithoutAScene();
    void sceneThatGoesEndsIt();
    void sceneThatIsReplacedEndsIt();

private:
    std::unique_ptr<IsolatedStore> m_store;
    std::unique_ptr<KeyStage> m_stage;
    /// What the stage wires to the window is a second scrubbing's here, so that nobody answers by chance.
    std::unique_ptr<Scrubbing> m_scrubbing;
};

void tst_Scrubbing::initTestCase()
{
    QVERIFY(TestSupport::startRenderer());
    m_store = std::make_unique<IsolatedStore>();
    Model::ActionManager::instance()->createActions();
    m_stage = std::make_unique<KeyStage>();
}

void tst_Scrubbing::init()
{
    m_stage->reset();
    m_stage->scene()->setFrameRange(1, 10, 5, 0);
    m_scrubbing = std::make_unique<Scrubbing>(m_stage->paper, m_stage->toolSwitch.get(), nullptr);
    m_scrubbing->setCurrentScene(m_stage->mrScene.get());
}

void tst_Scrubbing::cleanup()
{
    m_scrubbing->end(false);
    m_scrubbing.reset();
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    QCOMPARE(m_stage->scene()->scrubFrame(), -1);
}

void tst_Scrubbing::cleanupTestCase()
{
    m_stage.reset();
}

void tst_Scrubbing::toolIsBorrowedForItsTime()
{
    m_scrubbing->begin();
    QVERIFY(m_scrubbing->isRunning());
    QCOMPARE(KeyStage::tool(), Tool::Type::Scrubbing);
    m_scrubbing->end(true);
    QVERIFY(!m_scrubbing->isRunning());
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_Scrubbing::offsetsAreFramesFromTheActiveOne_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("frame");
    QTest::newRow("on") << 2 << 7;
    QTest::newRow("back") << -4 << 1;
    QTest::newRow("nowhere") << 0 << 5;
    QTest::newRow("beyond the end of the scene") << 9 << 10;
    QTest::newRow("beyond its beginning") << -9 << 1;
}

void tst_Scrubbing::offsetsAreFramesFromTheActiveOne()
{
    QFETCH(int, offset);
    QFETCH(int, frame);
    m_scrubbing->begin();
    emit m_stage->paper->scrubOffsetChanged(offset);
    QCOMPARE(m_stage->scene()->scrubFrame(), frame);
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
}

void tst_Scrubbing::landingTellsTheFrameOnShow()
{
    QSignalSpy landings(m_scrubbing.get(), &Scrubbing::landed);
    m_scrubbing->begin();
    emit m_stage->paper->scrubOffsetChanged(3);
    m_scrubbing->end(true);
    QCOMPARE(landings.count(), 1);
    QCOMPARE(landings.first().first().toInt(), 8);
}

void tst_Scrubbing::landingWhereItBeganTellsNothing()
{
    QSignalSpy landings(m_scrubbing.get(), &Scrubbing::landed);
    m_scrubbing->begin();
    m_scrubbing->end(true);
    m_scrubbing->begin();
    emit m_stage->paper->scrubOffsetChanged(3);
    emit m_stage->paper->scrubOffsetChanged(0);
    m_scrubbing->end(true);
    QCOMPARE(landings.count(), 0);
}

void tst_Scrubbing::withoutLandingTheActiveFrameIsThereAgain()
{
    QSignalSpy landings(m_scrubbing.get(), &Scrubbing::landed);
    m_scrubbing->begin();
    emit m_stage->paper->scrubOffsetChanged(3);
    m_scrubbing->end(false);
    QCOMPARE(landings.count(), 0);
    QCOMPARE(m_stage->scene()->scrubFrame(), -1);
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
}

void tst_Scrubbing::landingNobodyAnswersLeavesNothingOnShow()
{
    m_scrubbing->begin();
    emit m_stage->paper->scrubOffsetChanged(3);
    m_scrubbing->end(true);
    QCOMPARE(m_stage->scene()->scrubFrame(), -1);
    QCOMPARE(m_stage->scene()->activeFrame(), 5);
}

void tst_Scrubbing::dragRunsThroughTheFrames()
{
    // One frame for 16 pixels to the right or down, begun ones included.
    m_scrubbing->begin();
    m_stage->mousePress({0, 0});
    m_stage->mouseMove({33, 0});
    QCOMPARE(m_stage->scene()->scrubFrame(), 7);
    m_stage->mouseMove({0, -17});
    QCOMPARE(m_stage->scene()->scrubFrame(), 3);
    m_stage->mouseRelease({0, -17});
    // The next drag goes on from there.
    m_stage->mousePress({50, 50});
    m_stage->mouseMove({50, 66});
    QCOMPARE(m_stage->scene()->scrubFrame(), 4);
    m_stage->mouseRelease({50, 66});
    QSignalSpy landings(m_scrubbing.get(), &Scrubbing::landed);
    m_scrubbing->end(true);
    QCOMPARE(landings.first().first().toInt(), 4);
}

void tst_Scrubbing::dragBeyondTheRangeIsHeldToItAtItsEnd()
{
    m_stage->scene()->setFrameRange(3, 7, 5, 0);
    m_scrubbing->begin();
    m_stage->mousePress({0, 0});
    m_stage->mouseMove({65, 0});
    QCOMPARE(m_stage->scene()->scrubFrame(), 9);
    m_stage->mouseRelease({65, 0});
    QCOMPARE(m_stage->scene()->scrubFrame(), 7);
    m_stage->mousePress({0, 0});
    m_stage->mouseMove({-150, 0});
    m_stage->mouseRelease({-150, 0});
    QCOMPARE(m_stage->scene()->scrubFrame(), 3);
}

void tst_Scrubbing::dragThatIsCutShortIsHeldToTheRangeToo()
{
    m_stage->scene()->setFrameRange(3, 7, 5, 0);
    QSignalSpy landings(m_scrubbing.get(), &Scrubbing::landed);
    m_scrubbing->begin();
    m_stage->mousePress({0, 0});
    m_stage->mouseMove({65, 0});
    m_scrubbing->end(true);
    QCOMPARE(landings.count(), 1);
    QCOMPARE(landings.first().first().toInt(), 7);
    m_stage->mouseRelease({65, 0});
}

void tst_Scrubbing::nextScrubCountsFromItsOwnBeginning()
{
    m_scrubbing->begin();
    m_stage->mousePress({0, 0});
    m_stage->mouseMove({33, 0});
    m_stage->mouseRelease({33, 0});
    m_scrubbing->end(false);
    m_scrubbing->begin();
    m_stage->mousePress({0, 0});
    m_stage->mouseMove({17, 0});
    QCOMPARE(m_stage->scene()->scrubFrame(), 6);
    m_stage->mouseRelease({17, 0});
}

void tst_Scrubbing::soundIsOnForItsTime()
{
    const Model::Scene *scene = m_stage->scene();
    const Model::AudioLayer *audio = nullptr;
    for (int layerIdx = 0; layerIdx < scene->layerCount(); ++layerIdx) {
        if (const auto *found = dynamic_cast<const Model::AudioLayer *>(scene->layer(layerIdx)))
            audio = found;
    }
    QVERIFY(audio);
    QSignalSpy starts(audio, &Model::AudioLayer::startAudio);
    QSignalSpy stops(audio, &Model::AudioLayer::stopAudio);
    m_scrubbing->begin();
    QCOMPARE(starts.count(), 1);
    QCOMPARE(stops.count(), 0);
    m_scrubbing->end(true);
    QCOMPARE(starts.count(), 1);
    QCOMPARE(stops.count(), 1);
}

void tst_Scrubbing::offsetsAfterItsEndShowNothing()
{
    m_scrubbing->begin();
    m_scrubbing->end(false);
    emit m_stage->paper->scrubOffsetChanged(3);
    QCOMPARE(m_stage->scene()->scrubFrame(), -1);
}

void tst_Scrubbing::toolTakenUpEndsIt_data()
{
    QTest::addColumn<MR::Action>("which");
    QTest::addColumn<Tool::Type>("type");
    QTest::newRow("draw") << MR::Action::Draw << Tool::Type::Pen;
    QTest::newRow("draw or erase") << MR::Action::DrawEraseToggle << Tool::Type::Pen;
    QTest::newRow("marker") << MR::Action::Marker << Tool::Type::Pen;
    QTest::newRow("eraser") << MR::Action::VinylEraser << Tool::Type::Eraser;
    QTest::newRow("lasso") << MR::Action::Lasso << Tool::Type::Lasso;
    QTest::newRow("off pegs") << MR::Action::OffPegs << Tool::Type::OffPegs;
}

void tst_Scrubbing::toolTakenUpEndsIt()
{
    QFETCH(MR::Action, which);
    QFETCH(Tool::Type, type);
    // With the eraser in the hand before, the toggle goes to the pen.
    m_stage->reset(Tool::Type::Eraser);
    QSignalSpy landings(m_scrubbing.get(), &Scrubbing::landed);
    m_scrubbing->begin();
    emit m_stage->paper->scrubOffsetChanged(3);
    QCOMPARE(m_stage->scene()->scrubFrame(), 8);
    KeyStage::action(which)->trigger();
    QCOMPARE(KeyStage::tool(), type);
    QVERIFY(!m_scrubbing->isRunning());
    QCOMPARE(m_stage->scene()->scrubFrame(), -1);
    m_scrubbing->end(true);
    QCOMPARE(landings.count(), 0);
    QCOMPARE(KeyStage::tool(), type);
    m_stage->reset();
}

void tst_Scrubbing::viewToolLeavesItRunning_data()
{
    QTest::addColumn<Tool::Type>("type");
    QTest::newRow("hand") << Tool::Type::Hand;
    QTest::newRow("zoom") << Tool::Type::Zoom;
    QTest::newRow("rotate") << Tool::Type::Rotate;
    QTest::newRow("all in one") << Tool::Type::ZPR;
}

void tst_Scrubbing::viewToolLeavesItRunning()
{
    QFETCH(Tool::Type, type);
    QSignalSpy landings(m_scrubbing.get(), &Scrubbing::landed);
    m_scrubbing->begin();
    emit m_stage->paper->scrubOffsetChanged(3);
    m_stage->toolSwitch->holdTool(type);
    m_stage->toolSwitch->releaseTool(type);
    QVERIFY(m_scrubbing->isRunning());
    QCOMPARE(KeyStage::tool(), Tool::Type::Scrubbing);
    m_scrubbing->end(true);
    QCOMPARE(landings.count(), 1);
    QCOMPARE(landings.first().first().toInt(), 8);
}

void tst_Scrubbing::nothingWithoutAScene()
{
    m_scrubbing->setCurrentScene(nullptr);
    m_scrubbing->begin();
    QVERIFY(!m_scrubbing->isRunning());
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
    m_scrubbing->end(true);
}

void tst_Scrubbing::sceneThatGoesEndsIt()
{
    auto scene = std::make_unique<Model::MRScene>();
    m_scrubbing->setCurrentScene(scene.get());
    m_scrubbing->begin();
    QVERIFY(m_scrubbing->isRunning());
    scene.reset();
    emit m_stage->paper->scrubOffsetChanged(1);
    m_scrubbing->end(true);
    QVERIFY(!m_scrubbing->isRunning());
    QCOMPARE(KeyStage::tool(), Tool::Type::Pen);
}

void tst_Scrubbing::sceneThatIsReplacedEndsIt()
{
    QSignalSpy landings(m_scrubbing.get(), &Scrubbing::landed);
    m_scrubbing->begin();
    emit m_stage->paper->scrubOffsetChanged(3);
    Model::MRScene other;
    m_scrubbing->setCurrentScene(&other);
    QVERIFY(!m_scrubbing->isRunning());
    QCOMPARE(m_stage->scene()->scrubFrame(), -1);
    QCOMPARE(landings.count(), 0);
    m_scrubbing->setCurrentScene(nullptr);
}

QTEST_MAIN(tst_Scrubbing)
#include "tst_scrubbing.moc"
