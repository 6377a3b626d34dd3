#pragma once

#include "libmodel/base/mr.h"

#include <QKeySequence>
#include <QList>
#include <QString>

#include <array>
#include <span>

namespace Model {

/// A shortcut as the catalogue gives it: a text to be translated, a standard key of the platform, or none.
struct ActionKey
{
    constexpr ActionKey() = default;
    constexpr ActionKey(const char *shortcut) : text(shortcut) {}
    /// A standard key, with what it usually is: that holds where the platform has no such key.
    constexpr ActionKey(QKeySequence::StandardKey key, const char *usually) : text(usually), standard(key) {}

    const char *text = nullptr;
    QKeySequence::StandardKey standard = QKeySequence::UnknownKey;
};

/// Which exclusive group an action belongs to, if any.
enum class ActionGroup {
    None,
    DrawOrErase,
    Erasers,
    PlayRepeat,
    FrameRates,
    GridTypes,
    DragModes,
    Beyond,
    ThumbnailSizes,
    DrawingOnClones,
    Transparency,
    XSheetSides,
    AutoSaveIntervals,
    AutoSaveFiles,
    UIScales,
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
        /// Starts checked, unless it stands for a setting that says otherwise.
        Checked = 8,
        Hidden = 16,
        /// The text's %1 is the program's name.
        NamesProgram = 32,
        /// The text's %1 and %2 are the names of the Alt and Ctrl keys.
        NamesModifiers = 64,
        /// Made by someone else and only entered.
        Given = 128,
    };

    MR::Action action;
    /// Source text, translated in the context of ActionManager; empty for a frame rate, whose text is the number.
    const char *text;
    std::array<ActionKey, 2> keys = {};
    /// The icon is :/icons/<stem>_icon.svg; none if empty or not there.
    const char *iconStem = "";
    int flags = Plain;
    ActionGroup group = ActionGroup::None;
    /// Frames per second that the action stands for; 0 for every other action.
    double frameRate = 0.0;
    /// Source text of the short name, where it is not the text's own; null otherwise.
    const char *shortText = nullptr;
};

/// The second face of an action, which stands for it at times.
struct ActionFace
{
    MR::Action action;
    /// Source text, translated in the context of ActionManager with a number.
    const char *text;
    /// As that of ActionRow; empty if the second face has the icon of the first.
    const char *iconStem = "";
};

/// All actions there are, in the order of their values; members of a group follow each other.
std::span<const ActionRow> actionTable();

/// The row of \a action; null if it has none.
const ActionRow *actionRow(MR::Action action);

/// The second face of \a action; null if it has none.
const ActionFace *secondFace(MR::Action action);

/// The text of an action in the user's language, with its names and numbers filled in.
QString actionText(const ActionRow &row);

/// The shortcuts of an action on this platform, the first one first; without repetitions.
QList<QKeySequence> actionShortcuts(const ActionRow &row);

/// The shortcuts an action has where the platform does not change its standard keys.
QList<QKeySequence> usualShortcuts(const ActionRow &row);

} // namespace Model
