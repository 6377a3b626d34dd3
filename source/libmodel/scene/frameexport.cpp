#include "libmodel/scene/frameexport.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"

#include <QCoreApplication>
#include <QHash>

#include <algorithm>
#include <limits>
#include <optional>
#include <tuple>

namespace Model {

namespace {

using Clones = ExportFramesSettings::Clones;

/// Numbers in file names have at least as many digits.
constexpr int numberDigits = 4;

QString numberPart(int frameId)
{
    return QStringLiteral("%1").arg(frameId, numberDigits, 10, QLatin1Char('0'));
}

/// \a name without what no file name can have.
QString asFileName(QString name)
{
    return name.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QChar(QChar::Null), QLatin1Char('_'));
}

/// Puts together the names of the files of one export.
class FileNames
{
public:
    FileNames(const Scene &scene, const ExportFramesSettings &settings)
        : m_scene(scene),
          m_settings(settings),
          m_holdPart(QLatin1Char('.') + QCoreApplication::translate("Model::Scene", "hold", "export")),
          m_clonePart(QLatin1Char('.') +
                      QCoreApplication::translate("Model::Scene", "clone.%1.%2", "export (layerName.frame)"))
    {
    }

    /// What the name tells of a cell; nothing where the cell has no file.
    [[nodiscard]] std::optional<QString> kindPart(const LayerItem &cell) const
    {
        if (cell.isOriginal())
            return QString();
        const std::optional<QString> part = repetitionPart();
        if (!part || m_settings.clones != Clones::IncludeClones || cell.isClone())
            return part;
        int layerIdx = -1;
        int frameId = -1;
        if (!m_scene.findItem(cell.origin, &layerIdx, &frameId))
            return QString();
        const Layer *layer = m_scene.layer(layerIdx);
        return m_clonePart.arg(layer ? layer->name() : QString(), numberPart(frameId));
    }

    /// What the name tells of a picture that stays; nothing where it has no file.
    [[nodiscard]] std::optional<QString> repetitionPart() const
    {
        switch (m_settings.clones) {
        case Clones::IncludeClones:
            return m_holdPart;
        case Clones::IncludeClonesSimpleSequence:
            return QString();
        case Clones::ExcludeClones:
            break;
        }
        return {};
    }

    [[nodiscard]] QString ofLayer(const QString &layerName, int frameId, const QString &kind) const
    {
        return asFileName(QStringLiteral("%1.%2.%3%4.%5")
                              .arg(m_settings.fileName, layerName, numberPart(frameId), kind, extension()));
    }

    [[nodiscard]] QString ofAll(const QString &prefix, int frameId, const QString &kind) const
    {
        return asFileName(
            QStringLiteral("%1%2.%3%4.%5").arg(m_settings.fileName, prefix, numberPart(frameId), kind, extension()));
    }

private:
    [[nodiscard]] QString extension() const
    {
        return m_settings.imageFormat == ExportFramesSettings::ImageFormat::OpenEXR ? QStringLiteral("exr")
                                                                                    : QStringLiteral("png");
    }

    const Scene &m_scene;
    const ExportFramesSettings &m_settings;
    QString m_holdPart;
    QString m_clonePart;
};

/// Does a combined picture change at \a frameId because of \a layer? It does where a drawing begins, also in a cycle
/// beyond the last cell, and where the layer goes blank behind its last cell.
bool makesNew(const VisualLayer &layer, int frameId)
{
    if (layer.isValidFrame(frameId) || layer.beyondLast() == Layer::CycleDrawings) {
        const auto cell = layer.item(layer.shownFrame(frameId));
        return cell && !cell->isClone();
    }
    return layer.beyondLast() == Layer::ShowNothing && layer.numFrames() >= frameId - 1;
}

/// Can \a layer have any part in the files from \a frameId on?
bool isOver(const VisualLayer &layer, int frameId, bool combined)
{
    const int last = layer.numFrames();
    if (!combined)
        return last < frameId;
    switch (layer.beyondLast()) {
    case Layer::ShowNothing:
        return last < frameId - 1;
    case Layer::FreezeLast:
        return last < frameId;
    default:
        return false;
    }
}

} // namespace

class FrameExportWalk::Private
{
public:
    Private(const Scene &scene, const ExportFramesSettings &settings, const QList<int> &layers)
        : m_scene(scene),
          m_names(scene, settings),
          m_isCombined(settings.combineLayers),
          m_layers(layers),
          m_prefix(layers.size() == 1 ? QLatin1Char('.') + scene.layer(layers.first())->name() : QString())
    {
    }

    QList<FrameExportFile> filesAt(int frameId)
    {
        if (frameId >= m_nextEnd)
            dropLayersThatAreOver(frameId);
        return m_isCombined ? combinedFileAt(frameId) : layerFilesAt(frameId);
    }

private:
    void dropLayersThatAreOver(int frameId)
    {
        m_layers.removeIf([&](int idx) { return isOver(*m_scene.visualLayer(idx), frameId, m_isCombined); });
        m_nextEnd = std::numeric_limits<int>::max();
        for (const int layerIdx : std::as_const(m_layers)) {
            const VisualLayer &layer = *m_scene.visualLayer(layerIdx);
            if (!m_isCombined || layer.beyondLast() != Layer::CycleDrawings)
                m_nextEnd = std::min(m_nextEnd, std::max(layer.numFrames(), frameId) + 1);
        }
    }

    [[nodiscard]] QList<FrameExportFile> combinedFileAt(int frameId) const
    {
        const bool isNew =
            std::ranges::any_of(m_layers, [&](int idx) { return makesNew(*m_scene.visualLayer(idx), frameId); });
        if (const std::optional<QString> kind = isNew ? QString() : m_names.repetitionPart())
            return {{frameId, -1, m_names.ofAll(m_prefix, frameId, *kind)}};
        return {};
    }

    [[nodiscard]] QList<FrameExportFile> layerFilesAt(int frameId) const
    {
        QList<FrameExportFile> files;
        for (const int layerIdx : m_layers) {
            if (const std::optional<QString> kind = m_names.kindPart(*m_scene.item(layerIdx, frameId)))
                files.append({frameId, layerIdx, m_names.ofLayer(m_scene.layer(layerIdx)->name(), frameId, *kind)});
        }
        return files;
    }

    const Scene &m_scene;
    FileNames m_names;
    bool m_isCombined;
    QList<int> m_layers; ///< those that can still have a part
    QString m_prefix;
    int m_nextEnd = 0; ///< the first frame at which one of them may be over
};

FrameExportWalk::FrameExportWalk(const Scene &scene, const ExportFramesSettings &settings)
    : FrameExportWalk(scene, settings, exportedLayers(scene, settings.layers))
{
}

FrameExportWalk::FrameExportWalk(const Scene &scene, const ExportFramesSettings &settings, const QList<int> &layers)
    : d(std::make_unique<Private>(scene, settings, layers))
{
    std::tie(m_frameId, m_last) = exportedFrames(scene, settings.frames);
    if (layers.isEmpty())
        m_last = m_frameId - 1;
}

FrameExportWalk::~FrameExportWalk() = default;

QList<FrameExportFile> FrameExportWalk::takeFrame()
{
    return atEnd() ? QList<FrameExportFile>() : d->filesAt(m_frameId++);
}

QList<FrameExportFile> frameExportFiles(const Scene &scene, const ExportFramesSettings &settings)
{
    QList<FrameExportFile> files;
    FrameExportWalk walk(scene, settings);
    while (!walk.atEnd())
        files += walk.takeFrame();
    return files;
}

std::pair<QString, QString> sharedExportFile(const Scene &scene, const ExportFramesSettings &settings)
{
    if (settings.combineLayers)
        return {};
    const QList<int> layers = exportedLayers(scene, settings.layers);
    QHash<QString, QList<int>> byName;
    for (const int layerIdx : layers)
        byName[asFileName(scene.layer(layerIdx)->name()).toCaseFolded()].append(layerIdx);
    QList<int> doubtful;
    for (const int layerIdx : layers) {
        if (byName.value(asFileName(scene.layer(layerIdx)->name()).toCaseFolded()).size() > 1)
            doubtful.append(layerIdx);
    }
    if (doubtful.isEmpty())
        return {};
    std::pair<QString, QString> onlyByCase;
    FrameExportWalk walk(scene, settings, doubtful);
    while (!walk.atEnd()) {
        QHash<QString, QString> seen;
        const QList<FrameExportFile> files = walk.takeFrame();
        for (const FrameExportFile &file : files) {
            QString &other = seen[file.fileName.toCaseFolded()];
            if (other == file.fileName)
                return {other, other};
            if (!other.isEmpty() && onlyByCase.first.isEmpty())
                onlyByCase = {other, file.fileName};
            other = file.fileName;
        }
    }
    return onlyByCase;
}

QList<int> exportedLayers(const Scene &scene, ExportSettings::Layers layers)
{
    QList<int> chosen;
    const QList<int> order = scene.layerOrder();
    for (const int layerIdx : order) {
        const VisualLayer *layer = scene.visualLayer(layerIdx);
        if (!layer || (layers == ExportSettings::Layers::VisibleLayers && !layer->isVisible()) ||
            (layers == ExportSettings::Layers::ActiveLayerOnly && layerIdx != scene.activeLayerIdx()))
            continue;
        chosen.append(layerIdx);
    }
    return chosen;
}

std::pair<int, int> exportedFrames(const Scene &scene, ExportSettings::Frames frames)
{
    if (frames == ExportSettings::Frames::RangeOnly)
        return {scene.rangeFirst(), scene.rangeLast()};
    return {scene.minimumFrameNumber(), scene.maximumFrameNumber()};
}

} // namespace Model
