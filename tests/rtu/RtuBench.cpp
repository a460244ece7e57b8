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

qint64 BenchClock::read() {
    if (!isSet)
        return QDateTime::currentMSecsSinceEpoch();
    ++taken;
    return next.fetch_add(step);
}

void BenchClock::set(qint64 firstMs, qint64 stepMs) {
    isSet = true;
    next = firstMs;
    step = stepMs;
    taken = 0;
}

CRtu* BenchChannel::CreateRtu(const RemoteTerminalUnit& info) {
    return new SBusRtu(this, GetCore(), info, BenchClock::read);
}

RtuBench::RtuBench()
    : protocol(new RecordingProtocol(&channel)), rtu(static_cast<SBusRtu*>(channel.AddRtu(record(rtuId)))) {
    rtu->attachProtocol(protocol, &delayedQueue);
    protocol->setLink(&link);
}

RtuBench::~RtuBench() {
    BenchClock::release();
}

AnalogPoint* RtuBench::addAnalog(unsigned number, const char* address, const char* addressNumber,
                                 Halvex::PointDataType type) {
    AnalogPoint point;
    point.number = number;
    point.dataType = static_cast<unsigned>(type);
    point.address = QString::fromUtf8(address);
    point.addressNumber = QString::fromUtf8(addressNumber);
    return rtu->GetPointList()->AddAnalogPoint(point);
}

StatusPoint* RtuBench::addStatus(unsigned number, const char* first, const char* second) {
    StatusPoint point;
    point.number = number;
    point.firstAddress = QString::fromUtf8(first);
    point.secondAddress = QString::fromUtf8(second);
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
