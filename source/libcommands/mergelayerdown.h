#pragma once

#include "libcommands/layercommand.h"

#include <QCoreApplication>

namespace Commands {

/// Merges a layer into the next visual one below it.
///
/// The lower layer gives way to a copy that takes what the upper one shows; then the upper one goes. Undo walks the
/// same steps back in reverse, so that layers and links stand as they stood. Where layers have gone meanwhile, or stand
/// elsewhere, nothing happens.
class MergeLayerDown : public LayerCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::MergeLayerDown)

public:
    /// Obsolete unless the layer at \a upperIdx and the one below are draw layers of one type.
    MergeLayerDown(Model::MRScene *scene, int upperIdx, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    /// Does \a model stand as redo() has left it, with the merged layer in place of the two?
    [[nodiscard]] bool hasOnlyMerged(const Model::Scene &model) const;

    int m_lowerIdx = -1;
    int m_lowerVisualIndex = -1;
    std::shared_ptr<Model::Layer> m_upper;
    std::shared_ptr<Model::Layer> m_lower;
    std::shared_ptr<Model::Layer> m_merged;
};

} // namespace Commands
