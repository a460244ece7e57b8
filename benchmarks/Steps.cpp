#include "Steps.h"

#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverLink/CLinkUdp.h>

namespace {

constexpr int frameOfLongestAnswer = 519; // bytes: header, 127 registers, checksum

struct Dumper : SBusProtocolBase {
    using SBusProtocolBase::logFrame;
};

} // namespace

EthernetPoll::EthernetPoll() : controller(sim::udpLine(1, {BenchChannel::station})) {
    channel.SetLinks(std::make_unique<CLinkUdp>(UdpSettings{"127.0.0.1", controller.port()}));
    channel.addRegisters(registersInTelegram);
    channel.rtu().attachProtocol(&protocol, nullptr);
    channel.rtu().InitRtu();
    if (channel.GetLink()->open() != 0)
        throw std::runtime_error("the link does not open");
    channel.SetConnect(true);
    protocol.setLink(channel.GetLink());
}

void EthernetPoll::request() {
    channel.rtu().RequestPoll(static_cast<int>(Halvex::PollKind::Analog), nullptr);
}

Publication::Publication(Kind publishedKind)
    : kind(publishedKind), media(kind == Kind::Registers ? QStringLiteral("R") : QStringLiteral("F")) {
    if (kind == Kind::Registers)
        channel.addRegisters(registersInTelegram);
    else
        channel.addFlags(registersInTelegram);
    channel.rtu().InitRtu();
    for (int i = 0; i < registersInTelegram; ++i) {
        words.append(i);
        bits.append(static_cast<quint8>(i % 2));
    }
}

void Publication::run() {
    if (kind == Kind::Registers)
        channel.rtu().publishAnalogValues(0, media, words);
    else
        channel.rtu().publishStatusValues(0, media, bits);
    channel.rtu().PutDatapoints();
}

FrameDump::FrameDump(Trace trace) : frame(frameOfLongestAnswer, '\x5A') {
    if (trace == Trace::On)
        watcher = CLogger::GetInstance()->watchLinesAndFrames([](const LogLine&) {});
}

void FrameDump::run() {
    Dumper::logFrame(1, 1, Halvex::PacketType::Received, frame.constData(), frame.size());
}
