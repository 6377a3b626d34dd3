#include "libcommands/discarddrawing.h"

#include "libcommands/framedeletion.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <algorithm>

namespace Commands {

DiscardDrawing::DiscardDrawing(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent)
    : CellCommand(scene, selection, hasCell, parent)
{
    setText(tr("Discard Selected Drawings", nullptr, count()));
}

DiscardDrawing::DiscardDrawing(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent)
    : CellCommand(scene, QModelIndexList{cell}, hasCell, parent)
{
    setText(tr("Discard Drawing"));
}

QList<Model::SceneChange> DiscardDrawing::run(Model::SceneModel &model)
{
    return deleteFramesOf(model, indexes());
}

void DiscardDrawing::moveOn(Model::Scene &scene)
{
    const int layerIdx = before().activeLayerIdx;
    scene.setActiveFrameAndLayer(std::min(firstRow() + 1, scene.lastFrame(layerIdx)), layerIdx,
                                 Model::Scene::AllowFrameAfterLast);
}

} // namespace Commands
