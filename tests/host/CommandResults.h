#pragma once

#include "commands/Command.h"

#include <condition_variable>
#include <mutex>
#include <vector>

// Collects the results of commands, by the number that each was given. Any thread.
class CommandResults {
public:
    host::CommandDone of(int number) {
        return [this, number](const host::CommandEnd& end) {
            const std::lock_guard<std::mutex> lock(mutex);
            results.emplace_back(number, end.result);
            arrived.notify_all();
        };
    }

    using List = std::vector<std::pair<int, Halvex::DriverErrorResult>>;
    // In the order in which they were told.
    List await(std::size_t count) {
        std::unique_lock<std::mutex> lock(mutex);
        arrived.wait(lock, [&] { return results.size() >= count; });
        return results;
    }
    List all() { return await(0); }

private:
    std::mutex mutex;
    std::condition_variable arrived;
    List results;
};
