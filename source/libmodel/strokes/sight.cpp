#include "libmodel/strokes/sight.h"

#include "libmodel/strokes/mappedbounds.h"

#include <QPainterPath>
#include <QTransform>

#include <utility>

namespace Model {

Sight::Sight(PixelSpans seen, PixelSpans traced, QRect domain, QRect limit)
    : m_seen(std::move(seen)), m_traced(std::move(traced)), m_domain(domain), m_limit(limit)
{
}

bool Sight::sees(QRect rect) const
{
    const QRect limited = rect & m_limit;
    return !limited.isEmpty() && (!m_domain.contains(limited) || m_seen.meets(limited));
}

bool Sight::traces(QRect rect) const
{
    const QRect limited = rect & m_limit;
    return !limited.isEmpty() && (!m_domain.contains(limited) || m_traced.meets(limited));
}

SightMasks Sight::masks(const QPainterPath &keep, const QPainterPath &cut, const QTransform &transform, QRect around,
                        qint64 &workLeft) const
{
    constexpr int rim = 1;
    SightMasks result;
    result.area = m_domain & m_limit & around;
    workLeft -= result.area.height();
    const auto pixelsOf = [&](const QPainterPath &path) {
        return path.isEmpty() || workLeft < 0 ? std::nullopt : PathPixels::of(path, transform, result.area, workLeft);
    };
    result.kept = pixelsOf(keep);
    result.taken = pixelsOf(cut);
    result.keptBounds = m_limit & around;
    if (result.kept)
        result.keptBounds &= alignedBounds(transform.map(keep).boundingRect()).adjusted(-rim, -rim, rim, rim);
    return result;
}

Sight Sight::under(const SightMasks &masks) const
{
    PixelSpans seen = m_seen.within(masks.area);
    PixelSpans traced = m_traced.within(masks.area);
    if (masks.kept) {
        seen = seen.limitedTo(masks.kept->inside);
        traced = traced.limitedTo(masks.kept->touched());
    }
    if (masks.taken) {
        seen = seen.without(masks.taken->inside);
        traced = traced.without(masks.taken->full());
    }
    return {std::move(seen), std::move(traced), m_domain, masks.keptBounds};
}

Sight Sight::changedByCut(const SightMasks &masks) const
{
    return only(masks.taken ? m_traced.limitedTo(masks.taken->touched()) : m_traced);
}

Sight Sight::changedByKeep(const SightMasks &masks) const
{
    return only(masks.kept ? m_traced.without(masks.kept->full()) : m_traced);
}

} // namespace Model
