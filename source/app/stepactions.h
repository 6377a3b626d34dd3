#pragma once

#include "app/scenefollower.h"

/// The actions that step through the frames of the active layer, and those that move the ends of the playback range.
///
/// Steps are undo steps that merge. One that moves takes the selection away: edits go on where one has gone to.
class StepActions : public SceneFollower
{
    Q_OBJECT

public:
    explicit StepActions(QObject *parent);

public slots:
    /// One drawing on (1) or back (-1), holds skipped.
    void stepDrawing(int direction);
    /// To the next (1) or previous (-1) key drawing.
    void stepKeyDrawing(int direction);
    /// Makes \a frameId of the active layer the active frame, and shows it.
    void goTo(int frameId);

private:
    void setRange(int first, int last);
};
