#pragma once

#include "libmodel/actions/actionmanager.h"

#include <QtGlobal>

/// Disables all actions for as long as it lives: their shortcuts stay out of a dialog's text fields, and nobody edits a
/// scene that is being written. May be nested.
class ShortcutsSuspended
{
public:
    ShortcutsSuspended()
    {
        if (s_count++ == 0)
            Model::ActionManager::instance()->disableAllActions();
    }
    ~ShortcutsSuspended()
    {
        if (--s_count == 0)
            Model::ActionManager::instance()->restoreAllActions();
    }
    Q_DISABLE_COPY_MOVE(ShortcutsSuspended)

private:
    inline static int s_count = 0;
};
