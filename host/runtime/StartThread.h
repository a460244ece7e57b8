#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

namespace host {

// The system has no thread to give: what it was for, and what to do about it.
class ThreadRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// `purpose` is what the thread is for: "the console". Throws ThreadRefused.
std::thread startThread(const std::string& purpose, std::function<void()> work);
// What a message says of it.
std::string threadRefusal(const std::string& purpose);

} // namespace host
