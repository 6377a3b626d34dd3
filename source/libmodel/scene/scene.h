#pragma once

#include "libmodel/base/backlightsettings.h"
#include "libmodel/base/mr.h"
#include "libmodel/layers/cellref.h"
#include "libmodel/layers/layer.h"
#include "libmodel/scene/backlightframes.h"
#include "libmodel/scene/frameexport.h"
#include "libmodel/scene/scenechange.h"
#include "libmodel/strokes/sample.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPixmap>
#include <QRect>
#include <QSize>
#include <QTransform>

#include <memory>
#include <optional>
#include <utility>

class QMimeData;
class QPainter;
class QPainterPath;
class QProgressDialog;
class QUndoStack;

namespace Model {

class Drawing;
class FloatingSelection;
class Progress;
class SingleStroke;
class Stroke;
class VisualLayer;
struct LayerItem;

/// The document: an ordered list of layers, and the state that all views share.
///
///     storage order (layerIdx)      0   1   2        never changed by moving a layer
///     display order (visual index)  top ... bottom   painted from the bottom up, the active layer last
///
/// Frames are counted from 1; -1 is "no frame". The empty position just behind the last cell of the active layer is a
/// legal place to stand. The playback range always lies inside the frames of the scene.
///
/// Every operation that is given a layer index, a visual index or a frame that does not exist does nothing, emits
/// nothing, and answers false, an empty list or null. A QRect is in paper pixels.
///
/// The source is split by concern: scene_layers (layer list and order), scene_attributes (what a layer or cell is set
/// to), scene_active (active position, range, scrub frame), scene_cells (what stands where), scene_exposure (adding and
/// deleting frames), scene_content (what one cell shows, committed strokes), scene_undo (the way back), scene_merge,
/// scene_pickup (cutting and picking up), scene_clipboard, scene_stroke (the stroke in progress), scene_composition and
/// scene_backlight (the composed pictures), scene_export.
///
/// Operations on cells return what they did as a list of changes, the last first, which undoChanges() reverses exactly:
/// with the same cells, links and drawings. The playback range and the active position are kept legal on the way, but
/// whoever takes an operation back restores them with setFrameRange().
class Scene : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QSize frameSize READ frameSize NOTIFY frameSizeChanged)
    Q_PROPERTY(double frameRate READ frameRate WRITE setFrameRate NOTIFY frameRateChanged)
    Q_PROPERTY(MR::ThumbnailSize thumbnailSize READ thumbnailSize WRITE setThumbnailSize NOTIFY thumbnailSizeChanged)
    Q_PROPERTY(int maximumFrameNumber READ maximumFrameNumber NOTIFY maximumFrameNumberChanged)
    Q_PROPERTY(int activeFrame READ activeFrame NOTIFY activeFrameAndLayerChanged)
    Q_PROPERTY(int activeLayerIdx READ activeLayerIdx NOTIFY activeFrameAndLayerChanged)
    Q_PROPERTY(int minimumFrameNumber READ minimumFrameNumber CONSTANT)

public:
    /// What becomes of a frame just behind the layer's last cell.
    enum SetFrameBehaviour {
        AllowFrameAfterLast = 0, ///< it is kept
        KeepFrameOnDrawing = 1,  ///< it is pulled back onto a cell
    };
    Q_ENUM(SetFrameBehaviour)

    /// The bounds of frameRate(), in frames per second.
    static constexpr double slowestFrameRate = 0.1;
    static constexpr double fastestFrameRate = 60.0;

    /// The longest side of a frame that may be chosen and saved, in pixels.
    static constexpr int maximumFrameSide = 8192;
    /// The most layers that a scene takes; what would go beyond is refused.
    static constexpr int maximumLayers = 4096;
    /// The most of them that are visual: there is always room for one of sound and one of notes.
    static constexpr int maximumVisualLayers = maximumLayers - 2;

    /// A scene without layers, with the size, rate and thumbnail size of the settings.
    explicit Scene(QObject *parent = nullptr);
    ~Scene() override;

    /// The base of the displayed name, "Untitled" at first.
    [[nodiscard]] QString name() const;
    void setName(const QString &name);
    /// The file that the scene is kept in; empty for none.
    [[nodiscard]] QString filename() const;
    void setFilename(const QString &filename);
    /// The name of the file without its folder, or name() without a file.
    [[nodiscard]] QString displayName() const;
    /// The steps that can be undone, at most 50. Owned by the scene; its clean state is the saved state.
    [[nodiscard]] QUndoStack *undoStack() const;
    /// Pixels of every drawing.
    [[nodiscard]] QSize frameSize() const;
    /// Frames per second, from 0.1 to 60.
    [[nodiscard]] double frameRate() const;
    [[nodiscard]] MR::ThumbnailSize thumbnailSize() const;
    void setThumbnailSize(MR::ThumbnailSize size);

    [[nodiscard]] int layerCount() const;
    /// The layer at \a layerIdx, null when there is none. Owned by the scene.
    [[nodiscard]] Layer *layer(int layerIdx) const;
    /// The same as a share in its ownership, for whoever may outlive its removal.
    [[nodiscard]] std::shared_ptr<Layer> layerPtr(int layerIdx) const;
    /// The layer at \a layerIdx if it is a visual one, otherwise null.
    [[nodiscard]] VisualLayer *visualLayer(int layerIdx) const;
    /// The storage index of the audio or of the annotation layer, -1 without one.
    [[nodiscard]] int audioLayerIdx() const;
    [[nodiscard]] int annotationLayerIdx() const;
    /// The storage index of the layer of that \a identifier, -1 if there is none.
    [[nodiscard]] int indexOfLayer(const QUuid &identifier) const;
    /// The place of a layer in the display order, 0 at the top; -1 when there is no such layer.
    [[nodiscard]] int visualIndex(int layerIdx) const;
    /// The storage index of the layer at \a index of the display order; -1 when there is none.
    [[nodiscard]] int layerAtVisualIndex(int index) const;
    /// The storage indexes in display order, from the top.
    [[nodiscard]] QList<int> layerOrder() const;
    /// The next visual layer below in the display order; -1 when there is none.
    [[nodiscard]] int nextVisualLayer(int layerIdx) const;
    /// Is the layer visual, visible, and of an opacity that can be seen?
    [[nodiscard]] bool isLayerShown(int layerIdx) const;

    /// Adds the pictures of the layer \a upper to those of \a lower, frame by frame, as far as \a upper goes: drawings,
    /// key marks and transforms. Both must be draw layers of one type. \return false when nothing was done. Not
    /// recorded; the caller keeps what it wants back.
    bool mergeLayers(int upper, int lower);
    /// Puts \a layer into the storage list at \a layerIdx (limited to 0 to layerCount()) and at the bottom of the
    /// display order; moveLayer() takes it elsewhere. Links between its cells and those of other layers stand again.
    /// \return its index, -1 for a null layer, one already here, a second one of sound or notes, and a visual one
    /// beyond maximumVisualLayers.
    int insertLayer(std::shared_ptr<Layer> layer, int layerIdx);
    /// insertLayer() behind all others for readers of files, which see to the links themselves when all layers are
    /// there: those of its cells are left as they are.
    int appendReadLayer(std::shared_ptr<Layer> layer);
    /// Takes a layer out. If it was the active one, its neighbour above (or else below) becomes active. Distant clones
    /// elsewhere of its originals stay: the first becomes an original.
    std::shared_ptr<Layer> removeLayer(int layerIdx);
    /// Puts \a layer in the place of another, in both orders. \return the other, null if nothing was done.
    std::shared_ptr<Layer> swapLayer(int layerIdx, std::shared_ptr<Layer> layer);
    /// Moves a layer to \a newVisualIndex of the display order. \return false also when it stands there already.
    bool moveLayer(int layerIdx, int newVisualIndex);
    /// The name for a new layer: the next number. Numbers of removed layers do not come again.
    QString nextLayerName();
    /// The number last given by nextLayerName(); saved with the scene.
    [[nodiscard]] int highestUsedLayerNumber() const;
    void setHighestUsedLayerNumber(int number);

    /// True when there is such a layer. An equal name does nothing.
    bool setLayerName(int layerIdx, const QString &name);
    /// True when the layer is visual. An equal value does nothing.
    bool setLayerVisible(int layerIdx, bool visible);
    /// True when there is such a layer. An equal value does nothing.
    bool setLayerLinked(int layerIdx, bool linked);
    /// False when the layer is not visual, and for an equal or unknown mode.
    bool setLayerBeyondLast(int layerIdx, Layer::LayerBeyondLast beyondLast);
    /// Overwrites the note beside \a frameId. False without an annotation layer, and for an image that the layer does
    /// not take (see AnnotationLayer::setImage()).
    bool setAnnotation(int frameId, const QImage &image);

    /// Always 1.
    [[nodiscard]] int minimumFrameNumber() const { return 1; }
    /// The largest number of frames of any layer, at least 1.
    [[nodiscard]] int maximumFrameNumber() const;
    /// The number of cells of a visual layer, maximumFrameNumber() for any other, 0 for no layer.
    [[nodiscard]] int lastFrame(int layerIdx) const;
    /// Is \a frameId the empty position just behind the layer's last cell?
    [[nodiscard]] bool isAfterLast(int layerIdx, int frameId) const;
    /// The cell, null when the layer has none there.
    [[nodiscard]] std::shared_ptr<LayerItem> item(int layerIdx, int frameId) const;
    /// The cell that \a ref names, with where it stands; null (and the two untouched) when it is gone.
    [[nodiscard]] std::shared_ptr<LayerItem> findItem(const CellRef &ref, int *layerIdx = nullptr,
                                                      int *frameId = nullptr) const;
    /// The original that supplies the drawing shown in a cell; null when there is no cell.
    [[nodiscard]] CellRef originOfFrame(int layerIdx, int frameId) const;
    /// The transform of the topmost visual layer whose cell at \a frameId is off its pegs, and that layer in
    /// \a layerIdx if given; identity (and -1) when none is.
    [[nodiscard]] QTransform offPegsTransformOfFrame(int frameId, int *layerIdx = nullptr) const;

    /// The original whose drawing has \a copyId, with what names it and where it stands; null (and the rest untouched)
    /// when there is none, or for a null identifier.
    [[nodiscard]] std::shared_ptr<LayerItem> findOriginalByCopyId(const QUuid &copyId, CellRef *ref = nullptr,
                                                                  int *layerIdx = nullptr,
                                                                  int *frameId = nullptr) const;

    /// Adds a blank cell behind \a frameId (0 to the layer's length). A linked layer takes all linked layers along:
    /// the others get a hold, so that the sheets stay in step. \return what was done; empty when nothing was.
    QList<SceneChange> addBlankDrawing(int layerIdx, int frameId);
    /// Adds a blank cell in front of \a frameId (1 to the layer's length + 1).
    QList<SceneChange> insertBlankDrawing(int layerIdx, int frameId);
    /// Adds a hold behind \a frameId, in all linked layers if this one is linked. With \a blockSignals nobody is told.
    QList<SceneChange> addCloneDrawing(int layerIdx, int frameId, bool blockSignals = false);
    /// Adds \a count holds behind \a frameId; the views are told once. The change done last stands first.
    QList<SceneChange> addCloneDrawings(int layerIdx, int frameId, int count);
    /// Adds \a count holds from \a frameId on, for scenes that are being made.
    void appendCloneDrawings(int layerIdx, int frameId, int count);
    /// Removes the cell at \a frameId (1 to the layer's length), in all linked layers that have this frame if this one
    /// is linked. See VisualLayer::removeFrame() for first and last cells. Deleting the last frame of the range leaves
    /// the active position behind the active layer's last cell.
    QList<SceneChange> deleteFrame(int layerIdx, int frameId);
    /// Deletes \a count frames from \a frameId downwards, or as many as there are.
    QList<SceneChange> deleteFrames(int layerIdx, int frameId, int count);
    /// Makes the cell at \a frameId (from 2 on) a hold of what stands before it. With \a blockSignals nobody is told.
    QList<SceneChange> loseDrawing(int layerIdx, int frameId, bool blockSignals = false);
    /// Gives a clone or distant clone a drawing of its own, a copy of what it shows, with \a copyId unless that is
    /// null.
    QList<SceneChange> turnCloneIntoOriginal(int layerIdx, int frameId, const QUuid &copyId = {});
    /// Makes a cell a distant clone of the original \a origin, which must stand in a layer of the same type and be
    /// another cell. With \a blockSignals nobody is told.
    QList<SceneChange> makeDistantClone(int layerIdx, int frameId, const CellRef &origin, bool blockSignals = false);
    /// Makes a cell an original with \a drawing (not null, of the layer's kind, and shown nowhere yet). The distant
    /// clones of what it was take \a drawing too with \a updateDistantClones, and otherwise keep the old drawing. With
    /// \a blockSignals nobody is told.
    QList<SceneChange> replaceDrawing(int layerIdx, int frameId, std::shared_ptr<Drawing> drawing,
                                      bool updateDistantClones = false, bool blockSignals = false);
    /// Moves the cell at \a frameId (from 2 on, no clone) by \a offset frames within its layer, whose length stays: the
    /// hold on one side grows by what that on the other side loses. Clones within \a lowestOffset (0 or less) and
    /// \a highestOffset (0 or more), the extremes of the drag, are dealt out anew; \a offset lies between them.
    QList<SceneChange> slideOriginalDrawing(int layerIdx, int frameId, int offset, int lowestOffset, int highestOffset);
    /// Takes back what \a changes (the last step first) record, each step exactly.
    /// \return the steps that were taken for this, the last first: undoing those in turn does again what was undone.
    QList<SceneChange> undoChanges(const QList<SceneChange> &changes);
    /// Tells everybody that drawings were changed behind the scene's back, and composes the picture anew.
    void refreshDrawings();
    /// Gives \a stroke to the drawing of a cell. False also when the drawing does not take it (an eraser on an empty
    /// drawing, for one).
    bool addStroke(int layerIdx, int frameId, std::unique_ptr<Model::Stroke> stroke);
    /// Takes the last stroke off the drawing of a cell. \return null when there is none.
    std::unique_ptr<Model::Stroke> removeLastStroke(int layerIdx, int frameId);

    /// Takes away what lies inside \a path (paper coordinates) from the drawing of a stroke layer's cell, wherever that
    /// is shown: the drawing is replaced by one with the cut. Empty also when nothing lies there.
    QList<SceneChange> cutPath(int layerIdx, int frameId, const QPainterPath &path);
    /// A copy of what lies inside \a path (paper coordinates) in the drawing of the active cell, or of all of it for an
    /// empty path. Null when there is nothing, and unless the active layer is a stroke layer that is shown.
    [[nodiscard]] FloatingSelection floatingSelectionFrom(const QPainterPath &path) const;
    /// \a count cells of a stroke or reference layer from \a firstFrame on, for the clipboard (drawingclip.h tells in
    /// which forms). Drawings without a copy identifier are given one. The caller owns the result; null when the layer
    /// has no such frames or is of another kind, and for a \a count below 1.
    [[nodiscard]] QMimeData *copyToMimeData(int layerIdx, int firstFrame, int count) const;

    /// The frame worked on: a cell of the active layer or the position just behind; -1 before the first activation.
    [[nodiscard]] int activeFrame() const;
    /// -1 before the first activation.
    [[nodiscard]] int activeLayerIdx() const;
    /// The frame on show while scrubbing or flipping; -1 for none.
    [[nodiscard]] int scrubFrame() const;
    /// The playback range.
    [[nodiscard]] int rangeFirst() const;
    [[nodiscard]] int rangeLast() const;
    /// Does the active position have a cell that could be drawn on? False behind the layer's last cell.
    [[nodiscard]] bool activeCellHasDrawing() const;

    /// Begins a stroke at \a sample. One that is still active is dropped, not committed.
    void beginStroke(const Sample &sample);
    /// The same for a pen that came hovering from \a previousPoint, which gives the first direction.
    void beginStroke(const Sample &sample, QPointF previousPoint);
    /// Leads the stroke on to \a sample. Ignored within 1.0 of the last, and without a stroke.
    void addSample(const Sample &sample);
    /// Ends the stroke and hands it over; null without one.
    [[nodiscard]] std::unique_ptr<SingleStroke> takeStroke();
    [[nodiscard]] bool hasActiveStroke() const;
    /// The stroke in progress, null without one. Owned by the scene.
    [[nodiscard]] const SingleStroke *activeStroke() const;
    /// Paints the dotted tail between the line's end and the pen, in the active layer's colour and 2 * \a radius wide.
    /// \return the part of \a rect that it covers.
    QRect drawActiveStrokeTail(QPainter *painter, QRect rect, double radius);

    /// Paints the scene as the paper shows it, within \a rect and the frame: the scrub frame, or the active frame,
    /// with the stroke in progress inside its layer.
    void paintFrame(QPainter *painter, QRect rect) const;
    /// The parts of paintFrame(), for tools that put something between them: painted in the order backlight, frames,
    /// active stroke they make the same. The active layer with the stroke in progress inside it, at \a opacity (0 to
    /// 1); nothing without a stroke.
    void paintActiveStroke(QPainter *painter, QRect rect, double opacity) const;
    /// Only the neighbouring frames.
    void paintBacklight(QPainter *painter, QRect rect) const;
    /// Only the layers at the current frame; while a stroke is in progress, those apart from the active one.
    void paintFrames(QPainter *painter, QRect rect) const;
    /// What the paper shows when no stroke is active; null without a visual layer.
    [[nodiscard]] QPixmap framePixmap() const;
    /// The layers at the current frame.
    [[nodiscard]] QPixmap currentFramePixmap() const;
    /// The neighbouring frames that shine through.
    [[nodiscard]] QPixmap backlightPixmap() const;
    [[nodiscard]] BacklightSettings backlightSettings() const;
    /// The frames that shine through, in painting order: the farthest first. Empty while the backlight is off.
    [[nodiscard]] QList<BacklightFrame> backlightFrames() const;

    /// Writes frames as numbered image files into the folder of \a settings, over what stands there (frameexport.h
    /// tells which, and under which names). A cancel leaves the files that are written, each whole. \a progress is
    /// advanced once per frame of the range.
    FrameExportResult exportFrames(const ExportFramesSettings &settings, Progress &progress) const;

public slots:
    /// Gives every drawing the size \a size, contents fitted by \a fitMode. Nothing for an empty or equal size, and
    /// for sides beyond StrokeDrawing::maximumSide. A scene with sides beyond maximumFrameSide cannot be saved.
    void setFrameSize(QSize size, MR::FitMode fitMode, QProgressDialog *progressDialog);
    void setFrameSize(QSize size, MR::FitMode fitMode);
    /// Limits the rate to slowestFrameRate and fastestFrameRate.
    void setFrameRate(double frameRate);
    /// False for a layer that has no colour.
    bool setLayerColor(int layerIdx, QColor color);
    /// Limited to 0 to 1. False for a layer that is not visual.
    bool setLayerOpacity(int layerIdx, double opacity);
    void setKeyDrawing(int layerIdx, int frameId, bool keyDrawing);
    /// Moves the active position; the frame is limited to the layer's cells within the range (and the position behind
    /// them, by \a setFrameBehaviour). Refused for audio and annotation layers.
    void setActiveFrameAndLayer(int frameId, int layerIdx, Model::Scene::SetFrameBehaviour setFrameBehaviour);
    /// Shows \a frameId without leaving the active frame. Below 1 unsets it, behind the last frame it stays.
    void setScrubFrame(int frameId);
    void unsetScrubFrame();
    /// Moves the exposure of the active frame and layer off its pegs.
    void setCurrentDrawingOffPegsTransform(QTransform transform);
    /// The same for a frame of the active layer.
    void setOffPegsTransform(int frameId, const QTransform &transform);
    /// The same for any visual layer.
    void setOffPegsTransform(int frameId, int layerIdx, const QTransform &transform);
    /// Sets the playback range, limited to the frames there are and widened to two frames where there are as many, and
    /// the active position: the wanted one, or the nearest that lies inside.
    void setFrameRange(int lower, int upper, int wantedFrameId, int wantedLayerIdx);
    /// Takes over the length of the longest layer.
    void updateMaxFrameNumber();
    /// Has the picture composed anew when it is looked at next. \a updateBacklight: the neighbouring frames may have
    /// changed too; otherwise they are left as they stand.
    void updateCachedFramePixmap(bool updateBacklight);
    void updateCachedFramePixmap();
    void updateCachedCurrentFramePixmap();
    /// Decides at once which frames shine through.
    void updateCachedBacklightPixmap();
    /// Equal settings do nothing.
    void setBacklightSettings(const Model::BacklightSettings &backlightSettings);
    /// From now on the sound follows the scrub frame.
    void startScrubbing();
    void stopScrubbing();
    /// Takes an offset of the sound as it stood before, without rounding. Nothing without a sound layer or for an
    /// infinite or undefined number.
    void restoreAudioOffset(double frames);
    /// Plays the sound from \a frameId to the scene's last frame.
    void startAudioPlayback(int frameId);
    void stopAudioPlayback();

signals:
    /// The name or the file changed; \a name is displayName().
    void nameChanged(QString name);
    void frameRangeChanged(int first, int last);
    void layerRangeChanged(int first, int last);
    void frameRateChanged(double fps);
    void frameSizeAboutToChange(QSize size);
    void frameSizeChanged(QSize size);
    void activeFrameAndLayerChanged(int frameId, int layerIdx);
    void scrubFrameChanged(int current, int previous);
    void hasActiveStrokeChanged(bool hasActiveStroke);
    /// Header data or cells of these layers changed.
    void layersChanged(int firstLayerIndex, int lastLayerIndex);
    void layerMoved(int layerIndex, int oldVisualLayerIndex, int newVisualLayerIndex);
    void beginInsertLayer(int newLayerIndex);
    void layerInserted(int newLayerIndex);
    void endInsertLayer();
    void beginRemoveLayer(int layerIndex);
    void layerRemoved(int layerIndex);
    void endRemoveLayer();
    /// The composed picture, or the stroke on it, changed in \a rect.
    void rectChanged(QRect rect);
    /// The pictures of these cells changed: pairs of frame and layer index.
    void drawingsChanged(QList<std::pair<int, int>> cells);
    void currentDrawingTypeUpdated();
    /// The transform of the active frame changed.
    void offPegsTransformChanged(QTransform transform);
    void layerColorChanged(int layerIndex, QColor color);
    void layerOpacityChanged(int layerIndex, double opacity);
    void maximumFrameNumberChanged(int numFrames);
    /// Other frames, or other strengths or tints of them, shine through.
    void backlightFramesChanged();
    void thumbnailSizeChanged(MR::ThumbnailSize thumbnailSize);

private:
    /// Pairs of frame and layer index, as drawingsChanged() tells them.
    using CellList = QList<std::pair<int, int>>;

    int putLayer(std::shared_ptr<Layer> layer, int layerIdx, bool attachesLinks);
    bool setActivePosition(int frameId, int layerIdx, SetFrameBehaviour behaviour);
    [[nodiscard]] bool isLegalPosition(int frameId, int layerIdx) const;
    bool moveToLegalPosition(int wantedFrameId, int wantedLayerIdx);
    void keepPositionLegal();
    void activateNear(int visualIndex);
    void keepRangeInside();
    [[nodiscard]] int layerForRange(int wantedLayerIdx, int first) const;
    QList<SceneChange> addCell(int layerIdx, int frameId, bool blank, bool composeAfterwards);
    QList<QList<SceneChange>> addHolds(int layerIdx, int frameId, int count, int step);
    [[nodiscard]] bool canGrow(int layerIdx, int count) const;
    void shiftForInsertion(int frameId, bool growRange);
    void shrinkForRemoval(int frameId, bool shrinkRange);
    [[nodiscard]] bool canSlide(int layerIdx, int frameId, int offset, int lowestOffset, int highestOffset) const;
    [[nodiscard]] CellList cellsShowing(int layerIdx, int frameId) const;
    void addWithHolds(CellList &cells, int layerIdx, int frameId) const;
    [[nodiscard]] static CellList sorted(CellList cells);
    [[nodiscard]] CellList firstCloneOf(const LayerItem &cell) const;
    [[nodiscard]] bool isShownSomewhere(const Drawing &drawing) const;
    SceneChange releaseCell(int layerIdx, int frameId);
    void announceContent(int layerIdx, int frameId, CellList others);
    void repairCell(int layerIdx, int frameId);
    std::shared_ptr<LayerItem> putBack(const SceneChange &change);
    QList<SceneChange> reverse(const SceneChange &change);
    void makeMergeable(VisualLayer &layer, int frameId);
    void startStroke(const Sample &sample, std::optional<QPointF> previousPoint);
    void onStrokeRectChanged(QRect rect);
    void recompose();
    void recompose(QRect rect);
    void paintLayers(QPainter *painter, QRect rect, int frameId, int exceptLayerIdx) const;

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Model
