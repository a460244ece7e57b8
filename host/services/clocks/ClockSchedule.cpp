#include "ClockSchedule.h"

#include "commands/CommandText.h"
#include "runtime/FailureText.h"
#include "services/RunningSite.h"

#include <utility>

namespace host {

using Halvex::DriverErrorResult;

namespace {

constexpr std::chrono::milliseconds lookPeriod{200}; // how late a clock may be set behind an answer

} // namespace

ClockSchedule::ClockSchedule(const Site& site, CommandTaker& commandTaker, Tell tellOperator, Now clock)
    : taker(commandTaker), tell(std::move(tellOperator)), now(std::move(clock)) {
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus)
            if (rtu.timeSync && rtu.enabled && isClockInReach(channel.type))
                entries[&rtu] = {};
}

ClockSchedule::~ClockSchedule() {
    stop();
}

std::string ClockSchedule::start(RunningSite& runningSite) {
    if (!entries.empty())
        thread.start("the controllers' clocks", lookPeriod,
                     [this, &runningSite] { look(runningSite.figures().rtus); });
    return {};
}

void ClockSchedule::stop() {
    thread.stop();
}

std::vector<ServiceFigure> ClockSchedule::figures() const {
    return {{"commands", commandCount.load(std::memory_order_relaxed)}};
}

void ClockSchedule::look(const std::vector<RtuFigures>& rtus) {
    const Clock::time_point present = now();
    for (const RtuFigures& one : rtus) {
        const auto found = entries.find(one.rtu);
        if (found == entries.end())
            continue;
        Entry& entry = found->second;
        const bool hasAnswered = one.status.answers > std::exchange(entry.answers, one.status.answers);
        if (!hasAnswered || present < entry.next)
            continue;
        entry.next = present + *one.rtu->timeSync;
        setClock(one);
    }
}

void ClockSchedule::setClock(const RtuFigures& rtu) {
    commandCount.fetch_add(1, std::memory_order_relaxed);
    const std::string failure = nameOf(*rtu.channel, rtu.rtu) + ": its clock could not be set: ";
    const std::string refusal = taker.submit({rtu.channel->id, rtu.rtu->id, SynchroniseClock{}},
                                             [this, failure](const CommandEnd& end) {
                                                 if (end.result != DriverErrorResult::Success)
                                                     tell(failure + resultText(end.result));
                                             });
    if (!refusal.empty())
        tell(failure + refusal);
}

} // namespace host
