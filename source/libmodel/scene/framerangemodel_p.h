#pragma once

#include "libmodel/scene/draggedrange.h"
#include "libmodel/scene/framerangemodel.h"
#include "libmodel/scene/slidemap.h"

#include <QPointer>

namespace Model {

/// What is shown, and the drag. "Positions" are those of a column that is shown, from 0 for frame 1, as source rows are
/// those of the scene as it stands.
class FrameRangeModel::Private
{
public:
    QPointer<Scene> scene;
    QList<QMetaObject::Connection> sourceConnections;

    /// The range as the views know it, until the next change is told.
    FrameSpan range;
    /// The end of the range, moved by the drag.
    int displayedLast = 1;

    DragMode mode = NoDrag;
    /// The cell that is dragged, as source row and column.
    int dragRow = -1;
    int dragColumn = -1;
    int offset = 0;
    int minimumOffset = 0;
    int maximumOffset = 0;
    int lowestOffset = 0;
    int highestOffset = 0;
    /// Slide mode: what the dragged column shows.
    SlideMap slide;
    /// Add-clones mode: by how many cells each column is longer (or shorter) at the dragged cell.
    QList<int> shifts;

    [[nodiscard]] bool isVisual(int column) const;
    /// Does \a column share the timing edits of the dragged one?
    [[nodiscard]] bool goesAlong(int column) const;
    [[nodiscard]] int shiftOf(int column) const { return column < shifts.size() ? shifts.at(column) : 0; }
    /// What shows in a row of the model.
    [[nodiscard]] ShownCell shownAt(int row, int column) const;
    /// Where the cell of a source row shows, -1 when the drag takes it out.
    [[nodiscard]] int positionOf(int sourceRow, int column) const;

    /// The end of what is shown: where layers got shorter, nothing is beyond them even before that is told.
    [[nodiscard]] int lastShown() const;
    /// The range of the scene as it stands.
    [[nodiscard]] FrameSpan sceneRange() const;
    void takeOverRange();
    /// Ends the drag without a trace.
    void dropDrag();
    /// \return by how many rows cells move up.
    int dropDragAndTakeOverRange();

    void beginSlide();
    void beginAddClones();
    /// Takes over \a value, limited to the bounds. \return whether it was another one.
    bool moveTo(int value);
    /// Shows what the offsets say.
    void showOffsets();

private:
    [[nodiscard]] bool isClone(int row, int column) const;
    [[nodiscard]] bool canShrinkAt(int row) const;
    [[nodiscard]] int columnLength(int column) const;
    [[nodiscard]] QList<DraggedLayer> draggedLayers() const;
    [[nodiscard]] int shiftByOffset(int column) const;
};

} // namespace Model
