#pragma once

#include "site/Finding.h"

#include <memory>
#include <string>

namespace host {

// The event log of Windows. Any thread.
class EventLog {
public:
    explicit EventLog(const std::string& source);
    EventLog(const EventLog&) = delete;
    EventLog& operator=(const EventLog&) = delete;
    ~EventLog();

    // What the log does not take is lost.
    void report(Severity severity, const std::string& text);

    // Makes the source known to the system, with `program` as the file in which it finds the messages' texts.
    // Empty, or why it is not known.
    static std::string addSource(const std::string& source, const std::string& program);
    static void removeSource(const std::string& source);

private:
    void* const log;
};

} // namespace host
