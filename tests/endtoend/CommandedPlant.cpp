#include "CommandedPlant.h"

#include <gtest/gtest.h>

namespace {

sim::Site simulatedSite(LineType type, const QTemporaryDir& folder, unsigned baud) {
    if (type == LineType::Ethernet)
        return {{sim::udpLine(CommandedPlant::lineId, {CommandedPlant::station})}};
    sim::SerialSettings settings;
    settings.baud = baud;
    const sim::Framing framing =
        type == LineType::SerialBreakMode ? sim::Framing::BreakMode : sim::Framing::DataMode;
    return {{sim::serialLine(CommandedPlant::lineId, {CommandedPlant::station}, framing,
                             folder.filePath(QStringLiteral("line")).toStdString(), settings)}};
}

} // namespace

CommandedPlant::CommandedPlant(LineType lineType, const sim::Options& options, unsigned baud)
    : type(lineType), simulator(simulatedSite(lineType, folder, baud), options) {
    const std::string fault = simulator.start();
    EXPECT_EQ(fault, "");
    running.site().channels.push_back(hostLine(baud));
}

host::Channel CommandedPlant::hostLine(unsigned baud) const {
    host::Rtu rtu;
    rtu.id = rtuId;
    rtu.name = "pump-house";
    rtu.station = station;
    rtu.transmitType =
        type == LineType::SerialBreakMode ? host::TransmitType::Break : host::TransmitType::Data;
    rtu.breakDelayMs = 1;
    rtu.scan.status = std::chrono::milliseconds(200);
    rtu.scan.analog = std::chrono::milliseconds(500);
    host::Channel channel;
    channel.id = lineId;
    channel.name = "waterworks";
    channel.rtus = {rtu};
    if (type == LineType::Ethernet) {
        channel.primary = host::UdpEnd{"127.0.0.1", simulator.port(lineId)};
        return channel;
    }
    channel.type = host::LineType::Serial;
    host::SerialEnd end;
    end.device = simulator.device(lineId);
    end.baud = baud;
    channel.primary = end;
    return channel;
}

host::Point& CommandedPlant::addPoint(unsigned id, const host::ElementAddress& address) {
    host::Point point;
    point.id = id;
    point.name = toText(address);
    point.address = address;
    point.kind = host::isBitMedia(address.media) ? host::PointKind::Status : host::PointKind::Analog;
    rtu().points.push_back(point);
    return rtu().points.back();
}

void CommandedPlant::pollSeldom() {
    rtu().scan = {std::chrono::hours(1), std::chrono::hours(1), std::chrono::hours(1)};
}

// Returns when the controller has answered for the first time.
void CommandedPlant::start() {
    running.start(PLUGIN_FILE);
    ASSERT_TRUE(Plant::eventually([this] { return running.haveAllAnswered(); }));
}

bool CommandedPlant::reads(unsigned point, double value) const {
    const host::PointTable& points = running.values().points();
    for (host::PointIndex i = 0; i < points.size(); ++i) {
        if (points.at(i).point->id != point)
            continue;
        const host::PointState state = running.values().state(i);
        return state.quality == PointQuality::Good && state.value == value;
    }
    return false;
}
