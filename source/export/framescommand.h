#pragma once

#include "export/command.h"

namespace Export {

/// `frames SCENE.mr OUTDIR`: writes a scene's frames as numbered image files.
[[nodiscard]] Command framesCommand();

} // namespace Export
