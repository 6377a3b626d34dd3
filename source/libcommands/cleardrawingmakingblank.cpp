#include "libcommands/cleardrawingmakingblank.h"

#include "libcommands/changesteps.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

namespace Commands {

ClearDrawingMakingBlank::ClearDrawingMakingBlank(Model::MRScene *scene, const QModelIndexList &selection,
                                                 QUndoCommand *parent)
    : CellCommand(scene, selection, hasCell, parent)
{
    setText(tr("Clear Selected Drawings", nullptr, count()));
}

ClearDrawingMakingBlank::ClearDrawingMakingBlank(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent)
    : CellCommand(scene, QModelIndexList{cell}, hasCell, parent)
{
    setText(tr("Clear Drawing"));
}

QList<Model::SceneChange> ClearDrawingMakingBlank::run(Model::SceneModel &model)
{
    ChangeSteps steps;
    for (const QModelIndex &index : indexes()) {
        const Model::VisualLayer *layer = model.scene()->visualLayer(index.column());
        if (layer)
            steps.add(model.replaceDrawing(index, layer->newBlankItem()->drawing, false, false));
    }
    return steps.lastFirst();
}

void ClearDrawingMakingBlank::moveOn(Model::Scene &scene)
{
    before().restore(scene);
}

} // namespace Commands
