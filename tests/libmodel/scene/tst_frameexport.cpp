#include "libmodel/scene/frameexport.h"

#include "libmodel/layers/referencelayer.h"
#include "scenebuilder.h"
#include "sheetfixture.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTest>
#include <QTranslator>

using namespace Model;
using namespace TestSupport;
using Clones = ExportFramesSettings::Clones;
using Layers = ExportSettings::Layers;

namespace {

QStringList namesOf(const QList<FrameExportFile> &files)
{
    QStringList names;
    for (const FrameExportFile &file : files)
        names += file.fileName;
    return names;
}

ExportFramesSettings settingsFor(Clones clones, bool combined = false)
{
    ExportFramesSettings settings;
    settings.fileName = "walk";
    settings.clones = clones;
    settings.combineLayers = combined;
    return settings;
}

/// Knows two of the words in file names in another language, in their context and with their comments.
class OtherLanguage : public QTranslator
{
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char *context, const char *text, const char *comment, int) const override
    {
        if (QByteArray(context) != "Model::Scene")
            return {};
        if (QByteArray(text) == "hold" && QByteArray(comment) == "export")
            return "halten";
        if (QByteArray(text) == "clone.%1.%2" && QByteArray(comment) == "export (layerName.frame)")
            return "%2.von.%1";
        return {};
    }
};

/// A scene whose layers are written down as columns: a dot is a hold, anything else an original.
class Fixture : public Sheet
{
public:
    /// A layer below the others. \return its index.
    int add(const QString &name, const QString &column)
    {
        const int layerIdx = addColumn(column);
        scene.setLayerName(layerIdx, name);
        return layerIdx;
    }
    void repeat(int layerIdx, int frameId, int originalLayer, int originalFrame)
    {
        scene.makeDistantClone(layerIdx, frameId, scene.visualLayer(originalLayer)->cellRef(originalFrame));
    }
    [[nodiscard]] QStringList names(const ExportFramesSettings &settings) const
    {
        return namesOf(frameExportFiles(scene, settings));
    }
    /// The combined export in short: n for a picture that is written as new, h for one written as a hold, a dot for
    /// none, a frame after the other.
    [[nodiscard]] QString combined() const
    {
        QString told(scene.maximumFrameNumber(), '.');
        const QList<FrameExportFile> files = frameExportFiles(scene, settingsFor(Clones::IncludeClones, true));
        for (const FrameExportFile &file : files)
            told[file.frameId - 1] = file.fileName.contains(".hold.") ? 'h' : 'n';
        return told;
    }
};

} // namespace

class tst_FrameExport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void filesOfOneNameAreFound_data();
    void filesOfOneNameAreFound();
    void portionsAreTheFilesOfOneFrameEach();
    void originalsAreNamedByLayerAndFrame();
    void excludedClonesLeaveGapsInTheNumbers();
    void holdOfThreeFramesIsOnePlainFileAndTwoHolds();
    void simpleSequenceTellsNothingOfHolds();
    void distantCloneTellsWhatItRepeats();
    void excludedDistantCloneHasNoFile();
    void distantCloneInASimpleSequenceIsLikeAnOriginal();
    void holdBehindADistantCloneIsAHold();
    void distantCloneOfALayerThatIsGoneHasNoNamePart();
    void distantCloneOfACellThatIsGoneHasNoNamePart();
    void layersGoFromTheTopDownWithinAFrame();
    void layerHasFilesOnlyAsFarAsItsCellsGo();
    void onlyLayersWithPicturesAreChosen();
    void visibleLayersOnly();
    void layerOfNoOpacityIsStillVisible();
    void activeLayerOnly();
    void rangeOnly();
    void rangeOfCombinedFramesKeepsTheirNumbers();
    void soundMakesTheSceneLonger();
    void combinedNameOfSeveralLayersHasNoLayer();
    void combinedNameOfOneLayerHasItsName();
    void combinedNameHasTheNameOfTheOnlyChosenLayer();
    void combinedFrameIsNewWhenAnyLayerChanges_data();
    void combinedFrameIsNewWhenAnyLayerChanges();
    void combinedDistantCloneIsNew();
    void combinedFramesByWhatIsDoneWithClones();
    void hiddenLayerMakesNoFrameNewWhenOnlyVisibleOnesAreChosen();
    void numbersMayHaveMoreThanFourDigits();
    void wordsInNamesAreTranslated();
    void whatNoFileNameCanHaveBecomesAnUnderscore_data();
    void whatNoFileNameCanHaveBecomesAnUnderscore();
    void namesThatLookLikePlacesStayAsTheyAre();
    void formatDecidesTheEnding();
    void filesTellFrameAndLayer();
    void nothingChosenIsNothingWritten_data();
    void nothingChosenIsNothingWritten();
};

void tst_FrameExport::initTestCase()
{
    QTest::failOnWarning(QRegularExpression("."));
}

void tst_FrameExport::originalsAreNamedByLayerAndFrame()
{
    Fixture sheet;
    sheet.add("Layer 1", "oo");
    QCOMPARE(sheet.names(settingsFor(Clones::ExcludeClones)),
             QStringList({"walk.Layer 1.0001.png", "walk.Layer 1.0002.png"}));
}

void tst_FrameExport::excludedClonesLeaveGapsInTheNumbers()
{
    Fixture sheet;
    sheet.add("A", "o..o.o");
    QCOMPARE(sheet.names(settingsFor(Clones::ExcludeClones)),
             QStringList({"walk.A.0001.png", "walk.A.0004.png", "walk.A.0006.png"}));
}

void tst_FrameExport::holdOfThreeFramesIsOnePlainFileAndTwoHolds()
{
    Fixture sheet;
    sheet.add("A", "o..");
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClones)),
             QStringList({"walk.A.0001.png", "walk.A.0002.hold.png", "walk.A.0003.hold.png"}));
}

void tst_FrameExport::simpleSequenceTellsNothingOfHolds()
{
    Fixture sheet;
    sheet.add("A", "o..");
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClonesSimpleSequence)),
             QStringList({"walk.A.0001.png", "walk.A.0002.png", "walk.A.0003.png"}));
}

void tst_FrameExport::distantCloneTellsWhatItRepeats()
{
    Fixture sheet;
    const int upper = sheet.add("Upper", "oo");
    const int lower = sheet.add("Lower", "ooo");
    sheet.repeat(lower, 3, upper, 2);
    sheet.repeat(lower, 2, lower, 1);
    ExportFramesSettings settings = settingsFor(Clones::IncludeClones);
    QCOMPARE(sheet.names(settings),
             QStringList({"walk.Upper.0001.png", "walk.Lower.0001.png", "walk.Upper.0002.png",
                          "walk.Lower.0002.clone.Lower.0001.png", "walk.Lower.0003.clone.Upper.0002.png"}));
}

void tst_FrameExport::excludedDistantCloneHasNoFile()
{
    Fixture sheet;
    const int layerIdx = sheet.add("A", "ooo");
    sheet.repeat(layerIdx, 2, layerIdx, 1);
    QCOMPARE(sheet.names(settingsFor(Clones::ExcludeClones)), QStringList({"walk.A.0001.png", "walk.A.0003.png"}));
}

void tst_FrameExport::distantCloneInASimpleSequenceIsLikeAnOriginal()
{
    Fixture sheet;
    const int layerIdx = sheet.add("A", "oo");
    sheet.repeat(layerIdx, 2, layerIdx, 1);
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClonesSimpleSequence)),
             QStringList({"walk.A.0001.png", "walk.A.0002.png"}));
}

void tst_FrameExport::holdBehindADistantCloneIsAHold()
{
    Fixture sheet;
    const int layerIdx = sheet.add("A", "oo.");
    sheet.repeat(layerIdx, 2, layerIdx, 1);
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClones)),
             QStringList({"walk.A.0001.png", "walk.A.0002.clone.A.0001.png", "walk.A.0003.hold.png"}));
}

void tst_FrameExport::distantCloneOfALayerThatIsGoneHasNoNamePart()
{
    Fixture sheet;
    const int gone = sheet.add("Gone", "o");
    const int layerIdx = sheet.add("A", "oo");
    sheet.repeat(layerIdx, 2, gone, 1);
    const auto clone = sheet.scene.item(layerIdx, 2);
    const CellRef origin = clone->origin;
    sheet.scene.removeLayer(gone);
    // A file may hold such a cell, whatever becomes of it when a layer is removed here.
    clone->type = LayerItem::Type::DistantClone;
    clone->origin = origin;
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClones)), QStringList({"walk.A.0001.png", "walk.A.0002.png"}));
}

void tst_FrameExport::distantCloneOfACellThatIsGoneHasNoNamePart()
{
    Fixture sheet;
    const int layerIdx = sheet.add("A", "oo");
    sheet.repeat(layerIdx, 2, layerIdx, 1);
    sheet.scene.item(layerIdx, 2)->origin.cell = QUuid::createUuid();
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClones)), QStringList({"walk.A.0001.png", "walk.A.0002.png"}));
}

void tst_FrameExport::layersGoFromTheTopDownWithinAFrame()
{
    Fixture sheet;
    sheet.add("A", "oo");
    sheet.add("B", "oo");
    const int top = sheet.add("C", "oo");
    sheet.scene.moveLayer(top, 0);
    QCOMPARE(exportedLayers(sheet.scene, Layers::AllLayers), QList<int>({2, 0, 1}));
    QCOMPARE(sheet.names(settingsFor(Clones::ExcludeClones)),
             QStringList({"walk.C.0001.png", "walk.A.0001.png", "walk.B.0001.png", "walk.C.0002.png", "walk.A.0002.png",
                          "walk.B.0002.png"}));
}

void tst_FrameExport::layerHasFilesOnlyAsFarAsItsCellsGo()
{
    Fixture sheet;
    const int layerIdx = sheet.add("A", "o");
    sheet.add("B", "ooo");
    sheet.scene.setLayerBeyondLast(layerIdx, Layer::CycleDrawings);
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClonesSimpleSequence)),
             QStringList({"walk.A.0001.png", "walk.B.0001.png", "walk.B.0002.png", "walk.B.0003.png"}));
}

void tst_FrameExport::onlyLayersWithPicturesAreChosen()
{
    Fixture sheet;
    sheet.addAudio();
    sheet.add("A", "o");
    sheet.addAnnotations();
    const auto picture = std::make_shared<ReferenceLayer>(sheet.scene.frameSize());
    picture->setName("Photo");
    sheet.scene.insertLayer(picture, 3);
    QCOMPARE(exportedLayers(sheet.scene, Layers::AllLayers), QList<int>({1, 3}));
    QCOMPARE(sheet.names(settingsFor(Clones::ExcludeClones)), QStringList({"walk.A.0001.png", "walk.Photo.0001.png"}));
}

void tst_FrameExport::visibleLayersOnly()
{
    Fixture sheet;
    const int hidden = sheet.add("A", "o");
    sheet.add("B", "o");
    sheet.scene.setLayerVisible(hidden, false);
    ExportFramesSettings settings = settingsFor(Clones::ExcludeClones);
    QCOMPARE(sheet.names(settings), QStringList({"walk.A.0001.png", "walk.B.0001.png"}));
    settings.layers = Layers::VisibleLayers;
    QCOMPARE(sheet.names(settings), QStringList("walk.B.0001.png"));
}

void tst_FrameExport::layerOfNoOpacityIsStillVisible()
{
    Fixture sheet;
    const int layerIdx = sheet.add("A", "o");
    sheet.scene.setLayerOpacity(layerIdx, 0.0);
    QCOMPARE(exportedLayers(sheet.scene, Layers::VisibleLayers), QList<int>({layerIdx}));
}

void tst_FrameExport::activeLayerOnly()
{
    Fixture sheet;
    sheet.add("A", "oo");
    const int active = sheet.add("B", "oo");
    sheet.scene.setFrameRange(1, 2, 1, active);
    ExportFramesSettings settings = settingsFor(Clones::ExcludeClones);
    settings.layers = Layers::ActiveLayerOnly;
    QCOMPARE(sheet.names(settings), QStringList({"walk.B.0001.png", "walk.B.0002.png"}));
}

void tst_FrameExport::rangeOnly()
{
    Fixture sheet;
    sheet.add("A", "oo.ooo");
    sheet.setRange(3, 5);
    ExportFramesSettings settings = settingsFor(Clones::IncludeClones);
    settings.frames = ExportSettings::Frames::RangeOnly;
    QCOMPARE(exportedFrames(sheet.scene, settings.frames), std::pair(3, 5));
    QCOMPARE(sheet.names(settings), QStringList({"walk.A.0003.hold.png", "walk.A.0004.png", "walk.A.0005.png"}));
}

void tst_FrameExport::rangeOfCombinedFramesKeepsTheirNumbers()
{
    Fixture sheet;
    sheet.add("A", "oo.ooo");
    sheet.setRange(3, 5);
    ExportFramesSettings settings = settingsFor(Clones::IncludeClones, true);
    settings.frames = ExportSettings::Frames::RangeOnly;
    QCOMPARE(sheet.names(settings), QStringList({"walk.A.0003.hold.png", "walk.A.0004.png", "walk.A.0005.png"}));
}

void tst_FrameExport::soundMakesTheSceneLonger()
{
    Fixture sheet;
    sheet.add("A", "oo");
    sheet.scene.insertLayer(std::make_shared<Sound>(1, 5), 1);
    sheet.scene.updateMaxFrameNumber();
    QCOMPARE(exportedFrames(sheet.scene, ExportSettings::Frames::AllFrames), std::pair(1, 5));
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClonesSimpleSequence)),
             QStringList({"walk.A.0001.png", "walk.A.0002.png"}));
    QCOMPARE(
        sheet.names(settingsFor(Clones::IncludeClonesSimpleSequence, true)),
        QStringList({"walk.A.0001.png", "walk.A.0002.png", "walk.A.0003.png", "walk.A.0004.png", "walk.A.0005.png"}));
}

void tst_FrameExport::combinedNameOfSeveralLayersHasNoLayer()
{
    Fixture sheet;
    sheet.add("A", "o.");
    sheet.add("B", "o.");
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClones, true)),
             QStringList({"walk.0001.png", "walk.0002.hold.png"}));
}

void tst_FrameExport::combinedNameOfOneLayerHasItsName()
{
    Fixture sheet;
    sheet.add("A", "o.");
    sheet.addAudio();
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClones, true)),
             QStringList({"walk.A.0001.png", "walk.A.0002.hold.png"}));
}

void tst_FrameExport::combinedNameHasTheNameOfTheOnlyChosenLayer()
{
    Fixture sheet;
    sheet.add("A", "o");
    sheet.scene.setLayerVisible(sheet.add("B", "o"), false);
    ExportFramesSettings settings = settingsFor(Clones::ExcludeClones, true);
    settings.layers = Layers::VisibleLayers;
    QCOMPARE(sheet.names(settings), QStringList("walk.A.0001.png"));
}

void tst_FrameExport::combinedFrameIsNewWhenAnyLayerChanges_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<Layer::LayerBeyondLast>("beyond"); // of the first layer
    QTest::addColumn<QString>("expected");
    const auto nothing = Layer::ShowNothing;
    const auto freeze = Layer::FreezeLast;
    const auto cycle = Layer::CycleDrawings;
    QTest::newRow("both hold") << "o..."
                               << "o..." << nothing << "nhhh";
    QTest::newRow("one changes") << "o..o"
                                 << "o.o." << nothing << "nhnn";
    QTest::newRow("goes blank behind its last cell") << "o."
                                                     << "o....." << nothing << "nhnhhh";
    QTest::newRow("goes blank where the other changes") << "o."
                                                        << "o.o..." << nothing << "nhnhhh";
    QTest::newRow("ends with the scene") << "o....."
                                         << "o" << nothing << "nnhhhh";
    QTest::newRow("frozen, it stays") << "o"
                                      << "o....." << freeze << "nhhhhh";
    QTest::newRow("frozen, the other changes") << "oo"
                                               << "o..o.." << freeze << "nnhnhh";
    QTest::newRow("cycles through drawings") << "oo"
                                             << "o....." << cycle << "nnnnnn";
    QTest::newRow("cycles, holds included") << "o.o"
                                            << "o......." << cycle << "nhnnhnnh";
    QTest::newRow("cycles through one drawing") << "o"
                                                << "o..." << cycle << "nnnn";
}

void tst_FrameExport::combinedFrameIsNewWhenAnyLayerChanges()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(Layer::LayerBeyondLast, beyond);
    Fixture sheet;
    const int layerIdx = sheet.add("A", first);
    sheet.scene.setLayerBeyondLast(layerIdx, beyond);
    sheet.add("B", second);
    QTEST(sheet.combined(), "expected");
    // It does not matter which of the two lies on top.
    sheet.scene.moveLayer(layerIdx, 1);
    QTEST(sheet.combined(), "expected");
}

void tst_FrameExport::combinedDistantCloneIsNew()
{
    Fixture sheet;
    const int layerIdx = sheet.add("A", "o.o");
    sheet.add("B", "o..");
    sheet.repeat(layerIdx, 3, layerIdx, 1);
    QCOMPARE(sheet.combined(), QString("nhn"));
}

void tst_FrameExport::combinedFramesByWhatIsDoneWithClones()
{
    Fixture sheet;
    sheet.add("A", "o.o.");
    sheet.add("B", "o..o");
    QCOMPARE(sheet.names(settingsFor(Clones::ExcludeClones, true)),
             QStringList({"walk.0001.png", "walk.0003.png", "walk.0004.png"}));
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClones, true)),
             QStringList({"walk.0001.png", "walk.0002.hold.png", "walk.0003.png", "walk.0004.png"}));
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClonesSimpleSequence, true)),
             QStringList({"walk.0001.png", "walk.0002.png", "walk.0003.png", "walk.0004.png"}));
}

void tst_FrameExport::hiddenLayerMakesNoFrameNewWhenOnlyVisibleOnesAreChosen()
{
    Fixture sheet;
    sheet.scene.setLayerVisible(sheet.add("A", "oooo"), false);
    sheet.add("B", "o.o.");
    sheet.add("C", "o...");
    ExportFramesSettings settings = settingsFor(Clones::ExcludeClones, true);
    QCOMPARE(sheet.names(settings).size(), 4);
    settings.layers = Layers::VisibleLayers;
    QCOMPARE(sheet.names(settings), QStringList({"walk.0001.png", "walk.0003.png"}));
}

void tst_FrameExport::numbersMayHaveMoreThanFourDigits()
{
    Fixture sheet;
    const int layerIdx = sheet.add("A", "o");
    sheet.scene.appendCloneDrawings(layerIdx, 1, 10000);
    const QStringList names = sheet.names(settingsFor(Clones::IncludeClonesSimpleSequence));
    QCOMPARE(names.size(), 10001);
    QCOMPARE(names.at(9998), QString("walk.A.9999.png"));
    QCOMPARE(names.last(), QString("walk.A.10001.png"));
}

void tst_FrameExport::wordsInNamesAreTranslated()
{
    Fixture sheet;
    const int layerIdx = sheet.add("A", "o.o");
    sheet.repeat(layerIdx, 3, layerIdx, 1);
    OtherLanguage language;
    QVERIFY(QCoreApplication::installTranslator(&language));
    QCOMPARE(sheet.names(settingsFor(Clones::IncludeClones)),
             QStringList({"walk.A.0001.png", "walk.A.0002.halten.png", "walk.A.0003.0001.von.A.png"}));
}

void tst_FrameExport::whatNoFileNameCanHaveBecomesAnUnderscore_data()
{
    QTest::addColumn<QString>("layer");
    QTest::addColumn<QString>("expected");
    QTest::newRow("slash") << "legs/left"
                           << "walk.legs_left.0001.png";
    QTest::newRow("the way up") << "../../up"
                                << "walk..._.._up.0001.png";
    QTest::newRow("only slashes") << "//"
                                  << "walk.__.0001.png";
    QTest::newRow("zero") << QString("a") + QChar(0) + "b"
                          << "walk.a_b.0001.png";
    QTest::newRow("others may stay") << QString::fromUtf8("größer: 1 🐎 \\*?")
                                     << QString::fromUtf8("walk.größer: 1 🐎 \\*?.0001.png");
}

void tst_FrameExport::whatNoFileNameCanHaveBecomesAnUnderscore()
{
    QFETCH(QString, layer);
    Fixture sheet;
    const int layerIdx = sheet.add("A", "o");
    sheet.scene.setLayerName(layerIdx, layer);
    QTEST(sheet.names(settingsFor(Clones::ExcludeClones)).constFirst(), "expected");
    QTEST(sheet.names(settingsFor(Clones::ExcludeClones, true)).constFirst(), "expected");
}

void tst_FrameExport::namesThatLookLikePlacesStayAsTheyAre()
{
    Fixture sheet;
    const int layerIdx = sheet.add("%3 %L1 100%", "oo");
    sheet.repeat(layerIdx, 2, layerIdx, 1);
    ExportFramesSettings settings = settingsFor(Clones::IncludeClones);
    settings.fileName = "%5 %2";
    QCOMPARE(sheet.names(settings),
             QStringList({"%5 %2.%3 %L1 100%.0001.png", "%5 %2.%3 %L1 100%.0002.clone.%3 %L1 100%.0001.png"}));
}

void tst_FrameExport::formatDecidesTheEnding()
{
    Fixture sheet;
    sheet.add("A", "o");
    ExportFramesSettings settings = settingsFor(Clones::ExcludeClones);
    settings.imageFormat = ExportFramesSettings::ImageFormat::OpenEXR;
    QCOMPARE(sheet.names(settings), QStringList("walk.A.0001.exr"));
    settings.combineLayers = true;
    QCOMPARE(sheet.names(settings), QStringList("walk.A.0001.exr"));
}

void tst_FrameExport::filesTellFrameAndLayer()
{
    Fixture sheet;
    sheet.add("A", "o");
    sheet.add("B", "oo");
    QCOMPARE(frameExportFiles(sheet.scene, settingsFor(Clones::ExcludeClones)),
             QList<FrameExportFile>({{1, 0, "walk.A.0001.png"}, {1, 1, "walk.B.0001.png"}, {2, 1, "walk.B.0002.png"}}));
    QCOMPARE(frameExportFiles(sheet.scene, settingsFor(Clones::ExcludeClones, true)),
             QList<FrameExportFile>({{1, -1, "walk.0001.png"}, {2, -1, "walk.0002.png"}}));
}

void tst_FrameExport::nothingChosenIsNothingWritten_data()
{
    QTest::addColumn<bool>("combined");
    QTest::newRow("layers apart") << false;
    QTest::newRow("combined") << true;
}

void tst_FrameExport::nothingChosenIsNothingWritten()
{
    QFETCH(bool, combined);
    ExportFramesSettings settings = settingsFor(Clones::IncludeClones, combined);
    Fixture sheet;
    QCOMPARE(sheet.names(settings), QStringList());
    sheet.addAudio();
    sheet.addAnnotations();
    QCOMPARE(sheet.names(settings), QStringList());
    const int layerIdx = sheet.add("A", "oo");
    settings.layers = Layers::ActiveLayerOnly;
    QCOMPARE(sheet.scene.activeLayerIdx(), -1);
    QCOMPARE(sheet.names(settings), QStringList());
    settings.layers = Layers::VisibleLayers;
    sheet.scene.setLayerVisible(layerIdx, false);
    QCOMPARE(sheet.names(settings), QStringList());
}

void tst_FrameExport::filesOfOneNameAreFound_data()
{
    QTest::addColumn<QStringList>("layers"); // name and column in turn
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("other");
    const QString file = "walk.A.0001.png";
    QTest::newRow("different names") << QStringList({"A", "o", "B", "o"}) << ""
                                     << "";
    QTest::newRow("one name") << QStringList({"A", "o", "A", "o"}) << file << file;
    QTest::newRow("the third") << QStringList({"A", "o", "B", "o", "A", "o"}) << file << file;
    QTest::newRow("one in a file's name") << QStringList({"a/b", "o", "a_b", "o"}) << "walk.a_b.0001.png"
                                          << "walk.a_b.0001.png";
    QTest::newRow("but for the case") << QStringList({"A", "o", "a", "o"}) << file << "walk.a.0001.png";
    QTest::newRow("but for the case of an umlaut")
        << QStringList({QString::fromUtf8("Ä"), "o", QString::fromUtf8("ä"), "o"})
        << QString::fromUtf8("walk.Ä.0001.png") << QString::fromUtf8("walk.ä.0001.png");
    QTest::newRow("the same goes first") << QStringList({"a", "oo", "A", "oo", "A", "o"}) << file << file;
}

void tst_FrameExport::filesOfOneNameAreFound()
{
    QFETCH(QStringList, layers);
    QFETCH(QString, one);
    QFETCH(QString, other);
    Fixture sheet;
    for (int i = 0; i < layers.size(); i += 2)
        sheet.add(layers.at(i), layers.at(i + 1));
    const auto shared = sharedExportFile(sheet.scene, settingsFor(Clones::IncludeClones));
    QCOMPARE(shared.first, one);
    QCOMPARE(shared.second, other);
    // One picture a frame, so nothing to share.
    const auto combined = sharedExportFile(sheet.scene, settingsFor(Clones::IncludeClones, true));
    QVERIFY(combined.first.isEmpty() && combined.second.isEmpty());
}

void tst_FrameExport::portionsAreTheFilesOfOneFrameEach()
{
    Fixture sheet;
    sheet.add("A", "o.o");
    sheet.add("B", "o");
    const ExportFramesSettings settings = settingsFor(Clones::ExcludeClones);
    FrameExportWalk walk(sheet.scene, settings);
    QStringList portions;
    while (!walk.atEnd())
        portions += namesOf(walk.takeFrame()).join(' ');
    QCOMPARE(portions, QStringList({"walk.A.0001.png walk.B.0001.png", "", "walk.A.0003.png"}));
    QVERIFY(walk.takeFrame().isEmpty());
}

QTEST_MAIN(tst_FrameExport)
#include "tst_frameexport.moc"
