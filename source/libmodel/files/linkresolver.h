#pragma once

namespace Model {

class Scene;
struct LayerItem;

/// What in the links of a scene that was read cannot be.
struct LinkProblem
{
    enum class Kind {
        None,
        Circle,      ///< distant clones that name each other, or one that names itself
        AnotherKind, ///< a distant clone of a cell in a layer of another type
    };

    Kind kind = Kind::None;
    const LayerItem *cell = nullptr; ///< one of the distant clones concerned; null for None
};

/// Makes the links between the cells of \a scene whole, whose layers have just been read, and gives every cell that
/// shows another cell's drawing that drawing.
///
/// A hold takes the drawing of the cell before it, a distant clone that of its origin, wherever in the scene it stands.
/// One that names another distant clone is pointed at the original that the other shows. One that in the end names a
/// cell that does not exist keeps its link and the drawing it has.
///
/// The originals' lists of clones stay in their order, with the cells in them that do not exist. They lose what is in
/// them twice and the cells that are no distant clones of theirs; those of theirs that are not in them are appended, in
/// the order of the scene.
///
/// Takes time in proportion to the number of cells and entries.
/// \return what is wrong, with the links half made; the scene is of no use then.
[[nodiscard]] LinkProblem resolveLinks(Scene &scene);

} // namespace Model
