#pragma once

#include "SBusProtocolBase.h"

#include <array>

class QElapsedTimer;
class SBusExchange;

// S-Bus over a datagram link. Each telegram carries a sequence number that its answer must repeat, so that
// a late answer to an earlier telegram is never taken for the answer to this one.
class SBusEthernetDriver final : public SBusProtocolBase {
public:
    explicit SBusEthernetDriver(CChannel* owner);

    unsigned checkResponse(const QByteArray& frame, const QByteArray& response, const SBusRequest& request,
                           const SBusRequestItem& item) override;
    void buildReadFrame(QByteArray& frame, const SBusRequestItem& item, int station) override;
    void buildWriteFrame(QByteArray& frame, const SBusRequestItem& item, int station) override;
    unsigned reservedHook() override;
    // A silent controller is a channel error here, not a time-out. Whether an answer is that of a read
    // follows from the command, not from `read`.
    unsigned transceive(const SBusRequestItem& item, const QByteArray& frame, QByteArray& response,
                        const SBusRequest& request, bool read) override;

private:
    static constexpr int areaSize = 1024; // bytes; no telegram is longer
    using ReceiveArea = std::array<char, areaSize>;

    quint16 nextSequence = 0;
    quint16 expectedSequence = 0; // of the telegram built last

    static unsigned awaitTelegram(QByteArray& telegram, const QByteArray& response,
                                  const SBusExchange& exchange);
    static unsigned awaitRest(ReceiveArea& area, int arrived, const QElapsedTimer& time,
                              const QByteArray& response, const SBusExchange& exchange);
    unsigned checkReadAnswer(const QByteArray& telegram, const SBusExchange& exchange) const;
    unsigned checkWriteAnswer(const QByteArray& telegram, const SBusExchange& exchange) const;
};
