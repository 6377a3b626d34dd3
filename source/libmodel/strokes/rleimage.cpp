#include "libmodel/strokes/rleimage.h"

#include <QDataStream>
#include <QImage>
#include <QtEndian>

#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <optional>

namespace Model {

namespace {

constexpr int streamVersion = 19;

// Each of the three groups has one opcode per width of its count: 1, 2 and 4 bytes.
constexpr uchar skipOpcodes = 0;
constexpr uchar literalOpcodes = 3;
constexpr uchar nextRowOpcode = 6;
constexpr uchar rowStepOpcodes = 7;
constexpr uchar endOpcode = 10;

constexpr quint64 lowBits = 0x0101010101010101ULL;
constexpr quint64 highBits = 0x8080808080808080ULL;
constexpr qsizetype wordSize = sizeof(quint64);

quint64 wordAt(const uchar *bytes)
{
    // Read as little endian, so that the first byte in memory is the lowest one.
    return qFromLittleEndian<quint64>(bytes);
}

/// The first position from \a x on whose pixel isn't 0; \a width if there is none.
qsizetype firstInked(const uchar *row, qsizetype x, qsizetype width)
{
    for (; x + wordSize <= width; x += wordSize) {
        if (const quint64 word = wordAt(row + x))
            return x + std::countr_zero(word) / 8;
    }
    while (x < width && row[x] == 0)
        ++x;
    return x;
}

/// The first position from \a x on whose pixel is 0; \a width if there is none.
qsizetype firstEmpty(const uchar *row, qsizetype x, qsizetype width)
{
    for (; x + wordSize <= width; x += wordSize) {
        const quint64 word = wordAt(row + x);
        // The lowest bit that remains belongs to the first byte that is 0.
        if (const quint64 zeros = (word - lowBits) & ~word & highBits)
            return x + std::countr_zero(zeros) / 8;
    }
    while (x < width && row[x] != 0)
        ++x;
    return x;
}

class Encoder
{
public:
    explicit Encoder(QByteArray &data) : m_data(data) {}

    void encodeRow(const uchar *row, qsizetype width)
    {
        qsizetype x = 0;
        while (x < width) {
            const qsizetype inked = firstInked(row, x, width);
            if (inked == width)
                break;
            flushRows();
            if (inked > x)
                appendCounted(skipOpcodes, inked - x);
            x = literalEnd(row, inked, width);
            appendCounted(literalOpcodes, x - inked);
            m_data.append(reinterpret_cast<const char *>(row + inked), x - inked);
        }
        ++m_pendingRows;
    }

    void finish() { m_data.append(static_cast<char>(endOpcode)); }

private:
    /// A single empty pixel between two inked ones stays within the run.
    static qsizetype literalEnd(const uchar *row, qsizetype x, qsizetype width)
    {
        qsizetype end = firstEmpty(row, x, width);
        while (end + 1 < width && row[end + 1] != 0)
            end = firstEmpty(row, end + 1, width);
        return end;
    }

    void flushRows()
    {
        if (m_pendingRows == 1)
            m_data.append(static_cast<char>(nextRowOpcode));
        else if (m_pendingRows > 1)
            appendCounted(rowStepOpcodes, m_pendingRows);
        m_pendingRows = 0;
    }

    void appendCounted(uchar opcodes, qsizetype count)
    {
        constexpr auto byteMaximum = std::numeric_limits<quint8>::max();
        constexpr auto shortMaximum = std::numeric_limits<quint16>::max();
        if (count <= byteMaximum)
            appendNumber<quint8>(opcodes, count);
        else if (count <= shortMaximum)
            appendNumber<quint16>(static_cast<uchar>(opcodes + 1), count);
        else
            appendNumber<qint32>(static_cast<uchar>(opcodes + 2), count);
    }

    template<typename Number>
    void appendNumber(uchar opcode, qsizetype count)
    {
        std::array<char, 1 + sizeof(Number)> bytes;
        bytes[0] = static_cast<char>(opcode);
        qToBigEndian(static_cast<Number>(count), bytes.data() + 1);
        m_data.append(bytes.data(), bytes.size());
    }

    QByteArray &m_data;
    qsizetype m_pendingRows = 0;
};

class Decoder
{
public:
    Decoder(const QByteArray &data, QImage &image)
        : m_next(reinterpret_cast<const uchar *>(data.constData())), m_end(m_next + data.size()), m_image(image)
    {
    }

    /// \return true if the end opcode was reached and everything before it stayed within the image.
    bool decode()
    {
        uchar *const pixels = m_image.bits();
        while (m_row < m_image.height() && m_next != m_end) {
            const uchar opcode = *m_next++;
            if (opcode == endOpcode)
                return true;
            if (opcode > endOpcode)
                continue;
            if (!apply(opcode, pixels))
                return false;
        }
        return false;
    }

private:
    bool apply(uchar opcode, uchar *pixels)
    {
        if (opcode == nextRowOpcode)
            return stepRows(1);
        if (opcode >= rowStepOpcodes)
            return stepRows(count(opcode - rowStepOpcodes));
        if (opcode >= literalOpcodes)
            return copyPixels(count(opcode - literalOpcodes), pixels);
        return skipPixels(count(opcode - skipOpcodes));
    }

    /// The count of the given width, 0 to 2 for 1, 2 and 4 bytes. Cut off or negative counts are none.
    std::optional<qint64> count(int width)
    {
        switch (width) {
        case 0:
            return number<quint8>();
        case 1:
            return number<quint16>();
        default:
            return number<qint32>();
        }
    }

    template<typename Number>
    std::optional<qint64> number()
    {
        if (m_end - m_next < static_cast<qsizetype>(sizeof(Number)))
            return {};
        const qint64 value = qFromBigEndian<Number>(m_next);
        m_next += sizeof(Number);
        if (value < 0)
            return {};
        return value;
    }

    bool stepRows(std::optional<qint64> rows)
    {
        if (!rows || m_row + *rows > m_image.height())
            return false;
        m_row += *rows;
        m_column = 0;
        return true;
    }

    bool skipPixels(std::optional<qint64> length)
    {
        if (!length || m_column + *length > m_image.width())
            return false;
        m_column += *length;
        return true;
    }

    bool copyPixels(std::optional<qint64> length, uchar *pixels)
    {
        if (!length || m_column + *length > m_image.width() || *length > m_end - m_next)
            return false;
        std::memcpy(pixels + m_row * m_image.bytesPerLine() + m_column, m_next, static_cast<size_t>(*length));
        m_next += *length;
        m_column += *length;
        return true;
    }

    const uchar *m_next;
    const uchar *m_end;
    QImage &m_image;
    qint64 m_row = 0;
    qint64 m_column = 0;
};

} // namespace

struct RleImage::Private
{
    qint32 width = 0;
    qint32 height = 0;
    QByteArray data;
};

RleImage::RleImage() : d(std::make_unique<Private>())
{
}

RleImage::RleImage(const QImage &image) : RleImage()
{
    if (image.isNull() || image.depth() != 8)
        return;
    d->width = image.width();
    d->height = image.height();
    Encoder encoder(d->data);
    for (int y = 0; y < image.height(); ++y)
        encoder.encodeRow(image.constScanLine(y), image.width());
    encoder.finish();
}

RleImage::RleImage(const RleImage &other) : d(std::make_unique<Private>(*other.d))
{
}

RleImage &RleImage::operator=(const RleImage &other)
{
    if (this != &other)
        d = std::make_unique<Private>(*other.d);
    return *this;
}

RleImage::~RleImage() = default;

bool RleImage::isDecodable() const
{
    return d->width > 0 && d->height > 0 && d->width <= maximumSide && d->height <= maximumSide &&
           qint64(d->width) * d->height <= maximumPixels;
}

QImage RleImage::toImage() const
{
    if (!isDecodable())
        return {};
    QImage image(d->width, d->height, QImage::Format_Alpha8);
    if (image.isNull())
        return {};
    image.fill(0);
    if (!Decoder(d->data, image).decode())
        return {};
    return image;
}

int RleImage::width() const
{
    return d->width;
}

int RleImage::height() const
{
    return d->height;
}

const QByteArray &RleImage::data() const
{
    return d->data;
}

void RleImage::write(QDataStream &stream) const
{
    stream.setVersion(streamVersion);
    stream << d->width << d->height << d->data;
}

void RleImage::read(QDataStream &stream)
{
    stream.setVersion(streamVersion);
    Private content;
    stream >> content.width >> content.height >> content.data;
    *d = stream.status() == QDataStream::Ok ? std::move(content) : Private();
}

} // namespace Model
