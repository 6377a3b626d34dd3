#include "libcommands/addblankdrawing.h"

#include "libcommands/changesteps.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

namespace Commands {

AddBlankDrawing::AddBlankDrawing(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent)
    : CellCommand(scene, selection, hasCell, parent)
{
    setText(tr("Add Blank after each Selected Drawing", nullptr, count()));
}

AddBlankDrawing::AddBlankDrawing(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent)
    : CellCommand(scene, QModelIndexList{cell}, hasCell, parent)
{
    setText(tr("Add Blank Drawing"));
}

QList<Model::SceneChange> AddBlankDrawing::run(Model::SceneModel &model)
{
    ChangeSteps steps;
    // From the last on, so that the cells before stay where they are.
    for (auto index = indexes().crbegin(); index != indexes().crend(); ++index)
        steps.add(model.addBlankDrawing(*index));
    return steps.lastFirst();
}

void AddBlankDrawing::moveOn(Model::Scene &scene)
{
    // One blank has come in for each selected row up to the active one, the last of them behind it.
    moveTo(scene, 2 * activeRow() - firstRow() + 2);
}

} // namespace Commands
