#pragma once

#include "SBusProtocolBase.h"

#include <QList>

class CRtu;

// An engine without a wire: it remembers each telegram it is asked to exchange and answers it from the test.
// Channel's thread, here the test's.
class RecordingProtocol final : public SBusProtocolBase {
public:
    struct Exchange {
        CRtu* rtu;
        QString poll;
        CReply* reply;
        SBusRequestItem item;
    };

    using SBusProtocolBase::SBusProtocolBase;
    // Whether an equal request is pending; only while no other thread uses the engine.
    using SBusProtocolBase::containsRequest;

    unsigned checkResponse(const QByteArray& frame, const QByteArray& response, const SBusRequest& request,
                           const SBusRequestItem& item) override;
    void buildReadFrame(QByteArray& frame, const SBusRequestItem& item, int station) override;
    void buildWriteFrame(QByteArray& frame, const SBusRequestItem& item, int station) override;
    unsigned reservedHook() override;
    unsigned transceive(const SBusRequestItem& item, const QByteArray& frame, QByteArray& response,
                        const SBusRequest& request, bool read) override;

    QList<SBusRequestItem> items() const;

    QList<Exchange> exchanges;
    unsigned outcome = SBusSuccess;
    // The payload of the answers from now on; without one it is all zeros.
    QByteArray payload;
};
