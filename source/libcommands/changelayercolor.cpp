#include "libcommands/changelayercolor.h"

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

namespace Commands {

ChangeLayerColor::ChangeLayerColor(Model::MRScene *scene, int layerIdx, const QColor &color, QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent), m_new(color)
{
    setText(tr("Change Layer Color"));
    if (isObsolete())
        return;
    const auto *layer = dynamic_cast<const Model::StrokeLayer *>(scene->scene()->layer(layerIdx));
    if (layer)
        m_old = layer->color();
    setObsolete(!layer || !m_new.isValid() || m_new == m_old);
}

void ChangeLayerColor::redo()
{
    if (Model::Scene *model = scene())
        model->setLayerColor(layerIdx(), m_new);
}

void ChangeLayerColor::undo()
{
    if (Model::Scene *model = scene())
        model->setLayerColor(layerIdx(), m_old);
}

} // namespace Commands
