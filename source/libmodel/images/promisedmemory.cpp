#include "libmodel/images/promisedmemory.h"

#include <mutex>
#include <new>
#include <sys/mman.h>

namespace Model {

namespace {

/// What may be taken meanwhile by those who ask nobody.
constexpr size_t margin = size_t(16) << 20;

std::mutex mutex;
size_t promised = 0; // guarded by the mutex

} // namespace

PromisedMemory::PromisedMemory(size_t bytes) : m_bytes(bytes)
{
    const std::lock_guard lock(mutex);
    // Straight from the system: of memory that is given back unused a compiler makes nothing at all.
    const size_t tried = promised + bytes + margin;
    void *memory = mmap(nullptr, tried, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    munmap(memory, tried);
    promised += bytes;
}

PromisedMemory::~PromisedMemory()
{
    const std::lock_guard lock(mutex);
    promised -= m_bytes;
}

} // namespace Model
