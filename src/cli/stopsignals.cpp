#include "stopsignals.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

#include <unistd.h>

namespace
{

constexpr int signalStatus = 128; // what shells add to a signal's number

std::atomic<int> firstSignal{0};
static_assert(std::atomic<int>::is_always_lock_free, "the handler may do nothing else");

void handle(int number)
{
    int none = 0;
    if (!firstSignal.compare_exchange_strong(none, number))
        _exit(signalStatus + number);
}

void install(int number, void (*handler)(int))
{
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler == SIG_IGN)
        return;
    action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}

} // namespace

StopSignals::StopSignals()
{
    firstSignal = 0;
    install(SIGINT, handle);
    install(SIGTERM, handle);
    install(SIGPIPE, SIG_IGN);
}

StopSignals::~StopSignals()
{
    install(SIGINT, SIG_DFL);
    install(SIGTERM, SIG_DFL);
}

int StopSignals::received()
{
    return firstSignal;
}

void endByBrokenPipe()
{
    std::signal(SIGPIPE, SIG_DFL);
    std::raise(SIGPIPE);
    _exit(signalStatus + SIGPIPE); // where it is blocked
}
