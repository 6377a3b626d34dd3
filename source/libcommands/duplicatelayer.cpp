#include "libcommands/duplicatelayer.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

DuplicateLayer::DuplicateLayer(Model::MRScene *scene, int layerIdx, QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent)
{
    setText(tr("Duplicate Layer"));
    if (scene && !scene->scene()->visualLayer(layerIdx))
        setObsolete(true);
}

void DuplicateLayer::redo()
{
    Model::Scene *model = scene();
    if (!model)
        return;
    if (!m_copy) {
        const Model::Layer *source = model->layer(layerIdx());
        m_copy = source ? source->clone() : nullptr;
        if (!m_copy) {
            setObsolete(true);
            return;
        }
        m_copy->setName(tr("Copy of %1").arg(source->name()));
    }
    insert(*model, m_copy, model->layerCount(), visualIndex());
    model->setActiveFrameAndLayer(before().activeFrame, model->indexOfLayer(m_copy->identifier()),
                                  Model::Scene::KeepFrameOnDrawing);
}

void DuplicateLayer::undo()
{
    Model::Scene *model = scene();
    if (!model || !m_copy)
        return;
    model->removeLayer(model->indexOfLayer(m_copy->identifier()));
    before().restore(*model);
}

} // namespace Commands
