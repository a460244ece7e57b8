#pragma once

#include "Plant.h"
#include "RunningSite.h"

#include <Simulator.h>

#include <QTemporaryDir>

// A host in service on many lines at once: simulated controllers, and a host that runs them through the
// plug-in's file and takes commands. The lines' ids count from 1; on each is one controller, station 5, which
// is RTU 5 too.
//
// States: made, running (from start() to stop()), stopped; it can be started again. Threads: the test's;
// controllers and commands as theirs say.
class ManyLines {
public:
    static constexpr int station = 5;

    explicit ManyLines(const std::vector<LineType>& types, const sim::Options& options = {});
    ~ManyLines();

    // The kinds of lines in turns.
    static std::vector<LineType> mixed(std::size_t count);

    // Before start().
    host::Channel& line(int id) { return site.channels[static_cast<std::size_t>(id - 1)]; }
    host::Rtu& rtu(int id) { return line(id).rtus[0]; }
    host::Point& addPoint(int id, unsigned point, const host::ElementAddress& address);
    // From R0, as points of the same numbers.
    void addRegisters(int id, unsigned count);
    // So seldom that a line is idle once its controller has answered.
    void pollSeldom(int id);
    void makeLinks(host::HostRuntime::LinkFactory factory) { makeLink = std::move(factory); }
    // Hears of values and states of every run.
    void listen(HalvexDriverCoreInterface& listener) { listeners.push_back(&listener); }

    void start();
    void stop();

    int count() const { return static_cast<int>(site.channels.size()); }
    LineType type(int id) const { return lineTypes[static_cast<std::size_t>(id - 1)]; }
    sim::Simulator& controllers() { return simulator; }
    sim::Memory& memory(int id) { return simulator.memory(id, station); }
    host::CommandTaker& commands() { return running->commands(); }
    static host::Command command(int id, const host::CommandAction& action) { return {id, station, action}; }
    CRtu& driverRtu(int id) { return *running->hostRuntime().findRtu(id, station); }
    CChannel& channel(int id);
    ChannelStatus status(int id) { return running->hostRuntime().channelStatus(line(id)); }
    // Whether the register's point has this value now and is good.
    bool reads(int id, unsigned point, double value);

private:
    host::Channel hostLine(int id, LineType type);

    const std::vector<LineType> lineTypes;
    QTemporaryDir folder; // of the serial devices
    sim::Simulator simulator;
    host::Site site;
    host::HostRuntime::LinkFactory makeLink = host::makeLink;
    std::vector<HalvexDriverCoreInterface*> listeners;
    std::unique_ptr<RunningSite> running;
};
