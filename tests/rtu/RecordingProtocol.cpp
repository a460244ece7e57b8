#include "RecordingProtocol.h"
#include "SBusPublishingRtu.h"

unsigned RecordingProtocol::checkResponse(const QByteArray&, const QByteArray&, const SBusRequest&,
                                          const SBusRequestItem&) {
    return SBusSuccess;
}

void RecordingProtocol::buildReadFrame(QByteArray& frame, const SBusRequestItem&, int) {
    frame = QByteArrayLiteral("read");
}

void RecordingProtocol::buildWriteFrame(QByteArray& frame, const SBusRequestItem&, int) {
    frame = QByteArrayLiteral("write");
}

unsigned RecordingProtocol::reservedHook() {
    return SBusSuccess;
}

unsigned RecordingProtocol::transceive(const SBusRequestItem& item, const QByteArray&, QByteArray& response,
                                       const SBusRequest& request, bool) {
    exchanges << Exchange{request.rtu, request.name, request.reply, item};
    request.rtu->SetConnect(outcome == SBusSuccess, true);
    response.replace(0, payload.size(), payload);
    return outcome;
}

QList<SBusRequestItem> RecordingProtocol::items() const {
    QList<SBusRequestItem> result;
    for (const Exchange& exchange : exchanges)
        result << exchange.item;
    return result;
}
