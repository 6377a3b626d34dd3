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
        countMasks(compound, compound.transform(), rect);
        int drawable = 0;
        for (; drawable < compound.count(); ++drawable) {
            count(compound.at(drawable), compound.transform(), rect);
            if (isBeyondLimit())
                return drawable;
        }
        return drawable;
    }

private:
    [[nodiscard]] bool isBeyondLimit() const { return m_effort > m_limit; }

    void count(const Stroke &stroke, const QTransform &transform, QRect rect)
    {
        const QRect touched = grownByRim(mappedBounds(transform, stroke.boundingRect()), paperScale) & rect;
        // Even what draws nothing has to be looked at.
        m_effort += 1;
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
    /// The vertices of a segment, however small it is.
    static constexpr qint64 vertexWork = 20'000;

    void countSegments(const SingleStroke &stroke, const QTransform &transform, QRect touched)
    {
        m_effort += linePasses * area(touched);
        for (const auto &segment : stroke.segments()) {
            const QRect drawn = mappedBounds(transform, segment->boundingRect()) & touched;
            m_effort += 1 + (drawn.isEmpty() ? 0 : vertexWork + shadedPasses * area(drawn));
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

    /// The painter sorts the edges that cross a row, each into a list of those that are there already.
    static qint64 edgeWork(const QPainterPath &path, QRect touched)
    {
        const double top = touched.top();
        const double bottom = touched.bottom() + 1.0;
        double rows = path.elementCount();
        for (int i = 1; i < path.elementCount(); ++i) {
            const double from = std::clamp(path.elementAt(i - 1).y, top, bottom);
            rows += std::abs(std::clamp(path.elementAt(i).y, top, bottom) - from);
        }
        return qint64(rows) * std::min(path.elementCount(), touched.width());
    }

    qint64 m_limit;
    qint64 m_effort = 0;
};

} // namespace

int drawableChildren(const CompoundStroke &compound, QRect rect, qint64 limit)
{
    return Counter(limit).drawableChildren(compound, rect);
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
