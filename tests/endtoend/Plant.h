#pragma once

#include "RecordingCore.h"

#include <HalvexDriverComponent/CChannel.h>
#include <HalvexDriverComponent/CRtu.h>
#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverLink/CLink.h>

#include <Simulator.h>

#include <QPluginLoader>
#include <QTemporaryDir>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>

enum class LineType { Ethernet, SerialDataMode, SerialBreakMode };

// A whole plant in one process: simulated controllers on a line, the plug-in from its file, and one channel
// of it that polls them. Station and RTU id are the same number.
class Plant {
public:
    Plant(LineType type, const std::vector<int>& stations, const sim::Options& options = {});
    ~Plant();

    // Before start().
    void setSessionTimeOut(int ms) { sessionTimeOutMs = ms; }
    void setScanPeriods(const ScanPeriods& scanPeriods) { periods = scanPeriods; }
    // Gives the line no controllers to open: a device that is not there, a port that nobody serves.
    void leaveLineDead() { lineIsDead = true; }
    // Gives the channel the line's other end as well.
    void useSecondaryEnd() { hasSecondaryEnd = true; }
    // Lets the channel use what `wrap` makes of each of its links.
    void wrapLinks(std::function<std::unique_ptr<CLink>(std::unique_ptr<CLink>)> wrap);
    // The point is the caller's to complete, until the next is added.
    StatusPoint& addStatusPoint(int station, unsigned number, const QString& address);
    void addAnalogPoint(int station, unsigned number, const QString& address,
                        Halvex::PointDataType type = Halvex::PointDataType::Integer);

    void start();
    // Ends the channel as a host does: asks, waits one session time-out, interrupts. False when the thread
    // did not end.
    bool stop();

    sim::Simulator& controllers() { return simulator; }
    sim::Memory& memory(int station) { return simulator.memory(lineId, station); }
    CChannel& channel() { return *ownChannel; }
    CRtu& rtu(int station);
    // One for the process, as the driver keeps the first core that it is given; empty for each new plant.
    static RecordingCore& core();
    std::map<unsigned, PointUpdate> points(int station);
    bool allPointsAre(int station, PointQuality quality);

    // Whether `condition` came true, looked at every few milliseconds for as long as a busy machine may need.
    static bool eventually(const std::function<bool()>& condition);

    static constexpr int lineId = 1;

private:
    struct Points {
        QList<StatusPoint> status;
        QList<AnalogPoint> analog;
    };

    RemoteTerminalUnit rtuRecord(int station) const;
    std::unique_ptr<CLink> makeLink(sim::End end);

    const LineType type;
    QTemporaryDir folder; // of the serial device
    sim::Simulator simulator;
    QPluginLoader loader;
    std::map<int, Points> configured; // by station
    ScanPeriods periods{1000, 100, 100};
    int sessionTimeOutMs = 500;
    bool lineIsDead = false;
    bool hasSecondaryEnd = false;
    std::function<std::unique_ptr<CLink>(std::unique_ptr<CLink>)> wrapLink = [](std::unique_ptr<CLink> link) {
        return link;
    };
    std::unique_ptr<CChannel> ownChannel;
};
