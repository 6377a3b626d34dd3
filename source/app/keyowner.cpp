#include "app/keyowner.h"

#include "app/keymeaning.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTextEdit>

bool takesKeys(const QWidget *widget)
{
    if (!widget)
        return false;
    const auto *box = qobject_cast<const QComboBox *>(widget);
    return (box && box->isEditable()) || qobject_cast<const QLineEdit *>(widget) ||
           qobject_cast<const QAbstractSpinBox *>(widget) || qobject_cast<const QTextEdit *>(widget) ||
           qobject_cast<const QPlainTextEdit *>(widget) || qobject_cast<const QMenuBar *>(widget) ||
           qobject_cast<const QMenu *>(widget);
}

bool isButtonFocused()
{
    const QWidget *focus = QApplication::focusWidget();
    return qobject_cast<const QAbstractButton *>(focus) || qobject_cast<const QComboBox *>(focus);
}

bool belongsToWidget(const QKeyEvent &event)
{
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    if (isButtonFocused())
        return gestureOf(event) == KeyGesture::View || gestureOf(event) == KeyGesture::Flip;
    const bool isFunctionKey = event.key() >= Qt::Key_F1 && event.key() <= Qt::Key_F35;
    return !isFunctionKey && !QApplication::activeModalWidget() &&
           (QApplication::activePopupWidget() || takesKeys(QApplication::focusWidget()));
}
