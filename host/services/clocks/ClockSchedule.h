#pragma once

#include "commands/Command.h"
#include "site/Site.h"

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <chrono>
#include <map>
#include <mutex>

namespace host {

// Sets the clocks of the RTUs that ask for it: when an RTU has answered for the first time, and from then on
// once in each period, with the next answer of the RTU. One that is silent gets its clock when it is back.
// Failures are told. Threads: any. Results of `taker` may come as long as this lives: end it first.
class ClockSchedule : public HalvexDriverCoreInterface {
public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;
    using Tell = std::function<void(const std::string&)>;

    // The site outlives it.
    ClockSchedule(const Site& site, CommandTaker& commandTaker, Tell tellOperator, Now clock = Clock::now);
    ClockSchedule(const ClockSchedule&) = delete;
    ClockSchedule& operator=(const ClockSchedule&) = delete;
    ~ClockSchedule() override = default;

    void publishPoints(int, int, const QVector<PointUpdate>&) override {}
    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override;
    void publishChannelStatus(int, const ChannelStatus&) override {}

private:
    struct Entry {
        const Channel* channel = nullptr;
        const Rtu* rtu = nullptr;
        quint64 answers = 0; // seen so far
        Clock::time_point next{};
    };

    void setClock(const Entry& entry);

    CommandTaker& taker;
    const Tell tell;
    const Now now;

    std::mutex mutex;                             // guards the entries
    std::map<std::pair<int, int>, Entry> entries; // by channel and RTU
};

} // namespace host
