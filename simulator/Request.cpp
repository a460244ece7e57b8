#include "Request.h"

namespace sim {

namespace {

constexpr std::size_t commandEnd = 2;    // station, command
constexpr std::size_t readSize = 5;      // and count, address
constexpr std::size_t writeHeadSize = 5; // station, command, byte count, address
constexpr std::size_t wordSize = 4;

std::size_t packedSize(Media media, std::size_t count) {
    return isBits(media) ? (count + 7) / 8 : count * wordSize;
}

unsigned addressAt(const Bytes& body, std::size_t position) {
    return static_cast<unsigned>(body[position] << 8 | body[position + 1]);
}

void parseWrite(Request& request, const Bytes& body) {
    if (body.size() < writeHeadSize + 1)
        return;
    const Media media = request.command->media;
    std::size_t dataStart = writeHeadSize;
    request.first = addressAt(body, 3);
    if (isBits(media)) {
        request.count = body[writeHeadSize] + 1U;
        ++dataStart;
    } else {
        request.count = static_cast<unsigned>((body.size() - dataStart) / wordSize);
    }
    request.data.assign(body.begin() + static_cast<std::ptrdiff_t>(dataStart), body.end());
    request.wellFormed = request.count > 0 && request.data.size() == packedSize(media, request.count);
}

} // namespace

Request parseRequest(const Bytes& body) {
    Request request;
    request.station = body[0];
    request.command = findCommand(body[1]);
    if (!request.command || bodySize(body.data(), body.size()) != body.size())
        return request;
    switch (request.command->action) {
    case Action::Read:
        request.count = body[2] + 1U;
        request.first = addressAt(body, 3);
        request.wellFormed = true;
        break;
    case Action::SetClock:
        request.data.assign(body.begin() + static_cast<std::ptrdiff_t>(commandEnd), body.end());
        request.wellFormed = true;
        break;
    case Action::Write:
        parseWrite(request, body);
        break;
    }
    return request;
}

std::optional<std::size_t> bodySize(const std::uint8_t* body, std::size_t available) {
    if (available < commandEnd)
        return commandEnd;
    const Command* command = findCommand(body[1]);
    if (!command)
        return std::nullopt;
    if (command->action == Action::Read)
        return readSize;
    if (command->action == Action::SetClock)
        return commandEnd + clockSize;
    // The byte count is one less than the bytes that follow it.
    const std::size_t byteCountEnd = commandEnd + 1;
    return available < byteCountEnd ? byteCountEnd : byteCountEnd + body[commandEnd] + 1U;
}

std::vector<std::uint32_t> unpackElements(Media media, const Bytes& data, unsigned count) {
    std::vector<std::uint32_t> values(count, 0);
    for (std::size_t i = 0; i < count; ++i) {
        if (isBits(media)) {
            values[i] = data[i / 8] >> (i % 8) & 1U;
            continue;
        }
        for (std::size_t byte = 0; byte < wordSize; ++byte)
            values[i] = values[i] << 8 | data[i * wordSize + byte];
    }
    return values;
}

Bytes packElements(Media media, const std::vector<std::uint32_t>& values) {
    Bytes data(packedSize(media, values.size()), 0);
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (isBits(media)) {
            data[i / 8] = static_cast<std::uint8_t>(data[i / 8] | (values[i] & 1U) << (i % 8));
            continue;
        }
        for (std::size_t byte = 0; byte < wordSize; ++byte)
            data[i * wordSize + byte] = static_cast<std::uint8_t>(values[i] >> (24 - 8 * byte));
    }
    return data;
}

} // namespace sim
