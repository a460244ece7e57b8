#pragma once

#include <chrono>
#include <string>
#include <vector>

// The supervisor's end of $NOTIFY_SOCKET. One thread.
class SupervisorPosix {
public:
    // The socket is a file in `folder`, or has a name without a file.
    explicit SupervisorPosix(const std::string& folder, bool isWithoutFile = false);
    SupervisorPosix(const SupervisorPosix&) = delete;
    SupervisorPosix& operator=(const SupervisorPosix&) = delete;
    ~SupervisorPosix();

    // As the environment names it.
    std::string name() const { return socketName; }
    // Whether the line comes, or has come since the last one that was waited for or forgotten.
    bool hears(const std::string& line);
    // Whether it is among what has come and was not yet waited for.
    bool hasHeard(const std::string& line) const;
    void listenFor(std::chrono::milliseconds time);
    void forget();

private:
    bool receive(std::chrono::milliseconds patience);

    const std::string socketName;
    const int descriptor;
    std::vector<std::string> heard;
};
