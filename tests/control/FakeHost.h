#pragma once

#include "services/control/ControlDoor.h"
#include "services/control/ControlledHost.h"
#include "values/ValueStore.h"

#include <condition_variable>
#include <mutex>

// A site of two lines: on "waterworks" (channel 4, Ethernet) the RTU "pump-house" (7) with the status point
// RUN (1) and the analog points FLOW (2, a float) and LEVEL (3), on "reservoirs" (5, serial) "hill" (1) with
// RUN (1), "tank" (2) with LEVEL (1), disabled, and one more "pump-house" (3) with VALVE (1).
host::Site controlSite();

// A control socket at `path`, for this user alone and for so many clients.
host::ControlDoor doorAt(const std::string& path, std::size_t clients = 0);

// A running host that remembers what is asked of it. Commands succeed at once, unless they are held. Any
// thread.
class FakeHost : public host::ControlledHost {
public:
    using Result = Halvex::DriverErrorResult;

    explicit FakeHost(const host::Site& hostSite);

    std::string submit(const host::Command& command, host::CommandDone done) override;
    Result requestPoll(int channelId, int rtuId) override;
    host::HostFigures siteFigures() const override;
    const host::Site& site() const override { return fakeSite; }
    host::ExchangeFeed& exchanges() override { return feed; }

    // What the next commands and polls come to.
    void answerWith(Result next, bool refusedByController = false);
    void refuseCommands(const std::string& why);
    // Commands wait for release().
    void hold();
    void release();

    std::vector<host::Command> commands() const;
    std::vector<std::pair<int, int>> polls() const;
    int figuresAsked() const;
    // Waits until so many commands were given in.
    void waitForCommands(std::size_t count);

    host::ValueStore store;
    host::ExchangeFeed feed;

private:
    const host::Site& fakeSite;
    mutable std::mutex mutex;
    std::condition_variable given;
    Result result = Result::Success;
    bool isRefusal = false;
    bool isHolding = false;
    std::string refusal;
    std::vector<host::Command> taken;
    std::vector<host::CommandDone> held;
    std::vector<std::pair<int, int>> askedPolls;
    mutable int figureCount = 0;
};
