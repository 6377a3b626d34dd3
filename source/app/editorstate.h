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
    bool hasClone = false;     ///< a hold or a distant clone
    bool hasDrawing = false;   ///< an original or a distant clone that a hold can stand in for
    bool hasSelection = false; ///< cells are selected

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

    // Of the playback range.
    bool canPlay = false; ///< it has several frames, or is being played
    bool startsBehindFirst = false;
    bool endsBeforeLast = false;
    bool canBeShorter = false;

    /// A tool that draws or erases is current; not set by of().
    bool hasDrawingTool = false;

    bool operator==(const EditorState &) const = default;

    /// How \a scene (may be null) stands now.
    [[nodiscard]] static EditorState of(const Model::MRScene *scene);
};
