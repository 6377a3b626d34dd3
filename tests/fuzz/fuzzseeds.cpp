#include "fuzz/fuzzharness.h"
#include "fuzz/seedblocks.h"
#include "fuzz/seedclips.h"
#include "fuzz/seedscenes.h"

#include <QDir>
#include <QFile>

#include <cstdio>
#include <vector>

/// Writes the inputs that the fuzzers begin with, a folder for each target, and takes away what stood there.
///
///     fuzzseeds FOLDER

namespace {

bool writeSeeds(const QString &folder, const std::vector<QByteArray> &seeds)
{
    QDir dir(folder);
    if (!dir.removeRecursively() || !dir.mkpath(folder))
        return false;
    int number = 0;
    for (const QByteArray &seed : seeds) {
        QFile file(dir.filePath(QStringLiteral("seed-%1").arg(++number, 2, 10, QLatin1Char('0'))));
        if (!file.open(QIODevice::WriteOnly) || file.write(seed) != seed.size())
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzzseeds FOLDER\n");
        return 2;
    }
    TestSupport::startQt();
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const bool isDone = writeSeeds(folder + QStringLiteral("/fuzz_scenereader"), TestSupport::sceneFiles()) &&
                        writeSeeds(folder + QStringLiteral("/fuzz_strokes"), TestSupport::strokeBlocks()) &&
                        writeSeeds(folder + QStringLiteral("/fuzz_rleimage"), TestSupport::runLengthBlocks()) &&
                        writeSeeds(folder + QStringLiteral("/fuzz_drawingclip"), TestSupport::drawingClips());
    if (!isDone)
        std::fprintf(stderr, "fuzzseeds: cannot write into %s\n", argv[1]);
    return isDone ? 0 : 1;
}
