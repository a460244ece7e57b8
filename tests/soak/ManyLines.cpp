#include "ManyLines.h"

#include "UdpController.h"

#include <gtest/gtest.h>

namespace {

sim::Site simulatedSite(const std::vector<LineType>& types, const QTemporaryDir& folder) {
    sim::Site site;
    for (const LineType type : types) {
        const int id = static_cast<int>(site.lines.size()) + 1;
        const std::string device = folder.filePath(QStringLiteral("line%1").arg(id)).toStdString();
        if (type == LineType::Ethernet)
            site.lines.push_back(sim::udpLine(id, {ManyLines::station}, unusedUdpPort()));
        else
            site.lines.push_back(sim::serialLine(id, {ManyLines::station},
                                                 type == LineType::SerialBreakMode ? sim::Framing::BreakMode
                                                                                   : sim::Framing::DataMode,
                                                 device));
    }
    return site;
}

} // namespace

ManyLines::ManyLines(const std::vector<LineType>& types, const sim::Options& options)
    : lineTypes(types), simulator(simulatedSite(types, folder), options) {
    const std::string fault = simulator.start();
    EXPECT_EQ(fault, "");
    for (const LineType type : types)
        site.channels.push_back(hostLine(count() + 1, type));
}

ManyLines::~ManyLines() {
    stop();
}

std::vector<LineType> ManyLines::mixed(std::size_t count) {
    constexpr LineType kinds[] = {LineType::Ethernet, LineType::SerialDataMode, LineType::SerialBreakMode};
    std::vector<LineType> types;
    while (types.size() < count)
        types.push_back(kinds[types.size() % std::size(kinds)]);
    return types;
}

host::Channel ManyLines::hostLine(int id, LineType type) {
    host::Rtu rtu;
    rtu.id = station;
    rtu.name = "controller";
    rtu.station = station;
    rtu.timeout = std::chrono::milliseconds(500);
    rtu.transmitType =
        type == LineType::SerialBreakMode ? host::TransmitType::Break : host::TransmitType::Data;
    rtu.breakDelayMs = 1;
    rtu.scan = {std::chrono::seconds(1), std::chrono::milliseconds(100), std::chrono::milliseconds(100)};
    host::Channel channel;
    channel.id = id;
    channel.name = "line " + std::to_string(id);
    channel.rtus = {rtu};
    if (type == LineType::Ethernet) {
        channel.primary = host::UdpEnd{"127.0.0.1", simulator.port(id)};
        return channel;
    }
    channel.type = host::LineType::Serial;
    host::SerialEnd end;
    end.device = simulator.device(id);
    channel.primary = end;
    return channel;
}

host::Point& ManyLines::addPoint(int id, unsigned number, const host::ElementAddress& address) {
    host::Point point;
    point.id = number;
    point.name = toText(address);
    point.address = address;
    point.kind = host::isBitMedia(address.media) ? host::PointKind::Status : host::PointKind::Analog;
    rtu(id).points.push_back(point);
    return rtu(id).points.back();
}

void ManyLines::addRegisters(int id, unsigned registers) {
    for (unsigned i = 0; i < registers; ++i)
        addPoint(id, i, {'R', i});
}

void ManyLines::pollSeldom(int id) {
    rtu(id).scan = {std::chrono::hours(1), std::chrono::hours(1), std::chrono::hours(1)};
}

void ManyLines::start() {
    running = std::make_unique<RunningSite>();
    running->site() = site;
    running->makeLinks(makeLink);
    for (HalvexDriverCoreInterface* const listener : listeners)
        running->listen(*listener);
    running->start(PLUGIN_FILE);
}

void ManyLines::stop() {
    running.reset();
}

CChannel& ManyLines::channel(int id) {
    return *driverRtu(id).GetChannel();
}

bool ManyLines::reads(int id, unsigned number, double value) {
    for (const PointUpdate& point : driverRtu(id).GetPointStates())
        if (point.number == number)
            return point.quality == PointQuality::Good && point.value == value;
    return false;
}
