#include "export/infocommand.h"

#include "export/arguments.h"
#include "export/console.h"
#include "export/sceneinfo.h"
#include "export/scenesource.h"
#include "libmodel/scene/scene.h"

namespace Export {

namespace {

ExitCode runInfo(const Arguments &arguments, Console &console)
{
    const SceneSource source = openScene(arguments.operand(0), console);
    if (source.outcome != ExitCode::Done)
        return source.outcome;
    SceneInfo info = sceneInfo(*source.scene);
    info.needsRendering = source.lacksRenderer;
    info.damages = source.damages;
    info.damageCount = source.damageCount;
    return console.write(arguments.has(QStringLiteral("json")) ? jsonText(info) : plainText(info));
}

} // namespace

Command infoCommand()
{
    return {
        .name = QStringLiteral("info"),
        .summary = QStringLiteral("Tells what a scene holds: sizes, timing, layers, sound and notes."),
        .operands = {QStringLiteral("SCENE.mr")},
        .options = {{QStringLiteral("json"), {}, {}, QStringLiteral("as JSON, for programs")}},
        .run = runInfo,
    };
}

} // namespace Export
