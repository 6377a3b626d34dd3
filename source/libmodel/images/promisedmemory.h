#pragma once

#include <cstddef>

namespace Model {

/// Memory that somebody is about to take who would not notice if there were none: a library that does not look at what
/// it is given. It is tried out beforehand, together with all that is promised to others at the moment. Usable from any
/// thread.
class PromisedMemory
{
public:
    /// \throws std::bad_alloc when \a bytes more are not to be had.
    explicit PromisedMemory(size_t bytes);
    ~PromisedMemory();

    PromisedMemory(const PromisedMemory &) = delete;
    PromisedMemory &operator=(const PromisedMemory &) = delete;

private:
    size_t m_bytes;
};

} // namespace Model
