#pragma once

#include <QByteArray>
#include <QRect>
#include <QSize>

#include <bit>
#include <cstdint>

namespace TestSupport {

/// Puts a binary block together byte by byte, big end first, as the format says and without the program's help.
class BlockBuilder
{
public:
    BlockBuilder &u8(int value)
    {
        m_bytes.append(char(value));
        return *this;
    }
    BlockBuilder &i32(std::int64_t value) { return big(std::uint64_t(value), 4); }
    BlockBuilder &i64(std::int64_t value) { return big(std::uint64_t(value), 8); }
    BlockBuilder &f32(float value) { return big(std::bit_cast<std::uint32_t>(value), 4); }
    BlockBuilder &size(int width, int height) { return i32(width).i32(height); }
    BlockBuilder &rect(int left, int top, int right, int bottom) { return i32(left).i32(top).i32(right).i32(bottom); }
    BlockBuilder &raw(const QByteArray &bytes)
    {
        m_bytes.append(bytes);
        return *this;
    }
    /// What ends a compound that is neither cut nor moved: two empty paths and the identity.
    BlockBuilder &plainCompoundEnd()
    {
        i32(0).i32(0);
        for (const float number : {1.f, 0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 0.f, 1.f})
            f32(number);
        return *this;
    }
    /// A run-length image whose opcodes are \a data, without the marker in front.
    BlockBuilder &rle(int width, int height, const QByteArray &data)
    {
        return i32(width).i32(height).i32(data.size()).raw(data);
    }

    const QByteArray &bytes() const { return m_bytes; }
    QByteArray base64() const { return m_bytes.toBase64(); }

private:
    BlockBuilder &big(std::uint64_t value, int count)
    {
        for (int i = count - 1; i >= 0; --i)
            u8(int(value >> (8 * i) & 0xff));
        return *this;
    }

    QByteArray m_bytes;
};

} // namespace TestSupport
