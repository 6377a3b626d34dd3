#include "support/messageboxanswer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QTimer>

MessageBoxAnswer::MessageBoxAnswer(QMessageBox::StandardButton button) : m_button(button)
{
    qApp->installEventFilter(this);
}

MessageBoxAnswer::~MessageBoxAnswer()
{
    qApp->removeEventFilter(this);
}

bool MessageBoxAnswer::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Show) {
        if (auto *box = qobject_cast<QMessageBox *>(object))
            QTimer::singleShot(0, box, [this, box] { answer(box); });
    }
    return false;
}

void MessageBoxAnswer::answer(QMessageBox *box)
{
    ++m_count;
    m_text = box->text();
    m_title = box->windowTitle();
    m_informativeText = box->informativeText();
    if (m_action)
        m_action();
    if (QAbstractButton *button = box->button(m_button))
        button->click();
    else
        box->reject();
}
