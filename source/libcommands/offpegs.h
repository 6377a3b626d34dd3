#pragma once

#include "libcommands/scenecommand.h"

#include <QCoreApplication>
#include <QTransform>

namespace Commands {

/// Takes the active frame off its pegs, moves it there, or puts it back.
///
/// It is the exposure in one layer that lies off the pegs: that of the layer through which the frame does so already,
/// or else that of the active layer. Other exposures of the drawing stay where they are.
class OffPegs : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::OffPegs)

public:
    /// \a transform maps from the desk to the frame's paper; identity puts the frame back. Obsolete when that is where
    /// it lies, when the active layer has no cell there, and for a transform that is not finite or can't be inverted.
    OffPegs(Model::MRScene *scene, const QTransform &transform, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

    [[nodiscard]] int id() const override;
    /// Takes over where a later move leaves the same frame of the same layer; obsolete when that is where it lay before
    /// this one.
    bool mergeWith(const QUndoCommand *other) override;

private:
    void updateText();

    int m_frameId = -1;
    int m_layerIdx = -1;
    QTransform m_oldTransform;
    QTransform m_newTransform;
};

} // namespace Commands
