#include "TappedLink.h"

#include <utility>

TappedLink::TappedLink(std::unique_ptr<CLink> tappedLink, Capture& notedIn)
    : link(std::move(tappedLink)), capture(notedIn) {}

void TappedLink::reset() {
    clearInterrupt();
    link->reset();
}

int TappedLink::send(const char* data, int length, int timeoutMs) {
    const int result = link->send(data, length, timeoutMs);
    if (result == 0)
        capture.add(Capture::Direction::ToController, QByteArray(data, length));
    return result;
}

int TappedLink::receive(char* buffer, int capacity, int& received, int timeoutMs) {
    const int result = link->receive(buffer, capacity, received, timeoutMs);
    if (result == 0 && received > 0)
        capture.add(Capture::Direction::FromController, QByteArray(buffer, received));
    return result;
}
