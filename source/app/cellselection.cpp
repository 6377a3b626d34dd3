#include "app/cellselection.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scenemodel.h"

#include <QItemSelectionModel>

#include <algorithm>

namespace CellSelection {

QList<Span> selected(const Model::MRScene &scene)
{
    const Model::Scene &sheet = *scene.scene();
    QList<Span> spans;
    const QItemSelection selection = scene.selectionModel()->selection();
    for (const QItemSelectionRange &range : selection) {
        for (int layerIdx = std::max(range.left(), 0); layerIdx <= range.right(); ++layerIdx) {
            if (!sheet.visualLayer(layerIdx))
                continue;
            // Row 0 of the sheet is the first frame of the range.
            const int first = sheet.rangeFirst() + range.top();
            const int last =
                std::min({sheet.rangeFirst() + range.bottom(), sheet.rangeLast(), sheet.lastFrame(layerIdx)});
            if (first <= last)
                spans.append({layerIdx, first, last});
        }
    }
    return spans;
}

QList<Span> toEdit(const Model::MRScene &scene)
{
    const QList<Span> spans = selected(scene);
    if (!spans.isEmpty())
        return spans;
    const Model::Scene &sheet = *scene.scene();
    if (!sheet.visualLayer(sheet.activeLayerIdx()))
        return {};
    return {{sheet.activeLayerIdx(), sheet.activeFrame(), sheet.activeFrame()}};
}

int count(const QList<Span> &spans)
{
    int cells = 0;
    for (const Span &span : spans)
        cells += span.lastFrame - span.firstFrame + 1;
    return cells;
}

QModelIndexList indexes(const Model::MRScene &scene, const QList<Span> &spans)
{
    QModelIndexList cells;
    for (const Span &span : spans) {
        for (int frameId = span.firstFrame; frameId <= span.lastFrame; ++frameId)
            cells.append(scene.sceneModel()->index(frameId - 1, span.layerIdx));
    }
    return cells;
}

} // namespace CellSelection
