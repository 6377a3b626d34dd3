#pragma once

#include "libmodel/strokes/pathpixels.h"

#include <QRect>

#include <optional>

class QPainterPath;
class QTransform;

namespace Model {

/// The masks of a group, as they lie within \a area.
struct SightMasks
{
    std::optional<PathPixels> kept;
    std::optional<PathPixels> taken;
    QRect keptBounds;
    QRect area;
};

/// Where a stroke under some masks can be seen, in paper pixels.
///
/// Each pixel is in sight where its middle is, so that what one stroke keeps and another loses by the same path is in
/// sight once only. Masks have soft edges, though: the pixels that may show a trace are known as well. What lies
/// out of the domain, which is where the masks have been looked at, counts as seen. A value.
class Sight
{
public:
    /// \a seen of \a domain is in sight, \a traced may show a trace; nothing shows out of \a limit.
    Sight(PixelSpans seen, PixelSpans traced, QRect domain, QRect limit);

    /// Can anything that lies in \a rect be seen?
    [[nodiscard]] bool sees(QRect rect) const;
    /// Can anything that lies in \a rect leave a trace?
    [[nodiscard]] bool traces(QRect rect) const;
    /// The pixels that may show a trace.
    [[nodiscard]] const PixelSpans &traced() const { return m_traced; }

    /// The masks that keep \a keep (empty: all) and take \a cut away, both mapped by \a transform, as far as they
    /// matter for what lies \a around. One that would take more work than \a workLeft, from which it is taken, counts
    /// as none.
    [[nodiscard]] SightMasks masks(const QPainterPath &keep, const QPainterPath &cut, const QTransform &transform,
                                   QRect around, qint64 &workLeft) const;
    /// What stays in sight under \a masks.
    [[nodiscard]] Sight under(const SightMasks &masks) const;
    /// Of what shows here, all that the cut, or else what the kept part leaves over, has any effect on.
    [[nodiscard]] Sight changedByCut(const SightMasks &masks) const;
    [[nodiscard]] Sight changedByKeep(const SightMasks &masks) const;

private:
    [[nodiscard]] Sight only(const PixelSpans &pixels) const { return {pixels, pixels, m_domain, m_limit}; }

    PixelSpans m_seen;
    PixelSpans m_traced;
    QRect m_domain;
    QRect m_limit;
};

} // namespace Model
