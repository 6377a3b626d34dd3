#include "libmodel/strokes/inktiles.h"

#include <QImage>

#include <cstring>

namespace Model {

namespace {

int tileCount(int pixels, int tileSize)
{
    return (std::max(pixels, 0) + tileSize - 1) / tileSize;
}

bool isBlank(const uchar *bytes, int count)
{
    quint64 together = 0;
    int i = 0;
    for (; i + int(sizeof together) <= count; i += int(sizeof together)) {
        quint64 eight;
        std::memcpy(&eight, bytes + i, sizeof eight);
        together |= eight;
    }
    for (; i < count; ++i)
        together |= bytes[i];
    return together == 0;
}

} // namespace

InkTiles::InkTiles(QSize size)
    : m_size(size.isEmpty() ? QSize(0, 0) : size),
      m_wordsPerRow(static_cast<size_t>(tileCount(tileCount(m_size.width(), tileWidth), bitsPerWord))),
      m_words(static_cast<size_t>(tileCount(m_size.height(), tileHeight)) * m_wordsPerRow)
{
}

InkTiles::Range InkTiles::tilesOf(QRect rect)
{
    return {rect.left() / tileWidth, rect.top() / tileHeight, rect.right() / tileWidth, rect.bottom() / tileHeight};
}

InkTiles::Word InkTiles::Range::mask(int index) const
{
    const int first = std::max(left - index * bitsPerWord, 0);
    const int last = std::min(right - index * bitsPerWord, bitsPerWord - 1);
    return (~Word(0) << first) & (~Word(0) >> (bitsPerWord - 1 - last));
}

bool InkTiles::isEmpty() const
{
    return std::all_of(m_words.begin(), m_words.end(), [](Word word) { return word == 0; });
}

bool InkTiles::meets(QRect rect) const
{
    bool found = false;
    forEachRun(rect, [&found](QRect) { found = true; });
    return found;
}

void InkTiles::clear()
{
    std::fill(m_words.begin(), m_words.end(), Word(0));
}

void InkTiles::add(QRect rect)
{
    const QRect part = inside(rect);
    if (part.isEmpty())
        return;
    const Range tiles = tilesOf(part);
    for (int y = tiles.top; y <= tiles.bottom; ++y) {
        for (int word = tiles.firstWord(); word <= tiles.lastWord(); ++word)
            row(y)[word] |= tiles.mask(word);
    }
}

void InkTiles::add(const InkTiles &other, QRect rect)
{
    const QRect part = inside(rect);
    if (part.isEmpty() || other.m_size != m_size)
        return;
    const Range tiles = tilesOf(part);
    for (int y = tiles.top; y <= tiles.bottom; ++y) {
        for (int word = tiles.firstWord(); word <= tiles.lastWord(); ++word)
            row(y)[word] |= other.row(y)[word] & tiles.mask(word);
    }
}

void InkTiles::scan(const QImage &coverage, QRect rect)
{
    const QRect part = inside(rect);
    if (part.isEmpty() || coverage.size() != m_size || coverage.depth() != 8)
        return;
    const Range tiles = tilesOf(part);
    for (int y = tiles.top; y <= tiles.bottom; ++y) {
        for (int word = tiles.firstWord(); word <= tiles.lastWord(); ++word)
            row(y)[word] &= ~tiles.mask(word);
        // Line by line, as the bytes lie in memory.
        const int end = std::min((y + 1) * tileHeight, m_size.height());
        for (int line = y * tileHeight; line < end; ++line) {
            const uchar *bytes = coverage.constScanLine(line);
            for (int x = tiles.left; x <= tiles.right; ++x) {
                Word &word = row(y)[x / bitsPerWord];
                const Word bit = Word(1) << (x % bitsPerWord);
                const int left = x * tileWidth;
                if (!(word & bit) && !isBlank(bytes + left, std::min(tileWidth, m_size.width() - left)))
                    word |= bit;
            }
        }
    }
}

} // namespace Model
