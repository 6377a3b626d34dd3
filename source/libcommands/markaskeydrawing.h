#pragma once

#include "libcommands/scenecommand.h"

#include <QCoreApplication>

namespace Commands {

/// Marks the active cell as a key drawing, or takes the mark off.
class MarkAsKeyDrawing : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::MarkAsKeyDrawing)

public:
    /// Obsolete where the mark is as wanted already, and where there is no cell.
    MarkAsKeyDrawing(Model::MRScene *scene, bool on, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    bool m_on;
    int m_frameId = -1;
    int m_layerIdx = -1;
};

} // namespace Commands
