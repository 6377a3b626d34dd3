#pragma once

#include <QImage>
#include <QList>
#include <QRect>

#include <vector>

namespace Model {

class PixelSpans;

/// Where a picture is no longer what its strokes make: coarsely, in tiles of 32 x 32 pixels.
class ChangedTiles
{
public:
    /// For \a picture (coverage), as it was before the change; null where nobody wants to know.
    explicit ChangedTiles(const QImage &picture);

    /// All of \a rect may have changed.
    void add(QRect rect);
    /// The \a pixels in \a rect may have lost ink, but for those that had none.
    void addLoss(const PixelSpans &pixels, QRect rect);

    /// Rectangles that hold all that has been added; no pixel comes twice.
    [[nodiscard]] QList<QRect> rects() const;

private:
    static constexpr int tileSide = 32;

    [[nodiscard]] std::vector<bool>::reference at(int column, int row)
    {
        return m_isChanged[size_t(row) * size_t(m_columns) + size_t(column)];
    }

    QImage m_picture;
    int m_columns = 0;
    int m_rows = 0;
    std::vector<bool> m_isChanged;
};

} // namespace Model
