#pragma once

#include "libcommands/scenecommand.h"

#include <QCoreApplication>
#include <QList>

#include <utility>

namespace Commands {

/// Takes the mark off all key drawings of the scene.
class UnmarkAllKeyDrawings : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::UnmarkAllKeyDrawings)

public:
    /// Obsolete if there are none.
    explicit UnmarkAllKeyDrawings(Model::MRScene *scene, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    void mark(bool keyDrawing);

    QList<std::pair<int, int>> m_cells; ///< frame and layer index of those marked
};

} // namespace Commands
