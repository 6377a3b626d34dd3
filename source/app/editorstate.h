#pragma once

namespace Model {
class MRScene;
}

/// What holds of the open scene, as far as actions depend on it. A value; the false of everything is that of no scene.
struct EditorState
{
    bool hasScene = false;
    bool canUndo = false; ///< a stroke in progress can be undone, too
    bool canRedo = false;

    // Of the selected cells, or without any of the active position.
    bool hasPosition = false; ///< cells, or the empty position behind the last one
    bool hasCell = false;
    bool hasHold = false;
    bool hasClone = false;       ///< a hold or a distant clone
    bool hasInk = false;         ///< a drawing that is not blank, or a stroke in progress
    bool canLoseDrawing = false; ///< an original or a distant clone that a hold can stand in for
    bool hasSelection = false;   ///< cells are selected
    bool canCopy = false;        ///< cells of a layer of a kind that is copied

    // Of the active position and layer, and of all.
    bool hasActiveCell = false;
    bool hasKeyDrawing = false; ///< in any layer
    bool hasLayer = false;
    bool hasLayerAbove = false;
    bool hasLayerBelow = false;
    bool canMergeDown = false;
    bool canAddLayer = false;
    bool hasLinkedLayer = false;
    bool hasUnlinkedLayer = false;
    bool hasSound = false;

    // Of picking up and stamping.
    bool canPickUp = false;    ///< the active layer is of strokes, and shown
    bool canPickUpAll = false; ///< and something is drawn in the active cell
    bool canCollapse = false;  ///< strokes that are no bitmap yet are drawn in the active cell, and shown nowhere else
    bool hasFloatingSelection = false; ///< the scene keeps one, whether it floats or not
    bool floats = false;
    bool canStamp = false;
    bool canGetSelectionBack = false; ///< one that the scene keeps; allowGettingBack() tells of others

    // Of the playback range.
    bool canPlay = false; ///< it has several frames, or is being played
    bool startsBehindFirst = false;
    bool endsBeforeLast = false;
    bool canBeShorter = false;

    // Of the steps from the active frame: there is somewhere to go to.
    bool canStepBack = false;
    bool canStepForward = false;
    bool canStepToDrawingBefore = false;
    bool canStepToDrawingBehind = false;
    bool canSkipToKeyDrawingBefore = false;
    bool canSkipToKeyDrawingBehind = false;
    bool canJumpToStart = false;
    bool canJumpToEnd = false;

    // Of clipboard, tool and view; not set by of().
    bool canPaste = false;
    bool canDecreaseSize = false; ///< of the current tool, which draws or erases
    bool canIncreaseSize = false;
    bool canZoomIn = false;
    bool canZoomOut = false;

    bool operator==(const EditorState &) const = default;

    /// How \a scene (may be null) stands now.
    [[nodiscard]] static EditorState of(const Model::MRScene *scene);

    /// Takes over what floats over \a scene now, which depends on the tool as well.
    void readFloating(const Model::MRScene &scene);

    /// Takes over that there is a selection to get back that the scene does not keep.
    void allowGettingBack();

    /// Takes over that playback goes on: a step ends it, wherever it leads.
    void allowPlaybackToEnd();
};
