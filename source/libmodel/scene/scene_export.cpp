// Frames as image files. Painting stays on this thread, since drawings fill their caches when they are painted; the
// encoding, which takes far longer, goes on beside it.

#include "libmodel/base/progress.h"
#include "libmodel/images/imagefilequeue.h"
#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImageWriter>
#include <QPainter>

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
        return Scene::tr("%1: %2").arg(QStringLiteral("png"), Scene::tr("Unsupported image format"));
    }
    if (settings.exportDir.isEmpty() || !QFileInfo(settings.exportDir).isDir()) {
        return Scene::tr("%1: %2").arg(QDir::toNativeSeparators(settings.exportDir),
                                       Scene::tr("There is no such folder"));
    }
    return {};
}

void warnOfSharedFile(const Scene &scene, const ExportFramesSettings &settings)
{
    const auto [one, other] = sharedExportFile(scene, settings);
    if (one.isEmpty())
        return;
    if (one == other) {
        qWarning("Export Frames: several pictures go to one file, and the last one stays: %s", qUtf8Printable(one));
        return;
    }
    qWarning("Export Frames: on some disks several pictures go to one file, and the last one stays: %s and %s",
             qUtf8Printable(one), qUtf8Printable(other));
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

/// Where the user gets a word in: a long export looks here as often as it can.
class Breaks
{
public:
    explicit Breaks(Progress &progress) : m_progress(progress) { m_sincePoll.start(); }

    /// Is the export to go on? Once it is not, it never is again.
    bool goOn()
    {
        if (m_sincePoll.hasExpired(paceMs)) {
            m_progress.poll();
            m_sincePoll.start();
        }
        m_isCancelled = m_isCancelled || m_progress.wasCancelled();
        return !m_isCancelled;
    }
    [[nodiscard]] bool isCancelled() const { return m_isCancelled; }

private:
    static constexpr int paceMs = 20;

    Progress &m_progress;
    QElapsedTimer m_sincePoll;
    bool m_isCancelled = false;
};

/// Draws \a layer as one of several: with its opacity on the painter, and by the rule beyond its last cell.
void drawAmongOthers(const VisualLayer &layer, int frameId, QPainter &painter, QRect rect, bool asBlack)
{
    painter.setOpacity(layer.opacity());
    // Pictures know that rule only where they also have an opacity of their own, which comes on top.
    if (layer.layerType() == Layer::Reference)
        layer.drawPlain(frameId, &painter, rect);
    else
        layer.draw(frameId, &painter, rect, asBlack);
}

/// One picture: the one layer that \a file names, or \a layers (from the top down), each with its opacity. Null when
/// there is no memory for it; not complete when \a breaks end the export.
QImage paintedImage(const Scene &scene, const FrameExportFile &file, const QList<int> &layers,
                    const ExportFramesSettings &settings, Breaks &breaks)
{
    QImage image(scene.frameSize(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(settings.includeAlpha ? Qt::transparent : Qt::white);
    QPainter painter(&image);
    if (file.layerIdx >= 0) {
        scene.visualLayer(file.layerIdx)->draw(file.frameId, &painter, image.rect(), settings.makeAllLinesBlack);
    } else {
        for (auto it = layers.crbegin(); it != layers.crend() && breaks.goOn(); ++it)
            drawAmongOthers(*scene.visualLayer(*it), file.frameId, painter, image.rect(), settings.makeAllLinesBlack);
    }
    painter.end();
    return image;
}

/// Writes \a files in their order as long as \a breaks allow it. \return how many were handed on.
int writeFiles(const Scene &scene, const QList<FrameExportFile> &files, const QList<int> &layers,
               const ExportFramesSettings &settings, ImageFileQueue &queue, Breaks &breaks)
{
    const QDir folder(settings.exportDir);
    int count = 0;
    for (const FrameExportFile &file : files) {
        const QString path = folder.filePath(file.fileName);
        const QImage image = paintedImage(scene, file, layers, settings, breaks);
        if (!breaks.goOn())
            return count;
        ++count;
        if (image.isNull())
            queue.refuse(path, Scene::tr("Not enough memory"));
        else
            queue.enqueue(image, path, [&] { return breaks.goOn(); });
    }
    return count;
}

} // namespace

FrameExportResult Scene::exportFrames(const ExportFramesSettings &settings, Progress &progress) const
{
    const QList<int> layers = exportedLayers(*this, settings.layers);
    if (layers.isEmpty())
        return {};
    if (const QString reason = obstacle(settings); !reason.isEmpty())
        return refusal(reason);
    warnOfSharedFile(*this, settings);

    const auto [first, last] = exportedFrames(*this, settings.frames);
    progress.setSteps(stepsOf(*this, layers, settings.combineLayers, last - first + 1), 0);
    ImageFileQueue queue(settings.imageFormat);
    Breaks breaks(progress);
    FrameExportWalk walk(*this, settings, layers);
    qsizetype handedOn = 0;
    while (!walk.atEnd() && breaks.goOn()) {
        progress.advance();
        handedOn += writeFiles(*this, walk.takeFrame(), layers, settings, queue, breaks);
    }
    // What is being written becomes whole even if nobody wants the rest.
    const bool isPainted = walk.atEnd() && !breaks.isCancelled();
    bool isDone = isPainted && queue.finish([&] { return breaks.goOn(); });
    if (!isDone) {
        queue.cancel();
        queue.finish([&progress] {
            progress.poll();
            return true;
        });
    } else {
        progress.finish();
    }
    FrameExportResult result;
    result.written = queue.written();
    result.failures = queue.failures();
    // A cancel that came after the last file has nothing left to prevent.
    isDone = isDone || (isPainted && result.written + result.failures.size() == handedOn);
    if (!isDone)
        result.outcome = FileResult::Cancelled;
    else if (!result.failures.isEmpty())
        result.outcome = FileResult::Error;
    return result;
}

} // namespace Model
