#include "scenebuilder.h"

#include <QMetaMethod>

using namespace Model;

namespace TestSupport {

void makeSmall(Scene &scene)
{
    scene.setFrameSize(sceneFrame, MR::FitMode::FitModeIgnore);
    BacklightSettings noBacklight;
    noBacklight.on = false;
    scene.setBacklightSettings(noBacklight);
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
