#pragma once

#include <QByteArray>
#include <QHash>
#include <QSize>
#include <QString>
#include <QStringList>

#include <vector>

namespace TestSupport {

/// An OpenEXR file of scan lines in half floats, uncompressed, taken apart by the layout that the format's description
/// gives, without the library that wrote it.
struct ExrFile
{
    /// What is wrong with the file; empty when it could be taken apart to its last byte.
    QString error;
    QSize size;
    int compression = -1;
    QStringList channels;                      ///< in the order of the file
    QHash<QString, std::vector<float>> planes; ///< of each channel, row by row from the top

    [[nodiscard]] float at(const QString &channel, int x, int y) const
    {
        return planes.value(channel).at(size_t(y) * size_t(size.width()) + size_t(x));
    }
};

[[nodiscard]] ExrFile parseExr(const QByteArray &bytes);

/// The number that the sixteen bits of a half float stand for; not for infinities and what is no number.
[[nodiscard]] float fromHalf(quint16 bits);

/// Is \a stored the half float nearest to \a value (0 to 1)?
[[nodiscard]] bool isNearestHalf(float stored, double value);

} // namespace TestSupport
