#pragma once

#include "CommandResults.h"
#include "CommandedRtu.h"
#include "SmallSite.h"
#include "commands/CommandDispatcher.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>

// The small site's RTU 7 and a second one, 8, of the same line.
class Dispatching : public testing::Test {
protected:
    Dispatching() {
        host::Rtu second = site.channels[0].rtus[0];
        second.id = 8;
        second.name = "tank";
        site.channels[0].rtus.push_back(second);
        site.channels[0].type = host::LineType::Serial; // takes every kind of command
    }
    void TearDown() override {
        made.reset();
        EXPECT_EQ(CReply::liveCount(), 0);
    }

    host::CommandDispatcher& dispatcher(std::chrono::milliseconds timeLimit = std::chrono::hours(1)) {
        if (!made)
            made = std::make_unique<host::CommandDispatcher>(
                site, [this](int, int id) { return &rtus[id]; },
                [this](int, int id) { return refusing == id; },
                [timeLimit](const host::Channel&) { return timeLimit; });
        return *made;
    }

    // The refusal; the result goes into `results` under the next number.
    std::string submit(const host::CommandAction& action, int rtuId = 7, int channelId = 4) {
        return dispatcher().submit({channelId, rtuId, action}, results.of(nextNumber++));
    }

    const host::Point& flow() const { return site.channels[0].rtus[0].points[1]; }

    host::Site site = smallSite();
    std::map<int, CommandedRtu> rtus;
    CommandResults results; // outlives the dispatcher, which tells them
    std::unique_ptr<host::CommandDispatcher> made;
    int nextNumber = 0;
    std::atomic<int> refusing{0}; // the RTU whose controller refuses what the driver takes for done
};
