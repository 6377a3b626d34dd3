#pragma once

#include "libmodel/actions/actionmanager.h"

#include <QtGlobal>

/// Keeps the program's global shortcuts out of a file dialog's text fields for as long as it lives.
class ShortcutsSuspended
{
public:
    ShortcutsSuspended() { Model::ActionManager::instance()->disableAllActions(); }
    ~ShortcutsSuspended() { Model::ActionManager::instance()->restoreAllActions(); }
    Q_DISABLE_COPY_MOVE(ShortcutsSuspended)
};
