#pragma once

#include <string>

#include <sys/socket.h>
#include <sys/un.h>

namespace host {

// The address of a local socket, as POSIX systems take it.
class LocalAddress {
public:
    explicit LocalAddress(const std::string& path) {
        address.sun_family = AF_UNIX;
        if (path.size() >= sizeof address.sun_path)
            longPath = "its path has " + std::to_string(path.size()) + " bytes, and a socket's may have " +
                       std::to_string(sizeof address.sun_path - 1);
        else
            path.copy(address.sun_path, sizeof address.sun_path - 1);
    }

    const std::string& fault() const { return longPath; }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }
    static socklen_t size() { return sizeof(sockaddr_un); }

private:
    sockaddr_un address{};
    std::string longPath;
};

} // namespace host
