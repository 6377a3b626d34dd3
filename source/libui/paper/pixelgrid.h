#pragma once

#include <QLineF>
#include <QTransform>

class QPainter;

namespace UI {

// Where the sheet's pixels and lines fall on those of the screen.

/// A transform from a sheet to the widget, at \a ratio device pixels to a logical one, moved to whole device pixels
/// where a pixel of the one is a pixel of the other, so that drawings stay crisp at 100 %. At most half a device pixel
/// from \a exact.
[[nodiscard]] QTransform snappedToPixels(const QTransform &exact, double ratio);

/// Lets \a painter, in widget coordinates so far, paint in those of a sheet: \a toWidget is snapped already. A widget
/// may begin between pixels of its window; drawings stay crisp for all that.
void setSheetTransform(QPainter *painter, const QTransform &toWidget);

/// A line one device pixel wide as it is to be drawn through \a toDevice: level and upright ones are moved onto a row
/// or column of pixels, so that all of them are equally thin and dark.
[[nodiscard]] QLineF crispLine(const QLineF &line, const QTransform &toDevice);

} // namespace UI
