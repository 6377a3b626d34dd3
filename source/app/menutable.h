#pragma once

#include "libmodel/base/mr.h"

#include <span>

/// One line of the table of menus.
struct MenuEntry
{
    enum class Kind {
        Menu,
        SubMenu,
        EndOfSubMenu,
        Action,
        Separator,
        OpenRecent,
        FixedZooms,
        Rotations,
        PutOnPegs,
    };
    Kind kind;
    /// Of menus; source text, translated in the context "MenuBar".
    const char *title = nullptr;
    MR::Action action = MR::Action::NoAction;
};

/// All menus in order, each with what stands in it. Sub-menus are not nested.
[[nodiscard]] std::span<const MenuEntry> menuTable();
