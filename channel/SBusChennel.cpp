#include "SBusChennel.h"

#include "SBusDelayedQueue.h"
#include "SBusEthernetDriver.h"
#include "SBusRtu.h"
#include "SBusSerialDriver.h"

#include <HalvexDriverComponent/CLogger.h>
#include <HalvexDriverComponent/Halvex.h>
#include <HalvexDriverLink/CLink.h>

#include <utility>

using Halvex::CommTypeCode;
using Halvex::LogLevel;

namespace {

constexpr unsigned long turnMs = 10;    // between two turns while connected
constexpr unsigned long retryMs = 1000; // between two tries to open the link

} // namespace

SBusChennel::SBusChennel(HalvexDriverCoreInterface* coreInterface, int channelId)
    : CChannel(coreInterface, channelId) {}

SBusChennel::~SBusChennel() {
    delete delayedQueue;
}

bool SBusChennel::InitChannel() {
    if (CLink* const link = GetLink())
        link->reset();
    if (protocol == nullptr)
        protocol = createProtocol();
    if (protocol != nullptr) {
        delayedQueue = new SBusDelayedQueue;
        delayedQueue->setProtocol(protocol);
    }
    for (CRtu* const entry : GetRtuMap()) {
        auto* const rtu = static_cast<SBusRtu*>(entry);
        if (rtu == nullptr)
            continue;
        rtu->attachProtocol(protocol, delayedQueue);
        if (rtu->IsEnable())
            rtu->InitRtu();
        if (GetCommType() == static_cast<int>(CommTypeCode::SBusSerial))
            takeOverLineSettings(*rtu);
    }
    return true;
}

SBusProtocolBase* SBusChennel::createProtocol() {
    switch (static_cast<CommTypeCode>(GetCommType())) {
    case CommTypeCode::SBusSerial:
        return new SBusSerialDriver(this);
    case CommTypeCode::SBusEthernet:
        return new SBusEthernetDriver(this);
    }
    return nullptr;
}

// Called for each RTU in the order of the ids, disabled ones included, so the last one decides for the line.
void SBusChennel::takeOverLineSettings(const CRtu& rtu) {
    auto* const serial = static_cast<SBusSerialDriver*>(protocol);
    const EScan& settings = rtu.GetRtuInfo().scan;
    serial->transmitMode = settings.transmitType.toInt(nullptr, 10);
    serial->breakDelay = settings.breakDelay.toInt(nullptr, 10);
}

void SBusChennel::setPause(std::function<void(unsigned long)> newPause) {
    pause = std::move(newPause);
}

void SBusChennel::run() {
    while (!IsShutdown()) {
        CheckScan();
        if (!IsConnect() && !connectLink()) {
            pause(retryMs);
            continue;
        }
        if (delayedQueue != nullptr)
            delayedQueue->dispatchDue();
        if (protocol != nullptr)
            protocol->processNextRequest();
        pause(turnMs);
    }
}

bool SBusChennel::connectLink() {
    CLink* const link = GetLink();
    if (link == nullptr)
        return false;
    if (link->open() != 0) {
        log(LogLevel::LinkFailure, QStringLiteral("Error opening channel"));
        PutCommFailDuration();
        return false;
    }
    OnLinkStateChanged(true);
    return true;
}

void SBusChennel::OnLinkStateChanged(bool isConnected) {
    if (isConnected)
        onConnected();
    else
        onDisconnected();
}

void SBusChennel::onConnected() {
    log(LogLevel::Success, QStringLiteral("%1 channel has connected").arg(linkName()));
    SetConnect(true);
    protocol->setLink(GetLink());
    for (CRtu* const rtu : GetRtuMap()) {
        if (rtu == nullptr)
            continue;
        rtu->SetConnect(true, true);
        rtu->RequestPoll(static_cast<int>(Halvex::PollKind::Integrity), nullptr);
    }
}

void SBusChennel::onDisconnected() {
    SetConnect(false);
    for (CRtu* const rtu : GetRtuMap())
        if (rtu != nullptr)
            rtu->SetConnect(false, true);
    log(LogLevel::LinkFailure, QStringLiteral("%1 channel has disconnected").arg(linkName()));
    protocol->setLink(nullptr);
}

void SBusChennel::CloseChannel() {
    for (CRtu* const rtu : GetRtuMap())
        if (rtu != nullptr)
            rtu->StopRtu();
    if (CLink* const link = GetLink()) {
        link->close();
        SetConnect(false);
    }
}

CRtu* SBusChennel::CreateRtu(const RemoteTerminalUnit& info) {
    return new SBusRtu(this, GetCore(), info);
}

void SBusChennel::log(LogLevel level, const QString& text) const {
    CLogger::GetInstance()->writeAll(channelId(), 0, level, text);
}

QString SBusChennel::linkName() const {
    return GetWhereLink() != 0 ? QStringLiteral("Secondary") : QStringLiteral("Primary");
}
