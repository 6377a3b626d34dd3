#pragma once

#include "support/randomnumbers.h"

#include <QString>
#include <QUndoCommand>

#include <functional>
#include <memory>
#include <vector>

namespace Model {
class MRScene;
} // namespace Model

namespace TestSupport {

/// One edit, ready to be pushed on an undo stack.
struct Edit
{
    std::unique_ptr<QUndoCommand> command; ///< null where the scene offers no place for such an edit
    QString arguments;                     ///< for people: cells as layer/frame
};

/// A kind of edit: an operation of the scene ("scene.") or a command.
struct EditKind
{
    const char *name;
    int weight; ///< how often it is tried, among the weights of all
    std::function<Edit(Model::MRScene &, RandomNumbers &)> make;
};

/// All kinds. Those that make a scene grow have no place in one that is large already.
[[nodiscard]] const std::vector<EditKind> &editKinds();

/// One of editKinds() by the weights, as its position.
[[nodiscard]] size_t randomEditKind(RandomNumbers &random);

} // namespace TestSupport
