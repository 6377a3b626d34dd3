#pragma once

#include <QEvent>
#include <QObject>

/// Counts the paint events of the widget that it is an event filter of.
class PaintCounter : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};
