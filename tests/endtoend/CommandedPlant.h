#pragma once

#include "EveryLine.h"

#include "runtime/CommandService.h"
#include "runtime/HostRuntime.h"
#include "runtime/RunLog.h"
#include "runtime/ValueStore.h"

#include <Simulator.h>

#include <QTemporaryDir>

#include <mutex>

// A whole plant in one process: simulated controllers, and a host that runs them through the plug-in's file
// and takes commands. One line, one controller: station 5, RTU 7 of channel 1.
class CommandedPlant {
public:
    static constexpr int lineId = 1;
    static constexpr int station = 5;
    static constexpr int rtuId = 7;

    explicit CommandedPlant(LineType type, const sim::Options& options = {}, unsigned baud = 115'200);
    ~CommandedPlant();

    // Before start().
    host::Rtu& rtu() { return site.channels[0].rtus[0]; }
    host::Point& addPoint(unsigned id, const host::ElementAddress& address);
    // So seldom that commands have the line to themselves.
    void pollSeldom();

    void start();
    void stop();

    sim::Simulator& controllers() { return simulator; }
    sim::Memory& memory() { return simulator.memory(lineId, station); }
    host::CommandTaker& commands() { return *service; }
    static host::Command command(const host::CommandAction& action) { return {lineId, rtuId, action}; }
    // Its result.
    Halvex::DriverErrorResult carryOut(const host::CommandAction& action);
    bool reads(unsigned point, double value) const;
    std::vector<std::string> messages() const;

private:
    host::Channel hostLine(unsigned baud) const;

    const LineType type;
    QTemporaryDir folder; // of the serial device
    sim::Simulator simulator;
    host::Site site;
    mutable std::mutex mutex; // guards the messages
    std::vector<std::string> told;
    std::unique_ptr<host::ValueStore> values;
    host::CoreFanOut core;
    std::unique_ptr<host::RunLog> log;
    std::unique_ptr<host::HostRuntime> runtime;
    std::unique_ptr<host::CommandService> service;
};
