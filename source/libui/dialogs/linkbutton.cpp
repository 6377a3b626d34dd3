#include "libui/dialogs/linkbutton.h"

#include "libui/style/uiscale.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <QPalette>

namespace UI {

namespace {

// Logical pixels at an interface scale of 100 percent.
constexpr double sideRoom = 6.0;
constexpr double verticalRoom = 3.0;
constexpr double frameRadius = 3.0;

} // namespace

LinkButton::LinkButton(const QString &text, QWidget *parent) : QAbstractButton(parent)
{
    setText(text);
    setCursor(Qt::PointingHandCursor);
    QFont underlined;
    underlined.setUnderline(true);
    setFont(underlined);
}

QSize LinkButton::sizeHint() const
{
    return fontMetrics().size(Qt::TextShowMnemonic, text()) + 2 * QSize(scaled(sideRoom), scaled(verticalRoom));
}

void LinkButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void LinkButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(isDown() ? QPalette::LinkVisited : QPalette::Link));
    painter.drawText(rect(), int(Qt::AlignCenter) | int(Qt::TextShowMnemonic), text());
    if (!hasFocus())
        return;
    constexpr double half = 0.5; // of the line, which lies within the button
    painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), scaled(frameRadius),
                            scaled(frameRadius));
}

} // namespace UI
