#pragma once

#include <QtGlobal>

#include <algorithm>

namespace Model {

/// How much work drawing the strokes of a file may still be, where the file has no images of them.
///
/// A few bytes of a file can ask for a dot as large as the frame, a few more for thousands of them. A limit for each
/// drawing alone would be as many limits as there are drawings, so those of a file share one, which grows with what has
/// been read of it. Work is counted as drawableChildren() does, in units of about a nanosecond.
class WorkBudget
{
public:
    /// What the richest of usual drawings takes, for files of a few drawings.
    static constexpr qint64 base = qint64(1) << 32;

    /// For each byte of text that tells of strokes. Lines drawn by hand come to some 500 units per byte, with a broad
    /// pen to some thousands; so a whole film without images is drawn, and a megabyte of ill will takes some ten
    /// seconds.
    static constexpr qint64 perByte = 8192;

    /// What a file begins with.
    WorkBudget() = default;
    /// \a left units, not negative.
    explicit WorkBudget(qint64 left) : m_left(left) {}

    /// Adds what reading \a bytes (not negative) allows for.
    void earn(qint64 bytes) { m_left += bytes * perByte; }

    /// Takes \a effort (not negative) off; no more than there is.
    void take(qint64 effort) { m_left -= std::min(effort, m_left); }

    [[nodiscard]] qint64 left() const { return m_left; }

private:
    qint64 m_left = base;
};

} // namespace Model
