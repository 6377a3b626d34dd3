#include "libui/paper/lassoline.h"

#include "libmodel/strokes/pathwork.h"
#include "libmodel/strokes/segment.h"
#include "libmodel/strokes/singlestroke.h"

#include <utility>

namespace UI {

LassoLine::LassoLine() = default;
LassoLine::~LassoLine() = default;

void LassoLine::begin(QSize size, const Model::Tool *tool)
{
    m_stroke = std::make_unique<Model::SingleStroke>(size, tool);
}

QRectF LassoLine::add(const Model::Sample &sample)
{
    if (!m_stroke)
        return {};
    const std::size_t before = m_stroke->segments().size();
    m_stroke->addSample(sample);
    QRect added;
    const auto &segments = m_stroke->segments();
    for (std::size_t i = before; i < segments.size(); ++i)
        added |= segments[i]->boundingRect();
    return added;
}

QPainterPath LassoLine::path() const
{
    return m_stroke ? m_stroke->toPath() : QPainterPath();
}

QRectF LassoLine::bounds() const
{
    return m_stroke ? QRectF(m_stroke->boundingRect()) : QRectF();
}

QPainterPath LassoLine::finish()
{
    const std::unique_ptr<Model::SingleStroke> stroke = std::move(m_stroke);
    if (!stroke)
        return {};
    stroke->finish();
    QPainterPath path = stroke->toPath();
    path.closeSubpath();
    path.setFillRule(Qt::WindingFill);
    // A scribble of a minute crosses itself so often that this would take another one. It encloses the same as it is.
    return Model::isUnitedQuickly(path, QPainterPath()) ? path.simplified() : path;
}

} // namespace UI
