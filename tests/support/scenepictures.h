#pragma once

#include <QString>

namespace Model {
class Scene;
}

namespace TestSupport {

/// Holds every picture that \a scene keeps against one that is made anew: the composed ones, the coverage of each
/// drawing (from its strokes), the pictures of the cells in the sheet. What is kept is dropped on the way.
/// \return which one is out of date, empty if none is.
[[nodiscard]] QString stalePicture(Model::Scene &scene);

} // namespace TestSupport
