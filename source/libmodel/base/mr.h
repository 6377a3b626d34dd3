#pragma once

#include <QObject>

/// Enumerations shared by all of the program. Settings and action lists keep their keys as text, never the numbers.
namespace MR {
Q_NAMESPACE

/// How the cursor of a drawing tool looks.
enum class DrawCursorType {
    AdaptToSize, ///< A ring of the size of the tip.
    FixedSmall,  ///< A small mark, whatever the size.
};
Q_ENUM_NS(DrawCursorType)

/// How strongly the cursor of a drawing tool stands out.
enum class DrawCursorOpacity {
    Faint,
    Opaque,
};
Q_ENUM_NS(DrawCursorOpacity)

/// What happens to pictures when the frame size changes.
enum class FitMode {
    FitModeStretch,
    FitModeKeepAspect,
    FitModeKeepAspectByExpanding,
    FitModeCropCenter,
    FitModeIgnore, ///< The size changes, the pictures stay as they are.
};
Q_ENUM_NS(FitMode)

/// The lines laid over the paper.
enum class GridType {
    FieldGuide,
    Safety,
    Thirds,
    Diagonals,
    Renaissance,
};
Q_ENUM_NS(GridType)

enum class GridStatus {
    GridOn,
    GridOff,
};
Q_ENUM_NS(GridStatus)

/// Size of the pictures on the exposure sheet.
enum class ThumbnailSize {
    ThumbnailTiny,
    ThumbnailSmall,
    ThumbnailMedium,
    ThumbnailLarge,
};
Q_ENUM_NS(ThumbnailSize)

/// Which stored ranges of a drawing tool are meant; Default are those it has without choosing a preset.
enum class ToolPreset {
    Default,
    Preset1,
    Preset2,
    Preset3,
};
Q_ENUM_NS(ToolPreset)

/// What is seen where nothing is drawn.
enum class TransparencyType {
    TransparencySmallCheckersLight,
    TransparencySmallCheckersDark,
    TransparencyLargeCheckersLight,
    TransparencyLargeCheckersDark,
    TransparencyWhite,
    TransparencyLightGrey,
    TransparencyDarkGrey,
    TransparencyBlack,
};
Q_ENUM_NS(TransparencyType)

/// What annotations are written with.
enum class AnnotationPenType {
    ScribblePen,
    DrawToolPen,
};
Q_ENUM_NS(AnnotationPenType)

/// Everything a user can ask the program to do, by name.
///
/// The values are dense. NoAction stands for "none" in stored lists, Toggle1Or3Drawings only keeps its place.
enum class Action {
    NoAction = 0,
    // Files.
    NewScene = 1,
    OpenScene,
    SaveScene,
    SaveSceneAs,
    AutoSave,
    Import,
    ExportFrames,
    ExportExposureSheet,
    ExportVideo,
    SceneSettings,
    Quit,
    // Drawings.
    Undo = 12,
    Redo,
    AddCloneDrawing,
    DeleteCloneDrawing,
    AddBlankDrawing,
    InsertBlankDrawing,
    TurnCloneIntoOriginal,
    CutDrawing,
    CopyDrawing,
    PasteDrawing,
    ClearDrawingMakingBlank,
    LoseDrawingMakingHold,
    DiscardDrawing,
    BackDeleteDrawing,
    SelectAllDrawings,
    CloneEachSelectedDrawingOnce,
    CycleSelectedDrawingsOnce,
    // Draw tools.
    Draw = 29,
    Erase,
    NonDrawingAction,
    DrawEraseToggle,
    Pencil,
    PencilPreset1,
    PencilPreset2,
    PencilPreset3,
    Marker,
    MarkerPreset1,
    MarkerPreset2,
    MarkerPreset3,
    Brush,
    BrushPreset1,
    BrushPreset2,
    BrushPreset3,
    KneadedEraser,
    RubberEraser,
    VinylEraser,
    ResetDrawingUserSettings,
    ResetErasingUserSettings,
    DecreasePenSize,
    IncreasePenSize,
    DrawSettings,
    EraseSettings,
    ToggleCursor,
    // Playback and flipping.
    Play = 55,
    PlayLoop,
    PlayOnce,
    PlayBackwards,
    PlayStopAndStay,
    FrameRate06,
    FrameRate12,
    FrameRate12_5,
    FrameRate15,
    FrameRate24,
    FrameRate25,
    FrameRate30,
    FrameRate50,
    FrameRate60,
    FrameRateCustom,
    StepBack,
    StepForward,
    StepBackSkippingLocalClones,
    StepForwardSkippingLocalClones,
    SkipBackToKeyDrawing,
    SkipForwardToKeyDrawing,
    ReturnFlip,
    JumpToStart,
    JumpToEnd,
    RangeStartStepBack,
    RangeStartStepForward,
    RangeEndStepBack,
    RangeEndStepForward,
    RangeStartToFirstFrame,
    RangeEndToLastFrame,
    MuteAudio,
    DiscardAudio,
    // Light table and view.
    BacklightOnOff = 87,
    Toggle1Or3Drawings = 88,
    CustomizeBacklight,
    Pan,
    Zoom,
    Rotate,
    ZPR,
    ResetView,
    FitPaperToView,
    ZoomIn,
    ZoomOut,
    ViewToX1,
    GridOnOff,
    GridTypeFieldGuide,
    GridTypeSafety,
    GridTypeThirds,
    GridTypeDiagonals,
    GridTypeRenaissance,
    GridTypeNext,
    MarkAsKeyDrawing,
    UnmarkAllKeyDrawings,
    OnlyBacklightKeyFrames,
    MirrorView,
    OffPegs,
    // X-sheet and layers.
    XSheetShow = 111,
    XSheetOppositeSide,
    XSheetDetachSeparateWindow,
    XSheetCenterAndScroll,
    SlideMode,
    AddClonesMode,
    ToggleXSheetDragMode,
    NewLayer,
    DuplicateActiveLayer,
    LayerAbove,
    LayerBelow,
    LayerTop,
    LayerBottom,
    DiscardActiveLayer,
    LayerVisibility,
    LayerLink,
    ShowNothingBeyond,
    FreezeLastDrawingBeyond,
    CycleDrawingsBeyond,
    ShowBeyondButtons,
    MergeLayerDown,
    UnlinkAllLayers,
    LinkAllLayers,
    ThumbnailSizeTiny,
    ThumbnailSizeSmall,
    ThumbnailSizeMedium,
    ThumbnailSizeLarge,
    ThumbnailSizeSmaller,
    ThumbnailSizeLarger,
    // Floating selection.
    Lasso = 140,
    Cutter,
    PickUpAllOfThisDrawing,
    StampFloatingSelection,
    StampFloatingSelectionKeepFloating,
    DropFloatingSelection,
    GetLatestFloatingSelectionBack,
    FloatingSelection,
    // Paint layers and colours.
    NewPaintLayer = 148,
    NewPaintLayerWithCloneStructure,
    Palette,
    ColorPickerTool,
    FillTool,
    // Tool bar, dials and windows.
    ToolBar = 153,
    ToolBarOppositeSide,
    ReferenceDisplay,
    CustomizeToolBar,
    PrimarySpeedDial,
    SecondarySpeedDial,
    CustomizeSpeedDials,
    FullScreen,
    Settings,
    // Help.
    VideoTutorials = 162,
    KeyboardShortcuts,
    CommunityForum,
    ProvideFeedback,
    About,
    // Import and options.
    ImportReferenceLayer = 167,
    ImportAudio,
    CollapseVectorData,
    FaintCursor,
    FreelyDrawOnClones,
    ClonesLockedForDrawing,
    TransparencyShownAsSmallCheckersLight,
    TransparencyShownAsSmallCheckersDark,
    TransparencyShownAsLargeCheckersLight,
    TransparencyShownAsLargeCheckersDark,
    TransparencyShownAsWhite,
    TransparencyShownAsLightGrey,
    TransparencyShownAsDarkGrey,
    TransparencyShownAsBlack,
    CollapseVectorDataAutomatically,
    XSheetLeftSide,
    XSheetRightSide,
    XSheetTopBar,
    AutoSaveInterval5Min,
    AutoSaveInterval15Min,
    AutoSaveInterval30Min,
    AutoSaveInterval60Min,
    AutoSaveFiles1,
    AutoSaveFiles2,
    AutoSaveFiles3,
    AutoSaveFiles5,
    AutoSaveFiles9,
    UIScale75,
    UIScale100,
    UIScale125,
    UIScale150,
};
Q_ENUM_NS(Action)

} // namespace MR
