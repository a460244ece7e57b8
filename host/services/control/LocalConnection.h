#pragma once

#include <string>

class QLocalSocket;

namespace host {

// How the attempt to connect to a local socket has ended.
struct Connecting {
    enum class End {
        Connected,
        NobodyThere,  // no such file, or nobody listens at it
        NotPermitted, // by the modes of the socket or of a folder on the way to it
        Failed,
    };
    End end = End::Failed;
    std::string fault; // when not connected
};

// Connects `socket` to whoever listens at `path`, who may take some seconds to accept.
Connecting connectTo(QLocalSocket& socket, const std::string& path);

} // namespace host
