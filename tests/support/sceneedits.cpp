#include "support/sceneedits.h"

#include "libcommands/addannotation.h"
#include "libcommands/addblankdrawing.h"
#include "libcommands/addclonedrawings.h"
#include "libcommands/changeframesize.h"
#include "libcommands/changelayercolor.h"
#include "libcommands/changelayeropacity.h"
#include "libcommands/changescenesettings.h"
#include "libcommands/cleardrawingmakingblank.h"
#include "libcommands/cloneeachselecteddrawingonce.h"
#include "libcommands/cycleselecteddrawingsonce.h"
#include "libcommands/deleteclonedrawing.h"
#include "libcommands/discardclonedrawings.h"
#include "libcommands/discarddrawing.h"
#include "libcommands/discardlayer.h"
#include "libcommands/duplicatelayer.h"
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
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/drawing.h"
#include "libmodel/strokes/stroke.h"
#include "support/pickupedits.h"
#include "support/scenegenerator.h"
#include "support/sceneoperation.h"

#include <algorithm>
#include <numeric>

using namespace Model;

namespace TestSupport {

namespace {

constexpr int mostLayers = 9;
constexpr int mostFrames = 14;

/// A place in the scene.
struct Cell
{
    int layerIdx;
    int frameId;
};

QString text(const Cell &cell)
{
    return QStringLiteral("%1/%2").arg(cell.layerIdx).arg(cell.frameId);
}

int randomLayer(const Scene &scene, RandomNumbers &random)
{
    return random.between(0, scene.layerCount() - 1);
}

int randomVisualLayer(const Scene &scene, RandomNumbers &random)
{
    int layerIdx = randomLayer(scene, random);
    while (!scene.visualLayer(layerIdx))
        layerIdx = (layerIdx + 1) % scene.layerCount();
    return layerIdx;
}

Cell randomCell(const Scene &scene, RandomNumbers &random)
{
    const int layerIdx = randomVisualLayer(scene, random);
    return {layerIdx, random.between(1, scene.lastFrame(layerIdx))};
}

bool isLarge(const Scene &scene)
{
    return scene.maximumFrameNumber() > mostFrames;
}

/// The cell as an index of the range's model or, half of the time and outside of the range, of the scene's.
QModelIndex indexOf(const MRScene &mrScene, const Cell &cell, RandomNumbers &random)
{
    const QModelIndex index = mrScene.sceneModel()->index(cell.frameId - 1, cell.layerIdx);
    if (random.chance(50))
        return index;
    const QModelIndex inRange = mrScene.frameRangeModel()->mapFromSource(index);
    return inRange.isValid() ? inRange : index;
}

/// What a user would select: a run of one layer, a block over several, or cells here and there. Now and then with
/// positions that are none: just behind a layer, or far behind a short one.
QList<Cell> randomCells(const Scene &scene, RandomNumbers &random)
{
    const Cell start = randomCell(scene, random);
    const int layers = random.chance(70) ? 1 : random.between(1, 3);
    const int frames = random.between(1, 4);
    const int density = random.chance(60) ? 100 : 60;
    int behind = random.chance(15) ? 1 : 0;
    if (random.chance(5))
        behind = random.between(2, frames + 1);
    QList<Cell> cells;
    for (int layerIdx = start.layerIdx; layerIdx < std::min(start.layerIdx + layers, scene.layerCount()); ++layerIdx) {
        const int last = std::min(start.frameId + frames - 1, scene.lastFrame(layerIdx) + behind);
        for (int frameId = start.frameId; frameId <= last; ++frameId) {
            if (random.chance(density))
                cells.append({layerIdx, frameId});
        }
    }
    if (cells.isEmpty())
        cells.append(start);
    return cells;
}

struct Selection
{
    QModelIndexList indexes;
    QString arguments;
};

Selection randomSelection(const MRScene &mrScene, RandomNumbers &random)
{
    Selection selection;
    for (const Cell &cell : randomCells(*mrScene.scene(), random)) {
        selection.indexes.append(indexOf(mrScene, cell, random));
        selection.arguments += text(cell) + ' ';
    }
    // The order of selecting has no say.
    if (random.chance(30))
        std::reverse(selection.indexes.begin(), selection.indexes.end());
    return selection;
}

template<class Command, class... Arguments>
Edit command(const QString &arguments, Arguments &&...args)
{
    return {std::make_unique<Command>(std::forward<Arguments>(args)...), arguments};
}

Edit operation(Scene *scene, const QString &arguments, SceneOperation::Operation perform)
{
    return {std::make_unique<SceneOperation>(scene, std::move(perform)), arguments};
}

/// A command for a selection or, now and then, for a single cell.
template<class Command>
Edit cellEdit(MRScene &mrScene, RandomNumbers &random)
{
    if (random.chance(30)) {
        const Cell cell = randomCell(*mrScene.scene(), random);
        return command<Command>(text(cell), &mrScene, indexOf(mrScene, cell, random));
    }
    const Selection selection = randomSelection(mrScene, random);
    return command<Command>(selection.arguments, &mrScene, selection.indexes);
}

template<class Command>
Edit growingCellEdit(MRScene &mrScene, RandomNumbers &random)
{
    return isLarge(*mrScene.scene()) ? Edit() : cellEdit<Command>(mrScene, random);
}

template<class Command>
Edit growingSelectionEdit(MRScene &mrScene, RandomNumbers &random)
{
    if (isLarge(*mrScene.scene()))
        return {};
    const Selection selection = randomSelection(mrScene, random);
    return command<Command>(selection.arguments, &mrScene, selection.indexes);
}

Edit addCloneDrawings(MRScene &mrScene, RandomNumbers &random)
{
    if (isLarge(*mrScene.scene()))
        return {};
    const int count = random.between(1, 3);
    const QString suffix = QStringLiteral("count %1").arg(count);
    if (random.chance(30)) {
        const Cell cell = randomCell(*mrScene.scene(), random);
        return command<Commands::AddCloneDrawings>(text(cell) + ' ' + suffix, &mrScene, indexOf(mrScene, cell, random),
                                                   count);
    }
    const Selection selection = randomSelection(mrScene, random);
    return command<Commands::AddCloneDrawings>(selection.arguments + suffix, &mrScene, selection.indexes, count);
}

/// Offsets of a drag: mostly such as the clones around allow, now and then any.
struct Offsets
{
    int offset;
    int lowest;
    int highest;
    [[nodiscard]] QString text() const
    {
        return QStringLiteral(" by %1, extremes %2 and %3").arg(offset).arg(lowest).arg(highest);
    }
};

Offsets randomOffsets(const Scene &scene, const Cell &cell, RandomNumbers &random)
{
    int before = 3;
    int behind = 3;
    if (random.chance(80)) {
        before = 0;
        behind = 0;
        for (int frameId = 1; frameId <= scene.lastFrame(cell.layerIdx); ++frameId) {
            if (scene.item(cell.layerIdx, frameId)->isClone())
                ++(frameId < cell.frameId ? before : behind);
        }
    }
    const int lowest = -random.between(0, before);
    const int highest = random.between(0, behind);
    return {random.between(lowest, highest), lowest, highest};
}

Edit slideOperation(MRScene &mrScene, RandomNumbers &random)
{
    const Cell cell = randomCell(*mrScene.scene(), random);
    const Offsets o = randomOffsets(*mrScene.scene(), cell, random);
    return operation(mrScene.scene(), text(cell) + o.text(), [=](Scene &scene) {
        return scene.slideOriginalDrawing(cell.layerIdx, cell.frameId, o.offset, o.lowest, o.highest);
    });
}

Edit slideCommand(MRScene &mrScene, RandomNumbers &random)
{
    const Scene &scene = *mrScene.scene();
    const Cell cell{scene.activeLayerIdx(), scene.activeFrame()};
    const auto item = scene.item(cell.layerIdx, cell.frameId);
    if (!item || item->isClone())
        return {};
    const Offsets o = randomOffsets(scene, cell, random);
    return command<Commands::SlideOriginalDrawing>(o.text(), &mrScene, o.offset, o.lowest, o.highest);
}

Edit makeDistantClone(MRScene &mrScene, RandomNumbers &random)
{
    const Cell cell = randomCell(*mrScene.scene(), random);
    const Cell shown = randomCell(*mrScene.scene(), random);
    const CellRef origin = mrScene.scene()->originOfFrame(shown.layerIdx, shown.frameId);
    const bool blocked = random.chance(20);
    return operation(
        mrScene.scene(), text(cell) + " of what " + text(shown) + (blocked ? " shows, quietly" : " shows"),
        [=](Scene &scene) { return scene.makeDistantClone(cell.layerIdx, cell.frameId, origin, blocked); });
}

Edit replaceDrawing(MRScene &mrScene, RandomNumbers &random, bool updateDistantClones)
{
    const Cell cell = randomCell(*mrScene.scene(), random);
    const std::shared_ptr<Drawing> drawing = randomDrawing(*mrScene.scene()->visualLayer(cell.layerIdx), random);
    const bool blocked = random.chance(20);
    return operation(mrScene.scene(), text(cell) + (blocked ? " quietly" : ""), [=](Scene &scene) {
        return scene.replaceDrawing(cell.layerIdx, cell.frameId, drawing, updateDistantClones, blocked);
    });
}

/// An operation on one cell and nothing else.
template<class Operation>
std::function<Edit(MRScene &, RandomNumbers &)> cellOperation(Operation perform, bool grows = false, int lowest = 1)
{
    return [=](MRScene &mrScene, RandomNumbers &random) -> Edit {
        if (grows && isLarge(*mrScene.scene()))
            return {};
        Cell cell = randomCell(*mrScene.scene(), random);
        if (lowest == 0 && random.chance(15))
            cell.frameId = 0;
        return operation(mrScene.scene(), text(cell),
                         [=](Scene &scene) { return perform(scene, cell.layerIdx, cell.frameId); });
    };
}

template<class Operation>
std::function<Edit(MRScene &, RandomNumbers &)> countedOperation(Operation perform, bool grows)
{
    return [=](MRScene &mrScene, RandomNumbers &random) -> Edit {
        if (grows && isLarge(*mrScene.scene()))
            return {};
        const Cell cell = randomCell(*mrScene.scene(), random);
        const int count = random.between(1, 4);
        return operation(mrScene.scene(), text(cell) + QStringLiteral(" count %1").arg(count),
                         [=](Scene &scene) { return perform(scene, cell.layerIdx, cell.frameId, count); });
    };
}

Edit markAsKeyDrawing(MRScene &mrScene, RandomNumbers &random)
{
    const bool on = random.chance(60);
    return command<Commands::MarkAsKeyDrawing>(on ? QStringLiteral("on") : QStringLiteral("off"), &mrScene, on);
}

Edit setFrameRange(MRScene &mrScene, RandomNumbers &random)
{
    const Scene &scene = *mrScene.scene();
    const int lower = random.between(1, scene.maximumFrameNumber());
    const int upper = random.between(lower, scene.maximumFrameNumber());
    const bool stays = random.chance(50);
    const int layerIdx = stays ? scene.activeLayerIdx() : randomLayer(scene, random);
    const int frameId = stays ? scene.activeFrame() : random.between(1, scene.maximumFrameNumber() + 1);
    return command<Commands::SetFrameRange>(
        QStringLiteral("%1 to %2, wanted %3/%4").arg(lower).arg(upper).arg(layerIdx).arg(frameId), &mrScene, lower,
        upper, frameId, layerIdx);
}

double randomRate(RandomNumbers &random)
{
    return random.oneOf(QList<double>{6, 12, 12.5, 15, 24, 25, 30, 60, 200, 0.01});
}

QSize randomSize(RandomNumbers &random)
{
    return random.oneOf(QList<QSize>{{16, 12}, {20, 10}, {9, 14}});
}

MR::FitMode randomFitMode(RandomNumbers &random)
{
    return MR::FitMode(random.between(int(MR::FitMode::FitModeStretch), int(MR::FitMode::FitModeIgnore)));
}

Edit setFrameRate(MRScene &mrScene, RandomNumbers &random)
{
    const double rate = randomRate(random);
    return command<Commands::SetFrameRate>(QString::number(rate), &mrScene, rate);
}

Edit offPegs(MRScene &mrScene, RandomNumbers &random)
{
    const int dx = random.between(-2, 2);
    const int degrees = random.oneOf(QList<int>{0, 0, 30});
    return command<Commands::OffPegs>(QStringLiteral("%1 right, turned by %2").arg(dx).arg(degrees), &mrScene,
                                      QTransform::fromTranslate(dx, 0).rotate(degrees));
}

Edit changeFrameSize(MRScene &mrScene, RandomNumbers &random)
{
    const QSize size = randomSize(random);
    const MR::FitMode mode = randomFitMode(random);
    return command<Commands::ChangeFrameSize>(
        QStringLiteral("%1 x %2, mode %3").arg(size.width()).arg(size.height()).arg(int(mode)), nullptr, &mrScene, size,
        mode);
}

Edit changeSceneSettings(MRScene &mrScene, RandomNumbers &random)
{
    const QSize size = randomSize(random);
    const MR::FitMode mode = randomFitMode(random);
    const double rate = randomRate(random);
    return command<Commands::ChangeSceneSettings>(
        QStringLiteral("%1 x %2, mode %3, rate %4").arg(size.width()).arg(size.height()).arg(int(mode)).arg(rate),
        nullptr, &mrScene, size, mode, rate);
}

Edit setActiveFrameAndLayer(MRScene &mrScene, RandomNumbers &random)
{
    const Scene &scene = *mrScene.scene();
    const int layerIdx = random.chance(50) ? scene.activeLayerIdx() : randomLayer(scene, random);
    const int frameId = random.between(1, scene.lastFrame(layerIdx) + 2);
    const auto behaviour = random.chance(50) ? Scene::AllowFrameAfterLast : Scene::KeepFrameOnDrawing;
    return command<Commands::SetActiveFrameAndLayer>(text({layerIdx, frameId}) +
                                                         QStringLiteral(" behaviour %1").arg(int(behaviour)),
                                                     &mrScene, frameId, layerIdx, behaviour);
}

Edit newLayer(MRScene &mrScene, RandomNumbers &random)
{
    const Scene &scene = *mrScene.scene();
    if (scene.layerCount() >= mostLayers)
        return {};
    const int type = random.chance(70) ? Layer::Stroke : Layer::Reference;
    const int place = random.between(-1, scene.layerCount() - 1);
    return command<Commands::NewLayer>(QStringLiteral("type %1, place %2").arg(type).arg(place), &mrScene, type, place);
}

/// A command on one layer of any kind.
template<class Command>
Edit layerEdit(MRScene &mrScene, RandomNumbers &random)
{
    const int layerIdx = randomLayer(*mrScene.scene(), random);
    return command<Command>(QString::number(layerIdx), &mrScene, layerIdx);
}

Edit duplicateLayer(MRScene &mrScene, RandomNumbers &random)
{
    return mrScene.scene()->layerCount() >= mostLayers ? Edit() : layerEdit<Commands::DuplicateLayer>(mrScene, random);
}

std::shared_ptr<Layer> layerLike(const Layer &layer, QSize frameSize, RandomNumbers &random)
{
    if (layer.layerType() == Layer::Audio)
        return std::make_shared<AudioLayer>();
    if (layer.layerType() == Layer::Annotation)
        return std::make_shared<AnnotationLayer>();
    auto strokes = std::make_shared<StrokeLayer>(Qt::green, frameSize);
    const int cells = random.between(1, 4);
    while (strokes->numFrames() < cells)
        strokes->insertBlankAfter(strokes->numFrames());
    return strokes;
}

Edit swapLayer(MRScene &mrScene, RandomNumbers &random)
{
    const Scene &scene = *mrScene.scene();
    const int layerIdx = randomLayer(scene, random);
    return command<Commands::SwapLayer>(QString::number(layerIdx), &mrScene, layerIdx,
                                        layerLike(*scene.layer(layerIdx), scene.frameSize(), random));
}

/// A command on one layer with one further argument.
template<class Command, class Value>
Edit layerEditWith(MRScene &mrScene, RandomNumbers &random, const Value &value, const QString &valueText)
{
    const int layerIdx = randomLayer(*mrScene.scene(), random);
    return command<Command>(QStringLiteral("%1: ").arg(layerIdx) + valueText, &mrScene, layerIdx, value);
}

template<class Command>
Edit layerSwitch(MRScene &mrScene, RandomNumbers &random)
{
    const bool on = random.chance(50);
    return layerEditWith<Command>(mrScene, random, on, on ? QStringLiteral("on") : QStringLiteral("off"));
}

Edit moveLayer(MRScene &mrScene, RandomNumbers &random)
{
    const int place = randomLayer(*mrScene.scene(), random);
    return layerEditWith<Commands::MoveLayer>(mrScene, random, place, QStringLiteral("to place %1").arg(place));
}

Edit renameLayer(MRScene &mrScene, RandomNumbers &random)
{
    const QString name = random.oneOf(QStringList{QStringLiteral("ink"), QString(), QStringLiteral("läufer")});
    return layerEditWith<Commands::RenameLayer>(mrScene, random, name, name);
}

Edit setLayerBeyondLast(MRScene &mrScene, RandomNumbers &random)
{
    const int mode = random.between(Layer::ShowNothing, Layer::CycleDrawings);
    return layerEditWith<Commands::SetLayerBeyondLast>(mrScene, random, Layer::LayerBeyondLast(mode),
                                                       QString::number(mode));
}

Edit changeLayerOpacity(MRScene &mrScene, RandomNumbers &random)
{
    const Scene &scene = *mrScene.scene();
    const int layerIdx = randomVisualLayer(scene, random);
    const double opacity = random.between(0, 10) / 10.0;
    return command<Commands::ChangeLayerOpacity>(QStringLiteral("%1: %2").arg(layerIdx).arg(opacity), &mrScene,
                                                 layerIdx, scene.visualLayer(layerIdx)->opacity(), opacity);
}

Edit changeLayerColor(MRScene &mrScene, RandomNumbers &random)
{
    const QColor color = QColor::fromHsv(random.between(0, 359), 255, 255);
    return layerEditWith<Commands::ChangeLayerColor>(mrScene, random, color, color.name());
}

Edit setAllLayersLinked(MRScene &mrScene, RandomNumbers &random)
{
    const bool on = random.chance(50);
    return command<Commands::SetAllLayersLinked>(on ? QStringLiteral("on") : QStringLiteral("off"), &mrScene, on);
}

Edit addAnnotation(MRScene &mrScene, RandomNumbers &random)
{
    const int frameId = random.between(1, mrScene.scene()->maximumFrameNumber());
    const QImage note = random.chance(20) ? QImage() : randomNote(random);
    return command<Commands::AddAnnotation>(QString::number(frameId) + (note.isNull() ? " none" : ""), &mrScene,
                                            frameId, note);
}

Edit stroke(MRScene &mrScene, RandomNumbers &random)
{
    const Scene &scene = *mrScene.scene();
    std::unique_ptr<Stroke> block = randomBlock(scene.frameSize(), random);
    if (random.chance(70)) {
        const Cell cell = randomCell(scene, random);
        const QModelIndex index = mrScene.sceneModel()->index(cell.frameId - 1, cell.layerIdx);
        return command<Commands::Stroke>(text(cell), &mrScene, index, std::move(block));
    }
    QModelIndexList indexes;
    QString arguments;
    for (const Cell &cell : randomCells(scene, random)) {
        indexes.append(mrScene.sceneModel()->index(cell.frameId - 1, cell.layerIdx));
        arguments += text(cell) + ' ';
    }
    return command<Commands::Stroke>(arguments, &mrScene, indexes, std::move(block), nullptr);
}

std::vector<EditKind> operationKinds()
{
    return {
        {"scene.addBlankDrawing", 3, cellOperation(std::mem_fn(&Scene::addBlankDrawing), true, 0)},
        {"scene.insertBlankDrawing", 3, cellOperation(std::mem_fn(&Scene::insertBlankDrawing), true)},
        {"scene.addCloneDrawing", 4,
         cellOperation([](Scene &scene, int l, int f) { return scene.addCloneDrawing(l, f); }, true, 0)},
        {"scene.addCloneDrawings", 3, countedOperation(std::mem_fn(&Scene::addCloneDrawings), true)},
        {"scene.deleteFrame", 4, cellOperation(std::mem_fn(&Scene::deleteFrame))},
        {"scene.deleteFrames", 2, countedOperation(std::mem_fn(&Scene::deleteFrames), false)},
        {"scene.loseDrawing", 4,
         cellOperation([](Scene &scene, int l, int f) { return scene.loseDrawing(l, f, f % 3 == 0); })},
        {"scene.turnCloneIntoOriginal", 4, cellOperation([](Scene &scene, int l, int f) {
             return scene.turnCloneIntoOriginal(l, f, f % 2 ? QUuid() : QUuid(uint(f), 1, 2, 3, 4, 5, 6, 7, 8, 9, 10));
         })},
        {"scene.makeDistantClone", 8, makeDistantClone},
        {"scene.replaceDrawing", 3,
         [](MRScene &scene, RandomNumbers &random) { return replaceDrawing(scene, random, false); }},
        {"scene.replaceDrawing of all", 3,
         [](MRScene &scene, RandomNumbers &random) { return replaceDrawing(scene, random, true); }},
        {"scene.slideOriginalDrawing", 5, slideOperation},
    };
}

std::vector<EditKind> exposureKinds()
{
    using namespace Commands;
    return {
        {"AddBlankDrawing", 3, growingCellEdit<AddBlankDrawing>},
        {"AddCloneDrawings", 3, addCloneDrawings},
        {"InsertBlankDrawing", 3, growingCellEdit<InsertBlankDrawing>},
        {"ClearDrawingMakingBlank", 3, cellEdit<ClearDrawingMakingBlank>},
        {"LoseDrawingMakingHold", 3, cellEdit<LoseDrawingMakingHold>},
        {"DiscardDrawing", 4, cellEdit<DiscardDrawing>},
        {"DeleteCloneDrawing", 3, cellEdit<DeleteCloneDrawing>},
        {"DiscardCloneDrawings", 2,
         [](MRScene &scene, RandomNumbers &random) {
             const int count = random.between(1, 3);
             return command<DiscardCloneDrawings>(QString::number(count), &scene, count);
         }},
        {"CloneEachSelectedDrawingOnce", 2, growingSelectionEdit<CloneEachSelectedDrawingOnce>},
        {"CycleSelectedDrawingsOnce", 3, growingSelectionEdit<CycleSelectedDrawingsOnce>},
        {"TurnCloneIntoOriginal", 3, cellEdit<TurnCloneIntoOriginal>},
        {"MarkAsKeyDrawing", 2, markAsKeyDrawing},
        {"UnmarkAllKeyDrawings", 1,
         [](MRScene &scene, RandomNumbers &) { return command<UnmarkAllKeyDrawings>(QString(), &scene); }},
        {"SlideOriginalDrawing", 4, slideCommand},
        {"SetFrameRange", 3, setFrameRange},
        {"OffPegs", 3, offPegs},
        {"SetFrameRate", 1, setFrameRate},
        {"ChangeFrameSize", 1, changeFrameSize},
        {"ChangeSceneSettings", 1, changeSceneSettings},
        {"SetActiveFrameAndLayer", 6, setActiveFrameAndLayer},
        {"Stroke", 5, stroke},
    };
}

std::vector<EditKind> layerKinds()
{
    using namespace Commands;
    return {
        {"NewLayer", 2, newLayer},
        {"DuplicateLayer", 2, duplicateLayer},
        {"DiscardLayer", 2, layerEdit<DiscardLayer>},
        {"RemoveLayer", 2, layerEdit<RemoveLayer>},
        {"SwapLayer", 1, swapLayer},
        {"MergeLayerDown", 3, layerEdit<MergeLayerDown>},
        {"MoveLayer", 2, moveLayer},
        {"RenameLayer", 1, renameLayer},
        {"SetLayerVisible", 1, layerSwitch<SetLayerVisible>},
        {"SetLayerLinked", 3, layerSwitch<SetLayerLinked>},
        {"SetAllLayersLinked", 1, setAllLayersLinked},
        {"SetLayerBeyondLast", 1, setLayerBeyondLast},
        {"ChangeLayerOpacity", 1, changeLayerOpacity},
        {"ChangeLayerColor", 1, changeLayerColor},
        {"AddAnnotation", 2, addAnnotation},
    };
}

} // namespace

const std::vector<EditKind> &editKinds()
{
    static const std::vector<EditKind> all = [] {
        std::vector<EditKind> kinds = operationKinds();
        for (const auto &more : {exposureKinds(), layerKinds(), pickUpKinds()})
            kinds.insert(kinds.end(), more.begin(), more.end());
        return kinds;
    }();
    return all;
}

size_t randomEditKind(RandomNumbers &random)
{
    static const std::vector<size_t> drawn = [] {
        std::vector<size_t> tickets;
        for (size_t i = 0; i < editKinds().size(); ++i)
            tickets.insert(tickets.end(), size_t(editKinds()[i].weight), i);
        return tickets;
    }();
    return drawn[size_t(random.between(0, int(drawn.size()) - 1))];
}

} // namespace TestSupport
