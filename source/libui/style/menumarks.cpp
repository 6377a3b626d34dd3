#include "libui/style/menumarks.h"

#include <QPainter>
#include <QPolygonF>
#include <QStyleOption>

namespace UI {

namespace {

/// A line's width as a part of the mark's side.
constexpr double linePart = 0.09;
constexpr double cornerPart = 0.18;

QColor textColor(const QStyleOption &option)
{
    const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    return option.palette.color(isEnabled ? QPalette::Active : QPalette::Disabled,
                                isSelected ? QPalette::HighlightedText : QPalette::WindowText);
}

/// Painting in a square from (0, 0) to (1, 1), the largest in the middle of the option's rectangle.
class UnitSquare
{
public:
    UnitSquare(QPainter &painter, const QStyleOption &option) : m_painter(painter)
    {
        const QRectF rect = option.rect;
        const double side = qMin(rect.width(), rect.height());
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(rect.center() - QPointF(0.5, 0.5) * side);
        painter.scale(side, side);
    }
    ~UnitSquare() { m_painter.restore(); }
    Q_DISABLE_COPY_MOVE(UnitSquare)

private:
    QPainter &m_painter;
};

} // namespace

void paintMenuArrow(QPainter &painter, const QStyleOption &option, bool isToLeft)
{
    const UnitSquare square(painter, option);
    const double foot = isToLeft ? 0.75 : 0.25;
    painter.setPen(Qt::NoPen);
    painter.setBrush(textColor(option));
    painter.drawPolygon(QPolygonF{{foot, 0.0}, {1.0 - foot, 0.5}, {foot, 1.0}});
}

void paintMenuCheckBox(QPainter &painter, const QStyleOption &option)
{
    const UnitSquare square(painter, option);
    QPen pen(textColor(option), linePart, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    const double inset = 0.5 * linePart;
    painter.drawRoundedRect(QRectF(0.0, 0.0, 1.0, 1.0).adjusted(inset, inset, -inset, -inset), cornerPart, cornerPart);
    if (!option.state.testFlag(QStyle::State_On))
        return;
    pen.setWidthF(1.5 * linePart);
    painter.setPen(pen);
    painter.drawPolyline(QPolygonF{{0.25, 0.52}, {0.43, 0.7}, {0.76, 0.3}});
}

} // namespace UI
