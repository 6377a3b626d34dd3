#include "libcommands/insertblankdrawing.h"

#include "libcommands/changesteps.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

namespace Commands {

InsertBlankDrawing::InsertBlankDrawing(Model::MRScene *scene, const QModelIndexList &selection, QUndoCommand *parent)
    : CellCommand(scene, selection, hasCellOrEndsBefore, parent)
{
    setText(tr("Insert Blank after each Selected Drawing", nullptr, count()));
}

InsertBlankDrawing::InsertBlankDrawing(Model::MRScene *scene, const QModelIndex &cell, QUndoCommand *parent)
    : CellCommand(scene, QModelIndexList{cell}, hasCellOrEndsBefore, parent)
{
    setText(tr("Insert Blank Drawing"));
}

QList<Model::SceneChange> InsertBlankDrawing::run(Model::SceneModel &model)
{
    ChangeSteps steps;
    // From the last on, so that the cells before stay where they are.
    for (auto index = indexes().crbegin(); index != indexes().crend(); ++index)
        steps.add(model.insertBlankDrawing(*index));
    return steps.lastFirst();
}

void InsertBlankDrawing::moveOn(Model::Scene &scene)
{
    moveTo(scene, 2 * activeRow() - firstRow() + 1);
}

} // namespace Commands
