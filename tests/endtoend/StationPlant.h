#pragma once

#include "EveryLine.h"
#include "RunningSite.h"
#include "values/ChangeReader.h"

#include <Simulator.h>

#include <QTemporaryDir>

// Several simulated controllers on one line, and a host that polls them through the plug-in's file as
// `sbus-host run` does. RTU and station have the same number.
class StationPlant {
public:
    static constexpr int lineId = 1;

    StationPlant(LineType type, const std::vector<int>& stations, const sim::Options& options = {});

    // Before start().
    host::Rtu& rtu(int station);
    // Gives it `count` points from `first` on, whose ids are their elements' numbers.
    void addPoints(int station, char media, unsigned first, unsigned count);
    void setScan(std::chrono::milliseconds integrity, std::chrono::milliseconds others);

    void start() { running.start(PLUGIN_FILE); }
    void stop() { running.stop(); }

    sim::Simulator& controllers() { return simulator; }
    sim::Memory& memory(int station) { return simulator.memory(lineId, station); }
    // How many telegrams of all kinds the controller has got, and how many of them it refused.
    std::uint64_t telegrams(int station) const;
    std::uint64_t refusals(int station) const;

    RunningSite& host() { return running; }
    host::RtuFigures figures(int station) const;
    std::size_t countPoints(int station, PointQuality quality) const;
    host::PointState state(int station, const host::ElementAddress& element) const;
    // The first point that is good with another value than its element's; empty when there is none.
    std::string wrongValue(int station);
    // All changes since the last call, of any point.
    std::vector<host::PointChange> takeChanges();

private:
    host::Channel hostLine(const std::vector<int>& stations) const;
    const host::PointTable::Block& blockOf(int station) const;

    const LineType type;
    QTemporaryDir folder; // of the serial device
    sim::Simulator simulator;
    RunningSite running;
    std::unique_ptr<host::ChangeReader> reader;
};
