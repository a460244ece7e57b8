#include "PulseSupervisor.h"

#include "commands/CommandPlan.h"
#include "commands/CommandText.h"
#include "runtime/FailureText.h"

#include <utility>

namespace host {

namespace {

using Halvex::DriverErrorResult;

constexpr std::chrono::milliseconds lookPeriod{50}; // how late a point may be commanded off behind a poll

std::string nameOf(const PointRef& ref) {
    return nameOf(*ref.channel, ref.rtu) + ", point " + std::to_string(ref.point->id) + " \"" +
           ref.point->name + "\" (" + toText(ref.point->address) + ")";
}

} // namespace

PulseSupervisor::PulseSupervisor(const ValueStore& values, CommandTaker& commandTaker, Tell tellOperator,
                                 Now clock)
    : store(values), taker(commandTaker), tell(std::move(tellOperator)), now(std::move(clock)) {}

PulseSupervisor::~PulseSupervisor() {
    stop();
}

std::string PulseSupervisor::start(RunningSite&) {
    thread = std::thread([this] { run(); });
    return {};
}

void PulseSupervisor::stop() {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isStopping = true;
    }
    changed.notify_all();
    if (thread.joinable())
        thread.join();
}

std::vector<ServiceFigure> PulseSupervisor::figures() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return {{"watched", watched.size()}, {"switched off", switchedOff}};
}

std::string PulseSupervisor::submit(const Command& command, CommandDone done) {
    Pulse* const pulse = pulseOf(command);
    if (pulse == nullptr)
        return taker.submit(command, std::move(done));
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

PulseSupervisor::Pulse* PulseSupervisor::pulseOf(const Command& command) {
    const auto* const switching = std::get_if<SwitchPoint>(&command.action);
    const PointTable::Block* const block = store.points().find(command.channelId, command.rtuId);
    if (switching == nullptr || !switching->on || block == nullptr)
        return nullptr;
    const Point* const point = findPoint(*block->rtu, switching->point);
    if (point == nullptr || !isPulse(*point) || !isOffCommandItsRelease(*point))
        return nullptr;
    const PointIndex index = block->first + static_cast<PointIndex>(point - block->rtu->points.data());
    const std::lock_guard<std::mutex> lock(mutex);
    Pulse& pulse = pulses[index];
    pulse.index = index;
    pulse.ref = {block->channel, block->rtu, point};
    ++pulse.commandsOnTheWay;
    return &pulse;
}

void PulseSupervisor::noteEnd(Pulse& pulse, const CommandEnd& end) {
    const std::lock_guard<std::mutex> lock(mutex);
    --pulse.commandsOnTheWay;
    if (!end.wasTaken)
        return;
    pulse.widthIsOver = now() + std::chrono::milliseconds(pulse.ref.point->pulseMs);
    pulse.wasOverBefore = false;
    pulse.hasBeenPolled = false;
    pulse.tries = 0;
    watched.insert(&pulse);
    changed.notify_all();
}

void PulseSupervisor::run() {
    std::unique_lock<std::mutex> lock(mutex);
    while (!isStopping) {
        if (watched.empty()) {
            changed.wait(lock, [this] { return isStopping || !watched.empty(); });
            continue;
        }
        changed.wait_for(lock, lookPeriod, [this] { return isStopping; });
        if (isStopping)
            return;
        lock.unlock();
        look();
        lock.lock();
    }
}

void PulseSupervisor::look() {
    const std::lock_guard<std::mutex> lock(mutex);
    for (auto one = watched.begin(); one != watched.end();)
        one = lookAt(**one) ? watched.erase(one) : std::next(one);
}

// The first reading behind the width may be older than the driver's release, which waits its turn.
bool PulseSupervisor::lookAt(Pulse& pulse) {
    if (now() < pulse.widthIsOver)
        return false;
    const PointState state = store.state(pulse.index);
    const std::uint32_t newReadings = state.readings - std::exchange(pulse.readings, state.readings);
    if (!std::exchange(pulse.wasOverBefore, true) || newReadings == 0)
        return false;
    if (!std::exchange(pulse.hasBeenPolled, true) && newReadings == 1)
        return false;
    if (state.value == 0)
        return !pulse.isBeingSwitchedOff;
    if (!pulse.isBeingSwitchedOff && pulse.commandsOnTheWay == 0)
        switchOff(pulse);
    return false;
}

void PulseSupervisor::switchOff(Pulse& pulse) {
    const Command command{pulse.ref.channel->id, pulse.ref.rtu->id, SwitchPoint{pulse.ref.point->id, false}};
    const std::string refusal =
        taker.submit(command, [this, &pulse](const CommandEnd& end) { noteSwitchedOff(pulse, end.result); });
    pulse.isBeingSwitchedOff = refusal.empty(); // a refused one is tried again with the next reading
    switchedOff += refusal.empty() ? 1 : 0;
    if (pulse.tries++ > 0)
        return;
    const std::string still = nameOf(pulse.ref) + ": still on after its pulse of " +
                              std::to_string(pulse.ref.point->pulseMs) + " ms; ";
    tell(still + (refusal.empty() ? "it is commanded off" : "it cannot be commanded off: " + refusal));
}

void PulseSupervisor::noteSwitchedOff(Pulse& pulse, DriverErrorResult result) {
    const std::lock_guard<std::mutex> lock(mutex);
    pulse.isBeingSwitchedOff = false;
    if (result != DriverErrorResult::Success && pulse.tries == 1)
        tell(nameOf(pulse.ref) + ": commanding it off failed: " + resultText(result) +
             "; it is tried again as long as the point reads on");
}

} // namespace host
