#include "libcommands/addclonedrawings.h"

#include "libcommands/changesteps.h"
#include "libmodel/layers/layer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <algorithm>

namespace Commands {

AddCloneDrawings::AddCloneDrawings(Model::MRScene *scene, const QModelIndexList &selection, int count,
                                   QUndoCommand *parent)
    : CellCommand(scene, selection, hasCell, parent), m_count(count)
{
    setText(tr("Add Clones after each Selected Drawing", nullptr, CellCommand::count()));
    if (m_count < 1)
        setObsolete(true);
}

AddCloneDrawings::AddCloneDrawings(Model::MRScene *scene, const QModelIndex &cell, int count, QUndoCommand *parent)
    : CellCommand(scene, QModelIndexList{cell}, hasCell, parent), m_count(count)
{
    setText(tr("Add Clone Drawings"));
    if (m_count < 1)
        setObsolete(true);
}

QList<Model::SceneChange> AddCloneDrawings::run(Model::SceneModel &model)
{
    ChangeSteps steps;
    // From the last on, so that the cells before stay where they are.
    for (auto index = indexes().crbegin(); index != indexes().crend(); ++index)
        steps.add(model.addCloneDrawings(*index, m_count));
    return steps.lastFirst();
}

void AddCloneDrawings::moveOn(Model::Scene &scene)
{
    // A frame far behind the end is as good as the end.
    const qint64 wanted = qint64(activeRow() - firstRow() + 1) * m_count + activeRow() + 1;
    moveTo(scene, int(std::clamp<qint64>(wanted, 0, Model::Layer::maximumFrames)));
}

} // namespace Commands
