#include "fldc/process/StandardDescriptors.h"

#include <cerrno>
#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace fldc::cli {

void openStandardDescriptors()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        // The system gives the lowest free number, which is this one: those below are open by now.
        if (::fcntl(descriptor, F_GETFD) == -1 && errno == EBADF)
            (void)::open("/dev/null", O_RDWR);
    }
}

void HeldSignals::hold()
{
    sigset_t signals{};
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, signal);
    ::sigprocmask(SIG_BLOCK, &signals, &m_before);
}

void HeldSignals::release()
{
    ::sigprocmask(SIG_SETMASK, &m_before, nullptr);
}

} // namespace fldc::cli
