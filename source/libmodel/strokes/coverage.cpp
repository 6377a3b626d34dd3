#include "libmodel/strokes/coverage.h"

namespace Model {

QImage blankCoverage(QSize size)
{
    if (size.isEmpty())
        return {};
    QImage image(size, QImage::Format_Alpha8);
    image.fill(0);
    return image;
}

qint64 coverageBytes(QSize size)
{
    constexpr qint64 rowUnit = 4;
    if (size.isEmpty())
        return 0;
    return (size.width() + rowUnit - 1) / rowUnit * rowUnit * size.height();
}

CoveragePart::CoveragePart(QRect rect)
    : origin(rect.left() & ~1, rect.top() & ~1),
      image(blankCoverage({rect.right() - origin.x() + 1, rect.bottom() - origin.y() + 1}))
{
}

QImage indexedView(const QImage &coverage, const QList<QRgb> &colorTable)
{
    if (coverage.isNull())
        return {};
    QImage view(coverage.constBits(), coverage.width(), coverage.height(), coverage.bytesPerLine(),
                QImage::Format_Indexed8);
    view.setColorTable(colorTable);
    return view;
}

} // namespace Model
