#pragma once

#include "libcommands/layercommand.h"

#include <QColor>
#include <QCoreApplication>

namespace Commands {

/// Changes the colour of a stroke layer.
class ChangeLayerColor : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::ChangeLayerColor)

public:
    /// Obsolete for an invalid or its present colour, and if the layer has none.
    ChangeLayerColor(Model::MRScene *scene, int layerIdx, const QColor &color, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    QColor m_new;
    QColor m_old;
};

} // namespace Commands
