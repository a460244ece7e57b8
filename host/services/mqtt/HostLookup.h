#pragma once

#include <chrono>
#include <memory>
#include <string>

namespace host {

// Asks the system for a host's address on a thread of its own, since it may take as long as it likes and
// cannot be ended. Names alone; an address is its own answer. One thread.
class HostLookup {
public:
    // Throws ThreadRefused.
    explicit HostLookup(const std::string& host);

    bool isOver() const;
    // Once it is over: empty, or why there is none.
    std::string fault() const;

private:
    struct Answer;

    std::shared_ptr<Answer> answer; // shared with the thread, which may outlive this
};

} // namespace host
