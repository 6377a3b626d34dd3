#pragma once

#include "libcommands/cellcommand.h"

#include <QCoreApplication>
#include <QImage>
#include <QModelIndexList>

namespace Commands {

/// Puts a picture from the clipboard into a reference layer, as a cell of its own. One that does not fit the frame is
/// scaled to fit.
class PasteImage : public CellCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::PasteImage)

public:
    /// In the place of those of \a selection, indexes of the scene's Model::SceneModel, that lie in reference layers:
    /// they are discarded, and the picture comes where the topmost stood.
    PasteImage(Model::MRScene *scene, const QModelIndexList &selection, const QImage &image,
               QUndoCommand *parent = nullptr);
    /// At \a cell, which may be the empty position behind the layer's last one.
    PasteImage(Model::MRScene *scene, const QModelIndex &cell, const QImage &image, QUndoCommand *parent = nullptr);

private:
    enum class Place { OverCells, BeforeCell };

    void take(const Model::MRScene *scene, const QImage &image);
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;

    Place m_place;
    QImage m_image; ///< until it is pasted for the first time; later the cell itself comes back
};

} // namespace Commands
