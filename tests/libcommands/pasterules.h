#pragma once

#include "support/scenesnapshot.h"

#include <QList>
#include <QUuid>

#include <vector>

namespace TestSupport {

/// A frame on the clipboard, as the rules of copying make it.
struct CopiedFrame
{
    int kind = 0; ///< Model::LayerItem::Type
    DrawingState drawing;
    bool hasDrawing = false; ///< the drawing goes along; otherwise it did with a frame before
};

/// What a copy of \a count frames puts onto the clipboard. \a scene is as the copy leaves it.
[[nodiscard]] std::vector<CopiedFrame> copiedFrames(const SceneSnapshot &scene, int layerIdx, int firstFrame,
                                                    int count);

/// The rules by which a paste fills cells, told a second time on plain lists.
///
/// `originals` and `drawings` are what the paste keeps in mind while it goes from frame to frame, by the copy
/// identifiers of drawings: cells that show a drawing, and drawings that are about to go.
class PasteRules
{
public:
    /// \a scene with as many cells as there are frames; \a discarded were drawings of originals that had to go for
    /// that.
    PasteRules(const SceneSnapshot &scene, const std::vector<DrawingState> &discarded);

    /// Fills the cells of a layer from \a firstRow on.
    void fill(int layerIdx, int firstRow, const std::vector<CopiedFrame> &frames);
    /// The scene now, its drawings in the order in which they are shown.
    [[nodiscard]] SceneSnapshot result() const;

private:
    struct Place
    {
        int layerIdx = -1;
        int row = -1;
    };
    CellState &cell(Place place) { return m_scene.layers[size_t(place.layerIdx)].cells[size_t(place.row)]; }
    [[nodiscard]] Place find(const Model::CellRef &ref) const;
    [[nodiscard]] Place originalOf(const QUuid &copyId, int layerType) const;
    [[nodiscard]] QUuid copyIdAt(Place place);
    [[nodiscard]] Model::CellRef refOf(Place place);
    void fillCell(Place target, const CopiedFrame &frame, bool isFirst);
    void rememberBefore(Place target, const QUuid &pasted);
    void replace(Place target, const DrawingState &drawing);
    void lose(Place target);
    void link(Place target, Place original);
    void letGo(Place target);
    void follow(Place place);

    SceneSnapshot m_scene;
    std::vector<std::pair<QUuid, Model::CellRef>> m_originals;
    std::vector<DrawingState> m_drawings;
    std::vector<Model::CellRef> m_filled;
};

} // namespace TestSupport
