#pragma once

#include <QtGlobal>

class QDataStream;
class QImage;

namespace Model {

/// Writes \a image (a coverage image) with the marker that says whether there is one: -1 for a null image, else 2 and the
/// run-length coded pixels.
void writeMarkedImage(QDataStream &stream, const QImage &image);

/// Reads what writeMarkedImage() has written; at the end of the stream there is no image.
///
/// Decodes only if the image has no more than \a pixelsLeft pixels, which are taken off; \a image is null where there is
/// none or it is damaged. \return false, with the stream's status set, if the stream breaks off or the image is too large.
bool readMarkedImage(QDataStream &stream, QImage &image, qint64 &pixelsLeft);

} // namespace Model
