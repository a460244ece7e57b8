#pragma once

#include "EveryLine.h"
#include "RunningSite.h"

#include <Simulator.h>

#include <QTemporaryDir>

// A whole plant in one process: simulated controllers, and a host that runs them through the plug-in's file
// and takes commands. One line, one controller: station 5, RTU 7 of channel 1.
class CommandedPlant {
public:
    static constexpr int lineId = 1;
    static constexpr int station = 5;
    static constexpr int rtuId = 7;

    explicit CommandedPlant(LineType type, const sim::Options& options = {}, unsigned baud = 115'200);

    // Before start().
    host::Rtu& rtu() { return running.site().channels[0].rtus[0]; }
    host::Point& addPoint(unsigned id, const host::ElementAddress& address);
    // So seldom that commands have the line to themselves.
    void pollSeldom();

    void start();
    void stop() { running.stop(); }

    sim::Simulator& controllers() { return simulator; }
    sim::Memory& memory() { return simulator.memory(lineId, station); }
    host::CommandTaker& commands() { return running.commands(); }
    static host::Command command(const host::CommandAction& action) { return {lineId, rtuId, action}; }
    // Its result.
    Halvex::DriverErrorResult carryOut(const host::CommandAction& action) {
        return running.carryOut(command(action));
    }
    bool reads(unsigned point, double value) const;
    std::vector<std::string> messages() const { return running.messages(); }

private:
    host::Channel hostLine(unsigned baud) const;

    const LineType type;
    QTemporaryDir folder; // of the serial device
    sim::Simulator simulator;
    RunningSite running;
};
