#include "libcommands/floatingselectionnew.h"

#include "libmodel/scene/mrscene.h"

namespace Commands {

FloatingSelectionNew::FloatingSelectionNew(Model::MRScene *scene, const Model::FloatingSelection &selection,
                                           QUndoCommand *parent)
    : SceneCommand(scene, parent), m_other(selection)
{
    setText(tr("Create floating selection"));
    if (scene && selection.isNull() && scene->floatingSelection().isNull())
        setObsolete(true);
}

void FloatingSelectionNew::redo()
{
    swap();
}

void FloatingSelectionNew::undo()
{
    swap();
}

void FloatingSelectionNew::swap()
{
    if (Model::MRScene *scene = mrScene())
        m_other = scene->setFloatingSelection(m_other);
}

} // namespace Commands
