#pragma once

#include "libmodel/base/exportsettings.h"
#include "libmodel/base/fileresult.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <utility>

namespace Model {

class Scene;

/// One image file that an export of frames writes.
struct FrameExportFile
{
    int frameId = 0;   ///< from 1
    int layerIdx = -1; ///< the one layer in it; -1 for all chosen layers together
    QString fileName;  ///< within the folder of the settings

    bool operator==(const FrameExportFile &other) const = default;
};

/// What an export of frames writes, in order: frame by frame, and in a frame the layers from the top down. Decided
/// without painting anything, so it can be looked at and tested alone.
[[nodiscard]] QList<FrameExportFile> frameExportFiles(const Scene &scene, const ExportFramesSettings &settings);

/// The storage indices of the layers with pictures that \a layers chooses, from the top of the display order down.
[[nodiscard]] QList<int> exportedLayers(const Scene &scene, ExportSettings::Layers layers);

/// The first and the last frame that \a frames chooses.
[[nodiscard]] std::pair<int, int> exportedFrames(const Scene &scene, ExportSettings::Frames frames);

/// How an export of frames ended.
struct FrameExportResult
{
    FileResult outcome = FileResult::Success; ///< Error when at least one file could not be written
    int written = 0;                          ///< whole files
    QStringList failures;                     ///< "FILE: reason", one for each file that could not be written
};

} // namespace Model
