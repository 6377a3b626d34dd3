#pragma once

#include "libmodel/strokes/sample.h"

#include <QString>

#include <vector>

namespace TestSupport {

/// A movement of the pen as a tablet reports it: 200 samples a second, pressure that comes and goes, a hand's tremor.
struct PenStream
{
    QString name;
    std::vector<Model::Sample> samples;
};

/// Milliseconds between two samples of a stream.
inline constexpr int sampleIntervalMs = 5;

// The same samples on every call and every machine. All streams lie within 800 x 600 paper pixels.

/// A slow, calm bow: about 160 px/s, pressure rising and falling.
[[nodiscard]] PenStream slowCurve();
/// Quick hatching from side to side with sharp turns: about 4000 px/s.
[[nodiscard]] PenStream fastZigzag();
/// A spiral from the centre outwards, with steady pressure.
[[nodiscard]] PenStream spiral();
/// Connected loops of changing size with a final flourish, fast and slow by turns.
[[nodiscard]] PenStream signature();

/// All of the above.
[[nodiscard]] std::vector<PenStream> allPenStreams();

/// A long wandering line of \a count samples, each about 4 pixels from the one before.
[[nodiscard]] PenStream longWalk(int count);

} // namespace TestSupport
