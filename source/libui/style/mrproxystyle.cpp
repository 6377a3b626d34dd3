#include "libui/style/mrproxystyle.h"

#include "libui/style/colors.h"

#include <QPainter>
#include <QStyleOption>
#include <QVariant>
#include <QWidget>

namespace UI {

namespace {

constexpr QColor slimBarColor(43, 41, 39);
constexpr double fieldRadius = 4.0;
constexpr int slimBarExtent = 12;
constexpr int slimBarShortestHandle = 24;

bool hasTag(const QWidget *widget, const char *tag)
{
    return widget && widget->property(tag).toBool();
}

bool isLayerRename(const QWidget *widget)
{
    return hasTag(widget, "X-Sheet layer rename");
}

bool isSlimBar(const QWidget *widget)
{
    return hasTag(widget, "ActionsList ScrollBar");
}

void fillRounded(QPainter *painter, const QRectF &rect, double radius, QColor color)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(color);
    painter->drawRoundedRect(rect, radius, radius);
    painter->restore();
}

/// A bar without arrow buttons: the groove is the whole bar, the handle's place follows from the value.
QRect slimBarSubRect(const QStyleOptionSlider &bar, QStyle::SubControl subControl)
{
    const bool horizontal = bar.orientation == Qt::Horizontal;
    const int length = horizontal ? bar.rect.width() : bar.rect.height();
    const qint64 range = qint64(bar.maximum) - bar.minimum;
    int handle = length;
    if (range > 0) {
        handle = int(qint64(length) * bar.pageStep / (range + bar.pageStep));
        handle = qBound(qMin(slimBarShortestHandle, length), handle, length);
    }
    const int start =
        QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, length - handle, bar.upsideDown);
    const auto part = [&](int from, int extent) {
        return horizontal ? QRect(bar.rect.x() + from, bar.rect.y(), extent, bar.rect.height())
                          : QRect(bar.rect.x(), bar.rect.y() + from, bar.rect.width(), extent);
    };
    switch (subControl) {
    case QStyle::SC_ScrollBarGroove:
        return bar.rect;
    case QStyle::SC_ScrollBarSlider:
        return part(start, handle);
    case QStyle::SC_ScrollBarSubPage:
        return part(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return part(start + handle, length - start - handle);
    default:
        return {};
    }
}

} // namespace

MRProxyStyle::MRProxyStyle() = default;

void MRProxyStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                 const QWidget *widget) const
{
    if ((element == PE_PanelLineEdit || element == PE_FrameLineEdit) && isLayerRename(widget)) {
        if (element == PE_PanelLineEdit)
            fillRounded(painter, option->rect, fieldRadius, Colors::layerRenameField);
        return;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void MRProxyStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                      const QWidget *widget) const
{
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control != CC_ScrollBar || !bar || !isSlimBar(widget)) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    if (bar->maximum <= bar->minimum)
        return;
    const QRectF handle = slimBarSubRect(*bar, SC_ScrollBarSlider);
    fillRounded(painter, handle, 0.5 * qMin(handle.width(), handle.height()), slimBarColor);
}

QRect MRProxyStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl subControl,
                                   const QWidget *widget) const
{
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control == CC_ScrollBar && bar && isSlimBar(widget))
        return slimBarSubRect(*bar, subControl);
    return QProxyStyle::subControlRect(control, option, subControl, widget);
}

int MRProxyStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    if (metric == PM_ScrollBarExtent && isSlimBar(widget))
        return slimBarExtent;
    return QProxyStyle::pixelMetric(metric, option, widget);
}

} // namespace UI
