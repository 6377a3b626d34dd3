#include "libmodel/actions/actiontable.h"

#include <QtGlobal>

#include <algorithm>

namespace Model {

namespace {

using enum MR::Action;
using Key = QKeySequence;

// The letters of the flags, as they stand in the rows.
constexpr int c = ActionRow::Checkable;
constexpr int r = ActionRow::NoAutoRepeat;
constexpr int cr = c | r;
constexpr int cx = c | ActionRow::Checked;

#define TEXT(text) QT_TRANSLATE_NOOP("Model::ActionManager", text)

constexpr ActionRow rows[] = {
    {NewScene, TEXT("New Scene..."), {Key::New}},
    {OpenScene, TEXT("Open Scene..."), {Key::Open}},
    {SaveScene, TEXT("Save Scene"), {Key::Save}},
    {SaveSceneAs, TEXT("Save Scene As..."), {ActionKey(Key::SaveAs, TEXT("Ctrl+Shift+S"))}},
    {ExportFrames, TEXT("Frames...")},
    {Quit, TEXT("&Quit"), {Key::Quit}},
    {Undo, TEXT("&Undo"), {Key::Undo}, "Undo", ActionRow::Given},
    {Redo, TEXT("&Redo"), {Key::Redo}, "Redo", ActionRow::Given},

    {Draw, TEXT("&Draw (Latest Drawing Tool)"), {TEXT("D")}, "Draw", cr, ActionGroup::DrawOrErase},
    {Erase, TEXT("&Erase (Latest Erasing Tool)"), {TEXT("E")}, "Erase", cr, ActionGroup::DrawOrErase},
    {NonDrawingAction, TEXT("Dummy non-drawing action"), {}, "", c | ActionRow::Hidden, ActionGroup::DrawOrErase},
    {DrawEraseToggle, TEXT("Draw/Erase Toggle"), {TEXT(".")}, "DrawEraseToggle", r},
    {Pencil, TEXT("Pencil (P)"), {TEXT("4"), TEXT("P")}, "Pencil", cr},
    {Marker, TEXT("Marker (M)"), {TEXT("5"), TEXT("M")}, "Marker", cr},
    {Brush, TEXT("Brush (B)"), {TEXT("6"), TEXT("B")}, "Brush", cr},
    {KneadedEraser, TEXT("Kneaded Eraser"), {TEXT("1")}, "KneadedEraser", cr, ActionGroup::Erasers},
    {RubberEraser, TEXT("Rubber Eraser"), {TEXT("2")}, "RubberEraser", cr, ActionGroup::Erasers},
    {VinylEraser, TEXT("Vinyl Eraser"), {TEXT("3")}, "VinylEraser", cr, ActionGroup::Erasers},
    {ResetDrawingUserSettings, TEXT("Reset User Settings"), {TEXT("Ctrl+Shift+D")}},
    {ResetErasingUserSettings, TEXT("Reset User Settings"), {TEXT("Ctrl+Shift+E")}},
    {DecreasePenSize, TEXT("Decrease Pen Size"), {TEXT("[")}},
    {IncreasePenSize, TEXT("Increase Pen Size"), {TEXT("]")}},
    {ToggleCursor, TEXT("Toggle Cursor (Crosshair/Dot)"), {TEXT(",")}},

    {Pan, TEXT("&Hand Tool"), {TEXT("H")}, "HandTool", cr},
    {ResetView, TEXT("Reset View (0°, 100%, Centered)"), {TEXT("0")}, "ResetView"},
    {FitPaperToView, TEXT("Fit View (?%)"), {TEXT("Ctrl+0")}, "FitView"},
    {ZoomIn, TEXT("Zoom In"), {TEXT("Ctrl+="), Key::ZoomIn}},
    {ZoomOut, TEXT("Zoom Out"), {Key::ZoomOut}},
    {ViewToX1, TEXT("X1 (100%)"), {TEXT("Ctrl+1")}},

    {About, TEXT("About %1"), {}, "", ActionRow::NamesProgram},
    {FaintCursor, TEXT("Faint Cursor"), {}, "", cx},
    {FreelyDrawOnClones, TEXT("Freely draw on Clones - Original will update"), {}, "", c, ActionGroup::DrawingOnClones},
    {ClonesLockedForDrawing, TEXT("Clones are locked for drawing"), {}, "", c, ActionGroup::DrawingOnClones},
    {TransparencyShownAsSmallCheckersLight, TEXT("Small Checkers, Light"), {}, "", cr, ActionGroup::Transparency},
    {TransparencyShownAsSmallCheckersDark, TEXT("Small Checkers, Dark"), {}, "", cr, ActionGroup::Transparency},
    {TransparencyShownAsLargeCheckersLight, TEXT("Large Checkers, Light"), {}, "", cr, ActionGroup::Transparency},
    {TransparencyShownAsLargeCheckersDark, TEXT("Large Checkers, Dark"), {}, "", cr, ActionGroup::Transparency},
    {TransparencyShownAsWhite, TEXT("White"), {}, "", cr, ActionGroup::Transparency},
    {TransparencyShownAsLightGrey, TEXT("Light Grey"), {}, "", cr, ActionGroup::Transparency},
    {TransparencyShownAsDarkGrey, TEXT("Dark Grey"), {}, "", cr, ActionGroup::Transparency},
    {TransparencyShownAsBlack, TEXT("Black"), {}, "", cr, ActionGroup::Transparency},
};

#undef TEXT

} // namespace

std::span<const ActionRow> actionTable()
{
    return rows;
}

const ActionRow *actionRow(MR::Action action)
{
    const auto *row = std::ranges::find(rows, action, &ActionRow::action);
    return row == std::end(rows) ? nullptr : row;
}

} // namespace Model
