#pragma once

#include "commands/Command.h"
#include "site/Site.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <chrono>
#include <map>
#include <mutex>
#include <tuple>

namespace host {

// Sees to it that pulses end. The driver releases a pulse output by a request that it drops when one like it
// waits already, so an output may stay on. Commands go through here on their way to `taker`; the values come
// from the driver. When a pulse point that was commanded on still reads on after its width and a further
// poll, it is commanded off, again and again until it reads off or is commanded on anew.
//
// A command that failed may have reached the controller all the same: its answer was lost, or the line's
// device failed before it came. So it counts, unless the driver never took it.
//
// Threads: any. Results of `taker` may come as long as this lives: end it first. The site outlives it.
class PulseSupervisor : public CommandTaker, public HalvexDriverCoreInterface {
public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;
    // Told what an operator should know. Any thread; must return soon.
    using Tell = std::function<void(const std::string&)>;

    PulseSupervisor(const Site& site, CommandTaker& commandTaker, Tell tellOperator, Now clock = Clock::now);
    PulseSupervisor(const PulseSupervisor&) = delete;
    PulseSupervisor& operator=(const PulseSupervisor&) = delete;
    ~PulseSupervisor() override = default;

    std::string submit(const Command& command, CommandDone done) override;

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override;
    void publishRtuStatus(int, int, const RtuStatus&) override {}
    void publishChannelStatus(int, const ChannelStatus&) override {}

private:
    using Key = std::tuple<int, int, unsigned>; // channel, RTU, point

    struct Pulse {
        const Channel* channel = nullptr;
        const Rtu* rtu = nullptr;
        const Point* point = nullptr;

        bool isWatched = false;
        unsigned commandsOnTheWay = 0; // on commands without a result
        Clock::time_point widthIsOver{};
        bool hasBeenPolled = false; // since the width was over
        bool isBeingSwitchedOff = false;
        unsigned tries = 0; // to switch it off
    };

    Pulse* find(const Key& key);
    void noteEnd(Pulse& pulse, const CommandEnd& end);
    void look(Pulse& pulse, const PointUpdate& update);
    void switchOff(Pulse& pulse);
    void noteSwitchedOff(Pulse& pulse, Halvex::DriverErrorResult result);

    CommandTaker& taker;
    const Tell tell;
    const Now now;

    // Guards the pulses. Held while an off command is given in, so that it cannot come behind an on command
    // that was given in later.
    std::mutex mutex;
    std::map<Key, Pulse> pulses; // the supervised points; fixed but for their states
};

} // namespace host
