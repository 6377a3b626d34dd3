#include "libcommands/swaplayer.h"

#include "libmodel/layers/layer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

#include <utility>

namespace Commands {

namespace {

bool areOfOneKind(const Model::Layer &left, const Model::Layer &right)
{
    return left.layerType() == right.layerType() ||
           (Model::Layer::isVisualType(left.layerType()) && Model::Layer::isVisualType(right.layerType()));
}

} // namespace

SwapLayer::SwapLayer(Model::MRScene *scene, int layerIdx, std::shared_ptr<Model::Layer> layer, QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent), m_layer(std::move(layer))
{
    setText(tr("Swap Layer"));
    if (isObsolete())
        return;
    const Model::Scene &model = *scene->scene();
    setObsolete(!m_layer || !areOfOneKind(*m_layer, *model.layer(layerIdx)) ||
                model.indexOfLayer(m_layer->identifier()) >= 0);
}

void SwapLayer::swap(Model::Scene &scene)
{
    if (std::shared_ptr<Model::Layer> other = scene.swapLayer(layerIdx(), m_layer))
        m_layer = std::move(other);
}

void SwapLayer::redo()
{
    if (Model::Scene *model = scene())
        swap(*model);
}

void SwapLayer::undo()
{
    Model::Scene *model = scene();
    if (!model)
        return;
    swap(*model);
    before().restore(*model);
}

} // namespace Commands
