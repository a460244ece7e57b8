#include "PulseSupervisor.h"

#include "commands/CommandText.h"
#include "runtime/FailureText.h"

#include <utility>

namespace host {

namespace {

using Halvex::DriverErrorResult;

std::string nameOf(const Channel& channel, const Rtu& rtu, const Point& point) {
    return nameOf(channel, &rtu) + ", point " + std::to_string(point.id) + " \"" + point.name + "\" (" +
           toText(point.address) + ")";
}

} // namespace

PulseSupervisor::PulseSupervisor(const Site& site, CommandTaker& commandTaker, Tell tellOperator, Now clock)
    : taker(commandTaker), tell(std::move(tellOperator)), now(std::move(clock)) {
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus)
            for (const Point& point : rtu.points)
                if (isPulse(point) && isOffCommandItsRelease(point)) {
                    Pulse& pulse = pulses[{channel.id, rtu.id, point.id}];
                    pulse.channel = &channel;
                    pulse.rtu = &rtu;
                    pulse.point = &point;
                }
}

PulseSupervisor::Pulse* PulseSupervisor::find(const Key& key) {
    const auto found = pulses.find(key);
    return found == pulses.end() ? nullptr : &found->second;
}

std::string PulseSupervisor::submit(const Command& command, CommandDone done) {
    const auto* const switching = std::get_if<SwitchPoint>(&command.action);
    Pulse* const pulse = switching != nullptr && switching->on
                             ? find({command.channelId, command.rtuId, switching->point})
                             : nullptr;
    if (pulse == nullptr)
        return taker.submit(command, std::move(done));
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ++pulse->commandsOnTheWay;
    }
    std::string refusal = taker.submit(command, [this, pulse, done = std::move(done)](const CommandEnd& end) {
        noteEnd(*pulse, end);
        done(end);
    });
    if (!refusal.empty()) {
        const std::lock_guard<std::mutex> lock(mutex);
        --pulse->commandsOnTheWay;
    }
    return refusal;
}

void PulseSupervisor::noteEnd(Pulse& pulse, const CommandEnd& end) {
    const std::lock_guard<std::mutex> lock(mutex);
    --pulse.commandsOnTheWay;
    if (!end.wasTaken)
        return;
    pulse.isWatched = true;
    pulse.widthIsOver = now() + std::chrono::milliseconds(pulse.point->pulseMs);
    pulse.hasBeenPolled = false;
    pulse.tries = 0;
}

void PulseSupervisor::publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) {
    if (pulses.empty())
        return;
    const std::lock_guard<std::mutex> lock(mutex);
    for (const PointUpdate& update : updates)
        if (Pulse* const pulse = find({channelId, rtuId, update.number}))
            look(*pulse, update);
}

// The first value behind the width may have been read before the driver's release, which waits its turn.
void PulseSupervisor::look(Pulse& pulse, const PointUpdate& update) {
    if (!pulse.isWatched || update.quality != PointQuality::Good || now() < pulse.widthIsOver)
        return;
    if (!std::exchange(pulse.hasBeenPolled, true))
        return;
    if (update.value == 0)
        pulse.isWatched = pulse.isBeingSwitchedOff;
    else if (!pulse.isBeingSwitchedOff && pulse.commandsOnTheWay == 0)
        switchOff(pulse);
}

void PulseSupervisor::switchOff(Pulse& pulse) {
    const Command command{pulse.channel->id, pulse.rtu->id, SwitchPoint{pulse.point->id, false}};
    const std::string refusal =
        taker.submit(command, [this, &pulse](const CommandEnd& end) { noteSwitchedOff(pulse, end.result); });
    pulse.isBeingSwitchedOff = refusal.empty(); // a refused one is tried again with the next value
    if (pulse.tries++ > 0)
        return;
    const std::string still = nameOf(*pulse.channel, *pulse.rtu, *pulse.point) +
                              ": still on after its pulse of " + std::to_string(pulse.point->pulseMs) +
                              " ms; ";
    tell(still + (refusal.empty() ? "it is commanded off" : "it cannot be commanded off: " + refusal));
}

void PulseSupervisor::noteSwitchedOff(Pulse& pulse, DriverErrorResult result) {
    const std::lock_guard<std::mutex> lock(mutex);
    pulse.isBeingSwitchedOff = false;
    if (result != DriverErrorResult::Success && pulse.tries == 1)
        tell(nameOf(*pulse.channel, *pulse.rtu, *pulse.point) + ": commanding it off failed: " +
             resultText(result) + "; it is tried again as long as the point reads on");
}

} // namespace host
