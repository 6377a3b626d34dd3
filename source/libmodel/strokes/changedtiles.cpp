#include "libmodel/strokes/changedtiles.h"

#include "libmodel/strokes/pixelspans.h"

#include <algorithm>

namespace Model {

ChangedTiles::ChangedTiles(const QImage &picture)
    : m_picture(picture),
      m_columns((picture.width() + tileSide - 1) / tileSide),
      m_rows((picture.height() + tileSide - 1) / tileSide),
      m_isChanged(size_t(m_columns) * size_t(m_rows))
{
}

void ChangedTiles::add(QRect rect)
{
    const QRect inside = rect & m_picture.rect();
    if (inside.isEmpty())
        return;
    for (int row = inside.top() / tileSide; row <= inside.bottom() / tileSide; ++row) {
        for (int column = inside.left() / tileSide; column <= inside.right() / tileSide; ++column)
            at(column, row) = true;
    }
}

void ChangedTiles::addLoss(const PixelSpans &pixels, QRect rect)
{
    pixels.forEach(rect & m_picture.rect(), [this](QRect span) {
        const uchar *line = m_picture.constScanLine(span.top());
        for (int x = span.left(); x <= span.right(); ++x) {
            if (line[x] != 0)
                at(x / tileSide, span.top() / tileSide) = true;
        }
    });
}

QList<QRect> ChangedTiles::rects() const
{
    QList<QRect> result;
    for (int row = 0; row < m_rows; ++row) {
        const auto begin = m_isChanged.begin() + std::ptrdiff_t(row) * m_columns;
        for (int column = 0; column < m_columns; ++column) {
            if (!begin[column])
                continue;
            const int first = column;
            while (column < m_columns && begin[column])
                ++column;
            const QRect run(first * tileSide, row * tileSide, (column - first) * tileSide, tileSide);
            // A run of the same columns right above grows downwards.
            const auto above = std::find_if(result.begin(), result.end(), [&](const QRect &rect) {
                return rect.left() == run.left() && rect.width() == run.width() && rect.bottom() + 1 == run.top();
            });
            if (above != result.end())
                above->setBottom(run.bottom());
            else
                result.append(run);
        }
    }
    for (QRect &rect : result)
        rect &= m_picture.rect();
    return result;
}

} // namespace Model
