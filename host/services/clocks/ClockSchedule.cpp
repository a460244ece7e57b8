#include "ClockSchedule.h"

#include "commands/CommandText.h"
#include "runtime/FailureText.h"

#include <utility>

namespace host {

using Halvex::DriverErrorResult;

ClockSchedule::ClockSchedule(const Site& site, CommandTaker& commandTaker, Tell tellOperator, Now clock)
    : taker(commandTaker), tell(std::move(tellOperator)), now(std::move(clock)) {
    for (const Channel& channel : site.channels)
        for (const Rtu& rtu : channel.rtus)
            if (rtu.timeSync && rtu.enabled)
                entries[{channel.id, rtu.id}] = {&channel, &rtu, 0, {}};
}

void ClockSchedule::publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = entries.find({channelId, rtuId});
    if (found == entries.end())
        return;
    Entry& entry = found->second;
    const bool hasAnswered = status.answers > std::exchange(entry.answers, status.answers);
    const Clock::time_point present = now();
    if (!hasAnswered || present < entry.next)
        return;
    entry.next = present + *entry.rtu->timeSync;
    setClock(entry);
}

void ClockSchedule::setClock(const Entry& entry) {
    const std::string failure = nameOf(*entry.channel, entry.rtu) + ": its clock could not be set: ";
    const std::string refusal = taker.submit({entry.channel->id, entry.rtu->id, SynchroniseClock{}},
                                             [this, failure](const CommandEnd& end) {
                                                 if (end.result != DriverErrorResult::Success)
                                                     tell(failure + resultText(end.result));
                                             });
    if (!refusal.empty())
        tell(failure + refusal);
}

} // namespace host
