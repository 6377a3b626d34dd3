#pragma once

#include <QAbstractProxyModel>
#include <QImage>
#include <QSize>

#include <memory>

namespace Model {

class Scene;

/// The playback range of a SceneModel, with one more row behind it, as the exposure sheet shows it.
///
///     row 0          frame rangeFirst
///     ...
///     row n - 2      frame rangeLast (or where a drag has pushed it to)
///     row n - 1      the row after the last: only visual columns may have a cell there
///
/// While a cell is dragged, the model shows the timing as it will be when the drag ends, though nothing is committed:
/// the sheet pushes the command with offset(), lowestOffset() and highestOffset() after endDrag(). Row 0 stays the
/// frame that it was and is shown with the row behind it, however short the range gets. Whatever changes the scene's
/// structure meanwhile ends the drag, its offsets being 0 then.
///
/// A persistent index keeps its frame when the range changes and its row during a drag, and becomes invalid where no
/// cell is left. Columns that are not visual have an index in every row but the last, also where the source has none.
class FrameRangeModel : public QAbstractProxyModel
{
    Q_OBJECT

public:
    /// What a drag does.
    enum DragMode {
        SlideMode = 0,     ///< moves an original between its neighbours
        AddClonesMode = 1, ///< lengthens or shortens a hold, in linked layers too
        NoDrag = 2,
    };
    Q_ENUM(DragMode)

    explicit FrameRangeModel(QObject *parent = nullptr);
    ~FrameRangeModel() override;

    [[nodiscard]] Scene *scene() const;
    /// Shows the range of \a scene (may be null; not owned), which must be that of the source model.
    void setScene(Scene *scene);
    /// \a model is a SceneModel, not owned.
    void setSourceModel(QAbstractItemModel *model) override;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex &child) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex &parent = {}) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QModelIndex mapToSource(const QModelIndex &proxyIndex) const override;
    [[nodiscard]] QModelIndex mapFromSource(const QModelIndex &sourceIndex) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// What setData() of the source does; false where a drag shows a cell that is yet to be made.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant &value,
                       int role = Qt::EditRole) override;

    /// The picture of a cell for the sheet, at most \a size pixels; null where there is none.
    [[nodiscard]] QImage thumbnail(const QModelIndex &index, QSize size) const;
    /// The last frame that is shown: the end of the range, moved by the drag.
    [[nodiscard]] int displayedLastFrame() const;

    /// Starts a drag at \a index (an index of this model). A drag that still runs ends, without a trace in the offsets,
    /// whatever comes of the new one. \return false when this cell cannot be dragged in \a mode.
    bool beginDrag(DragMode mode, const QModelIndex &index);
    /// Moves the drag to \a value frames from its start, limited to what is possible. Nothing without a drag.
    void setDragOffset(int value);
    /// Ends the drag: the model shows the scene as it stands. The offsets remain readable until the next drag.
    void endDrag();
    [[nodiscard]] DragMode dragMode() const;
    /// The frames by which the drag has moved, and the extremes that it reached on the way.
    [[nodiscard]] int offset() const;
    [[nodiscard]] int lowestOffset() const;
    [[nodiscard]] int highestOffset() const;
    /// The bounds of the drag. That of adding clones is no bound of the sheet: what the longest layer can take at all.
    [[nodiscard]] int minimumOffset() const;
    [[nodiscard]] int maximumOffset() const;

private:
    void connectSource(QAbstractItemModel &model);
    void onSourceDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles);
    void onSourceHeaderDataChanged(Qt::Orientation orientation, int first, int last);
    void onFrameRangeChanged();
    void onColumnsAboutToChange();
    void takeOverLayout();
    void keepHeldIndexes(int rowsUp);
    void announceSize(const QList<int> &roles);
    void announceDragHeaders(DragMode mode);
    void announceLastFrames();
    [[nodiscard]] bool isOwnIndex(const QModelIndex &index) const;

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Model
