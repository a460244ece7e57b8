#include "StopSignal.h"

#include <csignal>

namespace host::stopsignal {

namespace {

void handle(int signal) {
    note();
    std::signal(signal, handle); // some systems take the handler out with each signal
}

} // namespace

void install() {
    std::signal(SIGINT, handle);
    std::signal(SIGTERM, handle);
    // nohup and its like have it ignored so that the program goes on without its terminal.
    if (std::signal(SIGHUP, handle) == SIG_IGN)
        std::signal(SIGHUP, SIG_IGN);
}

} // namespace host::stopsignal
