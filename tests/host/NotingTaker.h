#pragma once

#include "commands/Command.h"

#include <deque>
#include <string>
#include <vector>

// Takes commands and ends them when the test says so. One thread.
class NotingTaker : public host::CommandTaker {
public:
    std::string submit(const host::Command& command, host::CommandDone done) override {
        if (!refusal.empty())
            return refusal;
        texts.push_back(text(command));
        waiting.push_back(std::move(done));
        return {};
    }

    // Ends the oldest command.
    void end(Halvex::DriverErrorResult result) { end(host::CommandEnd{result}); }
    void end(const host::CommandEnd& commandEnd) {
        const host::CommandDone done = std::move(waiting.front());
        waiting.pop_front();
        done(commandEnd);
    }

    std::string refusal;            // of all commands, unless it is empty
    std::vector<std::string> texts; // "4/7 switch 1 on", "4/7 clock"

private:
    static std::string text(const host::Command& command) {
        std::string text = std::to_string(command.channelId) + "/" + std::to_string(command.rtuId);
        if (const auto* const one = std::get_if<host::SwitchPoint>(&command.action))
            return text + " switch " + std::to_string(one->point) + (one->on ? " on" : " off");
        if (const auto* const ending = std::get_if<host::EndPulse>(&command.action))
            return text + " end " + std::to_string(ending->point);
        return text + (std::holds_alternative<host::SynchroniseClock>(command.action) ? " clock" : " set");
    }

    std::deque<host::CommandDone> waiting;
};
