#pragma once

#include <QRect>

#include <span>
#include <vector>

namespace Model {

/// A set of pixels as sorted, disjoint spans, row by row.
///
/// What is made of outlines has few spans in each row, so that joining and comparing sets costs next to nothing beside
/// looking at pixels. A value.
class PixelSpans
{
public:
    struct Span
    {
        int left; ///< The first pixel.
        int end;  ///< The one behind the last.
    };

    /// No pixels.
    PixelSpans() = default;
    /// All pixels of \a rect.
    explicit PixelSpans(QRect rect);
    /// No pixels yet, in rows from \a top on; for addRow().
    explicit PixelSpans(int top) : m_top(top) {}

    /// Adds one more row below the last. \a spans are in order of their left ends and may touch and overlap.
    void addRow(std::span<const Span> spans);

    /// Is there a pixel that lies in \a rect?
    [[nodiscard]] bool meets(QRect rect) const;
    /// What joining and comparing this costs: rows and spans.
    [[nodiscard]] qint64 effort() const { return qint64(m_ends.size() + m_spans.size()); }

    [[nodiscard]] PixelSpans unitedWith(const PixelSpans &other) const;
    [[nodiscard]] PixelSpans limitedTo(const PixelSpans &other) const;
    [[nodiscard]] PixelSpans without(const PixelSpans &other) const;
    [[nodiscard]] PixelSpans within(QRect rect) const;

    /// Calls \a visit (a QRect of one row) for all spans within \a rect, cut to it.
    template<typename Visit>
    void forEach(QRect rect, const Visit &visit) const;

private:
    template<typename IsIn>
    static PixelSpans combined(const PixelSpans &a, const PixelSpans &b, int top, int end, const IsIn &isIn);

    [[nodiscard]] int end() const { return m_top + int(m_ends.size()); }
    /// The spans of the row \a y; none for one that is not there.
    [[nodiscard]] std::span<const Span> row(int y) const;

    int m_top = 0;
    std::vector<size_t> m_ends; ///< For each row, where its spans end in m_spans.
    std::vector<Span> m_spans;
};

template<typename Visit>
void PixelSpans::forEach(QRect rect, const Visit &visit) const
{
    for (int y = std::max(rect.top(), m_top); y <= rect.bottom() && y < end(); ++y) {
        for (const Span &span : row(y)) {
            const int left = std::max(span.left, rect.left());
            const int right = std::min(span.end - 1, rect.right());
            if (left <= right)
                visit(QRect(left, y, right - left + 1, 1));
        }
    }
}

} // namespace Model
