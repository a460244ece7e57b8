#include "BenchChannel.h"

namespace {

RemoteTerminalUnit benchRecord() {
    RemoteTerminalUnit record;
    record.id = 1;
    record.scan.stationAddress = QString::number(BenchChannel::station);
    return record;
}

} // namespace

BenchChannel::BenchChannel(HalvexDriverCoreInterface* host)
    : CChannel(host, 1), ownRtu(static_cast<SBusRtu*>(AddRtu(benchRecord()))) {}

CRtu* BenchChannel::CreateRtu(const RemoteTerminalUnit& info) {
    return new SBusRtu(this, GetCore(), info);
}

void BenchChannel::addRegisters(unsigned count) {
    for (unsigned number = 0; number < count; ++number) {
        AnalogPoint point;
        point.number = number + 1;
        point.address = QStringLiteral("R%1").arg(number);
        ownRtu->GetPointList()->AddAnalogPoint(point);
    }
}

void BenchChannel::addFlags(unsigned count) {
    for (unsigned number = 0; number < count; ++number) {
        StatusPoint point;
        point.number = number + 1;
        point.firstAddress = QStringLiteral("F%1").arg(number);
        ownRtu->GetPointList()->AddStatusPoint(point);
    }
}
