#pragma once

#include "libmodel/base/exportsettings.h"
#include "libmodel/base/fileresult.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
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

/// The same list in portions, for whoever needs them one after the other. The scene and the settings must stay as they
/// are meanwhile.
class FrameExportWalk
{
public:
    FrameExportWalk(const Scene &scene, const ExportFramesSettings &settings);
    /// For \a layers only, storage indices of layers with pictures from the top down.
    FrameExportWalk(const Scene &scene, const ExportFramesSettings &settings, const QList<int> &layers);
    ~FrameExportWalk();

    FrameExportWalk(const FrameExportWalk &) = delete;
    FrameExportWalk &operator=(const FrameExportWalk &) = delete;

    /// Are all frames taken? At once without layers.
    [[nodiscard]] bool atEnd() const { return m_frameId > m_last; }
    /// The files of the next frame, which may be none; nothing at the end.
    QList<FrameExportFile> takeFrame();

private:
    class Private;
    std::unique_ptr<Private> d;
    int m_frameId = 1;
    int m_last = 0;
};

/// Two pictures of one frame that go to one file since their layers have one name, so that only the lower one stays:
/// the name of that file, twice. Where there are none such, two files whose names differ only in upper and lower case,
/// which are one file on some disks; otherwise empty.
[[nodiscard]] std::pair<QString, QString> sharedExportFile(const Scene &scene, const ExportFramesSettings &settings);

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
