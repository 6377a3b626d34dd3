#include "libcommands/changetooltype.h"

#include "libcommands/mergeids.h"
#include "libmodel/tools/toolmanager.h"

namespace Commands {

ChangeToolType::ChangeToolType(Model::MRScene *scene, Model::Tool::Type type, QUndoCommand *parent)
    : SceneCommand(scene, parent),
      m_new(type),
      m_old(Model::ToolManager::instance()->currentToolType()),
      m_oldMode(Model::ToolManager::instance()->currentToolMode())
{
    setText(tr("Change tool type"));
    if (m_new == m_old)
        setObsolete(true);
}

void ChangeToolType::redo()
{
    if (scene())
        Model::ToolManager::instance()->setCurrentTool(m_new, 0);
}

void ChangeToolType::undo()
{
    if (scene())
        Model::ToolManager::instance()->setCurrentTool(m_old, m_oldMode);
}

int ChangeToolType::id() const
{
    return ChangeToolTypeId;
}

bool ChangeToolType::mergeWith(const QUndoCommand *other)
{
    const auto *later = dynamic_cast<const ChangeToolType *>(other);
    if (!later || later->isObsolete())
        return false;
    m_new = later->m_new;
    setObsolete(m_new == m_old);
    return true;
}

} // namespace Commands
