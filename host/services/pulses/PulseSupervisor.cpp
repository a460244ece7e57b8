#include "PulseSupervisor.h"

#include "commands/CommandPlan.h"
#include "commands/CommandText.h"
#include "runtime/FailureText.h"
#include "runtime/StartThread.h"
#include "services/RunningSite.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

using Halvex::DriverErrorResult;
using namespace std::chrono_literals;

constexpr auto lookPeriod = 50ms; // how late a point may be commanded off behind a poll

// The driver's release goes out with the line's next turns, behind the polls that wait.
constexpr auto releaseTime = 500ms;
// A release that is due so soon is waited for: an off command before it would be followed by its repetition
// of the on.
constexpr auto soonReleased = 1s;
// An element that is not read is taken for released so long after its width.
constexpr auto unreadReleaseTime = 2s;

// How long a stop may take: at least an answer that comes late, and no longer than whoever has asked for the
// stop waits before he uses force.
constexpr std::chrono::milliseconds shortestEnding{3s};
constexpr std::chrono::milliseconds longestEnding{10s};

constexpr auto retryWhileEnding = 200ms;
constexpr auto retryOfLeftOver = 1s;

std::string nameOf(const PointRef& ref) {
    return nameOf(*ref.channel, ref.rtu) + ", point " + std::to_string(ref.point->id) + " \"" +
           ref.point->name + "\" (" + toText(elementSwitchedOn(*ref.point)) + ")";
}

bool hasPulses(const Site& site) {
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus)
            if (std::any_of(rtu.points.begin(), rtu.points.end(), isReleasedByDriver))
                return true;
    return false;
}

// An off command that writes 1 to the pulse's own element begins a pulse, too.
bool doesOffSwitchOn(const Point& point) {
    return !point.secondAddress && point.value == 1;
}

PointIndex indexOf(const PointTable::Block& block, const Point& point) {
    return block.first + static_cast<PointIndex>(&point - block.rtu->points.data());
}

} // namespace

PulseSupervisor::PulseSupervisor(const ValueStore& values, CommandTaker& commandTaker, Tell tellOperator,
                                 Now clock)
    : store(values), taker(commandTaker), tell(std::move(tellOperator)), now(std::move(clock)) {}

PulseSupervisor::~PulseSupervisor() {
    stop();
}

std::string PulseSupervisor::start(RunningSite& runningSite) {
    if (memory && (memory->isThere() || hasPulses(runningSite.site)))
        takeUpLeftOver(runningSite.site);
    thread = startThread("the pulses", [this] { run(); });
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
    return {{"watched", running.size()}, {"switched off", switchedOff}};
}

// What an earlier host has left on.
void PulseSupervisor::takeUpLeftOver(const Site& site) {
    const std::lock_guard<std::mutex> memoryLock(memoryMutex);
    const std::string fault = memory->open();
    if (!fault.empty())
        tell(fault);
    const PulseMemory::Recalled recalled = memory->recall();
    if (!recalled.fault.empty())
        tell(recalled.fault);
    const std::lock_guard<std::mutex> lock(mutex);
    isUnremembered = true;
    for (const RememberedPulse& one : recalled.pulses) {
        const std::string left = ": its pulse ran when this site's host last ended; ";
        const PulsePlace place = findPlace(site, one);
        if (place.point == nullptr) {
            tell(host::nameOf(one) + left +
                 "the site file has no such point there any more, so it is not switched off: see to it at "
                 "the controller");
            continue;
        }
        const PointTable::Block& block = *store.points().find(place.channel->id, place.rtu->id);
        Pulse& pulse = pulseAt(indexOf(block, *place.point), PointRef{place.channel, place.rtu, place.point});
        pulse.isLeftOver = true;
        running.insert(&pulse);
        tell(nameOf(pulse.ref) + left + "it is switched off");
    }
}

std::string PulseSupervisor::submit(const Command& command, CommandDone done) {
    Pulse* pulse = nullptr;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (isEnding)
            return "the host is ending and takes no more commands";
        pulse = beginPulse(command);
    }
    if (pulse == nullptr)
        return taker.submit(command, std::move(done));
    remember();
    std::string refusal = taker.submit(command, [this, pulse, done = std::move(done)](const CommandEnd& end) {
        noteOnEnd(*pulse, end);
        done(end);
    });
    if (!refusal.empty())
        noteRefusal(*pulse);
    return refusal;
}

PulseSupervisor::Pulse* PulseSupervisor::beginPulse(const Command& command) {
    const auto* const switching = std::get_if<SwitchPoint>(&command.action);
    const PointTable::Block* const block = store.points().find(command.channelId, command.rtuId);
    if (switching == nullptr || block == nullptr)
        return nullptr;
    const Point* const point = findPoint(*block->rtu, switching->point);
    if (point == nullptr || !isReleasedByDriver(*point) || !(switching->on || doesOffSwitchOn(*point)))
        return nullptr;
    Pulse& pulse = pulseAt(indexOf(*block, *point), {block->channel, block->rtu, point});
    ++pulse.commandsOnTheWay;
    running.insert(&pulse);
    return &pulse;
}

PulseSupervisor::Pulse& PulseSupervisor::pulseAt(PointIndex index, const PointRef& ref) {
    Pulse& pulse = pulses[index];
    pulse.index = index;
    pulse.ref = ref;
    return pulse;
}

void PulseSupervisor::noteRefusal(Pulse& pulse) {
    const std::lock_guard<std::mutex> lock(mutex);
    --pulse.commandsOnTheWay;
    endIfNotOn(pulse);
}

void PulseSupervisor::noteOnEnd(Pulse& pulse, const CommandEnd& end) {
    const std::lock_guard<std::mutex> lock(mutex);
    --pulse.commandsOnTheWay;
    if (!end.wasTaken) {
        endIfNotOn(pulse);
        return;
    }
    pulse.wasSwitchedOn = true;
    pulse.isLeftOver = false;
    pulse.onHeld = end.stillHeld;
    watch(pulse);
}

// From the beginning of its width on.
void PulseSupervisor::watch(Pulse& pulse) {
    pulse.widthIsOver = now() + std::chrono::milliseconds(pulse.ref.point->pulseMs);
    pulse.wasOverBefore = false;
    pulse.hasBeenPolled = false;
    pulse.tries = 0;
    changed.notify_all();
}

void PulseSupervisor::endIfNotOn(Pulse& pulse) {
    if (pulse.wasSwitchedOn || pulse.isLeftOver || pulse.commandsOnTheWay > 0)
        return;
    running.erase(&pulse);
    isUnremembered = true;
    changed.notify_all();
}

// The disk is at work, so `mutex` is not held meanwhile. One after the other, so that the newest is what
// stays.
void PulseSupervisor::remember() {
    const std::lock_guard<std::mutex> memoryLock(memoryMutex);
    if (!memory)
        return;
    std::vector<RememberedPulse> remembered;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isUnremembered = false;
        for (const Pulse* const pulse : running)
            remembered.push_back(rememberedPulse(*pulse->ref.channel, *pulse->ref.rtu, *pulse->ref.point));
    }
    const std::string fault = memory->remember(remembered);
    if (fault != std::exchange(memoryFault, fault) && !fault.empty())
        tell(fault);
}

void PulseSupervisor::run() {
    std::unique_lock<std::mutex> lock(mutex);
    while (!isStopping) {
        if (running.empty() && !isUnremembered) {
            changed.wait(lock, [this] { return isStopping || !running.empty() || isUnremembered; });
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
    bool hasChanged = false;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        for (auto one = running.begin(); one != running.end();)
            if (lookAt(**one)) {
                (*one)->wasSwitchedOn = false;
                one = running.erase(one);
                isUnremembered = true;
            } else {
                ++one;
            }
        hasChanged = isUnremembered;
    }
    if (hasChanged)
        remember();
}

bool PulseSupervisor::lookAt(Pulse& pulse) {
    if (isEnding || pulse.isLeftOver) {
        if (isToBeEndedNow(pulse))
            endPulse(pulse);
        return false;
    }
    if (!pulse.wasSwitchedOn)
        return false;
    if (pulse.onHeld && !*pulse.onHeld) { // it was sent just now, or never
        pulse.onHeld.reset();
        watch(pulse);
    }
    if (isOffCommandItsRelease(*pulse.ref.point))
        return isReadOff(pulse);
    return !pulse.onHeld && pulse.commandsOnTheWay == 0 && now() >= pulse.widthIsOver + unreadReleaseTime;
}

// The first reading behind the width may be older than the driver's release, which waits its turn.
bool PulseSupervisor::isReadOff(Pulse& pulse) {
    if (now() < pulse.widthIsOver)
        return false;
    const PointState state = store.state(pulse.index);
    const std::uint32_t newReadings = state.readings - std::exchange(pulse.readings, state.readings);
    if (!std::exchange(pulse.wasOverBefore, true) || newReadings == 0)
        return false;
    if (!std::exchange(pulse.hasBeenPolled, true) && newReadings == 1)
        return false;
    if (state.value == 0)
        return !pulse.isBeingSwitchedOff && !pulse.onHeld && pulse.commandsOnTheWay == 0;
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

bool PulseSupervisor::isToBeEndedNow(const Pulse& pulse) const {
    const bool isHeld = pulse.onHeld && *pulse.onHeld;
    if (pulse.commandsOnTheWay > 0 || pulse.isBeingSwitchedOff || isHeld || now() < pulse.nextTry)
        return false;
    return !isReleaseNear(pulse);
}

// Whether the driver's release, which says on once more before it says off, may come between an off command
// and the end of the line.
bool PulseSupervisor::isReleaseNear(const Pulse& pulse) const {
    const Clock::duration left = pulse.widthIsOver - now();
    return !pulse.isLeftOver && left <= soonReleased && left > -releaseTime;
}

void PulseSupervisor::endPulse(Pulse& pulse) {
    ++pulse.tries;
    const std::string refusal =
        taker.submit({pulse.ref.channel->id, pulse.ref.rtu->id, EndPulse{pulse.ref.point->id}},
                     [this, &pulse](const CommandEnd& end) { noteEnded(pulse, end.result); });
    pulse.isBeingSwitchedOff = refusal.empty();
    pulse.nextTry = now() + (isEnding ? Clock::duration(retryWhileEnding) : retryOfLeftOver);
    if (!refusal.empty())
        pulse.failure = refusal;
    if (!refusal.empty() && pulse.tries == 1)
        tell(nameOf(pulse.ref) + ": it cannot be switched off: " + refusal);
}

void PulseSupervisor::noteEnded(Pulse& pulse, DriverErrorResult result) {
    const std::lock_guard<std::mutex> lock(mutex);
    pulse.isBeingSwitchedOff = false;
    pulse.nextTry = now() + (isEnding ? Clock::duration(retryWhileEnding) : retryOfLeftOver);
    if (result != DriverErrorResult::Success) {
        pulse.failure = resultText(result);
        if (pulse.tries == 1)
            tell(nameOf(pulse.ref) + ": switching it off failed: " + pulse.failure + "; it is tried again");
        return;
    }
    if (pulse.commandsOnTheWay > 0 || isReleaseNear(pulse))
        return; // it may go on again
    tell(nameOf(pulse.ref) + (pulse.isLeftOver ? ": it is switched off now" : ": its pulse is ended"));
    pulse.isLeftOver = false;
    pulse.wasSwitchedOn = false;
    pulse.tries = 0;
    endIfNotOn(pulse);
}

void PulseSupervisor::beginEnding() {
    const std::lock_guard<std::mutex> lock(mutex);
    isEnding = true;
    std::chrono::milliseconds width{0};
    for (Pulse* const pulse : running) {
        width = std::max(width, std::chrono::milliseconds(pulse->ref.point->pulseMs));
        pulse->nextTry = {};
        pulse->tries = 0;
    }
    endOfEnding = now() + std::clamp(width, shortestEnding, longestEnding);
}

bool PulseSupervisor::haveEnded() {
    look();
    const std::lock_guard<std::mutex> lock(mutex);
    return running.empty() || now() >= endOfEnding;
}

std::vector<std::string> PulseSupervisor::stillOn() const {
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<std::string> names;
    for (const Pulse* const pulse : running)
        names.push_back(nameOf(pulse->ref) + ": left on, or it may be: " +
                        (pulse->failure.empty() ? "there was no time to end its pulse" : pulse->failure));
    return names;
}

} // namespace host
