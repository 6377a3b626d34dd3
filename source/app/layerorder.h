#pragma once

#include <QList>

namespace Model {
class Scene;
}

/// The storage indexes of the visual layers of \a scene in display order, from the top.
[[nodiscard]] QList<int> visualLayerOrder(const Model::Scene &scene);
