#pragma once

#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/scenechange.h"

#include <QAbstractTableModel>
#include <QPointer>
#include <QSize>

#include <memory>
#include <utility>

class QMimeData;
class QPainterPath;

namespace Model {

class AudioLayer;
class Drawing;
class Scene;
class Stroke;

/// The scene as a table for views and commands: column c is the layer with storage index c, row r is frame r + 1.
///
/// A visual layer has one more valid row than it has cells, that of the after-last cell where the next drawing goes,
/// even where this is rowCount(), and none behind it, even where other layers go on. An annotation layer takes any row
/// up to Layer::maximumFrames frames, an audio layer those that its sound covers. Without a scene everything is empty,
/// invalid or false. The header of rowCount() tells its size and whether it is backlit, nothing else.
///
/// A persistent index keeps its row when timing is edited, as a position of the sheet does, and becomes invalid when
/// its layer no longer reaches there. Columns move with their layers.
class SceneModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// Roles of cells and of the header sections of layers.
    enum Role {
        LayerTypeRole = 256,       ///< layer: its Layer::LayerType, int
        LayerLinkedRole = 257,     ///< layer: is linked; can be set
        LayerVisibleRole = 258,    ///< layer: is visible; can be set
        LayerAudibleRole = 259,    ///< layer: the sound is to be heard; can be set
        AnnotationImageRole = 260, ///< cell: the note, QImage; can be set
        LayerColorRole = 261,      ///< layer: the colour of a stroke layer, QColor; can be set
        LayerOpacityRole = 262,    ///< layer: 0 to 1; can be set
        LayerIsDrawnRole = 263,    ///< layer: can be drawn on
        LayerIsVisualRole = 264,   ///< layer: has pictures
        LayerBeyondLastRole = 265, ///< layer: its Layer::LayerBeyondLast, int
        LayerLastFrameRole = 266,  ///< layer: the frame behind its last
        FrameBacklitRole = 267,    ///< frame: is the active frame or shines through, while the backlight is on
        OriginalDrawingRole = 268, ///< cell: is an original
        DistantCloneRole = 269,    ///< cell: is a distant clone
        LocalCloneRole = 270,      ///< cell: is a clone
        KeyDrawingRole = 271,      ///< cell: is marked as a key drawing
        BeyondLastRole = 272,      ///< cell: is the after-last position of its layer
        ScrubFrameRole = 273,      ///< frame: is the scrub frame
    };

    explicit SceneModel(QObject *parent = nullptr);
    ~SceneModel() override;

    /// The scene shown, null for none. Not owned.
    [[nodiscard]] Scene *scene() const;
    /// Shows \a scene (may be null) from now on.
    void setScene(Scene *scene);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

    /// The cell at \a index, null when the position has none.
    [[nodiscard]] std::shared_ptr<LayerItem> item(const QModelIndex &index) const;
    /// The drawing of the cell at \a index, null when the position has no cell.
    [[nodiscard]] std::shared_ptr<Drawing> drawing(const QModelIndex &index) const;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant &value,
                       int role = Qt::EditRole) override;

    /// The sizes, in pixels, of a drawing's and of a note's picture in the sheet, by the scene's thumbnail size.
    [[nodiscard]] QSize drawingCellSize() const;
    [[nodiscard]] QSize annotationCellSize() const;

    // The operations of Scene of the same names on the cell at an index. They return what was done, the last step
    // first, as undoChanges() takes it; an empty list when nothing was.
    QList<SceneChange> addBlankDrawing(const QModelIndex &index);
    QList<SceneChange> insertBlankDrawing(const QModelIndex &index);
    QList<SceneChange> addCloneDrawing(const QModelIndex &index);
    QList<SceneChange> addCloneDrawings(const QModelIndex &index, int count);
    QList<SceneChange> cutPath(const QModelIndex &index, const QPainterPath &path);
    QList<SceneChange> deleteDrawing(const QModelIndex &index);
    /// Deletes \a count frames from that of \a index downwards.
    QList<SceneChange> deleteDrawings(const QModelIndex &index, int count);
    QList<SceneChange> replaceDrawing(const QModelIndex &index, std::shared_ptr<Drawing> drawing,
                                      bool updateDistantClones = false, bool blockSignals = false);
    QList<SceneChange> makeDistantClone(const QModelIndex &index, const CellRef &origin, bool blockSignals = false);
    QList<SceneChange> loseDrawing(const QModelIndex &index, bool blockSignals = false);
    QList<SceneChange> turnCloneIntoOriginal(const QModelIndex &index, const QUuid &copyId = {});
    QList<SceneChange> slideOriginalDrawing(const QModelIndex &index, int offset, int lowestOffset, int highestOffset);
    /// Takes \a changes back. \return what goes the other way again.
    QList<SceneChange> undoChanges(const QList<SceneChange> &changes);

    /// What names the cell at \a index, which must be an original; null otherwise.
    [[nodiscard]] CellRef originOfCell(const QModelIndex &index) const;
    /// The index of the original whose drawing has \a copyId; invalid when there is none.
    [[nodiscard]] QModelIndex findOriginal(const QUuid &copyId) const;
    /// The index of the cell that \a ref names; invalid when it is gone.
    [[nodiscard]] QModelIndex indexOfCell(const CellRef &ref) const;
    /// The index of the original that supplies the drawing shown at \a index; invalid when there is none.
    [[nodiscard]] QModelIndex originIndex(const QModelIndex &index) const;

    /// Scene::addStroke() for the cell at \a index.
    bool addStroke(const QModelIndex &index, std::unique_ptr<Stroke> stroke);
    /// Scene::removeLastStroke() for the cell at \a index.
    std::unique_ptr<Stroke> removeLastStroke(const QModelIndex &index);

    /// Scene::copyToMimeData() for the cell at \a index; null also for an invalid one.
    [[nodiscard]] QMimeData *copyToMimeData(const QModelIndex &index) const;
    /// The same for \a indexes, which must be of one layer: from the first of them in the sheet to the last.
    [[nodiscard]] QMimeData *copyToMimeData(const QModelIndexList &indexes) const;

private:
    [[nodiscard]] bool isOwnIndex(const QModelIndex &index) const;
    [[nodiscard]] QVariant audioHeaderData(const AudioLayer &audio, int role) const;
    [[nodiscard]] QVariant visualHeaderData(int section, int role) const;
    [[nodiscard]] QVariant frameHeaderData(int frameId, int role) const;
    void connectScene();
    void onSceneDestroyed();
    void onDrawingsChanged(const QList<std::pair<int, int>> &cells);
    void onLayersChanged(int firstLayerIndex, int lastLayerIndex);
    void onLayerColorChanged(int layerIndex);
    void onScrubFrameChanged(int current, int previous);
    void onThumbnailSizeChanged();
    void announceLayout();
    void announceLayers(int firstLayerIndex, int lastLayerIndex);
    void announceFrames(int firstFrame, int lastFrame);

    QPointer<Scene> m_scene;
    QSize m_drawingCellSize;
    QSize m_annotationCellSize;
};

} // namespace Model
