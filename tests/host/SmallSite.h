#pragma once

#include "site/Site.h"

// A site for the tests of the runtime: one Ethernet line to a port where nobody listens, one RTU with a
// status point (number 1, O32) and two analog points (2, R100 as float; 3, R101).
inline host::Site smallSite() {
    using host::PointKind;
    host::Rtu rtu;
    rtu.id = 7;
    rtu.name = "pump-house";
    rtu.station = 5;
    rtu.timeout = std::chrono::milliseconds(200);
    host::Point run;
    run.id = 1;
    run.name = "RUN";
    run.address = {'O', 32};
    host::Point flow;
    flow.id = 2;
    flow.name = "FLOW";
    flow.kind = PointKind::Analog;
    flow.address = {'R', 100};
    flow.isFloat = true;
    host::Point level = flow;
    level.id = 3;
    level.name = "LEVEL";
    level.address = {'R', 101};
    level.isFloat = false;
    rtu.points = {run, flow, level};

    host::Channel channel;
    channel.id = 4;
    channel.name = "waterworks";
    channel.primary = host::UdpEnd{"127.0.0.1", 9}; // the discard port, where nobody answers
    channel.rtus = {rtu};
    return {{channel}};
}
