#pragma once

#include "site/Finding.h"

#include <functional>
#include <map>
#include <mutex>
#include <streambuf>
#include <string>
#include <thread>

namespace host {

// What is written to it line by line, as events of a severity: that of the mark in front of the line, "<3>"
// for an error and "<4>" for a warning, and a note without one. Any thread; each one's lines stay whole.
class EventStream : public std::streambuf {
public:
    // Called on the thread that writes, one call at a time, with a line that is not empty.
    using Take = std::function<void(Severity, const std::string&)>;

    explicit EventStream(Take takeEvent);

protected:
    int_type overflow(int_type letter) override;
    std::streamsize xsputn(const char* text, std::streamsize length) override;

private:
    void append(char letter);
    void tell(const std::string& line);

    const Take take;
    std::mutex mutex; // guards what follows
    std::map<std::thread::id, std::string> begun;
};

} // namespace host
