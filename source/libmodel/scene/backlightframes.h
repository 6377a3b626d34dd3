#pragma once

#include "libmodel/base/backlightsettings.h"

#include <QList>

#include <functional>

namespace Model {

/// A neighbouring frame that shines through. A value.
struct BacklightFrame
{
    int frameId = -1;   ///< 1-based
    double opacity = 0; ///< 0 to 1
    int hueShift = 0;   ///< degrees; negative before the active frame, positive behind it, 0 without tint

    /// Opacities are compared fuzzily.
    bool operator==(const BacklightFrame &other) const;
};

/// What of a scene decides which frames shine through. Frames are counted from 1.
struct BacklightSheet
{
    int activeFrame = 1;
    int rangeFirst = 1; ///< the playback range
    int rangeLast = 1;
    int maximumFrame = 1; ///< the last frame of the longest layer
    int lastFrame = 1;    ///< the last frame of the active layer

    /// Has one of the layers that shine through a cell at that frame that is no hold?
    std::function<bool(int frameId)> hasNewDrawing;
    /// Has the active layer a cell at that frame that is marked as a key drawing?
    std::function<bool(int frameId)> isKeyDrawing;

    /// Is \a frameId the empty position just behind the last cell of the active layer?
    [[nodiscard]] bool isAfterLast(int frameId) const { return frameId == lastFrame + 1; }
};

/// The frames that shine through, in painting order: the farthest first, and of two equally far the one behind on top.
///
/// From the active frame one walk goes back and one goes on, from drawing to drawing (or from key drawing to key
/// drawing, with \a onlyKeyFrames), as many steps as \a setting has levels; a level of at most 0.01 and the end of the
/// frames end a walk. Each step turns the hue by 30 degrees more. Where the active frame is a hold, the drawing it
/// holds is no neighbour: the walk back begins at its first frame.
[[nodiscard]] QList<BacklightFrame> backlightFrames(const BacklightSetting &setting, bool onlyKeyFrames,
                                                    const BacklightSheet &sheet);

} // namespace Model
