#include "blockparser.h"

#include <bit>
#include <cstdint>

namespace TestSupport {

namespace {

/// Thrown at anything that the format does not allow.
struct Unreadable
{
};

class Bytes
{
public:
    explicit Bytes(const QByteArray &bytes) : m_bytes(bytes) {}

    qsizetype left() const { return m_bytes.size() - m_position; }

    std::uint8_t u8()
    {
        if (left() < 1)
            throw Unreadable();
        return std::uint8_t(m_bytes.at(m_position++));
    }
    std::uint32_t big(int count)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i)
            value = value << 8 | u8();
        return value;
    }
    int i32() { return std::int32_t(big(4)); }
    qint64 i64()
    {
        const qint64 high = i32();
        return high * (qint64(1) << 32) + big(4);
    }
    float f32() { return std::bit_cast<float>(big(4)); }
    QRect rect()
    {
        const int left_ = i32();
        const int top = i32();
        const int right = i32();
        const int bottom = i32();
        return QRect(QPoint(left_, top), QPoint(right, bottom));
    }
    QByteArray take(qsizetype count)
    {
        if (count < 0 || count > left())
            throw Unreadable();
        m_position += count;
        return m_bytes.mid(m_position - count, count);
    }

private:
    QByteArray m_bytes;
    qsizetype m_position = 0;
};

/// Opcodes 0 to 2 skip, 3 to 5 copy, 6 to 9 go down, 10 ends; the count is 1, 2 or 4 bytes wide.
QByteArray unpack(const QByteArray &data, int width, int height)
{
    QByteArray pixels(qsizetype(width) * height, '\0');
    Bytes bytes(data);
    qsizetype row = 0;
    qsizetype column = 0;
    constexpr int countWidths[] = {1, 2, 4};
    for (;;) {
        const int opcode = bytes.u8();
        if (opcode == 10)
            return pixels;
        if (opcode > 10)
            throw Unreadable();
        if (opcode == 6) {
            ++row;
            column = 0;
        } else if (opcode > 6) {
            row += bytes.big(countWidths[opcode - 7]);
            column = 0;
        } else {
            const qsizetype count = bytes.big(countWidths[opcode % 3]);
            if (column + count > width || row >= height)
                throw Unreadable();
            if (opcode > 2)
                pixels.replace(row * width + column, count, bytes.take(count));
            column += count;
        }
    }
}

std::optional<ParsedImage> parseImage(Bytes &bytes)
{
    const int marker = bytes.i32();
    if (marker == -1)
        return std::nullopt;
    if (marker != 2)
        throw Unreadable();
    ParsedImage image;
    image.width = bytes.i32();
    image.height = bytes.i32();
    image.pixels = unpack(bytes.take(bytes.big(4)), image.width, image.height);
    return image;
}

/// \return the number of elements
int parsePath(Bytes &bytes)
{
    const int elements = bytes.i32();
    if (elements == 0)
        return 0;
    constexpr int bytesPerElement = 12;
    bytes.take(qsizetype(elements) * bytesPerElement);
    bytes.take(2 * sizeof(std::int32_t)); // start of the last subpath, fill rule
    return elements;
}

ParsedSegment parseSegment(Bytes &bytes)
{
    ParsedSegment segment;
    segment.kind = bytes.i32();
    if (segment.kind < 0 || segment.kind > 2)
        throw Unreadable();
    constexpr int numbers[] = {4, 8, 11};
    for (int i = 0; i < numbers[segment.kind]; ++i) {
        // The direction stands between an arc's three points with its radius and the four values at its ends.
        if (segment.kind == 2 && i == 7)
            segment.isClockwise = bytes.u8() != 0;
        segment.numbers.push_back(bytes.f32());
    }
    return segment;
}

void parseSingle(Bytes &bytes, ParsedStroke &stroke)
{
    stroke.isPen = bytes.u8() != 0;
    stroke.tool = bytes.i32();
    stroke.bounds = bytes.rect();
    for (int left = bytes.i32(); left > 0; --left) {
        const float x = bytes.f32();
        const float y = bytes.f32();
        stroke.samples.push_back({x, y, bytes.f32()});
    }
    for (int left = bytes.i32(); left > 0; --left)
        stroke.segments.push_back(parseSegment(bytes));
}

void parseCompound(Bytes &bytes, ParsedStroke &stroke)
{
    for (qint64 left = bytes.i64(); left > 0; --left) {
        ParsedStroke child;
        child.kind = bytes.i32();
        if (child.kind == 0) {
            parseSingle(bytes, child);
        } else if (child.kind == 1) {
            parseCompound(bytes, child);
        } else if (child.kind == 2) {
            child.rect = bytes.rect();
            child.image = parseImage(bytes);
        } else {
            throw Unreadable();
        }
        stroke.children.push_back(child);
    }
    stroke.cutElements = parsePath(bytes);
    stroke.keepElements = parsePath(bytes);
    for (float &number : stroke.transform)
        number = bytes.f32();
}

} // namespace

std::optional<ParsedDrawing> parseStrokesBlock(const QByteArray &block)
{
    try {
        Bytes bytes(block);
        ParsedDrawing drawing;
        drawing.size.setWidth(bytes.i32());
        drawing.size.setHeight(bytes.i32());
        parseCompound(bytes, drawing.root);
        drawing.image = parseImage(bytes);
        drawing.bytesLeft = bytes.left();
        return drawing;
    } catch (const Unreadable &) {
        return std::nullopt;
    }
}

QByteArray pixelsOf(const QImage &image)
{
    QByteArray pixels;
    for (int y = 0; y < image.height(); ++y)
        pixels.append(reinterpret_cast<const char *>(image.constScanLine(y)), image.width());
    return pixels;
}

} // namespace TestSupport
