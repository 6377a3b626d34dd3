#pragma once

#include "libmodel/base/mr.h"

#include <QSize>

namespace Model {

/// The picture of a drawing in the sheet, in pixels at an interface scale of 100 percent: of the shape of a wide frame,
/// and never smaller than the mark of a key drawing (37 x 21).
[[nodiscard]] constexpr QSize drawingCellSize(MR::ThumbnailSize size)
{
    switch (size) {
    case MR::ThumbnailSize::ThumbnailTiny:
        return {37, 21};
    case MR::ThumbnailSize::ThumbnailSmall:
        return {50, 28};
    case MR::ThumbnailSize::ThumbnailLarge:
        return {100, 56};
    case MR::ThumbnailSize::ThumbnailMedium:
        break;
    }
    return {75, 42};
}

/// The strip of notes beside a frame: as high as a drawing's picture, so that rows stay level, and half as wide again.
[[nodiscard]] constexpr QSize annotationCellSize(MR::ThumbnailSize size)
{
    const QSize drawing = drawingCellSize(size);
    return {drawing.width() * 3 / 2, drawing.height()};
}

} // namespace Model
