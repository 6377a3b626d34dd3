#pragma once

#include "libmodel/layers/cellref.h"

#include <QColor>
#include <QList>
#include <QSize>
#include <QString>
#include <QTransform>
#include <QUuid>

#include <vector>

namespace Model {
class MRScene;
class Scene;
} // namespace Model

namespace TestSupport {

/// A drawing, told by its content.
struct DrawingState
{
    int type = 0;         ///< Model::Drawing::Type
    size_t pixels = 0;    ///< hash of format, size and pixels of its image
    int strokes = 0;      ///< in all, groups counted as one more each
    QTransform transform; ///< of the whole
    QSize size;           ///< of its frame
    QUuid copyId;
    QString name;

    bool operator==(const DrawingState &) const = default;
};

/// A cell. The drawing is a position in SceneSnapshot::drawings, so that equal numbers mean one shared object.
struct CellState
{
    int type = 0; ///< Model::LayerItem::Type
    int drawing = 0;
    bool keyDrawing = false;
    QUuid identifier;
    QTransform transform;
    QList<Model::CellRef> clones;
    Model::CellRef origin;

    bool operator==(const CellState &) const = default;
};

/// A layer of any kind; what a kind has not keeps its default.
struct LayerState
{
    int type = 0; ///< Model::Layer::LayerType
    QUuid identifier;
    QString name;
    bool linked = false;
    int beyondLast = 0;
    bool visible = false;
    double opacity = 0;
    QColor color;
    std::vector<CellState> cells;
    std::vector<size_t> notes; ///< hashes of the annotations, 0 for none, up to the last one there is
    double audioOffset = 0;    ///< frames
    bool audible = false;
    size_t sound = 0; ///< hash of the sound's bytes

    bool operator==(const LayerState &other) const;
};

/// Everything of a scene that undo gives back, as a value.
///
/// Left out: the highest layer number that was used, which only ever rises, so that no two layers get one number; the
/// scrub frame, the stroke in progress and the backlight, which are of the moment and no part of any edit; the name and
/// the file, which are set beside the undo stack.
struct SceneSnapshot
{
    SceneSnapshot() = default;
    /// \a scene as it stands.
    explicit SceneSnapshot(const Model::Scene &scene);
    /// The same, with what floats over it.
    explicit SceneSnapshot(const Model::MRScene &mrScene);

    QSize frameSize;
    double frameRate = 0;
    int rangeFirst = 0;
    int rangeLast = 0;
    int maximumFrameNumber = 0;
    int activeFrame = 0;
    int activeLayerIdx = 0;
    QList<int> displayOrder;
    std::vector<LayerState> layers;     ///< in storage order
    std::vector<DrawingState> drawings; ///< in the order in which the layers' cells show them first
    size_t floating = 0;                ///< hash of the floating selection's strokes, place and flags, 0 for none

    bool operator==(const SceneSnapshot &) const = default;

    /// What is other in \a other, one difference to a line; empty if nothing is.
    [[nodiscard]] QString diff(const SceneSnapshot &other) const;
    /// The layers with their cells, for people: "0 stroke "1" *: o0 c0 d1<0:o0> ..." with the numbers of the drawings.
    [[nodiscard]] QString describe() const;
};

} // namespace TestSupport
