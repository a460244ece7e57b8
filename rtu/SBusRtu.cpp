#include "SBusRtu.h"

#include "ElementFinder.h"
#include "PointRecords.h"
#include "ReadItems.h"
#include "SBusProtocolBase.h"

#include <HalvexDriverComponent/CReply.h>
#include <HalvexDriverComponent/Halvex.h>

namespace {

using ElementsByMedia = QMap<QString, sbus::MediaAddressSet>;

constexpr int success = static_cast<int>(Halvex::DriverErrorResult::Success);
constexpr int notSupported = static_cast<int>(Halvex::DriverErrorResult::NotSupported);

// The driver does not serve these kinds of the host's scan interface, and says so; any other unknown kind it
// just ignores.
bool isRefusedKind(int kind) {
    return kind == 4 || kind == 6;
}

void addElement(ElementsByMedia& table, const sbus::PointAddress& address) {
    table[address.media][address.number()] = 1;
}

QList<SBusRequestItem> readItemsOf(const ElementsByMedia& table) {
    QList<SBusRequestItem> items;
    for (auto media = table.cbegin(); media != table.cend(); ++media)
        items += sbus::buildReadItems(media.key(), media.value());
    return items;
}

} // namespace

SBusRtu::SBusRtu(CChannel* owner, HalvexDriverCoreInterface* coreInterface, const RemoteTerminalUnit& rtu)
    : CRtu(coreInterface, owner, rtu), channel(owner),
      analogFinder(std::make_unique<sbus::ElementFinder>(analogIndex)),
      statusFinder(std::make_unique<sbus::ElementFinder>(statusIndex)) {}

SBusRtu::~SBusRtu() = default;

void SBusRtu::attachProtocol(SBusProtocolBase* newProtocol, SBusDelayedQueue* newQueue) {
    protocol = newProtocol;
    delayedQueue = newQueue;
}

bool SBusRtu::InitRtu() {
    pollsBuilt = false;
    buildPollTable();
    return true;
}

void SBusRtu::StopRtu() {}

int SBusRtu::RequestPoll(int kind, CReply* reply) {
    if (!pollsBuilt)
        buildPollTable();
    if (isRefusedKind(kind))
        return notSupported;
    const SBusRequest* const prepared = preparedPollOf(kind);
    if (prepared == nullptr || prepared->rtu == nullptr)
        return success;
    if (reply != nullptr)
        reply->addRefer();
    SBusRequest poll = *prepared;
    poll.reply = reply;
    protocol->queueRequest(poll);
    return success;
}

const SBusRequest* SBusRtu::preparedPollOf(int kind) const {
    switch (static_cast<Halvex::PollKind>(kind)) {
    case Halvex::PollKind::Integrity:
        return &integrityPoll;
    case Halvex::PollKind::Status:
        return &statusPoll;
    case Halvex::PollKind::Analog:
        return &analogPoll;
    }
    return nullptr;
}

int SBusRtu::RequestHistory(int /*kind*/, CReply* /*reply*/) {
    return success;
}

int SBusRtu::readParameter(unsigned /*parameter*/, CReply* /*reply*/) {
    return notSupported;
}

int SBusRtu::writeParameter(unsigned /*parameter*/, double /*value*/, CReply* /*reply*/) {
    return notSupported;
}

int SBusRtu::resetDevice(CReply* /*reply*/) {
    return notSupported;
}

// A rebuild that finds no points any more leaves the earlier polls in place, so they go on.
void SBusRtu::buildPollTable() {
    if (pollsBuilt)
        return;
    const QList<AnalogPoint*> analogPoints = GetPointList()->GetAnalogPointList().values();
    const QList<StatusPoint*> statusPoints = GetPointList()->GetStatusPointList().values();
    if (analogPoints.isEmpty() && statusPoints.isEmpty())
        return;
    const QList<SBusRequestItem> analogItems = buildAnalogItems(analogPoints);
    const QList<SBusRequestItem> statusItems = buildStatusItems(statusPoints);
    analogPoll = requestOf(QStringLiteral("analog poll"), analogItems);
    statusPoll = requestOf(QStringLiteral("status poll"), statusItems);
    integrityPoll = requestOf(QStringLiteral("Integrity poll"), statusItems + analogItems);
    pollsBuilt = true;
}

QList<SBusRequestItem> SBusRtu::buildAnalogItems(const QList<AnalogPoint*>& analogPoints) {
    ElementsByMedia media;
    analogIndex.clear();
    analogFinder->forget();
    for (AnalogPoint* const point : analogPoints) {
        const sbus::PointAddress address = sbus::parseAnalogAddress(*point);
        addElement(media, address);
        analogIndex[address.key()].append(point->number);
    }
    return readItemsOf(media);
}

// Both addresses are read; only the first is indexed.
QList<SBusRequestItem> SBusRtu::buildStatusItems(const QList<StatusPoint*>& statusPoints) {
    ElementsByMedia media;
    statusIndex.clear();
    statusFinder->forget();
    for (StatusPoint* const point : statusPoints) {
        for (const sbus::PointAddress& address : sbus::parseStatusAddresses(*point))
            addElement(media, address);
        statusIndex[point->firstAddress + point->firstAddressNumber].append(point->number);
    }
    return readItemsOf(media);
}

SBusRequest SBusRtu::requestOf(const QString& name, const QList<SBusRequestItem>& items) {
    SBusRequest request;
    request.rtu = this;
    request.name = name;
    request.items = items;
    return request;
}
