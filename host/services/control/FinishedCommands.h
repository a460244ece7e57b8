#pragma once

#include "Reply.h"
#include "commands/Command.h"

#include <functional>
#include <mutex>
#include <vector>

namespace host {

// Carries the ends of commands from the threads where they happen to the one that answers for them. Lives as
// long as the last command; any thread.
class FinishedCommands {
public:
    struct Entry {
        quint64 ticket = 0;    // of the request
        std::size_t index = 0; // of the command in it
        CommandOutcome outcome;
    };

    // Calls `wakeReader` within add(), never after close(), when there is something to take.
    explicit FinishedCommands(std::function<void()> wakeReader) : wake(std::move(wakeReader)) {}

    void add(quint64 ticket, std::size_t index, const CommandEnd& end) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (isClosed)
            return;
        entries.push_back({ticket, index, {end.result, end.wasRefused, {}}});
        if (entries.size() == 1)
            wake();
    }

    std::vector<Entry> take() {
        const std::lock_guard<std::mutex> lock(mutex);
        std::vector<Entry> taken;
        taken.swap(entries);
        return taken;
    }

    void close() {
        const std::lock_guard<std::mutex> lock(mutex);
        isClosed = true;
    }

private:
    const std::function<void()> wake;

    std::mutex mutex; // guards what follows
    bool isClosed = false;
    std::vector<Entry> entries;
};

} // namespace host
