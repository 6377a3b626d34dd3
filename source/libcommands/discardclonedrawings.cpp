#include "libcommands/discardclonedrawings.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <algorithm>

namespace Commands {

DiscardCloneDrawings::DiscardCloneDrawings(Model::MRScene *scene, int count, QUndoCommand *parent)
    : RecordedCommand(scene, parent), m_count(count)
{
    setText(tr("Discard Clone Drawings"));
    if (!scene)
        return;
    const Model::VisualLayer *layer = scene->scene()->visualLayer(before().activeLayerIdx);
    setObsolete(m_count < 1 || !layer || !layer->isValidFrame(before().activeFrame));
}

QList<Model::SceneChange> DiscardCloneDrawings::run(Model::SceneModel &model)
{
    return model.scene()->deleteFrames(before().activeLayerIdx, before().activeFrame, m_count);
}

void DiscardCloneDrawings::moveOn(Model::Scene &scene)
{
    scene.setActiveFrameAndLayer(std::max(before().activeFrame - m_count, 1), before().activeLayerIdx,
                                 Model::Scene::KeepFrameOnDrawing);
}

} // namespace Commands
