#include "AnswerTelegram.h"

#include "TelegramBytes.h"
#include "TelegramText.h"
#include "site/ElementAddress.h"

namespace host {

namespace {

constexpr std::uint8_t response = 1;    // attribute of an answer with values
constexpr std::uint8_t acknowledge = 2; // attribute of one without
constexpr std::size_t acknowledgeCodeSize = 2;
// The whole acknowledge in Break Mode.
constexpr std::uint8_t positiveByte = 0x06;
constexpr std::uint8_t negativeByte = 0x15;

using Purpose = RequestTelegram::Purpose;

Judgement damaged(const std::string& what) {
    return {Answer::Damaged, "damaged: " + what};
}

Judgement foreign(const std::string& what) {
    return {Answer::Foreign, "answer to another telegram (" + what + ")"};
}

Judgement ofWrongSize(std::size_t size, std::size_t wholeSize) {
    return damaged(size < wholeSize
                       ? std::to_string(size) + " of " + std::to_string(wholeSize) + " bytes"
                       : std::to_string(size) + " bytes instead of " + std::to_string(wholeSize));
}

// Of the values that a read asks for.
std::size_t payloadSizeOf(const RequestTelegram& request) {
    return isBitMedia(request.media) ? (request.count + 7) / 8 : request.count * wordSize;
}

std::size_t framedSize(Framing framing, std::size_t contentSize) {
    return headerSizeOf(framing) + contentSize + checksumSize;
}

std::uint8_t attributeOf(Framing framing, const TelegramBytes& telegram) {
    return telegram[headerSizeOf(framing) - 1];
}

// Of the whole answer, which is as long as the request asks for, or an acknowledge.
std::size_t wholeSizeOf(Framing framing, const RequestTelegram& request, const TelegramBytes& received) {
    const bool isAcknowledge =
        received.size() >= headerSizeOf(framing) && attributeOf(framing, received) == acknowledge;
    return framedSize(framing, request.purpose != Purpose::Read || isAcknowledge ? acknowledgeCodeSize
                                                                                 : payloadSizeOf(request));
}

Judgement judgeAcknowledge(const RequestTelegram& request, bool isPositive) {
    if (!isPositive)
        return {Answer::Refused, {}};
    return request.purpose == Purpose::Read ? foreign("an acknowledge without values")
                                            : Judgement{Answer::Good, {}};
}

// A single byte acknowledges; values come with nothing but their checksum around them.
Judgement judgeBreakMode(const RequestTelegram& request, const TelegramBytes& received) {
    if (received.size() == 1 && (received[0] == positiveByte || received[0] == negativeByte))
        return judgeAcknowledge(request, received[0] == positiveByte);
    if (request.purpose != Purpose::Read)
        return received.size() == 1 ? damaged(hexText(received) + " is no acknowledge")
                                    : ofWrongSize(received.size(), 1);
    const std::size_t wholeSize = framedSize(Framing::BreakMode, payloadSizeOf(request));
    if (received.size() != wholeSize)
        return ofWrongSize(received.size(), wholeSize);
    return endsWithItsChecksum(received) ? Judgement{Answer::Good, {}} : damaged("wrong checksum");
}

Judgement judgeContent(Framing framing, const RequestTelegram& request, const TelegramBytes& received) {
    const std::size_t wholeSize = wholeSizeOf(framing, request, received);
    switch (attributeOf(framing, received)) {
    case acknowledge:
        if (received.size() != wholeSize)
            return ofWrongSize(received.size(), wholeSize);
        return judgeAcknowledge(request, acknowledgeCodeOf(framing, received) == 0U);
    case response:
        if (request.purpose != Purpose::Read)
            return foreign("values without an acknowledge");
        return received.size() == wholeSize ? Judgement{Answer::Good, {}}
                                            : ofWrongSize(received.size(), wholeSize);
    default:
        return foreign("attribute " + std::to_string(attributeOf(framing, received)));
    }
}

Judgement judgeDataMode(const RequestTelegram& request, const TelegramBytes& received) {
    if (received[0] != synchronisation)
        return damaged("begins with " + hexText({received[0]}) + ", not " + hexText({synchronisation}));
    if (received.size() > framedSize(Framing::DataMode, 0) && endsWithItsChecksum(received))
        return judgeContent(Framing::DataMode, request, received);
    const std::size_t wholeSize = wholeSizeOf(Framing::DataMode, request, received);
    return received.size() == wholeSize ? damaged("wrong checksum") : ofWrongSize(received.size(), wholeSize);
}

Judgement judgeEthernet(const RequestTelegram& request, const TelegramBytes& received) {
    const std::size_t length =
        received.size() < wordSize ? wholeSizeOf(Framing::Ethernet, request, received) : wordAt(received, 0);
    if (received.size() != length)
        return ofWrongSize(received.size(), length);
    if (received.size() <= framedSize(Framing::Ethernet, 0))
        return ofWrongSize(received.size(), wholeSizeOf(Framing::Ethernet, request, received));
    if (!endsWithItsChecksum(received))
        return damaged("wrong checksum");
    if (request.sequence == sequenceOf(received))
        return judgeContent(Framing::Ethernet, request, received);
    return foreign("sequence " + std::to_string(sequenceOf(received)) +
                   (request.sequence ? ", not " + std::to_string(*request.sequence)
                                     : ", and the clock telegram has none"));
}

} // namespace

Judgement judgeAnswer(Framing framing, const TelegramBytes& sent, const TelegramBytes& received) {
    if (received.empty())
        return {Answer::Silent, {}};
    const std::optional<RequestTelegram> request = readRequest(framing, sent);
    if (!request)
        return {Answer::Foreign, "answer to an unknown telegram"};
    switch (framing) {
    case Framing::Ethernet:
        return judgeEthernet(*request, received);
    case Framing::DataMode:
        return judgeDataMode(*request, received);
    case Framing::BreakMode:
        return judgeBreakMode(*request, received);
    }
    return {};
}

Answer answerTo(Framing framing, const TelegramBytes& sent, const TelegramBytes& received) {
    return judgeAnswer(framing, sent, received).answer;
}

std::optional<unsigned> acknowledgeCodeOf(Framing framing, const TelegramBytes& received) {
    if (framing == Framing::BreakMode || received.size() != framedSize(framing, acknowledgeCodeSize))
        return std::nullopt;
    const bool hasStart = framing == Framing::Ethernet ? wordAt(received, 0) == received.size()
                                                       : received[0] == synchronisation;
    if (!hasStart || attributeOf(framing, received) != acknowledge || !endsWithItsChecksum(received))
        return std::nullopt;
    return pairAt(received, headerSizeOf(framing));
}

TelegramBytes payloadOf(Framing framing, const TelegramBytes& received) {
    const std::size_t start = headerSizeOf(framing);
    if (received.size() < start + checksumSize)
        return {};
    return {received.begin() + static_cast<std::ptrdiff_t>(start),
            received.end() - static_cast<std::ptrdiff_t>(checksumSize)};
}

} // namespace host
