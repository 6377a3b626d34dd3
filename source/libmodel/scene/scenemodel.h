#pragma once

#include "libmodel/layers/layeritem.h"

#include <QAbstractTableModel>

#include <memory>
#include <utility>

namespace Model {

class Drawing;
class Scene;
class Stroke;

/// The scene as a table for views and commands: column c is the layer with storage index c, row r is frame r + 1.
///
/// A visual layer has one more valid row than it has cells, that of the after-last cell where the next drawing goes,
/// even where this is rowCount(). Without a scene everything is empty, invalid or false.
class SceneModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// Roles of cells and of the header sections of layers.
    enum Role {
        LayerIsVisualRole = 264,   ///< header: a layer with pictures
        OriginalDrawingRole = 268, ///< cell: is an original
        DistantCloneRole = 269,    ///< cell: is a distant clone
        LocalCloneRole = 270,      ///< cell: is a clone
        KeyDrawingRole = 271,      ///< cell: is marked as a key drawing
        BeyondLastRole = 272,      ///< cell: is the after-last position of its layer
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
    /// Scene::addStroke() for the cell at \a index.
    bool addStroke(const QModelIndex &index, std::unique_ptr<Stroke> stroke);
    /// Scene::removeLastStroke() for the cell at \a index.
    std::unique_ptr<Stroke> removeLastStroke(const QModelIndex &index);

private:
    bool isOwnIndex(const QModelIndex &index) const;
    void connectScene();
    void onSceneDestroyed();
    void onDrawingsChanged(const QList<std::pair<int, int>> &cells);
    void onLayersChanged(int firstLayerIndex, int lastLayerIndex);
    void announceLayout();

    Scene *m_scene = nullptr;
};

} // namespace Model
