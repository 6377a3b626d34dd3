#include "libmodel/scene/scene.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/base/fuzzy.h"
#include "libmodel/base/settings.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene_p.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace Model {

namespace {

constexpr int undoLimit = 50;

} // namespace

Scene::Scene(QObject *parent) : QObject(parent), d(std::make_unique<Private>())
{
    const Settings *settings = Settings::instance();
    d->scene = this;
    d->backlightSettings = settings->backlightSettings();
    d->name = tr("Untitled");
    d->frameSize = settings->defaultFrameSize();
    d->frameRate = settings->defaultFrameRate();
    d->thumbnailSize = settings->thumbnailSize();
    d->undoStack.setUndoLimit(undoLimit);
    connect(&d->driver, &StrokeDriver::hasActiveStrokeChanged, this, &Scene::hasActiveStrokeChanged);
    connect(&d->driver, &StrokeDriver::rectChanged, this, &Scene::onStrokeRectChanged);
    connect(settings, &Settings::backlightSettingsChanged, this, &Scene::setBacklightSettings);
}

// Layers may outlive the scene, and would ask it for cells.
Scene::~Scene()
{
    for (const auto &layer : std::as_const(d->layers)) {
        if (auto *visual = qobject_cast<VisualLayer *>(layer.get()))
            visual->setCellFinder({});
    }
}

QString Scene::name() const
{
    return d->name;
}

void Scene::setName(const QString &name)
{
    if (name == d->name)
        return;
    d->name = name;
    emit nameChanged(displayName());
}

QString Scene::filename() const
{
    return d->filename;
}

void Scene::setFilename(const QString &filename)
{
    if (filename == d->filename)
        return;
    d->filename = filename;
    emit nameChanged(displayName());
}

QString Scene::displayName() const
{
    const QString ofFile = QFileInfo(d->filename).fileName();
    return ofFile.isEmpty() ? d->name : ofFile;
}

QUndoStack *Scene::undoStack() const
{
    return &d->undoStack;
}

QSize Scene::frameSize() const
{
    return d->frameSize;
}

void Scene::setFrameSize(QSize size, MR::FitMode fitMode, QProgressDialog *progressDialog)
{
    if (size == d->frameSize || size.isEmpty() || std::max(size.width(), size.height()) > StrokeDrawing::maximumSide)
        return;
    const Private::OffPegsWatch watch(*d);
    emit frameSizeAboutToChange(size);
    for (const auto &layer : std::as_const(d->layers)) {
        if (auto *visual = qobject_cast<VisualLayer *>(layer.get()))
            visual->setFrameSize(size, fitMode, progressDialog);
    }
    d->frameSize = size;
    d->markBeforeTelling();
    emit frameSizeChanged(size);
    // Every cell's picture in the sheet shows another frame now.
    refreshDrawings();
}

void Scene::refreshDrawings()
{
    CellList cells;
    for (int layerIdx = 0; layerIdx < layerCount(); ++layerIdx) {
        for (int frameId = 1; visualLayer(layerIdx) && frameId <= lastFrame(layerIdx); ++frameId)
            cells.append({frameId, layerIdx});
    }
    if (!cells.isEmpty())
        emit drawingsChanged(cells);
    recompose();
}

void Scene::setFrameSize(QSize size, MR::FitMode fitMode)
{
    setFrameSize(size, fitMode, nullptr);
}

double Scene::frameRate() const
{
    return d->frameRate;
}

void Scene::setFrameRate(double frameRate)
{
    if (std::isnan(frameRate))
        return;
    const double limited = std::clamp(frameRate, slowestFrameRate, fastestFrameRate);
    if (fuzzyEqual(limited, d->frameRate))
        return;
    d->frameRate = limited;
    if (AudioLayer *audio = d->audioLayer())
        audio->setFrameRate(limited);
    // The sound covers another number of frames now.
    const std::pair range(d->rangeFirst, d->rangeLast);
    updateMaxFrameNumber();
    keepRangeInside();
    if (range != std::pair(d->rangeFirst, d->rangeLast))
        recompose();
    emit frameRateChanged(limited);
    if (d->audioLayerIdx >= 0)
        emit layersChanged(d->audioLayerIdx, d->audioLayerIdx);
}

MR::ThumbnailSize Scene::thumbnailSize() const
{
    return d->thumbnailSize;
}

void Scene::setThumbnailSize(MR::ThumbnailSize size)
{
    if (size == d->thumbnailSize)
        return;
    d->thumbnailSize = size;
    emit thumbnailSizeChanged(size);
}

} // namespace Model
