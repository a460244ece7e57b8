#include "Plant.h"

#include <HalvexAbstractDriver/DriverPluginInterface.h>
#include <HalvexDriverLink/CLinkSerial.h>
#include <HalvexDriverLink/CLinkUdp.h>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <utility>

namespace {

sim::LineSite lineOf(LineType type, const std::vector<int>& stations, const std::string& device) {
    switch (type) {
    case LineType::SerialDataMode:
        return sim::serialLine(Plant::lineId, stations, sim::Framing::DataMode, device);
    case LineType::SerialBreakMode:
        return sim::serialLine(Plant::lineId, stations, sim::Framing::BreakMode, device);
    case LineType::Ethernet:
        break;
    }
    return sim::udpLine(Plant::lineId, stations);
}

sim::Site siteOf(LineType type, const std::vector<int>& stations, const QTemporaryDir& folder) {
    sim::LineSite line = lineOf(type, stations, folder.filePath(QStringLiteral("line")).toStdString());
    line.secondary = line.primary;
    line.secondary->path = folder.filePath(QStringLiteral("secondary")).toStdString();
    return {{line}};
}

} // namespace

Plant::Plant(LineType lineType, const std::vector<int>& stations, const sim::Options& options)
    : type(lineType), simulator(siteOf(lineType, stations, folder), options),
      loader(QStringLiteral(PLUGIN_FILE)) {
    core().clear();
    for (const int station : stations)
        configured[station];
    const std::string error = simulator.start();
    EXPECT_EQ(error, "");
}

Plant::~Plant() {
    stop();
}

RecordingCore& Plant::core() {
    static RecordingCore recordingCore;
    return recordingCore;
}

void Plant::wrapLinks(std::function<std::unique_ptr<CLink>(std::unique_ptr<CLink>)> wrap) {
    wrapLink = std::move(wrap);
}

StatusPoint& Plant::addStatusPoint(int station, unsigned number, const QString& address) {
    StatusPoint point;
    point.number = number;
    point.firstAddress = address;
    configured.at(station).status << point;
    return configured.at(station).status.last();
}

void Plant::addAnalogPoint(int station, unsigned number, const QString& address,
                           Halvex::PointDataType dataType) {
    AnalogPoint point;
    point.number = number;
    point.address = address;
    point.dataType = static_cast<unsigned>(dataType);
    configured.at(station).analog << point;
}

RemoteTerminalUnit Plant::rtuRecord(int station) const {
    RemoteTerminalUnit record;
    record.id = station;
    record.name = QStringLiteral("station %1").arg(station);
    record.scan.stationAddress = QString::number(station);
    record.scan.transmitType = type == LineType::SerialBreakMode ? QStringLiteral("1") : QStringLiteral("0");
    record.scan.breakDelay = QStringLiteral("1");
    record.sessionTimeOutMs = sessionTimeOutMs;
    record.periods = periods;
    return record;
}

std::unique_ptr<CLink> Plant::makeLink(sim::End end) {
    if (type == LineType::Ethernet) {
        UdpSettings settings;
        settings.host = "127.0.0.1";
        settings.port = simulator.port(lineId, end);
        return std::make_unique<CLinkUdp>(settings);
    }
    SerialSettings settings;
    settings.device = simulator.device(lineId, end);
    return std::make_unique<CLinkSerial>(settings);
}

void Plant::start() {
    auto* const driver = qobject_cast<DriverPluginInterface*>(loader.instance());
    ASSERT_NE(driver, nullptr) << loader.errorString().toStdString();
    driver->initialize(&core());
    ownChannel.reset(driver->createChannel(lineId));
    ownChannel->SetCommType(static_cast<int>(type == LineType::Ethernet ? Halvex::CommTypeCode::SBusEthernet
                                                                        : Halvex::CommTypeCode::SBusSerial));
    ownChannel->SetLinks(wrapLink(makeLink(sim::End::Primary)),
                         hasSecondaryEnd ? wrapLink(makeLink(sim::End::Secondary)) : nullptr);
    if (lineIsDead)
        simulator.cut(lineId);
    for (const auto& [station, points] : configured) {
        CRtu* const rtu = ownChannel->AddRtu(rtuRecord(station));
        for (const StatusPoint& point : points.status)
            rtu->GetPointList()->AddStatusPoint(point);
        for (const AnalogPoint& point : points.analog)
            rtu->GetPointList()->AddAnalogPoint(point);
    }
    ASSERT_TRUE(ownChannel->InitChannel());
    ownChannel->start();
}

bool Plant::stop() {
    constexpr unsigned long patienceMs = 30'000;
    if (!ownChannel)
        return true;
    ownChannel->SetShutdown(true);
    if (!ownChannel->wait(static_cast<unsigned long>(sessionTimeOutMs)))
        ownChannel->InterruptLinks();
    const bool ended = ownChannel->wait(patienceMs);
    ownChannel->CloseChannel();
    ownChannel.reset();
    return ended;
}

CRtu& Plant::rtu(int station) {
    return *ownChannel->GetRtuMap().value(station);
}

std::map<unsigned, PointUpdate> Plant::points(int station) {
    std::map<unsigned, PointUpdate> result;
    for (const PointUpdate& point : rtu(station).GetPointStates())
        result[point.number] = point;
    return result;
}

bool Plant::allPointsAre(int station, PointQuality quality) {
    const auto states = points(station);
    return !states.empty() && std::all_of(states.begin(), states.end(),
                                          [=](const auto& entry) { return entry.second.quality == quality; });
}

bool Plant::eventually(const std::function<bool()>& condition) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point patience = Clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (Clock::now() > patience)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}
