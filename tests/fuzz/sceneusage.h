#pragma once

#include <QString>

namespace Model {
class Scene;
}

namespace TestSupport {

/// What is wrong with a scene that was read; empty if nothing is. Its references may lead nowhere, for the file may say
/// so, but all else is as in any scene.
[[nodiscard]] QString brokenAfterReading(const Model::Scene &scene);

/// Looks at \a scene, edits it as \a seed says and takes the edits back; ends the program if it is then another scene.
/// Does nothing to large ones, which would take long.
void use(Model::Scene &scene, quint64 seed);

} // namespace TestSupport
