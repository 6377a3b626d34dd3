#pragma once

#include <QImage>
#include <QList>
#include <QRgb>
#include <QSize>

namespace Model {

/// \a coverage scaled to fit \a size in the colours of \a colorTable, with the opacity raised so that thin lines are
/// still to be seen. QImage::Format_ARGB32; null if \a coverage is, or \a colorTable is empty.
[[nodiscard]] QImage drawingThumbnail(const QImage &coverage, QSize size, const QList<QRgb> &colorTable);

} // namespace Model
