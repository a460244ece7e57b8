#pragma once

#include <HalvexDriverComponent/Halvex.h>

#include <functional>
#include <map>
#include <string>
#include <variant>

// What an operator asks of an RTU, before the driver sees it.
namespace host {

struct SwitchPoint {
    unsigned point = 0;
    bool on = false;
};

struct SetPoint {
    unsigned point = 0;
    double value = 0;
};

// By point number. Any mixture of registers, timers, counters and floats.
struct SetPoints {
    std::map<unsigned, double> values;
};

struct SynchroniseClock {};

using CommandAction = std::variant<SwitchPoint, SetPoint, SetPoints, SynchroniseClock>;

struct Command {
    int channelId = 0;
    int rtuId = 0;
    CommandAction action;
};

// How a command has ended.
struct CommandEnd {
    Halvex::DriverErrorResult result = Halvex::DriverErrorResult::Success;
    // By the driver, which may have sent it, or a part of it, even when it failed; false: nothing was sent.
    bool wasTaken = true;
};

// Told once. Called on a thread of the taker's: it must return soon and may submit the next command.
using CommandDone = std::function<void(const CommandEnd&)>;

// Where commands are given in. Any thread.
class CommandTaker {
public:
    virtual ~CommandTaker() = default;

    // Empty when the command is taken: then `done` is called exactly once. Otherwise why it is refused (no
    // such RTU or point, too many waiting): then `done` is never called.
    virtual std::string submit(const Command& command, CommandDone done) = 0;
};

} // namespace host
