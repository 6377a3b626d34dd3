#pragma once

#include <QImage>
#include <QList>
#include <QString>

#include <array>

namespace Assets {

/// A pen's softness across its stroke, sampled at every 16th of 256 texels (0, 16, ..., 240) and at the last.
struct SoftnessCurve
{
    QString name;              ///< the part of the file name that tells the pen
    std::array<int, 17> red;   ///< opacity, 0 to 255, from the centre line to the rim
    std::array<int, 17> green; ///< strength of the pen's grain, likewise
};

/// The curves of the three pens and the three erasers.
QList<SoftnessCurve> softnessCurves();

/// \a curve as a picture of 256 x 1, RGB, straight between the samples; blue is 0.
QImage softnessImage(const SoftnessCurve &curve);

} // namespace Assets
