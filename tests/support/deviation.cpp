#include "support/deviation.h"

#include <QImage>
#include <QString>

#include <algorithm>

namespace TestSupport {

QByteArray Deviation::toText() const
{
    return QStringLiteral("worst %1 levels at %2, %3; mean %4 over %5 inked pixels")
        .arg(worst, 0, 'f', 2)
        .arg(at.x())
        .arg(at.y())
        .arg(meanOfInked(), 0, 'f', 3)
        .arg(inked)
        .toUtf8();
}

Deviation compare(const QImage &image, const std::function<CoverageModel::Bounds(QPointF)> &model)
{
    Deviation deviation;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const double value = image.constScanLine(y)[x];
            const CoverageModel::Bounds bounds = model(QPointF(x + 0.5, y + 0.5));
            const double outside = std::max({0.0, bounds.lower - value, value - bounds.upper});
            deviation.total += outside;
            deviation.inked += value > 0 ? 1 : 0;
            if (outside > deviation.worst) {
                deviation.worst = outside;
                deviation.at = QPoint(x, y);
            }
        }
    }
    return deviation;
}

} // namespace TestSupport
