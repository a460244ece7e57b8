#pragma once

#include "Plant.h"
#include "RunningSite.h"
#include "TaggedValues.h"

#include <Simulator.h>

#include <QTemporaryDir>

#include <atomic>
#include <functional>
#include <optional>
#include <thread>

namespace soak {

struct Shape {
    LineType type = LineType::Ethernet;
    std::optional<LineType> typeOfEvenLines; // none: the same
    int lines = 1;
    int stations = 1;         // of each line, from 1 on
    unsigned registers = 100; // of each station, from R0 on; they move
    unsigned stride = 1;      // from one register to the next; beyond 1 each is a telegram of its own
    unsigned flags = 60;      // F0 and so on; they stand still
    unsigned setPoints = 4;   // R30000 and so on; they are commanded
    std::chrono::milliseconds timeout{150};
    host::ScanTimes scan{std::chrono::hours(1), std::chrono::milliseconds(50), std::chrono::milliseconds(50)};
    sim::Options controllers;

    LineType typeOf(int lineId) const { return lineId % 2 == 0 ? typeOfEvenLines.value_or(type) : type; }

    Shape() { controllers.records = 1'000'000; } // of writes: those of every command
};

// A whole plant in one process, whose lines lead through a relay of the test's: simulated controllers whose
// elements hold tagged values that move all the time, the host with the plug-in that polls them, and the
// judgement of what it publishes.
//
// States: made (controllers play), running, stopped for good. Main thread.
class TaggedPlant {
public:
    static constexpr unsigned firstFlagPoint = 10'001;
    static constexpr unsigned firstSetPoint = 20'001;
    static constexpr unsigned firstSetPointElement = 30'000;

    // Where the host finds the line `lineId`, which is one of 1 to `lines`: the relay's end of it.
    using HostEnd = std::function<host::LinkEnd(const sim::Simulator& controllers, int lineId)>;

    TaggedPlant(const Shape& plantShape, const HostEnd& hostEnd);
    TaggedPlant(const TaggedPlant&) = delete;
    TaggedPlant& operator=(const TaggedPlant&) = delete;
    ~TaggedPlant();

    const Shape& shape() const { return built; }
    sim::Simulator& controllers() { return simulator; }
    RunningSite& host() { return runningSite; }
    ValueJudge& judge() { return valueJudge; }
    // Which of all places the set point `index` of a station has.
    unsigned placeOfSetPoint(int lineId, int station, unsigned index) const;

    // Returns when every point is good; from here on descriptors and threads are to stay as many.
    void start();
    void stop();

    // Waits until so many more requests have ended, over all RTUs, as long as any do.
    void awaitRequests(std::uint64_t count);
    // Nothing is broken any more: each RTU has all its points fresh before it has ended more than the
    // requests of three cycles.
    void expectFreshValues();
    // The same, and descriptors and threads are as many as at the start.
    void expectRecovery();
    void expectNoWrongValue() const;

    struct Figures {
        std::uint64_t requests = 0;
        std::uint64_t attempts = 0; // the driver's requests that these took
        std::uint64_t failed = 0;
    };
    // Of all RTUs.
    Figures figures();
    // "12034 requests in 13020 attempts, 210 failed, 1203400 values, none wrong, fresh after 3 requests"
    std::string figuresText();

private:
    unsigned placesOfStation() const { return built.registers + built.flags + built.setPoints; }
    unsigned firstPlaceOf(int lineId, int station) const;
    sim::Site simulatedSite() const;
    host::Channel hostChannel(int lineId, const host::LinkEnd& end);
    host::Rtu hostRtu(int lineId, int station);
    void addPoint(host::Rtu& rtu, int lineId, unsigned id, host::ElementAddress address, unsigned place,
                  ValueJudge::Kind kind);
    void fillMemories();
    void setRegisters(std::uint16_t move);

    const Shape built;
    QTemporaryDir folder; // of serial devices
    sim::Simulator simulator;
    ValueJudge valueJudge;
    RunningSite runningSite;
    std::thread mover;
    std::atomic<bool> moving{false};
    int descriptors = 0;
    int threads = 0;
};

} // namespace soak
