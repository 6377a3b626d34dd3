#pragma once

#include "libcommands/scenecommand.h"
#include "libmodel/strokes/floatingselection.h"

#include <QCoreApplication>

namespace Commands {

/// Lets another selection float over the drawing, or none.
class FloatingSelectionNew : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::FloatingSelectionNew)

public:
    /// \a selection may be a null one; obsolete if nothing floats anyway then.
    FloatingSelectionNew(Model::MRScene *scene, const Model::FloatingSelection &selection,
                         QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    void swap();

    Model::FloatingSelection m_other; ///< the one that is not in the scene
};

} // namespace Commands
