#pragma once

#include <HalvexDriverComponent/Halvex.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <variant>

// What an operator asks of an RTU, before the driver sees it.
namespace host {

struct SwitchPoint {
    unsigned point = 0;
    bool on = false;
};

// Switches off what the on command of a pulse point has switched on: the driver's own release, before its
// time. An off command may do something else.
struct EndPulse {
    unsigned point = 0;
};

// Values are those that people give, with scale and offset; in what is asked of the driver they are raw
// numbers.
struct SetPoint {
    unsigned point = 0;
    double value = 0;
};

// By point number. Any mixture of registers, timers, counters and floats.
struct SetPoints {
    std::map<unsigned, double> values;
};

struct SynchroniseClock {};

using CommandAction = std::variant<SwitchPoint, EndPulse, SetPoint, SetPoints, SynchroniseClock>;

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
    // The controller understood it and refused it. Known at the moment of the end alone: later the RTU's last
    // request is another one.
    bool wasRefused = false;
    // Of one that was given up for want of a result: true as long as the driver still has it, and may still
    // send it. Null: it is over.
    std::shared_ptr<const std::atomic<bool>> stillHeld = nullptr;
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
