#pragma once

#include <QtGlobal>

class QDataStream;
class QImage;

namespace Model {

/// What to do with an image of more pixels than there may be.
enum class TooLargeImage {
    IsRefused, ///< The stream counts as broken.
    IsLeftOut  ///< As if there were none.
};

/// Writes \a image (a coverage image) with the marker that says whether there is one: -1 for a null image, else 2 and
/// the run-length coded pixels.
void writeMarkedImage(QDataStream &stream, const QImage &image);

/// Reads what writeMarkedImage() has written; at the end of the stream there is no image.
///
/// Decodes only if the image has no more than \a pixelsLeft pixels, which are taken off; \a image is null where there
/// is none or it is damaged. \return false, with the stream's status set, if the stream breaks off, or the image is too
/// large and \a tooLarge says so.
bool readMarkedImage(QDataStream &stream, QImage &image, qint64 &pixelsLeft,
                     TooLargeImage tooLarge = TooLargeImage::IsRefused);

} // namespace Model
