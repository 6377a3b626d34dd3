#pragma once

namespace Model {

class Scene;

/// Gives every cell of \a scene that shows another cell's drawing that drawing.
///
/// One pass over the layers with cells in storage order: a hold takes the drawing of the cell before it, a distant
/// clone that of its origin, wherever in the scene it stands. A distant clone whose origin does not exist, or holds a
/// drawing of another kind, keeps the one it has. The originals' lists of clones are neither used nor changed.
void resolveLinks(Scene &scene);

} // namespace Model
