#pragma once

#include "libmodel/base/mr.h"

#include <QSize>
#include <QTransform>

namespace Model {

/// The transform that brings content made for a frame of \a from into one of \a to (both in pixels): scaled, then
/// centred, as far as \a fitMode asks for it. The identity if \a from has no area.
[[nodiscard]] QTransform fitTransform(QSize from, QSize to, MR::FitMode fitMode);

} // namespace Model
