#include "app/layeractions.h"

#include "app/catalogueaction.h"
#include "app/layerorder.h"
#include "libcommands/discardlayer.h"
#include "libcommands/duplicatelayer.h"
#include "libcommands/mergelayerdown.h"
#include "libcommands/newlayer.h"
#include "libcommands/setactiveframeandlayer.h"
#include "libcommands/setalllayerslinked.h"
#include "libcommands/setframerange.h"
#include "libcommands/setlayerbeyondlast.h"
#include "libcommands/setlayerlinked.h"
#include "libcommands/setlayervisible.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"

#include <algorithm>
#include <memory>

using Model::Layer;
using Model::MRScene;

namespace {

struct BeyondAction
{
    MR::Action action;
    Layer::LayerBeyondLast beyondLast;
};

constexpr BeyondAction beyondActions[] = {
    {MR::Action::ShowNothingBeyond, Layer::ShowNothing},
    {MR::Action::FreezeLastDrawingBeyond, Layer::FreezeLast},
    {MR::Action::CycleDrawingsBeyond, Layer::CycleDrawings},
};

/// Can a layer whose last cell is \a lastFrame be the active one of \a scene? It can't where its empty position, too,
/// lies before the playback range, which then has to begin earlier.
bool canStandOn(const Model::Scene &scene, int lastFrame)
{
    return lastFrame + 1 >= scene.rangeFirst();
}

} // namespace

LayerActions::LayerActions(QObject *parent) : SceneFollower(parent)
{
    onTriggered(MR::Action::NewLayer, this, &LayerActions::addLayer);
    onTriggered(MR::Action::DuplicateActiveLayer, this, [this] { push<Commands::DuplicateLayer>(); });
    onTriggered(MR::Action::DiscardActiveLayer, this, [this] { push<Commands::DiscardLayer>(); });
    onTriggered(MR::Action::MergeLayerDown, this, [this] { push<Commands::MergeLayerDown>(); });
    onTriggered(MR::Action::LayerVisibility, this, [this](bool on) { push<Commands::SetLayerVisible>(on); });
    onTriggered(MR::Action::LayerLink, this, [this](bool on) { push<Commands::SetLayerLinked>(on); });
    for (const BeyondAction &entry : beyondActions) {
        onTriggered(entry.action, this,
                    [this, beyondLast = entry.beyondLast] { push<Commands::SetLayerBeyondLast>(beyondLast); });
    }
    onTriggered(MR::Action::LayerAbove, this, [this] { goBy(-1); });
    onTriggered(MR::Action::LayerBelow, this, [this] { goBy(1); });
    onTriggered(MR::Action::LayerTop, this, [this] { goBy(-Model::Scene::maximumLayers); });
    onTriggered(MR::Action::LayerBottom, this, [this] { goBy(Model::Scene::maximumLayers); });
    onTriggered(MR::Action::UnlinkAllLayers, this, [this] { setAllLinked(false); });
    onTriggered(MR::Action::LinkAllLayers, this, [this] { setAllLinked(true); });
}

void LayerActions::connectScene(MRScene &scene)
{
    follow(connect(scene.scene(), &Model::Scene::activeFrameAndLayerChanged, this, &LayerActions::actualize));
    follow(connect(scene.scene(), &Model::Scene::layersChanged, this, &LayerActions::actualize));
    follow(connect(scene.scene(), &Model::Scene::endInsertLayer, this, &LayerActions::actualize));
    follow(connect(scene.scene(), &Model::Scene::endRemoveLayer, this, &LayerActions::actualize));
}

void LayerActions::actualize()
{
    const Model::VisualLayer *layer = scene() ? scene()->visualLayer(scene()->activeLayerIdx()) : nullptr;
    if (!layer)
        return;
    catalogueAction(MR::Action::LayerVisibility)->setChecked(layer->isVisible());
    catalogueAction(MR::Action::LayerLink)->setChecked(layer->isLinked());
    for (const BeyondAction &entry : beyondActions)
        catalogueAction(entry.action)->setChecked(layer->beyondLast() == entry.beyondLast);
}

template<typename Command, typename... Arguments>
void LayerActions::push(Arguments... arguments)
{
    if (!mrScene())
        return;
    MRScene::pushCommand(new Command(mrScene(), scene()->activeLayerIdx(), arguments...));
    // The action has changed its check by itself, whatever has become of the command.
    actualize();
}

void LayerActions::addLayer()
{
    if (!mrScene())
        return;
    constexpr int lastOfNew = 1;
    if (canStandOn(*scene(), lastOfNew)) {
        MRScene::pushCommand(new Commands::NewLayer(mrScene(), Layer::Stroke));
        return;
    }
    auto command = std::make_unique<QUndoCommand>(Commands::NewLayer::tr("New Layer"));
    new Commands::SetFrameRange(mrScene(), lastOfNew, scene()->rangeLast(), scene()->activeFrame(),
                                scene()->activeLayerIdx(), command.get());
    new Commands::NewLayer(mrScene(), Layer::Stroke, -1, command.get());
    MRScene::pushCommand(command.release());
}

void LayerActions::goBy(int steps)
{
    if (!mrScene())
        return;
    const QList<int> layers = visualLayerOrder(*scene());
    const qsizetype here = layers.indexOf(scene()->activeLayerIdx());
    if (here < 0)
        return;
    const int wanted = layers.at(std::clamp<qsizetype>(here + steps, 0, layers.size() - 1));
    mrScene()->clearSelection();
    const int last = scene()->lastFrame(wanted);
    if (canStandOn(*scene(), last)) {
        MRScene::pushCommand(new Commands::SetActiveFrameAndLayer(mrScene(), scene()->activeFrame(), wanted,
                                                                  Model::Scene::AllowFrameAfterLast));
    } else {
        MRScene::pushCommand(new Commands::SetFrameRange(mrScene(), last, scene()->rangeLast(), last, wanted));
    }
}

void LayerActions::setAllLinked(bool linked)
{
    if (mrScene())
        MRScene::pushCommand(new Commands::SetAllLayersLinked(mrScene(), linked));
}
