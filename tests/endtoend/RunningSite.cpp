#include "RunningSite.h"

#include <HalvexDriverComponent/CRtu.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <future>

RunningSite::~RunningSite() {
    stop();
}

void RunningSite::start(const std::string& pluginFile) {
    store = std::make_unique<host::ValueStore>(description);
    core.add(*store);
    runtime = std::make_unique<host::HostRuntime>(description, core, &lineMessages, makeLink);
    runtime->supervisePolls();
    ASSERT_EQ(runtime->start(pluginFile), "");
    dispatcher = std::make_unique<host::CommandDispatcher>(
        description, [this](int channel, int id) { return runtime->findRtu(channel, id); },
        [this](int channel, int id) { return runtime->requestEnds().wasLastRequestRefused(channel, id); },
        [this](CRtu& rtu, const host::CommandAction& action, CReply* reply) {
            const std::unique_lock<std::mutex> hold = runtime->holdPoints(rtu.chennelId());
            return host::callDriver(rtu, action, reply);
        });
    const auto tell = [this](const std::string& text) {
        const std::lock_guard<std::mutex> lock(mutex);
        told.push_back(text);
    };
    pulses = std::make_unique<host::PulseSupervisor>(*store, *dispatcher, tell);
    clocks = std::make_unique<host::ClockSchedule>(description, *dispatcher, tell);
    services = std::make_unique<host::RunningSite>(
        host::RunningSite{description,
                          *store,
                          runtime->exchanges(),
                          *pulses,
                          ofTheLines,
                          [this] {
                              return host::SiteFigures{runtime->channelFigures(), runtime->rtuFigures()};
                          },
                          {},
                          {}});
    pulses->start(*services);
    clocks->start(*services);
}

void RunningSite::stop() {
    if (dispatcher) {
        clocks->stop();
        pulses->stop();
        dispatcher->stop();
    }
    if (runtime)
        runtime->stop();
}

Halvex::DriverErrorResult RunningSite::carryOut(const host::Command& command) {
    std::promise<Halvex::DriverErrorResult> promise;
    std::future<Halvex::DriverErrorResult> result = promise.get_future();
    const std::string refusal = commands().submit(
        command, [&promise](const host::CommandEnd& end) { promise.set_value(end.result); });
    EXPECT_EQ(refusal, "");
    return refusal.empty() ? result.get() : Halvex::DriverErrorResult::NotSupported;
}

bool RunningSite::haveAllAnswered() const {
    const std::vector<host::RtuFigures> figures = runtime->rtuFigures();
    return std::all_of(figures.begin(), figures.end(),
                       [](const host::RtuFigures& rtu) { return rtu.status.answers > 0; });
}

std::vector<std::string> RunningSite::messages() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return told;
}
