#include "CommandedPlant.h"

#include <gtest/gtest.h>

#include <future>

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
    site.channels.push_back(hostLine(baud));
}

CommandedPlant::~CommandedPlant() {
    stop();
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
    values = std::make_unique<host::ValueStore>(site);
    core.add(*values);
    log = std::make_unique<host::RunLog>(site, false);
    runtime = std::make_unique<host::HostRuntime>(site, core);
    ASSERT_EQ(runtime->start(PLUGIN_FILE), "");
    service = std::make_unique<host::CommandService>(
        site, core, [this](int channel, int id) { return runtime->findRtu(channel, id); },
        [this](int channel, int id) { return log->wasLastRequestRefused(channel, id); },
        [this](const std::string& text) {
            const std::lock_guard<std::mutex> lock(mutex);
            told.push_back(text);
        });
    ASSERT_TRUE(Plant::eventually([this] { return runtime->rtuFigures().at(0).status.answers > 0; }));
}

void CommandedPlant::stop() {
    if (service)
        service->stop();
    if (runtime)
        runtime->stop();
}

Halvex::DriverErrorResult CommandedPlant::carryOut(const host::CommandAction& action) {
    std::promise<Halvex::DriverErrorResult> promise;
    std::future<Halvex::DriverErrorResult> result = promise.get_future();
    const std::string refusal = commands().submit(
        command(action), [&promise](Halvex::DriverErrorResult ended) { promise.set_value(ended); });
    EXPECT_EQ(refusal, "");
    return refusal.empty() ? result.get() : Halvex::DriverErrorResult::NotSupported;
}

bool CommandedPlant::reads(unsigned point, double value) const {
    const std::vector<host::PointRef>& refs = values->points();
    for (std::size_t i = 0; i < refs.size(); ++i)
        if (refs[i].point->id == point)
            return values->states()[i].quality == PointQuality::Good && values->states()[i].value == value;
    return false;
}

std::vector<std::string> CommandedPlant::messages() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return told;
}
