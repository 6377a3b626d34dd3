#pragma once

#include "libcommands/cellcommand.h"
#include "libcommands/clipfiller.h"
#include "libmodel/scene/drawingclip.h"

#include <QCoreApplication>
#include <QModelIndexList>

class QMimeData;

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
/// cannot be read as a whole, or was copied from another kind of layer, makes the command obsolete.
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
    ~PasteDrawing() override;

    /// Does \a data (may be null) hold drawings that a layer of the type \a layerType (Model::Layer::LayerType) takes?
    /// Looks at no more of them than their kind.
    [[nodiscard]] static bool canPaste(const QMimeData *data, int layerType);

private:
    enum class Place { OverCells, BeforeCell };

    void take(const Model::Scene &scene, const QMimeData *data);
    [[nodiscard]] bool makeRoom(Model::SceneModel &model, ChangeSteps &steps) const;
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;

    Place m_place;
    QModelIndexList m_cells; ///< those of the layer that is pasted into
    int m_count = 0;         ///< frames on the clipboard
    /// Until they are pasted for the first time; later the cells themselves come back.
    QList<Model::DrawingClip::Frame> m_frames;
    KnownDrawings m_known;
};

} // namespace Commands
