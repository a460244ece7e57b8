#pragma once

#include "ReadPlan.h"

#include <optional>
#include <string>

namespace host {

// What goes over a line for one telegram. The driver's time-out runs from the moment when the telegram is
// handed to the line to the answer's last byte; the break before it has ended by then.
struct TelegramCost {
    std::size_t requestBytes = 0;
    std::size_t answerBytes = 0;
    unsigned breakMs = 0;

    std::size_t bytes() const { return requestBytes + answerBytes; }
};
TelegramCost costOf(const Channel& channel, const Rtu& rtu, const ReadTelegram& telegram);

// Start bit, data bits, parity bit and stop bits of one character.
unsigned bitsPerCharacter(const SerialEnd& end);
// What so many bytes take at this end of a line, in milliseconds. 0 on Ethernet: too little to count.
double byteTimeOf(const LinkEnd& end, std::size_t bytes);

// How long an answer is on its way beside the time of its bytes: as the site file says, or 10 ms on Ethernet
// and nothing on a serial line.
std::chrono::milliseconds expectedAnswerOf(const Channel& channel);

// Why something does not work, and what would be right.
struct Obstacle {
    std::string what;
    std::string remedy;
};
// Why the driver can never take in the answer to such a telegram, however quick the controller is; nothing
// when it can.
std::optional<Obstacle> obstacleTo(const TelegramCost& cost, const LinkEnd& end,
                                   std::chrono::milliseconds timeout);

// "12.5 ms", "1086 ms"
std::string lineTimeText(double milliseconds);
// What a time-out for such a duration may be, as a site file has it: twice as long, in round numbers.
std::string ampleTimeoutText(double milliseconds);

} // namespace host
