#pragma once

#include <csignal>

namespace fldc::cli {

/// Opens those of the descriptors 0 to 2 that are closed on /dev/null. Called before anything else
/// opens a file: a serial line that became descriptor 1 would be sent every text of the program.
void openStandardDescriptors();

/// Holds back the signals that ask a program to end: until something can take them, and from the
/// moment on when its exit code stands. They stay held when the object goes.
class HeldSignals {
public:
    HeldSignals() { hold(); }

    void hold();
    /// Those that came meanwhile arrive now.
    void release();

private:
    sigset_t m_before{};
};

} // namespace fldc::cli
