#pragma once

#include "ServiceFigures.h"

#include <string>
#include <vector>

namespace host {

struct RunningSite;

// What runs beside the lines of a site: shows its values, takes commands, keeps a record. None can hold up a
// line: each works on a thread of its own, what waits for it is bounded, and what it loses is one of its
// figures.
// States: made, running (after start), stopped (after stop, for good). Main thread, but for figures().
class Service {
public:
    Service() = default;
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    virtual ~Service() = default;

    // For people: "control", "capture".
    virtual std::string name() const = 0;
    // The lines are made, and run once every service has started. The site outlives the service's end. Empty,
    // or why it cannot start: what happened and what to check. Throws ThreadRefused when the system has no
    // thread for it.
    virtual std::string start(RunningSite& runningSite) = 0;
    // Ends within a second, whatever its other side does. Nothing when it was never started.
    virtual void stop() = 0;
    // Any thread, between the end of start() and the beginning of stop().
    virtual std::vector<ServiceFigure> figures() const = 0;
};

} // namespace host
