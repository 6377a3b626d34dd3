#include "libmodel/actions/shortcutpage.h"

#include "libmodel/actions/actiontable.h"

#include <QStringList>

namespace Model {

namespace {

/// Neighbours in the table that concern the same thing. Paint and colours, NewPaintLayer to FillTool, are left out:
/// their actions have keys, but nothing stands behind them.
struct Section
{
    const char *title;
    MR::Action first;
    MR::Action last;
};

constexpr Section sections[] = {
    {"Scenes", MR::Action::NewScene, MR::Action::Quit},
    {"Drawings", MR::Action::Undo, MR::Action::CycleSelectedDrawingsOnce},
    {"Pens and erasers", MR::Action::Draw, MR::Action::ToggleCursor},
    {"Flipping and playing", MR::Action::Play, MR::Action::DiscardAudio},
    {"Light table and view", MR::Action::BacklightOnOff, MR::Action::OffPegs},
    {"Exposure sheet and layers", MR::Action::XSheetShow, MR::Action::ThumbnailSizeLarger},
    {"Picking up", MR::Action::Lasso, MR::Action::FloatingSelection},
    {"Bars, dials and windows", MR::Action::ToolBar, MR::Action::Settings},
    {"Help", MR::Action::VideoTutorials, MR::Action::About},
    {"Imports and options", MR::Action::ImportReferenceLayer, MR::Action::UIScale150},
};

/// What sets apart actions that have the same text, as the menus they stand in do.
struct Remark
{
    MR::Action action;
    const char *text;
};

constexpr Remark remarks[] = {
    {MR::Action::ResetDrawingUserSettings, "of the drawing tool"},
    {MR::Action::ResetErasingUserSettings, "of the erasing tool"},
};

/// Something done with keys that no action's shortcut tells. Several keys are separated by spaces.
struct Gesture
{
    const char *keys;
    const char *text;
};

constexpr Gesture heldKeys[] = {
    {"Space", "Hand, zoom or rotate, depending on where on the paper you press."},
    {"Return Enter", "Flip back through the drawings; let go to return."},
    {"Shift", "Scrub: move along the paper to leaf through the frames."},
    {"Ctrl+Alt", "Move the paper off its pegs."},
    {"D", "See and change the settings of the drawing tools at the pointer."},
    {"E", "See and change the settings of the erasing tools at the pointer."},
    {"S", "The primary speed dial; with Shift the secondary one."},
    {"Z", "Zoom until you let go."},
    {"H", "Move the view until you let go."},
    {"R", "Rotate the view until you let go."},
};

constexpr Gesture furtherKeys[] = {
    {"Q", "One frame back, skipping clones; with Shift, or with Caps Lock on, to the key drawing before."},
    {"W", "One frame forward, skipping clones; with Shift, or with Caps Lock on, to the next key drawing."},
    {"Esc", "Stop playing; close what hangs over the paper; put hand, zoom, rotation and off pegs away."},
    {"F10", "Open the first menu."},
    {"Ctrl+2 Ctrl+3 Ctrl+4 Ctrl+5 Ctrl+6 Ctrl+7 Ctrl+8 Ctrl+9", "Zoom to that many times the paper's size."},
    {"Ctrl+[ Ctrl+]", "Turn the view left or right to the next multiple of 15 degrees."},
    {"1 2 3 4 6 7 8 9", "On the number pad: turn the view to one of eight directions."},
};

QString keyCell(const QStringList &keys)
{
    QStringList cells;
    for (const QString &key : keys)
        cells << QStringLiteral("<kbd>%1</kbd>").arg(key.toHtmlEscaped());
    return cells.join(QLatin1Char(' '));
}

QString tableRow(const QStringList &keys, const QString &text)
{
    return QStringLiteral("<tr><td>%1</td><td>%2</td></tr>\n").arg(keyCell(keys), text.toHtmlEscaped());
}

QString table(const char *kind, const QString &title, const QString &tableRows)
{
    return QStringLiteral("<h2>%1</h2>\n<table class=\"%2\">\n%3</table>\n").arg(title, QLatin1String(kind), tableRows);
}

/// The text of an action without what only a menu needs.
QString plainText(const ActionRow &row)
{
    QString text = actionText(row).remove(QLatin1Char('&'));
    if (text.endsWith(QLatin1String("...")))
        text.chop(3);
    for (const Remark &remark : remarks) {
        if (remark.action == row.action)
            text += QStringLiteral(" (%1)").arg(QLatin1String(remark.text));
    }
    return text;
}

QString actionTableOf(const Section &section)
{
    QString tableRows;
    for (const ActionRow &row : actionTable()) {
        if (row.action < section.first || row.action > section.last)
            continue;
        QStringList keys;
        for (const QKeySequence &shortcut : usualShortcuts(row))
            keys << shortcut.toString(QKeySequence::PortableText);
        if (!keys.isEmpty())
            tableRows += tableRow(keys, plainText(row));
    }
    return tableRows.isEmpty() ? QString() : table("actions", QLatin1String(section.title), tableRows);
}

template<std::size_t count>
QString gestureTable(const char *title, const Gesture (&gestures)[count])
{
    QString tableRows;
    for (const Gesture &gesture : gestures)
        tableRows += tableRow(QString::fromLatin1(gesture.keys).split(QLatin1Char(' ')), QLatin1String(gesture.text));
    return table("gestures", QLatin1String(title), tableRows);
}

constexpr const char *pageFrame = R"(<!DOCTYPE html>
<html xmlns="http://www.w3.org/1999/xhtml" lang="en">
<head>
<meta charset="utf-8"/>
<title>Keyboard shortcuts</title>
<link rel="stylesheet" href="style.css"/>
</head>
<body>
<nav><a href="index.html">Help</a> <a href="tutorials.html">Tutorials</a></nav>
<h1>Keyboard shortcuts</h1>
<p>A key works while its command can be used: a grey entry of a menu tells in its tool tip what it lacks. Some commands
are not in this version yet; their keys do nothing so far. Where your desktop has keys of its own for saving, quitting
and the like, those hold instead.</p>
%1</body>
</html>
)";

} // namespace

QString shortcutPage()
{
    QString tables = gestureTable("Keys to hold", heldKeys) + gestureTable("Further keys", furtherKeys);
    for (const Section &section : sections)
        tables += actionTableOf(section);
    return QString::fromLatin1(pageFrame).arg(tables);
}

} // namespace Model
