#pragma once

#include "Exchange.h"
#include "RequestTelegram.h"

#include <optional>
#include <string>

namespace host {

struct Judgement {
    Answer answer = Answer::Silent;
    std::string fault; // of a damaged or foreign answer: "damaged: 5 of 16 bytes"
};

// What the bytes that came after a telegram are, judged by these bytes alone. This is stricter than the
// driver, which takes a refused write in Data Mode for done, and on a serial line waits in vain for the rest
// of a refused read. Version and protocol type of Ethernet are not looked at, here as there.
//
// - Only the whole answer is good. One of another length is damaged, even with a right checksum.
// - A read is refused by a negative acknowledge. A positive one is foreign: controllers acknowledge writes
//   alone, so it is late or meant for another.
// - On Ethernet an answer with another sequence number is foreign. The clock telegram has none there, so
//   every sound answer to it is foreign.
// - After bytes that are no request, everything is foreign.
Judgement judgeAnswer(Framing framing, const TelegramBytes& sent, const TelegramBytes& received);

Answer answerTo(Framing framing, const TelegramBytes& sent, const TelegramBytes& received);

// The code of a sound acknowledge, 0 when it is positive. Break Mode has none.
std::optional<unsigned> acknowledgeCodeOf(Framing framing, const TelegramBytes& received);

// The values of a good answer to a read.
TelegramBytes payloadOf(Framing framing, const TelegramBytes& received);

} // namespace host
