#include "libui/style/scrollbarlook.h"

#include "libui/style/colors.h"
#include "libui/style/uiscale.h"

#include <QLinearGradient>
#include <QPainter>
#include <QStyleOptionSlider>
#include <QVariant>
#include <QWidget>

namespace UI {

namespace {

constexpr int sheetBarExtent = 18;
constexpr int sheetHandleInset = 3;
constexpr double sheetHandleRadius = 4.0;
constexpr int sheetShadowLength = 32;
constexpr int edgeWidth = 2;
constexpr int slimBarExtent = 12;
constexpr int shortestHandle = 24;

bool isHorizontal(const QStyleOptionSlider &bar)
{
    return bar.orientation == Qt::Horizontal;
}

int barLength(const QStyleOptionSlider &bar)
{
    return isHorizontal(bar) ? bar.rect.width() : bar.rect.height();
}

/// The values between minimum and maximum; their difference may be more than an int holds.
qint64 rangeOf(const QStyleOptionSlider &bar)
{
    return qint64(bar.maximum) - bar.minimum;
}

/// A stretch along the bar, counted from its left or top.
struct Stretch
{
    int start;
    int length;
};

Stretch handleStretch(const QStyleOptionSlider &bar)
{
    const int length = barLength(bar);
    const qint64 range = rangeOf(bar);
    int handle = length;
    if (range > 0) {
        handle = int(qint64(length) * bar.pageStep / (range + bar.pageStep));
        handle = qBound(qMin(shortestScrollBarHandle(), length), handle, length);
    }
    const int start =
        QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, length - handle, bar.upsideDown);
    return {start, handle};
}

/// The part of the bar over \a stretch, \a inset from both long edges.
QRect barRect(const QStyleOptionSlider &bar, Stretch stretch, int inset = 0)
{
    const QRect &rect = bar.rect;
    if (!isHorizontal(bar))
        return {rect.x() + inset, rect.y() + stretch.start, rect.width() - 2 * inset, stretch.length};
    const QRect part(rect.x() + stretch.start, rect.y() + inset, stretch.length, rect.height() - 2 * inset);
    return QStyle::visualRect(bar.direction, rect, part);
}

bool showsHandle(const QStyleOptionSlider &bar, ScrollBarLook look)
{
    if (rangeOf(bar) <= 0)
        return false;
    return look != ScrollBarLook::Sheet || isHorizontal(bar) || bar.pageStep != rangeOf(bar);
}

void fillRounded(QPainter &painter, const QRectF &rect, double radius, const QColor &color)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(rect, radius, radius);
    painter.restore();
}

void fillShadow(QPainter &painter, const QRect &rect, QPoint darkEnd, QPoint clearEnd)
{
    QLinearGradient shadow(darkEnd, clearEnd);
    shadow.setColorAt(0.0, Colors::sheetShadow);
    shadow.setColorAt(0.5, Colors::sheetShadowMiddle);
    shadow.setColorAt(1.0, Colors::sheetShadowEnd);
    painter.fillRect(rect, shadow);
}

void paintHorizontalSheetGroove(QPainter &painter, const QRect &rect)
{
    QLinearGradient ground(0, rect.y(), 0, rect.y() + rect.height());
    ground.setColorAt(0.0, Colors::sheetBarTop);
    ground.setColorAt(1.0, Colors::sheetBarBottom);
    painter.fillRect(rect, ground);
    painter.fillRect(rect.x(), rect.y(), rect.width(), edgeWidth, Colors::sheetBarTopEdge);
}

void paintVerticalSheetGroove(QPainter &painter, const QRect &rect)
{
    painter.fillRect(rect, Colors::sheetSideBar);
    painter.fillRect(rect.x(), rect.y(), edgeWidth, rect.height(), Colors::sheetSideBarEdge);
    const int bottom = rect.y() + rect.height();
    const int length = scaled(sheetShadowLength);
    fillShadow(painter, QRect(rect.x(), rect.y(), rect.width(), length) & rect, {0, rect.y()}, {0, rect.y() + length});
    fillShadow(painter, QRect(rect.x(), bottom - length, rect.width(), length) & rect, {0, bottom},
               {0, bottom - length});
}

} // namespace

ScrollBarLook scrollBarLook(const QWidget *widget)
{
    if (widget && widget->property("X-Sheet ScrollBar").toBool())
        return ScrollBarLook::Sheet;
    if (widget && widget->property("ActionsList ScrollBar").toBool())
        return ScrollBarLook::Slim;
    return ScrollBarLook::Base;
}

QRect scrollBarPart(const QStyleOptionSlider &bar, ScrollBarLook look, QStyle::SubControl part)
{
    const Stretch handle = handleStretch(bar);
    const int handleEnd = handle.start + handle.length;
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return bar.rect;
    case QStyle::SC_ScrollBarSlider:
        return barRect(bar, handle, look == ScrollBarLook::Sheet ? scaled(sheetHandleInset) : 0);
    case QStyle::SC_ScrollBarSubPage:
        return barRect(bar, {0, handle.start});
    case QStyle::SC_ScrollBarAddPage:
        return barRect(bar, {handleEnd, barLength(bar) - handleEnd});
    default:
        return {};
    }
}

QStyle::SubControl scrollBarPartAt(const QStyleOptionSlider &bar, ScrollBarLook look, QPoint position)
{
    if (!bar.rect.contains(position))
        return QStyle::SC_None;
    if (!showsHandle(bar, look))
        return QStyle::SC_ScrollBarGroove;
    if (barRect(bar, handleStretch(bar)).contains(position))
        return QStyle::SC_ScrollBarSlider;
    return scrollBarPart(bar, look, QStyle::SC_ScrollBarSubPage).contains(position) ? QStyle::SC_ScrollBarSubPage
                                                                                    : QStyle::SC_ScrollBarAddPage;
}

int scrollBarExtent(ScrollBarLook look)
{
    return scaled(look == ScrollBarLook::Sheet ? sheetBarExtent : slimBarExtent);
}

int shortestScrollBarHandle()
{
    return scaled(shortestHandle);
}

void paintScrollBar(QPainter &painter, const QStyleOptionSlider &bar, ScrollBarLook look)
{
    const bool isSheet = look == ScrollBarLook::Sheet;
    if (isSheet && isHorizontal(bar))
        paintHorizontalSheetGroove(painter, bar.rect);
    else if (isSheet)
        paintVerticalSheetGroove(painter, bar.rect);
    if (!showsHandle(bar, look))
        return;
    const QRectF handle = scrollBarPart(bar, look, QStyle::SC_ScrollBarSlider);
    if (isSheet)
        fillRounded(painter, handle, sheetHandleRadius, Colors::sheetBarHandle);
    else
        fillRounded(painter, handle, 0.5 * qMin(handle.width(), handle.height()), Colors::slimBar);
}

} // namespace UI
