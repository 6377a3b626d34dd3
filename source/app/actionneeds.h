#pragma once

#include "app/editorstate.h"
#include "libmodel/base/mr.h"

#include <span>

/// Something that must hold for an action to do its work.
struct ActionNeed
{
    /// What must be true; null for what never is, the work being yet to be built.
    bool EditorState::*condition;
    /// What is told where it is not; source text, translated in the context "ActionStates".
    const char *obstacle;
    /// It is a matter of the open scene: without one that is the obstacle.
    bool isOfScene = true;
};

/// What one action needs.
struct ActionNeeds
{
    MR::Action action;
    const ActionNeed *need;
};

/// The table of all actions that need something, in the order of their values. Those that are not in it always work.
[[nodiscard]] std::span<const ActionNeeds> actionNeeds();
