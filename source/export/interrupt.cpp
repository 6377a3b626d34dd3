#include "export/interrupt.h"

#include <array>
#include <csignal>

namespace Export {

namespace {

constexpr std::array stoppingSignals = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t isInterrupted = 0;

} // namespace

extern "C" {

static void onStoppingSignal(int)
{
    isInterrupted = 1;
    for (const int number : stoppingSignals)
        std::signal(number, SIG_DFL);
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
    return isInterrupted != 0;
}

} // namespace Export
