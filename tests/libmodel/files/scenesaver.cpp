// Saves two versions of a scene, each once, in a file of its own:           scenesaver FIRST SECOND
// Or over one file, by turns and without an end, noting how far it is:       scenesaver FILE NOTES endless
//
// Before the turns without an end begin, it saves both once and prints how many microseconds that took.
//
// The versions are the same bytes in each run. The notes are a SaverNotes (savernotes.h).

#include "savernotes.h"
#include "scenefixture.h"

#include "libmodel/files/scenefile.h"
#include "libmodel/files/scenewriter.h"
#include "libmodel/strokes/stroke.h"
#include "libmodel/strokes/strokedrawing.h"
#include "support/randomnumbers.h"
#include "support/watchedprogress.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

#include <array>
#include <cstdio>

using namespace Model;
using namespace TestSupport;

namespace {

/// A scene of \a numFrames drawings whose content follows from \a seed.
std::unique_ptr<Scene> makeVersion(int numFrames, quint64 seed)
{
    auto scene = emptyScene();
    scene->insertLayer(strokeLayer(*scene, 1, numFrames), 0);
    RandomNumbers random(seed);
    for (int frameId = 1; frameId <= numFrames; ++frameId)
        drawingAt(*scene, 0, frameId).addStroke(block(QRect(0, 0, 16, 8), random.between(1, 255)));
    return scene;
}

bool save(Scene &scene, const QString &fileName, SaverNotes &notes)
{
    WatchedProgress progress;
    notes.looks = 0;
    progress.atEachLook([&notes] { ++notes.looks; });
    SceneWriter writer(&scene, progress);
    ++notes.begun;
    const SaveOutcome outcome = saveSceneFile(writer, fileName);
    ++notes.ended;
    if (outcome.result == FileResult::Success)
        return true;
    std::fprintf(stderr, "scenesaver: %s: %s\n", qPrintable(fileName), qPrintable(outcome.reason));
    return false;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() < 2)
        return 2;
    const std::array versions{makeVersion(versionFrames[0], 1), makeVersion(versionFrames[1], 2)};
    SaverNotes ownNotes;
    if (arguments.size() == 2)
        return save(*versions[0], arguments[0], ownNotes) && save(*versions[1], arguments[1], ownNotes) ? 0 : 1;

    QFile file(arguments[1]);
    if (!file.open(QIODevice::ReadWrite) || !file.resize(sizeof(SaverNotes)))
        return 2;
    uchar *memory = file.map(0, sizeof(SaverNotes));
    if (!memory)
        return 2;
    auto *notes = new (memory) SaverNotes;
    QElapsedTimer timer;
    timer.start();
    if (!save(*versions[0], arguments[0], *notes) || !save(*versions[1], arguments[0], *notes))
        return 1;
    std::printf("%lld\n", static_cast<long long>(timer.nsecsElapsed() / 1000));
    std::fflush(stdout);
    for (size_t turn = 0; save(*versions[turn % 2], arguments[0], *notes); ++turn) {
    }
    return 1;
}
