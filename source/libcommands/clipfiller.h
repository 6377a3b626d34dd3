#pragma once

#include "libmodel/layers/identifierhash.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/scene/scenechange.h"

#include <QList>
#include <QModelIndex>

#include <memory>
#include <set>
#include <unordered_map>
#include <utility>

namespace Model {
class Drawing;
class Scene;
class SceneModel;
} // namespace Model

namespace Commands {

/// Drawings by their copy identifiers.
using KnownDrawings = std::unordered_map<QUuid, std::shared_ptr<Model::Drawing>, Model::IdentifierHash>;

/// The drawings of all originals of \a scene in layers of the type \a layerType that have been copied and not changed
/// since, the first of those with one copy identifier.
[[nodiscard]] KnownDrawings knownDrawings(const Model::Scene &scene, int layerType);

/// Would the cell at \a target be the same after ClipFiller has filled it with \a frame, the only one? Says no where
/// that is not told at a glance.
[[nodiscard]] bool isFilledAlready(const Model::SceneModel &model, const QModelIndex &target,
                                   const Model::DrawingClip::Frame &frame);

/// Fills cells of a layer with frames from the clipboard, from the first frame on.
///
///     hold (not the first)            a hold of what stands before it
///     drawing of an original here     a distant clone of that original; a hold at the very beginning goes on with the
///                                     cell before it, if that shows the drawing
///     drawing that was here           the very drawing, which was discarded or filled over by this paste
///     any other                       an original with the drawing from the clipboard
///
/// Distant clones of an original that is filled over take the new drawing too, unless they were filled themselves.
class ClipFiller
{
public:
    /// For cells of \a column. \a known are the drawings that were here ahead of the paste.
    ClipFiller(Model::SceneModel &model, int column, KnownDrawings known);

    /// Fills the cells from \a startRow on, which must be there. \return what was done, the last step first.
    QList<Model::SceneChange> fill(int startRow, QList<Model::DrawingClip::Frame> frames);

private:
    /// Where a cell stands: column and row.
    using Place = std::pair<int, int>;

    [[nodiscard]] QList<Model::SceneChange> fillCell(const QModelIndex &target, Model::DrawingClip::Frame &frame,
                                                     bool isFirst, bool blockSignals);
    [[nodiscard]] QList<Model::SceneChange> replace(const QModelIndex &target, Model::DrawingClip::Frame &frame,
                                                    bool blockSignals);
    [[nodiscard]] Model::CellRef refOf(const QModelIndex &target) const;
    void lookAround();
    [[nodiscard]] Model::CellRef originalWith(const QUuid &copyId);
    void noteFilled(const QModelIndex &target, const QList<Model::CellRef> &clones);
    void note(const Place &place);
    [[nodiscard]] bool hasFilledClone(const QModelIndex &target) const;

    Model::SceneModel &m_model;
    int m_column;
    KnownDrawings m_known;
    /// Where originals with a copy identifier stand, and where distant clones. A place may be out of date, but none is
    /// missing.
    std::unordered_map<QUuid, std::set<Place>, Model::IdentifierHash> m_originals;
    Model::CellRefMap<Place> m_distantClones;
    Model::CellRefSet m_filled;
};

} // namespace Commands
