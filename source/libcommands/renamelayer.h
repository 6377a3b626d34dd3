#pragma once

#include "libcommands/layercommand.h"

#include <QCoreApplication>
#include <QString>

namespace Commands {

/// Gives a layer another name.
class RenameLayer : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::RenameLayer)

public:
    /// Obsolete if that is its name.
    RenameLayer(Model::MRScene *scene, int layerIdx, const QString &name, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    QString m_new;
    QString m_old;
};

} // namespace Commands
