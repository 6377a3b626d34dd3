#pragma once

#include "export/command.h"

namespace Export {

/// `info SCENE.mr`: tells what a scene holds, for people or as JSON.
[[nodiscard]] Command infoCommand();

} // namespace Export
