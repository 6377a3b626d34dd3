#pragma once

#include "libmodel/scene/scenechange.h"

#include <QList>

namespace Commands {

/// What several operations in a row have done.
class ChangeSteps
{
public:
    /// Adds what one operation has done, its last step first.
    void add(const QList<Model::SceneChange> &changes);
    /// All of it, the last step of the last operation first.
    [[nodiscard]] QList<Model::SceneChange> lastFirst() const;

private:
    QList<QList<Model::SceneChange>> m_operations;
};

} // namespace Commands
