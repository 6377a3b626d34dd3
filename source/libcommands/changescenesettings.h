#pragma once

#include "libcommands/scenecommand.h"
#include "libmodel/base/mr.h"

#include <QCoreApplication>
#include <QSize>

class QWidget;

namespace Commands {

/// Changes frame rate and frame size in one step, by SetFrameRate and ChangeFrameSize as its parts.
class ChangeSceneSettings : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::ChangeSceneSettings)

public:
    /// The arguments of both. Obsolete if neither would change.
    ChangeSceneSettings(QWidget *dialogParent, Model::MRScene *scene, QSize size, MR::FitMode fitMode,
                        double framesPerSecond, QUndoCommand *parent = nullptr);
};

} // namespace Commands
