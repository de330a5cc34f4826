#include "Signals.h"

#include <csignal>
#include <initializer_list>
#include <sys/signalfd.h>

namespace simulator {

int takeOverSignals()
{
    sigset_t handled;
    sigemptyset(&handled);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGUSR1, SIGUSR2})
        sigaddset(&handled, signal);
    sigprocmask(SIG_BLOCK, &handled, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return ::signalfd(-1, &handled, SFD_NONBLOCK | SFD_CLOEXEC);
}

} // namespace simulator
