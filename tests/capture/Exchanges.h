#pragma once

#include "Hex.h"
#include "telegram/Exchange.h"

#include <string>

// The bytes of "B5 00 01", and the text of such bytes.
inline host::TelegramBytes bytes(const char* text) {
    const QByteArray all = hex(text);
    return {all.begin(), all.end()};
}

inline std::string text(const host::TelegramBytes& telegram) {
    return toHex({reinterpret_cast<const char*>(telegram.data()), static_cast<int>(telegram.size())})
        .toStdString();
}

// With station 5 of channel 1, at 2026-11-18 11:06:40.123456 UTC. An answer comes after 4.5 ms.
inline host::Exchange exchangeOf(host::Framing framing, const char* sent, const char* received,
                                 host::Answer answer = host::Answer::Good) {
    host::Exchange exchange;
    exchange.channelId = 1;
    exchange.framing = framing;
    exchange.station = 5;
    exchange.sent = bytes(sent);
    exchange.received = bytes(received);
    exchange.sentAt = std::chrono::system_clock::time_point(std::chrono::seconds(1'795'000'000) +
                                                            std::chrono::microseconds(123'456));
    if (!exchange.received.empty())
        exchange.roundTrip = std::chrono::microseconds(4'500);
    exchange.answer = answer;
    return exchange;
}

// The Ethernet telegram that reads R10 and R11 of station 5, and its answer: 7 and -2.
inline host::Exchange readOfTwoRegisters() {
    return exchangeOf(host::Framing::Ethernet, "00 00 00 10 01 00 00 00 00 05 06 01 00 0A A8 CC",
                      "00 00 00 13 01 00 00 00 01 00 00 00 07 FF FF FF FE 0B 2E");
}
