#include "libui/paper/paperbrushes.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <algorithm>
#include <iterator>

namespace UI {

namespace {

constexpr QColor lightBase(215, 211, 207);
/// Darker than the linen beneath, so that the sheet is told from the desk.
constexpr QColor darkBase(72, 69, 66);
constexpr QColor deskColor(108, 104, 100);

struct PaperFill
{
    QColor color;
    /// Side of a checker's square in pixels, 0 for a plain fill.
    int square;
};

// By MR::TransparencyType.
constexpr PaperFill fills[] = {
    {lightBase, 8},
    {darkBase, 8},
    {lightBase, 20},
    {darkBase, 20},
    {QColor(255, 255, 255), 0},
    {QColor(200, 196, 192), 0},
    {darkBase, 0},
    {QColor(0, 0, 0), 0},
};

/// Pairs of squares along the side of a tile: the longer its rows, the faster it fills a sheet.
constexpr int tilePairs = 16;

QPixmap checkers(const PaperFill &fill)
{
    const int side = 2 * tilePairs * fill.square;
    QPixmap tile(side, side);
    tile.fill(fill.color.lighter(105));
    QPainterPath squares;
    for (int row = 0; row < 2 * tilePairs; ++row) {
        for (int column = row % 2; column < 2 * tilePairs; column += 2)
            squares.addRect(column * fill.square, row * fill.square, fill.square, fill.square);
    }
    QPainter(&tile).fillPath(squares, fill.color.darker(105));
    return tile;
}

} // namespace

QBrush paperBrush(MR::TransparencyType type)
{
    constexpr int last = static_cast<int>(std::size(fills)) - 1;
    const PaperFill &fill = fills[std::clamp(static_cast<int>(type), 0, last)];
    return fill.square > 0 ? QBrush(checkers(fill)) : QBrush(fill.color);
}

QBrush deskBrush()
{
    const QPixmap linen(QStringLiteral(":/paper/linenBG.png"));
    return linen.isNull() ? QBrush(deskColor) : QBrush(linen);
}

} // namespace UI
