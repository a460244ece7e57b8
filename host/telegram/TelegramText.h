#pragma once

#include "Exchange.h"

#include <string>

namespace host {

// The host reads the driver's telegrams on its own, so that what it tells of them is what went out and what
// came, and not what the driver meant or took it for. Nothing here throws, whatever the bytes.

// A request telegram in words, as its bytes say: "write 2 registers from R10: 12, 13", "switch O200 on",
// "set the clock to 2023-12-31 23:59:58, Sunday, week 52". `isFloat` tells whether the registers hold
// floating-point words. A telegram that is none of these is told as unknown.
std::string telegramText(Framing framing, const TelegramBytes& sent, bool isFloat);

// What came after it, in words: "2 registers from R10: 12, 13", "3 inputs from I5: on off on",
// "acknowledged", "refused (code 1)", "no answer", "damaged: 5 of 16 bytes",
// "answer to another telegram (sequence 6, not 7)".
std::string answerText(Framing framing, const TelegramBytes& sent, const TelegramBytes& received,
                       bool isFloat);

// "B5 00 01 02", in one line.
std::string hexText(const TelegramBytes& telegram);
// The bytes of such a text, up to anything that is no pair of hex digits.
TelegramBytes bytesOfHexText(const std::string& text);

} // namespace host
