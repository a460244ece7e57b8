#pragma once

#include "RecordingCore.h"
#include "RecordingProtocol.h"
#include "SBusDelayedQueue.h"
#include "SBusRtu.h"
#include "ScriptedLink.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CReply.h>

#include <gtest/gtest.h>

#include <atomic>

// How a telegram prints in a failed test.
void PrintTo(const SBusRequestItem& item, std::ostream* out);

inline SBusRequestItem readItem(quint32 command, quint32 address, quint32 count) {
    return {command, count, address, {}};
}

// The clock of the RTUs below: the computer's, until a test sets it. It may be read on any thread.
class BenchClock {
public:
    static qint64 read();
    // The next reading is `firstMs`, and each one after it `stepMs` later.
    static void set(qint64 firstMs, qint64 stepMs);
    static void release() { isSet = false; }
    // Since it was set.
    static int readings() { return taken; }

private:
    static inline std::atomic<bool> isSet{false};
    static inline std::atomic<qint64> next{0};
    static inline std::atomic<qint64> step{0};
    static inline std::atomic<int> taken{0};
};

// A channel that never runs: its RTUs are turned by the test.
class BenchChannel final : public CChannel {
public:
    using CChannel::CChannel;
    bool InitChannel() override { return true; }
    void CloseChannel() override {}
    CRtu* CreateRtu(const RemoteTerminalUnit& info) override;
};

// One RTU on a channel that is online, with an engine that remembers what reaches it.
class RtuBench : public testing::Test {
protected:
    static constexpr int channelId = 7;
    static constexpr int rtuId = 3;

    RtuBench();
    ~RtuBench() override;

    AnalogPoint* addAnalog(unsigned number, const char* address, const char* addressNumber = "",
                           Halvex::PointDataType type = Halvex::PointDataType::Integer);
    StatusPoint* addStatus(unsigned number, const char* first, const char* second = "");

    int request(Halvex::PollKind kind, CReply* reply = nullptr);
    // Runs whatever is pending.
    void runPending();
    // The telegrams that a poll of `kind` sends.
    QList<SBusRequestItem> telegramsOf(Halvex::PollKind kind);
    // Requests that the engine has ended, those without telegrams included.
    quint64 endedRequests() const { return rtu->GetRtuStatus().requests; }

    ScriptedLink link;
    RecordingCore core;
    SBusDelayedQueue delayedQueue;
    BenchChannel channel{&core, channelId};
    RecordingProtocol* const protocol; // the channel's child
    SBusRtu* const rtu;                // the channel's
};
