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
    bool lacksRenderer = false;          ///< drawings are missing, for want of OpenGL
};

/// Opens the scene file \a fileName, with its progress on \a console. What goes wrong, the damages of the file
/// included, has been told there when it returns.
[[nodiscard]] SceneSource openScene(const QString &fileName, Console &console);

} // namespace Export
