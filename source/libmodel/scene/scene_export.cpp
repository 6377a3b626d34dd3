// Frames as image files. Painting stays on this thread, since drawings fill their caches when they are painted; the
// encoding, which takes far longer, goes on beside it.

#include "libmodel/base/progress.h"
#include "libmodel/images/imagefilequeue.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QPainter>
#include <QSet>

#include <algorithm>
#include <limits>

namespace Model {

namespace {

/// What stands before painting: nothing written, for this reason.
FrameExportResult refusal(const QString &reason)
{
    return {FileResult::Error, 0, {reason}};
}

/// Why an export cannot even begin; empty when it can.
QString obstacle(const ExportFramesSettings &settings)
{
    if (settings.imageFormat == ExportFramesSettings::ImageFormat::PNG &&
        !QImageWriter::supportedImageFormats().contains("png")) {
        qWarning("Export Frames: Unsupported image format png");
        return Scene::tr("%1: %2").arg(QStringLiteral("png"), Scene::tr("Unsupported image format"));
    }
    if (settings.exportDir.isEmpty() || !QFileInfo(settings.exportDir).isDir()) {
        return Scene::tr("%1: %2").arg(QDir::toNativeSeparators(settings.exportDir),
                                       Scene::tr("There is no such folder"));
    }
    return {};
}

void warnOfEqualNames(const QList<FrameExportFile> &files)
{
    QSet<QString> names;
    for (const FrameExportFile &file : files) {
        if (names.contains(file.fileName)) {
            qWarning("Export Frames: several pictures go to one file, and the last one stays: %s",
                     qUtf8Printable(file.fileName));
            return;
        }
        names.insert(file.fileName);
    }
}

/// The number of steps that the progress is made for.
int stepsOf(const Scene &scene, const QList<int> &layers, bool combined, int frames)
{
    if (combined)
        return frames;
    qint64 cells = 0;
    for (const int layerIdx : layers)
        cells += scene.visualLayer(layerIdx)->numFrames();
    return int(std::min<qint64>(cells, std::numeric_limits<int>::max()));
}

/// One picture: the one layer that \a file names, or \a layers (from the top down), each with its opacity. Null when
/// there is no memory for it.
QImage paintedImage(const Scene &scene, const FrameExportFile &file, const QList<int> &layers,
                    const ExportFramesSettings &settings)
{
    QImage image(scene.frameSize(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(settings.includeAlpha ? Qt::transparent : Qt::white);
    QPainter painter(&image);
    if (file.layerIdx >= 0) {
        scene.visualLayer(file.layerIdx)->draw(file.frameId, &painter, image.rect(), settings.makeAllLinesBlack);
        return image;
    }
    for (auto it = layers.crbegin(); it != layers.crend(); ++it) {
        const VisualLayer *layer = scene.visualLayer(*it);
        painter.setOpacity(layer->opacity());
        layer->draw(file.frameId, &painter, image.rect(), settings.makeAllLinesBlack);
    }
    return image;
}

} // namespace

FrameExportResult Scene::exportFrames(const ExportFramesSettings &settings, Progress &progress) const
{
    const QList<int> layers = exportedLayers(*this, settings.layers);
    if (layers.isEmpty())
        return {};
    if (const QString reason = obstacle(settings); !reason.isEmpty())
        return refusal(reason);
    const QList<FrameExportFile> files = frameExportFiles(*this, settings);
    warnOfEqualNames(files);

    const auto [first, last] = exportedFrames(*this, settings.frames);
    progress.setSteps(stepsOf(*this, layers, settings.combineLayers, last - first + 1), 0);
    const QDir folder(settings.exportDir);
    ImageFileQueue queue(settings.imageFormat);
    FrameExportResult result;
    bool cancelled = false;
    auto file = files.cbegin();
    for (int frameId = first; frameId <= last && !cancelled; ++frameId) {
        cancelled = progress.wasCancelled();
        if (!cancelled)
            progress.advance();
        for (; file != files.cend() && file->frameId == frameId && !cancelled; ++file) {
            const QString path = folder.filePath(file->fileName);
            const QImage image = paintedImage(*this, *file, layers, settings);
            if (image.isNull())
                result.failures += tr("%1: %2").arg(QDir::toNativeSeparators(path), tr("Not enough memory"));
            else
                queue.enqueue(image, path);
            cancelled = progress.wasCancelled();
        }
    }
    if (cancelled)
        queue.cancel();
    queue.finish();
    if (!cancelled)
        progress.finish();
    result.written = queue.written();
    result.failures += queue.failures();
    if (cancelled)
        result.outcome = FileResult::Cancelled;
    else if (!result.failures.isEmpty())
        result.outcome = FileResult::Error;
    return result;
}

} // namespace Model
