#pragma once

#include <QtGlobal>

namespace UI {

/// While one of these lives, a press on any paper starts no stroke. For operations that run an event loop of their own
/// and must not be drawn into. They may be nested. GUI thread.
class InputSuspension
{
public:
    InputSuspension();
    ~InputSuspension();
    Q_DISABLE_COPY_MOVE(InputSuspension)

    /// True while at least one of them lives.
    static bool isActive();
};

} // namespace UI
