#pragma once

#include "libcommands/scenecommand.h"
#include "libmodel/strokes/floatingselection.h"

#include <QCoreApplication>

namespace Commands {

/// Puts the floating selection somewhere else.
class FloatingSelectionTransform : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::FloatingSelectionTransform)

public:
    /// Obsolete without a selection, and for a \a transform that is the present one or unusable.
    FloatingSelectionTransform(Model::MRScene *scene, const Model::FloatingSelection::Transform &transform,
                               QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    Model::FloatingSelection::Transform m_oldTransform;
    Model::FloatingSelection::Transform m_newTransform;
};

} // namespace Commands
