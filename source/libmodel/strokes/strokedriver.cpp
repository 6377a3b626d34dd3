#include "libmodel/strokes/strokedriver.h"

#include "libmodel/strokes/mappedbounds.h"
#include "libmodel/strokes/singlestroke.h"

#include <cmath>

namespace Model {

namespace {

bool isUsable(QPointF point)
{
    // Not even a number compares as small.
    return std::abs(point.x()) <= coordinateLimit && std::abs(point.y()) <= coordinateLimit;
}

bool isUsable(const Sample &sample)
{
    return isUsable(sample.point) && std::isfinite(sample.pressure);
}

} // namespace

StrokeDriver::StrokeDriver(QObject *parent) : QObject(parent)
{
    m_chaseTimer.setInterval(chaseInterval);
    m_idleTimer.setInterval(idleInterval);
    connect(&m_chaseTimer, &QTimer::timeout, this, &StrokeDriver::chase);
    connect(&m_idleTimer, &QTimer::timeout, this, &StrokeDriver::rest);
}

StrokeDriver::~StrokeDriver() = default;

void StrokeDriver::begin(QSize imageSize, const Tool *tool, const Sample &sample, std::optional<QPointF> previousPoint)
{
    if (!isUsable(sample))
        return;
    end();
    m_stroke = std::make_unique<SingleStroke>(imageSize, tool);
    if (previousPoint && isUsable(*previousPoint))
        m_stroke->addFirstSample(sample, *previousPoint);
    else
        m_stroke->addSample(sample);
    // Whoever hears of the first pixels may end the stroke at once, and that stops the timers.
    startTimers();
    renderLatest();
    if (m_stroke)
        emit hasActiveStrokeChanged(true);
}

bool StrokeDriver::update(const Sample &sample)
{
    if (!m_stroke || !isUsable(sample) || m_stroke->isNearLastSample(sample))
        return false;
    startTimers();
    m_stroke->addSample(sample);
    renderLatest();
    return true;
}

std::unique_ptr<SingleStroke> StrokeDriver::end()
{
    stopTimers();
    if (!m_stroke)
        return nullptr;
    m_stroke->finish();
    m_stroke->renderLatestSegment();
    auto stroke = std::move(m_stroke);
    emit hasActiveStrokeChanged(false);
    return stroke;
}

bool StrokeDriver::hasActiveStroke() const
{
    return m_stroke != nullptr;
}

const SingleStroke *StrokeDriver::stroke() const
{
    return m_stroke.get();
}

SingleStroke *StrokeDriver::stroke()
{
    return m_stroke.get();
}

void StrokeDriver::chase()
{
    if (!m_stroke)
        return;
    m_stroke->processPending();
    renderLatest();
}

void StrokeDriver::rest()
{
    stopTimers();
    if (!m_stroke)
        return;
    m_stroke->finish();
    renderLatest();
}

void StrokeDriver::renderLatest()
{
    emit rectChanged(m_stroke->renderLatestSegment());
}

void StrokeDriver::startTimers()
{
    m_chaseTimer.start();
    m_idleTimer.start();
}

void StrokeDriver::stopTimers()
{
    m_chaseTimer.stop();
    m_idleTimer.stop();
}

} // namespace Model
