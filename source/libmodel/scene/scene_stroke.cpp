// The stroke in progress.

#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/singlestroke.h"
#include "libmodel/tools/toolmanager.h"

#include <QSignalBlocker>

namespace Model {

void Scene::beginStroke(const Sample &sample)
{
    startStroke(sample, std::nullopt);
}

void Scene::beginStroke(const Sample &sample, QPointF previousPoint)
{
    startStroke(sample, previousPoint);
}

void Scene::startStroke(const Sample &sample, std::optional<QPointF> previousPoint)
{
    // What is still active is dropped, not committed.
    takeStroke().reset();
    const Tool *tool = ToolManager::instance()->currentTool();
    const Layer *active = layer(d->activeLayerIdx);
    if (tool && active && Layer::isDrawType(active->layerType()))
        d->driver.begin(d->frameSize, tool, sample, previousPoint);
}

void Scene::addSample(const Sample &sample)
{
    d->driver.update(sample);
}

std::unique_ptr<SingleStroke> Scene::takeStroke()
{
    std::unique_ptr<SingleStroke> stroke;
    {
        // The views are to hear of the picture first, which the driver cannot tell when the stroke is gone.
        const QSignalBlocker blocker(&d->driver);
        stroke = d->driver.end();
    }
    if (!stroke)
        return {};
    const QRect touched = d->strokeRect.united(stroke->boundingRect()).intersected(d->frameRect());
    d->strokeRect = {};
    emit rectChanged(touched);
    emit hasActiveStrokeChanged(false);
    return stroke;
}

bool Scene::hasActiveStroke() const
{
    return d->driver.hasActiveStroke();
}

const SingleStroke *Scene::activeStroke() const
{
    return std::as_const(d->driver).stroke();
}

QRect Scene::drawActiveStrokeTail(QPainter *painter, QRect rect, double radius)
{
    SingleStroke *stroke = d->driver.stroke();
    const auto *active = qobject_cast<const StrokeLayer *>(layer(d->activeLayerIdx));
    // Only where the stroke itself is on show.
    if (!stroke || !active || d->hasScrubFrame() || !isLayerShown(d->activeLayerIdx))
        return {};
    const QRect covered = stroke->drawTail(painter, active->color(), rect, radius);
    d->strokeRect |= covered;
    return covered;
}

void Scene::onStrokeRectChanged(QRect rect)
{
    if (rect.isEmpty())
        return;
    d->strokeRect |= rect;
    emit rectChanged(rect);
}

} // namespace Model
