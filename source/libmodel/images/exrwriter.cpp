#include "libmodel/images/exrwriter.h"

#include <QCoreApplication>
#include <QImage>
#include <QSaveFile>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <tinyexr.h>
#include <utility>

namespace Model {

namespace {

/// In the order of the file, which is that of the alphabet.
constexpr std::array channelNames = {"A", "B", "G", "R"};
constexpr int channelCount = channelNames.size();
constexpr float alphaFactor = 0.00392156862745098F; // 1 / 255

/// The colour values of an image, which has a gamma of 2.2, in linear light.
const std::array<float, 256> &linearLight()
{
    static const std::array<float, 256> table = [] {
        std::array<float, 256> values;
        for (int value = 0; value < 256; ++value)
            values[size_t(value)] = float(std::pow(value / 255.0, 2.2));
        return values;
    }();
    return table;
}

/// The four planes of \a image (QImage::Format_ARGB32), one behind the other in the order of channelNames.
std::unique_ptr<float[]> planesOf(const QImage &image)
{
    const auto pixels = size_t(image.width()) * size_t(image.height());
    auto planes = std::make_unique_for_overwrite<float[]>(channelCount * pixels);
    const std::array<float, 256> &linear = linearLight();
    float *alpha = planes.get();
    float *blue = alpha + pixels;
    float *green = blue + pixels;
    float *red = green + pixels;
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = row[x];
            *alpha++ = float(qAlpha(pixel)) * alphaFactor;
            *blue++ = linear[size_t(qBlue(pixel))];
            *green++ = linear[size_t(qGreen(pixel))];
            *red++ = linear[size_t(qRed(pixel))];
        }
    }
    return planes;
}

struct Freed
{
    void operator()(unsigned char *memory) const { std::free(memory); }
};

/// The bytes of a file.
struct Encoded
{
    std::unique_ptr<unsigned char, Freed> bytes; ///< null on failure
    size_t size = 0;
    QString reason; ///< of a failure
};

/// \a image as a file. In memory, since the library's own way to the disk does not notice when the last bytes of a file
/// find no place.
Encoded encoded(const QImage &image)
{
    const std::unique_ptr<float[]> planes = planesOf(image);
    const auto pixels = size_t(image.width()) * size_t(image.height());
    std::array<unsigned char *, channelCount> images;
    std::array<EXRChannelInfo, channelCount> channels = {};
    std::array<int, channelCount> given;
    std::array<int, channelCount> stored;
    for (size_t i = 0; i < channelCount; ++i) {
        images[i] = reinterpret_cast<unsigned char *>(planes.get() + i * pixels);
        std::strcpy(channels[i].name, channelNames[i]);
        given[i] = TINYEXR_PIXELTYPE_FLOAT;
        stored[i] = TINYEXR_PIXELTYPE_HALF;
    }
    EXRHeader header;
    InitEXRHeader(&header);
    header.num_channels = channelCount;
    header.channels = channels.data();
    header.pixel_types = given.data();
    header.requested_pixel_types = stored.data();
    EXRImage exr;
    InitEXRImage(&exr);
    exr.num_channels = channelCount;
    exr.images = images.data();
    exr.width = image.width();
    exr.height = image.height();

    Encoded result;
    unsigned char *bytes = nullptr;
    const char *error = nullptr;
    result.size = SaveEXRImageToMemory(&exr, &header, &bytes, &error);
    result.bytes.reset(bytes);
    if (result.size == 0)
        result.bytes.reset();
    if (error) {
        result.reason = QString::fromUtf8(error);
        FreeEXRErrorMessage(error);
    }
    return result;
}

bool failed(const QString &why, QString *reason)
{
    qWarning("Save EXR err: %s", qUtf8Printable(why));
    if (reason)
        *reason = why;
    return false;
}

QString translated(const char *text)
{
    return QCoreApplication::translate("Model::ExrWriter", text);
}

} // namespace

bool writeExr(const QImage &image, QIODevice &device, QString *reason)
{
    if (image.isNull())
        return failed(translated("There is no image"), reason);
    if (image.format() != QImage::Format_ARGB32 && image.format() != QImage::Format_ARGB32_Premultiplied)
        return failed(translated("The image has no colours with transparency"), reason);
    try {
        const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
        if (straight.isNull())
            throw std::bad_alloc();
        const Encoded file = encoded(straight);
        if (!file.bytes)
            return failed(file.reason, reason);
        const auto size = qint64(file.size);
        if (device.write(reinterpret_cast<const char *>(file.bytes.get()), size) != size)
            return failed(device.errorString(), reason);
        // A file's last bytes may find no place on the disk only when they leave its buffer.
        if (auto *onDisk = qobject_cast<QFileDevice *>(&device); onDisk && !onDisk->flush())
            return failed(device.errorString(), reason);
    } catch (const std::bad_alloc &) {
        return failed(translated("Not enough memory"), reason);
    }
    return true;
}

bool writeExr(const QImage &image, const QString &fileName)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return failed(file.errorString(), nullptr);
    if (!writeExr(image, file, nullptr)) {
        file.cancelWriting();
        return false;
    }
    if (!file.commit())
        return failed(file.errorString(), nullptr);
    return true;
}

} // namespace Model
