#pragma once

#include "libcommands/scenecommand.h"
#include "libmodel/base/mr.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSize>

#include <memory>

class QWidget;

namespace Commands {

/// Changes the size of the frames, with all drawings.
///
/// Undo fits the drawings back by the opposite rule, and then puts exactly back what going there and back again has
/// lost: where drawings and exposures lay, and what drawings were known as copies of.
class ChangeFrameSize : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::ChangeFrameSize)

public:
    /// Contents are fitted by \a fitMode. \a dialogParent (may be null) is the window of the progress dialog.
    /// Obsolete for an empty or the present size, and beyond Scene::maximumFrameSide.
    ChangeFrameSize(QWidget *dialogParent, Model::MRScene *scene, QSize size, MR::FitMode fitMode,
                    QUndoCommand *parent = nullptr);

    ~ChangeFrameSize() override;

    void redo() override;
    void undo() override;

private:
    class Remembered;

    void resize(QSize size, MR::FitMode fitMode);

    QPointer<QWidget> m_dialogParent;
    QSize m_new;
    QSize m_old;
    MR::FitMode m_fitMode;
    std::unique_ptr<Remembered> m_before; ///< of the scene as it was before the first change
    std::unique_ptr<Remembered> m_after;  ///< of the scene when the change was last taken back
};

} // namespace Commands
