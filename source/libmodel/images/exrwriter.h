#pragma once

class QIODevice;
class QImage;
class QString;

namespace Model {

/// Writes \a image to the file \a fileName as OpenEXR: channels A, B, G, R in half floats, uncompressed, in linear
/// light (the image's gamma of 2.2 undone; alpha is kept as it is). The file is written beside its name and renamed
/// when it is whole; a file that stood there stays until then.
///
/// \return false for a null image, for a format other than QImage::Format_ARGB32 and Format_ARGB32_Premultiplied, and
/// when the file cannot be written or there is not enough memory, which the log tells too.
[[nodiscard]] bool writeExr(const QImage &image, const QString &fileName);

/// The same to \a device, which is open for writing. \return false also when there is not enough memory; \a reason (may
/// be null) then tells why, and the log does not.
[[nodiscard]] bool writeExr(const QImage &image, QIODevice &device, QString *reason);

} // namespace Model
