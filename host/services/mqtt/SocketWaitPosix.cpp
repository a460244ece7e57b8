#include "SocketWait.h"

#include <poll.h>

namespace host {

SocketReadiness waitForSocket(int socket, bool isToWrite, std::chrono::milliseconds time) {
    pollfd one{socket, static_cast<short>(isToWrite ? POLLIN | POLLOUT : POLLIN), 0};
    if (poll(&one, 1, static_cast<int>(time.count())) <= 0)
        return {};
    return {(one.revents & ~POLLOUT) != 0, (one.revents & POLLOUT) != 0};
}

} // namespace host
