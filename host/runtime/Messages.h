#pragma once

#include "site/Finding.h"

#include <QtGlobal>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace host {

struct Message {
    qint64 timeMs = 0; // since 1970
    std::string text;
    Severity severity = Severity::Note;
};

// "2026-11-22 10:30:00.125+01:00  channel 1 ...", where the host is.
std::string messageLine(const Message& message);

// What people are to be told, from whoever has something to say to whoever shows it. Any thread.
class Messages {
public:
    void tell(const std::string& text, Severity severity = Severity::Note);
    // What is to be shown since the last call; says how many were lost when they came faster than they were
    // taken.
    std::vector<Message> takeWithTimes();
    // The same without the times.
    std::vector<std::string> take();

    // Who keeps a record of all messages: called at once, on the thread that tells, and tells nothing itself.
    using Keeper = std::function<void(const Message&)>;
    // Null: nobody any more; a call in progress has ended.
    void setKeeper(Keeper messageKeeper);

private:
    std::mutex mutex; // guards what follows
    std::vector<Message> waiting;
    std::size_t lost = 0;
    Keeper keeper;
};

} // namespace host
