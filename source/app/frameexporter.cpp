#include "app/frameexporter.h"

#include "libmodel/base/dialogprogress.h"
#include "libmodel/base/settings.h"
#include "libmodel/scene/scene.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

using Model::Settings;

namespace {

/// The name without folder and ending of the file that \a scene is kept in, or its own name without a file.
QString nameOf(const Model::Scene &scene)
{
    const QString ofFile = QFileInfo(scene.filename()).completeBaseName();
    return ofFile.isEmpty() ? scene.name() : ofFile;
}

} // namespace

FrameExporter::FrameExporter(QWidget *window) : QObject(window), m_window(window)
{
}

void FrameExporter::exportFrames(const Model::Scene &scene, const std::function<bool()> &prepare) const
{
    Model::ExportFramesSettings settings = Settings::instance()->exportFramesSettings();
    settings.fileName = nameOf(scene);
    if (!askForName(settings) || !prepare())
        return;
    Settings::instance()->setExportFramesSettings(settings);

    Model::DialogProgress progress(m_window, tr("Exporting Frames"), tr("Cancel"),
                                   Model::DialogProgress::exportDurationMs);
    const Model::FrameExportResult result = scene.exportFrames(settings, progress);
    const bool isExr = settings.imageFormat == Model::ExportFramesSettings::ImageFormat::OpenEXR;
    for (const QString &failure : result.failures)
        qWarning("%s: %s", isExr ? "Save EXR err" : "Export Frames", qUtf8Printable(failure));
}

bool FrameExporter::askForName(Model::ExportFramesSettings &settings) const
{
    // Of an export before, which may long be gone.
    const bool hasFolder = !settings.exportDir.isEmpty() && QFileInfo(settings.exportDir).isDir();
    const QDir folder(hasFolder ? settings.exportDir : Settings::instance()->defaultSaveDir());
    const QString name =
        QFileDialog::getSaveFileName(m_window, tr("Export Frames"), folder.filePath(settings.fileName));
    if (name.isEmpty())
        return false;
    const QFileInfo chosen(name);
    settings.exportDir = chosen.absolutePath();
    settings.fileName = chosen.fileName();
    return true;
}
