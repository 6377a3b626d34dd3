#pragma once

#include <QString>

namespace Model {

/// What the system says about memory. The members are where it says so, other places in tests.
struct SystemMemory
{
    QString meminfo = QStringLiteral("/proc/meminfo");
    QString cgroup = QStringLiteral("/proc/self/cgroup"); ///< names the group of this process
    QString cgroups = QStringLiteral("/sys/fs/cgroup");   ///< the folder of all groups (version 2)
    qint64 addressSpace = addressSpaceLimit();            ///< bytes that this process may map

    /// The bytes that this process can have without driving others out: what is available without swapping, where the
    /// system tells, else all there is; less where this process or its group is limited to less.
    [[nodiscard]] qint64 usable() const;

    /// The limit on this process's address space, the largest number if there is none.
    [[nodiscard]] static qint64 addressSpaceLimit();
};

} // namespace Model
