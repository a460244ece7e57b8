#pragma once

#include "BenchChannel.h"
#include "Controller.h"
#include "CountingCore.h"
#include "SBusEthernetDriver.h"

#include <HalvexDriverComponent/CLogger.h>

// The pieces of work that are measured in time and in instructions alike. Each is made once and then run
// again and again on one thread.

// What one telegram carries at the most.
constexpr int registersInTelegram = 127;

// Request taken from the table, telegram sent and answered, values published.
class EthernetPoll {
public:
    EthernetPoll();

    // Puts a request into the table.
    void request();
    void process() { protocol.processNextRequest(); }
    std::size_t values() const { return core.values(); }

private:
    const Controller controller;
    CountingCore core;
    BenchChannel channel{&core};
    SBusEthernetDriver protocol{&channel};
};

// The values of one answer put into their points and published.
class Publication {
public:
    enum class Kind { Registers, Flags };
    explicit Publication(Kind publishedKind);

    void run();

private:
    const Kind kind;
    const QString media;
    CountingCore core;
    BenchChannel channel{&core};
    QList<int> words;
    QList<quint8> bits;
};

// The answer with 127 registers as lines of the frame trace.
class FrameDump {
public:
    enum class Trace { Off, On };
    explicit FrameDump(Trace trace);

    void run();
    int bytes() const { return frame.size(); }

private:
    const QByteArray frame;
    std::unique_ptr<CLogger::Subscription> watcher;
};
