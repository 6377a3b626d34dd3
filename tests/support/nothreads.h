#pragma once

#include <QtGlobal>

#include <cstddef>
#include <pthread.h>

namespace TestSupport {

/// Keeps the system from making threads for as long as it lives: no stack of the size that they are to have finds a
/// place.
class NoThreads
{
public:
    NoThreads()
    {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, size_t(1) << 50);
        m_isSet = pthread_setattr_default_np(&attributes) == 0;
        pthread_attr_destroy(&attributes);
    }
    ~NoThreads()
    {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }
    Q_DISABLE_COPY_MOVE(NoThreads)

    [[nodiscard]] bool isSet() const { return m_isSet; }

private:
    pthread_attr_t m_before;
    bool m_isSet = false;
};

} // namespace TestSupport
