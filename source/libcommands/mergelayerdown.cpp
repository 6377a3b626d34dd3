#include "libcommands/mergelayerdown.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

namespace {

/// Can one of the two be merged into the other? Both may be null.
bool areMergeable(const Model::Layer *upper, const Model::Layer *lower)
{
    return upper && lower && upper != lower && upper->layerType() == lower->layerType() &&
           dynamic_cast<const Model::VisualLayer *>(lower) && Model::Layer::isDrawType(lower->layerType());
}

/// A copy of \a layer with the key marks and the transforms of its cells, which copies lack.
std::shared_ptr<Model::Layer> copyWithMarks(const Model::VisualLayer &layer)
{
    std::shared_ptr<Model::Layer> copy = layer.clone();
    const auto &visualCopy = dynamic_cast<const Model::VisualLayer &>(*copy);
    for (int frameId = 1; frameId <= layer.numFrames(); ++frameId) {
        Model::LayerItem &cell = *visualCopy.item(frameId);
        cell.keyDrawing = layer.item(frameId)->keyDrawing;
        cell.offPegsTransform = layer.item(frameId)->offPegsTransform;
    }
    return copy;
}

} // namespace

MergeLayerDown::MergeLayerDown(Model::MRScene *scene, int upperIdx, QUndoCommand *parent)
    : LayerCommand(scene, upperIdx, parent)
{
    setText(tr("Merge Layer Down"));
    if (isObsolete())
        return;
    const Model::Scene &model = *scene->scene();
    m_lowerIdx = model.nextVisualLayer(upperIdx);
    m_lowerVisualIndex = model.visualIndex(m_lowerIdx);
    setObsolete(!areMergeable(model.layer(upperIdx), model.layer(m_lowerIdx)));
}

void MergeLayerDown::redo()
{
    Model::Scene *model = scene();
    if (!model)
        return;
    const std::shared_ptr<Model::Layer> upper = model->layerPtr(layerIdx());
    const std::shared_ptr<Model::Layer> lower = model->layerPtr(m_lowerIdx);
    const bool isFirst = !m_merged;
    // Done again, it is about these two layers alone: the merged one holds what they show.
    if (!areMergeable(upper.get(), lower.get()) || (!isFirst && (upper != m_upper || lower != m_lower))) {
        setObsolete(isFirst);
        return;
    }
    m_upper = upper;
    m_lower = lower;
    if (isFirst)
        m_merged = copyWithMarks(dynamic_cast<const Model::VisualLayer &>(*m_lower));
    model->removeLayer(m_lowerIdx);
    insert(*model, m_merged, model->layerCount(), m_lowerVisualIndex);
    if (isFirst)
        model->mergeLayers(model->indexOfLayer(m_upper->identifier()), model->indexOfLayer(m_merged->identifier()));
    ScenePosition position = before();
    position.activeLayerIdx = model->indexOfLayer(m_merged->identifier());
    position.restore(*model);
    model->removeLayer(model->indexOfLayer(m_upper->identifier()));
}

bool MergeLayerDown::hasOnlyMerged(const Model::Scene &model) const
{
    return model.indexOfLayer(m_merged->identifier()) >= 0 && model.indexOfLayer(m_upper->identifier()) < 0 &&
           model.indexOfLayer(m_lower->identifier()) < 0;
}

void MergeLayerDown::undo()
{
    Model::Scene *model = scene();
    if (!model || !m_merged || !hasOnlyMerged(*model))
        return;
    // The lower layer was taken out first: without it, the upper one stood one place nearer to the start.
    const int upperIdx = layerIdx() > m_lowerIdx ? layerIdx() - 1 : layerIdx();
    insert(*model, m_upper, upperIdx, visualIndex());
    model->removeLayer(model->indexOfLayer(m_merged->identifier()));
    insert(*model, m_lower, m_lowerIdx, m_lowerVisualIndex);
    before().restore(*model);
}

} // namespace Commands
