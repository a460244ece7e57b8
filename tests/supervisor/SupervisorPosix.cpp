#include "SupervisorPosix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <poll.h>
#include <sstream>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience{60}; // only a failure takes it

std::string nameIn(const std::string& folder, bool isWithoutFile) {
    return (isWithoutFile ? "@" : "") + folder + "/notify";
}

} // namespace

SupervisorPosix::SupervisorPosix(const std::string& folder, bool isWithoutFile)
    : socketName(nameIn(folder, isWithoutFile)), descriptor(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, socketName.data(), socketName.size());
    if (isWithoutFile)
        address.sun_path[0] = '\0';
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + socketName.size());
    EXPECT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), length), 0);
}

SupervisorPosix::~SupervisorPosix() {
    close(descriptor);
}

bool SupervisorPosix::receive(std::chrono::milliseconds time) {
    pollfd wait{descriptor, POLLIN, 0};
    if (poll(&wait, 1, static_cast<int>(time.count())) <= 0)
        return false;
    char bytes[4096];
    const ssize_t count = recv(descriptor, bytes, sizeof bytes, 0);
    std::istringstream lines(std::string(bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0))));
    for (std::string line; std::getline(lines, line);)
        heard.push_back(line);
    return true;
}

bool SupervisorPosix::hears(const std::string& line) {
    const auto deadline = Clock::now() + patience;
    for (;;) {
        const auto found = std::find(heard.begin(), heard.end(), line);
        if (found != heard.end()) {
            heard.erase(found);
            return true;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || !receive(left))
            return false;
    }
}

bool SupervisorPosix::hasHeard(const std::string& line) const {
    return std::find(heard.begin(), heard.end(), line) != heard.end();
}

void SupervisorPosix::listenFor(std::chrono::milliseconds time) {
    for (const auto deadline = Clock::now() + time; Clock::now() < deadline;)
        receive(std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()));
}

void SupervisorPosix::forget() {
    while (receive(std::chrono::milliseconds(0))) {
    }
    heard.clear();
}
