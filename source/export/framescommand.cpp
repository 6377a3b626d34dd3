#include "export/framescommand.h"

#include "export/arguments.h"
#include "export/console.h"
#include "export/interrupt.h"
#include "export/outputfolder.h"
#include "export/rendering.h"
#include "export/scenesource.h"
#include "export/terminalprogress.h"
#include "libmodel/base/exportsettings.h"
#include "libmodel/scene/frameexport.h"
#include "libmodel/scene/scene.h"

#include <QFileInfo>

#include <utility>

namespace Export {

namespace {

using Settings = Model::ExportFramesSettings;

// The places of a choice's words are the numbers of the enumeration behind it.
const QList<Option> frameOptions{
    {QStringLiteral("name"),
     QStringLiteral("NAME"),
     {},
     QStringLiteral("what all file names begin with; default: the scene's file name without .mr")},
    {QStringLiteral("format"),
     {},
     {QStringLiteral("png"), QStringLiteral("exr")},
     QStringLiteral("PNG (png), or OpenEXR with half floats in linear light (exr)")},
    {QStringLiteral("layers"),
     {},
     {QStringLiteral("all"), QStringLiteral("visible"), QStringLiteral("active")},
     QStringLiteral("of the layers with pictures: each (all), those not hidden (visible), the current one (active)")},
    {QStringLiteral("frames"),
     {},
     {QStringLiteral("all"), QStringLiteral("range")},
     QStringLiteral("each frame of the scene (all), those of the playback range (range)")},
    {QStringLiteral("clones"),
     {},
     {QStringLiteral("exclude"), QStringLiteral("hold"), QStringLiteral("sequence")},
     QStringLiteral(
         "frames that repeat a drawing: no file (exclude), a file named after what it repeats (hold), a file "
         "like any other (sequence)")},
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

/// The name of \a file without its folder and without the ending of scenes, the only one that is no part of it.
QString baseName(const QString &file)
{
    const QString ending = QStringLiteral(".mr");
    QString name = QFileInfo(file).fileName();
    if (name.endsWith(ending, Qt::CaseInsensitive))
        name.chop(ending.size());
    return name;
}

Settings settingsFrom(const Arguments &arguments, const Model::Scene &scene)
{
    const QString ofFile = baseName(scene.filename());
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

/// Tells of files that will be written twice, since the names of layers are one in file names, on this disk or on
/// others.
void warnOfSharedNames(const Model::Scene &scene, const Settings &settings, Console &console)
{
    const auto [one, other] = Model::sharedExportFile(scene, settings);
    if (one.isEmpty())
        return;
    if (one == other) {
        console.warning(scene.filename(), QStringLiteral("several layers write to %1 and others like it; only the "
                                                         "picture of the lowest layer stays")
                                              .arg(one));
        return;
    }
    console.warning(scene.filename(),
                    QStringLiteral("the names of several layers differ only in upper and lower case; on some disks %1 "
                                   "and %2 are one file, and only the picture of the lowest layer stays")
                        .arg(one, other));
}

/// The number of files to write; as far as was counted when the process is asked to stop.
int fileCount(const Model::Scene &scene, const Settings &settings)
{
    int count = 0;
    for (Model::FrameExportWalk walk(scene, settings); !walk.atEnd() && !wasInterrupted();)
        count += int(walk.takeFrame().size());
    return count;
}

/// Writes \a count files, which \a settings choose, into the folder that is there. \return besides how many there are
/// now.
std::pair<ExitCode, int> writeFiles(const Model::Scene &scene, const Settings &settings, int count, Console &console)
{
    const auto [first, last] = Model::exportedFrames(scene, settings.frames);
    TerminalProgress progress(console, QStringLiteral("Exporting frame"), last - first + 1);
    const Model::FrameExportResult result = scene.exportFrames(settings, progress);
    progress.finish();
    for (const QString &failure : result.failures)
        console.message(failure);
    switch (result.outcome) {
    case Model::FileResult::Success:
        return {ExitCode::Done, result.written};
    case Model::FileResult::Cancelled:
        console.message(scene.filename(),
                        QStringLiteral("cancelled with %1 of %2 files written").arg(result.written).arg(count));
        return {ExitCode::Cancelled, result.written};
    case Model::FileResult::Error:
        break;
    }
    return {ExitCode::Error, result.written};
}

ExitCode exportFrames(const SceneSource &source, const Settings &settings, Console &console)
{
    const Model::Scene &scene = *source.scene;
    if (source.lacksRenderer && showsUnrendered(scene, settings)) {
        console.message(scene.filename(), QStringLiteral("its strokes carry no flattened images, and there is no "
                                                         "OpenGL to render them"));
        return ExitCode::Error;
    }
    OutputFolder folder;
    if (const QString error = folder.make(settings.exportDir); !error.isEmpty()) {
        console.message(settings.exportDir, error);
        return ExitCode::Error;
    }
    const int count = fileCount(scene, settings);
    if (count == 0 && !wasInterrupted())
        console.warning(scene.filename(), QStringLiteral("there is nothing to write with these options"));
    warnOfSharedNames(scene, settings, console);
    const auto [outcome, written] = writeFiles(scene, settings, count, console);
    if (outcome == ExitCode::Done || written > 0)
        folder.keep();
    return outcome;
}

ExitCode runFrames(const Arguments &arguments, Console &console)
{
    if (const QString error = nameError(arguments); !error.isEmpty()) {
        console.message(error);
        return ExitCode::Error;
    }
    const SceneSource source = openScene(arguments.operand(0), console);
    if (source.outcome != ExitCode::Done)
        return source.outcome;
    return exportFrames(source, settingsFrom(arguments, *source.scene), console);
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
