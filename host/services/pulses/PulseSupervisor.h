#pragma once

#include "commands/Command.h"
#include "services/Service.h"
#include "values/ValueStore.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <thread>

namespace host {

// Sees to it that pulses end. The driver releases a pulse output by a request that it drops when one like it
// waits already, so an output may stay on. Commands go through here on their way to `taker`; the values come
// from the store. When a pulse point that was commanded on still reads on after its width and a further
// poll, it is commanded off, again and again until it reads off or is commanded on anew.
//
// A command that failed may have reached the controller all the same: its answer was lost, or the line's
// device failed before it came. So it counts, unless the driver never took it.
//
// Only points that were commanded on are looked at, by a thread of its own, which sleeps while there is none.
// Threads: submit() any, before start() too. Results of `taker` may come as long as this lives: end it first.
// Site and store outlive it.
class PulseSupervisor : public CommandTaker, public Service {
public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;
    // Told what an operator should know. Any thread; must return soon.
    using Tell = std::function<void(const std::string&)>;

    PulseSupervisor(const ValueStore& values, CommandTaker& commandTaker, Tell tellOperator,
                    Now clock = Clock::now);
    ~PulseSupervisor() override;

    std::string submit(const Command& command, CommandDone done) override;

    std::string name() const override { return "pulses"; }
    std::string start(RunningSite& runningSite) override;
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

    // What the thread does every now and then.
    void look();

private:
    // A point that was commanded on.
    struct Pulse {
        PointIndex index = 0;
        PointRef ref;
        unsigned commandsOnTheWay = 0; // on commands without a result
        Clock::time_point widthIsOver{};
        bool wasOverBefore = false; // the width, when the point was looked at before
        bool hasBeenPolled = false; // since the width was over
        std::uint32_t readings = 0; // of the point, when it was looked at
        bool isBeingSwitchedOff = false;
        unsigned tries = 0; // to switch it off
    };

    // The pulse that a command switches on; null where it is none that can be supervised.
    Pulse* pulseOf(const Command& command);
    void noteEnd(Pulse& pulse, const CommandEnd& end);
    // Whether its pulse is over, so that there is nothing more to see to.
    bool lookAt(Pulse& pulse);
    void switchOff(Pulse& pulse);
    void noteSwitchedOff(Pulse& pulse, Halvex::DriverErrorResult result);
    void run();

    const ValueStore& store;
    CommandTaker& taker;
    const Tell tell;
    const Now now;

    // Guards what follows. Held while an off command is given in, so that it cannot come behind an on command
    // that was given in later.
    mutable std::mutex mutex;
    std::condition_variable changed;
    bool isStopping = false;
    std::map<PointIndex, Pulse> pulses; // of all points that were ever commanded on
    std::set<Pulse*> watched;
    std::uint64_t switchedOff = 0;

    std::thread thread; // last: it works on all of the above
};

} // namespace host
