#include "RequestTelegram.h"

#include "TelegramBytes.h"
#include "site/ElementAddress.h"

#include <algorithm>
#include <array>

namespace host {

namespace {

constexpr std::size_t clockSize = 8;
constexpr unsigned clockCommand = 12;

// Station, command, byte count or number of elements, and the first element's number (2).
constexpr std::size_t smallestBody = 5;
constexpr std::size_t commandPlace = 1;
constexpr std::size_t countPlace = 2;
constexpr std::size_t elementPlace = 3;

struct CommandCode {
    unsigned code;
    char media;
    RequestTelegram::Purpose purpose;
};

constexpr auto read = RequestTelegram::Purpose::Read;
constexpr auto write = RequestTelegram::Purpose::Write;
constexpr std::array<CommandCode, 11> commandCodes{{{0, 'C', read},
                                                    {2, 'F', read},
                                                    {3, 'I', read},
                                                    {5, 'O', read},
                                                    {6, 'R', read},
                                                    {7, 'T', read},
                                                    {10, 'C', write},
                                                    {11, 'F', write},
                                                    {13, 'O', write},
                                                    {14, 'R', write},
                                                    {15, 'T', write}}};

const CommandCode* findCommand(unsigned code) {
    const auto* const found = std::find_if(commandCodes.begin(), commandCodes.end(),
                                           [code](const CommandCode& one) { return one.code == code; });
    return found == commandCodes.end() ? nullptr : found;
}

TelegramBytes part(const TelegramBytes& bytes, std::size_t start, std::size_t end) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(start),
            bytes.begin() + static_cast<std::ptrdiff_t>(end)};
}

bool hasHeader(Framing framing, const TelegramBytes& sent) {
    constexpr std::uint8_t request = 0;
    constexpr std::size_t shortest = 2; // station and command
    const std::size_t headerSize = headerSizeOf(framing);
    if (sent.size() < headerSize + shortest + checksumSize)
        return false;
    switch (framing) {
    case Framing::Ethernet:
        return wordAt(sent, 0) == sent.size() && sent[headerSize - 1] == request;
    case Framing::DataMode:
        return sent[0] == synchronisation && sent[1] == request;
    case Framing::BreakMode:
        return true;
    }
    return false;
}

// Station, command and what follows, without header and checksum. Empty when the bytes are no request.
TelegramBytes bodyOf(Framing framing, const TelegramBytes& sent) {
    return hasHeader(framing, sent) ? part(sent, headerSizeOf(framing), sent.size() - checksumSize)
                                    : TelegramBytes();
}

// The clock and its checksum are all that goes out of a clock telegram on Ethernet.
bool isBareClock(Framing framing, const TelegramBytes& sent) {
    return framing == Framing::Ethernet && sent.size() == clockSize + checksumSize;
}

RequestTelegram clockRequest(const TelegramBytes& data) {
    RequestTelegram request;
    request.purpose = RequestTelegram::Purpose::SetClock;
    request.data = data;
    return request;
}

// The elements and what is written to them. Nothing when there are none.
std::optional<RequestTelegram> elementRequest(const CommandCode& command, const TelegramBytes& body) {
    if (body.size() < smallestBody)
        return std::nullopt;
    RequestTelegram request;
    request.purpose = command.purpose;
    request.media = command.media;
    request.first = pairAt(body, elementPlace);
    if (command.purpose == read) {
        request.count = body[countPlace] + std::size_t{1};
    } else if (isBitMedia(command.media)) {
        if (body.size() < smallestBody + 2)
            return std::nullopt;
        request.count = body[smallestBody] + std::size_t{1};
        request.data = part(body, smallestBody + 1, body.size());
    } else {
        request.count = (body.size() - smallestBody) / wordSize;
        request.data = part(body, smallestBody, smallestBody + request.count * wordSize);
        if (request.count == 0)
            return std::nullopt;
    }
    return request;
}

} // namespace

std::optional<RequestTelegram> readRequest(Framing framing, const TelegramBytes& sent) {
    if (isBareClock(framing, sent))
        return clockRequest(part(sent, 0, clockSize));
    const TelegramBytes body = bodyOf(framing, sent);
    if (body.empty())
        return std::nullopt;
    std::optional<RequestTelegram> request;
    if (const CommandCode* const command = findCommand(body[commandPlace]))
        request = elementRequest(*command, body);
    else if (body[commandPlace] == clockCommand && body.size() == 2 + clockSize)
        request = clockRequest(part(body, 2, body.size()));
    if (request && framing == Framing::Ethernet)
        request->sequence = sequenceOf(sent);
    return request;
}

unsigned stationOf(Framing framing, const TelegramBytes& sent) {
    const TelegramBytes body = bodyOf(framing, sent);
    return body.empty() ? 0 : body[0];
}

bool isWriteTelegram(Framing framing, const TelegramBytes& sent) {
    if (isBareClock(framing, sent))
        return true;
    const TelegramBytes body = bodyOf(framing, sent);
    if (body.empty())
        return false;
    const CommandCode* const command = findCommand(body[commandPlace]);
    return body[commandPlace] == clockCommand || (command != nullptr && command->purpose == write);
}

} // namespace host
