#pragma once

#include "libcommands/scenecommand.h"
#include "libcommands/sceneposition.h"

#include <QCoreApplication>

namespace Commands {

/// Changes the playback range, and with it the active position if that would be outside.
class SetFrameRange : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::SetFrameRange)

public:
    /// The arguments of Model::Scene::setFrameRange(). Obsolete when nothing would change.
    SetFrameRange(Model::MRScene *scene, int lower, int upper, int wantedFrameId, int wantedLayerIdx,
                  QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

    [[nodiscard]] int id() const override;
    /// Takes the bounds of a later change, which has been done, that wants the same frame and layer.
    bool mergeWith(const QUndoCommand *other) override;

private:
    int m_lower;
    int m_upper;
    int m_wantedFrameId;
    int m_wantedLayerIdx;
    ScenePosition m_before;
    bool m_ran = false;
};

} // namespace Commands
