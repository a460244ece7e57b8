#pragma once

#include "LineWatch.h"
#include "SupervisorSocket.h"
#include "services/PeriodicThread.h"
#include "services/RunningSite.h"
#include "services/Service.h"

#include <atomic>
#include <optional>
#include <string>

namespace host {

// Tells the supervisor of the system's services how the site stands: that it is ready when the first poll of
// each line has ended, that it lives while the threads of all lines move, and one line for people. While
// they move it also asks for the time that a long start or a long end takes. Once a line is stuck the
// supervisor hears no sign of life any more, and ends the host by its own rules.
class SupervisorLink : public Service {
public:
    explicit SupervisorLink(Supervisor supervisorOfHost);
    ~SupervisorLink() override;

    std::string name() const override { return "supervisor"; }
    std::string start(RunningSite& runningSite) override;
    // The run is about to end, which may take as long as its pulses. Any thread.
    void tellEnding();
    // Leaves the supervisor with the time that the lines may take to end.
    void stop() override;
    std::vector<ServiceFigure> figures() const override { return {}; }

private:
    using Clock = LineWatch::Clock;

    void look();
    std::string lifeLines(const std::vector<const Channel*>& stuck) const;
    std::string statusText(const SiteFigures& figures, const std::vector<const Channel*>& stuck);
    void tellPeople(const std::vector<const Channel*>& stuck);
    std::chrono::milliseconds lookPeriod() const;

    const Supervisor supervisor;
    RunningSite* site = nullptr; // from start() on
    std::optional<LineWatch> lines;
    std::atomic<bool> isEnding{false};

    // The thread's.
    bool isReady = false;
    std::vector<const Channel*> toldStuck;
    std::string toldStatus;
    std::optional<Clock::time_point> countedAt;
    std::string points; // "12 of 14 points good", when they were last counted

    PeriodicThread thread; // last: it works on all of the above
};

} // namespace host
