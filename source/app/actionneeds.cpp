#include "app/actionneeds.h"

#include <QtGlobal>

namespace {

using enum MR::Action;

#define TEXT(text) QT_TRANSLATE_NOOP("ActionStates", text)

constexpr ActionNeed present{nullptr, TEXT("Not in this version yet"), false};
constexpr ActionNeed openScene{&EditorState::hasScene, TEXT("No scene is open")};
constexpr ActionNeed undoneStep{&EditorState::canUndo, TEXT("There is nothing to undo")};
constexpr ActionNeed redoneStep{&EditorState::canRedo, TEXT("There is nothing to redo")};
constexpr ActionNeed position{&EditorState::hasPosition, TEXT("There is no layer to work on")};
constexpr ActionNeed cell{&EditorState::hasCell, TEXT("There is no drawing here")};
constexpr ActionNeed hold{&EditorState::hasHold, TEXT("There is no clone here that holds the drawing before it")};
constexpr ActionNeed anyClone{&EditorState::hasClone, TEXT("There is no clone here")};
constexpr ActionNeed inkedDrawing{&EditorState::hasInk, TEXT("There is nothing drawn here")};
constexpr ActionNeed losableDrawing{&EditorState::canLoseDrawing,
                                    TEXT("There is no drawing here with another one before it")};
constexpr ActionNeed selection{&EditorState::hasSelection, TEXT("No drawing is selected")};
constexpr ActionNeed activeCell{&EditorState::hasActiveCell, TEXT("The active layer has no drawing at this frame")};
constexpr ActionNeed keyDrawing{&EditorState::hasKeyDrawing, TEXT("No drawing is marked as a key drawing")};
constexpr ActionNeed copiedCell{&EditorState::canCopy, TEXT("There is no drawing here that could be copied")};
constexpr ActionNeed pastedDrawing{&EditorState::canPaste, TEXT("The clipboard holds nothing for this layer")};
constexpr ActionNeed shownStrokes{&EditorState::canPickUp, TEXT("The active layer is no drawing layer that is shown")};
constexpr ActionNeed pickedStrokes{&EditorState::canPickUpAll,
                                   TEXT("There is nothing drawn here on a layer that is shown")};
constexpr ActionNeed onlyStrokes{&EditorState::canCollapse,
                                 TEXT("There is nothing drawn here that is no bitmap yet and not shown elsewhere")};
constexpr ActionNeed floating{&EditorState::floats, TEXT("Nothing floats over the drawing")};
constexpr ActionNeed placeToStamp{&EditorState::canStamp,
                                  TEXT("Nothing floats over a drawing that is shown and takes a stamp")};
constexpr ActionNeed latestSelection{&EditorState::canGetSelectionBack,
                                     TEXT("No floating selection was stamped or dropped")};
constexpr ActionNeed keptSelection{&EditorState::hasFloatingSelection, TEXT("There is no floating selection")};
constexpr ActionNeed layer{&EditorState::hasLayer, TEXT("There is no layer to work on")};
constexpr ActionNeed layerAbove{&EditorState::hasLayerAbove, TEXT("The active layer is the top one")};
constexpr ActionNeed layerBelow{&EditorState::hasLayerBelow, TEXT("The active layer is the bottom one")};
constexpr ActionNeed mergeableLayer{&EditorState::canMergeDown, TEXT("There is no layer of the same kind below")};
constexpr ActionNeed roomForLayer{&EditorState::canAddLayer, TEXT("The scene takes no more layers")};
constexpr ActionNeed linkedLayer{&EditorState::hasLinkedLayer, TEXT("No layer is linked")};
constexpr ActionNeed unlinkedLayer{&EditorState::hasUnlinkedLayer, TEXT("All layers are linked")};
constexpr ActionNeed sound{&EditorState::hasSound, TEXT("The scene has no sound")};
constexpr ActionNeed playableRange{&EditorState::canPlay, TEXT("The range has only one frame")};
constexpr ActionNeed rangeBehindFirst{&EditorState::startsBehindFirst, TEXT("The range starts at the first frame")};
constexpr ActionNeed rangeBeforeLast{&EditorState::endsBeforeLast, TEXT("The range ends at the last frame")};
constexpr ActionNeed longRange{&EditorState::canBeShorter, TEXT("The range cannot be any shorter")};
constexpr ActionNeed frameBefore{&EditorState::canStepBack, TEXT("There is no frame before this one in the range")};
constexpr ActionNeed frameBehind{&EditorState::canStepForward, TEXT("There is no frame behind this one in the range")};
constexpr ActionNeed drawingBefore{&EditorState::canStepToDrawingBefore,
                                   TEXT("There is no drawing before this one in the range")};
constexpr ActionNeed drawingBehind{&EditorState::canStepToDrawingBehind,
                                   TEXT("There is no drawing behind this one in the range")};
constexpr ActionNeed keyDrawingBefore{&EditorState::canSkipToKeyDrawingBefore,
                                      TEXT("There is no key drawing before this one in the range")};
constexpr ActionNeed keyDrawingBehind{&EditorState::canSkipToKeyDrawingBehind,
                                      TEXT("There is no key drawing behind this one in the range")};
constexpr ActionNeed awayFromStart{&EditorState::canJumpToStart, TEXT("This is the first frame of the range")};
constexpr ActionNeed awayFromEnd{&EditorState::canJumpToEnd, TEXT("This is the last frame of the range")};
constexpr ActionNeed largerZoom{&EditorState::canZoomIn, TEXT("The paper is shown as large as it can be")};
constexpr ActionNeed smallerZoom{&EditorState::canZoomOut, TEXT("The paper is shown as small as it can be")};
constexpr ActionNeed smallerTip{&EditorState::canDecreaseSize, TEXT("There is no smaller size for this tool"), false};
constexpr ActionNeed largerTip{&EditorState::canIncreaseSize, TEXT("There is no larger size for this tool"), false};

#undef TEXT

constexpr ActionNeeds table[] = {
    {SaveScene, &openScene},
    {SaveSceneAs, &openScene},
    {AutoSave, &present},
    {Import, &present},
    {ExportFrames, &openScene},
    {ExportExposureSheet, &present},
    {ExportVideo, &present},
    {SceneSettings, &present},
    {Undo, &undoneStep},
    {Redo, &redoneStep},
    {AddCloneDrawing, &position},
    {DeleteCloneDrawing, &hold},
    {AddBlankDrawing, &position},
    {InsertBlankDrawing, &position},
    {TurnCloneIntoOriginal, &anyClone},
    {CutDrawing, &copiedCell},
    {CopyDrawing, &copiedCell},
    {PasteDrawing, &pastedDrawing},
    {ClearDrawingMakingBlank, &inkedDrawing},
    {LoseDrawingMakingHold, &losableDrawing},
    {DiscardDrawing, &cell},
    {BackDeleteDrawing, &position},
    {SelectAllDrawings, &openScene},
    {CloneEachSelectedDrawingOnce, &selection},
    {CycleSelectedDrawingsOnce, &selection},
    {DecreasePenSize, &smallerTip},
    {IncreasePenSize, &largerTip},
    {DrawSettings, &present},
    {EraseSettings, &present},
    {Play, &playableRange},
    {FrameRate06, &openScene},
    {FrameRate12, &openScene},
    {FrameRate12_5, &openScene},
    {FrameRate15, &openScene},
    {FrameRate24, &openScene},
    {FrameRate25, &openScene},
    {FrameRate30, &openScene},
    {FrameRate50, &openScene},
    {FrameRate60, &openScene},
    {FrameRateCustom, &openScene},
    {StepBack, &frameBefore},
    {StepForward, &frameBehind},
    {StepBackSkippingLocalClones, &drawingBefore},
    {StepForwardSkippingLocalClones, &drawingBehind},
    {SkipBackToKeyDrawing, &keyDrawingBefore},
    {SkipForwardToKeyDrawing, &keyDrawingBehind},
    {ReturnFlip, &playableRange},
    {JumpToStart, &awayFromStart},
    {JumpToEnd, &awayFromEnd},
    {RangeStartStepBack, &rangeBehindFirst},
    {RangeStartStepForward, &longRange},
    {RangeEndStepBack, &longRange},
    {RangeEndStepForward, &rangeBeforeLast},
    {RangeStartToFirstFrame, &rangeBehindFirst},
    {RangeEndToLastFrame, &rangeBeforeLast},
    {MuteAudio, &sound},
    {DiscardAudio, &sound},
    {CustomizeBacklight, &present},
    {Pan, &openScene},
    {Zoom, &openScene},
    {Rotate, &openScene},
    {ZPR, &openScene},
    {ResetView, &openScene},
    {FitPaperToView, &openScene},
    {ZoomIn, &largerZoom},
    {ZoomOut, &smallerZoom},
    {ViewToX1, &openScene},
    {MarkAsKeyDrawing, &activeCell},
    {UnmarkAllKeyDrawings, &keyDrawing},
    {OffPegs, &openScene},
    {XSheetShow, &present},
    {XSheetOppositeSide, &present},
    {XSheetDetachSeparateWindow, &present},
    {XSheetCenterAndScroll, &present},
    {SlideMode, &present},
    {AddClonesMode, &present},
    {ToggleXSheetDragMode, &present},
    {NewLayer, &roomForLayer},
    {DuplicateActiveLayer, &roomForLayer},
    {LayerAbove, &layerAbove},
    {LayerBelow, &layerBelow},
    {LayerTop, &layerAbove},
    {LayerBottom, &layerBelow},
    {DiscardActiveLayer, &layer},
    {LayerVisibility, &layer},
    {LayerLink, &layer},
    {ShowNothingBeyond, &layer},
    {FreezeLastDrawingBeyond, &layer},
    {CycleDrawingsBeyond, &layer},
    {ShowBeyondButtons, &present},
    {MergeLayerDown, &mergeableLayer},
    {UnlinkAllLayers, &linkedLayer},
    {LinkAllLayers, &unlinkedLayer},
    {ThumbnailSizeTiny, &present},
    {ThumbnailSizeSmall, &present},
    {ThumbnailSizeMedium, &present},
    {ThumbnailSizeLarge, &present},
    {ThumbnailSizeSmaller, &present},
    {ThumbnailSizeLarger, &present},
    {Lasso, &shownStrokes},
    {Cutter, &shownStrokes},
    {PickUpAllOfThisDrawing, &pickedStrokes},
    {StampFloatingSelection, &placeToStamp},
    {StampFloatingSelectionKeepFloating, &placeToStamp},
    {DropFloatingSelection, &floating},
    {GetLatestFloatingSelectionBack, &latestSelection},
    {FloatingSelection, &keptSelection},
    {NewPaintLayer, &present},
    {NewPaintLayerWithCloneStructure, &present},
    {Palette, &present},
    {ColorPickerTool, &present},
    {FillTool, &present},
    {ToolBar, &present},
    {ToolBarOppositeSide, &present},
    {ReferenceDisplay, &present},
    {CustomizeToolBar, &present},
    {PrimarySpeedDial, &present},
    {SecondarySpeedDial, &present},
    {CustomizeSpeedDials, &present},
    {Settings, &present},
    {ImportReferenceLayer, &present},
    {ImportAudio, &present},
    {CollapseVectorData, &onlyStrokes},
    {XSheetLeftSide, &present},
    {XSheetRightSide, &present},
    {XSheetTopBar, &present},
    {AutoSaveInterval5Min, &present},
    {AutoSaveInterval15Min, &present},
    {AutoSaveInterval30Min, &present},
    {AutoSaveInterval60Min, &present},
    {AutoSaveFiles1, &present},
    {AutoSaveFiles2, &present},
    {AutoSaveFiles3, &present},
    {AutoSaveFiles5, &present},
    {AutoSaveFiles9, &present},
};

} // namespace

std::span<const ActionNeeds> actionNeeds()
{
    return table;
}
