// Drawings on their way to the clipboard.

#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/drawingclip.h"
#include "libmodel/scene/scene.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QDataStream>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QSet>

namespace Model {

namespace {

/// The block of a frame. The drawing goes along unless it \a isKnown from a frame before.
QByteArray frameBlock(const LayerItem &cell, bool isKnown)
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    stream << qint32(cell.type) << cell.drawing->copyId() << !isKnown;
    if (isKnown)
        return block;
    if (cell.drawing->type() == Drawing::Type::Image)
        stream << static_cast<const ImageDrawing &>(*cell.drawing).image();
    else
        static_cast<const StrokeDrawing &>(*cell.drawing).write(stream);
    return block;
}

/// The private form of \a count cells from \a firstFrame on.
///
/// A hold has the drawing of the cell it holds, and a distant clone that of its original: one object is one drawing,
/// whichever cells show it.
QByteArray privateForm(const VisualLayer &layer, int firstFrame, int count)
{
    QByteArray clip;
    QDataStream stream(&clip, QIODevice::WriteOnly);
    stream << qint32(layer.layerType()) << qint32(count);
    QSet<const Drawing *> written;
    for (int frameId = firstFrame; frameId < firstFrame + count; ++frameId) {
        const LayerItem &cell = *layer.frames().at(frameId - 1);
        if (cell.drawing->copyId().isNull())
            cell.drawing->setCopyId(QUuid::createUuid());
        const QByteArray block = frameBlock(cell, written.contains(cell.drawing.get()));
        written.insert(cell.drawing.get());
        stream.writeBytes(block.constData(), uint(block.size()));
    }
    return clip;
}

/// What other programs see of the cell at \a frameId.
QImage picture(const VisualLayer &layer, int frameId)
{
    while (frameId > 1 && layer.frames().at(frameId - 1)->isClone())
        --frameId;
    const Drawing &drawing = *layer.frames().at(frameId - 1)->drawing;
    if (drawing.type() == Drawing::Type::Image) {
        if (const QImage &image = static_cast<const ImageDrawing &>(drawing).image(); !image.isNull())
            return image;
    }
    QImage image(layer.frameSize(), QImage::Format_RGB32);
    if (image.isNull())
        return image;
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    layer.draw(frameId, &painter, image.rect(), false);
    return image;
}

} // namespace

QMimeData *Scene::copyToMimeData(int layerIdx, int firstFrame, int count) const
{
    const VisualLayer *visual = visualLayer(layerIdx);
    if (!visual || (visual->layerType() != Layer::Stroke && visual->layerType() != Layer::Reference) ||
        !visual->isValidFrame(firstFrame) || count < 1 || count > visual->numFrames() - firstFrame + 1)
        return nullptr;
    auto data = std::make_unique<QMimeData>();
    data->setData(DrawingClip::mimeType, privateForm(*visual, firstFrame, count));
    const QString program = QGuiApplication::applicationDisplayName();
    const QString first = QString::number(firstFrame);
    if (count > 1) {
        data->setText(tr("%1 scene %2, Layer %3, frames %4-%5")
                          .arg(program, displayName(), visual->name(), first, QString::number(firstFrame + count - 1)));
        return data.release();
    }
    data->setText(tr("%1 scene %2, Layer %3, frame %4").arg(program, displayName(), visual->name(), first));
    if (const QImage image = picture(*visual, firstFrame); !image.isNull())
        data->setImageData(image);
    return data.release();
}

} // namespace Model
