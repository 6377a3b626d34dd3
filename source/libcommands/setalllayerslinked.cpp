#include "libcommands/setalllayerslinked.h"

#include "libcommands/setlayerlinked.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

SetAllLayersLinked::SetAllLayersLinked(Model::MRScene *scene, bool linked, QUndoCommand *parent)
    : SceneCommand(scene, parent)
{
    setText(linked ? tr("Link All Layers") : tr("Unlink All Layers"));
    if (!scene)
        return;
    bool isAsWanted = true;
    for (int layerIdx = 0; layerIdx < scene->scene()->layerCount(); ++layerIdx) {
        if (scene->scene()->visualLayer(layerIdx))
            isAsWanted &= (new SetLayerLinked(scene, layerIdx, linked, this))->isObsolete();
    }
    setObsolete(isAsWanted);
}

} // namespace Commands
