#include "libcommands/cellcommand.h"

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
        if (index.isValid() && scene->scene()->visualLayer(index.column()) && (!accepts || accepts(index)))
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

bool CellCommand::hasCell(const QModelIndex &index)
{
    return !index.data(Model::SceneModel::BeyondLastRole).toBool();
}

bool CellCommand::isBehindFirst(const QModelIndex &index)
{
    return index.row() > 0;
}

bool CellCommand::isLocalClone(const QModelIndex &index)
{
    return hasCell(index) && index.data(Model::SceneModel::LocalCloneRole).toBool();
}

} // namespace Commands
