#pragma once

#include "app/shortcutssuspended.h"
#include "libui/paper/inputsuspension.h"

#include <QtGlobal>

/// Marks the window as busy with its scene and its files for as long as it lives, unless somebody else did so already.
///
/// While it lives nothing can be drawn and no action works: dialogs and progress run event loops of their own, in which
/// a pen would still reach the paper, and a key the catalogue.
class BusyScope
{
public:
    /// \a busy is the window's mark; it must outlive the scope.
    explicit BusyScope(bool &busy) : m_busy(busy), m_entered(!busy) { m_busy = true; }
    ~BusyScope()
    {
        if (m_entered)
            m_busy = false;
    }
    Q_DISABLE_COPY_MOVE(BusyScope)

    /// False when somebody else is at work; the caller then returns at once.
    bool entered() const { return m_entered; }

private:
    bool &m_busy;
    bool m_entered;
    UI::InputSuspension m_suspension;
    ShortcutsSuspended m_shortcutsSuspended;
};
