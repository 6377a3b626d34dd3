#include "fuzzharness.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cstdio>

/// The main() of a fuzz target without libFuzzer: tries the files that are named, and all files of the folders that are
/// named. A folder that is not there has no files. Fails where there is nothing to try.
///
///     fuzz_target FILE|FOLDER...

namespace {

QStringList filesOf(const QString &path)
{
    if (QFileInfo(path).isFile())
        return {path};
    QStringList files;
    const QDir folder(path);
    for (const QString &name : folder.entryList(QDir::Files, QDir::Name))
        files.append(folder.filePath(name));
    return files;
}

} // namespace

int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    int tried = 0;
    for (int i = 1; i < argc; ++i) {
        for (const QString &name : filesOf(QString::fromLocal8Bit(argv[i]))) {
            QFile file(name);
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "Cannot read %s: %s\n", qPrintable(name), qPrintable(file.errorString()));
                return 1;
            }
            std::printf("%s\n", qPrintable(name));
            std::fflush(stdout); // so that the last name is the one that failed
            // A copy of the exact size, so that reading past its end is noticed.
            const QByteArray content = file.readAll();
            const std::vector<std::uint8_t> input(content.cbegin(), content.cend());
            LLVMFuzzerTestOneInput(input.data(), input.size());
            ++tried;
        }
    }
    std::printf("%d inputs replayed\n", tried);
    return tried > 0 ? 0 : 1;
}
