#include "SilentLink.h"

#include <algorithm>
#include <thread>

namespace host {

SilentLink::SilentLink(LineType type) : linkKind(type == LineType::Serial ? serialKind : udpKind) {}

void SilentLink::reset() {
    clearInterrupt();
}

int SilentLink::open() {
    return noteOpened(0);
}

int SilentLink::send(const char* data, int length, int /*timeoutMs*/) {
    noteSent(data, length, Clock::now());
    return 0;
}

int SilentLink::receive(char* /*buffer*/, int /*capacity*/, int& received, int timeoutMs) {
    received = 0;
    if (!isInterrupted())
        std::this_thread::sleep_for(std::chrono::milliseconds(std::max(timeoutMs, 0)));
    return 0;
}

} // namespace host
