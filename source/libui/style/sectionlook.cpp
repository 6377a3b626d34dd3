#include "libui/style/sectionlook.h"

#include "libui/style/colors.h"
#include "libui/style/uiscale.h"

#include <QLinearGradient>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionHeader>
#include <QVariant>
#include <QWidget>

namespace UI {

namespace {

constexpr int labelMargin = 2;

struct SectionColors
{
    QColor top;
    QColor edge;
};

SectionColors sectionColors(QStyle::State state)
{
    if (!(state & QStyle::State_Enabled))
        return {Colors::recessedBand, Colors::hairline};
    if (state & QStyle::State_Sunken)
        return {Colors::recessedBand, Colors::pressedSectionEdge};
    if (state & QStyle::State_On)
        return {Colors::raisedBandTop, Colors::currentSectionEdge};
    return {Colors::raisedBandTop, Colors::lightHairline};
}

} // namespace

bool isSheetSection(const QWidget *widget)
{
    return widget && (widget->property("X-Sheet Header").toBool() || widget->property("X-Sheet Footer").toBool());
}

void paintSheetSection(QPainter &painter, const QStyleOption &section)
{
    const auto [top, edge] = sectionColors(section.state);
    const QRect &rect = section.rect;
    QLinearGradient band(0, rect.y(), 0, rect.y() + rect.height());
    band.setColorAt(0.0, top);
    band.setColorAt(1.0, Colors::raisedBandBottom);
    painter.fillRect(rect, band);
    painter.fillRect(rect.x(), rect.y(), rect.width(), 1, edge);
}

void paintSheetSectionLabel(QPainter &painter, const QStyleOptionHeader &section)
{
    painter.save();
    painter.setPen(section.palette.color(QPalette::ButtonText));
    const QString text = painter.fontMetrics().elidedText(section.text, Qt::ElideRight, section.rect.width());
    painter.drawText(section.rect, int(section.textAlignment) | Qt::TextSingleLine, text);
    painter.restore();
}

QRect sheetSectionLabelRect(const QRect &rect)
{
    const int margin = scaled(labelMargin);
    return rect.adjusted(margin, 0, -margin, 0);
}

} // namespace UI
