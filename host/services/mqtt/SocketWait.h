#pragma once

#include <chrono>

namespace host {

struct SocketReadiness {
    bool canRead = false; // or has failed
    bool canWrite = false;
};

// Waits for at most so long. Its number may be as high as the system gives them.
SocketReadiness waitForSocket(int socket, bool isToWrite, std::chrono::milliseconds time);

} // namespace host
