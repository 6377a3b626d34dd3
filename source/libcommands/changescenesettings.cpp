#include "libcommands/changescenesettings.h"

#include "libcommands/changeframesize.h"
#include "libcommands/setframerate.h"

namespace Commands {

ChangeSceneSettings::ChangeSceneSettings(QWidget *dialogParent, Model::MRScene *scene, QSize size, MR::FitMode fitMode,
                                         double framesPerSecond, QUndoCommand *parent)
    : SceneCommand(scene, parent)
{
    setText(tr("Change scene settings"));
    const auto *rate = new SetFrameRate(scene, framesPerSecond, this);
    const auto *frameSize = new ChangeFrameSize(dialogParent, scene, size, fitMode, this);
    setObsolete(rate->isObsolete() && frameSize->isObsolete());
}

} // namespace Commands
