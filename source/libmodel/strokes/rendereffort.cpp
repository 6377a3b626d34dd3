#include "libmodel/strokes/rendereffort.h"

#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/compoundstroke.h"
#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/segment.h"
#include "libmodel/strokes/singlestroke.h"

#include <QPainterPath>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace Model {

namespace {

constexpr double paperScale = 1.0;

qint64 area(QRect rect)
{
    return rect.isEmpty() ? 0 : qint64(rect.width()) * rect.height();
}

class Counter
{
public:
    explicit Counter(qint64 limit) : m_limit(limit) {}

    int drawableChildren(const CompoundStroke &compound, QRect rect)
    {
        const QRect drawn = rect & grownByRim(compound.boundingRect(), paperScale);
        if (drawn.isEmpty())
            return compound.count();
        m_rowsAtOnce = compound.rowsAtOnce(drawn, QTransform(), paperScale);
        m_bands = (drawn.height() - 1) / m_rowsAtOnce + 1;
        countMasks(compound, compound.transform(), drawn);
        for (int drawable = 0; drawable < compound.count(); ++drawable) {
            m_effortOfDrawable = m_effort;
            count(compound.at(drawable), compound.transform(), drawn);
            if (isBeyondLimit())
                return drawable;
        }
        m_effortOfDrawable = m_effort;
        return compound.count();
    }

    [[nodiscard]] qint64 effortOfDrawable() const { return m_effortOfDrawable; }

private:
    [[nodiscard]] bool isBeyondLimit() const { return m_effort > m_limit; }

    /// How often what lies in \a rect is drawn, with the whole being drawn some rows at a time.
    [[nodiscard]] int bandsOf(QRect rect) const { return std::min(m_bands, (rect.height() - 1) / m_rowsAtOnce + 2); }

    void count(const Stroke &stroke, const QTransform &transform, QRect rect)
    {
        const QRect touched = grownByRim(mappedBounds(transform, stroke.boundingRect()), paperScale) & rect;
        // Even what draws nothing has to be looked at.
        m_effort += bandsOf(rect) * lookWork;
        if (touched.isEmpty() || isBeyondLimit())
            return;
        switch (stroke.type()) {
        case Stroke::Type::Single:
            countSegments(static_cast<const SingleStroke &>(stroke), transform, touched);
            break;
        case Stroke::Type::Compound:
            countChildren(static_cast<const CompoundStroke &>(stroke), transform, touched);
            break;
        case Stroke::Type::Bitmap:
            m_effort += bitmapPasses * area(touched);
            break;
        }
    }

    // Weights, in passes over a pixel by the processor, as measured with a software driver.
    static constexpr qint64 bitmapPasses = 16; // scaled and turned
    static constexpr qint64 groupPasses = 2;
    static constexpr qint64 linePasses = 8;
    /// A pixel of a segment, for the vertex and fragment shaders are run in software too.
    static constexpr qint64 shadedPasses = 32;
    /// The vertices of a segment, however small it is, and the calls for a line.
    static constexpr qint64 vertexWork = 20'000;
    /// Finding out that something is not to be drawn.
    static constexpr qint64 lookWork = 64;

    void countSegments(const SingleStroke &stroke, const QTransform &transform, QRect touched)
    {
        m_effort += linePasses * area(touched) + bandsOf(touched) * vertexWork;
        for (const auto &segment : stroke.segments()) {
            const QRect drawn = mappedBounds(transform, segment->boundingRect()) & touched;
            m_effort += bandsOf(touched) * lookWork;
            if (!drawn.isEmpty())
                m_effort += bandsOf(drawn) * vertexWork + shadedPasses * area(drawn);
            if (isBeyondLimit())
                return;
        }
    }

    void countChildren(const CompoundStroke &compound, const QTransform &transform, QRect touched)
    {
        const QTransform own = compound.transform() * transform;
        countMasks(compound, own, touched);
        for (int i = 0; i < compound.count() && !isBeyondLimit(); ++i)
            count(compound.at(i), own, touched);
    }

    void countMasks(const CompoundStroke &compound, const QTransform &own, QRect touched)
    {
        m_effort += groupPasses * area(touched);
        for (const QPainterPath &path : {compound.cutPath(), compound.keepPath()}) {
            if (!path.isEmpty())
                m_effort += groupPasses * area(touched) + edgeWork(own.map(path), touched);
        }
    }

    /// The painter sorts the edges that cross a row, each into a list of those that are there already, whether they
    /// are near to what is drawn or far to the left or right of it.
    [[nodiscard]] qint64 edgeWork(const QPainterPath &path, QRect touched) const
    {
        constexpr double unitsPerStep = 2.0;
        const double top = touched.top();
        const double bottom = touched.bottom() + 1.0;
        double rows = double(bandsOf(touched)) * path.elementCount();
        for (int i = 1; i < path.elementCount(); ++i) {
            const double from = std::clamp(path.elementAt(i - 1).y, top, bottom);
            rows += std::abs(std::clamp(path.elementAt(i).y, top, bottom) - from);
        }
        return qint64(rows * path.elementCount() / unitsPerStep);
    }

    qint64 m_limit;
    qint64 m_effort = 0;
    qint64 m_effortOfDrawable = 0;
    int m_rowsAtOnce = 1;
    int m_bands = 1;
};

} // namespace

int drawableChildren(const CompoundStroke &compound, QRect rect, qint64 limit, qint64 *effort)
{
    Counter counter(limit);
    const int drawable = counter.drawableChildren(compound, rect);
    if (effort)
        *effort = counter.effortOfDrawable();
    return drawable;
}

bool needsRenderer(const Stroke &stroke)
{
    if (stroke.type() != Stroke::Type::Compound)
        return stroke.type() == Stroke::Type::Single && !stroke.isEmpty();
    const auto &compound = static_cast<const CompoundStroke &>(stroke);
    for (int i = 0; i < compound.count(); ++i) {
        if (needsRenderer(compound.at(i)))
            return true;
    }
    return false;
}

} // namespace Model
