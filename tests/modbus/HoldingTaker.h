#pragma once

#include "Eventually.h"
#include "commands/Command.h"

#include <deque>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

// Takes commands, and ends them at once or, while they are held, when the test says so. Any thread.
class HoldingTaker : public host::CommandTaker {
public:
    std::string submit(const host::Command& command, host::CommandDone done) override {
        host::CommandEnd end;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (taken.size() >= mostTaken)
                return "too many wait";
            taken.push_back(text(command));
            if (isHolding) {
                held.push_back(std::move(done));
                return {};
            }
            end = nextEnd;
        }
        done(end);
        return {};
    }

    void hold() {
        const std::lock_guard<std::mutex> lock(mutex);
        isHolding = true;
    }
    // How commands end that are not held.
    void endWith(Halvex::DriverErrorResult result, bool wasRefused = false) {
        const std::lock_guard<std::mutex> lock(mutex);
        nextEnd.result = result;
        nextEnd.wasRefused = wasRefused;
    }
    // Refuses those that are more.
    void takeAtMost(std::size_t count) {
        const std::lock_guard<std::mutex> lock(mutex);
        mostTaken = count;
    }
    // Ends the oldest command, once there is one.
    void end(const host::CommandEnd& commandEnd) {
        host::CommandDone done;
        eventually([&] {
            const std::lock_guard<std::mutex> lock(mutex);
            if (held.empty())
                return false;
            done = std::move(held.front());
            held.pop_front();
            return true;
        });
        done(commandEnd);
    }

    // "4/7 2 on", "4/7 3=1.5 4=-2"
    std::vector<std::string> commands() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return taken;
    }

private:
    static std::string text(const host::Command& command) {
        std::ostringstream text;
        text << command.channelId << '/' << command.rtuId;
        if (const auto* const one = std::get_if<host::SwitchPoint>(&command.action))
            text << ' ' << one->point << (one->on ? " on" : " off");
        else if (const auto* const list = std::get_if<host::SetPoints>(&command.action))
            for (const auto& [point, value] : list->values)
                text << ' ' << point << '=' << value;
        return text.str();
    }

    mutable std::mutex mutex; // guards what follows
    bool isHolding = false;
    host::CommandEnd nextEnd;
    std::size_t mostTaken = 1'000'000;
    std::vector<std::string> taken;
    std::deque<host::CommandDone> held;
};
