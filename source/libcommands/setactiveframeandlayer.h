#pragma once

#include "libcommands/scenecommand.h"
#include "libmodel/scene/scene.h"

#include <QCoreApplication>

namespace Commands {

/// Moves the active position.
class SetActiveFrameAndLayer : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::SetActiveFrameAndLayer)

public:
    /// \a behaviour says what becomes of a frame just behind the last cell of the layer. Obsolete when the scene
    /// stands there.
    SetActiveFrameAndLayer(Model::MRScene *scene, int frameId, int layerIdx,
                           Model::Scene::SetFrameBehaviour behaviour = Model::Scene::KeepFrameOnDrawing,
                           QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

    [[nodiscard]] int id() const override;
    /// Takes the position of a later move, unless both layer and behaviour differ.
    bool mergeWith(const QUndoCommand *other) override;

private:
    struct Position
    {
        int frameId = -1;
        int layerIdx = -1;
        bool operator==(const Position &) const = default;
    };

    void updateText();

    Position m_new;
    Position m_old;
    Position m_arrived; ///< where m_new has led; -1 before the first redo
    Model::Scene::SetFrameBehaviour m_behaviour;
};

} // namespace Commands
