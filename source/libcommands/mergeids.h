#pragma once

namespace Commands {

/// The values of QUndoCommand::id() of the commands that merge with one of their kind pushed just before; all others
/// have -1.
enum MergeId {
    SetActiveFrameAndLayerId = 1,
    SetFrameRangeId = 2,
    OffPegsId = 3,
    ChangeToolTypeId = 4,
    ChangeLayerOpacityId = 5,
    SetAudioOffsetId = 6,
    SetFrameRateId = 7,
};

} // namespace Commands
