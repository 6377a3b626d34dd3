#include "app/fullscreen.h"

#include "app/catalogueaction.h"

#include <QEvent>
#include <QWidget>

FullScreen::FullScreen(QWidget *window) : QObject(window), m_window(window)
{
    onTriggered(MR::Action::FullScreen, this, &FullScreen::toggle);
    window->installEventFilter(this);
    actualize();
}

void FullScreen::toggle()
{
    if (!m_window->isFullScreen()) {
        m_wasMaximized = m_window->isMaximized();
        m_window->showFullScreen();
    } else if (m_wasMaximized) {
        m_window->showMaximized();
    } else {
        m_window->showNormal();
    }
}

bool FullScreen::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange)
        actualize();
    return QObject::eventFilter(watched, event);
}

void FullScreen::actualize()
{
    const auto *record = Model::ActionManager::instance()->mrAction(MR::Action::FullScreen);
    record->action->setText(m_window->isFullScreen() ? tr("Exit Full Screen") : tr("Enter Full Screen"));
    record->updateToolTip();
}
