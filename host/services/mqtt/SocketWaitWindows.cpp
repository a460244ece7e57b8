#include "SocketWait.h"

#include <winsock2.h>

namespace host {

SocketReadiness waitForSocket(int socket, bool isToWrite, std::chrono::milliseconds time) {
    WSAPOLLFD one{};
    one.fd = static_cast<SOCKET>(socket);
    one.events = static_cast<SHORT>(isToWrite ? POLLRDNORM | POLLWRNORM : POLLRDNORM);
    if (WSAPoll(&one, 1, static_cast<INT>(time.count())) <= 0)
        return {};
    return {(one.revents & ~POLLWRNORM) != 0, (one.revents & POLLWRNORM) != 0};
}

} // namespace host
