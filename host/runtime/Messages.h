#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace host {

// What people are to be told, from whoever has something to say to whoever shows it. Any thread.
class Messages {
public:
    void tell(const std::string& message);
    // What is to be shown since the last call; says how many were lost when they came faster than they were
    // taken.
    std::vector<std::string> take();

private:
    std::mutex mutex; // guards what follows
    std::vector<std::string> waiting;
    std::size_t lost = 0;
};

} // namespace host
