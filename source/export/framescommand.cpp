#include "export/framescommand.h"

#include "export/arguments.h"
#include "export/console.h"
#include "export/scenesource.h"
#include "export/terminalprogress.h"
#include "libmodel/base/exportsettings.h"
#include "libmodel/scene/scene.h"

#include <QFileInfo>
#include <QSet>

#include <filesystem>
#include <system_error>

namespace Export {

namespace {

using Settings = Model::ExportFramesSettings;

// The places of a choice's words are the numbers of the enumeration behind it.
const QList<Option> frameOptions{
    {QStringLiteral("name"),
     QStringLiteral("NAME"),
     {},
     QStringLiteral("what all file names begin with; the scene's file name without its ending by default")},
    {QStringLiteral("format"),
     {},
     {QStringLiteral("png"), QStringLiteral("exr")},
     QStringLiteral("PNG by default, or OpenEXR with half floats in linear light")},
    {QStringLiteral("layers"),
     {},
     {QStringLiteral("all"), QStringLiteral("visible"), QStringLiteral("active")},
     QStringLiteral("all layers with pictures by default, those not hidden, or the current one")},
    {QStringLiteral("frames"),
     {},
     {QStringLiteral("all"), QStringLiteral("range")},
     QStringLiteral("all frames by default, or those of the playback range")},
    {QStringLiteral("clones"),
     {},
     {QStringLiteral("exclude"), QStringLiteral("hold"), QStringLiteral("sequence")},
     QStringLiteral("frames that repeat a drawing: none by default, under a name that says so, or like any other")},
    {QStringLiteral("combine"), {}, {}, QStringLiteral("one picture of all chosen layers for each frame")},
    {QStringLiteral("black"), {}, {}, QStringLiteral("all lines black, whatever the colours of their layers")},
    {QStringLiteral("no-alpha"), {}, {}, QStringLiteral("on white instead of a transparent ground")},
};

/// What may be wrong with the name that a user wants the files to begin with; empty if nothing is.
QString nameError(const Arguments &arguments)
{
    if (!arguments.has(QStringLiteral("name")))
        return {};
    const QString name = arguments.value(QStringLiteral("name"));
    if (name.isEmpty())
        return QStringLiteral("--name: a name cannot be empty");
    if (name.contains(u'/'))
        return QStringLiteral("--name: \"%1\" is not a file name").arg(name);
    return {};
}

Settings settingsFrom(const Arguments &arguments, const Model::Scene &scene)
{
    const QString ofFile = QFileInfo(scene.filename()).completeBaseName();
    Settings settings;
    settings.fileName = arguments.value(QStringLiteral("name"), ofFile.isEmpty() ? scene.name() : ofFile);
    settings.exportDir = arguments.operand(1);
    settings.layers = Settings::Layers(arguments.choice(QStringLiteral("layers")));
    settings.frames = Settings::Frames(arguments.choice(QStringLiteral("frames")));
    settings.clones = Settings::Clones(arguments.choice(QStringLiteral("clones")));
    settings.imageFormat = Settings::ImageFormat(arguments.choice(QStringLiteral("format")));
    settings.combineLayers = arguments.has(QStringLiteral("combine"));
    settings.makeAllLinesBlack = arguments.has(QStringLiteral("black"));
    settings.includeAlpha = !arguments.has(QStringLiteral("no-alpha"));
    return settings;
}

/// Makes the folder \a path with all that it stands in. \return why that failed, empty if it did not.
QString makeFolder(const QString &path)
{
    if (path.isEmpty())
        return QStringLiteral("a folder name cannot be empty");
    const std::filesystem::path folder(path.toStdString());
    std::error_code error;
    if (std::filesystem::is_directory(folder, error))
        return {};
    if (std::filesystem::exists(folder, error))
        return QStringLiteral("is not a folder");
    std::filesystem::create_directories(folder, error);
    if (std::error_code ignored; std::filesystem::is_directory(folder, ignored))
        return {};
    return QStringLiteral("the folder cannot be made: %1").arg(QString::fromStdString(error.message()));
}

/// Tells of files that will be written twice, since layers have one name.
void warnOfSharedNames(const QList<Model::FrameExportFile> &files, const QString &sceneFile, Console &console)
{
    QSet<QString> seen;
    for (const Model::FrameExportFile &file : files) {
        if (!seen.contains(file.fileName)) {
            seen.insert(file.fileName);
            continue;
        }
        console.warning(sceneFile,
                        QStringLiteral("several layers have the same name; of %1 and others like it only the "
                                       "one of the lowest layer stays")
                            .arg(file.fileName));
        return;
    }
}

ExitCode exportFrames(const Model::Scene &scene, const Settings &settings, const QString &sceneFile, Console &console)
{
    const QList<Model::FrameExportFile> files = Model::frameExportFiles(scene, settings);
    if (files.isEmpty())
        console.warning(sceneFile, QStringLiteral("there is nothing to write with these options"));
    warnOfSharedNames(files, sceneFile, console);

    const auto [first, last] = Model::exportedFrames(scene, settings.frames);
    TerminalProgress progress(console, QStringLiteral("Exporting frame"), last - first + 1);
    const Model::FrameExportResult result = scene.exportFrames(settings, progress);
    progress.finish();
    for (const QString &failure : result.failures)
        console.message(failure);
    if (result.outcome == Model::FileResult::Cancelled) {
        console.message(sceneFile,
                        QStringLiteral("cancelled with %1 of %2 files written").arg(result.written).arg(files.size()));
        return ExitCode::Cancelled;
    }
    return result.outcome == Model::FileResult::Success ? ExitCode::Done : ExitCode::Error;
}

ExitCode runFrames(const Arguments &arguments, Console &console)
{
    if (const QString error = nameError(arguments); !error.isEmpty()) {
        console.message(error);
        return ExitCode::Error;
    }
    const QString sceneFile = arguments.operand(0);
    const SceneSource source = openScene(sceneFile, console);
    if (source.outcome != ExitCode::Done)
        return source.outcome;
    if (source.lacksRenderer) {
        console.message(sceneFile, QStringLiteral("its strokes carry no flattened images, and there is no OpenGL to "
                                                  "render them"));
        return ExitCode::Error;
    }
    const Settings settings = settingsFrom(arguments, *source.scene);
    if (const QString error = makeFolder(settings.exportDir); !error.isEmpty()) {
        console.message(settings.exportDir, error);
        return ExitCode::Error;
    }
    return exportFrames(*source.scene, settings, sceneFile, console);
}

} // namespace

Command framesCommand()
{
    return {
        .name = QStringLiteral("frames"),
        .summary = QStringLiteral("Writes the frames of a scene into a folder, as numbered image files."),
        .operands = {QStringLiteral("SCENE.mr"), QStringLiteral("OUTDIR")},
        .options = frameOptions,
        .run = runFrames,
    };
}

} // namespace Export
