#pragma once

#include <QSize>

class QDataStream;
class QImage;

namespace Model {

struct StreamBudget;

/// Writes \a image (a coverage image) with the marker that says whether there is one: -1 for a null image, else 2 and
/// the run-length coded pixels.
void writeMarkedImage(QDataStream &stream, const QImage &image);

/// Reads what writeMarkedImage() has written; at the end of the stream there is no image.
///
/// Decodes only if \a budget has the bytes for it, and takes them; \a image is null where there is none, it is damaged
/// or there is no memory for it, which \a budget tells. \return false, with the stream's status set, if the stream
/// breaks off or the image is of a size that there is not.
bool readMarkedImage(QDataStream &stream, QImage &image, StreamBudget &budget);

/// The same for the one image of \a size, whose bytes have been taken already; \a image is null if the stream has one
/// of another size, which is passed over.
bool readMarkedImage(QDataStream &stream, QImage &image, QSize size);

} // namespace Model
