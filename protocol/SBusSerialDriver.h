#pragma once

#include "SBusProtocolBase.h"
#include "SerialTelegram.h"

class SBusExchange;

// S-Bus over a serial line. One setting serves the whole line: the channel writes the values of each of
// its RTUs in turn, and those of the last one stay.
class SBusSerialDriver final : public SBusProtocolBase {
public:
    explicit SBusSerialDriver(CChannel* owner);

    unsigned checkResponse(const QByteArray& frame, const QByteArray& response, const SBusRequest& request,
                           const SBusRequestItem& item) override;
    void buildReadFrame(QByteArray& frame, const SBusRequestItem& item, int station) override;
    void buildWriteFrame(QByteArray& frame, const SBusRequestItem& item, int station) override;
    unsigned reservedHook() override;
    unsigned transceive(const SBusRequestItem& item, const QByteArray& frame, QByteArray& response,
                        const SBusRequest& request, bool read) override;

    // The number in the RTU's record: 0 Data Mode, 1 Break Mode, any other sbus::serial::Mode::Other.
    qint32 transmitMode = 1;
    qint32 breakDelay = 10; // milliseconds

private:
    sbus::serial::Mode mode() const { return sbus::serial::modeOf(transmitMode); }
    void sendBreak() const;
    static unsigned awaitAnswer(QByteArray& response, const SBusExchange& exchange);
    unsigned checkReadAnswer(QByteArray& response, const SBusExchange& exchange) const;
    unsigned checkWriteAnswer(const QByteArray& response, const SBusExchange& exchange) const;
};
