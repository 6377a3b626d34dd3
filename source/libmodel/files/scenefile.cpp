#include "libmodel/files/scenefile.h"

#include "libmodel/files/scenewriter.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

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

/// Can \a fileName not have a point and six letters more, as the file has until it is complete?
bool isNameTooLong(const QString &fileName)
{
    constexpr qsizetype addedBytes = 7;
    const QFileInfo file(fileName);
    const QFileInfo target(file.isSymLink() ? file.symLinkTarget() : fileName);
    const long longest = pathconf(QFile::encodeName(target.path()).constData(), _PC_NAME_MAX);
    return longest > 0 && QFile::encodeName(target.fileName()).size() + addedBytes > longest;
}

/// Waits until all that was written to \a descriptor is on the disk, which is where some disks first tell that they are
/// full or broken. \return false, with errno set, if it is not.
bool reachesDisk(int descriptor)
{
    int result = 0;
    do {
        result = fsync(descriptor);
    } while (result != 0 && errno == EINTR);
    // Some file systems know no such thing.
    return result == 0 || errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;
}

/// Waits until the folder of \a fileName, too, tells on the disk that the file is a new one. Only what a power cut
/// finds depends on it, the old file or the new; where it cannot be had, saving has not failed.
void syncFolder(const QString &fileName)
{
    const QString folder = QFileInfo(fileName).canonicalPath();
    const int descriptor = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    reachesDisk(descriptor);
    close(descriptor);
}

} // namespace

SaveOutcome saveSceneFile(SceneWriter &writer, const QString &fileName)
{
    // Putting a file in the place of a pipe or a device would take it from whoever else uses it.
    const QFileInfo old(fileName);
    if (old.exists() && !old.isFile() && !old.isDir())
        return failure(SaveOutcome::Stage::File, translated("It is no ordinary file"));

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
    // commit() does not notice if what is still in its buffer, or in the system's, does not reach the disk.
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
