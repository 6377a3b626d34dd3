// The layer list and the display order.

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/scene/scene_p.h"

#include <algorithm>

namespace Model {

bool Scene::Private::hasVisualLayer() const
{
    return std::any_of(layers.begin(), layers.end(),
                       [](const auto &layer) { return Layer::isVisualType(layer->layerType()); });
}

AudioLayer *Scene::Private::audioLayer() const
{
    return isLayer(audioLayerIdx) ? qobject_cast<AudioLayer *>(layers.at(audioLayerIdx).get()) : nullptr;
}

AnnotationLayer *Scene::Private::annotationLayer() const
{
    for (const auto &layer : layers) {
        if (auto *annotation = qobject_cast<AnnotationLayer *>(layer.get()))
            return annotation;
    }
    return nullptr;
}

bool Scene::Private::isOneTooMany(const Layer &layer, int besidesLayerIdx) const
{
    const bool isVisual = Layer::isVisualType(layer.layerType());
    int others = 0;
    for (int idx = 0; idx < layers.size(); ++idx) {
        const int type = layers.at(idx)->layerType();
        if (idx != besidesLayerIdx && (isVisual ? Layer::isVisualType(type) : type == layer.layerType()))
            ++others;
    }
    return others >= (isVisual ? maximumVisualLayers : 1);
}

void Scene::Private::findAudioLayer()
{
    const auto isAudio = [](const auto &layer) { return layer->layerType() == Layer::Audio; };
    const auto found = std::find_if(layers.begin(), layers.end(), isAudio);
    audioLayerIdx = found == layers.end() ? -1 : static_cast<int>(found - layers.begin());
    if (AudioLayer *audio = audioLayer())
        audio->setFrameRate(frameRate);
}

void Scene::Private::invertOrder()
{
    visualToLayer.resize(layerToVisual.size());
    for (int layerIdx = 0; layerIdx < layerToVisual.size(); ++layerIdx)
        visualToLayer[layerToVisual.at(layerIdx)] = layerIdx;
}

int Scene::layerCount() const
{
    return static_cast<int>(d->layers.size());
}

Layer *Scene::layer(int layerIdx) const
{
    return layerPtr(layerIdx).get();
}

std::shared_ptr<Layer> Scene::layerPtr(int layerIdx) const
{
    return d->isLayer(layerIdx) ? d->layers.at(layerIdx) : nullptr;
}

VisualLayer *Scene::visualLayer(int layerIdx) const
{
    return qobject_cast<VisualLayer *>(layer(layerIdx));
}

int Scene::audioLayerIdx() const
{
    return d->audioLayerIdx;
}

int Scene::annotationLayerIdx() const
{
    const auto isAnnotation = [](const auto &layer) { return layer->layerType() == Layer::Annotation; };
    const auto found = std::find_if(d->layers.begin(), d->layers.end(), isAnnotation);
    return found == d->layers.end() ? -1 : static_cast<int>(found - d->layers.begin());
}

int Scene::indexOfLayer(const QUuid &identifier) const
{
    for (int layerIdx = 0; layerIdx < layerCount(); ++layerIdx) {
        if (d->layers.at(layerIdx)->identifier() == identifier)
            return layerIdx;
    }
    return -1;
}

int Scene::visualIndex(int layerIdx) const
{
    return d->isLayer(layerIdx) ? d->layerToVisual.at(layerIdx) : -1;
}

int Scene::layerAtVisualIndex(int index) const
{
    return d->isLayer(index) ? d->visualToLayer.at(index) : -1;
}

QList<int> Scene::layerOrder() const
{
    return d->visualToLayer;
}

int Scene::nextVisualLayer(int layerIdx) const
{
    if (!d->isLayer(layerIdx))
        return -1;
    for (int index = visualIndex(layerIdx) + 1; index < layerCount(); ++index) {
        if (visualLayer(layerAtVisualIndex(index)))
            return layerAtVisualIndex(index);
    }
    return -1;
}

bool Scene::isLayerShown(int layerIdx) const
{
    const VisualLayer *visual = visualLayer(layerIdx);
    return visual && visual->isShown();
}

int Scene::insertLayer(std::shared_ptr<Layer> layer, int layerIdx)
{
    return putLayer(std::move(layer), layerIdx, true);
}

int Scene::appendReadLayer(std::shared_ptr<Layer> layer)
{
    return putLayer(std::move(layer), layerCount(), false);
}

int Scene::putLayer(std::shared_ptr<Layer> layer, int layerIdx, bool attachesLinks)
{
    if (!layer || d->layers.contains(layer) || d->isOneTooMany(*layer, -1))
        return -1;
    const int newIdx = std::clamp(layerIdx, 0, layerCount());
    const Private::OffPegsWatch watch(*d);
    const bool movesActiveLayer = d->activeLayerIdx >= newIdx;
    emit beginInsertLayer(newIdx);
    d->layers.insert(newIdx, std::move(layer));
    // A new layer goes to the bottom of the display order; the others keep their places.
    d->layerToVisual.insert(newIdx, layerCount() - 1);
    d->invertOrder();
    d->findAudioLayer();
    if (VisualLayer *visual = visualLayer(newIdx); visual && attachesLinks)
        d->attachLinks(*visual);
    else if (visual)
        d->connectFinder(*visual);
    if (movesActiveLayer)
        ++d->activeLayerIdx;
    d->markBeforeTelling();
    emit layerInserted(newIdx);
    emit endInsertLayer();

    updateMaxFrameNumber();
    keepRangeInside();
    if (movesActiveLayer)
        emit activeFrameAndLayerChanged(d->activeFrame, d->activeLayerIdx);
    recompose();
    return newIdx;
}

std::shared_ptr<Layer> Scene::removeLayer(int layerIdx)
{
    if (!d->isLayer(layerIdx))
        return {};
    const Private::OffPegsWatch watch(*d);
    const bool wasActive = layerIdx == d->activeLayerIdx;
    const bool movesActiveLayer = d->activeLayerIdx > layerIdx;
    const int removedVisualIndex = visualIndex(layerIdx);

    emit beginRemoveLayer(layerIdx);
    const std::shared_ptr<Layer> removed = d->layers.takeAt(layerIdx);
    d->layerToVisual.removeAt(layerIdx);
    for (int &index : d->layerToVisual)
        index -= index > removedVisualIndex ? 1 : 0;
    d->invertOrder();
    d->findAudioLayer();
    if (auto *visual = qobject_cast<VisualLayer *>(removed.get()))
        d->detachLinks(*visual);
    if (movesActiveLayer)
        --d->activeLayerIdx;
    else if (wasActive)
        d->activeLayerIdx = -1;
    d->markBeforeTelling();
    emit layerRemoved(layerIdx);
    emit endRemoveLayer();

    updateMaxFrameNumber();
    keepRangeInside();
    if (wasActive)
        activateNear(removedVisualIndex);
    if (wasActive || movesActiveLayer)
        emit activeFrameAndLayerChanged(d->activeFrame, d->activeLayerIdx);
    recompose();
    return removed;
}

std::shared_ptr<Layer> Scene::swapLayer(int layerIdx, std::shared_ptr<Layer> layer)
{
    if (!d->isLayer(layerIdx) || !layer || d->layers.contains(layer) || d->isOneTooMany(*layer, layerIdx))
        return {};
    const Private::OffPegsWatch watch(*d);
    std::swap(d->layers[layerIdx], layer);
    d->findAudioLayer();
    if (auto *visual = qobject_cast<VisualLayer *>(layer.get()))
        d->detachLinks(*visual);
    if (VisualLayer *visual = visualLayer(layerIdx))
        d->attachLinks(*visual);
    d->markBeforeTelling();
    updateMaxFrameNumber();
    keepRangeInside();
    if (layerIdx == d->activeLayerIdx) {
        const int wanted = d->activeFrame;
        d->activeFrame = -1;
        d->activeLayerIdx = -1;
        if (!setActivePosition(wanted, layerIdx, AllowFrameAfterLast))
            activateNear(visualIndex(layerIdx));
        emit activeFrameAndLayerChanged(d->activeFrame, d->activeLayerIdx);
    }
    emit layersChanged(layerIdx, layerIdx);
    recompose();
    return layer;
}

bool Scene::moveLayer(int layerIdx, int newVisualIndex)
{
    const int oldVisualIndex = visualIndex(layerIdx);
    if (oldVisualIndex < 0 || newVisualIndex < 0 || newVisualIndex >= layerCount() || newVisualIndex == oldVisualIndex)
        return false;
    const Private::OffPegsWatch watch(*d);
    d->visualToLayer.move(oldVisualIndex, newVisualIndex);
    for (int index = 0; index < layerCount(); ++index)
        d->layerToVisual[d->visualToLayer.at(index)] = index;
    d->markBeforeTelling();
    emit layerMoved(layerIdx, oldVisualIndex, newVisualIndex);
    recompose();
    return true;
}

QString Scene::nextLayerName()
{
    ++d->highestUsedLayerNumber;
    return QString::number(d->highestUsedLayerNumber);
}

int Scene::highestUsedLayerNumber() const
{
    return d->highestUsedLayerNumber;
}

void Scene::setHighestUsedLayerNumber(int number)
{
    d->highestUsedLayerNumber = std::max(number, 0);
}

} // namespace Model
