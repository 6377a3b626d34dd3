#include "libmodel/strokes/drawingthumbnail.h"

#include <algorithm>

namespace Model {

QImage drawingThumbnail(const QImage &coverage, QSize size, const QList<QRgb> &colorTable)
{
    constexpr int opacityGain = 8;
    constexpr int opaque = 255;

    if (coverage.isNull() || colorTable.isEmpty())
        return {};
    // Coverage is scaled and coloured only then: in premultiplied pixels a faint colour would not survive the scaling.
    const QImage small =
        coverage.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation).convertToFormat(QImage::Format_Alpha8);
    QImage result(small.size(), QImage::Format_ARGB32);
    for (int y = 0; y < small.height(); ++y) {
        const uchar *from = small.constScanLine(y);
        auto *to = reinterpret_cast<QRgb *>(result.scanLine(y));
        for (int x = 0; x < small.width(); ++x) {
            const QRgb color = colorTable[std::min<qsizetype>(from[x], colorTable.size() - 1)];
            const int alpha = std::min(qAlpha(color) * opacityGain, opaque);
            to[x] = qRgba(qRed(color), qGreen(color), qBlue(color), alpha);
        }
    }
    return result;
}

} // namespace Model
