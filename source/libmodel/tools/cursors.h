#pragma once

#include <QCursor>
#include <QPixmap>
#include <QPoint>
#include <QString>

class QSvgRenderer;

namespace Model {

/// Pixels per logical pixel of the cursors that are drawn by the program and of those turned by an angle.
constexpr double cursorPixelRatio = 2.0;

/// Decodes every cursor of :/pointers/ once; without this each is decoded when first asked for. Needs a GUI
/// application.
void loadCursors();

/// The picture of the file \a name, a stem such as "pointer-hand", in :/pointers/, as large as its view box. Decoded
/// once. Null if there is no such file.
QPixmap cursorPixmap(const QString &name);

/// The parsed file of that name; owned by the cache, null if there is no such file.
QSvgRenderer *cursorRenderer(const QString &name);

/// The cursor \a name with \a hotSpot in pixels of its view box; the arrow if there is no such file.
QCursor namedCursor(const QString &name, QPoint hotSpot);

/// The cursor \a name with its own hot spot: the middle of the element "hotspot" of its file, or of the file if it has
/// none. The arrow if there is no such file.
QCursor namedCursor(const QString &name);

/// The cursor \a name turned clockwise about its middle, where its hot spot is; twice as many pixels as its view box.
/// The arrow if there is no such file.
QCursor rotatedCursor(const QString &name, double angleDegrees);

/// What to hand to a widget to see \a cursor in its true size and place on a screen of \a screenRatio.
///
/// X11 shows a cursor's picture pixel by pixel and counts its hot spot in those pixels, whatever ratio the picture says
/// it has. There the picture is scaled to the screen's pixels; on other platforms this is \a cursor itself.
QCursor cursorForScreen(const QCursor &cursor, double screenRatio);

} // namespace Model
