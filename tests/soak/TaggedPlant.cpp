#include "TaggedPlant.h"

#include "Printers.h"
#include "ProcessFigures.h"
#include "Sanitized.h"

#include <gtest/gtest.h>

namespace soak {

using sim::Media;

namespace {

sim::Framing framingOf(LineType type) {
    return type == LineType::SerialBreakMode ? sim::Framing::BreakMode : sim::Framing::DataMode;
}

} // namespace

TaggedPlant::TaggedPlant(const Shape& plantShape, const HostEnd& hostEnd)
    : built(plantShape), simulator(simulatedSite(), built.controllers) {
    EXPECT_LE(placesOfStation() * static_cast<unsigned>(built.lines * built.stations), mostPlaces);
    EXPECT_EQ(simulator.start(), "");
    fillMemories();
    for (int line = 1; line <= built.lines; ++line)
        runningSite.site().channels.push_back(hostChannel(line, hostEnd(simulator, line)));
    runningSite.listen(valueJudge);
}

TaggedPlant::~TaggedPlant() {
    stop();
}

unsigned TaggedPlant::firstPlaceOf(int lineId, int station) const {
    return static_cast<unsigned>((lineId - 1) * built.stations + station - 1) * placesOfStation();
}

unsigned TaggedPlant::placeOfSetPoint(int lineId, int station, unsigned index) const {
    return firstPlaceOf(lineId, station) + built.registers + built.flags + index;
}

sim::Site TaggedPlant::simulatedSite() const {
    std::vector<int> stations;
    for (int station = 1; station <= built.stations; ++station)
        stations.push_back(station);
    sim::Site site;
    for (int line = 1; line <= built.lines; ++line) {
        const std::string device = folder.filePath(QStringLiteral("line%1").arg(line)).toStdString();
        const LineType type = built.typeOf(line);
        site.lines.push_back(type == LineType::Ethernet
                                 ? sim::udpLine(line, stations)
                                 : sim::serialLine(line, stations, framingOf(type), device));
    }
    return site;
}

host::Channel TaggedPlant::hostChannel(int lineId, const host::LinkEnd& end) {
    host::Channel channel;
    channel.id = lineId;
    channel.name = "line " + std::to_string(lineId);
    channel.type =
        built.typeOf(lineId) == LineType::Ethernet ? host::LineType::Ethernet : host::LineType::Serial;
    channel.primary = end;
    for (int station = 1; station <= built.stations; ++station)
        channel.rtus.push_back(hostRtu(lineId, station));
    return channel;
}

host::Rtu TaggedPlant::hostRtu(int lineId, int station) {
    host::Rtu rtu;
    rtu.id = station;
    rtu.name = "station " + std::to_string(station);
    rtu.station = static_cast<unsigned>(station);
    rtu.timeout = built.timeout;
    rtu.transmitType = built.typeOf(lineId) == LineType::SerialBreakMode ? host::TransmitType::Break
                                                                         : host::TransmitType::Data;
    rtu.breakDelayMs = 1;
    rtu.scan = built.scan;
    unsigned place = firstPlaceOf(lineId, station);
    for (unsigned i = 0; i < built.registers; ++i)
        addPoint(rtu, lineId, 1 + i, {'R', i * built.stride}, place++, ValueJudge::Kind::Moving);
    for (unsigned i = 0; i < built.flags; ++i)
        addPoint(rtu, lineId, firstFlagPoint + i, {'F', i}, place++, ValueJudge::Kind::Bit);
    for (unsigned i = 0; i < built.setPoints; ++i)
        addPoint(rtu, lineId, firstSetPoint + i, {'R', firstSetPointElement + i}, place++,
                 ValueJudge::Kind::Commanded);
    return rtu;
}

void TaggedPlant::addPoint(host::Rtu& rtu, int lineId, unsigned id, host::ElementAddress address,
                           unsigned place, ValueJudge::Kind kind) {
    host::Point point;
    point.id = id;
    point.name = toText(address);
    point.address = address;
    point.kind = host::isBitMedia(address.media) ? host::PointKind::Status : host::PointKind::Analog;
    valueJudge.expect(lineId, rtu.id, static_cast<unsigned>(rtu.points.size()), place, kind);
    rtu.points.push_back(point);
}

void TaggedPlant::fillMemories() {
    setRegisters(0);
    for (int line = 1; line <= built.lines; ++line)
        for (int station = 1; station <= built.stations; ++station) {
            const unsigned first = firstPlaceOf(line, station) + built.registers;
            for (unsigned i = 0; i < built.flags; ++i)
                simulator.memory(line, station).set(Media::Flags, i, taggedBit(first + i));
        }
}

void TaggedPlant::setRegisters(std::uint16_t move) {
    std::vector<std::uint32_t> words(built.registers * built.stride);
    for (int line = 1; line <= built.lines; ++line)
        for (int station = 1; station <= built.stations; ++station) {
            const unsigned first = firstPlaceOf(line, station);
            for (unsigned i = 0; i < built.registers; ++i)
                words[i * built.stride] = taggedWord(first + i, move);
            simulator.memory(line, station).set(Media::Registers, 0, words);
        }
}

void TaggedPlant::start() {
    moving = true;
    mover = std::thread([this] {
        while (moving) {
            setRegisters(valueJudge.nextMove());
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    });
    runningSite.start(PLUGIN_FILE);
    ASSERT_TRUE(Plant::eventually([this] { return valueJudge.isAllFresh(); }));
    descriptors = openDescriptors();
    threads = runningThreads();
}

void TaggedPlant::stop() {
    runningSite.stop();
    moving = false;
    if (mover.joinable())
        mover.join();
}

void TaggedPlant::awaitRequests(std::uint64_t count) {
    const std::uint64_t goal = figures().requests + count;
    std::uint64_t ended = 0;
    do {
        ended = figures().requests;
        ASSERT_TRUE(Plant::eventually([&] { return figures().requests > ended; }));
    } while (ended < goal);
}

void TaggedPlant::expectFreshValues() {
    // A cycle is a status poll and an analog poll. One request was on its way before, and a line that was
    // opened anew asks for an integrity poll. A sanitizer on a busy machine makes some answers late by
    // itself.
    constexpr std::uint64_t mostRequests = (isSanitized ? 4 : 1) * (3 * 2 + 2);
    valueJudge.demandFresh();
    ASSERT_TRUE(Plant::eventually([this] { return valueJudge.isAllFresh(); }));
    EXPECT_LE(valueJudge.mostRequestsUntilFresh(), mostRequests);
}

void TaggedPlant::expectRecovery() {
    expectFreshValues();
    const bool areAsMany =
        Plant::eventually([this] { return openDescriptors() == descriptors && runningThreads() == threads; });
    EXPECT_TRUE(areAsMany) << openDescriptors() << " descriptors after " << descriptors << ", "
                           << runningThreads() << " threads after " << threads;
}

void TaggedPlant::expectNoWrongValue() const {
    EXPECT_EQ(valueJudge.wrongCount(), 0U) << valueJudge.wrongValues();
}

TaggedPlant::Figures TaggedPlant::figures() {
    Figures sum;
    for (const host::RtuFigures& rtu : runningSite.hostRuntime().rtuFigures()) {
        sum.requests += rtu.status.requests;
        sum.attempts += rtu.attempts;
        sum.failed += rtu.status.timeOuts + rtu.status.errors;
    }
    return sum;
}

std::string TaggedPlant::figuresText() {
    const Figures sum = figures();
    return std::to_string(sum.requests) + " requests in " + std::to_string(sum.attempts) + " attempts, " +
           std::to_string(sum.failed) + " failed, " + std::to_string(valueJudge.valueCount()) + " values, " +
           std::to_string(valueJudge.wrongCount()) + " wrong, fresh after " +
           std::to_string(valueJudge.mostRequestsUntilFresh()) + " requests";
}

} // namespace soak
