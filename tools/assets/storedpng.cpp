#include "storedpng.h"

#include <QByteArray>
#include <QSaveFile>
#include <QtEndian>

#include <array>

namespace Assets {

namespace {

QByteArray bigEndian(quint32 number)
{
    QByteArray bytes(4, Qt::Uninitialized);
    qToBigEndian(number, bytes.data());
    return bytes;
}

/// The cyclic redundancy check of the PNG standard (section 5.5), reflected polynomial 0xEDB88320.
quint32 checksum(const QByteArray &bytes)
{
    static const std::array<quint32, 256> table = [] {
        std::array<quint32, 256> remainders{};
        for (quint32 n = 0; n < 256; ++n) {
            quint32 remainder = n;
            for (int bit = 0; bit < 8; ++bit)
                remainder = (remainder & 1U) != 0 ? 0xEDB88320U ^ (remainder >> 1) : remainder >> 1;
            remainders[n] = remainder;
        }
        return remainders;
    }();
    quint32 crc = 0xFFFFFFFFU;
    for (const char byte : bytes)
        crc = table[(crc ^ static_cast<uchar>(byte)) & 0xFFU] ^ (crc >> 8);
    return ~crc;
}

QByteArray chunk(const char *type, const QByteArray &data)
{
    const QByteArray body = type + data;
    return bigEndian(static_cast<quint32>(data.size())) + body + bigEndian(checksum(body));
}

} // namespace

bool writeStoredPng(const QImage &image, const QString &path)
{
    const QImage rgb = image.convertToFormat(QImage::Format_RGB888);
    QByteArray rows;
    rows.reserve(static_cast<qsizetype>(rgb.height()) * (1 + 3 * static_cast<qsizetype>(rgb.width())));
    for (int y = 0; y < rgb.height(); ++y) {
        rows += '\0'; // filter type "none"
        rows.append(reinterpret_cast<const char *>(rgb.constScanLine(y)), 3 * static_cast<qsizetype>(rgb.width()));
    }
    constexpr char eightBitsRgb[] = {8, 2, 0, 0,
                                     0}; // depth, colour type, then the standard's only methods, no interlace
    const QByteArray header = bigEndian(static_cast<quint32>(rgb.width())) +
                              bigEndian(static_cast<quint32>(rgb.height())) +
                              QByteArray(eightBitsRgb, sizeof(eightBitsRgb));
    constexpr int lengthPrefix = 4; // qCompress puts the length before the zlib stream

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write("\x89PNG\r\n\x1a\n", 8);
    file.write(chunk("IHDR", header));
    file.write(chunk("IDAT", qCompress(rows, 0).mid(lengthPrefix)));
    file.write(chunk("IEND", {}));
    return file.commit();
}

} // namespace Assets
