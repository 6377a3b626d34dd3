#include "libcommands/framedeletion.h"

#include "libcommands/changesteps.h"
#include "libcommands/timinggroup.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QHash>
#include <QSet>

#include <utility>

namespace Commands {

QList<Model::SceneChange> deleteFramesOf(Model::SceneModel &model, const QModelIndexList &cells)
{
    const Model::Scene &scene = *model.scene();
    QHash<int, int> lengths;
    for (const QModelIndex &cell : cells)
        lengths.insert(cell.column(), scene.lastFrame(cell.column()));
    QSet<std::pair<int, int>> deleted;
    ChangeSteps steps;
    for (const QModelIndex &cell : cells) {
        const std::pair frame(timingGroup(scene, cell.column()), cell.row());
        if (deleted.contains(frame))
            continue;
        deleted.insert(frame);
        const int shift = lengths.value(cell.column()) - scene.lastFrame(cell.column());
        steps.add(model.deleteDrawing(model.index(cell.row() - shift, cell.column())));
    }
    return steps.lastFirst();
}

} // namespace Commands
