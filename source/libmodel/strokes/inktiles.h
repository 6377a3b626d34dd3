#pragma once

#include <QRect>
#include <QSize>

#include <algorithm>
#include <bit>
#include <vector>

class QImage;

namespace Model {

/// A coarse map of where a picture holds something: one bit for each tile of 64 x 8 pixels.
///
/// Line art leaves most of a frame empty even where its bounds do not; with the map, painting touches little else than
/// the ink. A full HD frame takes some thousand bits. A bit may stand for a tile that is empty after all, never the
/// other way round. Rectangles are in pixels of the picture. A value.
class InkTiles
{
public:
    static constexpr int tileWidth = 64;
    static constexpr int tileHeight = 8;

    /// The map of a picture without pixels.
    InkTiles() = default;
    /// The map of an empty picture of \a size.
    explicit InkTiles(QSize size);

    [[nodiscard]] QSize size() const { return m_size; }
    [[nodiscard]] bool isEmpty() const;
    /// Does \a rect meet a tile with ink?
    [[nodiscard]] bool meets(QRect rect) const;

    void clear();
    /// Adds all tiles that \a rect meets.
    void add(QRect rect);
    /// Adds those tiles of \a other, the map of a picture of the same size, that \a rect meets.
    void add(const InkTiles &other, QRect rect);
    /// Looks up in \a coverage, an image of one byte per pixel and of size(), which of the tiles that \a rect meets
    /// hold anything but zeros.
    void scan(const QImage &coverage, QRect rect);

    /// Calls \a paint (a QRect) for the inked tiles within \a rect, whole rows of neighbours at once and cut to \a
    /// rect. No pixel comes twice.
    template<typename Paint>
    void forEachRun(QRect rect, const Paint &paint) const;

private:
    using Word = quint64;
    static constexpr int bitsPerWord = 64;

    /// The tiles that a rectangle meets: columns and rows, both ends included.
    struct Range
    {
        int left, top, right, bottom;
        /// The bits of word \a index of a row that lie in the range.
        [[nodiscard]] Word mask(int index) const;
        [[nodiscard]] int firstWord() const { return left / bitsPerWord; }
        [[nodiscard]] int lastWord() const { return right / bitsPerWord; }
    };

    [[nodiscard]] QRect inside(QRect rect) const { return rect & QRect({0, 0}, m_size); }
    [[nodiscard]] static Range tilesOf(QRect rect);
    [[nodiscard]] Word *row(int index) { return m_words.data() + static_cast<size_t>(index) * m_wordsPerRow; }
    [[nodiscard]] const Word *row(int index) const
    {
        return m_words.data() + static_cast<size_t>(index) * m_wordsPerRow;
    }

    QSize m_size{0, 0};
    size_t m_wordsPerRow = 0;
    std::vector<Word> m_words;
};

template<typename Paint>
void InkTiles::forEachRun(QRect rect, const Paint &paint) const
{
    const QRect part = inside(rect);
    if (part.isEmpty())
        return;
    const Range tiles = tilesOf(part);
    for (int y = tiles.top; y <= tiles.bottom; ++y) {
        const int top = std::max(y * tileHeight, part.top());
        const int bottom = std::min((y + 1) * tileHeight - 1, part.bottom());
        for (int word = tiles.firstWord(); word <= tiles.lastWord(); ++word) {
            Word bits = row(y)[word] & tiles.mask(word);
            while (bits != 0) {
                const int first = std::countr_zero(bits);
                const int end = first + std::countr_one(bits >> first);
                const int left = std::max((word * bitsPerWord + first) * tileWidth, part.left());
                const int right = std::min((word * bitsPerWord + end) * tileWidth - 1, part.right());
                paint(QRect(QPoint(left, top), QPoint(right, bottom)));
                bits = end < bitsPerWord ? bits & (~Word(0) << end) : 0;
            }
        }
    }
}

} // namespace Model
