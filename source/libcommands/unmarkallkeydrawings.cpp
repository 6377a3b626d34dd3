#include "libcommands/unmarkallkeydrawings.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

UnmarkAllKeyDrawings::UnmarkAllKeyDrawings(Model::MRScene *scene, QUndoCommand *parent) : SceneCommand(scene, parent)
{
    setText(tr("Unmark all Key Drawings"));
    if (!scene)
        return;
    for (int layerIdx = 0; layerIdx < scene->scene()->layerCount(); ++layerIdx) {
        const Model::VisualLayer *layer = scene->scene()->visualLayer(layerIdx);
        for (int frameId = 1; layer && frameId <= layer->numFrames(); ++frameId) {
            if (layer->item(frameId)->keyDrawing)
                m_cells.append({frameId, layerIdx});
        }
    }
    setObsolete(m_cells.isEmpty());
}

void UnmarkAllKeyDrawings::redo()
{
    mark(false);
}

void UnmarkAllKeyDrawings::undo()
{
    mark(true);
}

void UnmarkAllKeyDrawings::mark(bool keyDrawing)
{
    Model::Scene *model = scene();
    if (!model)
        return;
    for (const auto &[frameId, layerIdx] : std::as_const(m_cells))
        model->setKeyDrawing(layerIdx, frameId, keyDrawing);
}

} // namespace Commands
