#pragma once

#include "libcommands/recordedcommand.h"

#include <QCoreApplication>

namespace Commands {

/// Moves the active cell within its layer: the hold on one side grows by what that on the other side loses.
class SlideOriginalDrawing : public RecordedCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::SlideOriginalDrawing)

public:
    /// The arguments of Model::Scene::slideOriginalDrawing(). Obsolete if all of them are 0.
    SlideOriginalDrawing(Model::MRScene *scene, int offset, int lowestOffset, int highestOffset,
                         QUndoCommand *parent = nullptr);

private:
    QList<Model::SceneChange> run(Model::SceneModel &model) override;
    void moveOn(Model::Scene &scene) override;

    int m_offset;
    int m_lowestOffset;
    int m_highestOffset;
};

} // namespace Commands
