#include "libmodel/files/memorybudget.h"

#include "libmodel/files/systemmemory.h"

namespace Model {

// The rest is for what no budget counts: strokes, texts, and the work on one drawing.
MemoryBudget::MemoryBudget() : m_bytesLeft(SystemMemory().usable() / 4 * 3)
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
