#include "commandstage.h"
#include "libcommands/addannotation.h"
#include "libcommands/addblankdrawing.h"
#include "libcommands/addclonedrawings.h"
#include "libcommands/changeframesize.h"
#include "libcommands/changelayercolor.h"
#include "libcommands/changelayeropacity.h"
#include "libcommands/changescenesettings.h"
#include "libcommands/changetooltype.h"
#include "libcommands/cleardrawingmakingblank.h"
#include "libcommands/cloneeachselecteddrawingonce.h"
#include "libcommands/collapsevectordata.h"
#include "libcommands/cutpath.h"
#include "libcommands/cycleselecteddrawingsonce.h"
#include "libcommands/deleteclonedrawing.h"
#include "libcommands/discardclonedrawings.h"
#include "libcommands/discarddrawing.h"
#include "libcommands/discardlayer.h"
#include "libcommands/duplicatelayer.h"
#include "libcommands/floatingselectionnew.h"
#include "libcommands/floatingselectiontransform.h"
#include "libcommands/insertblankdrawing.h"
#include "libcommands/losedrawingmakinghold.h"
#include "libcommands/markaskeydrawing.h"
#include "libcommands/mergelayerdown.h"
#include "libcommands/movelayer.h"
#include "libcommands/newlayer.h"
#include "libcommands/offpegs.h"
#include "libcommands/removelayer.h"
#include "libcommands/renamelayer.h"
#include "libcommands/setactiveframeandlayer.h"
#include "libcommands/setalllayerslinked.h"
#include "libcommands/setframerange.h"
#include "libcommands/setframerate.h"
#include "libcommands/setlayerbeyondlast.h"
#include "libcommands/setlayerlinked.h"
#include "libcommands/setlayervisible.h"
#include "libcommands/slideoriginaldrawing.h"
#include "libcommands/swaplayer.h"
#include "libcommands/turncloneintooriginal.h"
#include "libcommands/unmarkallkeydrawings.h"
#include "libmodel/layers/strokelayer.h"

#include <QTest>

#include <functional>
#include <memory>

using namespace Commands;
using namespace Model;
using TestSupport::CommandStage;

namespace {

/// Makes a command for a scene, null for none, with the cells of frames 1 and 2 of the first layer.
using Maker = std::function<QUndoCommand *(MRScene *scene, const QModelIndexList &cells)>;

struct Row
{
    const char *text;
    int id;
    Maker make;
};

template<typename Command>
Row selected(const char *text)
{
    return {text, -1, [](MRScene *scene, const QModelIndexList &cells) { return new Command(scene, cells); }};
}

template<typename Command>
Row single(const char *text)
{
    return {text, -1, [](MRScene *scene, const QModelIndexList &cells) { return new Command(scene, cells.at(0)); }};
}

/// A command that is made of the scene and \a arguments.
template<typename Command, typename... Arguments>
Row plain(const char *text, int id, Arguments... arguments)
{
    return {text, id, [=](MRScene *scene, const QModelIndexList &) { return new Command(scene, arguments...); }};
}

std::vector<Row> cellRows()
{
    return {
        selected<AddBlankDrawing>("Add Blank after each Selected Drawing"),
        single<AddBlankDrawing>("Add Blank Drawing"),
        {"Add Clones after each Selected Drawing", -1,
         [](MRScene *scene, const QModelIndexList &cells) { return new AddCloneDrawings(scene, cells, 2); }},
        {"Add Clone Drawings", -1,
         [](MRScene *scene, const QModelIndexList &cells) { return new AddCloneDrawings(scene, cells.at(0), 2); }},
        selected<InsertBlankDrawing>("Insert Blank after each Selected Drawing"),
        single<InsertBlankDrawing>("Insert Blank Drawing"),
        selected<ClearDrawingMakingBlank>("Clear Selected Drawings"),
        single<ClearDrawingMakingBlank>("Clear Drawing"),
        selected<LoseDrawingMakingHold>("Lose Selected Drawings"),
        single<LoseDrawingMakingHold>("Lose Drawing"),
        selected<DiscardDrawing>("Discard Selected Drawings"),
        single<DiscardDrawing>("Discard Drawing"),
        selected<DeleteCloneDrawing>("Discard Selected Clone Drawings"),
        single<DeleteCloneDrawing>("Discard Clone Drawing"),
        selected<CloneEachSelectedDrawingOnce>("Clone Each Selected Drawing Once"),
        selected<CycleSelectedDrawingsOnce>("Cycle Selected Drawings Once"),
        selected<TurnCloneIntoOriginal>("Turn Selected Clones into Originals"),
        single<TurnCloneIntoOriginal>("Turn Clone into Original"),
        {"Cutout", -1,
         [](MRScene *scene, const QModelIndexList &cells) { return new CutPath(scene, cells.at(0), QPainterPath()); }},
        {"Collapse Vector Data", -1,
         [](MRScene *scene, const QModelIndexList &cells) {
             return new CollapseVectorData(scene, cells.at(0), nullptr);
         }},
    };
}

std::vector<Row> sceneRows()
{
    const auto stretch = MR::FitMode::FitModeStretch;
    return {
        plain<DiscardCloneDrawings>("Discard Clone Drawings", -1, 1),
        plain<MarkAsKeyDrawing>("Mark as Key Drawing", -1, true),
        plain<MarkAsKeyDrawing>("Unmark as Key Drawing", -1, false),
        plain<UnmarkAllKeyDrawings>("Unmark all Key Drawings", -1),
        plain<SlideOriginalDrawing>("Slide Original Drawing", -1, 1, 0, 1),
        plain<SetFrameRange>("Change Active Frame Range", 2, 1, 2, 1, 0),
        plain<SetFrameRate>("Set Frame Rate", 7, 50.0),
        plain<OffPegs>("Take Frame Off the Pegs", 3, QTransform::fromTranslate(1, 2)),
        plain<OffPegs>("Put Frame On the Pegs", 3, QTransform()),
        plain<SetActiveFrameAndLayer>("Change Active Frame", 1, 2, 0),
        plain<ChangeToolType>("Change tool type", 4, Tool::Type::Hand),
        plain<FloatingSelectionNew>("Create floating selection", -1, FloatingSelection()),
        plain<FloatingSelectionTransform>("Change floating selection", -1, FloatingSelection::Transform()),
        plain<AddAnnotation>("Add Annotation", -1, 1, QImage(2, 2, QImage::Format_Indexed8)),
        {"Change frame size", -1,
         [=](MRScene *scene, const QModelIndexList &) {
             return new ChangeFrameSize(nullptr, scene, {9, 9}, stretch);
         }},
        {"Change scene settings", -1,
         [=](MRScene *scene, const QModelIndexList &) {
             return new ChangeSceneSettings(nullptr, scene, {9, 9}, stretch, 50);
         }},
    };
}

std::vector<Row> layerRows()
{
    return {
        plain<NewLayer>("New Layer", -1, 1),
        plain<NewLayer>("New Paint Layer", -1, 2),
        plain<NewLayer>("New Reference Layer", -1, 3),
        plain<DuplicateLayer>("Duplicate Layer", -1, 0),
        plain<DiscardLayer>("Discard Layer", -1, 0),
        plain<RemoveLayer>("Remove Layer", -1, 0),
        plain<SwapLayer>("Swap Layer", -1, 0, std::make_shared<StrokeLayer>(Qt::red, TestSupport::stageFrame)),
        plain<MergeLayerDown>("Merge Layer Down", -1, 0),
        plain<MoveLayer>("Move Layer", -1, 0, 1),
        plain<RenameLayer>("Rename Layer", -1, 0, QStringLiteral("Ink")),
        plain<SetLayerVisible>("Set Layer Visible", -1, 0, true),
        plain<SetLayerVisible>("Set Layer Invisible", -1, 0, false),
        plain<SetLayerLinked>("Link Layer", -1, 0, true),
        plain<SetLayerLinked>("Unlink Layer", -1, 0, false),
        plain<SetAllLayersLinked>("Link All Layers", -1, true),
        plain<SetAllLayersLinked>("Unlink All Layers", -1, false),
        plain<SetLayerBeyondLast>("Show Nothing Beyond Last Drawing", -1, 0, Layer::ShowNothing),
        plain<SetLayerBeyondLast>("Freeze Last Drawing", -1, 0, Layer::FreezeLast),
        plain<SetLayerBeyondLast>("Cycle Drawings Beyond Last Drawing", -1, 0, Layer::CycleDrawings),
        plain<SetLayerBeyondLast>("Undefined", -1, 0, Layer::LayerBeyondLast(7)),
        plain<ChangeLayerOpacity>("Change Layer Opacity", 5, 0, 1.0, 0.5),
        plain<ChangeLayerColor>("Change Layer Color", -1, 0, QColor(Qt::red)),
    };
}

std::vector<Row> allRows()
{
    std::vector<Row> rows = cellRows();
    for (const auto &more : {sceneRows(), layerRows()})
        rows.insert(rows.end(), more.begin(), more.end());
    return rows;
}

} // namespace

Q_DECLARE_METATYPE(Maker)

/// What all commands have in common: their texts and numbers, and that they need a scene.
class tst_CommandTexts : public QObject
{
    Q_OBJECT

private slots:
    void textAndNumber_data() { commands_data(); }
    void textAndNumber();
    void withoutASceneItIsObsoleteAndDoesNothing_data() { commands_data(); }
    void withoutASceneItIsObsoleteAndDoesNothing();

private:
    static void commands_data();
};

void tst_CommandTexts::commands_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("id");
    QTest::addColumn<Maker>("make");
    for (const Row &row : allRows())
        QTest::newRow(row.text) << QString::fromLatin1(row.text) << row.id << row.make;
}

void tst_CommandTexts::textAndNumber()
{
    QFETCH(const QString, text);
    QFETCH(const int, id);
    QFETCH(const Maker, make);
    CommandStage stage({"A a", "B"});
    const std::unique_ptr<QUndoCommand> command(make(stage.mrScene(), stage.cells({1, 2})));
    QCOMPARE(command->text(), text);
    QCOMPARE(command->id(), id);
}

void tst_CommandTexts::withoutASceneItIsObsoleteAndDoesNothing()
{
    QFETCH(const Maker, make);
    CommandStage stage({"A a", "B"});
    const TestSupport::SceneSnapshot before = stage.snapshot();
    const std::unique_ptr<QUndoCommand> command(make(nullptr, stage.cells({1, 2})));
    QVERIFY(command->isObsolete());
    command->redo();
    command->undo();
    QCOMPARE(before.diff(stage.snapshot()), QString());
}

QTEST_MAIN(tst_CommandTexts)
#include "tst_commandtexts.moc"
