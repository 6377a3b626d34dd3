#pragma once

#include "libcommands/scenecommand.h"
#include "libcommands/sceneposition.h"

#include <QCoreApplication>

#include <memory>

namespace Model {
class Layer;
} // namespace Model

namespace Commands {

/// Adds a layer with one blank drawing and makes it the active one. Done again it brings the same layer back, under
/// the same name.
class NewLayer : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::NewLayer)

public:
    /// A layer of \a layerType (a Model::Layer::LayerType) at \a visualPosition of the display order; -1 stands
    /// for the place of the active layer, which goes down by one. Obsolete for types other than stroke and
    /// reference layers.
    NewLayer(Model::MRScene *scene, int layerType, int visualPosition = -1, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    int m_visualPosition = 0;
    ScenePosition m_before;
    std::shared_ptr<Model::Layer> m_layer;
};

} // namespace Commands
