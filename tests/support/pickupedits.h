#pragma once

#include "support/sceneedits.h"

namespace TestSupport {

/// The edits of what drawings hold: cuts, floating selections picked up, moved, stamped and dropped, drawings
/// collapsed.
[[nodiscard]] std::vector<EditKind> pickUpKinds();

} // namespace TestSupport
