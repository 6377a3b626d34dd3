#include "export/rendering.h"

#include "export/interrupt.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/frameexport.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/strokedrawing.h"

#include <algorithm>

namespace Export {

namespace {

/// Has what \a layer shows at \a frameId, by the rule beyond its last cell, strokes without an image?
bool showsUnrendered(const Model::VisualLayer &layer, int frameId)
{
    const auto cell = layer.item(layer.shownFrame(frameId));
    const auto *drawing = cell ? dynamic_cast<const Model::StrokeDrawing *>(cell->drawing.get()) : nullptr;
    return drawing && !drawing->isEmpty() && drawing->image().isNull();
}

} // namespace

bool showsUnrendered(const Model::Scene &scene, const Model::ExportFramesSettings &settings)
{
    const QList<int> chosen = Model::exportedLayers(scene, settings.layers);
    for (Model::FrameExportWalk walk(scene, settings); !walk.atEnd() && !wasInterrupted();) {
        const QList<Model::FrameExportFile> files = walk.takeFrame();
        for (const Model::FrameExportFile &file : files) {
            const QList<int> layers = file.layerIdx >= 0 ? QList<int>{file.layerIdx} : chosen;
            if (std::ranges::any_of(
                    layers, [&](int layerIdx) { return showsUnrendered(*scene.visualLayer(layerIdx), file.frameId); }))
                return true;
        }
    }
    return false;
}

} // namespace Export
