#pragma once

#include <QObject>

class QWidget;

/// The action that lets the window fill the screen and takes it back to what it was: maximized or not.
class FullScreen : public QObject
{
    Q_OBJECT

public:
    /// \a window is not owned; this becomes its child.
    explicit FullScreen(QWidget *window);

    void toggle();

protected:
    /// Watches the window: its state changes from outside, too.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void actualize();

    QWidget *m_window;
    bool m_wasMaximized = false;
};
