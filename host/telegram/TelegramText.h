#pragma once

#include "Exchange.h"
#include "site/Site.h"

#include <string>

namespace host {

// The host reads the driver's telegrams on its own, so that what it tells of them is what went out and not
// what the driver meant.

// A request telegram in words, as its bytes say: "write 2 registers from R10: 12, 13", "switch O200 on",
// "set the clock to 2023-12-31 23:59:58, Sunday, week 52". `isFloat` tells whether the registers hold
// floating-point words. A telegram that is none of these is told as unknown.
std::string telegramText(const TelegramBytes& telegram, LineType line, TransmitType type, bool isFloat);

bool isWriteTelegram(const TelegramBytes& telegram, LineType line, TransmitType type);

// "B5 00 01 02", in one line.
std::string hexText(const TelegramBytes& telegram);
// The bytes of such a text, up to anything that is no pair of hex digits.
TelegramBytes bytesOfHexText(const std::string& text);

} // namespace host
