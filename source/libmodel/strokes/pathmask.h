#pragma once

#include <QPoint>
#include <QRect>

class QImage;
class QPainterPath;

namespace Model {

/// Masks with soft edges, the same bytes wherever a compound is drawn with its masks and wherever pixels that are known
/// already are cut by the same path.
///
/// \a image (coverage) is a part of a larger one and begins at the pixel \a origin of that; \a path and \a rect, what
/// is looked at, are in pixels of the larger one.

/// Takes away from \a image what lies inside \a path.
void clearInside(QImage &image, QPoint origin, const QPainterPath &path, QRect rect);

/// Takes away from \a image what lies in \a rect and outside of \a path.
void clearOutside(QImage &image, QPoint origin, const QPainterPath &path, QRect rect);

} // namespace Model
