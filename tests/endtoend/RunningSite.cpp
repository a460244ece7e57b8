#include "RunningSite.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>

RunningSite::~RunningSite() {
    stop();
}

void RunningSite::start(const std::string& pluginFile) {
    store = std::make_unique<host::ValueStore>(description);
    core.add(*store);
    runtime = std::make_unique<host::HostRuntime>(description, core, nullptr, makeLink);
    ASSERT_EQ(runtime->start(pluginFile), "");
    service = std::make_unique<host::CommandService>(
        description, core, [this](int channel, int id) { return runtime->findRtu(channel, id); },
        [this](int channel, int id) { return runtime->requestEnds().wasLastRequestRefused(channel, id); },
        [this](const std::string& text) {
            const std::lock_guard<std::mutex> lock(mutex);
            told.push_back(text);
        });
}

void RunningSite::stop() {
    if (service)
        service->stop();
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
