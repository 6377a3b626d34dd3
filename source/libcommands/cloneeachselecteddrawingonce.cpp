#include "libcommands/cloneeachselecteddrawingonce.h"

#include "libcommands/changesteps.h"
#include "libcommands/timinggroup.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QHash>
#include <QSet>

#include <utility>

namespace Commands {

CloneEachSelectedDrawingOnce::CloneEachSelectedDrawingOnce(Model::MRScene *scene, const QModelIndexList &selection,
                                                           QUndoCommand *parent)
    : CellCommand(scene, selection, hasCell, parent)
{
    setText(tr("Clone Each Selected Drawing Once", nullptr, count()));
}

QList<Model::SceneChange> CloneEachSelectedDrawingOnce::run(Model::SceneModel &model)
{
    QHash<int, int> added;
    QSet<std::pair<int, int>> done;
    ChangeSteps steps;
    for (const QModelIndex &index : indexes()) {
        const int group = timingGroup(*model.scene(), index.column());
        if (done.contains({group, index.row()}))
            continue;
        done.insert({group, index.row()});
        const QModelIndex moved = model.index(index.row() + added.value(group), index.column());
        const QList<Model::SceneChange> step = model.addCloneDrawing(moved);
        if (!step.isEmpty())
            ++added[group];
        steps.add(step);
    }
    return steps.lastFirst();
}

void CloneEachSelectedDrawingOnce::moveOn(Model::Scene &scene)
{
    moveTo(scene, lastRow() + 1);
}

} // namespace Commands
