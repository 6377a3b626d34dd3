// Commands made with what they cannot use: obsolete at once or, where the scene has to be asked, when they run. They
// never reach the undo stack, do nothing and tell nobody.

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
#include "libcommands/stroke.h"
#include "libcommands/swaplayer.h"
#include "libcommands/turncloneintooriginal.h"
#include "libcommands/unmarkallkeydrawings.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/tools/toolmanager.h"
#include "support/sceneinvariants.h"
#include "support/scenesnapshot.h"

#include <QPainterPath>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QUndoStack>

#include <array>
#include <climits>
#include <functional>
#include <limits>

using namespace Commands;
using namespace Model;
using namespace TestSupport;

/// Makes a command for a scene, which may be null.
using Maker = std::function<QUndoCommand *(MRScene *)>;

namespace {

constexpr QSize frameSize(16, 12);
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// The layers of the stage.
constexpr int strokes = 0;  ///< original, clone, original, the last with a block of pixels
constexpr int pictures = 1; ///< original
constexpr int sound = 2;
constexpr int notes = 3;
constexpr int layers = 4;

std::unique_ptr<Model::Stroke> block()
{
    QImage coverage(QSize(3, 3), QImage::Format_Alpha8);
    coverage.fill(255);
    return std::make_unique<BitmapStroke>(coverage, QRect(1, 1, 3, 3));
}

/// Half of block() lies inside.
QPainterPath halfBlock()
{
    QPainterPath path;
    path.addRect(0, 0, 3, 12);
    return path;
}

void build(MRScene &mrScene)
{
    Scene &scene = *mrScene.scene();
    scene.setFrameSize(frameSize, MR::FitMode::FitModeIgnore);
    auto lines = std::make_shared<StrokeLayer>(Qt::black, frameSize);
    lines->insertCloneAfter(1);
    lines->insertBlankAfter(2);
    scene.insertLayer(lines, strokes);
    scene.addStroke(strokes, 3, block());
    scene.insertLayer(std::make_shared<ReferenceLayer>(frameSize), pictures);
    scene.insertLayer(std::make_shared<AudioLayer>(), sound);
    scene.insertLayer(std::make_shared<AnnotationLayer>(), notes);
    for (int layerIdx = 0; layerIdx < layers; ++layerIdx)
        scene.setLayerName(layerIdx, QString::number(layerIdx));
    scene.setFrameRange(1, 3, 3, strokes);
}

QByteArray number(int value)
{
    return value == INT_MIN ? "INT_MIN" : value == INT_MAX ? "INT_MAX" : QByteArray::number(value);
}

QModelIndex cell(MRScene *scene, int layerIdx, int frameId)
{
    return scene ? scene->sceneModel()->index(frameId - 1, layerIdx) : QModelIndex();
}

QImage note()
{
    QImage image(4, 3, QImage::Format_Indexed8);
    image.setColorTable(QList<QRgb>(256, 0));
    image.fill(9);
    return image;
}

/// \a atOnce: already the constructor has to see that there is nothing to do.
void add(const QByteArray &name, Maker make, bool atOnce = true)
{
    QTest::newRow(name.constData()) << std::move(make) << atOnce;
}

/// A command on cells, made for one cell (a selection of it, where there is no such form).
using CellMaker = std::function<QUndoCommand *(MRScene *, const QModelIndexList &)>;

template<class Command>
QUndoCommand *ofSelection(MRScene *scene, const QModelIndexList &cells)
{
    return new Command(scene, cells);
}

template<class Command>
QUndoCommand *ofCell(MRScene *scene, const QModelIndexList &cells)
{
    return new Command(scene, cells.value(0));
}

const QList<std::pair<const char *, CellMaker>> &cellMakers()
{
    static const QList<std::pair<const char *, CellMaker>> all{
        {"AddBlankDrawing", ofSelection<AddBlankDrawing>},
        {"AddBlankDrawing of a cell", ofCell<AddBlankDrawing>},
        {"AddCloneDrawings", [](MRScene *s, const QModelIndexList &i) { return new AddCloneDrawings(s, i, 1); }},
        {"AddCloneDrawings of a cell",
         [](MRScene *s, const QModelIndexList &i) { return new AddCloneDrawings(s, i.value(0), 1); }},
        {"InsertBlankDrawing", ofSelection<InsertBlankDrawing>},
        {"InsertBlankDrawing of a cell", ofCell<InsertBlankDrawing>},
        {"ClearDrawingMakingBlank", ofSelection<ClearDrawingMakingBlank>},
        {"ClearDrawingMakingBlank of a cell", ofCell<ClearDrawingMakingBlank>},
        {"LoseDrawingMakingHold", ofSelection<LoseDrawingMakingHold>},
        {"LoseDrawingMakingHold of a cell", ofCell<LoseDrawingMakingHold>},
        {"DiscardDrawing", ofSelection<DiscardDrawing>},
        {"DiscardDrawing of a cell", ofCell<DiscardDrawing>},
        {"DeleteCloneDrawing", ofSelection<DeleteCloneDrawing>},
        {"DeleteCloneDrawing of a cell", ofCell<DeleteCloneDrawing>},
        {"CloneEachSelectedDrawingOnce", ofSelection<CloneEachSelectedDrawingOnce>},
        {"CycleSelectedDrawingsOnce", ofSelection<CycleSelectedDrawingsOnce>},
        {"TurnCloneIntoOriginal", ofSelection<TurnCloneIntoOriginal>},
        {"TurnCloneIntoOriginal of a cell", ofCell<TurnCloneIntoOriginal>},
        {"CutPath", [](MRScene *s, const QModelIndexList &i) { return new CutPath(s, i.value(0), halfBlock()); }},
        {"CollapseVectorData",
         [](MRScene *s, const QModelIndexList &i) { return new CollapseVectorData(s, i.value(0), nullptr); }},
        {"Stroke", [](MRScene *s, const QModelIndexList &i) { return new Commands::Stroke(s, i, block(), nullptr); }},
        {"Stroke of a cell",
         [](MRScene *s, const QModelIndexList &i) { return new Commands::Stroke(s, i.value(0), block()); }},
    };
    return all;
}

void addCellRows()
{
    for (const auto &[name, make] : cellMakers()) {
        const auto row = [&name = name, &make = make](const char *which,
                                                      std::function<QModelIndexList(MRScene *)> cells) {
            add(QByteArray(name) + ", " + which, [make, cells](MRScene *scene) { return make(scene, cells(scene)); });
        };
        row("no cells", [](MRScene *) { return QModelIndexList(); });
        row("an invalid index", [](MRScene *) { return QModelIndexList{QModelIndex()}; });
        row("cells of other columns", [](MRScene *s) {
            return QModelIndexList{cell(s, notes, 1), cell(s, sound, 1), cell(s, notes, INT_MAX)};
        });
        row("rows far off", [](MRScene *s) {
            return QModelIndexList{cell(s, strokes, INT_MIN + 1), cell(s, strokes, 0), cell(s, strokes, INT_MAX),
                                   cell(s, layers, 1), cell(s, -1, 1)};
        });
        row("an index of another model", [](MRScene *) {
            static QStandardItemModel other(5, 5);
            return QModelIndexList{other.index(0, 0), other.index(2, 0)};
        });
        row("an index of another scene", [](MRScene *) {
            static MRScene other;
            if (other.scene()->layerCount() == 0)
                build(other);
            return QModelIndexList{cell(&other, strokes, 2)};
        });
    }
    // Behind the last cell nothing can be taken away or changed; what is inserted there comes last, and a stroke makes
    // no cells.
    for (const auto &[name, make] : cellMakers()) {
        const QByteArray start(name);
        if (start.startsWith("Insert"))
            continue;
        add(start + ", behind the last cell",
            [make = make](MRScene *scene) { return make(scene, {cell(scene, strokes, 4)}); });
    }
    add("LoseDrawingMakingHold, frame 1", [](MRScene *s) { return new LoseDrawingMakingHold(s, cell(s, strokes, 1)); });
    add("DeleteCloneDrawing, an original", [](MRScene *s) {
        return new DeleteCloneDrawing(s, QModelIndexList{cell(s, strokes, 1), cell(s, strokes, 3)});
    });
    add("TurnCloneIntoOriginal, an original",
        [](MRScene *s) { return new TurnCloneIntoOriginal(s, cell(s, strokes, 1)); });
    for (const int count : {INT_MIN, -1, 0}) {
        add("AddCloneDrawings, count " + number(count),
            [=](MRScene *s) { return new AddCloneDrawings(s, cell(s, strokes, 1), count); });
        add("AddCloneDrawings of a selection, count " + number(count),
            [=](MRScene *s) { return new AddCloneDrawings(s, QModelIndexList{cell(s, strokes, 1)}, count); });
        add("DiscardCloneDrawings, count " + number(count),
            [=](MRScene *s) { return new DiscardCloneDrawings(s, count); });
    }
    add(
        "AddCloneDrawings, count INT_MAX",
        [](MRScene *s) { return new AddCloneDrawings(s, cell(s, strokes, 1), INT_MAX); }, false);
    add("CollapseVectorData, a blank",
        [](MRScene *s) { return new CollapseVectorData(s, cell(s, strokes, 1), nullptr); });
    add("CollapseVectorData, a picture",
        [](MRScene *s) { return new CollapseVectorData(s, cell(s, pictures, 1), nullptr); });
    add(
        "CutPath, a blank", [](MRScene *s) { return new CutPath(s, cell(s, strokes, 1), halfBlock()); }, false);
    add(
        "CutPath, a picture", [](MRScene *s) { return new CutPath(s, cell(s, pictures, 1), halfBlock()); }, false);
    add(
        "CutPath, no path", [](MRScene *s) { return new CutPath(s, cell(s, strokes, 3), QPainterPath()); }, false);
    add("FloatingSelectionNew, none for none",
        [](MRScene *s) { return new FloatingSelectionNew(s, FloatingSelection()); });
    add("FloatingSelectionTransform of nothing", [](MRScene *s) {
        return new FloatingSelectionTransform(s, {QTransform(), QTransform(), QTransform::fromTranslate(1, 2), {}});
    });
    add("Stroke, none", [](MRScene *s) { return new Commands::Stroke(s, cell(s, strokes, 1), nullptr); });
    add("Stroke, a picture", [](MRScene *s) { return new Commands::Stroke(s, cell(s, pictures, 1), block()); });
}

void addSceneRows()
{
    add("MarkAsKeyDrawing as it is", [](MRScene *s) { return new MarkAsKeyDrawing(s, false); });
    add("UnmarkAllKeyDrawings without any", [](MRScene *s) { return new UnmarkAllKeyDrawings(s); });
    const QList<std::array<int, 3>> offsets{
        {0, 0, 0}, {1, 0, 0}, {INT_MIN, INT_MIN, 0}, {0, INT_MIN, INT_MAX}, {0, 1, -1}, {INT_MAX, 0, INT_MAX},
        {2, -1, 1}};
    for (const auto &o : offsets)
        add(
            "SlideOriginalDrawing by " + number(o[0]) + ", extremes " + number(o[1]) + " and " + number(o[2]),
            [=](MRScene *s) { return new SlideOriginalDrawing(s, o[0], o[1], o[2]); }, o == std::array{0, 0, 0});
    add("SetFrameRange as it is", [](MRScene *s) { return new SetFrameRange(s, 1, 3, 3, strokes); });
    add(
        "SetFrameRange upside down", [](MRScene *s) { return new SetFrameRange(s, 3, 2, 3, strokes); }, false);
    add(
        "SetFrameRange far upside down", [](MRScene *s) { return new SetFrameRange(s, INT_MAX, INT_MIN, 3, strokes); },
        false);
    add("SetFrameRate as it is", [](MRScene *s) { return new SetFrameRate(s, s ? s->scene()->frameRate() : 12); });
    add("OffPegs of what is on them", [](MRScene *s) { return new OffPegs(s, QTransform()); });
    add("OffPegs to a line", [](MRScene *s) { return new OffPegs(s, QTransform::fromScale(0, 1)); });
    add("OffPegs to nowhere", [](MRScene *s) { return new OffPegs(s, QTransform(1, 0, 0, 1, notANumber, 0)); });
    add("SetFrameRate, no number", [](MRScene *s) { return new SetFrameRate(s, notANumber); });
    for (const QSize size : {QSize(), QSize(0, 5), QSize(-1, 5), QSize(INT_MIN, INT_MIN), QSize(5, 32769), frameSize})
        add("ChangeFrameSize to " + number(size.width()) + " x " + number(size.height()),
            [=](MRScene *s) { return new ChangeFrameSize(nullptr, s, size, MR::FitMode::FitModeStretch); });
    add("ChangeSceneSettings to what cannot be", [](MRScene *s) {
        return new ChangeSceneSettings(nullptr, s, QSize(), MR::FitMode::FitModeStretch, notANumber);
    });
    for (const int frameId : {INT_MIN, -1, 0})
        add(
            "SetActiveFrameAndLayer at frame " + number(frameId),
            [=](MRScene *s) { return new SetActiveFrameAndLayer(s, frameId, strokes); }, false);
    for (const int layerIdx : {INT_MIN, -1, sound, notes, layers, INT_MAX})
        add(
            "SetActiveFrameAndLayer to layer " + number(layerIdx),
            [=](MRScene *s) { return new SetActiveFrameAndLayer(s, 1, layerIdx, Scene::AllowFrameAfterLast); }, false);
    add(
        "SetActiveFrameAndLayer as it is", [](MRScene *s) { return new SetActiveFrameAndLayer(s, 3, strokes); }, false);
    add("SetActiveFrameAndLayer as it is, behind the last or not",
        [](MRScene *s) { return new SetActiveFrameAndLayer(s, 3, strokes, Scene::AllowFrameAfterLast); });
    for (const int frameId : {INT_MIN, -1, 0, INT_MAX}) {
        add("AddAnnotation at frame " + number(frameId),
            [=](MRScene *s) { return new AddAnnotation(s, frameId, note()); });
    }
    add(
        "AddAnnotation of a picture",
        [](MRScene *s) { return new AddAnnotation(s, 1, QImage(4, 3, QImage::Format_RGB32)); }, false);
    add("AddAnnotation of nothing to nothing", [](MRScene *s) { return new AddAnnotation(s, 1, QImage()); });
    add("SetAllLayersLinked as they are", [](MRScene *s) { return new SetAllLayersLinked(s, false); });
    for (const int type : {INT_MIN, -1, 0, int(Layer::Paint), int(Layer::Audio), int(Layer::Annotation), INT_MAX})
        add("NewLayer of type " + number(type), [=](MRScene *s) { return new NewLayer(s, type); });
    add("ChangeToolType as it is",
        [](MRScene *s) { return new ChangeToolType(s, ToolManager::instance()->currentToolType()); });
}

void addLayerRows()
{
    for (const int layerIdx : {INT_MIN, -1, layers, INT_MAX}) {
        const QByteArray of = " of layer " + number(layerIdx);
        add("DiscardLayer" + of, [=](MRScene *s) { return new DiscardLayer(s, layerIdx); });
        add("SwapLayer" + of, [=](MRScene *s) { return new SwapLayer(s, layerIdx, std::make_shared<AudioLayer>()); });
        add("MoveLayer" + of, [=](MRScene *s) { return new MoveLayer(s, layerIdx, 1); });
        add("MoveLayer to place " + number(layerIdx), [=](MRScene *s) { return new MoveLayer(s, strokes, layerIdx); });
        add("RenameLayer" + of, [=](MRScene *s) { return new RenameLayer(s, layerIdx, QStringLiteral("x")); });
        add("SetLayerLinked" + of, [=](MRScene *s) { return new SetLayerLinked(s, layerIdx, true); });
    }
    for (const int layerIdx : {INT_MIN, -1, sound, notes, layers, INT_MAX}) {
        const QByteArray of = " of layer " + number(layerIdx);
        add("DuplicateLayer" + of, [=](MRScene *s) { return new DuplicateLayer(s, layerIdx); });
        add("RemoveLayer" + of, [=](MRScene *s) { return new RemoveLayer(s, layerIdx); });
        add("MergeLayerDown" + of, [=](MRScene *s) { return new MergeLayerDown(s, layerIdx); });
        add("SetLayerVisible" + of, [=](MRScene *s) { return new SetLayerVisible(s, layerIdx, false); });
        add("SetLayerBeyondLast" + of,
            [=](MRScene *s) { return new SetLayerBeyondLast(s, layerIdx, Layer::FreezeLast); });
        add("ChangeLayerOpacity" + of, [=](MRScene *s) { return new ChangeLayerOpacity(s, layerIdx, 1.0, 0.5); });
        add("ChangeLayerColor" + of, [=](MRScene *s) { return new ChangeLayerColor(s, layerIdx, Qt::red); });
    }
    add("DiscardLayer of the notes", [](MRScene *s) { return new DiscardLayer(s, notes); });
    add("SwapLayer by null", [](MRScene *s) { return new SwapLayer(s, strokes, nullptr); });
    add("SwapLayer by itself",
        [](MRScene *s) { return new SwapLayer(s, strokes, s ? s->scene()->layerPtr(strokes) : nullptr); });
    add("MergeLayerDown onto another kind", [](MRScene *s) { return new MergeLayerDown(s, strokes); });
    add("MergeLayerDown of the lowest", [](MRScene *s) { return new MergeLayerDown(s, pictures); });
    add("RenameLayer as it is", [](MRScene *s) { return new RenameLayer(s, strokes, QStringLiteral("0")); });
    add("SetLayerVisible as it is", [](MRScene *s) { return new SetLayerVisible(s, strokes, true); });
    add("SetLayerLinked as it is", [](MRScene *s) { return new SetLayerLinked(s, strokes, false); });
    for (const int mode : {INT_MIN, 0, int(Layer::ShowNothing), 4, INT_MAX})
        add("SetLayerBeyondLast to " + number(mode),
            [=](MRScene *s) { return new SetLayerBeyondLast(s, strokes, Layer::LayerBeyondLast(mode)); });
    add("ChangeLayerOpacity to no number",
        [](MRScene *s) { return new ChangeLayerOpacity(s, strokes, 1.0, notANumber); });
    add("ChangeLayerOpacity as it is", [](MRScene *s) { return new ChangeLayerOpacity(s, strokes, 1.0, 7.5); });
    add("ChangeLayerColor to none", [](MRScene *s) { return new ChangeLayerColor(s, strokes, QColor()); });
    add("ChangeLayerColor as it is", [](MRScene *s) { return new ChangeLayerColor(s, strokes, Qt::black); });
    add("ChangeLayerColor of pictures", [](MRScene *s) { return new ChangeLayerColor(s, pictures, Qt::red); });
}

/// Commands that would do something, but for the scene.
const QList<std::pair<const char *, Maker>> &usefulMakers()
{
    static const QList<std::pair<const char *, Maker>> others{
        {"DiscardCloneDrawings", [](MRScene *s) { return new DiscardCloneDrawings(s, 1); }},
        {"MarkAsKeyDrawing", [](MRScene *s) { return new MarkAsKeyDrawing(s, true); }},
        {"SlideOriginalDrawing", [](MRScene *s) { return new SlideOriginalDrawing(s, -1, -1, 0); }},
        {"SetFrameRange", [](MRScene *s) { return new SetFrameRange(s, 1, 2, 1, strokes); }},
        {"SetFrameRate", [](MRScene *s) { return new SetFrameRate(s, 33); }},
        {"OffPegs", [](MRScene *s) { return new OffPegs(s, QTransform::fromTranslate(1, 2)); }},
        {"ChangeFrameSize",
         [](MRScene *s) { return new ChangeFrameSize(nullptr, s, QSize(9, 9), MR::FitMode::FitModeStretch); }},
        {"ChangeSceneSettings",
         [](MRScene *s) { return new ChangeSceneSettings(nullptr, s, QSize(9, 9), MR::FitMode::FitModeStretch, 33); }},
        {"SetActiveFrameAndLayer", [](MRScene *s) { return new SetActiveFrameAndLayer(s, 1, strokes); }},
        {"ChangeToolType", [](MRScene *s) { return new ChangeToolType(s, Tool::Type::Hand); }},
        {"FloatingSelectionNew",
         [](MRScene *s) { return new FloatingSelectionNew(s, FloatingSelection(block(), frameSize)); }},
        {"AddAnnotation", [](MRScene *s) { return new AddAnnotation(s, 1, note()); }},
        {"NewLayer", [](MRScene *s) { return new NewLayer(s, Layer::Stroke); }},
        {"DuplicateLayer", [](MRScene *s) { return new DuplicateLayer(s, strokes); }},
        {"DiscardLayer", [](MRScene *s) { return new DiscardLayer(s, strokes); }},
        {"RemoveLayer", [](MRScene *s) { return new RemoveLayer(s, strokes); }},
        {"SwapLayer",
         [](MRScene *s) { return new SwapLayer(s, strokes, std::make_shared<StrokeLayer>(Qt::red, frameSize)); }},
        {"MoveLayer", [](MRScene *s) { return new MoveLayer(s, strokes, 1); }},
        {"RenameLayer", [](MRScene *s) { return new RenameLayer(s, strokes, QStringLiteral("x")); }},
        {"SetLayerVisible", [](MRScene *s) { return new SetLayerVisible(s, strokes, false); }},
        {"SetLayerLinked", [](MRScene *s) { return new SetLayerLinked(s, strokes, true); }},
        {"SetAllLayersLinked", [](MRScene *s) { return new SetAllLayersLinked(s, true); }},
        {"SetLayerBeyondLast", [](MRScene *s) { return new SetLayerBeyondLast(s, strokes, Layer::FreezeLast); }},
        {"ChangeLayerOpacity", [](MRScene *s) { return new ChangeLayerOpacity(s, strokes, 1.0, 0.5); }},
        {"ChangeLayerColor", [](MRScene *s) { return new ChangeLayerColor(s, strokes, Qt::red); }},
    };
    static const QList<std::pair<const char *, Maker>> all = [] {
        auto makers = others;
        for (const auto &[name, make] : cellMakers()) {
            // Frame 3 is an original behind a hold, frame 2 that hold.
            const bool wantsClone = QByteArray(name).startsWith("Turn") || QByteArray(name).startsWith("Delete");
            makers.append({name, [make = make, wantsClone](MRScene *s) {
                               return make(s, {cell(s, strokes, wantsClone ? 2 : 3)});
                           }});
        }
        return makers;
    }();
    return all;
}

} // namespace

class tst_CommandBadInput : public QObject
{
    Q_OBJECT

private slots:
    void isRefusedWithoutEffect_data();
    void isRefusedWithoutEffect();
    void withoutASceneIsObsolete_data();
    void withoutASceneIsObsolete();
    void outlivesItsScene_data();
    void outlivesItsScene();
};

void tst_CommandBadInput::isRefusedWithoutEffect_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<bool>("atOnce");
    addCellRows();
    addSceneRows();
    addLayerRows();
}

void tst_CommandBadInput::isRefusedWithoutEffect()
{
    QFETCH(Maker, make);
    MRScene mrScene;
    build(mrScene);
    QCOMPARE(brokenInvariant(*mrScene.scene()), QString());
    MRScene::setCurrent(&mrScene);
    const SceneSnapshot before(*mrScene.scene());
    QUndoStack &stack = *mrScene.scene()->undoStack();
    const QSignalSpy layouts(mrScene.sceneModel(), &QAbstractItemModel::layoutChanged);
    const QSignalSpy pictures(mrScene.scene(), &Scene::rectChanged);
    const QSignalSpy drawings(mrScene.scene(), &Scene::drawingsChanged);
    const QSignalSpy positions(mrScene.scene(), &Scene::activeFrameAndLayerChanged);
    const QSignalSpy ranges(mrScene.scene(), &Scene::frameRangeChanged);

    QFETCH(const bool, atOnce);
    if (atOnce) {
        QVERIFY(isRefused(mrScene, make(&mrScene)));
    } else {
        MRScene::pushCommand(make(&mrScene));
        QCOMPARE(stack.count(), 0);
        QVERIFY(stack.isClean());
    }
    QCOMPARE(before.diff(SceneSnapshot(*mrScene.scene())), QString());

    // Nor does it do anything for somebody who does not ask whether it is obsolete.
    const std::unique_ptr<QUndoCommand> command(make(&mrScene));
    command->redo();
    QVERIFY(command->isObsolete());
    command->undo();
    QCOMPARE(before.diff(SceneSnapshot(*mrScene.scene())), QString());
    QCOMPARE(layouts.size() + pictures.size() + drawings.size() + positions.size() + ranges.size(), 0);
}

void tst_CommandBadInput::withoutASceneIsObsolete_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<bool>("atOnce");
    for (const auto &[name, make] : usefulMakers())
        add(name, make);
    add("UnmarkAllKeyDrawings", [](MRScene *s) { return new UnmarkAllKeyDrawings(s); });
    add("MergeLayerDown", [](MRScene *s) { return new MergeLayerDown(s, strokes); });
}

void tst_CommandBadInput::withoutASceneIsObsolete()
{
    QFETCH(Maker, make);
    const std::unique_ptr<QUndoCommand> command(make(nullptr));
    QVERIFY(command->isObsolete());
    command->redo();
    command->undo();
    QVERIFY(command->isObsolete());
}

void tst_CommandBadInput::outlivesItsScene_data()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<bool>("atOnce");
    for (const auto &[name, make] : usefulMakers())
        add(name, make);
}

void tst_CommandBadInput::outlivesItsScene()
{
    QFETCH(Maker, make);
    const Tool::Type tool = ToolManager::instance()->currentToolType();
    auto mrScene = std::make_unique<MRScene>();
    build(*mrScene);
    const std::unique_ptr<QUndoCommand> untouched(make(mrScene.get()));
    const std::unique_ptr<QUndoCommand> done(make(mrScene.get()));
    QVERIFY2(!untouched->isObsolete(), "the command would not have done anything anyway");
    done->redo();
    QVERIFY2(!done->isObsolete(), "the command did not do anything");
    mrScene.reset();
    untouched->redo();
    untouched->undo();
    done->undo();
    done->redo();
    ToolManager::instance()->setCurrentTool(tool, 0);
}

QTEST_MAIN(tst_CommandBadInput)
#include "tst_commandbadinput.moc"
