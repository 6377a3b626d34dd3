#pragma once

#include <QModelIndexList>

namespace Model {
class MRScene;
}

/// Which cells of the exposure sheet an edit means: those that are selected, or else the one that is worked on.
namespace CellSelection {

/// Cells of one layer that follow each other, counted from 1; there is always at least one.
struct Span
{
    int layerIdx = -1;
    int firstFrame = -1;
    int lastFrame = -1;

    bool operator==(const Span &) const = default;
};

/// The selected cells of visual layers within the playback range; empty when none is selected.
[[nodiscard]] QList<Span> selected(const Model::MRScene &scene);

/// The selected cells, or without any the active position, which may be the empty one behind the layer's last cell.
[[nodiscard]] QList<Span> toEdit(const Model::MRScene &scene);

/// How many cells \a spans hold.
[[nodiscard]] int count(const QList<Span> &spans);

/// The cells of \a spans as indexes of the scene's Model::SceneModel.
[[nodiscard]] QModelIndexList indexes(const Model::MRScene &scene, const QList<Span> &spans);

} // namespace CellSelection
