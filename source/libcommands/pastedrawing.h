#pragma once

#include "libcommands/cellcommand.h"
#include "libcommands/clipfiller.h"
#include "libmodel/scene/drawingclip.h"

#include <QCoreApplication>
#include <QModelIndexList>

class QMimeData;

namespace Model {
class DrawingClipReader;
class Progress;
} // namespace Model

namespace Commands {

class ChangeSteps;

/// Puts drawings from the clipboard into a layer, with their timing and, where they are known here, their links.
///
///     over a selection       cells too many are discarded, missing ones added as holds behind the last one selected;
///                            then the cells from the first selected one on are filled
///     at a cell              new cells are inserted there and filled; what stands there moves back
///
/// Only cells of one layer are touched, that of the first cell, and those of layers linked with it as far as cells are
/// discarded or added. A frame becomes a distant clone of the original here that has its drawing (clipfiller.h). What
/// cannot be read as a whole, or was copied from another kind of layer, makes the command obsolete; and so does a
/// single drawing for a cell that has it already.
class PasteDrawing : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::PasteDrawing)

public:
    /// Over \a selection, indexes of the scene's Model::SceneModel, which is made as long as what is pasted. \a data
    /// (may be null) holds the private form, of which the command keeps a copy.
    PasteDrawing(Model::MRScene *scene, const QModelIndexList &selection, const QMimeData *data,
                 QUndoCommand *parent = nullptr);
    /// Into new cells at \a cell, which may be the empty position behind the layer's last one.
    PasteDrawing(Model::MRScene *scene, const QModelIndex &cell, const QMimeData *data, QUndoCommand *parent = nullptr);
    /// The same for the private form as \a clip has it. \a progress (may be null) is told how far its drawings are
    /// read; if it is cancelled there is nothing to paste.
    PasteDrawing(Model::MRScene *scene, const QModelIndexList &selection, const Model::DrawingClipReader &clip,
                 Model::Progress *progress, QUndoCommand *parent = nullptr);
    PasteDrawing(Model::MRScene *scene, const QModelIndex &cell, const Model::DrawingClipReader &clip,
                 Model::Progress *progress, QUndoCommand *parent = nullptr);
    ~PasteDrawing() override;

    /// Why it is obsolete: the user cancelled reading, or the drawings need more memory than there is.
    [[nodiscard]] bool isCancelled() const { return m_isCancelled; }
    [[nodiscard]] bool exceedsMemory() const { return m_exceedsMemory; }
    /// Do drawings that come into the scene have strokes that do not show?
    [[nodiscard]] bool isIncomplete() const { return m_isIncomplete; }

    /// Does \a data (may be null) hold drawings that a layer of the type \a layerType (Model::Layer::LayerType) takes?
    /// Looks at no more of them than their kind.
    [[nodiscard]] static bool canPaste(const QMimeData *data, int layerType);

private:
    enum class Place { OverCells, BeforeCell };

    void take(const Model::DrawingClipReader &clip, Model::Progress *progress);
    void read(const Model::DrawingClipReader &clip, Model::Progress *progress);
    [[nodiscard]] bool changesNothing() const;
    [[nodiscard]] bool makeRoom(Model::SceneModel &model, ChangeSteps &steps) const;
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;

    Place m_place;
    QModelIndexList m_cells; ///< those of the layer that is pasted into
    int m_count = 0;         ///< frames on the clipboard
    /// Until they are pasted for the first time; later the cells themselves come back.
    QList<Model::DrawingClip::Frame> m_frames;
    KnownDrawings m_known;
    bool m_isCancelled = false;
    bool m_exceedsMemory = false;
    bool m_isIncomplete = false;
};

} // namespace Commands
