#include "export/scenesource.h"

#include "export/console.h"
#include "export/terminalprogress.h"
#include "libmodel/files/scenereader.h"
#include "libmodel/scene/scene.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace Export {

namespace {

/// The reader's two lines, "what." and "Line 3, column 7", as one: "what, line 3, column 7".
QString inOneLine(const QString &readerError)
{
    const qsizetype lineBreak = readerError.lastIndexOf(u'\n');
    QString what = readerError.left(lineBreak).simplified();
    if (what.endsWith(u'.'))
        what.chop(1);
    QString where = readerError.mid(lineBreak + 1);
    where[0] = where.at(0).toLower();
    return what + QStringLiteral(", ") + where;
}

/// Opens \a file for reading. \return what is wrong with it, empty if nothing is.
QString openForReading(QFile &file)
{
    const QFileInfo info(file);
    if (file.fileName().isEmpty())
        return QStringLiteral("a file name cannot be empty");
    if (info.isDir())
        return QStringLiteral("is a folder");
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    if (char first = 0; file.peek(&first, 1) == 1)
        return {};
    return file.error() == QFile::NoError ? QStringLiteral("is empty") : file.errorString();
}

/// Tells of \a count damages, of which \a damages are the first.
void warnOfDamages(const QStringList &damages, qsizetype count, const QString &fileName, Console &console)
{
    constexpr qsizetype mostListed = 20;
    for (const QString &damage : damages.first(std::min(damages.size(), mostListed)))
        console.warning(fileName, damage);
    if (count > mostListed)
        console.warning(fileName, QStringLiteral("and %1 more").arg(count - mostListed));
}

SceneSource failed(ExitCode outcome)
{
    SceneSource source;
    source.outcome = outcome;
    return source;
}

} // namespace

SceneSource openScene(const QString &fileName, Console &console)
{
    QFile file(fileName);
    if (const QString error = openForReading(file); !error.isEmpty()) {
        console.message(fileName, error);
        return failed(ExitCode::Error);
    }

    TerminalProgress progress(console, QStringLiteral("Reading"));
    auto scene = std::make_unique<Model::Scene>();
    Model::SceneReader reader(scene.get(), progress);
    switch (reader.read(&file)) {
    case Model::FileResult::Error:
        // A disk that fails in the middle looks to the reader like a file that ends there.
        console.message(fileName,
                        file.error() == QFile::NoError ? inOneLine(reader.errorString()) : file.errorString());
        return failed(ExitCode::Error);
    case Model::FileResult::Cancelled:
        console.message(fileName, QStringLiteral("cancelled"));
        return failed(ExitCode::Cancelled);
    case Model::FileResult::Success:
        break;
    }
    scene->setFilename(fileName);
    SceneSource source;
    source.scene = std::move(scene);
    source.damages = reader.damages();
    source.damageCount = reader.damageCount();
    warnOfDamages(source.damages, source.damageCount, fileName, console);
    source.lacksRenderer = reader.lacksRenderer();
    return source;
}

} // namespace Export
