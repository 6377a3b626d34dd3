#include "libcommands/offpegs.h"

#include "libcommands/mergeids.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/scene/mrscene.h"
#include "libmodel/scene/scene.h"

#include <cmath>
#include <initializer_list>

namespace Commands {

namespace {

bool isFiniteAndInvertible(const QTransform &t)
{
    for (const double value : {t.m11(), t.m12(), t.m13(), t.m21(), t.m22(), t.m23(), t.dx(), t.dy(), t.m33()}) {
        if (!std::isfinite(value))
            return false;
    }
    bool isInvertible = false;
    (void)t.inverted(&isInvertible);
    return isInvertible;
}

} // namespace

OffPegs::OffPegs(Model::MRScene *scene, const QTransform &transform, QUndoCommand *parent)
    : SceneCommand(scene, parent), m_newTransform(transform.isIdentity() ? QTransform() : transform)
{
    updateText();
    if (!scene)
        return;
    const Model::Scene &model = *scene->scene();
    m_frameId = model.activeFrame();
    m_oldTransform = model.offPegsTransformOfFrame(m_frameId, &m_layerIdx);
    if (m_layerIdx < 0)
        m_layerIdx = model.activeLayerIdx();
    setObsolete(!isFiniteAndInvertible(transform) || m_newTransform == m_oldTransform ||
                !model.item(m_layerIdx, m_frameId));
}

void OffPegs::redo()
{
    Model::Scene *model = scene();
    const auto cell = model ? model->item(m_layerIdx, m_frameId) : nullptr;
    if (!cell)
        return;
    m_oldTransform = cell->offPegsTransform;
    model->setOffPegsTransform(m_frameId, m_layerIdx, m_newTransform);
}

void OffPegs::undo()
{
    if (Model::Scene *model = scene())
        model->setOffPegsTransform(m_frameId, m_layerIdx, m_oldTransform);
}

int OffPegs::id() const
{
    return OffPegsId;
}

bool OffPegs::mergeWith(const QUndoCommand *other)
{
    const auto *later = dynamic_cast<const OffPegs *>(other);
    if (!later || later->isObsolete() || later->m_frameId != m_frameId || later->m_layerIdx != m_layerIdx)
        return false;
    m_newTransform = later->m_newTransform;
    updateText();
    setObsolete(m_newTransform == m_oldTransform);
    return true;
}

void OffPegs::updateText()
{
    setText(m_newTransform.isIdentity() ? tr("Put Frame On the Pegs") : tr("Take Frame Off the Pegs"));
}

} // namespace Commands
