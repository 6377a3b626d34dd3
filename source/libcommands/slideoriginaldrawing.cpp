#include "libcommands/slideoriginaldrawing.h"

#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

namespace Commands {

SlideOriginalDrawing::SlideOriginalDrawing(Model::MRScene *scene, int offset, int lowestOffset, int highestOffset,
                                           QUndoCommand *parent)
    : RecordedCommand(scene, parent), m_offset(offset), m_lowestOffset(lowestOffset), m_highestOffset(highestOffset)
{
    setText(tr("Slide Original Drawing"));
    if (m_offset == 0 && m_lowestOffset == 0 && m_highestOffset == 0)
        setObsolete(true);
}

QList<Model::SceneChange> SlideOriginalDrawing::run(Model::SceneModel &model)
{
    const QModelIndex index = model.index(activeRow(), before().activeLayerIdx);
    return model.slideOriginalDrawing(index, m_offset, m_lowestOffset, m_highestOffset);
}

void SlideOriginalDrawing::moveOn(Model::Scene &scene)
{
    scene.setActiveFrameAndLayer(before().activeFrame + m_offset, before().activeLayerIdx,
                                 Model::Scene::KeepFrameOnDrawing);
}

} // namespace Commands
