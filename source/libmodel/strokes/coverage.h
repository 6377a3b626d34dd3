#pragma once

#include <QImage>
#include <QList>
#include <QRgb>
#include <QSize>

namespace Model {

/// An empty coverage image (QImage::Format_Alpha8, all 0) of \a size; null if \a size is empty.
[[nodiscard]] QImage blankCoverage(QSize size);

/// \a coverage as a picture in the colours of \a colorTable. The bytes are shared, not copied: the result is only to be
/// read, and only as long as \a coverage lives unchanged.
[[nodiscard]] QImage indexedView(const QImage &coverage, const QList<QRgb> &colorTable);

} // namespace Model
