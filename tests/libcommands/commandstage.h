#pragma once

#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/sceneinvariants.h"
#include "support/scenesnapshot.h"

#include <QModelIndex>
#include <QStringList>
#include <QUndoStack>

namespace TestSupport {

constexpr QSize stageFrame(48, 32);

/// A scene of stroke layers written down as text, with a sound and notes below them. It is the current scene.
///
///     A   an original with a drawing of that name      a   a hold of it
///     A*  a distant clone of A, wherever A stands      _   a blank original, . a hold of that
///     A!  marked as a key drawing
///
/// Each letter's drawing is a block of pixels of its own. All frames are in the range, the first is active.
class CommandStage
{
public:
    /// One text for each layer, with its cells separated by spaces; the first layer is on top.
    explicit CommandStage(const QStringList &layers);

    [[nodiscard]] Model::Scene &scene() const { return *m_scene.scene(); }
    [[nodiscard]] Model::MRScene *mrScene() { return &m_scene; }
    [[nodiscard]] Model::SceneModel &model() const { return *m_scene.sceneModel(); }
    [[nodiscard]] QUndoStack &stack() const { return *scene().undoStack(); }
    [[nodiscard]] QModelIndex cell(int frameId, int layerIdx = 0) const { return model().index(frameId - 1, layerIdx); }
    /// The cells of \a frameIds in one layer.
    [[nodiscard]] QModelIndexList cells(const QList<int> &frameIds, int layerIdx = 0) const;
    [[nodiscard]] Model::StrokeDrawing &drawing(int frameId, int layerIdx = 0) const;
    [[nodiscard]] QUuid identifier(int frameId, int layerIdx = 0) const;
    void activate(int frameId, int layerIdx = 0);
    void link(const QList<int> &layers);

    /// The visual layers as they are written down, in storage order, separated by " | ".
    [[nodiscard]] QString text() const;
    [[nodiscard]] SceneSnapshot snapshot() const { return SceneSnapshot(m_scene); }

    /// Pushes \a command on the stack and walks back and forth twice. The command must leave one step on the stack,
    /// every undo must lead exactly to the state from before, every redo exactly to that after, with the invariants
    /// kept. \return what went wrong; empty if nothing did. Ends in the state after the command.
    [[nodiscard]] QString walk(QUndoCommand *command);
    /// Is there nothing more to undo after \a command was pushed, and everything as it was? For commands that find out
    /// only when they run.
    [[nodiscard]] bool drops(QUndoCommand *command);
    /// Is \a command obsolete before it is pushed, so that what can be redone and the clean state survive the push too?
    /// Leaves a step to redo on the stack.
    [[nodiscard]] bool isRefused(QUndoCommand *command);

private:
    void addLayer(const QString &text);
    void linkDistantClones(const QStringList &layers);

    Model::MRScene m_scene;
};

/// As CommandStage::isRefused(), for a scene that is the current one.
[[nodiscard]] bool isRefused(Model::MRScene &mrScene, QUndoCommand *command);

} // namespace TestSupport
