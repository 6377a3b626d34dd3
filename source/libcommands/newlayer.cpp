#include "libcommands/newlayer.h"

#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

#include <algorithm>

namespace Commands {

namespace {

QString textFor(int layerType)
{
    switch (layerType) {
    case Model::Layer::Paint:
        return NewLayer::tr("New Paint Layer");
    case Model::Layer::Reference:
        return NewLayer::tr("New Reference Layer");
    default:
        return NewLayer::tr("New Layer");
    }
}

std::shared_ptr<Model::Layer> newLayer(int layerType, QSize frameSize)
{
    if (layerType == Model::Layer::Stroke)
        return std::make_shared<Model::StrokeLayer>(Qt::black, frameSize);
    if (layerType == Model::Layer::Reference)
        return std::make_shared<Model::ReferenceLayer>(frameSize);
    return nullptr;
}

} // namespace

NewLayer::NewLayer(Model::MRScene *scene, int layerType, int visualPosition, QUndoCommand *parent)
    : SceneCommand(scene, parent)
{
    setText(textFor(layerType));
    if (!scene)
        return;
    Model::Scene &model = *scene->scene();
    m_before = ScenePosition::of(model);
    m_visualPosition = visualPosition >= 0 ? visualPosition : model.visualIndex(m_before.activeLayerIdx);
    m_visualPosition = std::clamp(m_visualPosition, 0, model.layerCount());
    m_layer = newLayer(layerType, model.frameSize());
    setObsolete(!m_layer);
    // Here and not in redo, or a redo would use up a number.
    if (m_layer)
        m_layer->setName(model.nextLayerName());
}

void NewLayer::redo()
{
    Model::Scene *model = scene();
    if (!model)
        return;
    const int layerIdx = model->insertLayer(m_layer, model->layerCount());
    model->moveLayer(layerIdx, m_visualPosition);
    model->setActiveFrameAndLayer(std::max(m_before.activeFrame, 1), layerIdx, Model::Scene::AllowFrameAfterLast);
}

void NewLayer::undo()
{
    Model::Scene *model = scene();
    if (!model)
        return;
    model->removeLayer(model->indexOfLayer(m_layer->identifier()));
    m_before.restore(*model);
}

} // namespace Commands
