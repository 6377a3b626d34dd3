#include "app/clipboardcontent.h"

#include "app/cellselection.h"
#include "libcommands/pastedrawing.h"
#include "libmodel/layers/layer.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QMimeData>

#include <algorithm>

using CellSelection::Span;
using Model::Layer;

namespace {

/// Types of the layers of \a spans, and with it all that decides what can be pasted.
PasteTarget targetWithoutCells(const Model::MRScene &mrScene, const QList<Span> &spans)
{
    PasteTarget target;
    int firstFrame = 0;
    for (const Span &span : spans) {
        const int type = mrScene.scene()->layer(span.layerIdx)->layerType();
        target.hasReferenceLayer |= type == Layer::Reference;
        if (target.layerType < 0 || span.firstFrame < firstFrame) {
            firstFrame = span.firstFrame;
            target.layerType = type;
        }
    }
    return target;
}

} // namespace

ClipboardContent ClipboardContent::of(const QMimeData *data, bool isOwn)
{
    ClipboardContent content;
    if (!data)
        return content;
    const bool hasDrawings = data->hasFormat(Model::DrawingClip::mimeType);
    content.strokeDrawings = hasDrawings && (!isOwn || Commands::PasteDrawing::canPaste(data, Layer::Stroke));
    content.referenceDrawings = hasDrawings && (!isOwn || Commands::PasteDrawing::canPaste(data, Layer::Reference));
    content.image = data->hasImage();
    return content;
}

bool ClipboardContent::hasDrawingsFor(int layerType) const
{
    return (layerType == Layer::Stroke && strokeDrawings) || (layerType == Layer::Reference && referenceDrawings);
}

bool ClipboardContent::canBePasted(const Model::MRScene &scene) const
{
    const PasteTarget target = targetWithoutCells(scene, CellSelection::toEdit(scene));
    return hasDrawingsFor(target.layerType) || (image && target.hasReferenceLayer);
}

PasteTarget PasteTarget::of(const Model::MRScene &scene)
{
    const QList<Span> spans = CellSelection::toEdit(scene);
    PasteTarget target = targetWithoutCells(scene, spans);
    target.isSelection = !CellSelection::selected(scene).isEmpty();
    target.cells = CellSelection::indexes(scene, spans);
    std::ranges::stable_sort(target.cells, {}, &QModelIndex::row);
    return target;
}
