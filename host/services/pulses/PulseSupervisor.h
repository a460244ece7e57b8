#pragma once

#include "PulseMemory.h"
#include "commands/Command.h"
#include "services/Service.h"
#include "values/ValueStore.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>

namespace host {

// Sees to it that pulses end, also when the host does. Commands go through here on their way to `taker`; the
// values come from the store.
//
// - While the host runs the driver releases a pulse output, by a request that it drops when one like it waits
//   already, so an output may stay on. When a pulse point that was commanded on still reads on after its
//   width and a further poll, it is commanded off, again and again until it reads off or is commanded on
//   anew.
// - The driver's release ends with the host. So a stop ends each pulse that runs by a command of its own, and
//   tells which outputs it had to leave on.
// - A host that is killed does neither. What runs is in the memory before its on command goes out and until
// it
//   is over; the next host ends what it finds there, where the site still has the same element.
//
// A command that failed may have reached the controller all the same: its answer was lost, or the line's
// device failed before it came. So it counts, unless the driver never took it. One that the driver still
// holds may be sent any time: its pulse is not over before.
//
// States: made, running (after start), ending (after beginEnding: takes no more commands), stopped. Threads:
// submit() any, before start() too; beginEnding(), haveEnded() and stillOn() the main thread. Results of
// `taker` may come as long as this lives: end it first. Site and store outlive it.
class PulseSupervisor : public CommandTaker, public Service {
public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;
    // Told what an operator should know. Any thread; must return soon.
    using Tell = std::function<void(const std::string&)>;

    PulseSupervisor(const ValueStore& values, CommandTaker& commandTaker, Tell tellOperator,
                    Now clock = Clock::now);
    ~PulseSupervisor() override;

    // Before start(); without one nothing is remembered.
    void useMemory(std::unique_ptr<PulseMemory> pulseMemory) { memory = std::move(pulseMemory); }

    std::string submit(const Command& command, CommandDone done) override;

    std::string name() const override { return "pulses"; }
    std::string start(RunningSite& runningSite) override;
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

    // Refuses all commands from now on and begins to end what runs.
    void beginEnding();
    // To be asked every now and then from then on: whether nothing is left to be ended, or the time for it is
    // over, which is as long as the pulses are wide, within bounds.
    bool haveEnded();
    // The outputs that are on or may be, each with the reason.
    std::vector<std::string> stillOn() const;

    // What the thread does every now and then.
    void look();

private:
    // A point that was commanded on.
    struct Pulse {
        PointIndex index = 0;
        PointRef ref;
        unsigned commandsOnTheWay = 0;                   // on commands without a result
        bool wasSwitchedOn = false;                      // or may have been
        bool isLeftOver = false;                         // it was an earlier host that has switched it on
        std::shared_ptr<const std::atomic<bool>> onHeld; // by the driver: its on command
        Clock::time_point widthIsOver{};
        bool wasOverBefore = false; // the width, when the point was looked at before
        bool hasBeenPolled = false; // since the width was over
        std::uint32_t readings = 0; // of the point, when it was looked at
        bool isBeingSwitchedOff = false;
        unsigned tries = 0;          // to switch it off
        Clock::time_point nextTry{}; // to end it
        std::string failure;         // of the last one
    };

    // The pulse that a command switches on, which counts as running from now on; null where it is none.
    Pulse* beginPulse(const Command& command);
    Pulse& pulseAt(PointIndex index, const PointRef& ref);
    void noteRefusal(Pulse& pulse);
    void noteOnEnd(Pulse& pulse, const CommandEnd& end);
    void watch(Pulse& pulse);
    void endIfNotOn(Pulse& pulse);
    void takeUpLeftOver(const Site& site);
    void remember();
    // Whether its pulse is over, so that there is nothing more to see to.
    bool lookAt(Pulse& pulse);
    bool isReadOff(Pulse& pulse);
    bool isToBeEndedNow(const Pulse& pulse) const;
    bool isReleaseNear(const Pulse& pulse) const;
    void switchOff(Pulse& pulse);
    void noteSwitchedOff(Pulse& pulse, Halvex::DriverErrorResult result);
    void endPulse(Pulse& pulse);
    void noteEnded(Pulse& pulse, Halvex::DriverErrorResult result);
    void run();

    const ValueStore& store;
    CommandTaker& taker;
    const Tell tell;
    const Now now;

    std::mutex memoryMutex; // before `mutex`; held while the disk is at work
    std::unique_ptr<PulseMemory> memory;
    std::string memoryFault; // that was told

    // Guards what follows. Held while an off command is given in, so that it cannot come behind an on command
    // that was given in later.
    mutable std::mutex mutex;
    std::condition_variable changed;
    bool isStopping = false;
    bool isEnding = false;
    Clock::time_point endOfEnding{};
    bool isUnremembered = false;        // that something has changed
    std::map<PointIndex, Pulse> pulses; // of all points that were ever commanded on
    std::set<Pulse*> running;           // those that are not known to be off
    std::uint64_t switchedOff = 0;

    std::thread thread; // last: it works on all of the above
};

} // namespace host
