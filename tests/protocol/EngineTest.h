#pragma once

#include "LogRecorder.h"
#include "Printers.h"
#include "PublishingRtu.h"
#include "ScriptedLink.h"
#include "ScriptedProtocol.h"
#include "TellingCore.h"
#include "TestChannel.h"

#include <HalvexDriverComponent/CReply.h>

#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <thread>

// An engine on channel 7 with RTU 3 at station 5, online, and what watches them: core and log.
class EngineTest : public testing::Test {
protected:
    static constexpr int channelId = 7;
    static constexpr int rtuId = 3;

    EngineTest() {
        channel.SetConnect(true);
        rtu->SetConnect(true, false);
        protocol->setLink(link);
        log.clear();
        core.clear();
    }

    static SBusRequestItem write(quint32 address = 0) { return {14, 0, address, hex("00 00 00 01")}; }

    // A request of one write telegram.
    SBusRequest request(const QString& name) const { return request(name, {write()}); }

    SBusRequest request(const QString& name, const QList<SBusRequestItem>& items) const {
        SBusRequest made;
        made.rtu = rtu;
        made.name = name;
        made.items = items;
        return made;
    }

    // Runs what is pending, one request a turn.
    void runAll(int turns = 100) {
        for (int turn = 0; turn < turns; ++turn)
            protocol->processNextRequest();
    }

    // What is pending, in the order in which it is sent.
    QStringList pendingInOrder() {
        protocol->exchanged.clear();
        runAll();
        return protocol->exchanged;
    }

    // A reply that the engine has taken over, as a command hands it on.
    CReply* takenReply() {
        auto* const reply = new CReply(&channel);
        reply->addRefer();
        return reply;
    }

    QStringList logTexts() const { return log.texts(LogLine::Route::All); }

    TellingCore core;
    LogRecorder log;
    TestChannel channel{&core, channelId};
    ScriptedLink* const link = channel.take(std::make_unique<ScriptedLink>());
    PublishingRtu* const rtu = channel.add<PublishingRtu>(stationRecord(rtuId, "5"));
    ScriptedProtocol* const protocol = new ScriptedProtocol(&channel);
};

// Does `work` on a thread of its own. Work that hangs on a mutex cannot be ended: the test program ends then.
inline void expectNoDeadlock(const std::function<void()>& work) {
    std::promise<void> done;
    std::future<void> finished = done.get_future();
    std::thread worker([&] {
        work();
        done.set_value();
    });
    if (finished.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
        std::fputs("deadlock\n", stderr);
        std::abort();
    }
    worker.join();
}
