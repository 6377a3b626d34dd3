#include "libcommands/deleteclonedrawing.h"

#include "libcommands/framedeletion.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

namespace Commands {

DeleteCloneDrawing::DeleteCloneDrawing(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent)
    : CellCommand(scene, selection, isLocalClone, parent)
{
    setText(tr("Discard Selected Clone Drawings", nullptr, count()));
}

DeleteCloneDrawing::DeleteCloneDrawing(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent)
    : CellCommand(scene, QModelIndexList{cell}, isLocalClone, parent)
{
    setText(tr("Discard Clone Drawing"));
}

QList<Model::SceneChange> DeleteCloneDrawing::run(Model::SceneModel &model)
{
    const int layerIdx = indexes().constLast().column();
    const int length = model.scene()->lastFrame(layerIdx);
    QList<Model::SceneChange> changes = deleteFramesOf(model, indexes());
    m_deletedBeforeLast = length - model.scene()->lastFrame(layerIdx);
    return changes;
}

void DeleteCloneDrawing::moveOn(Model::Scene &scene)
{
    moveTo(scene, lastRow() - m_deletedBeforeLast + 1);
}

} // namespace Commands
