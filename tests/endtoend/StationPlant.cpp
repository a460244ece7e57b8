#include "StationPlant.h"

#include <gtest/gtest.h>

namespace {

sim::Site simulatedSite(LineType type, const QTemporaryDir& folder, const std::vector<int>& stations) {
    if (type == LineType::Ethernet)
        return {{sim::udpLine(StationPlant::lineId, stations)}};
    const sim::Framing framing =
        type == LineType::SerialBreakMode ? sim::Framing::BreakMode : sim::Framing::DataMode;
    sim::SerialSettings settings;
    settings.baud = 115'200;
    return {{sim::serialLine(StationPlant::lineId, stations, framing,
                             folder.filePath(QStringLiteral("line")).toStdString(), settings)}};
}

} // namespace

StationPlant::StationPlant(LineType lineType, const std::vector<int>& stations, const sim::Options& options)
    : type(lineType), simulator(simulatedSite(lineType, folder, stations), options) {
    EXPECT_EQ(simulator.start(), "");
    running.site().channels.push_back(hostLine(stations));
}

host::Channel StationPlant::hostLine(const std::vector<int>& stations) const {
    host::Channel channel;
    channel.id = lineId;
    channel.name = "line";
    for (const int station : stations) {
        host::Rtu rtu;
        rtu.id = station;
        rtu.name = "station-" + std::to_string(station);
        rtu.station = static_cast<unsigned>(station);
        rtu.timeout = std::chrono::milliseconds(500);
        rtu.transmitType =
            type == LineType::SerialBreakMode ? host::TransmitType::Break : host::TransmitType::Data;
        rtu.breakDelayMs = 1;
        channel.rtus.push_back(rtu);
    }
    if (type == LineType::Ethernet) {
        channel.primary = host::UdpEnd{"127.0.0.1", simulator.port(lineId)};
        return channel;
    }
    channel.type = host::LineType::Serial;
    host::SerialEnd end;
    end.device = simulator.device(lineId);
    end.baud = 115'200;
    channel.primary = end;
    return channel;
}

host::Rtu& StationPlant::rtu(int station) {
    for (host::Rtu& one : running.site().channels[0].rtus)
        if (one.id == station)
            return one;
    throw std::out_of_range("no such station");
}

void StationPlant::addPoints(int station, char media, unsigned first, unsigned count) {
    for (unsigned number = first; number < first + count; ++number) {
        host::Point point;
        point.id = static_cast<unsigned>(rtu(station).points.size());
        point.address = {media, number};
        point.name = toText(point.address);
        point.kind = host::isBitMedia(media) ? host::PointKind::Status : host::PointKind::Analog;
        rtu(station).points.push_back(point);
    }
}

void StationPlant::setScan(std::chrono::milliseconds integrity, std::chrono::milliseconds others) {
    for (host::Rtu& one : running.site().channels[0].rtus)
        one.scan = {integrity, others, others};
}

std::uint64_t StationPlant::telegrams(int station) const {
    const sim::LineCounts counts = simulator.counts(lineId);
    std::uint64_t sum = 0;
    for (const auto& [command, count] : counts.stations.at(station).telegrams)
        sum += count;
    return sum;
}

std::uint64_t StationPlant::refusals(int station) const {
    return simulator.counts(lineId).stations.at(station).refusals;
}

host::RtuFigures StationPlant::figures(int station) const {
    for (const host::RtuFigures& one : const_cast<RunningSite&>(running).hostRuntime().rtuFigures())
        if (one.rtu->id == station)
            return one;
    throw std::out_of_range("no such station");
}

const host::PointTable::Block& StationPlant::blockOf(int station) const {
    return *running.values().points().find(lineId, station);
}

std::size_t StationPlant::countPoints(int station, PointQuality quality) const {
    const host::PointTable::Block& block = blockOf(station);
    std::size_t count = 0;
    for (host::PointIndex index = block.first; index < block.end(); ++index)
        count += running.values().state(index).quality == quality ? 1 : 0;
    return count;
}

host::PointState StationPlant::state(int station, const host::ElementAddress& element) const {
    const host::PointTable::Block& block = blockOf(station);
    for (host::PointIndex index = block.first; index < block.end(); ++index)
        if (running.values().points().at(index).point->address == element)
            return running.values().state(index);
    throw std::out_of_range("no such point");
}

std::string StationPlant::wrongValue(int station) {
    const host::PointTable::Block& block = blockOf(station);
    for (host::PointIndex index = block.first; index < block.end(); ++index) {
        const host::PointState state = running.values().state(index);
        const host::ElementAddress& element = running.values().points().at(index).point->address;
        const std::uint32_t held = memory(station).get(*sim::mediaOf(element.media), element.number);
        if (state.quality == PointQuality::Good && state.value != held)
            return toText(element) + " is " + std::to_string(state.value) + " in place of " +
                   std::to_string(held);
    }
    return {};
}

std::vector<host::PointChange> StationPlant::takeChanges() {
    if (!reader)
        reader = std::make_unique<host::ChangeReader>(running.values());
    std::vector<host::PointChange> all;
    std::vector<host::PointChange> some;
    while (reader->read(some, host::ValueStore::mostAtOnce), !some.empty()) {
        all.insert(all.end(), some.begin(), some.end());
        some.clear();
    }
    return all;
}
