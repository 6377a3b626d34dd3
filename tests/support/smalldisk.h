#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <cerrno>
#include <cstring>

#include <sched.h>
#include <sys/mount.h>

namespace TestSupport {

/// Gives this program mounts of its own, which end with it. \return false where it may not mount.
inline bool takePrivateMounts()
{
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// A small file system in memory over \a folder.
class SmallDisk
{
public:
    SmallDisk(const QString &folder, const char *options) : m_folder(QFile::encodeName(folder))
    {
        if (mount("small", m_folder.constData(), "tmpfs", 0, options) != 0)
            qFatal("mount: %s", strerror(errno));
    }
    ~SmallDisk() { umount2(m_folder.constData(), MNT_DETACH); }
    Q_DISABLE_COPY_MOVE(SmallDisk)

    void makeReadOnly() const
    {
        if (mount("small", m_folder.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
            qFatal("remount: %s", strerror(errno));
    }

private:
    QByteArray m_folder;
};

} // namespace TestSupport
