#pragma once

#include "libmodel/layers/layeritem.h"

#include <QLatin1String>
#include <QUuid>

#include <memory>

/// Drawings on the clipboard, in up to three forms at once: ours, a picture for other programs, and a line of text.
///
///     private form   layer type, number of frames, a block for each frame (docs/file-format.md)
///     picture        of a single frame only
///     text           which frames of which layer these are
///
/// A drawing goes along once, with the first frame that shows it; all frames name it by its copy identifier. By that a
/// paste knows drawings that it has met before, on the clipboard or in the scene.
namespace Model::DrawingClip {

/// The type of the private form.
inline constexpr QLatin1String mimeType("application/x-mirelle");

/// A frame as the private form tells it.
struct Frame
{
    LayerItem::Type kind = LayerItem::Type::Original; ///< what the cell was that was copied
    QUuid copyId;                                     ///< of the drawing it showed; never null
    std::shared_ptr<Drawing> drawing;                 ///< null where it is known already, and for holds
};

} // namespace Model::DrawingClip
