#pragma once

#include "export/command.h"

#include <memory>

namespace Model {
class Scene;
}

namespace Export {

/// A scene file as it was opened.
struct SceneSource
{
    ExitCode outcome = ExitCode::Done;
    std::unique_ptr<Model::Scene> scene; ///< null unless Done; named after the file
    QStringList damages;                 ///< what of the file could not be kept
    qsizetype damageCount = 0;           ///< in all; damages lists the first and then says how many others
    bool lacksRenderer = false;          ///< drawings show nothing, for want of OpenGL
};

/// Opens the scene file \a fileName, with its progress on \a console. What goes wrong has been told there when it
/// returns, and so have the first damages of the file with the number of the others.
[[nodiscard]] SceneSource openScene(const QString &fileName, Console &console);

} // namespace Export
