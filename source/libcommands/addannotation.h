#pragma once

#include "libcommands/scenecommand.h"

#include <QCoreApplication>
#include <QImage>

namespace Commands {

/// Writes a note beside a frame, in the place of what stood there.
class AddAnnotation : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::AddAnnotation)

public:
    /// Obsolete without a layer of notes, for a frame that the scene does not have, and for an image that is no
    /// note (see Model::AnnotationLayer::setImage()) or the one that stands there.
    AddAnnotation(Model::MRScene *scene, int frameId, const QImage &image, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

private:
    bool setImage(const QImage &image);

    int m_frameId;
    QImage m_new;
    QImage m_old;
};

} // namespace Commands
