#include "support/scenegenerator.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/referencelayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <algorithm>

using namespace Model;

namespace TestSupport {

namespace {

constexpr QSize smallFrame(16, 12);
constexpr int mostVisualLayers = 6;
constexpr int mostCells = 9;

std::shared_ptr<VisualLayer> randomLayer(RandomNumbers &random)
{
    std::shared_ptr<VisualLayer> layer;
    if (random.chance(25))
        layer = std::make_shared<ReferenceLayer>(smallFrame);
    else
        layer = std::make_shared<StrokeLayer>(QColor::fromHsv(random.between(0, 359), 255, 200), smallFrame);

    QList<std::shared_ptr<LayerItem>> cells;
    const int count = random.between(1, mostCells);
    while (cells.size() < count) {
        const bool holds = !cells.isEmpty() && random.chance(45);
        auto cell = holds ? std::make_shared<LayerItem>(LayerItem::Type::Clone, cells.last()->drawing)
                          : std::make_shared<LayerItem>(LayerItem::Type::Original, randomDrawing(*layer, random));
        cell->keyDrawing = random.chance(15);
        if (random.chance(15))
            cell->offPegsTransform = randomTransform(random);
        cells.append(cell);
    }
    layer->setFrames(cells);
    layer->setVisible(random.chance(85));
    layer->setOpacity(random.chance(80) ? 1.0 : random.between(0, 10) / 10.0);
    layer->setLayerBeyondLast(Layer::LayerBeyondLast(random.between(Layer::ShowNothing, Layer::CycleDrawings)));
    return layer;
}

/// Makes some originals distant clones of others, in whichever layer of their kind those stand.
void linkDistantClones(Scene &scene, RandomNumbers &random)
{
    const int tries = random.between(0, 8);
    for (int i = 0; i < tries; ++i) {
        const int layerIdx = random.between(0, scene.layerCount() - 1);
        const int originLayerIdx = random.chance(50) ? layerIdx : random.between(0, scene.layerCount() - 1);
        VisualLayer *layer = scene.visualLayer(layerIdx);
        VisualLayer *originLayer = scene.visualLayer(originLayerIdx);
        if (!layer || !originLayer || layer->layerType() != originLayer->layerType())
            continue;
        const int frameId = random.between(1, layer->numFrames());
        const int originFrameId = random.between(1, originLayer->numFrames());
        const auto cell = layer->item(frameId);
        const auto origin = originLayer->item(originFrameId);
        if (cell == origin || !cell->isOriginal() || !cell->clones.isEmpty() || !origin->isOriginal())
            continue;
        cell->type = LayerItem::Type::DistantClone;
        cell->origin = originLayer->cellRef(originFrameId);
        cell->drawing = origin->drawing;
        origin->clones.append(layer->cellRef(frameId));
        for (int f = frameId + 1; f <= layer->numFrames() && layer->item(f)->isClone(); ++f)
            layer->item(f)->drawing = origin->drawing;
    }
}

std::shared_ptr<AnnotationLayer> randomNotes(RandomNumbers &random)
{
    auto layer = std::make_shared<AnnotationLayer>();
    const int count = random.between(0, mostCells + 2);
    for (int i = 0; i < count; ++i)
        layer->appendImage(random.chance(50) ? randomNote(random) : QImage());
    return layer;
}

void standSomewhere(Scene &scene, RandomNumbers &random)
{
    QList<int> visual;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        if (scene.visualLayer(layerIdx))
            visual.append(layerIdx);
    }
    const int layerIdx = random.oneOf(visual);
    const int length = scene.lastFrame(layerIdx);
    const int frameId = random.chance(25) ? length + 1 : random.between(1, length);
    scene.setFrameRange(1, scene.maximumFrameNumber(), frameId, layerIdx);
    if (random.chance(50)) {
        const int first = random.between(1, scene.maximumFrameNumber());
        scene.setFrameRange(first, random.between(first, scene.maximumFrameNumber()), frameId, layerIdx);
    }
}

} // namespace

std::unique_ptr<Stroke> randomBlock(QSize size, RandomNumbers &random)
{
    // Braces, since they are evaluated in order.
    const QPoint corner{random.between(0, size.width() - 1), random.between(0, size.height() - 1)};
    const QSize extent{random.between(1, 6), random.between(1, 6)};
    const QRect rect(corner, extent);
    QImage coverage(rect.size(), QImage::Format_Alpha8);
    coverage.fill(random.between(1, 255));
    return std::make_unique<BitmapStroke>(coverage, rect);
}

std::shared_ptr<Drawing> randomDrawing(const VisualLayer &layer, RandomNumbers &random)
{
    if (layer.layerType() == Layer::Reference) {
        QImage picture(4, 3, QImage::Format_RGB32);
        picture.fill(uint(random.bits()) | 0xff000000U);
        return std::make_shared<ImageDrawing>(random.chance(20) ? QImage() : picture);
    }
    auto drawing = std::make_shared<StrokeDrawing>(layer.frameSize());
    const int strokes = random.between(0, 2);
    for (int i = 0; i < strokes; ++i)
        drawing->addStroke(randomBlock(layer.frameSize(), random));
    if (random.chance(20))
        drawing->setCopyId(QUuid(uint(random.bits()), 1, 2, 3, 4, 5, 6, 7, 8, 9, 10));
    return drawing;
}

QImage randomNote(RandomNumbers &random)
{
    QImage note(4, 3, QImage::Format_Indexed8);
    QList<QRgb> greys;
    for (int i = 0; i < 256; ++i)
        greys.append(qRgba(0, 0, 0, i));
    note.setColorTable(greys);
    note.fill(uint(random.between(1, 255)));
    return note;
}

QTransform randomTransform(RandomNumbers &random)
{
    const int right = random.between(-5, 5);
    return QTransform::fromTranslate(right, random.between(1, 5));
}

void fillScene(Scene &scene, RandomNumbers &random)
{
    scene.setFrameSize(smallFrame, MR::FitMode::FitModeIgnore);
    QList<std::shared_ptr<Layer>> layers;
    const int visualLayers = random.between(1, mostVisualLayers);
    for (int i = 0; i < visualLayers; ++i)
        layers.append(randomLayer(random));
    if (random.chance(80)) {
        auto audio = std::make_shared<AudioLayer>();
        audio->setOffset(random.between(-300, 300) / 100.0);
        layers.insert(random.between(0, int(layers.size())), audio);
    }
    if (random.chance(80)) {
        const auto notes = randomNotes(random); // before the place, whatever order the compiler would take
        layers.insert(random.between(0, int(layers.size())), notes);
    }

    for (const auto &layer : std::as_const(layers)) {
        layer->setName(scene.nextLayerName());
        layer->setLinked(random.chance(35));
        scene.insertLayer(layer, scene.layerCount());
        scene.moveLayer(scene.layerCount() - 1, random.between(0, scene.layerCount() - 1));
    }
    linkDistantClones(scene, random);
    standSomewhere(scene, random);
}

void addDanglingLinks(Scene &scene, RandomNumbers &random)
{
    QList<std::pair<VisualLayer *, int>> originals;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        VisualLayer *layer = scene.visualLayer(layerIdx);
        for (int frameId = 1; layer && frameId <= layer->numFrames(); ++frameId) {
            if (layer->item(frameId)->isOriginal())
                originals.append({layer, frameId});
        }
    }
    // Of a layer that is here or of one that is not.
    const auto nowhere = [&random](const VisualLayer &layer) {
        return CellRef{random.chance(50) ? layer.identifier() : QUuid::createUuid(), QUuid::createUuid()};
    };
    bool hasDistantClone = false;
    for (const auto &[layer, frameId] : originals) {
        const auto cell = layer->item(frameId);
        if (cell->clones.isEmpty() && (!hasDistantClone || random.chance(30))) {
            hasDistantClone = true;
            cell->type = LayerItem::Type::DistantClone;
            cell->origin = nowhere(*layer);
            cell->drawing->setCopyId({});
        } else if (random.chance(60)) {
            cell->clones.insert(random.between(0, int(cell->clones.size())), nowhere(*layer));
        }
    }
}

} // namespace TestSupport
