#include "RtuBench.h"

#include "Hex.h"

namespace {

RemoteTerminalUnit record(int id) {
    RemoteTerminalUnit info;
    info.id = id;
    info.name = QStringLiteral("pump house");
    info.scan.stationAddress = QStringLiteral("5");
    return info;
}

} // namespace

void PrintTo(const SBusRequestItem& item, std::ostream* out) {
    *out << "(command " << item.command << ", address " << item.address << ", count " << item.count
         << ", data \"" << toHex(item.data).toStdString() << "\")";
}

CRtu* BenchChannel::CreateRtu(const RemoteTerminalUnit& info) {
    return new SBusRtu(this, GetCore(), info);
}

RtuBench::RtuBench()
    : protocol(new RecordingProtocol(&channel)), rtu(static_cast<SBusRtu*>(channel.AddRtu(record(rtuId)))) {
    rtu->attachProtocol(protocol, &delayedQueue);
    protocol->setLink(&link);
}

AnalogPoint* RtuBench::addAnalog(unsigned number, const char* address, const char* addressNumber,
                                 Halvex::PointDataType type) {
    AnalogPoint point;
    point.number = number;
    point.dataType = static_cast<unsigned>(type);
    point.address = QString::fromLatin1(address);
    point.addressNumber = QString::fromLatin1(addressNumber);
    return rtu->GetPointList()->AddAnalogPoint(point);
}

StatusPoint* RtuBench::addStatus(unsigned number, const char* first, const char* second) {
    StatusPoint point;
    point.number = number;
    point.firstAddress = QString::fromLatin1(first);
    point.secondAddress = QString::fromLatin1(second);
    return rtu->GetPointList()->AddStatusPoint(point);
}

int RtuBench::request(Halvex::PollKind kind, CReply* reply) {
    return rtu->RequestPoll(static_cast<int>(kind), reply);
}

void RtuBench::runPending() {
    // More turns than any test has requests pending.
    for (int turn = 0; turn < 10; ++turn)
        protocol->processNextRequest();
}

QList<SBusRequestItem> RtuBench::telegramsOf(Halvex::PollKind kind) {
    protocol->exchanges.clear();
    EXPECT_EQ(request(kind), 0);
    runPending();
    return protocol->items();
}
