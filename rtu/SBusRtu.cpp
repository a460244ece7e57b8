#include "SBusRtu.h"

#include "CommandResult.h"
#include "PointIndex.h"
#include "PointRecords.h"
#include "ReadItems.h"
#include "SBusProtocolBase.h"
#include "TakenOverReply.h"

namespace result = sbus::result;

namespace {

using ElementsByMedia = QMap<QString, sbus::MediaAddressSet>;

// Kinds of the host's scan interface that are answered with "not supported". Every other unknown kind is
// accepted and does nothing.
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

SBusRtu::SBusRtu(CChannel* owner, HalvexDriverCoreInterface* coreInterface, const RemoteTerminalUnit& rtu,
                 sbus::WallClock wallClock)
    : SBusPublishingRtu(coreInterface, owner, rtu), channel(owner),
      analogIndex(std::make_unique<sbus::PointIndex>()), statusIndex(std::make_unique<sbus::PointIndex>()),
      clock(wallClock), stamp(wallClock) {}

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
        return result::notSupported;
    const SBusRequest* const prepared = preparedPollOf(kind);
    if (prepared == nullptr || prepared->rtu == nullptr)
        return result::success;
    SBusRequest poll = *prepared;
    poll.reply = sbus::takenOver(reply);
    protocol->queueRequest(poll);
    return result::success;
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
    return result::success;
}

int SBusRtu::readParameter(unsigned /*parameter*/, CReply* /*reply*/) {
    return result::notSupported;
}

int SBusRtu::writeParameter(unsigned /*parameter*/, double /*value*/, CReply* /*reply*/) {
    return result::notSupported;
}

int SBusRtu::resetDevice(CReply* /*reply*/) {
    return result::notSupported;
}

// A rebuild that finds no points leaves the earlier polls and indexes in place, so those polls go on.
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
    *analogIndex = {};
    for (AnalogPoint* const point : analogPoints) {
        const sbus::PointAddress address = sbus::parseAnalogAddress(*point);
        addElement(media, address);
        analogIndex->add(address.key(), point->number);
    }
    analogIndex->complete();
    return readItemsOf(media);
}

// Both addresses are read, but values are only found by the first.
QList<SBusRequestItem> SBusRtu::buildStatusItems(const QList<StatusPoint*>& statusPoints) {
    ElementsByMedia media;
    *statusIndex = {};
    for (StatusPoint* const point : statusPoints) {
        for (const sbus::PointAddress& address : sbus::parseStatusAddresses(*point))
            addElement(media, address);
        statusIndex->add(point->firstAddress + point->firstAddressNumber, point->number);
    }
    statusIndex->complete();
    return readItemsOf(media);
}

SBusRequest SBusRtu::requestOf(const QString& name, const QList<SBusRequestItem>& items) {
    SBusRequest request;
    request.rtu = this;
    request.name = name;
    request.items = items;
    return request;
}
