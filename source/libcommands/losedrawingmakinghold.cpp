#include "libcommands/losedrawingmakinghold.h"

#include "libcommands/changesteps.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

namespace Commands {

LoseDrawingMakingHold::LoseDrawingMakingHold(Model::MRScene *scene, const QModelIndexList &selection,
                                             QUndoCommand *parent)
    : CellCommand(scene, selection, canBecomeHold, parent)
{
    setText(tr("Lose Selected Drawings", nullptr, count()));
}

LoseDrawingMakingHold::LoseDrawingMakingHold(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent)
    : CellCommand(scene, QModelIndexList{cell}, canBecomeHold, parent)
{
    setText(tr("Lose Drawing"));
}

QList<Model::SceneChange> LoseDrawingMakingHold::run(Model::SceneModel &model)
{
    ChangeSteps steps;
    // From the last on, so that the cells before stay where they are.
    for (auto index = indexes().crbegin(); index != indexes().crend(); ++index)
        steps.add(model.loseDrawing(*index));
    return steps.lastFirst();
}

void LoseDrawingMakingHold::moveOn(Model::Scene &scene)
{
    before().restore(scene);
}

} // namespace Commands
