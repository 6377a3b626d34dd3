#pragma once

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QRgb>

#include <array>

namespace Model {

class InkTiles;

/// The colours in which coverage 0 to 255 is blended into a picture: premultiplied, an opacity included. A value.
class BlendColors
{
public:
    /// \a colorTable has 256 entries, not premultiplied; \a opacity goes from 0 to 1.
    BlendColors(const QList<QRgb> &colorTable, double opacity);

    /// What coverage \a value adds, premultiplied.
    [[nodiscard]] QRgb color(uchar value) const { return m_colors[value]; }
    /// The part of what lies below that coverage \a value lets through: 255 less the colour's alpha, in all four bytes.
    [[nodiscard]] quint32 passing(uchar value) const { return m_passing[value]; }

private:
    std::array<QRgb, 256> m_colors;
    std::array<quint32, 256> m_passing;
};

// Both blend as the painter's source-over does, with the same roundings. Pictures are of Format_ARGB32_Premultiplied;
// for any other format nothing is done. What lies outside of an image is left out.

/// Blends the part \a part (pixels of \a coverage, an image of one byte per pixel) of a drawing over \a target, its top
/// left pixel coming to \a at. \a colors must leave coverage 0 without colour. \a ink, if given, is the map of
/// \a coverage.
void blendCoverage(QImage &target, QPoint at, const QImage &coverage, QRect part, const BlendColors &colors,
                   const InkTiles *ink = nullptr);

/// Makes \a rect of \a target anew: \a above over \a below. All three are of one size.
void blendPictures(QImage &target, const QImage &below, const QImage &above, QRect rect);

} // namespace Model
