#include "libmodel/base/progress.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/strokes/imagedrawing.h"
#include "scenebuilder.h"
#include "support/brokendisks.h"
#include "support/exrparser.h"
#include "support/watchedprogress.h"

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace Model;
using namespace TestSupport;
using Clones = ExportFramesSettings::Clones;
using ImageFormat = ExportFramesSettings::ImageFormat;

namespace {

/// Where the ink of each frame is.
constexpr QRect inked(10, 10, 20, 10);
constexpr QPoint onInk(15, 15);
constexpr QPoint offInk(50, 35);

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A scene of small frames to be exported into a folder of its own, without layers at first.
struct Export
{
    Export()
    {
        makeSmall(scene);
        settings.fileName = "walk";
        settings.exportDir = folder.path();
    }

    /// A layer of \a frames originals at the bottom, each with a block of coverage \a value. \return its index.
    int add(const QString &name, int frames, const QColor &color, QRect rect = inked, int value = 255)
    {
        const int layerIdx = addStrokeLayer(scene, frames, color);
        scene.setLayerName(layerIdx, name);
        for (int frameId = 1; frameId <= frames; ++frameId)
            scene.addStroke(layerIdx, frameId, block(rect, value));
        return layerIdx;
    }
    FrameExportResult run()
    {
        WatchedProgress progress;
        return scene.exportFrames(settings, progress);
    }
    [[nodiscard]] QStringList files() const
    {
        return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }
    /// The pixel of a file, with straight alpha.
    [[nodiscard]] QColor pixel(const QString &name, QPoint at) const
    {
        return QImage(path(name)).convertToFormat(QImage::Format_ARGB32).pixelColor(at);
    }

    Scene scene;
    QTemporaryDir folder;
    ExportFramesSettings settings;
};

/// The file that a frame without anything but a block of opaque colour makes.
QByteArray expectedPng(const QColor &color, QRect rect = inked)
{
    QImage image(sceneFrame, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter(&image).fillRect(rect, color);
    const QTemporaryDir folder;
    const QString fileName = folder.filePath("expected.png");
    return image.save(fileName, "png", -1) ? contentOf(fileName) : QByteArray();
}

QString toldBy(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(QStandardPaths::findExecutable(program), arguments);
    return process.waitForFinished() && process.exitCode() == 0 ? QString::fromUtf8(process.readAllStandardOutput())
                                                                : QString();
}

} // namespace

class tst_SceneExport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void frameIsTheSizeOfTheScene();
    void groundIsTransparentOrWhite();
    void coverageBecomesAlpha();
    void fileIsWhatQtSaves();
    void allLinesBlack();
    void opacityOfALayerAloneIsNotApplied();
    void combinedLayersHaveTheirOpacity();
    void combinedLayersLieAsTheyAreShown();
    void hiddenLayersAreInAllLayers();
    void referencePictureIsExported();
    void combinedFrameShowsWhatIsBeyondTheLastDrawing_data();
    void combinedFrameShowsWhatIsBeyondTheLastDrawing();
    void holdIsAFullCopy();
    void exrHoldsLinearLight();
    void otherProgramsReadTheFiles();
    void filesThatStoodThereAreReplaced();
    void filesAreThoseOfTheList();
    void progressCountsFramesOutOfAllCells();
    void progressCountsCombinedFrames();
    void sceneWithoutLayersIsDoneAtOnce();
    void rangeWithoutOriginalsIsDoneWithoutFiles();
    void missingFolderIsAnError_data();
    void missingFolderIsAnError();
    void readOnlyFolderIsToldForEachFile();
    void fullDiskLeavesTheOldFiles();
    void oneFailureDoesNotStopTheRest();
    void nameTooLongIsAFailure();
    void layersOfOneNameAreToldOnce();
    void layersOfNamesThatDifferInCaseAreTold();
    void imageThatFindsNoMemoryIsAFailure();
};

void tst_SceneExport::init()
{
    QTest::failOnWarning(QRegularExpression("."));
}

void tst_SceneExport::frameIsTheSizeOfTheScene()
{
    Export e;
    e.add("A", 2, Qt::red);
    const FrameExportResult result = e.run();
    QCOMPARE(result.outcome, FileResult::Success);
    QCOMPARE(result.written, 2);
    QCOMPARE(result.failures, QStringList());
    QCOMPARE(e.files(), QStringList({"walk.A.0001.png", "walk.A.0002.png"}));
    QCOMPARE(QImage(e.path("walk.A.0001.png")).size(), sceneFrame);
    QCOMPARE(QImageReader(e.path("walk.A.0001.png")).format(), QByteArray("png"));
}

void tst_SceneExport::groundIsTransparentOrWhite()
{
    Export e;
    e.add("A", 1, Qt::red);
    e.run();
    QCOMPARE(e.pixel("walk.A.0001.png", offInk), QColor(0, 0, 0, 0));
    QCOMPARE(e.pixel("walk.A.0001.png", onInk), QColor(255, 0, 0));
    e.settings.includeAlpha = false;
    e.run();
    QCOMPARE(e.pixel("walk.A.0001.png", offInk), QColor(255, 255, 255));
    QCOMPARE(e.pixel("walk.A.0001.png", onInk), QColor(255, 0, 0));
}

void tst_SceneExport::coverageBecomesAlpha()
{
    Export e;
    e.add("A", 1, Qt::red, inked, 102);
    e.run();
    QCOMPARE(e.pixel("walk.A.0001.png", onInk), QColor(255, 0, 0, 102));
    e.settings.includeAlpha = false;
    e.run();
    // Two fifths of red over white.
    QCOMPARE(e.pixel("walk.A.0001.png", onInk), QColor(255, 153, 153));
}

void tst_SceneExport::fileIsWhatQtSaves()
{
    Export e;
    const int layerIdx = addStrokeLayer(e.scene, 24, QColor(10, 120, 240));
    e.scene.setLayerName(layerIdx, "A");
    const auto inkOf = [](int frameId) { return inked.translated(frameId, frameId / 2); };
    for (int frameId = 1; frameId <= 24; ++frameId)
        e.scene.addStroke(layerIdx, frameId, block(inkOf(frameId)));
    QCOMPARE(e.run().written, 24);
    for (int frameId = 1; frameId <= 24; ++frameId) {
        const QByteArray expected = expectedPng(QColor(10, 120, 240), inkOf(frameId));
        QVERIFY(!expected.isEmpty());
        QCOMPARE(contentOf(e.path(QString("walk.A.%1.png").arg(frameId, 4, 10, QChar('0')))), expected);
    }
}

void tst_SceneExport::allLinesBlack()
{
    Export e;
    e.add("A", 1, Qt::red, inked, 102);
    e.settings.makeAllLinesBlack = true;
    e.run();
    QCOMPARE(e.pixel("walk.A.0001.png", onInk), QColor(0, 0, 0, 102));
    e.settings.combineLayers = true;
    e.run();
    QCOMPARE(e.pixel("walk.A.0001.png", onInk), QColor(0, 0, 0, 102));
}

void tst_SceneExport::opacityOfALayerAloneIsNotApplied()
{
    Export e;
    e.scene.setLayerOpacity(e.add("A", 1, Qt::red), 0.2);
    e.run();
    QCOMPARE(e.pixel("walk.A.0001.png", onInk), QColor(255, 0, 0, 255));
}

void tst_SceneExport::combinedLayersHaveTheirOpacity()
{
    Export e;
    e.scene.setLayerOpacity(e.add("Upper", 1, Qt::red), 0.4);
    e.scene.setLayerOpacity(e.add("Lower", 1, Qt::blue, QRect(40, 30, 20, 10)), 0.8);
    e.settings.combineLayers = true;
    e.run();
    QCOMPARE(e.files(), QStringList("walk.0001.png"));
    const QColor upper = e.pixel("walk.0001.png", onInk);
    const QColor lower = e.pixel("walk.0001.png", offInk);
    // The painter has 256 opacities, so it may be one off.
    QVERIFY(std::abs(upper.alpha() - 102) <= 1);
    QVERIFY(std::abs(lower.alpha() - 204) <= 1);
    QCOMPARE(upper.rgb(), qRgb(255, 0, 0));
    QCOMPARE(lower.rgb(), qRgb(0, 0, 255));
}

void tst_SceneExport::combinedLayersLieAsTheyAreShown()
{
    Export e;
    e.add("Upper", 1, Qt::red);
    const int lower = e.add("Lower", 1, Qt::blue);
    e.settings.combineLayers = true;
    e.run();
    QCOMPARE(e.pixel("walk.0001.png", onInk), QColor(255, 0, 0));
    e.scene.moveLayer(lower, 0);
    e.run();
    QCOMPARE(e.pixel("walk.0001.png", onInk), QColor(0, 0, 255));
}

void tst_SceneExport::hiddenLayersAreInAllLayers()
{
    Export e;
    e.scene.setLayerVisible(e.add("Upper", 1, Qt::red), false);
    e.add("Lower", 1, Qt::blue);
    e.settings.combineLayers = true;
    e.run();
    QCOMPARE(e.pixel("walk.0001.png", onInk), QColor(255, 0, 0));
    e.settings.layers = ExportSettings::Layers::VisibleLayers;
    e.run();
    QCOMPARE(e.pixel("walk.Lower.0001.png", onInk), QColor(0, 0, 255));
}

void tst_SceneExport::referencePictureIsExported()
{
    Export e;
    QImage picture(sceneFrame, QImage::Format_ARGB32_Premultiplied);
    picture.fill(QColor(0, 200, 0));
    const auto layer = std::make_shared<ReferenceLayer>(sceneFrame);
    layer->replaceItem(1,
                       std::make_shared<LayerItem>(LayerItem::Type::Original, std::make_shared<ImageDrawing>(picture)));
    layer->setName("Photo");
    e.scene.insertLayer(layer, 0);
    e.settings.makeAllLinesBlack = true;
    e.run();
    // Neither the layer's own half opacity nor the colour of lines has a say.
    QCOMPARE(e.pixel("walk.Photo.0001.png", onInk), QColor(0, 200, 0));
}

void tst_SceneExport::combinedFrameShowsWhatIsBeyondTheLastDrawing_data()
{
    QTest::addColumn<Layer::LayerBeyondLast>("beyond");
    QTest::addColumn<QString>("expected"); // the colours of the four frames, a dot being none
    QTest::newRow("nothing") << Layer::ShowNothing << "lr..";
    QTest::newRow("the last drawing") << Layer::FreezeLast << "lrrr";
    QTest::newRow("all again") << Layer::CycleDrawings << "lrlr";
}

void tst_SceneExport::combinedFrameShowsWhatIsBeyondTheLastDrawing()
{
    QFETCH(Layer::LayerBeyondLast, beyond);
    const QRect left(0, 0, 20, 40);
    const QRect right(40, 0, 20, 40);
    Export e;
    const int layerIdx = addStrokeLayer(e.scene, 2, Qt::red);
    e.scene.addStroke(layerIdx, 1, block(left));
    e.scene.addStroke(layerIdx, 2, block(right));
    e.scene.setLayerBeyondLast(layerIdx, beyond);
    addStrokeLayer(e.scene, 4);
    e.settings.combineLayers = true;
    QCOMPARE(e.run().written, 4);
    QString shown;
    for (int frameId = 1; frameId <= 4; ++frameId) {
        const QString name = QString("walk.000%1.png").arg(frameId);
        const bool isLeft = e.pixel(name, left.center()).alpha() > 0;
        const bool isRight = e.pixel(name, right.center()).alpha() > 0;
        shown += isLeft && isRight ? '?' : isLeft ? 'l' : isRight ? 'r' : '.';
    }
    QTEST(shown, "expected");
}

void tst_SceneExport::holdIsAFullCopy()
{
    Export e;
    const int layerIdx = e.add("A", 1, Qt::red);
    e.scene.appendCloneDrawings(layerIdx, 1, 2);
    e.settings.clones = Clones::IncludeClones;
    QCOMPARE(e.run().written, 3);
    QCOMPARE(e.files(), QStringList({"walk.A.0001.png", "walk.A.0002.hold.png", "walk.A.0003.hold.png"}));
    for (const QString &name : e.files())
        QCOMPARE(contentOf(e.path(name)), expectedPng(Qt::red));
}

void tst_SceneExport::exrHoldsLinearLight()
{
    Export e;
    e.add("A", 1, QColor(255, 128, 0), inked, 51);
    e.settings.imageFormat = ImageFormat::OpenEXR;
    QCOMPARE(e.run().written, 1);
    const ExrFile file = parseExr(contentOf(e.path("walk.A.0001.exr")));
    QCOMPARE(file.error, QString());
    QCOMPARE(file.size, sceneFrame);
    QCOMPARE(file.at("R", onInk.x(), onInk.y()), 1.0F);
    QCOMPARE(file.at("B", onInk.x(), onInk.y()), 0.0F);
    QVERIFY(isNearestHalf(file.at("A", onInk.x(), onInk.y()), 0.2));
    // A fifth of 128 is 25.6 of 51 in a picture that keeps colours multiplied: 125, 128 or 130 when divided again.
    QVERIFY(std::abs(file.at("G", onInk.x(), onInk.y()) - std::pow(128 / 255.0, 2.2)) < 0.012);
    QCOMPARE(file.at("A", offInk.x(), offInk.y()), 0.0F);
}

void tst_SceneExport::otherProgramsReadTheFiles()
{
    Export e;
    e.add("A", 1, Qt::red);
    e.run();
    e.settings.imageFormat = ImageFormat::OpenEXR;
    e.run();
    const QString png = toldBy("identify", {"-format", "%m %w %h %[channels]", e.path("walk.A.0001.png")});
    QVERIFY2(png.startsWith("PNG 60 40 srgba"), qPrintable(png));
    const QString exr = toldBy("exrheader", {e.path("walk.A.0001.exr")});
    QVERIFY2(exr.contains("displayWindow (type box2i): (0 0) - (59 39)"), qPrintable(exr));
}

void tst_SceneExport::filesThatStoodThereAreReplaced()
{
    Export e;
    e.add("A", 1, Qt::red);
    QFile old(e.path("walk.A.0001.png"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100000, 'x'));
    old.close();
    e.run();
    QCOMPARE(contentOf(e.path("walk.A.0001.png")), expectedPng(Qt::red));
    QCOMPARE(e.files().size(), 1);
}

void tst_SceneExport::filesAreThoseOfTheList()
{
    Export e;
    e.add("A", 5, Qt::red);
    e.add("B/C", 3, Qt::blue);
    e.scene.loseDrawing(0, 3);
    e.settings.clones = Clones::IncludeClones;
    e.run();
    QStringList expected;
    for (const FrameExportFile &file : frameExportFiles(e.scene, e.settings))
        expected += file.fileName;
    expected.sort();
    QCOMPARE(expected.size(), 8);
    QCOMPARE(e.files(), expected);
}

void tst_SceneExport::progressCountsFramesOutOfAllCells()
{
    Export e;
    e.add("A", 3, Qt::red);
    e.add("B", 2, Qt::blue);
    WatchedProgress progress;
    e.scene.exportFrames(e.settings, progress);
    QStringList events = progress.events();
    events.removeAll("look");
    QCOMPARE(events, QStringList({"0 of 5", "1", "2", "3", "finish"}));
}

void tst_SceneExport::progressCountsCombinedFrames()
{
    Export e;
    e.add("A", 4, Qt::red);
    e.add("B", 2, Qt::blue);
    e.settings.combineLayers = true;
    e.settings.frames = ExportSettings::Frames::RangeOnly;
    e.scene.setFrameRange(2, 4, 2, 0);
    WatchedProgress progress;
    e.scene.exportFrames(e.settings, progress);
    QStringList events = progress.events();
    events.removeAll("look");
    QCOMPARE(events, QStringList({"0 of 3", "1", "2", "3", "finish"}));
}

void tst_SceneExport::sceneWithoutLayersIsDoneAtOnce()
{
    Export e;
    e.settings.exportDir = e.path("gone");
    WatchedProgress progress;
    const FrameExportResult result = e.scene.exportFrames(e.settings, progress);
    QCOMPARE(result.outcome, FileResult::Success);
    QCOMPARE(result.written, 0);
    QCOMPARE(progress.events(), QStringList());
}

void tst_SceneExport::rangeWithoutOriginalsIsDoneWithoutFiles()
{
    Export e;
    const int layerIdx = e.add("A", 1, Qt::red);
    e.scene.appendCloneDrawings(layerIdx, 1, 4);
    e.scene.setFrameRange(3, 5, 3, layerIdx);
    e.settings.frames = ExportSettings::Frames::RangeOnly;
    const FrameExportResult result = e.run();
    QCOMPARE(result.outcome, FileResult::Success);
    QCOMPARE(e.files(), QStringList());
}

void tst_SceneExport::missingFolderIsAnError_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("missing") << "gone";
    QTest::newRow("missing below a missing one") << "gone/far";
    QTest::newRow("a file") << "file";
    QTest::newRow("below a file") << "file/folder";
}

void tst_SceneExport::missingFolderIsAnError()
{
    QFETCH(QString, folder);
    Export e;
    e.add("A", 2, Qt::red);
    QFile file(e.path("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    e.settings.exportDir = e.path(folder);
    WatchedProgress progress;
    const FrameExportResult result = e.scene.exportFrames(e.settings, progress);
    QCOMPARE(result.outcome, FileResult::Error);
    QCOMPARE(result.written, 0);
    QCOMPARE(result.failures.size(), 1);
    QVERIFY2(result.failures.first().startsWith(e.path(folder) + ": "), qPrintable(result.failures.first()));
    QCOMPARE(e.files(), QStringList("file"));
    QVERIFY(!QFile::exists(e.path("gone")));

    e.settings.exportDir.clear();
    QCOMPARE(e.run().outcome, FileResult::Error);
}

void tst_SceneExport::readOnlyFolderIsToldForEachFile()
{
    Export e;
    e.add("A", 3, Qt::red);
    const ReadOnlyFolder folder;
    e.settings.exportDir = folder.path();
    const FrameExportResult result = e.run();
    QCOMPARE(result.outcome, FileResult::Error);
    QCOMPARE(result.written, 0);
    QCOMPARE(result.failures.size(), 3);
    QVERIFY(result.failures.at(1).startsWith(folder.filePath("walk.A.0002.png: ")));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void tst_SceneExport::fullDiskLeavesTheOldFiles()
{
    Export e;
    e.add("A", 2, Qt::red);
    QFile old(e.path("walk.A.0001.png"));
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    FrameExportResult result;
    {
        const FullDisk full;
        result = e.run();
    }
    QCOMPARE(result.outcome, FileResult::Error);
    QCOMPARE(result.failures.size(), 2);
    QCOMPARE(e.files(), QStringList("walk.A.0001.png"));
    QCOMPARE(contentOf(e.path("walk.A.0001.png")), QByteArray("old"));
}

void tst_SceneExport::oneFailureDoesNotStopTheRest()
{
    Export e;
    e.add("A", 3, Qt::red);
    QVERIFY(QDir().mkdir(e.path("walk.A.0002.png")));
    WatchedProgress progress;
    const FrameExportResult result = e.scene.exportFrames(e.settings, progress);
    QCOMPARE(result.outcome, FileResult::Error);
    QCOMPARE(result.written, 2);
    QCOMPARE(result.failures.size(), 1);
    QVERIFY(result.failures.first().startsWith(e.path("walk.A.0002.png: ")));
    QCOMPARE(e.files(), QStringList({"walk.A.0001.png", "walk.A.0003.png"}));
    QCOMPARE(progress.events().last(), QString("finish"));
}

void tst_SceneExport::nameTooLongIsAFailure()
{
    // With "walk." and ".0001.png" names of 250 bytes, which leaves no room for the seven of a temporary file.
    const QString name(236, 'n');
    Export e;
    e.add(name, 1, Qt::red);
    e.add("A", 1, Qt::red);
    const FrameExportResult result = e.run();
    QCOMPARE(result.outcome, FileResult::Error);
    QCOMPARE(result.failures, QStringList(e.path("walk." + name + ".0001.png: File name too long")));
    QCOMPARE(e.files(), QStringList("walk.A.0001.png"));
}

void tst_SceneExport::layersOfOneNameAreToldOnce()
{
    Export e;
    e.add("A", 3, Qt::red);
    e.add("A", 3, Qt::blue);
    // Any second warning fails the test.
    QTest::ignoreMessage(QtWarningMsg, "Export Frames: several pictures go to one file, and the last one stays: "
                                       "walk.A.0001.png");
    const FrameExportResult result = e.run();
    QCOMPARE(result.outcome, FileResult::Success);
    QCOMPARE(e.files().size(), 3);
    for (const QString &name : e.files())
        QCOMPARE(contentOf(e.path(name)), expectedPng(Qt::blue));
}

void tst_SceneExport::layersOfNamesThatDifferInCaseAreTold()
{
    Export e;
    e.add("Line", 2, Qt::red);
    e.add("line", 2, Qt::blue);
    QTest::ignoreMessage(QtWarningMsg, "Export Frames: on some disks several pictures go to one file, and the last one "
                                       "stays: walk.Line.0001.png and walk.line.0001.png");
    QCOMPARE(e.run().written, 4);
    QCOMPARE(e.files().size(), 4);
}

void tst_SceneExport::imageThatFindsNoMemoryIsAFailure()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("the address sanitizer itself takes more address space than this limit leaves");
#else
    Export e;
    e.add("A", 2, Qt::red);
    e.scene.setFrameSize({20000, 20000}, MR::FitMode::FitModeIgnore);
    rlimit before = {};
    getrlimit(RLIMIT_AS, &before);
    rlimit limit = before;
    limit.rlim_cur = rlim_t(1200) << 20; // a picture would take 1.6 GB
    QCOMPARE(setrlimit(RLIMIT_AS, &limit), 0);
    const FrameExportResult result = e.run();
    QCOMPARE(setrlimit(RLIMIT_AS, &before), 0);
    QCOMPARE(result.outcome, FileResult::Error);
    QCOMPARE(result.written, 0);
    QCOMPARE(result.failures.size(), 2);
    QVERIFY(result.failures.first().startsWith(e.path("walk.A.0001.png: ")));
    QCOMPARE(e.files(), QStringList());
#endif
}

QTEST_MAIN(tst_SceneExport)
#include "tst_scene_export.moc"
