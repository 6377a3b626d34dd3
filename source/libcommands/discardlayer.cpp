#include "libcommands/discardlayer.h"

#include "libcommands/removelayer.h"
#include "libcommands/setactiveframeandlayer.h"
#include "libcommands/swaplayer.h"
#include "libcommands/visuallayers.h"
#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

DiscardLayer::DiscardLayer(Model::MRScene *scene, int layerIdx, QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent)
{
    setText(tr("Discard Layer"));
    if (isObsolete())
        return;
    const Model::Scene &model = *scene->scene();
    if (model.visualLayer(layerIdx)) {
        discardVisual(scene);
    } else if (model.layer(layerIdx)->layerType() == Model::Layer::Audio) {
        setText(tr("Discard Audio"));
        new SwapLayer(scene, layerIdx, std::make_shared<Model::AudioLayer>(), this);
    } else {
        setObsolete(true);
    }
}

void DiscardLayer::discardVisual(Model::MRScene *scene)
{
    const Model::Scene &model = *scene->scene();
    if (visualLayerCount(model) == 1) {
        auto empty = std::make_shared<Model::StrokeLayer>(Qt::black, model.frameSize());
        empty->setName(tr("New Layer"));
        new SwapLayer(scene, layerIdx(), std::move(empty), this);
        return;
    }
    if (layerIdx() == model.activeLayerIdx())
        new SetActiveFrameAndLayer(scene, model.activeFrame(), neighbourLayer(model, layerIdx()),
                                   Model::Scene::KeepFrameOnDrawing, this);
    new RemoveLayer(scene, layerIdx(), this);
}

} // namespace Commands
