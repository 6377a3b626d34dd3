#include "libmodel/scene/frameexport.h"

#include "libmodel/layers/visuallayer.h"
#include "libmodel/scene/scene.h"

#include <QCoreApplication>

#include <algorithm>
#include <optional>

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

QList<FrameExportFile> combinedFiles(const QList<const VisualLayer *> &layers, const FileNames &names, int first,
                                     int last)
{
    QList<FrameExportFile> files;
    const QString prefix = layers.size() == 1 ? QLatin1Char('.') + layers.first()->name() : QString();
    for (int frameId = first; frameId <= last; ++frameId) {
        const bool isNew = std::ranges::any_of(layers, [&](const auto *layer) { return makesNew(*layer, frameId); });
        const std::optional<QString> kind = isNew ? QString() : names.repetitionPart();
        if (kind)
            files.append({frameId, -1, names.ofAll(prefix, frameId, *kind)});
    }
    return files;
}

QList<FrameExportFile> layerFiles(const Scene &scene, QList<int> layers, const FileNames &names, int first, int last)
{
    QList<FrameExportFile> files;
    for (int frameId = first; frameId <= last && !layers.isEmpty(); ++frameId) {
        layers.removeIf([&](int layerIdx) { return scene.visualLayer(layerIdx)->numFrames() < frameId; });
        for (const int layerIdx : std::as_const(layers)) {
            if (const std::optional<QString> kind = names.kindPart(*scene.item(layerIdx, frameId)))
                files.append({frameId, layerIdx, names.ofLayer(scene.layer(layerIdx)->name(), frameId, *kind)});
        }
    }
    return files;
}

} // namespace

QList<FrameExportFile> frameExportFiles(const Scene &scene, const ExportFramesSettings &settings)
{
    const QList<int> chosen = exportedLayers(scene, settings.layers);
    if (chosen.isEmpty())
        return {};
    const FileNames names(scene, settings);
    const auto [first, last] = exportedFrames(scene, settings.frames);
    if (!settings.combineLayers)
        return layerFiles(scene, chosen, names, first, last);
    QList<const VisualLayer *> layers;
    for (const int layerIdx : chosen)
        layers.append(scene.visualLayer(layerIdx));
    return combinedFiles(layers, names, first, last);
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
