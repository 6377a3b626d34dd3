#include "app/behindlast.h"

#include "libcommands/addblankdrawing.h"
#include "libcommands/setframerange.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QUndoStack>

namespace BehindLast {

using Model::MRScene;

bool isActive(const MRScene &scene)
{
    return scene.scene()->isAfterLast(scene.scene()->activeLayerIdx(), scene.scene()->activeFrame());
}

void push(MRScene &scene, QUndoCommand *command)
{
    const Model::Scene &sheet = *scene.scene();
    const int frameId = sheet.activeFrame();
    const int layerIdx = sheet.activeLayerIdx();
    // The range grows with a cell right behind it, and has to be told of one farther away.
    const bool isFarAway = frameId > sheet.rangeLast() + 1;
    if (isFarAway)
        sheet.undoStack()->beginMacro(command->text());
    MRScene::pushCommand(command);
    if (sheet.activeFrame() != frameId)
        MRScene::pushCommand(new Commands::SetFrameRange(&scene, sheet.rangeFirst(), frameId, frameId, layerIdx));
    if (isFarAway)
        sheet.undoStack()->endMacro();
}

void addBlankDrawing(MRScene &scene)
{
    const Model::Scene &sheet = *scene.scene();
    const int layerIdx = sheet.activeLayerIdx();
    const QModelIndex last = scene.sceneModel()->index(sheet.lastFrame(layerIdx) - 1, layerIdx);
    push(scene, new Commands::AddBlankDrawing(&scene, last));
}

} // namespace BehindLast
