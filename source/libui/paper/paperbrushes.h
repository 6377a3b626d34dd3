#pragma once

#include "libmodel/base/mr.h"

#include <QBrush>

namespace UI {

/// The brush that a sheet of paper is filled with: plain, or tiled checkers with its origin at (0, 0).
/// A value that is none of the enumeration's counts as the nearest that is.
QBrush paperBrush(MR::TransparencyType type);

/// The linen of the desk, tiled, with its origin at (0, 0); a plain warm grey if the texture is not there.
QBrush deskBrush();

} // namespace UI
