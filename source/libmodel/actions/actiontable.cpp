#include "libmodel/actions/actiontable.h"

#include <QGuiApplication>
#include <QLocale>

#include <algorithm>

namespace Model {

namespace {

using enum MR::Action;
using Key = QKeySequence;

// The letters of the flags, as they stand in the rows.
constexpr int c = ActionRow::Checkable;
constexpr int r = ActionRow::NoAutoRepeat;
constexpr int d = ActionRow::Disabled;
constexpr int cr = c | r;
constexpr int cx = c | ActionRow::Checked;
constexpr int rd = r | d;

// Texts are looked up by these rows, but lupdate sees through no macro of ours, here or in the tables of the menus: to
// collect them for translators, the macros have to be written out first.
#define TEXT(text) QT_TRANSLATE_NOOP("Model::ActionManager", text)

constexpr ActionRow frameRate(MR::Action action, double framesPerSecond)
{
    return {action, "", {}, "", c, ActionGroup::FrameRates, framesPerSecond};
}

constexpr ActionRow rows[] = {
    // Files.
    {NewScene, TEXT("New Scene..."), {ActionKey(Key::New, TEXT("Ctrl+N"))}},
    {OpenScene, TEXT("Open Scene..."), {ActionKey(Key::Open, TEXT("Ctrl+O"))}},
    {SaveScene, TEXT("Save Scene"), {ActionKey(Key::Save, TEXT("Ctrl+S"))}},
    {SaveSceneAs, TEXT("Save Scene As..."), {ActionKey(Key::SaveAs, TEXT("Ctrl+Shift+S"))}},
    {AutoSave, TEXT("Enable Autosaving"), {}, "", cr},
    {Import, TEXT("Import (Frames, Movie Clip or Audio)..."), {TEXT("Ctrl+I")}},
    {ExportFrames, TEXT("Frames...")},
    {ExportExposureSheet, TEXT("OCA (Open Cel Animation)...")},
    {ExportVideo, TEXT("Movie Clip...")},
    {SceneSettings, TEXT("Scene Settings..."), {TEXT("Ctrl+Shift+I")}},
    {Quit, TEXT("&Quit"), {ActionKey(Key::Quit, TEXT("Ctrl+Q"))}},

    // Drawings.
    {Undo, TEXT("&Undo"), {ActionKey(Key::Undo, TEXT("Ctrl+Z"))}, "Undo", ActionRow::Given},
    {Redo, TEXT("&Redo"), {ActionKey(Key::Redo, TEXT("Ctrl+Shift+Z"))}, "Redo", ActionRow::Given},
    {AddCloneDrawing, TEXT("Add Clone Drawing"), {TEXT("'")}, "AddCloneDrawing"},
    {DeleteCloneDrawing, TEXT("Delete Clone Drawing"), {TEXT("Ctrl+'")}},
    {AddBlankDrawing, TEXT("Add Blank Drawing"), {TEXT("Ctrl+Down")}, "AddBlankDrawing"},
    {InsertBlankDrawing, TEXT("Insert Blank Drawing"), {TEXT("Ctrl+Up")}, "InsertBlankDrawing"},
    {TurnCloneIntoOriginal, TEXT("Turn Clone into Original"), {TEXT("O")}, "TurnCloneToNewOriginal"},
    {CutDrawing, TEXT("Cut Drawing"), {ActionKey(Key::Cut, TEXT("Ctrl+X"))}},
    {CopyDrawing, TEXT("Copy Drawing"), {ActionKey(Key::Copy, TEXT("Ctrl+C"))}},
    {PasteDrawing, TEXT("Paste Drawing"), {ActionKey(Key::Paste, TEXT("Ctrl+V"))}, "", d},
    {ClearDrawingMakingBlank, TEXT("Clear Drawing (Make it Blank)"), {TEXT("*")}, "ClearDrawingMakingBlank"},
    {LoseDrawingMakingHold, TEXT("Lose Drawing (Keep Timing)"), {TEXT("/")}, "LoseDrawingMakingClone"},
    {DiscardDrawing, TEXT("Delete Drawing"), {TEXT("Ctrl+Delete")}, "DiscardDrawing"},
    {BackDeleteDrawing, TEXT("Back-delete Drawing"), {TEXT("Ctrl+Backspace")}, "BackDeleteDrawing"},
    {SelectAllDrawings, TEXT("Select All Drawings"), {ActionKey(Key::SelectAll, TEXT("Ctrl+A"))}},
    {CloneEachSelectedDrawingOnce, TEXT("Clone Each Selected Drawing Once"), {}, "", d},
    {CycleSelectedDrawingsOnce, TEXT("Cycle Selected Drawings Once"), {TEXT("@")}, "", d},

    // Draw tools.
    {Draw, TEXT("&Draw (Latest Drawing Tool)"), {TEXT("D")}, "Draw", cr, ActionGroup::DrawOrErase},
    {Erase, TEXT("&Erase (Latest Erasing Tool)"), {TEXT("E")}, "Erase", cr, ActionGroup::DrawOrErase},
    {NonDrawingAction, TEXT("Dummy non-drawing action"), {}, "", c | ActionRow::Hidden, ActionGroup::DrawOrErase},
    {DrawEraseToggle, TEXT("Draw/Erase Toggle"), {TEXT(".")}, "DrawEraseToggle", r},
    {Pencil, TEXT("Pencil (P)"), {TEXT("4"), TEXT("P")}, "Pencil", cr},
    {PencilPreset1, TEXT("Pencil Preset 1"), {}, "Pencil_Preset1", r},
    {PencilPreset2, TEXT("Pencil Preset 2"), {}, "Pencil_Preset2", r},
    {PencilPreset3, TEXT("Pencil Preset 3"), {}, "Pencil_Preset3", r},
    {Marker, TEXT("Marker (M)"), {TEXT("5"), TEXT("M")}, "Marker", cr},
    {MarkerPreset1, TEXT("Marker Preset 1"), {}, "Marker_Preset1", r},
    {MarkerPreset2, TEXT("Marker Preset 2"), {}, "Marker_Preset2", r},
    {MarkerPreset3, TEXT("Marker Preset 3"), {}, "Marker_Preset3", r},
    {Brush, TEXT("Brush (B)"), {TEXT("6"), TEXT("B")}, "Brush", cr},
    {BrushPreset1, TEXT("Brush Preset 1"), {}, "Brush_Preset1", r},
    {BrushPreset2, TEXT("Brush Preset 2"), {}, "Brush_Preset2", r},
    {BrushPreset3, TEXT("Brush Preset 3"), {}, "Brush_Preset3", r},
    {KneadedEraser, TEXT("Kneaded Eraser"), {TEXT("1")}, "KneadedEraser", cr, ActionGroup::Erasers},
    {RubberEraser, TEXT("Rubber Eraser"), {TEXT("2")}, "RubberEraser", cr, ActionGroup::Erasers},
    {VinylEraser, TEXT("Vinyl Eraser"), {TEXT("3")}, "VinylEraser", cr, ActionGroup::Erasers},
    {ResetDrawingUserSettings, TEXT("Reset User Settings"), {TEXT("Ctrl+Shift+D")}},
    {ResetErasingUserSettings, TEXT("Reset User Settings"), {TEXT("Ctrl+Shift+E")}},
    {DecreasePenSize, TEXT("Decrease Pen Size"), {TEXT("[")}},
    {IncreasePenSize, TEXT("Increase Pen Size"), {TEXT("]")}},
    {DrawSettings, TEXT("Draw Settings (Hold D Key)"), {TEXT("Shift+D")}, "", r},
    {EraseSettings, TEXT("Erase Settings (Hold E Key)"), {TEXT("Shift+E")}, "", r},
    {ToggleCursor, TEXT("Toggle Cursor (Crosshair/Dot)"), {TEXT(",")}},

    // Playback and flipping.
    {Play, TEXT("Play"), {TEXT("Space")}, "Playback", r},
    {PlayLoop, TEXT("Loop"), {}, "", c, ActionGroup::PlayRepeat},
    {PlayOnce, TEXT("Once"), {}, "", c, ActionGroup::PlayRepeat},
    {PlayBackwards, TEXT("Backwards"), {}, "", c},
    {PlayStopAndStay, TEXT("Stop and Stay"), {}, "", c},
    frameRate(FrameRate06, 6),
    frameRate(FrameRate12, 12),
    frameRate(FrameRate12_5, 12.5),
    frameRate(FrameRate15, 15),
    frameRate(FrameRate24, 24),
    frameRate(FrameRate25, 25),
    frameRate(FrameRate30, 30),
    frameRate(FrameRate50, 50),
    frameRate(FrameRate60, 60),
    {FrameRateCustom, TEXT("Custom"), {}, "", c, ActionGroup::FrameRates},
    {StepBack, TEXT("Step Back"), {TEXT("Left"), TEXT("Alt+Q")}},
    {StepForward, TEXT("Step Forward"), {TEXT("Right"), TEXT("Alt+W")}},
    {StepBackSkippingLocalClones, TEXT("Step Back (Skipping Local Clones)"), {TEXT("Up")}},
    {StepForwardSkippingLocalClones, TEXT("Step Forward (Skipping Local Clones)"), {TEXT("Down")}},
    {SkipBackToKeyDrawing, TEXT("Skip Back to Key Drawing"), {TEXT("Shift+Up")}},
    {SkipForwardToKeyDrawing, TEXT("Skip Forward to Key Drawing"), {TEXT("Shift+Down")}},
    {ReturnFlip, TEXT("Return Flip (Hold Return Key)"), {TEXT("Return")}, "", r},
    {JumpToStart, TEXT("Jump to Start"), {TEXT("Home")}, "JumpToStart"},
    {JumpToEnd, TEXT("Jump to End"), {TEXT("End")}, "JumpToEnd"},
    {RangeStartStepBack, TEXT("Step Range-Start Back"), {TEXT("Ctrl+Left")}},
    {RangeStartStepForward, TEXT("Step Range-Start Forward"), {TEXT("Ctrl+Right")}},
    {RangeEndStepBack, TEXT("Step Range-End Back"), {TEXT("Ctrl+Shift+Left")}},
    {RangeEndStepForward, TEXT("Step Range-End Forward"), {TEXT("Ctrl+Shift+Right")}},
    {RangeStartToFirstFrame, TEXT("Reset Range-Start to First Frame"), {TEXT("Ctrl+Home")}},
    {RangeEndToLastFrame, TEXT("Reset Range-End to Last Frame"), {TEXT("Ctrl+End")}},
    {MuteAudio, TEXT("Mute Audio"), {}, "Audio", c},
    {DiscardAudio, TEXT("Discard Audio")},

    // Light table and view.
    {BacklightOnOff, TEXT("Backlight (Onion Skin) On/Off"), {TEXT("Shift+Space")}, "BacklightOnOff", cx},
    {CustomizeBacklight, TEXT("Customize Backlight..."), {TEXT("Ctrl+Shift+Space")}},
    {Pan, TEXT("&Hand Tool"), {TEXT("H")}, "HandTool", cr},
    {Zoom, TEXT("&Zoom"), {TEXT("Z")}, "Zoom", cr},
    {Rotate, TEXT("&Rotate"), {TEXT("R")}, "Rotate", cr},
    {ZPR, TEXT("Hand/Zoom/Rotate (Hold Space Bar)"), {TEXT("Space")}, "", r},
    {ResetView, TEXT("Reset View (0°, 100%, Centered)"), {TEXT("0")}, "ResetView"},
    {FitPaperToView, TEXT("Fit View (?%)"), {TEXT("Ctrl+0")}, "FitView"},
    {ZoomIn, TEXT("Zoom In"), {TEXT("Ctrl+="), ActionKey(Key::ZoomIn, TEXT("Ctrl++"))}},
    {ZoomOut, TEXT("Zoom Out"), {ActionKey(Key::ZoomOut, TEXT("Ctrl+-"))}},
    {ViewToX1, TEXT("X1 (100%)"), {TEXT("Ctrl+1")}},
    {GridOnOff, TEXT("Grid On/Off"), {TEXT("G")}, "Grid", cr},
    {GridTypeFieldGuide, TEXT("Field Guide"), {}, "", cr, ActionGroup::GridTypes},
    {GridTypeSafety, TEXT("Safety"), {}, "", cr, ActionGroup::GridTypes},
    {GridTypeThirds, TEXT("Thirds"), {}, "", cr, ActionGroup::GridTypes},
    {GridTypeDiagonals, TEXT("Diagonals"), {}, "", cr, ActionGroup::GridTypes},
    {GridTypeRenaissance, TEXT("Renaissance"), {}, "", cr, ActionGroup::GridTypes},
    {GridTypeNext, TEXT("Next Grid Type"), {TEXT("Shift+G")}},
    {MarkAsKeyDrawing, TEXT("Mark (or Unmark) as Key Drawing"), {TEXT("K")}, "MarkAsKeyDrawing"},
    {UnmarkAllKeyDrawings, TEXT("Unmark All (Clear Keys)"), {TEXT("Shift+K")}, "ClearKeys"},
    {OnlyBacklightKeyFrames, TEXT("Only Backlight Key Frames"), {TEXT("Ctrl+K")}, "BacklightKeys", cx},
    {MirrorView, TEXT("Mirror View"), {TEXT("Y")}, "Mirror", c},
    {OffPegs,
     TEXT("Off Pegs Tool (Hold %1 and %2 Keys)"),
     {},
     "OffPegs",
     cr | ActionRow::NamesModifiers,
     ActionGroup::None,
     0.0,
     TEXT("Off Pegs Tool")},

    // Exposure sheet and layers.
    {XSheetShow, TEXT("Show X-Sheet"), {TEXT("Tab")}, "", c},
    {XSheetOppositeSide, TEXT("Place X-Sheet at Opposite Side")},
    {XSheetDetachSeparateWindow, TEXT("Detach X-Sheet as Separate Window"), {TEXT("Shift+Tab")}, "", c},
    {XSheetCenterAndScroll, TEXT("Center and Scroll when Flipping"), {}, "", cx},
    {SlideMode, TEXT("Slide Mode"), {}, "SlideMode", cx, ActionGroup::DragModes},
    {AddClonesMode, TEXT("Add Clones Mode"), {}, "AddClonesMode", cx, ActionGroup::DragModes},
    {ToggleXSheetDragMode, TEXT("Toggle Mode (Add Clones/Slide)"), {TEXT("T")}, "ToggleMode"},
    {NewLayer, TEXT("New Layer"), {TEXT("N")}, "NewLayer"},
    {DuplicateActiveLayer, TEXT("Duplicate Layer"), {TEXT("Ctrl+D")}, "DuplicateLayer"},
    {LayerAbove, TEXT("Go to Layer Above"), {TEXT("PgUp")}},
    {LayerBelow, TEXT("Go to Layer Below"), {TEXT("PgDown")}},
    {LayerTop, TEXT("Go to Top Layer"), {TEXT("Shift+PgUp")}},
    {LayerBottom, TEXT("Go to Bottom Layer"), {TEXT("Shift+PgDown")}},
    {DiscardActiveLayer, TEXT("Delete Layer"), {TEXT("Ctrl+Shift+Delete")}, "DeleteLayer"},
    {LayerVisibility, TEXT("Layer Visible"), {TEXT("V")}, "Visible", cx},
    {LayerLink, TEXT("Layer Linked"), {TEXT("-")}, "Link", cx},
    {ShowNothingBeyond, TEXT("Nothing"), {}, "", cx, ActionGroup::Beyond},
    {FreezeLastDrawingBeyond, TEXT("Freeze Last Drawing"), {}, "", c, ActionGroup::Beyond},
    {CycleDrawingsBeyond, TEXT("Cycle Drawings"), {}, "", c, ActionGroup::Beyond},
    {ShowBeyondButtons, TEXT("Show Buttons"), {}, "", cx},
    {MergeLayerDown, TEXT("Merge Layer Down (Right)"), {TEXT("&")}, "MergeLayers"},
    {UnlinkAllLayers, TEXT("Unlink All Layers"), {TEXT("U")}},
    {LinkAllLayers, TEXT("Link All Layers"), {TEXT("Shift+U")}},
    {ThumbnailSizeTiny, TEXT("Tiny"), {}, "", c, ActionGroup::ThumbnailSizes},
    {ThumbnailSizeSmall, TEXT("Small"), {}, "", c, ActionGroup::ThumbnailSizes},
    {ThumbnailSizeMedium, TEXT("Medium"), {}, "", cx, ActionGroup::ThumbnailSizes},
    {ThumbnailSizeLarge, TEXT("Large"), {}, "", c, ActionGroup::ThumbnailSizes},
    {ThumbnailSizeSmaller, TEXT("Smaller"), {TEXT("Ctrl+<")}},
    {ThumbnailSizeLarger, TEXT("Larger"), {TEXT("Ctrl+>")}},

    // Floating selection.
    {Lasso, TEXT("Lasso"), {TEXT("L")}, "LassoThisDrawing", cr},
    {Cutter, TEXT("Cutter"), {TEXT("X")}, "Cutter", cr},
    {PickUpAllOfThisDrawing, TEXT("All (Whole Drawing)"), {TEXT("A")}, "PickUpAll", r},
    {StampFloatingSelection, TEXT("Stamp Floating Selection"), {TEXT("Return")}, "", r},
    {StampFloatingSelectionKeepFloating,
     TEXT("Stamp Floating Selection (Keep Floating Selection)"),
     {TEXT("Shift+Return"), TEXT("Shift+Enter")},
     "",
     r},
    {DropFloatingSelection, TEXT("Drop Floating Selection"), {TEXT("Esc")}},
    {GetLatestFloatingSelectionBack, TEXT("Get latest Floating Selection back"), {TEXT("Shift+Esc")}},
    {FloatingSelection, TEXT("Floating Selection"), {}, "", cr},

    // Paint layers and colours.
    {NewPaintLayer, TEXT("New Paint Layer"), {}, "", d},
    {NewPaintLayerWithCloneStructure, TEXT("New Paint Layer with Clone Structure"), {TEXT("Ctrl+Shift+N")}, "", d},
    {Palette, TEXT("&Color Palette"), {TEXT("C")}, "Palette", rd},
    {ColorPickerTool, TEXT("Color Picker Tool"), {TEXT("I")}, "ColorPickerTool", d},
    {FillTool, TEXT("Fill Tool"), {TEXT("F")}, "FillTool", d},

    // Tool bar, dials and windows.
    {ToolBar, TEXT("Show Tool Bar"), {TEXT("Ctrl+T")}, "", c},
    {ToolBarOppositeSide, TEXT("Place Tool Bar at Opposite Side")},
    {ReferenceDisplay, TEXT("Reference Display"), {TEXT("#")}, "", c},
    {CustomizeToolBar, TEXT("Customize Tool Bar...")},
    {PrimarySpeedDial, TEXT("&Speed Dial (primary)"), {TEXT("S")}, "", r},
    {SecondarySpeedDial, TEXT("Speed Dial (secondary)"), {TEXT("Shift+S")}, "", r},
    {CustomizeSpeedDials, TEXT("Customize Speed Dials...")},
    {FullScreen, TEXT("Enter Full Screen"), {ActionKey(Key::FullScreen, TEXT("F11"))}, "", d},
    {Settings, TEXT("Settings...")},

    // Help.
    {VideoTutorials, TEXT("Video Tutorials"), {ActionKey(Key::HelpContents, TEXT("F1"))}},
    {KeyboardShortcuts, TEXT("Keyboard Shortcuts")},
    {CommunityForum, TEXT("Community Forum")},
    {ProvideFeedback, TEXT("Provide Feedback")},
    {About, TEXT("About %1"), {}, "", ActionRow::NamesProgram},

    // Import and options.
    {ImportReferenceLayer, TEXT("Import Reference Frames or Movie Clip...")},
    {ImportAudio, TEXT("Import Audio...")},
    {CollapseVectorData, TEXT("Collapse vector data to bitmap"), {TEXT("Ctrl+B")}, "", d},
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
    {CollapseVectorDataAutomatically, TEXT("Collapse Automatically"), {}, "", c},
    {XSheetLeftSide, TEXT("Left Side"), {}, "", cr, ActionGroup::XSheetSides},
    {XSheetRightSide, TEXT("Right Side"), {}, "", cr, ActionGroup::XSheetSides},
    {XSheetTopBar, TEXT("Show X-Sheet Top Bar"), {}, "", cx},
    {AutoSaveInterval5Min, TEXT("5 mins"), {}, "", cr, ActionGroup::AutoSaveIntervals},
    {AutoSaveInterval15Min, TEXT("15 mins"), {}, "", cr, ActionGroup::AutoSaveIntervals},
    {AutoSaveInterval30Min, TEXT("30 mins"), {}, "", cr, ActionGroup::AutoSaveIntervals},
    {AutoSaveInterval60Min, TEXT("1 hour"), {}, "", cr, ActionGroup::AutoSaveIntervals},
    {AutoSaveFiles1, TEXT("Only 1"), {}, "", cr, ActionGroup::AutoSaveFiles},
    {AutoSaveFiles2, TEXT("Alternate between 2"), {}, "", cr, ActionGroup::AutoSaveFiles},
    {AutoSaveFiles3, TEXT("Cycle through 3"), {}, "", cr, ActionGroup::AutoSaveFiles},
    {AutoSaveFiles5, TEXT("Cycle through 5"), {}, "", cr, ActionGroup::AutoSaveFiles},
    {AutoSaveFiles9, TEXT("Cycle through 9"), {}, "", cr, ActionGroup::AutoSaveFiles},
    {UIScale75, TEXT("75%"), {}, "", cr, ActionGroup::UIScales},
    {UIScale100, TEXT("100%"), {}, "", cr, ActionGroup::UIScales},
    {UIScale125, TEXT("125%"), {}, "", cr, ActionGroup::UIScales},
    {UIScale150, TEXT("150%"), {}, "", cr, ActionGroup::UIScales},
};

constexpr ActionFace secondFaces[] = {
    {AddCloneDrawing, TEXT("Add Clone after each Selected Drawing")},
    {DeleteCloneDrawing, TEXT("Delete All Selected Clone Drawings")},
    {AddBlankDrawing, TEXT("Add Blank after each Selected Drawing")},
    {InsertBlankDrawing, TEXT("Insert Blank before each Selected Drawing")},
    {TurnCloneIntoOriginal, TEXT("Turn Selected Clones into Originals")},
    {CutDrawing, TEXT("Cut Selected Drawings")},
    {CopyDrawing, TEXT("Copy Selected Drawings")},
    {PasteDrawing, TEXT("Paste Drawings")},
    {ClearDrawingMakingBlank, TEXT("Clear Selected Drawings (Make them Blank)")},
    {LoseDrawingMakingHold, TEXT("Lose Selected Drawings (Keep Timing)")},
    {DiscardDrawing, TEXT("Delete Selected Drawings")},
    {BackDeleteDrawing, TEXT("Back-delete Selected Drawings")},
    {Play, TEXT("Stop"), "Stop"},
};

#undef TEXT

QString translated(const char *text)
{
    return QCoreApplication::translate("Model::ActionManager", text);
}

QString modifierName(const char *name)
{
    return QCoreApplication::translate("QShortcut", name);
}

void appendNew(QList<QKeySequence> &shortcuts, const QKeySequence &shortcut)
{
    if (!shortcut.isEmpty() && !shortcuts.contains(shortcut))
        shortcuts.append(shortcut);
}

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

const ActionFace *secondFace(MR::Action action)
{
    const auto *face = std::ranges::find(secondFaces, action, &ActionFace::action);
    return face == std::end(secondFaces) ? nullptr : face;
}

QString actionText(const ActionRow &row)
{
    if (row.frameRate > 0.0)
        return QLocale().toString(row.frameRate, 'g', 6);
    const QString text = translated(row.text);
    if (row.flags & ActionRow::NamesProgram)
        return text.arg(QGuiApplication::applicationDisplayName());
    if (row.flags & ActionRow::NamesModifiers)
        return text.arg(modifierName("Alt"), modifierName("Ctrl"));
    return text;
}

QList<QKeySequence> actionShortcuts(const ActionRow &row)
{
    QList<QKeySequence> shortcuts;
    for (const ActionKey &key : row.keys) {
        const QKeySequence shortcut = key.standard == Key::UnknownKey ? Key() : Key(key.standard);
        appendNew(shortcuts, shortcut.isEmpty() && key.text ? QKeySequence(translated(key.text)) : shortcut);
    }
    return shortcuts;
}

QList<QKeySequence> usualShortcuts(const ActionRow &row)
{
    QList<QKeySequence> shortcuts;
    for (const ActionKey &key : row.keys) {
        if (key.text)
            appendNew(shortcuts, QKeySequence(translated(key.text)));
    }
    return shortcuts;
}

} // namespace Model
