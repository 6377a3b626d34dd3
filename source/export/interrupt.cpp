#include "export/interrupt.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <ctime>

namespace Export {

namespace {

using Milliseconds = long long;

constexpr std::array stoppingSignals = {SIGINT, SIGTERM, SIGHUP};
/// What comes sooner than this after the first signal belongs to it.
constexpr Milliseconds patience = 500;

/// When the first signal came; 0 before. A signal may arrive in any thread, and two in two of them.
std::atomic<Milliseconds> firstSignalAt = 0;
static_assert(std::atomic<Milliseconds>::is_always_lock_free, "a signal handler cannot wait");

/// The time since some moment before the process began; never 0. One of the few calls that a signal handler may make.
Milliseconds now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return Milliseconds(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000 + 1;
}

} // namespace

extern "C" {

static void onStoppingSignal(int number)
{
    const int error = errno;
    const Milliseconds time = now();
    Milliseconds first = 0;
    if (!firstSignalAt.compare_exchange_strong(first, time) && number == SIGINT && time - first >= patience) {
        std::signal(SIGINT, SIG_DFL);
        // Comes once this handler has returned.
        std::raise(SIGINT);
    }
    errno = error;
}

} // extern "C"

void watchForInterrupt()
{
    for (const int number : stoppingSignals) {
        struct sigaction current
        {
        };
        sigaction(number, nullptr, &current);
        if (current.sa_handler == SIG_IGN)
            continue;
        struct sigaction action
        {
        };
        action.sa_handler = onStoppingSignal;
        sigemptyset(&action.sa_mask);
        // What is being written is written to its end.
        action.sa_flags = SA_RESTART;
        sigaction(number, &action, nullptr);
    }
}

bool wasInterrupted()
{
    return firstSignalAt.load() != 0;
}

} // namespace Export
