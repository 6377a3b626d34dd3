#include "libcommands/setlayerbeyondlast.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

namespace {

QString textFor(Model::Layer::LayerBeyondLast beyondLast)
{
    switch (beyondLast) {
    case Model::Layer::ShowNothing:
        return SetLayerBeyondLast::tr("Show Nothing Beyond Last Drawing");
    case Model::Layer::FreezeLast:
        return SetLayerBeyondLast::tr("Freeze Last Drawing");
    case Model::Layer::CycleDrawings:
        return SetLayerBeyondLast::tr("Cycle Drawings Beyond Last Drawing");
    }
    return SetLayerBeyondLast::tr("Undefined");
}

} // namespace

SetLayerBeyondLast::SetLayerBeyondLast(Model::MRScene *scene, int layerIdx, Model::Layer::LayerBeyondLast beyondLast,
                                       QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent), m_new(beyondLast)
{
    setText(textFor(beyondLast));
    if (isObsolete())
        return;
    const Model::VisualLayer *layer = scene->scene()->visualLayer(layerIdx);
    if (layer)
        m_old = layer->beyondLast();
    setObsolete(!layer || m_new == m_old || m_new < Model::Layer::ShowNothing || m_new > Model::Layer::CycleDrawings);
}

void SetLayerBeyondLast::redo()
{
    if (Model::Scene *model = scene())
        model->setLayerBeyondLast(layerIdx(), m_new);
}

void SetLayerBeyondLast::undo()
{
    if (Model::Scene *model = scene())
        model->setLayerBeyondLast(layerIdx(), m_old);
}

} // namespace Commands
