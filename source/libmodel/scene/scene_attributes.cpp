// What layers and cells are set to.

#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Model {

namespace {

bool isFinite(const QTransform &t)
{
    const std::array elements{t.m11(), t.m12(), t.m13(), t.m21(), t.m22(), t.m23(), t.m31(), t.m32(), t.m33()};
    return std::all_of(elements.begin(), elements.end(), [](double element) { return std::isfinite(element); });
}

} // namespace

bool Scene::setLayerName(int layerIdx, const QString &name)
{
    Layer *named = layer(layerIdx);
    if (!named)
        return false;
    if (named->name() != name) {
        named->setName(name);
        emit layersChanged(layerIdx, layerIdx);
    }
    return true;
}

bool Scene::setLayerVisible(int layerIdx, bool visible)
{
    VisualLayer *visual = visualLayer(layerIdx);
    if (!visual)
        return false;
    if (visual->isVisible() != visible) {
        visual->setVisible(visible);
        d->markBeforeTelling();
        emit layersChanged(layerIdx, layerIdx);
        recompose();
    }
    return true;
}

bool Scene::setLayerLinked(int layerIdx, bool linked)
{
    Layer *linkable = layer(layerIdx);
    if (!linkable)
        return false;
    if (linkable->isLinked() != linked) {
        linkable->setLinked(linked);
        emit layersChanged(layerIdx, layerIdx);
    }
    return true;
}

bool Scene::setLayerBeyondLast(int layerIdx, Layer::LayerBeyondLast beyondLast)
{
    VisualLayer *visual = visualLayer(layerIdx);
    if (!visual || !visual->setLayerBeyondLast(beyondLast))
        return false;
    if (visual->isShown())
        recompose();
    emit layersChanged(layerIdx, layerIdx);
    return true;
}

bool Scene::setLayerColor(int layerIdx, QColor color)
{
    auto *strokes = qobject_cast<StrokeLayer *>(layer(layerIdx));
    if (!strokes || !color.isValid())
        return false;
    strokes->setColor(color);
    recompose();
    emit layerColorChanged(layerIdx, color);
    return true;
}

bool Scene::setLayerOpacity(int layerIdx, double opacity)
{
    VisualLayer *visual = visualLayer(layerIdx);
    if (!visual || std::isnan(opacity))
        return false;
    visual->setOpacity(opacity);
    recompose();
    emit layerOpacityChanged(layerIdx, visual->opacity());
    return true;
}

bool Scene::setAnnotation(int frameId, const QImage &image)
{
    AnnotationLayer *annotation = d->annotationLayer();
    if (!annotation || annotation->setImage(frameId, image).isEmpty())
        return false;
    const int layerIdx = annotationLayerIdx();
    emit layersChanged(layerIdx, layerIdx);
    return true;
}

void Scene::setKeyDrawing(int layerIdx, int frameId, bool keyDrawing)
{
    const auto cell = item(layerIdx, frameId);
    if (!cell)
        return;
    emit drawingsChanged({{frameId, layerIdx}});
    if (cell->keyDrawing == keyDrawing)
        return;
    cell->keyDrawing = keyDrawing;
    // Key drawings may decide which frames shine through.
    if (d->backlightSettings.on && d->backlightSettings.onlyKeyFrames)
        recompose();
}

void Scene::setCurrentDrawingOffPegsTransform(QTransform transform)
{
    setOffPegsTransform(d->activeFrame, d->activeLayerIdx, transform);
}

void Scene::setOffPegsTransform(int frameId, const QTransform &transform)
{
    setOffPegsTransform(frameId, d->activeLayerIdx, transform);
}

void Scene::setOffPegsTransform(int frameId, int layerIdx, const QTransform &transform)
{
    const auto cell = item(layerIdx, frameId);
    if (!cell || !isFinite(transform))
        return;
    cell->offPegsTransform = transform;

    // The sheet marks the whole row, so every layer's cell of that frame is stale.
    QList<std::pair<int, int>> cells;
    for (const int idx : std::as_const(d->visualToLayer)) {
        if (visualLayer(idx))
            cells.append({frameId, idx});
    }
    if (frameId == d->activeFrame) {
        recompose();
        d->tellOffPegsTransform();
    } else if (std::any_of(d->backlightFrames.begin(), d->backlightFrames.end(),
                           [frameId](const BacklightFrame &frame) { return frame.frameId == frameId; })) {
        recompose();
    }
    emit drawingsChanged(cells);
}

void Scene::Private::tellOffPegsTransform()
{
    if (scene->signalsBlocked())
        return;
    ++offPegsTold;
    toldOffPegs = scene->offPegsTransformOfFrame(activeFrame);
    emit scene->offPegsTransformChanged(toldOffPegs);
}

Scene::Private::OffPegsWatch::OffPegsWatch(Private &part)
    : m_part(part), m_before(part.scene->offPegsTransformOfFrame(part.activeFrame)), m_toldBefore(part.offPegsTold)
{
}

Scene::Private::OffPegsWatch::~OffPegsWatch()
{
    const QTransform transform = m_part.scene->offPegsTransformOfFrame(m_part.activeFrame);
    const QTransform &heard = m_part.offPegsTold == m_toldBefore ? m_before : m_part.toldOffPegs;
    if (transform != heard)
        m_part.tellOffPegsTransform();
}

QTransform Scene::offPegsTransformOfFrame(int frameId, int *layerIdx) const
{
    if (layerIdx)
        *layerIdx = -1;
    for (const int idx : std::as_const(d->visualToLayer)) {
        const auto cell = item(idx, frameId);
        if (!cell || cell->offPegsTransform.isIdentity())
            continue;
        if (layerIdx)
            *layerIdx = idx;
        return cell->offPegsTransform;
    }
    return {};
}

} // namespace Model
