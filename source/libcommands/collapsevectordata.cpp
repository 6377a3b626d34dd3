#include "libcommands/collapsevectordata.h"

#include "libmodel/base/dialogprogress.h"
#include "libmodel/base/settings.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/strokedrawing.h"

#include <optional>

namespace Commands {

namespace {

constexpr int dialogDelayMs = 2000;

/// The frame and as much again on each side: what lies further out was never to be seen.
QRect reachOf(QSize frameSize)
{
    return {-frameSize.width(), -frameSize.height(), 3 * frameSize.width(), 3 * frameSize.height()};
}

} // namespace

CollapseVectorData::CollapseVectorData(Model::MRScene *scene, const QModelIndex &cell, QWidget *widget,
                                       QUndoCommand *parent)
    : RecordedCommand(scene, parent), m_widget(widget)
{
    setText(tr("Collapse Vector Data"));
    if (!scene)
        return;
    m_cell = scene->sceneModel()->originIndex(cell);
    setObsolete(!canCollapse(*scene, cell));
}

bool CollapseVectorData::canCollapse(const Model::MRScene &scene, const QModelIndex &cell)
{
    const Model::SceneModel &model = *scene.sceneModel();
    // A distant clone is in the list of its original.
    const auto original = model.item(model.originIndex(cell));
    if (!original || !original->clones.isEmpty())
        return false;
    const auto *drawing = dynamic_cast<const Model::StrokeDrawing *>(original->drawing.get());
    return drawing && !drawing->isEmpty();
}

QList<Model::SceneChange> CollapseVectorData::run(Model::SceneModel &model)
{
    const auto drawing = std::dynamic_pointer_cast<Model::StrokeDrawing>(model.drawing(m_cell));
    if (!drawing || drawing->isEmpty())
        return {};
    std::optional<Model::DialogProgress> progress;
    if (m_widget)
        progress.emplace(m_widget, tr("Collapsing current drawing"), tr("Cancel"), dialogDelayMs);
    const auto collapsed = std::static_pointer_cast<Model::StrokeDrawing>(drawing->clone());
    const int scale = Model::Settings::instance()->collapseScale();
    if (!collapsed->collapse(scale, reachOf(drawing->size()), progress ? &*progress : nullptr))
        return {};
    return model.replaceDrawing(m_cell, collapsed, true, false);
}

void CollapseVectorData::moveOn(Model::Scene &)
{
    // Nobody moves for a change of data.
}

} // namespace Commands
