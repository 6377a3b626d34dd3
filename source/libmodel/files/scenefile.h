#pragma once

#include "libmodel/base/fileresult.h"

#include <QString>

namespace Model {

class SceneWriter;

/// How saving a scene to a file ended.
struct SaveOutcome
{
    /// Where an Error happened; it decides how the failure is told.
    enum class Stage {
        File,     ///< the file could not be begun or completed
        Document, ///< the file took only a part of the document
    };

    FileResult result = FileResult::Success;
    Stage stage = Stage::File; ///< of an Error only
    QString reason;            ///< of an Error only: what was wrong, in words without a full stop; never empty then
};

/// Writes the scene of \a writer to the file \a fileName, whole or not at all.
///
/// The document goes to a new file in the folder of the old one, which takes the old one's place when it lies complete
/// on the disk. On any failure, and on cancel, the new file is gone, and the old one is as it was, byte for byte.
/// Should the computer or the program die on the way, what may be left over is named like the scene with a point and
/// six letters behind; on most disks the new file has no name before the last moment, and nothing is left.
///
/// The new file keeps the permissions of the old one. A symbolic link stays one: the file that it points to is written.
/// What is no ordinary file (a pipe, a device, a folder) is refused.
[[nodiscard]] SaveOutcome saveSceneFile(SceneWriter &writer, const QString &fileName);

} // namespace Model
