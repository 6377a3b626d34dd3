#include "libui/style/mrproxystyle.h"

#include "libui/style/colors.h"
#include "libui/style/menumarks.h"
#include "libui/style/scrollbarlook.h"
#include "libui/style/sectionlook.h"

#include <QCheckBox>
#include <QPainter>
#include <QStyleOption>
#include <QVariant>
#include <QWidget>

namespace UI {

namespace {

constexpr double fieldRadius = 4.0;

bool isLayerRename(const QWidget *widget)
{
    return widget && widget->property("X-Sheet layer rename").toBool();
}

bool hasMenuMarks(const QWidget *widget)
{
    return widget && widget->property("Menu Marks").toBool();
}

void fillField(QPainter &painter, const QRect &rect)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Colors::layerRenameField);
    painter.drawRoundedRect(rect, fieldRadius, fieldRadius);
    painter.restore();
}

/// \return \a option if it is that of a scroll bar which the program draws itself, null otherwise.
const QStyleOptionSlider *ownScrollBar(QStyle::ComplexControl control, const QStyleOptionComplex *option,
                                       const QWidget *widget)
{
    if (control != QStyle::CC_ScrollBar || scrollBarLook(widget) == ScrollBarLook::Base)
        return nullptr;
    return qstyleoption_cast<const QStyleOptionSlider *>(option);
}

} // namespace

MRProxyStyle::MRProxyStyle() = default;

void MRProxyStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    // Scroll bars promise to fill all of their area; what is clear would keep the handle's old places.
    if (scrollBarLook(widget) == ScrollBarLook::Slim)
        widget->setAttribute(Qt::WA_OpaquePaintEvent, false);
}

void MRProxyStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                 const QWidget *widget) const
{
    const bool isMarked = hasMenuMarks(widget);
    // The panel is the whole of it: the base style's own panel would draw the frame.
    if (element == PE_PanelLineEdit && isLayerRename(widget))
        fillField(*painter, option->rect);
    else if (isMarked && (element == PE_IndicatorArrowRight || element == PE_IndicatorArrowLeft))
        paintMenuArrow(*painter, *option, element == PE_IndicatorArrowLeft);
    else if (isMarked && element == PE_IndicatorCheckBox)
        paintMenuCheckBox(*painter, *option);
    else
        QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void MRProxyStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                               const QWidget *widget) const
{
    if (isSheetSection(widget)) {
        const auto *section = qstyleoption_cast<const QStyleOptionHeader *>(option);
        if (element == CE_HeaderSection || element == CE_HeaderEmptyArea) {
            paintSheetSection(*painter, *option);
            return;
        }
        if (element == CE_HeaderLabel && section && section->icon.isNull()) {
            paintSheetSectionLabel(*painter, *section);
            return;
        }
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

QRect MRProxyStyle::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const
{
    if (element == SE_HeaderLabel && option && isSheetSection(widget))
        return sheetSectionLabelRect(option->rect);
    return QProxyStyle::subElementRect(element, option, widget);
}

void MRProxyStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                      const QWidget *widget) const
{
    if (const QStyleOptionSlider *bar = ownScrollBar(control, option, widget))
        paintScrollBar(*painter, *bar, scrollBarLook(widget));
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QStyle::SubControl MRProxyStyle::hitTestComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                                       const QPoint &position, const QWidget *widget) const
{
    if (const QStyleOptionSlider *bar = ownScrollBar(control, option, widget))
        return scrollBarPartAt(*bar, scrollBarLook(widget), position);
    return QProxyStyle::hitTestComplexControl(control, option, position, widget);
}

QRect MRProxyStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl subControl,
                                   const QWidget *widget) const
{
    if (const QStyleOptionSlider *bar = ownScrollBar(control, option, widget))
        return scrollBarPart(*bar, scrollBarLook(widget), subControl);
    return QProxyStyle::subControlRect(control, option, subControl, widget);
}

int MRProxyStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    // Styles are asked for metrics all the time: the tags are looked up for those alone that depend on them.
    if (metric == PM_ScrollBarExtent || metric == PM_ScrollBarSliderMin) {
        const ScrollBarLook look = scrollBarLook(widget);
        if (look != ScrollBarLook::Base)
            return metric == PM_ScrollBarExtent ? scrollBarExtent(look) : shortestScrollBarHandle();
    }
    // Menus give their marks a place by themselves.
    const bool isIndicator = metric == PM_IndicatorWidth || metric == PM_IndicatorHeight;
    if (isIndicator && qobject_cast<const QCheckBox *>(widget) && hasMenuMarks(widget))
        return widget->fontMetrics().ascent();
    return QProxyStyle::pixelMetric(metric, option, widget);
}

QSize MRProxyStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contentsSize,
                                     const QWidget *widget) const
{
    const auto *bar = type == CT_ScrollBar ? qstyleoption_cast<const QStyleOptionSlider *>(option) : nullptr;
    const ScrollBarLook look = bar ? scrollBarLook(widget) : ScrollBarLook::Base;
    if (look != ScrollBarLook::Base) {
        // Without arrow buttons a bar may be as short as its handle.
        const QSize horizontal(shortestScrollBarHandle(), scrollBarExtent(look));
        return bar->orientation == Qt::Horizontal ? horizontal : horizontal.transposed();
    }
    return QProxyStyle::sizeFromContents(type, option, contentsSize, widget);
}

int MRProxyStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                            QStyleHintReturn *returnData) const
{
    // Base styles that fade their bars away would hide these, too.
    if (hint == SH_ScrollBar_Transient && scrollBarLook(widget) != ScrollBarLook::Base)
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}

} // namespace UI
