#include "libmodel/strokes/pixelspans.h"

#include <algorithm>
#include <limits>

namespace Model {

PixelSpans::PixelSpans(QRect rect) : m_top(rect.top())
{
    if (rect.isEmpty())
        return;
    m_spans.assign(size_t(rect.height()), Span{rect.left(), rect.left() + rect.width()});
    m_ends.reserve(m_spans.size());
    for (size_t i = 1; i <= m_spans.size(); ++i)
        m_ends.push_back(i);
}

void PixelSpans::addRow(std::span<const Span> spans)
{
    const size_t first = m_spans.size();
    for (const Span &span : spans) {
        if (span.left >= span.end)
            continue;
        if (m_spans.size() > first && m_spans.back().end >= span.left)
            m_spans.back().end = std::max(m_spans.back().end, span.end);
        else
            m_spans.push_back(span);
    }
    m_ends.push_back(m_spans.size());
}

std::span<const PixelSpans::Span> PixelSpans::row(int y) const
{
    if (y < m_top || y >= end())
        return {};
    const auto index = size_t(y - m_top);
    const size_t first = index == 0 ? 0 : m_ends[index - 1];
    return {m_spans.data() + first, m_ends[index] - first};
}

bool PixelSpans::meets(QRect rect) const
{
    for (int y = std::max(rect.top(), m_top); y <= rect.bottom() && y < end(); ++y) {
        const auto spans = row(y);
        const auto next =
            std::partition_point(spans.begin(), spans.end(), [&](const Span &span) { return span.end <= rect.left(); });
        if (next != spans.end() && next->left <= rect.right() && rect.width() > 0)
            return true;
    }
    return false;
}

template<typename IsIn>
PixelSpans PixelSpans::combined(const PixelSpans &a, const PixelSpans &b, int top, int end, const IsIn &isIn)
{
    static constexpr int beyondAll = std::numeric_limits<int>::max();
    PixelSpans result(top);
    result.m_ends.reserve(size_t(std::max(end - top, 0)));
    result.m_spans.reserve(std::max(a.m_spans.size(), b.m_spans.size()));
    for (int y = top; y < end; ++y) {
        const auto spansA = a.row(y);
        const auto spansB = b.row(y);
        if (spansB.empty()) {
            if (isIn(true, false))
                result.m_spans.insert(result.m_spans.end(), spansA.begin(), spansA.end());
            result.m_ends.push_back(result.m_spans.size());
            continue;
        }
        // Every end of a span is a step; what lies between two steps is alike.
        size_t stepA = 0;
        size_t stepB = 0;
        bool wasIn = false;
        const auto stepOf = [](std::span<const Span> spans, size_t step) {
            if (step / 2 >= spans.size())
                return beyondAll;
            return step % 2 == 0 ? spans[step / 2].left : spans[step / 2].end;
        };
        for (;;) {
            const int nextA = stepOf(spansA, stepA);
            const int nextB = stepOf(spansB, stepB);
            const int x = std::min(nextA, nextB);
            if (x == beyondAll)
                break;
            stepA += nextA == x ? 1 : 0;
            stepB += nextB == x ? 1 : 0;
            const bool isNowIn = isIn(stepA % 2 == 1, stepB % 2 == 1);
            if (isNowIn && !wasIn)
                result.m_spans.push_back({x, x});
            else if (!isNowIn && wasIn)
                result.m_spans.back().end = x;
            wasIn = isNowIn;
        }
        result.m_ends.push_back(result.m_spans.size());
    }
    return result;
}

PixelSpans PixelSpans::unitedWith(const PixelSpans &other) const
{
    if (m_spans.empty())
        return other;
    if (other.m_spans.empty())
        return *this;
    return combined(*this, other, std::min(m_top, other.m_top), std::max(end(), other.end()),
                    [](bool inThis, bool inOther) { return inThis || inOther; });
}

PixelSpans PixelSpans::limitedTo(const PixelSpans &other) const
{
    return combined(*this, other, std::max(m_top, other.m_top), std::min(end(), other.end()),
                    [](bool inThis, bool inOther) { return inThis && inOther; });
}

PixelSpans PixelSpans::without(const PixelSpans &other) const
{
    return combined(*this, other, m_top, end(), [](bool inThis, bool inOther) { return inThis && !inOther; });
}

PixelSpans PixelSpans::within(QRect rect) const
{
    const int first = std::max(rect.top(), m_top);
    PixelSpans result(first);
    for (int y = first; y <= rect.bottom() && y < end(); ++y) {
        for (const Span &span : row(y)) {
            const Span cut{std::max(span.left, rect.left()), std::min(span.end, rect.right() + 1)};
            if (cut.left < cut.end)
                result.m_spans.push_back(cut);
        }
        result.m_ends.push_back(result.m_spans.size());
    }
    return result;
}

} // namespace Model
