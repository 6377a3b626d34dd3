#include "libcommands/floatingselectiontransform.h"

#include "libmodel/scene/mrscene.h"

namespace Commands {

FloatingSelectionTransform::FloatingSelectionTransform(Model::MRScene *scene,
                                                       const Model::FloatingSelection::Transform &transform,
                                                       QUndoCommand *parent)
    : SceneCommand(scene, parent), m_newTransform(transform)
{
    setText(tr("Change floating selection"));
    if (!scene)
        return;
    m_oldTransform = scene->floatingSelection().transform();
    if (scene->floatingSelection().isNull() || !transform.isUsable() || transform == m_oldTransform)
        setObsolete(true);
}

void FloatingSelectionTransform::redo()
{
    if (Model::MRScene *scene = mrScene()) {
        m_oldTransform = scene->floatingSelection().transform();
        scene->setFloatingSelectionTransform(m_newTransform);
    }
}

void FloatingSelectionTransform::undo()
{
    if (Model::MRScene *scene = mrScene()) {
        m_newTransform = scene->floatingSelection().transform();
        scene->setFloatingSelectionTransform(m_oldTransform);
    }
}

} // namespace Commands
