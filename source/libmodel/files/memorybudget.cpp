#include "libmodel/files/memorybudget.h"

#include <unistd.h>

namespace Model {

namespace {

qint64 physicalMemory()
{
    constexpr qint64 assumed = qint64(4) << 30; // where the system does not tell
    const qint64 pages = sysconf(_SC_PHYS_PAGES);
    const qint64 pageSize = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? pages * pageSize : assumed;
}

} // namespace

MemoryBudget::MemoryBudget() : m_bytesLeft(physicalMemory() / 4 * 3)
{
}

MemoryBudget::MemoryBudget(qint64 bytes) : m_bytesLeft(bytes)
{
}

bool MemoryBudget::take(qint64 bytes)
{
    if (bytes > m_bytesLeft)
        return false;
    m_bytesLeft -= bytes;
    return true;
}

} // namespace Model
