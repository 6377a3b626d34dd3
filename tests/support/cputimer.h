#pragma once

#include <QtGlobal>

#include <ctime>

namespace TestSupport {

/// The processor time that this process has used up, in all its threads, since the timer was made. Unlike the time on
/// the wall it does not grow because other programs run.
class CpuTimer
{
public:
    [[nodiscard]] qint64 milliseconds() const { return now() - m_start; }

private:
    static qint64 now()
    {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000;
    }

    qint64 m_start = now();
};

} // namespace TestSupport
