#include "libcommands/changesteps.h"

namespace Commands {

void ChangeSteps::add(const QList<Model::SceneChange> &changes)
{
    m_operations.append(changes);
}

QList<Model::SceneChange> ChangeSteps::lastFirst() const
{
    QList<Model::SceneChange> all;
    for (auto changes = m_operations.crbegin(); changes != m_operations.crend(); ++changes)
        all += *changes;
    return all;
}

} // namespace Commands
