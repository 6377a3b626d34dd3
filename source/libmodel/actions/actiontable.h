#pragma once

#include "libmodel/base/mr.h"

#include <QKeySequence>

#include <array>
#include <span>

namespace Model {

/// A shortcut as the catalogue gives it: a text to be translated, a standard key of the platform, or none.
struct ActionKey
{
    constexpr ActionKey() = default;
    constexpr ActionKey(const char *shortcut) : text(shortcut) {}
    constexpr ActionKey(QKeySequence::StandardKey key) : standard(key) {}
    /// A standard key, with a text for platforms that have no such key.
    constexpr ActionKey(QKeySequence::StandardKey key, const char *otherwise) : text(otherwise), standard(key) {}

    const char *text = nullptr;
    QKeySequence::StandardKey standard = QKeySequence::UnknownKey;
};

/// Which exclusive group an action belongs to, if any.
enum class ActionGroup {
    None,
    DrawOrErase,
    Erasers,
    DrawingOnClones,
    Transparency,
};

/// One action of the catalogue, as data.
struct ActionRow
{
    /// Properties an action is made with; any combination.
    enum Flag {
        Plain = 0,
        Checkable = 1,
        NoAutoRepeat = 2,
        Disabled = 4,
        Checked = 8,
        Hidden = 16,
        /// The text's %1 is the program's name.
        NamesProgram = 32,
        /// Made by someone else and only entered.
        Given = 64,
    };

    MR::Action action;
    /// Source text, translated in the context of ActionManager.
    const char *text;
    std::array<ActionKey, 2> keys = {};
    /// The icon is :/icons/<stem>_icon.svg; none if empty or not there.
    const char *iconStem = "";
    int flags = Plain;
    ActionGroup group = ActionGroup::None;
    /// The second face; null for none.
    const char *alternateText = nullptr;
    const char *alternateIconStem = "";
};

/// All actions there are, in the order of their values; members of a group follow each other.
std::span<const ActionRow> actionTable();

/// The row of \a action; null if it has none.
const ActionRow *actionRow(MR::Action action);

} // namespace Model
