#include "scenefixture.h"

#include "libmodel/files/scenereader.h"
#include "libmodel/files/scenewriter.h"
#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QBuffer>
#include <QProgressDialog>

#include <algorithm>

namespace TestSupport {

QUuid uuid(int number)
{
    return QUuid(uint(number), 0, 0x4000, 0x80, 0, 0, 0, 0, 0, 0, 0);
}

std::unique_ptr<Model::Scene> emptyScene()
{
    auto scene = std::make_unique<Model::Scene>();
    scene->setFrameSize(QSize(16, 8), MR::FitMode::FitModeIgnore);
    scene->setFrameRate(12.0);
    return scene;
}

std::shared_ptr<Model::StrokeLayer> strokeLayer(const Model::Scene &scene, int number, int numFrames)
{
    auto layer = std::make_shared<Model::StrokeLayer>(QColor(Qt::red), scene.frameSize());
    for (int frameId = 1; frameId < numFrames; ++frameId)
        layer->insertBlankAfter(frameId);
    layer->setName("Layer" + QString::number(number));
    layer->setIdentifier(uuid(number * 100));
    for (int frameId = 1; frameId <= numFrames; ++frameId)
        layer->item(frameId)->identifier = uuid(number * 100 + frameId);
    return layer;
}

std::unique_ptr<Model::Stroke> block(QRect rect, int value)
{
    QImage image(rect.size(), QImage::Format_Alpha8);
    image.fill(value);
    return std::make_unique<Model::BitmapStroke>(image, rect);
}

QImage note(QSize size, QPoint point, int value)
{
    QImage image(size, QImage::Format_Indexed8);
    image.fill(0);
    image.scanLine(point.y())[point.x()] = uchar(value);
    return image;
}

Model::StrokeDrawing &drawingAt(const Model::VisualLayer &layer, int frameId)
{
    return dynamic_cast<Model::StrokeDrawing &>(*layer.item(frameId)->drawing);
}

Model::StrokeDrawing &drawingAt(const Model::Scene &scene, int layerIdx, int frameId)
{
    return drawingAt(*scene.visualLayer(layerIdx), frameId);
}

QByteArray document(const QByteArray &layers, const QByteArray &sceneAttributes)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE mr>\n<mr version=\"0.4\">\n"
           "<scene frameWidth=\"16\" frameHeight=\"8\" " +
           sceneAttributes + ">\n<layers>\n" + layers + "</layers>\n</scene>\n</mr>\n";
}

QByteArray layerElement(const QByteArray &drawings, int number)
{
    return "<layer identifier=\"" + uuid(number).toByteArray() +
           "\" name=\"A\" linked=\"no\" visible=\"yes\" "
           "type=\"stroke\">\n" +
           drawings + "</layer>\n";
}

QByteArray written(Model::Scene &scene)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    Model::SceneWriter writer(&scene, nullptr);
    if (writer.write(&buffer) != Model::FileResult::Success)
        qFatal("The scene cannot be written");
    return buffer.data();
}

ReadResult readInto(Model::Scene &scene, const QByteArray &file)
{
    QBuffer buffer;
    buffer.setData(file);
    buffer.open(QIODevice::ReadOnly);
    Model::SceneReader reader(&scene, nullptr);
    const Model::FileResult result = reader.read(&buffer);
    return {result, reader.errorString(), reader.damages()};
}

std::unique_ptr<Model::Scene> sceneFrom(const QByteArray &file, QStringList *damages)
{
    auto scene = std::make_unique<Model::Scene>();
    const ReadResult read = readInto(*scene, file);
    if (read.result != Model::FileResult::Success)
        qFatal("The file cannot be read: %s", qPrintable(read.error));
    if (damages)
        *damages = read.damages;
    return scene;
}

int visualLayerCount(const Model::Scene &scene)
{
    int count = 0;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx)
        count += scene.visualLayer(layerIdx) ? 1 : 0;
    return count;
}

ProgressRecorder::ProgressRecorder(QWidget *window, const QByteArray &content) : m_window(window), m_content(content)
{
}

qint64 ProgressRecorder::readData(char *data, qint64 maxSize)
{
    const qint64 size = std::min({maxSize, qint64(16), qint64(m_content.size() - m_passed)});
    std::copy_n(m_content.constData() + m_passed, size, data);
    m_passed += size;
    record();
    return size;
}

qint64 ProgressRecorder::writeData(const char *, qint64 size)
{
    record();
    return size;
}

void ProgressRecorder::record()
{
    const int value = m_window->findChild<QProgressDialog *>()->value();
    if (m_values.isEmpty() || m_values.last() != value)
        m_values.append(value);
}

CancellingDevice::CancellingDevice(QWidget *window, qsizetype cancelAt, const QByteArray &content)
    : m_window(window), m_cancelAt(cancelAt), m_content(content)
{
}

qint64 CancellingDevice::readData(char *data, qint64 maxSize)
{
    // In small helpings, so that the reader asks again before it is through.
    const qint64 size = std::min({maxSize, qint64(16), qint64(m_content.size() - m_passed)});
    std::copy_n(m_content.constData() + m_passed, size, data);
    m_passed += size;
    cancelWhenDue();
    return size;
}

qint64 CancellingDevice::writeData(const char *data, qint64 size)
{
    m_content.append(data, size);
    m_passed += size;
    cancelWhenDue();
    return size;
}

void CancellingDevice::cancelWhenDue()
{
    if (m_passed >= m_cancelAt)
        m_window->findChild<QProgressDialog *>()->cancel();
}

} // namespace TestSupport
