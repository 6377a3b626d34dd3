#pragma once

#include "support/coveragemodel.h"

#include <QByteArray>
#include <QPoint>

#include <functional>

class QImage;

namespace TestSupport {

/// How far the pixels of an image lie outside of a model's bounds, in levels of 255.
struct Deviation
{
    double worst = 0.0;
    QPoint at;          ///< Where the worst is.
    double total = 0.0; ///< Sum over all pixels.
    int inked = 0;      ///< Number of pixels above 0.

    [[nodiscard]] double meanOfInked() const { return inked > 0 ? total / inked : 0.0; }

    /// False too if nothing was drawn.
    [[nodiscard]] bool isWithin(double worstLevels, double meanLevels) const
    {
        return inked > 0 && worst <= worstLevels && meanOfInked() <= meanLevels;
    }

    [[nodiscard]] QByteArray toText() const;
};

/// Compares each pixel of \a image, one byte each, with the bounds that \a model gives for its centre.
Deviation compare(const QImage &image, const std::function<CoverageModel::Bounds(QPointF)> &model);

} // namespace TestSupport

/// Fails the test unless the deviation stays within worst (any pixel) and mean (over the inked pixels) levels.
#define VERIFY_WITHIN(deviation, worst, mean)                                                                          \
    do {                                                                                                               \
        const TestSupport::Deviation found = (deviation);                                                              \
        QVERIFY2(found.isWithin((worst), (mean)), found.toText().constData());                                         \
    } while (false)
