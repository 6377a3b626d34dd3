#include "libcommands/collapsevectordata.h"

#include "libmodel/base/dialogprogress.h"
#include "libmodel/base/settings.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scenemodel.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <optional>

namespace Commands {

namespace {

constexpr int dialogDelayMs = 2000;

/// What of \a drawing is to be in its bitmap with \a scale pixels for each of the paper's, each way: null for all of
/// it, or else the frame and as much again on each side.
QRect reachOf(const Model::StrokeDrawing &drawing, int scale)
{
    const QSize bounds = drawing.strokes().boundingRect().size();
    if (double(bounds.width()) * scale * bounds.height() * scale <= double(CollapseVectorData::mostPixels))
        return {};
    const QSize frame = drawing.size();
    return {-frame.width(), -frame.height(), 3 * frame.width(), 3 * frame.height()};
}

/// Is \a drawing what a collapse with \a scale has left of it, and nothing more?
bool isCollapsed(const Model::StrokeDrawing &drawing, int scale)
{
    const Model::CompoundStroke &strokes = drawing.strokes();
    if (strokes.count() != 1 || !strokes.transform().isIdentity() || !strokes.keepPath().isEmpty() ||
        !strokes.cutPath().isEmpty())
        return false;
    const auto *bitmap = dynamic_cast<const Model::BitmapStroke *>(&strokes.at(0));
    return bitmap && bitmap->image().size() == bitmap->boundingRect().size() * scale;
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
    setObsolete(!parent && !canCollapse(*scene, cell));
}

bool CollapseVectorData::canCollapse(const Model::MRScene &scene, const QModelIndex &cell)
{
    const Model::SceneModel &model = *scene.sceneModel();
    // A distant clone is in the list of its original.
    const auto original = model.item(model.originIndex(cell));
    if (!original || !original->clones.isEmpty())
        return false;
    const auto *drawing = dynamic_cast<const Model::StrokeDrawing *>(original->drawing.get());
    return drawing && !drawing->isEmpty() && !isCollapsed(*drawing, Model::Settings::instance()->collapseScale());
}

QList<Model::SceneChange> CollapseVectorData::run(Model::SceneModel &model)
{
    const auto drawing = std::dynamic_pointer_cast<Model::StrokeDrawing>(model.drawing(m_cell));
    if (!drawing || !canCollapse(*mrScene(), m_cell))
        return {};
    std::optional<Model::DialogProgress> progress;
    if (m_widget)
        progress.emplace(m_widget, tr("Collapsing current drawing"), tr("Cancel"), dialogDelayMs);
    const auto collapsed = std::static_pointer_cast<Model::StrokeDrawing>(drawing->clone());
    const int scale = Model::Settings::instance()->collapseScale();
    if (!collapsed->collapse(scale, reachOf(*drawing, scale), progress ? &*progress : nullptr))
        return {};
    return model.replaceDrawing(m_cell, collapsed, true, false);
}

void CollapseVectorData::moveOn(Model::Scene &)
{
    // Nobody moves for a change of data.
}

} // namespace Commands
