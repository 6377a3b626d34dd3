#include "libcommands/cellcommand.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <algorithm>

namespace Commands {

namespace {

/// \a index as one of the scene's Model::SceneModel; invalid if it belongs to neither model of the scene.
QModelIndex toSceneModel(const Model::MRScene &scene, const QModelIndex &index)
{
    const Model::FrameRangeModel *range = scene.frameRangeModel();
    if (range && index.model() == range)
        return range->mapToSource(index);
    return index.model() == scene.sceneModel() ? index : QModelIndex();
}

bool isBefore(const QModelIndex &left, const QModelIndex &right)
{
    return left.row() != right.row() ? left.row() < right.row() : left.column() < right.column();
}

} // namespace

CellCommand::CellCommand(Model::MRScene *scene, const QModelIndexList &cells, const Filter &accepts,
                         QUndoCommand *parent)
    : RecordedCommand(scene, parent)
{
    if (!scene)
        return;
    for (const QModelIndex &cell : cells) {
        const QModelIndex index = toSceneModel(*scene, cell);
        const Model::VisualLayer *layer = scene->scene()->visualLayer(index.column());
        if (index.isValid() && layer && accepts(*layer, index.row() + 1))
            m_indexes.append(index);
    }
    std::sort(m_indexes.begin(), m_indexes.end(), isBefore);
    m_indexes.erase(std::unique(m_indexes.begin(), m_indexes.end()), m_indexes.end());
    setObsolete(m_indexes.isEmpty());
}

void CellCommand::moveTo(Model::Scene &scene, int frameId) const
{
    scene.setActiveFrameAndLayer(frameId, before().activeLayerIdx, Model::Scene::KeepFrameOnDrawing);
}

bool CellCommand::hasCell(const Model::VisualLayer &layer, int frameId)
{
    return layer.isValidFrame(frameId);
}

bool CellCommand::hasCellOrEndsBefore(const Model::VisualLayer &layer, int frameId)
{
    return hasCell(layer, frameId) || frameId == layer.numFrames() + 1;
}

bool CellCommand::isLocalClone(const Model::VisualLayer &layer, int frameId)
{
    const std::shared_ptr<Model::LayerItem> cell = layer.item(frameId);
    return cell && cell->isClone();
}

bool CellCommand::isAnyClone(const Model::VisualLayer &layer, int frameId)
{
    const std::shared_ptr<Model::LayerItem> cell = layer.item(frameId);
    return cell && !cell->isOriginal();
}

bool CellCommand::canBecomeHold(const Model::VisualLayer &layer, int frameId)
{
    return frameId > 1 && hasCell(layer, frameId) && !isLocalClone(layer, frameId);
}

} // namespace Commands
