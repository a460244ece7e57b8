#include "Checksum.h"
#include "FuzzInput.h"
#include "telegram/AnswerTelegram.h"
#include "telegram/TelegramText.h"

#include <algorithm>

namespace {

using host::Answer;
using host::Framing;
using host::TelegramBytes;

TelegramBytes take(FuzzInput& input, std::size_t size) {
    const std::size_t there = std::min(size, input.restSize());
    TelegramBytes bytes(input.rest(), input.rest() + there);
    for (std::size_t i = 0; i < there; ++i)
        input.byte();
    return bytes;
}

std::uint16_t checksumOf(const TelegramBytes& bytes, std::size_t size) {
    return referenceChecksum(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(size));
}

bool endsWithItsChecksum(const TelegramBytes& bytes) {
    return bytes.size() >= 2 &&
           checksumOf(bytes, bytes.size() - 2) == (bytes[bytes.size() - 2] << 8 | bytes[bytes.size() - 1]);
}

void appendChecksum(TelegramBytes& bytes) {
    const std::uint16_t checksum = checksumOf(bytes, bytes.size());
    bytes.push_back(static_cast<std::uint8_t>(checksum >> 8));
    bytes.push_back(static_cast<std::uint8_t>(checksum & 0xFF));
}

void checkGood(Framing framing, const TelegramBytes& sent, const TelegramBytes& received) {
    const bool isWrite = host::isWriteTelegram(framing, sent);
    if (framing == Framing::BreakMode && isWrite) {
        require(received == TelegramBytes{0x06}, "in Break Mode one byte acknowledges");
        return;
    }
    require(endsWithItsChecksum(received), "a good answer ends with its checksum");
    if (framing == Framing::Ethernet)
        require(sent[6] == received[6] && sent[7] == received[7],
                "a good answer repeats the sequence number");
    if (isWrite)
        require(host::acknowledgeCodeOf(framing, received) == 0U, "a good write is acknowledged");
}

} // namespace

// Any bytes as a telegram and what came after it, as the host tells of them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr Framing framings[] = {Framing::Ethernet, Framing::DataMode, Framing::BreakMode};
    FuzzInput input(data, size);
    const Framing framing = framings[input.byte() % 3];
    const std::uint8_t choices = input.byte();
    const bool isFloat = (choices & 1) != 0;
    const bool isChecksumMadeRight = (choices & 2) != 0;
    const TelegramBytes sent = take(input, input.byte());
    TelegramBytes received = take(input, input.restSize());
    if (isChecksumMadeRight)
        appendChecksum(received);

    require(!host::telegramText(framing, sent, isFloat).empty(), "each telegram has words");
    require(!host::answerText(framing, sent, received, isFloat).empty(), "each answer has words");
    host::stationOf(framing, sent);
    const Answer answer = host::answerTo(framing, sent, received);
    require((answer == Answer::Silent) == received.empty(), "no bytes are no answer");
    if (answer == Answer::Good)
        checkGood(framing, sent, received);
    if (answer == Answer::Refused && framing != Framing::BreakMode)
        require(host::acknowledgeCodeOf(framing, received).value_or(0) != 0, "a refusal has a code");
    return 0;
}
