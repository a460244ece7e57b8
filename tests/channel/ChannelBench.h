#pragma once

#include "ControllerLink.h"
#include "LogRecorder.h"
#include "RecordingCore.h"
#include "SBusChennel.h"

#include <HalvexDriverComponent/CRtu.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

// What the channel did, in order. Any thread.
class Journal {
public:
    void note(const QString& entry);
    QStringList take();

private:
    QMutex mutex;
    QStringList entries;
};

// A core that tells the test of each RTU's status.
class WatchedCore final : public RecordingCore {
public:
    std::function<void(int rtuId, const RtuStatus&)> onRtuStatus = [](int, const RtuStatus&) {};

    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override;
};

// An Ethernet or serial channel with links and RTUs from the test. Its loop runs on its own thread, turn by
// turn: nothing waits, and the test has its say at each pause.
//
// The journal holds what the channel does, with "on" or "off" before each entry for whether the channel is
// marked connected at that moment: "off open", "on pause 10".
class ChannelBench : public testing::Test {
public:
    ChannelBench();
    ~ChannelBench() override;

protected:
    static constexpr int channelId = 12;
    static constexpr int serial = 94021;
    static constexpr int ethernet = 94022;

    std::unique_ptr<ControllerLink> makeLink();
    // The channel's primary link, which the channel owns.
    ControllerLink* setLink();
    ControllerLink* setSecondaryLinkAlone();

    static RemoteTerminalUnit record(int id, int station);
    CRtu* addRtu(int id, int station);
    // With one register, so that it has something to poll.
    CRtu* addPollingRtu(int id, int station);
    static void addRegister(CRtu* rtu, const char* address);
    // One that notes in the journal what it is asked for. Only after InitChannel, which takes every RTU for
    // one of its own kind.
    void addNotingRtu(int id);
    // A place among the RTUs without one, until takeEmptyPlaceAway.
    void addEmptyPlace(int id);
    void takeEmptyPlaceAway(int id);

    void initialise(int commType);
    // Runs the loop until it has paused `count` times more.
    void runTurns(int count);
    // Called on the channel's thread in place of the pause, with the number of the turn, from 1.
    std::function<void(int turn)> atPause = [](int) {};

    // The journal since the last call.
    QStringList journal() { return entries.take(); }
    // The channel's own lines.
    QStringList linesAt(Halvex::LogLevel level) const;

    Journal entries;
    LogRecorder log;
    WatchedCore core;
    QList<unsigned long> pauses; // milliseconds
    std::unique_ptr<SBusChennel> channel = std::make_unique<SBusChennel>(&core, channelId);

private:
    void note(const QString& entry);
    QMap<int, CRtu*>& places();

    const std::unique_ptr<CLogger::Subscription> logWatch;
};
