#pragma once

#include "app/cellselection.h"

#include <optional>

namespace Model {
class MRScene;
}

/// What can be done about picking up and stamping, as things stand in a scene.
namespace FloatingState {

/// Where a stamp goes.
struct Target
{
    /// Cells with drawings, or a single position.
    QList<CellSelection::Span> spans;
    /// They are those that the user selected, and not the active position.
    bool isSelection = false;
    /// It is the empty position behind the last cell of the active layer, which needs a drawing first.
    bool isBehindLast = false;
};

/// Is the floating selection of \a scene there to be moved and stamped? As long as its tool is the chosen one, also
/// under a tool that is borrowed.
[[nodiscard]] bool floats(const Model::MRScene &scene);

/// Is the selection's tool in the hand and held up by a mode? It takes no stamp then.
[[nodiscard]] bool isBlocked();

/// Is the active layer of \a scene one of strokes that is shown?
[[nodiscard]] bool canPickUp(const Model::MRScene &scene);

/// Is anything drawn in the active cell, so far or by the stroke in progress? Only strokes count.
[[nodiscard]] bool hasStrokes(const Model::MRScene &scene);

/// Where the user's stamp goes: to the selected cells, if they are several, or to the active position; only to layers
/// of strokes that are shown, and of the selected cells not to holds alone while those are locked. Nothing where there
/// is no such cell.
[[nodiscard]] std::optional<Target> target(const Model::MRScene &scene);

/// Where a selection goes that must not get lost: to the active position, also on a hidden layer, or else to the
/// topmost layer of strokes that has a cell at this frame, or to the last cell of the topmost one that has any. Nothing
/// only where no layer of strokes has a cell.
[[nodiscard]] std::optional<Target> refuge(const Model::MRScene &scene);

} // namespace FloatingState
