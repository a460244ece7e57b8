#pragma once

#include "telegram/Exchange.h"

#include <optional>

// Telegrams of serial lines in the form that they would have over Ethernet, which is the one that Wireshark
// decodes: with length, version, type, sequence number and attribute in front, and a checksum of its own.
namespace host {

// Of a request. Nothing when it is not framed so or its checksum is wrong.
std::optional<TelegramBytes> requestAsEthernet(const TelegramBytes& telegram, Framing framing,
                                               std::uint16_t sequence);
// Of an answer: a response with data, or an acknowledge with its code. Break Mode's single byte 06 becomes
// code 0 (done), 15 becomes code 1 (refused without a reason). Nothing when it is not framed so or its
// checksum is wrong.
std::optional<TelegramBytes> answerAsEthernet(const TelegramBytes& telegram, Framing framing,
                                              std::uint16_t sequence);

} // namespace host
