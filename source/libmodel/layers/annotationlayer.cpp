#include "libmodel/layers/annotationlayer.h"

#include "libmodel/strokes/colortable.h"

#include <QColor>

#include <algorithm>

namespace Model {

namespace {

constexpr QColor pencilGrey(185, 183, 181);

LayerChange annotationChange(LayerChange::Type type, int frameId, const QImage &image)
{
    LayerChange change(type, frameId);
    change.image = image;
    return change;
}

/// Notes are coverage, a byte per pixel; none at all is fine too.
bool isNote(const QImage &image)
{
    return image.isNull() ||
           (image.depth() == 8 && std::max(image.width(), image.height()) <= AnnotationLayer::maximumSide);
}

} // namespace

AnnotationLayer::AnnotationLayer(QObject *parent) : Layer(parent), m_colorTable(Model::colorTable(pencilGrey))
{
}

AnnotationLayer::~AnnotationLayer() = default;

int AnnotationLayer::layerType() const
{
    return Annotation;
}

int AnnotationLayer::numFrames() const
{
    return 0;
}

bool AnnotationLayer::isValidFrame(int) const
{
    return false;
}

void AnnotationLayer::insertBlankAfter(int frameId)
{
    if (frameId >= 1 && frameId < maximumFrames && m_images.size() < maximumFrames && growTo(frameId))
        m_images.insert(frameId, QImage());
}

void AnnotationLayer::insertCloneAfter(int frameId)
{
    insertBlankAfter(frameId);
}

QImage AnnotationLayer::image(int frameId) const
{
    if (frameId < 1 || frameId > m_images.size())
        return {};
    return m_images.at(frameId - 1);
}

QImage AnnotationLayer::displayImage(int frameId, QSize size) const
{
    const QImage stored = image(frameId);
    if (stored.isNull() || size.isEmpty())
        return {};

    // A view on the stored bytes: only the palette and, if need be, the size are new.
    QImage view(stored.constBits(), stored.width(), stored.height(), stored.bytesPerLine(), QImage::Format_Indexed8);
    view.setColorTable(m_colorTable);
    if (size == stored.size())
        return view.copy();
    // Scaled by nearest pixel, which keeps the palette; the other way would blend into another format.
    return view.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
}

QList<LayerChange> AnnotationLayer::insertImage(int frameId, const QImage &image)
{
    if (!isNote(image) || m_images.size() >= maximumFrames || !growTo(frameId))
        return {};
    m_images.insert(frameId - 1, image);
    return {annotationChange(LayerChange::AnnotationInserted, frameId, image)};
}

QList<LayerChange> AnnotationLayer::removeFrame(int frameId)
{
    if (frameId < 1 || frameId > m_images.size())
        return {};
    return {annotationChange(LayerChange::AnnotationRemoved, frameId, m_images.takeAt(frameId - 1))};
}

QList<LayerChange> AnnotationLayer::setImage(int frameId, const QImage &image)
{
    if (!isNote(image) || !growTo(frameId))
        return {};
    const QImage old = m_images.at(frameId - 1);
    m_images[frameId - 1] = image;
    return {annotationChange(LayerChange::AnnotationChanged, frameId, old)};
}

void AnnotationLayer::appendImage(const QImage &image)
{
    if (isNote(image) && m_images.size() < maximumFrames)
        m_images.append(image);
}

bool AnnotationLayer::growTo(int numImages)
{
    if (numImages < 1 || numImages > maximumFrames)
        return false;
    if (m_images.size() < numImages)
        m_images.resize(numImages);
    return true;
}

} // namespace Model
