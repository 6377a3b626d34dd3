#include "libcommands/changelayeropacity.h"

#include "libcommands/mergeids.h"
#include "libmodel/base/fuzzy.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

#include <algorithm>
#include <cmath>

namespace Commands {

ChangeLayerOpacity::ChangeLayerOpacity(Model::MRScene *scene, int layerIdx, double oldOpacity, double newOpacity,
                                       QUndoCommand *parent)
    : LayerCommand(scene, layerIdx, parent),
      m_old(std::clamp(oldOpacity, 0.0, 1.0)),
      m_new(std::clamp(newOpacity, 0.0, 1.0))
{
    setText(tr("Change Layer Opacity"));
    if (isObsolete())
        return;
    setObsolete(!scene->scene()->visualLayer(layerIdx) || std::isnan(oldOpacity) || std::isnan(newOpacity) ||
                isUnchanged());
}

// Fuzzily, nothing but zero equals zero: hence the 1.
bool ChangeLayerOpacity::isUnchanged() const
{
    return Model::fuzzyEqual(m_old + 1.0, m_new + 1.0);
}

void ChangeLayerOpacity::redo()
{
    if (Model::Scene *model = scene())
        model->setLayerOpacity(layerIdx(), m_new);
}

void ChangeLayerOpacity::undo()
{
    if (Model::Scene *model = scene())
        model->setLayerOpacity(layerIdx(), m_old);
}

int ChangeLayerOpacity::id() const
{
    return ChangeLayerOpacityId;
}

bool ChangeLayerOpacity::mergeWith(const QUndoCommand *other)
{
    const auto *later = dynamic_cast<const ChangeLayerOpacity *>(other);
    if (!later || later->isObsolete())
        return false;
    if (later->layerIdx() != layerIdx())
        return false;
    m_new = later->m_new;
    setObsolete(isUnchanged());
    return true;
}

} // namespace Commands
