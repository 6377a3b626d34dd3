#pragma once

#include "libmodel/files/fileresult.h"

#include <QCoreApplication>
#include <QString>

#include <memory>

class QIODevice;
class QWidget;

namespace Model {

class Scene;

/// Fills a scene from a scene file (docs/file-format.md describes the format).
///
/// Made for one operation and then dropped. The reader owns neither the scene nor the parent widget. It takes the
/// file for what it may be, something broken or made by somebody else: every number is checked where it enters, a
/// drawing or picture that cannot be decoded is left empty with a warning in the log, and only what makes the whole
/// document unusable (malformed XML, a foreign root element, an impossible frame size) ends the reading.
class SceneReader
{
    Q_DECLARE_TR_FUNCTIONS(Model::SceneReader)

public:
    /// The largest frame width and height in pixels that a file may ask for.
    static constexpr int maximumFrameSide = 32768;

    /// A reader into \a scene, whose layers are replaced by the file's. The progress dialog is a child of \a parent,
    /// which may be null.
    SceneReader(Scene *scene, QWidget *parent);
    ~SceneReader();

    SceneReader(const SceneReader &) = delete;
    SceneReader &operator=(const SceneReader &) = delete;

    /// Reads the document from \a device, which is open for reading, at its current position.
    /// \return Error with errorString() set, or Cancelled; the scene is then half filled and of no use.
    [[nodiscard]] FileResult read(QIODevice *device);

    /// What is wrong with the file, with line and column on a second line. Meaningful after an Error.
    [[nodiscard]] QString errorString() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Model
