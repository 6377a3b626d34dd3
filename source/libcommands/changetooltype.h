#pragma once

#include "libcommands/scenecommand.h"
#include "libmodel/tools/tool.h"

#include <QCoreApplication>

namespace Commands {

/// Changes the current tool. Only for leaving the floating selection tool, which commits the selection: undo has to
/// come back to it.
class ChangeToolType : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::ChangeToolType)

public:
    /// Obsolete when \a type is that of the current tool.
    ChangeToolType(Model::MRScene *scene, Model::Tool::Type type, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

    [[nodiscard]] int id() const override;
    /// Takes the tool of a later change.
    bool mergeWith(const QUndoCommand *other) override;

private:
    Model::Tool::Type m_new;
    Model::Tool::Type m_old;
    int m_oldMode;
};

} // namespace Commands
