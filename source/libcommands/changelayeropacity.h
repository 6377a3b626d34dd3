#pragma once

#include "libcommands/layercommand.h"

#include <QCoreApplication>

namespace Commands {

/// Changes the opacity of a layer. The steps of a drag merge.
class ChangeLayerOpacity : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::ChangeLayerOpacity)

public:
    /// From \a oldOpacity, which undo brings back, to \a newOpacity (both limited to 0 to 1). Obsolete if they
    /// are equal or no numbers, or the layer is not visual.
    ChangeLayerOpacity(Model::MRScene *scene, int layerIdx, double oldOpacity, double newOpacity,
                       QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

    [[nodiscard]] int id() const override;
    /// Takes the opacity of a later change of the same layer.
    bool mergeWith(const QUndoCommand *other) override;

private:
    [[nodiscard]] bool isUnchanged() const;

    double m_old;
    double m_new;
};

} // namespace Commands
