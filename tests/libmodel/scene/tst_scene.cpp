#include "scenebuilder.h"

#include "libmodel/base/settings.h"

#include <QTest>
#include <QUndoStack>

#include <limits>

using namespace Model;
using namespace TestSupport;

class tst_Scene : public QObject
{
    Q_OBJECT

private slots:
    void newSceneIsEmptyAndUntitled();
    void newSceneTakesSizeAndRateFromTheSettings();
    void undoStackKeepsFiftySteps();
    void displayNameIsThatOfTheFile();
    void aFileWithoutANameShowsTheScenesName();
    void nameAndFileAreToldOnce();
    void frameRateIsLimited_data();
    void frameRateIsLimited();
    void equalFrameRateIsSilent();
    void frameRateReachesTheAudioLayer();
    void frameRateTellsTheAudioColumn();
    void frameSizeIsToldBeforeAndAfter();
    void frameSizeReachesEveryVisualLayer();
    void badFrameSizesAreRefused_data();
    void badFrameSizesAreRefused();
    void thumbnailSizeIsToldOnce();
    void minimumFrameNumberIsOne();
};

void tst_Scene::newSceneIsEmptyAndUntitled()
{
    const Scene scene;
    QCOMPARE(scene.name(), "Untitled");
    QCOMPARE(scene.displayName(), "Untitled");
    QCOMPARE(scene.filename(), QString());
    QCOMPARE(scene.layerCount(), 0);
    QCOMPARE(scene.activeFrame(), -1);
    QCOMPARE(scene.activeLayerIdx(), -1);
    QCOMPARE(scene.scrubFrame(), -1);
    QCOMPARE(scene.audioLayerIdx(), -1);
    QCOMPARE(scene.maximumFrameNumber(), 1);
    QCOMPARE(scene.rangeFirst(), 1);
    QCOMPARE(scene.rangeLast(), 1);
    QCOMPARE(scene.highestUsedLayerNumber(), 0);
    QVERIFY(!scene.hasActiveStroke());
    QCOMPARE(brokenInvariant(scene), QString());
}

void tst_Scene::newSceneTakesSizeAndRateFromTheSettings()
{
    const Scene scene;
    QCOMPARE(scene.frameSize(), QSize(1920, 1080));
    QCOMPARE(scene.frameRate(), 12.0);
    QCOMPARE(scene.thumbnailSize(), MR::ThumbnailSize::ThumbnailMedium);
}

void tst_Scene::undoStackKeepsFiftySteps()
{
    const Scene scene;
    QCOMPARE(scene.undoStack()->undoLimit(), 50);
    QVERIFY(scene.undoStack()->isClean());
}

void tst_Scene::displayNameIsThatOfTheFile()
{
    Scene scene;
    scene.setFilename("/home/anna/walk cycle.mr");
    QCOMPARE(scene.displayName(), "walk cycle.mr");
    QCOMPARE(scene.name(), "Untitled");
}

void tst_Scene::aFileWithoutANameShowsTheScenesName()
{
    Scene scene;
    scene.setFilename("/home/anna/");
    QCOMPARE(scene.displayName(), "Untitled");
}

void tst_Scene::nameAndFileAreToldOnce()
{
    Scene scene;
    QSignalSpy changed(&scene, &Scene::nameChanged);
    scene.setFilename("/tmp/a.mr");
    scene.setFilename("/tmp/a.mr");
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toString(), "a.mr");
}

void tst_Scene::frameRateIsLimited_data()
{
    QTest::addColumn<double>("given");
    QTest::addColumn<double>("kept");
    QTest::newRow("zero") << 0.0 << 0.1;
    QTest::newRow("negative") << -24.0 << 0.1;
    QTest::newRow("hundred") << 100.0 << 60.0;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 60.0;
    QTest::newRow("inside") << 23.976 << 23.976;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 12.0;
}

void tst_Scene::frameRateIsLimited()
{
    QFETCH(double, given);
    QFETCH(double, kept);
    Scene scene;
    scene.setFrameRate(given);
    QCOMPARE(scene.frameRate(), kept);
}

void tst_Scene::equalFrameRateIsSilent()
{
    Scene scene;
    addUsualLayers(scene, 1);
    const SignalCount signalCount(&scene);
    scene.setFrameRate(12.0);
    scene.setFrameRate(12.0 + 1e-12);
    QCOMPARE(signalCount.heard(), QString());
}

void tst_Scene::frameRateReachesTheAudioLayer()
{
    Scene scene;
    addUsualLayers(scene, 1);
    const auto *audio = qobject_cast<AudioLayer *>(scene.layer(1));
    QCOMPARE(audio->frameRate(), 12.0);
    scene.setFrameRate(25);
    QCOMPARE(audio->frameRate(), 25.0);
}

void tst_Scene::frameRateTellsTheAudioColumn()
{
    Scene scene;
    addUsualLayers(scene, 1);
    QSignalSpy rate(&scene, &Scene::frameRateChanged);
    QSignalSpy layers(&scene, &Scene::layersChanged);
    scene.setFrameRate(25);
    QCOMPARE(rate.size(), 1);
    QCOMPARE(rate.first().first().toDouble(), 25.0);
    QCOMPARE(layers.size(), 1);
    QCOMPARE(layers.first(), QVariantList({1, 1}));
}

void tst_Scene::frameSizeIsToldBeforeAndAfter()
{
    Scene scene;
    addUsualLayers(scene, 1);
    QStringList order;
    connect(&scene, &Scene::frameSizeAboutToChange, this,
            [&](QSize size) { order += QString("about %1 of %2").arg(size.width()).arg(scene.frameSize().width()); });
    connect(&scene, &Scene::frameSizeChanged, this,
            [&](QSize size) { order += QString("changed %1 of %2").arg(size.width()).arg(scene.frameSize().width()); });
    connect(&scene, &Scene::rectChanged, this, [&](QRect rect) { order += QString("rect %1").arg(rect.width()); });
    scene.setFrameSize(QSize(100, 50), MR::FitMode::FitModeKeepAspect);
    QCOMPARE(order, QStringList({"about 100 of 1920", "changed 100 of 100", "rect 100"}));
}

void tst_Scene::frameSizeReachesEveryVisualLayer()
{
    Scene scene;
    addUsualLayers(scene, 2);
    addStrokeLayer(scene, 1);
    scene.setFrameSize(QSize(100, 50), MR::FitMode::FitModeKeepAspect);
    QCOMPARE(scene.visualLayer(0)->frameSize(), QSize(100, 50));
    QCOMPARE(scene.visualLayer(3)->frameSize(), QSize(100, 50));
    QCOMPARE(drawingAt(scene, 0, 2).size(), QSize(100, 50));
}

void tst_Scene::badFrameSizesAreRefused_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("invalid") << QSize();
    QTest::newRow("no width") << QSize(0, 10);
    QTest::newRow("no height") << QSize(10, 0);
    QTest::newRow("negative") << QSize(-10, -10);
    QTest::newRow("equal") << QSize(1920, 1080);
}

void tst_Scene::badFrameSizesAreRefused()
{
    QFETCH(QSize, size);
    Scene scene;
    addUsualLayers(scene, 1);
    const SignalCount signalCount(&scene);
    scene.setFrameSize(size, MR::FitMode::FitModeStretch);
    QCOMPARE(scene.frameSize(), QSize(1920, 1080));
    QCOMPARE(signalCount.heard(), QString());
}

void tst_Scene::thumbnailSizeIsToldOnce()
{
    Scene scene;
    QSignalSpy changed(&scene, &Scene::thumbnailSizeChanged);
    scene.setThumbnailSize(MR::ThumbnailSize::ThumbnailLarge);
    scene.setThumbnailSize(MR::ThumbnailSize::ThumbnailLarge);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(scene.thumbnailSize(), MR::ThumbnailSize::ThumbnailLarge);
}

void tst_Scene::minimumFrameNumberIsOne()
{
    const Scene scene;
    QCOMPARE(scene.minimumFrameNumber(), 1);
}

QTEST_MAIN(tst_Scene)
#include "tst_scene.moc"
