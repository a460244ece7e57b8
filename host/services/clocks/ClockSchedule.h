#pragma once

#include "commands/Command.h"
#include "runtime/HostRuntime.h"
#include "services/PeriodicThread.h"
#include "services/Service.h"

#include <atomic>
#include <chrono>
#include <map>

namespace host {

// Sets the clocks of the RTUs that ask for it: when an RTU has answered for the first time, and from then on
// once in each period, with the next answer of the RTU. Those on Ethernet lines are left out. One that is
// silent gets its clock when it is back. Looks at the RTUs' figures on a thread of its own, unless no RTU
// asks for it. Failures are told. Results of `taker` may come as long as this lives, on any thread: end it
// first.
class ClockSchedule : public Service {
public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;
    using Tell = std::function<void(const std::string&)>;

    // The site outlives it.
    ClockSchedule(const Site& site, CommandTaker& commandTaker, Tell tellOperator, Now clock = Clock::now);
    ~ClockSchedule() override;

    std::string name() const override { return "clocks"; }
    std::string start(RunningSite& runningSite) override;
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

    // What the thread does every now and then.
    void look(const std::vector<RtuFigures>& rtus);

private:
    struct Entry {
        std::uint64_t answers = 0; // seen so far
        Clock::time_point next{};
    };

    void setClock(const RtuFigures& rtu);

    CommandTaker& taker;
    const Tell tell;
    const Now now;
    std::map<const Rtu*, Entry> entries; // looking thread
    std::atomic<std::uint64_t> commandCount{0};
    PeriodicThread thread; // last: it works on all of the above
};

} // namespace host
