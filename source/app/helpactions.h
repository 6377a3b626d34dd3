#pragma once

#include "app/webpages.h"

#include <QObject>

/// The actions of the help menu: pages in the browser, and what the program is.
class HelpActions : public QObject
{
    Q_OBJECT

public:
    /// \a window is the parent of dialogs; this becomes its child.
    explicit HelpActions(QWidget *window);

private:
    void showAbout();

    QWidget *m_window;
    WebPages m_pages;
};
