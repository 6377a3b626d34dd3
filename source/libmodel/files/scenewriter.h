#pragma once

#include "libmodel/base/fileresult.h"

#include <QCoreApplication>
#include <QString>

#include <memory>

class QIODevice;
class QWidget;

namespace Model {

class Progress;
class Scene;

/// Writes a scene as a scene file (docs/file-format.md describes the format).
///
/// Made for one operation and then dropped; owns neither the scene nor the parent widget, and changes nothing in the
/// scene. Saving and autosaving use the same writer.
class SceneWriter
{
    Q_DECLARE_TR_FUNCTIONS(Model::SceneWriter)

public:
    /// A writer of \a scene. The progress dialog is a child of \a parent, which may be null.
    SceneWriter(Scene *scene, QWidget *parent);
    /// A writer of \a scene that reports to \a progress (not owned) instead of a dialog.
    SceneWriter(Scene *scene, Progress &progress);
    ~SceneWriter();

    SceneWriter(const SceneWriter &) = delete;
    SceneWriter &operator=(const SceneWriter &) = delete;

    /// Writes the whole document to \a device, which is open for writing.
    /// \return Error when the device refused something, or with nothing written when there is a refusal(). After
    /// Cancelled the output is half written: throw it away.
    [[nodiscard]] FileResult write(QIODevice *device);

    /// Why the scene cannot be written at all, in words without a full stop; empty if it can. Sizes of frames that only
    /// other uses of a scene allow could not be read again.
    [[nodiscard]] QString refusal() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Model
