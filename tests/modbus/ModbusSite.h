#pragma once

#include "site/Site.h"
#include "values/ValueStore.h"

// Channel 4 "waterworks" with the RTUs 7 "pump-house" and 8 "hill":
//   READY (1, I0), RUN (2, O32), FLOW (3, R100, float), LEVEL (4, R101), DEPTH (5, R102 x 0.01)
//   VALVE (1, O1), COUNT (2, C5)
inline host::Site modbusSite() {
    const auto point = [](unsigned id, const char* name, host::ElementAddress address) {
        host::Point one;
        one.id = id;
        one.name = name;
        one.address = address;
        one.kind = host::isBitMedia(address.media) ? host::PointKind::Status : host::PointKind::Analog;
        one.spot = {id + 1, 1};
        return one;
    };
    host::Rtu pumpHouse;
    pumpHouse.id = 7;
    pumpHouse.name = "pump-house";
    pumpHouse.pointFile = "pump-house.csv";
    pumpHouse.points = {point(1, "READY", {'I', 0}), point(2, "RUN", {'O', 32}), point(3, "FLOW", {'R', 100}),
                        point(4, "LEVEL", {'R', 101}), point(5, "DEPTH", {'R', 102})};
    pumpHouse.points[2].isFloat = true;
    host::Engineering hundredths;
    hundredths.scaling = host::Scaling(0.01, 0);
    hundredths.unit = "m";
    pumpHouse.points[4].engineering = std::make_shared<const host::Engineering>(hundredths);
    host::Rtu hill;
    hill.id = 8;
    hill.name = "hill";
    hill.pointFile = "hill.csv";
    hill.points = {point(1, "VALVE", {'O', 1}), point(2, "COUNT", {'C', 5})};
    host::Channel channel;
    channel.id = 4;
    channel.name = "waterworks";
    channel.primary = host::UdpEnd{"127.0.0.1", 9}; // the discard port, where nobody answers
    channel.rtus = {pumpHouse, hill};
    host::Site site;
    site.channels = {channel};
    return site;
}

// What the driver reads of a point, by its place in its RTU.
inline void publish(host::ValueStore& store, int rtu, unsigned place, double raw,
                    PointQuality quality = PointQuality::Good) {
    const bool isAnalog = store.points().find(4, rtu)->rtu->points[place].kind == host::PointKind::Analog;
    store.publishPoints(4, rtu, {PointUpdate{isAnalog, place, raw, {}, quality}});
}

// Every point read good: bits are 1, FLOW 1.5, LEVEL -2, DEPTH 12.34, COUNT 70,000.
inline void publishAll(host::ValueStore& store) {
    publish(store, 7, 0, 1);
    publish(store, 7, 1, 1);
    publish(store, 7, 2, 1.5);
    publish(store, 7, 3, -2);
    publish(store, 7, 4, 1'234);
    publish(store, 8, 0, 1);
    publish(store, 8, 1, 70'000);
}
