#include "libcommands/turncloneintooriginal.h"

#include "libcommands/changesteps.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

namespace Commands {

TurnCloneIntoOriginal::TurnCloneIntoOriginal(Model::MRScene *scene, const QModelIndexList &selection,
                                             QUndoCommand *parent)
    : CellCommand(scene, selection, isAnyClone, parent)
{
    setText(tr("Turn Selected Clones into Originals", nullptr, count()));
}

TurnCloneIntoOriginal::TurnCloneIntoOriginal(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent)
    : CellCommand(scene, QModelIndexList{cell}, isAnyClone, parent)
{
    setText(tr("Turn Clone into Original"));
}

QList<Model::SceneChange> TurnCloneIntoOriginal::run(Model::SceneModel &model)
{
    ChangeSteps steps;
    // From the last on, so that the cells before stay where they are.
    for (auto index = indexes().crbegin(); index != indexes().crend(); ++index)
        steps.add(model.turnCloneIntoOriginal(*index));
    return steps.lastFirst();
}

void TurnCloneIntoOriginal::moveOn(Model::Scene &scene)
{
    before().restore(scene);
}

} // namespace Commands
