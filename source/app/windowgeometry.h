#pragma once

#include <QList>
#include <QRect>

class QByteArray;
class QWidget;

/// Where the main window stands on the screens, in logical pixels.
namespace WindowGeometry {

/// Where a window without a stored place opens on a screen with the free area \a available: in its middle, below the
/// room for a title bar of \a titleBarHeight, and no larger than is good for a window.
[[nodiscard]] QRect firstPlace(QRect available, int titleBarHeight);

/// \a frame moved, and made smaller if it must, so that a window there can be seen and taken by its title bar: into the
/// screen of \a screens (free areas, at least one) that shows most of it, or the first when none does. A window of
/// which a good part of the title bar can be seen stays where it is.
[[nodiscard]] QRect broughtOnto(const QList<QRect> &screens, QRect frame);

/// Gives \a window the geometry that \a stored (of QWidget::saveGeometry(), may be empty or broken) holds, or else the
/// first place.
void restore(QWidget &window, const QByteArray &stored);

} // namespace WindowGeometry
