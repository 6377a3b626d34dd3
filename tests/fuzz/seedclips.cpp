#include "fuzz/seedclips.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QMimeData>

#include <memory>

using namespace Model;

namespace TestSupport {

namespace {

constexpr QSize frame(64, 48);
constexpr int strokes = 0;
constexpr int pictures = 1;
constexpr int cells = 6;

QImage picture(int number)
{
    QImage image(3 + number, 4, QImage::Format_ARGB32);
    image.fill(qRgba(number * 20, 30, 40, 200));
    return image;
}

/// Two layers of originals with a hold and distant clones; \a numbers are their drawings' copy identifiers, 0 for one
/// of its own.
void build(Scene &scene, const QList<int> &numbers)
{
    scene.setFrameSize(frame, MR::FitMode::FitModeIgnore);
    scene.insertLayer(std::make_shared<StrokeLayer>(Qt::black, frame), strokes);
    scene.insertLayer(std::make_shared<ReferenceLayer>(frame), pictures);
    for (const int layerIdx : {strokes, pictures}) {
        while (scene.lastFrame(layerIdx) < cells)
            scene.addBlankDrawing(layerIdx, scene.lastFrame(layerIdx));
        for (int frameId = 1; frameId <= cells; ++frameId) {
            QImage coverage(QSize(2 + frameId, 3), QImage::Format_Alpha8);
            coverage.fill(40 * frameId);
            scene.addStroke(strokes, frameId,
                            std::make_unique<BitmapStroke>(coverage, QRect({5, 6 * frameId}, coverage.size())));
            scene.replaceDrawing(pictures, frameId, std::make_shared<ImageDrawing>(picture(frameId)));
        }
        scene.loseDrawing(layerIdx, 2);
        scene.makeDistantClone(layerIdx, 4, scene.originOfFrame(layerIdx, 1));
        scene.makeDistantClone(layerIdx, 5, scene.originOfFrame(layerIdx, 6));
        for (int frameId = 1; frameId <= cells; ++frameId) {
            if (const int number = numbers.value(frameId - 1); number > 0)
                scene.item(layerIdx, frameId)
                    ->drawing->setCopyId(QUuid(uint(number) + 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
        }
    }
}

} // namespace

std::vector<QByteArray> drawingClips()
{
    std::vector<QByteArray> clips;
    for (const QList<int> &numbers : {QList<int>{}, QList<int>{1, 1, 3, 1, 4, 4}, QList<int>{3, 3, 9, 3, 1, 1}}) {
        Scene scene;
        build(scene, numbers);
        for (const int layerIdx : {strokes, pictures}) {
            for (const auto &[first, count] : {std::pair(1, 1), {1, cells}, {2, 1}, {2, 3}, {3, 4}, {5, 2}}) {
                const std::unique_ptr<QMimeData> data(scene.copyToMimeData(layerIdx, first, count));
                clips.push_back(data->data(DrawingClip::mimeType));
            }
        }
    }
    return clips;
}

} // namespace TestSupport
