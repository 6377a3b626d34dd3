#pragma once

#include "libmodel/layers/celllinks.h"
#include "libmodel/scene/picturecache.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/strokedriver.h"

#include <QMetaObject>
#include <QUndoStack>

namespace Model {

class AnnotationLayer;
class AudioLayer;
class CellLookup;

class Scene::Private
{
public:
    QString name;
    QString filename;
    QSize frameSize;
    QList<std::shared_ptr<Layer>> layers;

    /// Whose private part this is.
    Scene *scene = nullptr;

    BacklightSettings backlightSettings;
    QList<BacklightFrame> backlightFrames;
    /// Those that the others heard of last.
    QList<BacklightFrame> toldBacklightFrames;
    /// Were the frames that shine through to be told while the signals were blocked?
    bool tellingWasBlocked = false;
    /// Composed by the functions below when somebody looks. framePicture stays as it is for as long as nothing shines
    /// through: currentPicture is the same then. scrubPicture is the frame on show while scrubbing, backlight included.
    PictureCache currentPicture;
    PictureCache backlightPicture;
    PictureCache framePicture;
    PictureCache scrubPicture;
    /// The frame that currentPicture shows; 0 until there is one.
    int pixmapFrame = 0;
    int scrubPictureFrame = 0;
    /// Does the active layer stand out in framePicture, for the lasso or the cutter?
    bool standsOutInPicture = false;
    /// Does it stand out on the screen, as far as it was told?
    bool standsOutOnShow = false;
    QMetaObject::Connection toolWatch;
    /// How often the transform of the active frame was told, and what it was.
    int offPegsTold = 0;
    QTransform toldOffPegs;

    /// Inverses of each other.
    QList<int> layerToVisual;
    QList<int> visualToLayer;

    int maximumFrameNumber = 1;
    int activeFrame = -1;
    int scrubFrame = -1;
    int activeLayerIdx = -1;
    int audioLayerIdx = -1;
    /// The sound follows the scrub frame.
    bool scrubbing = false;
    int rangeFirst = 1;
    int rangeLast = 1;
    MR::ThumbnailSize thumbnailSize;
    double frameRate;
    int highestUsedLayerNumber = 0;
    QUndoStack undoStack;
    StrokeDriver driver;
    /// All that the stroke in progress touched on the screen since it began.
    QRect strokeRect;

    [[nodiscard]] bool isLayer(int layerIdx) const { return layerIdx >= 0 && layerIdx < layers.size(); }
    [[nodiscard]] QRect frameRect() const { return {QPoint(0, 0), frameSize}; }
    [[nodiscard]] bool hasVisualLayer() const;
    [[nodiscard]] AudioLayer *audioLayer() const;
    [[nodiscard]] AnnotationLayer *annotationLayer() const;
    /// The frame whose picture is composed: the scrub frame, the active frame, or -1 where that is behind the range.
    [[nodiscard]] int composedFrame() const;
    [[nodiscard]] bool hasScrubFrame() const { return scrubFrame >= 1 && scrubFrame <= maximumFrameNumber; }
    /// The active frame, or -1 where it is behind the range.
    [[nodiscard]] int frameInRange() const { return activeFrame > rangeLast ? -1 : activeFrame; }
    /// The cell that \a ref names, with where it stands; null (and the two untouched) when it is gone.
    std::shared_ptr<LayerItem> findCell(const CellRef &ref, int *layerIdx = nullptr, int *frameId = nullptr) const;
    /// findCell() as a function for one operation: as long as it is used no cell may come, go or move.
    [[nodiscard]] CellFinder finder() const;
    /// Lets the holds behind the cells that \a refs name take their drawings.
    void spread(const QList<CellRef> &refs) const;
    void spread(const QList<CellRef> &refs, CellLookup &lookup) const;
    /// Lets the cells of \a layer find those of the others.
    void connectFinder(VisualLayer &layer) const;
    /// Takes the links between a layer that has left the list and the others apart, and puts them together again when
    /// it is back in the list.
    void detachLinks(VisualLayer &layer);
    void attachLinks(VisualLayer &layer);
    /// The two halves of attachLinks(): what shows originals elsewhere, and originals that are shown elsewhere.
    static void attachClones(VisualLayer &layer, CellLookup &lookup);
    void attachOriginals(VisualLayer &layer, CellLookup &lookup) const;
    /// From the first look at the picture on, views are told when a change of tools makes it look different.
    void watchTools();
    /// The pictures, composed as far as they have gone stale. There must be a visual layer and a frame size.
    PictureCache &composeCurrent();
    PictureCache &composeBacklight();
    PictureCache &composeFrame();
    PictureCache &composeScrub();
    /// What the paper shows without a stroke in progress: the scrub frame, or the active frame.
    PictureCache &composeShown() { return hasScrubFrame() ? composeScrub() : composeFrame(); }
    [[nodiscard]] bool hasPicture() const { return !frameSize.isEmpty() && hasVisualLayer(); }
    /// Paints the layers at the active frame, all but the active one faintly.
    void paintStandingOut(QPainter *painter, QRect rect) const;
    /// Tells \a picture where the shown layers, or one of them, have ink at \a frameId.
    void addInk(PictureCache &picture, int frameId, QRect rect) const;
    void addInk(PictureCache &picture, const VisualLayer &layer, int frameId, QRect rect) const;
    /// The layers that shine through, the undermost first.
    [[nodiscard]] QList<const VisualLayer *> backlightLayers() const;
    void paintBacklightFrame(QPainter *painter, const BacklightFrame &frame, QRect rect);
    /// Where in the backlight something can be seen that lies in \a rect of a drawing.
    [[nodiscard]] QRect seenInBacklight(QRect rect) const;
    /// Decides anew which frames shine through.
    void decideBacklightFrames();
    /// Tells if other frames shine through than were told last. \return true if that was told.
    bool tellBacklightFrames();
    /// Makes all pictures stale, and decides which frames shine through.
    void markStale();
    /// The same ahead of a signal, so that whoever looks on hearing it sees what it tells; nothing is heard, and
    /// nothing done, while the signals are blocked.
    void markBeforeTelling();

    /// Tells the transform of the active frame.
    void tellOffPegsTransform();
    /// Tells the transform of the active frame in the end, if it is another than at the start and was not told since.
    class OffPegsWatch
    {
    public:
        explicit OffPegsWatch(Private &part);
        ~OffPegsWatch();
        Q_DISABLE_COPY_MOVE(OffPegsWatch)

    private:
        Private &m_part;
        QTransform m_before;
        int m_toldBefore;
    };

    /// Are there as many layers of the kind of \a layer as there can be, beside the one at \a besidesLayerIdx?
    [[nodiscard]] bool isOneTooMany(const Layer &layer, int besidesLayerIdx) const;
    /// Remembers which layer is the audio layer, and tells it the rate.
    void findAudioLayer();
    /// Lets the sound of the scrub frame be heard, if it is to follow; nothing without a scrub frame.
    void soundScrubFrame() const;
    /// Makes visualToLayer again from layerToVisual.
    void invertOrder();
};

} // namespace Model
