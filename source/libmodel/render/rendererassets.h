#pragma once

#include <QImage>
#include <QString>

#include <array>

namespace Model {

/// The softness curves' file names, in the order of the shader's pen index: pencil, marker, brush, then the kneaded,
/// rubber and vinyl eraser.
extern const std::array<const char *, 6> softnessCurveFiles;

/// The paper grain's file name.
extern const char *const paperTextureFile;

/// Loads one of the renderer's pictures by \a fileName, which has no folder.
///
/// The first regular file of that name in the user's application data folders that can be read as a picture wins, so a
/// user can replace a curve or the grain; otherwise the built-in one is used. Pictures with a side above \a maximumSide
/// (pixels), which the driver could not take, count as unreadable. \return a null image if there is none at all.
QImage loadRendererImage(const QString &fileName, int maximumSide);

} // namespace Model
