#include "libmodel/base/diskfile.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Model {

bool writeAll(QIODevice &device, const char *bytes, qint64 size)
{
    for (qint64 written = 0; written < size;) {
        const qint64 count = device.write(bytes + written, size - written);
        if (count <= 0)
            return false;
        written += count;
    }
    return true;
}

bool reachesDisk(int descriptor)
{
    int result = 0;
    do {
        result = fsync(descriptor);
    } while (result != 0 && errno == EINTR);
    // Some file systems know no such thing.
    return result == 0 || errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;
}

void syncFolder(const QString &fileName)
{
    const QString folder = QFileInfo(fileName).canonicalPath();
    const int descriptor = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    static_cast<void>(reachesDisk(descriptor));
    close(descriptor);
}

bool isNameTooLong(const QString &fileName)
{
    constexpr qsizetype addedBytes = 7;
    const QFileInfo file(fileName);
    const QFileInfo target(file.isSymLink() ? file.symLinkTarget() : fileName);
    const long longest = pathconf(QFile::encodeName(target.path()).constData(), _PC_NAME_MAX);
    return longest > 0 && QFile::encodeName(target.fileName()).size() + addedBytes > longest;
}

bool isPipeOrDevice(const QString &fileName)
{
    const QFileInfo file(fileName);
    return file.exists() && !file.isFile() && !file.isDir();
}

} // namespace Model
