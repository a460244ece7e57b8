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

    // Both are called within add(), never after close(): `wakeReader` when there is something to take,
    // `askIfRefused` with the channel and RTU of a command that failed by its answer.
    FinishedCommands(std::function<void()> wakeReader, std::function<bool(int, int)> askIfRefused)
        : wake(std::move(wakeReader)), isRefused(std::move(askIfRefused)) {}

    void add(quint64 ticket, std::size_t index, Halvex::DriverErrorResult result, const Command& command) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (isClosed)
            return;
        // A channel error is no answer, so no refusal.
        const bool hasAnswer =
            result != Halvex::DriverErrorResult::Success && result != Halvex::DriverErrorResult::ChannelError;
        entries.push_back(
            {ticket, index, {result, hasAnswer && isRefused(command.channelId, command.rtuId), {}}});
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
    const std::function<bool(int, int)> isRefused;

    std::mutex mutex; // guards what follows
    bool isClosed = false;
    std::vector<Entry> entries;
};

} // namespace host
