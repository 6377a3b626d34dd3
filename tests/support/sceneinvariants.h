#pragma once

#include <QString>

namespace Model {
class Scene;
}

namespace TestSupport {

enum class DanglingLinks { Forbidden, Allowed };

/// What is true of every scene whenever no operation runs on it:
///
/// - orders: both are inverses of each other; there is at most one audio and one annotation layer; identifiers of
/// layers
///   are unique in the scene, those of cells in their layer;
/// - cells: a layer with pictures has at least one, of its own kind and of the scene's frame size; the first is no
///   clone; a clone shows the drawing of the cell before it;
/// - links: the clones of an original and the origins of distant clones name each other, once, within one kind of
///   layer; nothing else has links; two cells share a drawing exactly when one original supplies it;
/// - positions: the maximum is that of the longest layer; the range lies inside and is one frame only in a scene of
/// one;
///   the active position is a cell of a visual layer within the range, or the place behind its last cell where that is
///   not in front of the range; the scrub frame is one of the scene's.
///
/// A scene from a file that somebody else wrote may have links that lead nowhere: then the clones of an original and
/// the origins of distant clones may name cells that do not exist, and stay so whatever is done to the scene.
///
/// \return what is wrong and where, in words; empty if nothing is.
[[nodiscard]] QString brokenInvariant(const Model::Scene &scene, DanglingLinks dangling = DanglingLinks::Forbidden);

} // namespace TestSupport
