#include "libmodel/files/scenefile.h"

#include "libmodel/base/diskfile.h"
#include "libmodel/files/scenewriter.h"

#include <QCoreApplication>
#include <QSaveFile>

#include <cerrno>

namespace Model {

namespace {

QString translated(const char *text)
{
    return QCoreApplication::translate("Model::SceneFile", text);
}

SaveOutcome failure(SaveOutcome::Stage stage, const QString &reason)
{
    return {FileResult::Error, stage, reason};
}

/// Where there is too little room, \a file takes a part first and says nothing. The rest makes it say why.
QString reasonOf(QSaveFile &file)
{
    file.flush();
    return file.errorString();
}

} // namespace

SaveOutcome saveSceneFile(SceneWriter &writer, const QString &fileName)
{
    // Putting a file in the place of a pipe or a device would take it from whoever else uses it.
    if (isPipeOrDevice(fileName))
        return failure(SaveOutcome::Stage::File, translated("It is no ordinary file"));

    if (const QString refusal = writer.refusal(); !refusal.isEmpty())
        return failure(SaveOutcome::Stage::File, refusal);
    if (isNameTooLong(fileName))
        return failure(SaveOutcome::Stage::File, qt_error_string(ENAMETOOLONG));

    QSaveFile file(fileName);
    file.setDirectWriteFallback(false);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return failure(SaveOutcome::Stage::File, file.errorString());

    const FileResult result = writer.write(&file);
    if (result == FileResult::Cancelled) {
        file.cancelWriting();
        return {FileResult::Cancelled, {}, {}};
    }
    // commit() does not notice if what is still in its buffer, or in the system's, does not reach the disk. A flush of
    // which only a part was taken fails too; the next one tells whether there is room for the rest.
    if (result == FileResult::Error || (!file.flush() && !file.flush())) {
        const QString reason = reasonOf(file);
        file.cancelWriting();
        return failure(result == FileResult::Error ? SaveOutcome::Stage::Document : SaveOutcome::Stage::File, reason);
    }
    if (!reachesDisk(file.handle())) {
        const QString reason = qt_error_string(errno);
        file.cancelWriting();
        return failure(SaveOutcome::Stage::File, reason);
    }
    if (!file.commit())
        return failure(SaveOutcome::Stage::File, file.errorString());
    syncFolder(fileName);
    return {};
}

} // namespace Model
