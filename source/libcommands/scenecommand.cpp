#include "libcommands/scenecommand.h"

#include "libmodel/scene/mrscene.h"

namespace Commands {

SceneCommand::SceneCommand(Model::MRScene *scene, QUndoCommand *parent) : QUndoCommand(parent), m_scene(scene)
{
    setObsolete(!scene);
}

Model::MRScene *SceneCommand::mrScene() const
{
    return isObsolete() ? nullptr : m_scene.data();
}

Model::Scene *SceneCommand::scene() const
{
    const Model::MRScene *scene = mrScene();
    return scene ? scene->scene() : nullptr;
}

} // namespace Commands
