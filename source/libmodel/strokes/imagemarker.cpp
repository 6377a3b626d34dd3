#include "libmodel/strokes/imagemarker.h"

#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/rleimage.h"

#include <QDataStream>
#include <QImage>

namespace Model {

namespace {

constexpr qint32 noImage = -1;
constexpr qint32 runLengthImage = 2;

} // namespace

void writeMarkedImage(QDataStream &stream, const QImage &image)
{
    if (image.isNull()) {
        stream << noImage;
        return;
    }
    stream << runLengthImage;
    RleImage(image).write(stream);
}

bool readMarkedImage(QDataStream &stream, QImage &image, qint64 &pixelsLeft, TooLargeImage tooLarge)
{
    image = QImage();
    if (stream.atEnd())
        return true;
    qint32 marker = noImage;
    stream >> marker;
    if (stream.status() != QDataStream::Ok)
        return false;
    if (marker != runLengthImage)
        return true;
    RleImage coded;
    coded.read(stream);
    if (stream.status() != QDataStream::Ok)
        return false;
    const qint64 pixels = qint64(coded.width()) * coded.height();
    if (pixels > pixelsLeft)
        return tooLarge == TooLargeImage::IsLeftOut || refuse(stream);
    image = coded.toImage();
    if (!image.isNull())
        pixelsLeft -= pixels;
    return true;
}

} // namespace Model
