#pragma once

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QRectF>

/// Lines drawn on the window's sheet, and how to find their ink in a picture of the screen. Heights and parts are
/// fractions of an area, 0 to 1 from its left and top.
namespace ScreenLines {

/// The inside of a window that covers \a window, away from the shadows and menus, where the sheet lies.
QRect sheetArea(const QRect &window);

/// The point of \a area at the fractions \a x and \a y.
QPoint pointIn(const QRect &area, double x, double y);

/// A level line across \a area at \a height, from 0.2 to 0.8 of its width.
QList<QPoint> levelLine(const QRect &area, double height);

/// Around the part \a part of \a area, back to where it began.
QList<QPoint> ring(const QRect &area, const QRectF &part);

/// How much ink of the first layer's blue is in the part \a part of \a picture: pixels whose blue stands out by more
/// than \a contrast. Neither paper nor desk nor what lies on them for the moment has any.
int inkIn(const QImage &picture, const QRectF &part, int contrast = 60);

/// How much ink the line has that crosses \a picture at \a height, in a band around it.
int ink(const QImage &picture, double height, int contrast = 60);

} // namespace ScreenLines
