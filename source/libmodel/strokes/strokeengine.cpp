#include "libmodel/strokes/strokeengine.h"

#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"

namespace Model {

StrokeEngine::StrokeEngine(QObject *parent) : QObject(parent)
{
    connect(&m_driver, &StrokeDriver::hasActiveStrokeChanged, this, &StrokeEngine::hasActiveStrokeChanged);
    connect(&m_driver, &StrokeDriver::rectChanged, this, &StrokeEngine::forwardRect);
}

StrokeEngine::~StrokeEngine() = default;

void StrokeEngine::begin(QRect rect, const Sample &sample, const Tool *tool)
{
    m_driver.end();
    m_rect = rect;
    m_driver.begin(rect.size(), tool ? tool : ToolManager::instance()->currentTool(), toRect(sample));
}

void StrokeEngine::update(const Sample &sample)
{
    m_driver.update(toRect(sample));
}

std::unique_ptr<SingleStroke> StrokeEngine::end()
{
    return m_driver.end();
}

bool StrokeEngine::hasActiveStroke() const
{
    return m_driver.hasActiveStroke();
}

const SingleStroke *StrokeEngine::stroke() const
{
    return m_driver.stroke();
}

QRect StrokeEngine::rect() const
{
    return m_rect;
}

Sample StrokeEngine::toRect(Sample sample) const
{
    sample.point -= m_rect.topLeft();
    return sample;
}

void StrokeEngine::forwardRect(QRect changed)
{
    emit rectChanged(changed.translated(m_rect.topLeft()));
}

} // namespace Model
