#include "app/clipboardcontent.h"

#include "app/clipboardpicture.h"
#include "app/layerorder.h"
#include "libcommands/pastedrawing.h"
#include "libmodel/layers/layer.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QMimeData>

#include <algorithm>
#include <iterator>
#include <utility>

using CellSelection::Span;
using Model::Layer;

ClipboardContent ClipboardContent::of(const QMimeData *data, bool isOwn)
{
    ClipboardContent content;
    if (!data)
        return content;
    const bool hasDrawings = data->hasFormat(Model::DrawingClip::mimeType);
    content.strokeDrawings = hasDrawings && (!isOwn || Commands::PasteDrawing::canPaste(data, Layer::Stroke));
    content.referenceDrawings = hasDrawings && (!isOwn || Commands::PasteDrawing::canPaste(data, Layer::Reference));
    content.image = ClipboardPicture::isOn(*data);
    return content;
}

bool ClipboardContent::hasDrawingsFor(int layerType) const
{
    return (layerType == Layer::Stroke && strokeDrawings) || (layerType == Layer::Reference && referenceDrawings);
}

bool ClipboardContent::canBePasted(const Model::MRScene &scene) const
{
    return std::ranges::any_of(cellsByLayer(scene), [this](const LayerCells &cells) {
        return hasDrawingsFor(cells.layerType) || (image && cells.layerType == Layer::Reference);
    });
}

QList<LayerCells> cellsByLayer(const Model::MRScene &scene)
{
    const Model::Scene &sheet = *scene.scene();
    const QList<Span> spans = CellSelection::toEdit(scene);
    QList<int> order = visualLayerOrder(sheet);
    if (const auto active = std::ranges::find(order, sheet.activeLayerIdx()); active != order.end())
        std::rotate(order.begin(), active, std::next(active));
    QList<LayerCells> layers;
    for (const int layerIdx : std::as_const(order)) {
        LayerCells cells{layerIdx, sheet.layer(layerIdx)->layerType(), {}};
        std::ranges::copy_if(spans, std::back_inserter(cells.spans),
                             [layerIdx](const Span &span) { return span.layerIdx == layerIdx; });
        std::ranges::sort(cells.spans, {}, &Span::firstFrame);
        if (!cells.spans.isEmpty())
            layers.append(cells);
    }
    return layers;
}

PasteTarget PasteTarget::of(const Model::MRScene &scene, int layerType)
{
    const QList<LayerCells> layers = cellsByLayer(scene);
    const auto suited = std::ranges::find(layers, layerType, &LayerCells::layerType);
    if (suited == layers.end())
        return {};
    return {CellSelection::indexes(scene, suited->spans), !CellSelection::selected(scene).isEmpty()};
}
