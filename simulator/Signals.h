// The signals of the process as something to poll for.
#pragma once

namespace simulator {

/// A descriptor that SIGINT, SIGTERM, SIGHUP, SIGUSR1 and SIGUSR2 arrive at; the caller closes it.
/// A reader of the events that leaves does not end the process.
int takeOverSignals();

} // namespace simulator
