#include "libmodel/strokes/imagemarker.h"

#include "libmodel/strokes/coverage.h"
#include "libmodel/strokes/guardedstream.h"
#include "libmodel/strokes/rleimage.h"

#include <QDataStream>
#include <QImage>

#include <optional>

namespace Model {

namespace {

constexpr qint32 noImage = -1;
constexpr qint32 runLengthImage = 2;

/// Leaves \a coded empty where there is no image. \return false if the stream breaks off.
bool readCoded(QDataStream &stream, std::optional<RleImage> &coded)
{
    if (stream.atEnd())
        return true;
    qint32 marker = noImage;
    stream >> marker;
    if (marker == runLengthImage && stream.status() == QDataStream::Ok)
        coded.emplace().read(stream);
    return stream.status() == QDataStream::Ok;
}

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

bool readMarkedImage(QDataStream &stream, QImage &image, StreamBudget &budget)
{
    image = QImage();
    std::optional<RleImage> coded;
    if (!readCoded(stream, coded))
        return false;
    if (!coded)
        return true;
    if (!coded->isDecodable())
        return refuse(stream);
    if (budget.takeImage(coverageBytes({coded->width(), coded->height()}))) {
        image = coded->toImage();
        budget.lostPixels = budget.lostPixels || image.isNull();
    }
    return true;
}

bool readMarkedImage(QDataStream &stream, QImage &image, QSize size)
{
    image = QImage();
    std::optional<RleImage> coded;
    if (!readCoded(stream, coded))
        return false;
    if (coded && QSize(coded->width(), coded->height()) == size)
        image = coded->toImage();
    return true;
}

} // namespace Model
