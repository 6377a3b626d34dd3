#include "support/exrparser.h"

#include <QtEndian>

#include <cmath>

namespace TestSupport {

namespace {

constexpr quint32 magicNumber = 20000630;
constexpr int halfType = 1;

/// Reads little-endian values one after the other, and remembers when the bytes were at an end.
class Cursor
{
public:
    explicit Cursor(const QByteArray &bytes) : m_bytes(bytes) {}

    template<typename Value>
    Value number()
    {
        if (!has(sizeof(Value)))
            return {};
        const auto value = qFromLittleEndian<Value>(m_bytes.constData() + m_at);
        m_at += qsizetype(sizeof(Value));
        return value;
    }

    QByteArray text()
    {
        const qsizetype end = m_bytes.indexOf('\0', m_at);
        if (end < 0) {
            m_failed = true;
            return {};
        }
        const QByteArray read = m_bytes.mid(m_at, end - m_at);
        m_at = end + 1;
        return read;
    }

    QByteArray block(qsizetype size)
    {
        if (!has(size))
            return {};
        m_at += size;
        return m_bytes.mid(m_at - size, size);
    }

    [[nodiscard]] qsizetype position() const { return m_at; }
    [[nodiscard]] bool isAtEnd() const { return m_at == m_bytes.size(); }
    [[nodiscard]] bool failed() const { return m_failed; }

private:
    bool has(qsizetype size)
    {
        if (size < 0 || m_at + size > m_bytes.size())
            m_failed = true;
        return !m_failed;
    }

    QByteArray m_bytes;
    qsizetype m_at = 0;
    bool m_failed = false;
};

bool readChannels(ExrFile &file, const QByteArray &list)
{
    Cursor cursor(list);
    for (QByteArray name = cursor.text(); !name.isEmpty(); name = cursor.text()) {
        file.channels += QString::fromLatin1(name);
        if (cursor.number<qint32>() != halfType)
            return false;
        cursor.block(4); // linear or not, and what is reserved
        if (cursor.number<qint32>() != 1 || cursor.number<qint32>() != 1)
            return false;
    }
    return !cursor.failed() && cursor.isAtEnd();
}

QString readHeader(ExrFile &file, Cursor &cursor)
{
    if (cursor.number<quint32>() != magicNumber)
        return "not an OpenEXR file";
    if (cursor.number<quint32>() != 2)
        return "not a plain scan line file";
    for (QByteArray name = cursor.text(); !name.isEmpty(); name = cursor.text()) {
        cursor.text();
        const QByteArray value = cursor.block(cursor.number<qint32>());
        if (cursor.failed())
            break;
        Cursor inside(value);
        if (name == "channels" && !readChannels(file, value))
            return "a channel is not what it should be";
        if (name == "compression")
            file.compression = inside.number<quint8>();
        if (name == "dataWindow") {
            const int left = inside.number<qint32>();
            const int top = inside.number<qint32>();
            const int right = inside.number<qint32>();
            file.size = QSize(right - left + 1, inside.number<qint32>() - top + 1);
        }
    }
    return cursor.failed() ? "the header is cut off" : QString();
}

} // namespace

float fromHalf(quint16 bits)
{
    const int exponent = (bits >> 10) & 0x1f;
    const int mantissa = bits & 0x3ff;
    const double magnitude = exponent == 0 ? std::ldexp(mantissa, -24) : std::ldexp(1024 + mantissa, exponent - 25);
    return float(bits & 0x8000 ? -magnitude : magnitude);
}

bool isNearestHalf(float stored, double value)
{
    // Ten bits behind the leading one, and steps of 2^-24 below the smallest number that has a leading one.
    const int exponent = value > 0 ? std::max(std::ilogb(value), -14) : -14;
    return std::abs(double(stored) - value) <= std::ldexp(1.0, exponent - 11) * 1.001;
}

ExrFile parseExr(const QByteArray &bytes)
{
    ExrFile file;
    Cursor cursor(bytes);
    file.error = readHeader(file, cursor);
    if (!file.error.isEmpty())
        return file;
    std::vector<quint64> offsets;
    for (int y = 0; y < file.size.height(); ++y)
        offsets.push_back(cursor.number<quint64>());
    for (int y = 0; y < file.size.height() && !cursor.failed(); ++y) {
        const qint32 lineBytes = qint32(2 * file.size.width() * file.channels.size());
        if (offsets[size_t(y)] != quint64(cursor.position()) || cursor.number<qint32>() != y ||
            cursor.number<qint32>() != lineBytes) {
            file.error = QString("line %1 is not where or what it should be").arg(y);
            return file;
        }
        for (const QString &channel : std::as_const(file.channels)) {
            for (int x = 0; x < file.size.width(); ++x)
                file.planes[channel].push_back(fromHalf(cursor.number<quint16>()));
        }
    }
    if (cursor.failed() || !cursor.isAtEnd())
        file.error = "the file is too short or too long";
    return file;
}

} // namespace TestSupport
