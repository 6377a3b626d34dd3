#include "libmodel/files/systemmemory.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <optional>

#include <sys/resource.h>
#include <unistd.h>

namespace Model {

namespace {

constexpr qint64 unlimited = std::numeric_limits<qint64>::max();

/// These files are made when they are read, and tell no size beforehand.
QByteArray contentOf(const QString &path)
{
    constexpr qint64 longest = 64 * 1024;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(longest) : QByteArray();
}

/// What a line like "MemAvailable:    1234 kB" says, in bytes.
std::optional<qint64> availableIn(const QByteArray &meminfo)
{
    const QByteArrayList lines = meminfo.split('\n');
    for (const QByteArray &line : lines) {
        const QByteArrayList words = line.simplified().split(' ');
        if (words.size() != 3 || words.at(0) != "MemAvailable:" || words.at(2) != "kB")
            continue;
        bool isNumber = false;
        const qint64 kibibytes = words.at(1).toLongLong(&isNumber);
        if (isNumber && kibibytes > 0 && kibibytes < unlimited / 1024)
            return kibibytes * 1024;
    }
    return std::nullopt;
}

qint64 physicalMemory()
{
    constexpr qint64 assumed = qint64(4) << 30; // where the system does not tell
    const qint64 pages = sysconf(_SC_PHYS_PAGES);
    const qint64 pageSize = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? pages * pageSize : assumed;
}

/// The limit of one group: a number of bytes, or "max".
qint64 groupLimit(const QString &folder)
{
    bool isNumber = false;
    const qint64 bytes = contentOf(folder + "/memory.max").trimmed().toLongLong(&isNumber);
    return isNumber && bytes > 0 ? bytes : unlimited;
}

/// The least limit of the group that the line "0::/path" of \a cgroup names and those around it.
qint64 limitOfGroups(const QByteArray &cgroup, const QString &groups)
{
    qint64 limit = groupLimit(groups);
    const QByteArrayList lines = cgroup.split('\n');
    for (const QByteArray &line : lines) {
        if (!line.startsWith("0::/"))
            continue;
        QString path = QDir::cleanPath(QString::fromUtf8(line.mid(3)));
        while (path.startsWith('/') && path.size() > 1) {
            limit = std::min(limit, groupLimit(groups + path));
            path = QFileInfo(path).path();
        }
    }
    return limit;
}

} // namespace

qint64 SystemMemory::usable() const
{
    const qint64 available = availableIn(contentOf(meminfo)).value_or(physicalMemory());
    return std::min({available, addressSpace, limitOfGroups(contentOf(cgroup), cgroups)});
}

qint64 SystemMemory::addressSpaceLimit()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY || limit.rlim_cur > rlim_t(unlimited))
        return unlimited;
    return static_cast<qint64>(limit.rlim_cur);
}

} // namespace Model
