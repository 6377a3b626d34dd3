#include "libmodel/images/exrwriter.h"

#include "libmodel/base/diskfile.h"
#include "libmodel/images/promisedmemory.h"

#include <QCoreApplication>
#include <QImage>
#include <QSaveFile>

#include <array>
#include <cerrno>
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
    const auto pixels = size_t(image.width()) * size_t(image.height());
    // The planes, the lines made of them, and the file of the lines: the library takes what it is given for the file
    // without a look at it.
    constexpr size_t planeBytes = channelCount * sizeof(float);
    constexpr size_t halfBytes = channelCount * sizeof(float) / 2;
    constexpr size_t bytesBesidesOfALine = 64;
    const PromisedMemory memory(pixels * planeBytes +
                                2 * (pixels * halfBytes + size_t(image.height()) * bytesBesidesOfALine));
    const std::unique_ptr<float[]> planes = planesOf(image);
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

QString translated(const char *text)
{
    return QCoreApplication::translate("Model::ExrWriter", text);
}

} // namespace

bool writeExr(const QImage &image, QIODevice &device, QString *reason)
{
    const auto failed = [reason](const QString &why) {
        if (reason)
            *reason = why;
        return false;
    };
    if (image.isNull())
        return failed(translated("There is no image"));
    if (image.format() != QImage::Format_ARGB32 && image.format() != QImage::Format_ARGB32_Premultiplied)
        return failed(translated("The image has no colours with transparency"));
    try {
        const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
        if (straight.isNull())
            throw std::bad_alloc();
        const Encoded file = encoded(straight);
        if (!file.bytes)
            return failed(file.reason);
        if (!writeAll(device, reinterpret_cast<const char *>(file.bytes.get()), qint64(file.size)))
            return failed(device.errorString());
        // A file's last bytes may find no place on the disk only when they leave its buffer.
        if (auto *onDisk = qobject_cast<QFileDevice *>(&device); onDisk && !onDisk->flush())
            return failed(device.errorString());
    } catch (const std::bad_alloc &) {
        return failed(translated("Not enough memory"));
    }
    return true;
}

bool writeExr(const QImage &image, const QString &fileName)
{
    const auto failed = [](const QString &why) {
        qWarning("Save EXR err: %s", qUtf8Printable(why));
        return false;
    };
    if (isNameTooLong(fileName))
        return failed(qt_error_string(ENAMETOOLONG));
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return failed(file.errorString());
    QString reason;
    bool isWritten = writeExr(image, file, &reason);
    if (isWritten && !reachesDisk(file.handle())) {
        reason = qt_error_string(errno);
        isWritten = false;
    }
    if (!isWritten) {
        file.cancelWriting();
        return failed(reason);
    }
    if (!file.commit())
        return failed(file.errorString());
    return true;
}

} // namespace Model
