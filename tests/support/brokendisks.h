#pragma once

#include <QFile>
#include <QTemporaryDir>
#include <QtGlobal>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/resource.h>
#include <unistd.h>

namespace TestSupport {

/// Keeps the process from writing files longer than a given number of bytes, for as long as it lives: to a program it
/// is as if the disk were full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes = 64)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    rlimit m_before = {};
};

/// A folder that cannot be written to for as long as this lives, whoever runs the test: the superuser, who may write
/// anywhere, is somebody else meanwhile.
class ReadOnlyFolder
{
public:
    ReadOnlyFolder() : m_user(geteuid())
    {
        QFile::setPermissions(m_folder.path(), QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther);
        if (m_user == 0)
            m_changed = seteuid(nobody) == 0;
    }
    ~ReadOnlyFolder()
    {
        if (m_changed && seteuid(m_user) != 0)
            qFatal("cannot become the user of before");
        QFile::setPermissions(m_folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    Q_DISABLE_COPY_MOVE(ReadOnlyFolder)

    [[nodiscard]] QString path() const { return m_folder.path(); }
    [[nodiscard]] QString filePath(const QString &name) const { return m_folder.filePath(name); }

private:
    static constexpr uid_t nobody = 65534;

    QTemporaryDir m_folder;
    uid_t m_user;
    bool m_changed = false;
};

/// Permissions bind this program while this lives, even if it was started by the one whom they do not bind, who gives
/// \a folder away for it.
class OrdinaryUser
{
public:
    explicit OrdinaryUser(const QString &folder) : m_wasRoot(geteuid() == 0)
    {
        if (m_wasRoot &&
            (chown(QFile::encodeName(folder).constData(), nobody, nobody) != 0 || setresuid(nobody, nobody, 0) != 0))
            qFatal("setresuid: %s", strerror(errno));
    }
    ~OrdinaryUser()
    {
        if (m_wasRoot && setresuid(0, 0, 0) != 0)
            qFatal("setresuid: %s", strerror(errno));
    }
    Q_DISABLE_COPY_MOVE(OrdinaryUser)

private:
    static constexpr uid_t nobody = 65534;
    bool m_wasRoot;
};

} // namespace TestSupport
