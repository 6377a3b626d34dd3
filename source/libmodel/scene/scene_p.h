#pragma once

#include "libmodel/scene/scene.h"
#include "libmodel/strokes/strokedriver.h"

#include <QUndoStack>

namespace Model {

class AnnotationLayer;
class AudioLayer;

class Scene::Private
{
public:
    QString name;
    QString filename;
    QSize frameSize;
    QList<std::shared_ptr<Layer>> layers;

    /// The picture with and without the backlight. As long as no backlight is under it, framePixmap shares the pixels
    /// of currentFramePixmap.
    QPixmap framePixmap;
    QPixmap currentFramePixmap;
    /// The frame that currentFramePixmap shows; 0 when it has to be composed from scratch.
    int pixmapFrame = 0;
    /// currentFramePixmap is transparent outside of this.
    QRect composedRect;

    /// Inverses of each other.
    QList<int> layerToVisual;
    QList<int> visualToLayer;

    int maximumFrameNumber = 1;
    int activeFrame = -1;
    int scrubFrame = -1;
    int activeLayerIdx = -1;
    int audioLayerIdx = -1;
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
    /// Remembers which layer is the audio layer, and tells it the rate.
    void findAudioLayer();
    /// Makes visualToLayer again from layerToVisual.
    void invertOrder();
};

} // namespace Model
