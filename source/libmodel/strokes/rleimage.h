#pragma once

#include <QByteArray>

#include <memory>

class QDataStream;
class QImage;

namespace Model {

/// A coverage image in the compact form in which it is stored: empty stretches as counts, inked ones byte by byte.
///
/// The data is a chain of opcodes of one byte, some followed by a big-endian count of 1, 2 or 4 bytes:
///
///     0 1 2   skip n pixels in this row        6         go to the start of the next row
///     3 4 5   n pixels follow, byte by byte    7 8 9     go n rows down, to the start of the row
///                                              10        end of the image
///
/// Empty rows and empty ends of rows take no space; a single empty pixel between inked ones counts as inked.
class RleImage
{
public:
    /// The longest side that toImage() accepts, in pixels: far above any frame, so that a damaged file can't ask for
    /// memory without end.
    static constexpr int maximumSide = 1 << 20;
    /// The most pixels that toImage() accepts, for the same reason.
    static constexpr qint64 maximumPixels = qint64(1) << 30;

    /// An empty image of size 0 x 0.
    RleImage();

    /// Encodes \a image, which has one byte per pixel. Any other image, or a null one, gives an empty one.
    explicit RleImage(const QImage &image);

    RleImage(const RleImage &other);
    RleImage &operator=(const RleImage &other);
    virtual ~RleImage();

    /// Decodes to QImage::Format_Alpha8.
    ///
    /// \return a null image if the data is damaged (truncated, a count that leaves its row or the image, no end opcode)
    /// or the size is not positive or above the limits. Safe on any data.
    [[nodiscard]] QImage toImage() const;

    /// True if the size is one that toImage() accepts; the data may be damaged for all that.
    [[nodiscard]] bool isDecodable() const;

    /// Width in pixels, as encoded or read; unchecked.
    [[nodiscard]] int width() const;

    /// Height in pixels, as encoded or read; unchecked.
    [[nodiscard]] int height() const;

    /// The encoded pixels.
    [[nodiscard]] const QByteArray &data() const;

    /// Writes width, height and data; sets the stream's version to 19.
    void write(QDataStream &stream) const;

    /// Reads what write() has written; sets the stream's version to 19. After a failure, which the stream's status
    /// tells, the image is empty.
    void read(QDataStream &stream);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Model
