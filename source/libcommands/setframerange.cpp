#include "libcommands/setframerange.h"

#include "libcommands/mergeids.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

#include <utility>

namespace Commands {

SetFrameRange::SetFrameRange(Model::MRScene *scene, int lower, int upper, int wantedFrameId, int wantedLayerIdx,
                             QUndoCommand *parent)
    : SceneCommand(scene, parent),
      m_lower(lower),
      m_upper(upper),
      m_wantedFrameId(wantedFrameId),
      m_wantedLayerIdx(wantedLayerIdx)
{
    setText(tr("Change Active Frame Range"));
    if (!scene)
        return;
    m_before = ScenePosition::of(*scene->scene());
    setObsolete(m_before == ScenePosition{lower, upper, wantedFrameId, wantedLayerIdx});
}

void SetFrameRange::redo()
{
    Model::Scene *model = scene();
    if (!model)
        return;
    model->setFrameRange(m_lower, m_upper, m_wantedFrameId, m_wantedLayerIdx);
    if (!std::exchange(m_ran, true) && ScenePosition::of(*model) == m_before)
        setObsolete(true);
}

void SetFrameRange::undo()
{
    if (Model::Scene *model = scene())
        m_before.restore(*model);
}

int SetFrameRange::id() const
{
    return SetFrameRangeId;
}

bool SetFrameRange::mergeWith(const QUndoCommand *other)
{
    const auto *later = dynamic_cast<const SetFrameRange *>(other);
    if (!later || later->isObsolete())
        return false;
    if (later->m_wantedFrameId != m_wantedFrameId || later->m_wantedLayerIdx != m_wantedLayerIdx)
        return false;
    m_lower = later->m_lower;
    m_upper = later->m_upper;
    // The bounds as they turned out: those that were asked for may lie outside, or be too near to each other.
    if (const Model::Scene *model = scene())
        setObsolete(ScenePosition::of(*model) == m_before);
    return true;
}

} // namespace Commands
