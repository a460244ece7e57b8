#pragma once

#include "LogRecorder.h"
#include "RecordingCore.h"
#include "SBusChennel.h"

#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverLink/CLink.h>

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

// A datagram link to a controller that answers every read with zeros, or keeps silent. Any thread may look
// on.
class ControllerLink final : public CLink {
public:
    void failOpens(int count);
    void keepSilent();

    // Wait until that has happened so often; false when it takes absurdly long.
    bool waitForOpens(int count);
    bool waitForTelegrams(int count);

    int resetCount() const;
    int openCount() const;
    int closeCount() const;
    QList<QByteArray> telegrams() const;
    std::vector<std::chrono::steady_clock::time_point> openTimes() const;
    std::vector<std::chrono::steady_clock::time_point> sendTimes() const;

    void reset() override;
    int open() override;
    void close() override;
    int send(const char* data, int length, int timeoutMs) override;
    int receive(char* buffer, int capacity, int& received, int timeoutMs) override;
    int kind() const override { return udpKind; }

private:
    void wake() override {}

    mutable std::mutex mutex;
    std::condition_variable changed;
    int failingOpens = 0;
    bool silent = false;
    int resets = 0;
    int closes = 0;
    QList<QByteArray> sent;
    QByteArray answer; // to the telegram sent last
    std::vector<std::chrono::steady_clock::time_point> opened;
    std::vector<std::chrono::steady_clock::time_point> sentAt;
};

// An Ethernet or serial channel with links and RTUs from the test.
class ChannelBench : public testing::Test {
public:
    ~ChannelBench() override;

protected:
    static constexpr int channelId = 12;
    static constexpr int serial = 94021;
    static constexpr int ethernet = 94022;

    // The channel's link, which the channel owns.
    ControllerLink* setLink();
    static RemoteTerminalUnit record(int id, int station);
    CRtu* addRtu(int id, int station);
    // With one register, so that it has something to poll.
    CRtu* addPollingRtu(int id, int station);
    static void addRegister(CRtu* rtu, const char* address);

    void startWith(int commType);
    // Asks the thread to end and waits for it.
    void stop();
    bool waitUntil(const std::function<bool()>& reached);
    // The channel's own lines.
    QStringList linesAt(Halvex::LogLevel level) const;

    LogRecorder log;
    RecordingCore core;
    std::unique_ptr<SBusChennel> channel = std::make_unique<SBusChennel>(&core, channelId);
};
