#include "scenebuilder.h"

#include <QMetaMethod>

using namespace Model;

namespace TestSupport {

void makeSmall(Scene &scene)
{
    scene.setFrameSize(sceneFrame, MR::FitMode::FitModeIgnore);
}

int addStrokeLayer(Scene &scene, int numFrames, const QColor &color)
{
    auto layer = std::make_shared<StrokeLayer>(color, scene.frameSize());
    for (int frameId = 1; frameId < numFrames; ++frameId)
        layer->insertBlankAfter(frameId);
    return scene.insertLayer(layer, scene.layerCount());
}

void addUsualLayers(Scene &scene, int numFrames)
{
    addStrokeLayer(scene, numFrames);
    scene.insertLayer(std::make_shared<AudioLayer>(), 1);
    scene.insertLayer(std::make_shared<AnnotationLayer>(), 2);
    scene.setFrameRange(1, numFrames, 1, 0);
}

std::unique_ptr<Stroke> block(QRect rect, int value)
{
    QImage coverage(rect.size(), QImage::Format_Alpha8);
    coverage.fill(value);
    return std::make_unique<BitmapStroke>(coverage, rect);
}

StrokeDrawing &drawingAt(const Scene &scene, int layerIdx, int frameId)
{
    return dynamic_cast<StrokeDrawing &>(*scene.item(layerIdx, frameId)->drawing);
}

QString kinds(const Scene &scene, int layerIdx)
{
    QString text;
    for (const auto &cell : scene.visualLayer(layerIdx)->frames())
        text += cell->isOriginal() ? 'o' : cell->isClone() ? 'c' : 'd';
    return text;
}

static QString brokenCells(const VisualLayer &layer)
{
    if (layer.numFrames() < 1)
        return "a layer without cells";
    if (layer.item(1)->isClone())
        return "the first cell is a clone";
    for (int frameId = 1; frameId <= layer.numFrames(); ++frameId) {
        const auto cell = layer.item(frameId);
        if (!cell->drawing)
            return "a cell without a drawing";
        if (cell->isClone() && cell->drawing != layer.item(frameId - 1)->drawing)
            return "a clone with a drawing of its own";
    }
    return {};
}

QString brokenInvariant(const Scene &scene)
{
    int longest = 1;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        if (scene.layerAtVisualIndex(scene.visualIndex(layerIdx)) != layerIdx)
            return "the orders are no inverses";
        longest = qMax(longest, scene.layer(layerIdx)->numFrames());
        if (const VisualLayer *visual = scene.visualLayer(layerIdx)) {
            if (const QString broken = brokenCells(*visual); !broken.isEmpty())
                return broken;
        }
    }
    if (scene.maximumFrameNumber() != longest)
        return "the maximum is not the longest layer";
    if (scene.rangeFirst() < 1 || scene.rangeLast() > longest || scene.rangeFirst() > scene.rangeLast())
        return "the range lies outside";
    if (scene.activeLayerIdx() >= 0) {
        if (!scene.visualLayer(scene.activeLayerIdx()))
            return "the active layer is no visual one";
        if (scene.activeFrame() < 1 || scene.activeFrame() > scene.lastFrame(scene.activeLayerIdx()) + 1)
            return "the active frame is off its layer";
    }
    if (scene.scrubFrame() != -1 && (scene.scrubFrame() < 1 || scene.scrubFrame() > longest))
        return "the scrub frame lies outside";
    return {};
}

SignalCount::SignalCount(const QObject *object)
{
    const QMetaObject *meta = object->metaObject();
    for (int i = QObject::staticMetaObject.methodCount(); i < meta->methodCount(); ++i) {
        if (meta->method(i).methodType() == QMetaMethod::Signal)
            m_spies.push_back(std::make_unique<QSignalSpy>(object, meta->method(i)));
    }
}

QString SignalCount::heard() const
{
    QStringList names;
    for (const auto &spy : m_spies) {
        for (qsizetype i = 0; i < spy->size(); ++i)
            names += QString::fromLatin1(spy->signal()).section('(', 0, 0);
    }
    return names.join(' ');
}

} // namespace TestSupport
