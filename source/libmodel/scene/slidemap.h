#pragma once

#include <QList>

#include <functional>

namespace Model {

/// Which cell of a column shows at a position while cells are dragged.
struct ShownCell
{
    int source = -1;        ///< position in the column as it stands, from 0
    bool isNewHold = false; ///< not that cell itself but a hold that will stand behind it, without a key mark

    bool operator==(const ShownCell &other) const = default;
};

/// What a column shows after one of its cells was slid between its neighbours. Positions are counted from 0. A value.
///
///     column          A  .  .  B  X  .  .  C        X is dragged, dots are holds
///     lowest -1       A  .  B  .  X  .  .  C        the hold before X goes behind B, the last cell that stays
///     offset -1       A  .  B  X  .  .  .  C        and then to X
class SlideMap
{
public:
    /// Every cell where it stands.
    SlideMap() = default;
    /// The cell at \a dragged, which is no hold and not the first, slid by \a offset. \a lowest and \a highest, the
    /// extremes reached on the way, say how many holds before and behind the cell, wherever they stand, are taken out
    /// and dealt out anew around it: lowest <= 0, highest >= 0, and offset lies between them. \a isHold is asked for
    /// positions from 1 to \a length - 1. With too few holds on a side, or other arguments out of range, every cell
    /// stays where it stands.
    SlideMap(const std::function<bool(int)> &isHold, int length, int dragged, int offset, int lowest, int highest);

    /// What shows at \a position.
    [[nodiscard]] ShownCell at(int position) const;
    /// The position at which the cell that stands at \a source shows; -1 when it is taken out.
    [[nodiscard]] int positionOf(int source) const;
    /// Does any position show anything but its own cell?
    [[nodiscard]] bool isIdentity() const { return m_window.isEmpty(); }

private:
    int m_first = 0;
    QList<ShownCell> m_window; ///< from m_first on; outside of it every cell stands where it stood
};

} // namespace Model
