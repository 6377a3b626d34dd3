#include "app/windowgeometry.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace WindowGeometry {

namespace {

/// The largest window that a first start opens.
constexpr QSize largestFirstWindow(2100, 1200);

/// The part of a title bar that can be taken with the pointer.
constexpr QSize handle(100, 20);

int area(const QRect &rect)
{
    return rect.isValid() ? rect.width() * rect.height() : 0;
}

} // namespace

QRect firstPlace(QRect available, int titleBarHeight)
{
    available.setTop(available.top() + titleBarHeight);
    QRect place({}, available.size().boundedTo(largestFirstWindow));
    place.moveCenter(available.center());
    return place;
}

QRect broughtOnto(const QList<QRect> &screens, QRect frame)
{
    const QRect titleBar(frame.topLeft(), QSize(frame.width(), handle.height()));
    const bool canBeTaken = std::ranges::any_of(screens, [&titleBar](const QRect &screen) {
        const QRect seen = screen.intersected(titleBar);
        return seen.width() >= std::min(handle.width(), titleBar.width()) && seen.height() == titleBar.height();
    });
    if (canBeTaken)
        return frame;
    const QRect screen = *std::ranges::max_element(
        screens, {}, [&frame](const QRect &candidate) { return area(candidate.intersected(frame)); });
    frame.setSize(frame.size().boundedTo(screen.size()));
    frame.moveLeft(std::clamp(frame.left(), screen.left(), screen.right() - frame.width() + 1));
    frame.moveTop(std::clamp(frame.top(), screen.top(), screen.bottom() - frame.height() + 1));
    return frame;
}

void restore(QWidget &window, const QByteArray &stored)
{
    if (stored.isEmpty() || !window.restoreGeometry(stored)) {
        const int titleBarHeight = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
        window.setGeometry(firstPlace(window.screen()->availableGeometry(), titleBarHeight));
        return;
    }
    if (window.windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))
        return;
    QList<QRect> screens;
    for (const QScreen *screen : QGuiApplication::screens())
        screens.append(screen->availableGeometry());
    const QRect frame = window.frameGeometry();
    const QRect place = broughtOnto(screens, frame);
    if (place == frame)
        return;
    window.move(place.topLeft());
    window.resize(window.size() - (frame.size() - place.size()));
}

} // namespace WindowGeometry
