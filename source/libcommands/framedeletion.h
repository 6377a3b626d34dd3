#pragma once

#include "libmodel/scene/scenechange.h"

#include <QList>
#include <QModelIndex>

namespace Model {
class SceneModel;
} // namespace Model

namespace Commands {

/// Deletes the frames of \a cells, indexes of \a model sorted by row, wherever earlier deletions have moved them. A
/// frame that stands in several linked layers goes once. \return what was done, the last step first.
QList<Model::SceneChange> deleteFramesOf(Model::SceneModel &model, const QModelIndexList &cells);

} // namespace Commands
