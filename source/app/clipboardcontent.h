#pragma once

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

/// Where what is pasted into a scene goes.
struct PasteTarget
{
    /// The selected cells, or else the active position, which may be the empty one behind the layer's last cell; as
    /// indexes of the scene's Model::SceneModel, by rows.
    QModelIndexList cells;
    bool isSelection = false;
    /// The type of the layer that the first cell is in, and whether any is in a reference layer.
    int layerType = -1;
    bool hasReferenceLayer = false;

    [[nodiscard]] static PasteTarget of(const Model::MRScene &scene);
};
