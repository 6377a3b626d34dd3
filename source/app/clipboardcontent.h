#pragma once

#include "app/cellselection.h"

#include <QModelIndexList>

class QMimeData;

namespace Model {
class MRScene;
}

/// What of the system's clipboard could be pasted, as far as its formats tell: a value.
struct ClipboardContent
{
    bool strokeDrawings = false;    ///< for layers of strokes
    bool referenceDrawings = false; ///< for reference layers
    bool image = false;

    bool operator==(const ClipboardContent &) const = default;

    /// The content of \a data (may be null). Another program's data is not asked for, only its formats: that program
    /// may take its time. With \a isOwn, data of this program, the kind of its drawings is known as well.
    [[nodiscard]] static ClipboardContent of(const QMimeData *data, bool isOwn);

    /// Drawings that a layer of the type \a layerType (Model::Layer::LayerType) takes.
    [[nodiscard]] bool hasDrawingsFor(int layerType) const;
    /// Is there anything that can be pasted at the selected cells of \a scene, or without any at its active position?
    [[nodiscard]] bool canBePasted(const Model::MRScene &scene) const;
};

/// The cells of one layer that an edit with the clipboard means.
struct LayerCells
{
    int layerIdx = -1;
    int layerType = -1;               ///< Model::Layer::LayerType
    QList<CellSelection::Span> spans; ///< By their first frames; there is always one.
};

/// The selected cells of \a scene by layers, or without any the active position, which may be the empty one behind the
/// layer's last cell. A copy takes those of one layer, and a paste goes to those of one: the first that suits it. That
/// is the active layer if it is among them; then they come from the top, in whichever order they were selected.
[[nodiscard]] QList<LayerCells> cellsByLayer(const Model::MRScene &scene);

/// Where what is pasted into a scene goes.
struct PasteTarget
{
    /// As indexes of the scene's Model::SceneModel, by rows; empty where nothing suits.
    QModelIndexList cells;
    bool isSelection = false;

    /// The first of cellsByLayer() in a layer of the type \a layerType (Model::Layer::LayerType).
    [[nodiscard]] static PasteTarget of(const Model::MRScene &scene, int layerType);
};
