#pragma once

class QUndoCommand;

namespace Model {
class MRScene;
}

/// The empty position behind the last cell of the active layer, where the next drawing goes.
namespace BehindLast {

/// Does the active position of \a scene lie there?
[[nodiscard]] bool isActive(const Model::MRScene &scene);

/// Pushes \a command (owned from then on), which adds a cell behind the last one, as one undo step; the new cell is
/// the active one also where it lies behind the playback range, which is then made longer.
void push(Model::MRScene &scene, QUndoCommand *command);

/// Pushes a command that adds a blank drawing there.
void addBlankDrawing(Model::MRScene &scene);

} // namespace BehindLast
