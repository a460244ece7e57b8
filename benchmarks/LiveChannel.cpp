#include "LiveChannel.h"

#include <HalvexDriverComponent/CRtu.h>

#include <chrono>
#include <stdexcept>
#include <thread>

LiveChannel::LiveChannel(HalvexDriverCoreInterface& core, int id, Halvex::CommTypeCode type,
                         std::unique_ptr<CLink> link, const EScan& scan, unsigned registers)
    : channel(&core, id) {
    channel.SetCommType(static_cast<int>(type));
    channel.SetLinks(std::move(link));
    RemoteTerminalUnit record;
    record.id = 1;
    record.scan = scan;
    record.periods = {0, 0, registers > 0 ? 1 : 0}; // due at every turn
    CRtu* const rtu = channel.AddRtu(record);
    for (unsigned number = 0; number < registers; ++number) {
        AnalogPoint point;
        point.number = number + 1;
        point.address = QStringLiteral("R%1").arg(number);
        rtu->GetPointList()->AddAnalogPoint(point);
    }
    channel.InitChannel();
    channel.start();
}

LiveChannel::~LiveChannel() {
    channel.SetShutdown(true);
    channel.InterruptLinks();
    channel.wait();
    channel.CloseChannel();
}

void LiveChannel::waitForConnection() const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!channel.IsConnect()) {
        if (std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error("a channel does not connect; are there descriptors left for its link?");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}
