#pragma once

#include "libcommands/layercommand.h"

#include <QCoreApplication>

namespace Commands {

/// Takes a layer away by the parts that this needs: the only visual layer is replaced by an empty one, of several one
/// is removed after its neighbour has become active, the sound is replaced by silence.
class DiscardLayer : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::DiscardLayer)

public:
    /// Obsolete for other kinds of layers.
    DiscardLayer(Model::MRScene *scene, int layerIdx, QUndoCommand *parent = nullptr);

private:
    void discardVisual(Model::MRScene *scene);
};

} // namespace Commands
