#include "libcommands/cycleselecteddrawingsonce.h"

#include "libcommands/changesteps.h"
#include "libcommands/timinggroup.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QHash>

namespace Commands {

namespace {

/// How far the repeat of the cells of one layer, or of all linked ones, has come.
struct Cycle
{
    QModelIndex last;     ///< of the selected cells
    int row = -1;         ///< of the cells repeated last
    bool hasRoom = false; ///< for these
    int added = 0;
};

/// The original that a repeat of the cell at \a index shows; null for a hold, which remains one.
Model::CellRef originOf(const Model::SceneModel &model, const QModelIndex &index)
{
    const std::shared_ptr<Model::LayerItem> cell = model.item(index);
    if (!cell || cell->isClone())
        return {};
    return cell->isDistantClone() ? cell->origin : model.originOfCell(index);
}

} // namespace

CycleSelectedDrawingsOnce::CycleSelectedDrawingsOnce(Model::MRScene *scene, const QModelIndexList &selection,
                                                     QUndoCommand *parent)
    : CellCommand(scene, selection, hasCell, parent)
{
    setText(tr("Cycle Selected Drawings Once", nullptr, count()));
}

QList<Model::SceneChange> CycleSelectedDrawingsOnce::run(Model::SceneModel &model)
{
    QHash<int, Cycle> cycles;
    for (const QModelIndex &index : indexes())
        cycles[timingGroup(*model.scene(), index.column())].last = index;
    ChangeSteps steps;
    for (const QModelIndex &source : indexes()) {
        Cycle &cycle = cycles[timingGroup(*model.scene(), source.column())];
        if (cycle.row != source.row()) {
            const QModelIndex behind = model.index(cycle.last.row() + cycle.added, cycle.last.column());
            const QList<Model::SceneChange> step = model.addCloneDrawing(behind);
            cycle.row = source.row();
            cycle.hasRoom = !step.isEmpty();
            cycle.added += cycle.hasRoom ? 1 : 0;
            steps.add(step);
        }
        if (!cycle.hasRoom)
            continue;
        const QModelIndex copy = model.index(cycle.last.row() + cycle.added, source.column());
        const Model::CellRef origin = originOf(model, source);
        if (!origin.isNull())
            steps.add(model.makeDistantClone(copy, origin));
    }
    return steps.lastFirst();
}

void CycleSelectedDrawingsOnce::moveOn(Model::Scene &scene)
{
    moveTo(scene, lastRow() + 1);
}

} // namespace Commands
