#pragma once

#include "libmodel/base/fileresult.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <memory>

class QIODevice;
class QWidget;

namespace Model {

class Progress;
class Scene;

/// Fills a scene from a scene file (docs/file-format.md describes the format).
///
/// Made for one operation and then dropped. The reader owns neither the scene nor the parent widget. It takes the
/// file for what it may be, something broken or made by somebody else: every number is checked where it enters, and no
/// file takes longer or needs more than its size and its pictures explain. What the program itself could not have
/// written ends the reading with an error; a drawing, picture or note that cannot be decoded is left empty, or as far
/// as it goes, and noted among the damages().
class SceneReader
{
    Q_DECLARE_TR_FUNCTIONS(Model::SceneReader)

public:
    /// A reader into \a scene, whose layers are replaced by the file's. The progress dialog is a child of \a parent,
    /// which may be null.
    SceneReader(Scene *scene, QWidget *parent);
    /// A reader into \a scene that reports to \a progress (not owned) instead of a dialog.
    SceneReader(Scene *scene, Progress &progress);
    ~SceneReader();

    SceneReader(const SceneReader &) = delete;
    SceneReader &operator=(const SceneReader &) = delete;

    /// Reads the document from \a device, which is open for reading, at its current position.
    /// \return Error with errorString() set, or Cancelled; the scene is then half filled and of no use.
    [[nodiscard]] FileResult read(QIODevice *device);

    /// What is wrong with the file, with line and column on a second line. Meaningful after an Error.
    [[nodiscard]] QString errorString() const;

    /// What of a file that was read could not be kept, one text with its line each: damaged drawings, pictures, notes
    /// and sounds. The scene is as good as it can be made. Whoever opens the file for a user shows these.
    ///
    /// Of more than 1,000 these are the first, and a last text says how many others there were.
    [[nodiscard]] QStringList damages() const;
    /// How many damages there were in all.
    [[nodiscard]] qsizetype damageCount() const;

    /// True after reading a file with strokes whose flattened image it does not carry, where there is no renderer to
    /// make it: those drawings show nothing.
    [[nodiscard]] bool lacksRenderer() const;

    /// Refuses files whose frames and images need more than \a bytes of memory, decoded. By default as much as this
    /// computer can reasonably hold (MemoryBudget).
    void setMemoryLimit(qint64 bytes);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Model
