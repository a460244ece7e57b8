#include "TelegramText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

namespace host {

namespace {

constexpr std::size_t checksumSize = 2;
constexpr std::size_t wordSize = 4;
constexpr std::size_t clockSize = 8;
constexpr unsigned clockCommand = 12;

struct Command {
    unsigned code;
    char media;
    bool isWrite;
    const char* elements; // what several of them are called
};

constexpr std::array<Command, 11> commands{{{0, 'C', false, "counters"},
                                            {2, 'F', false, "flags"},
                                            {3, 'I', false, "inputs"},
                                            {5, 'O', false, "outputs"},
                                            {6, 'R', false, "registers"},
                                            {7, 'T', false, "timers"},
                                            {10, 'C', true, "counters"},
                                            {11, 'F', true, "flags"},
                                            {13, 'O', true, "outputs"},
                                            {14, 'R', true, "registers"},
                                            {15, 'T', true, "timers"}}};

const Command* findCommand(unsigned code) {
    const auto* const found = std::find_if(commands.begin(), commands.end(),
                                           [code](const Command& one) { return one.code == code; });
    return found == commands.end() ? nullptr : found;
}

unsigned pairAt(const TelegramBytes& bytes, std::size_t place) {
    return static_cast<unsigned>(bytes[place] << 8 | bytes[place + 1]);
}

std::uint32_t wordAt(const TelegramBytes& bytes, std::size_t place) {
    return static_cast<std::uint32_t>(pairAt(bytes, place)) << 16 | pairAt(bytes, place + 2);
}

// The length that an Ethernet telegram begins with.
bool hasEthernetHeader(const TelegramBytes& telegram) {
    constexpr std::size_t headerSize = 9;
    return telegram.size() > headerSize + checksumSize && wordAt(telegram, 0) == telegram.size();
}

// Station, command and what follows, without framing and checksum. Nothing for an Ethernet telegram without
// its header.
std::optional<TelegramBytes> bodyOf(const TelegramBytes& telegram, LineType line, TransmitType type) {
    constexpr std::size_t ethernetHeader = 9;
    constexpr std::size_t dataModeStart = 2; // synchronisation byte and attribute
    std::size_t start = type == TransmitType::Data ? dataModeStart : 0;
    if (line == LineType::Ethernet) {
        if (!hasEthernetHeader(telegram))
            return std::nullopt;
        start = ethernetHeader;
    }
    if (telegram.size() < start + 2 + checksumSize)
        return TelegramBytes();
    return TelegramBytes(telegram.begin() + static_cast<std::ptrdiff_t>(start),
                         telegram.end() - static_cast<std::ptrdiff_t>(checksumSize));
}

std::string decimalOfBcd(std::uint8_t byte) {
    return {static_cast<char>('0' + (byte >> 4)), static_cast<char>('0' + (byte & 0xF))};
}

std::string clockText(const TelegramBytes& data) {
    const char* const days[] = {"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"};
    const bool dayIsKnown = data[1] >= 1 && data[1] <= std::size(days);
    return "set the clock to 20" + decimalOfBcd(data[2]) + "-" + decimalOfBcd(data[3]) + "-" +
           decimalOfBcd(data[4]) + " " + decimalOfBcd(data[5]) + ":" + decimalOfBcd(data[6]) + ":" +
           decimalOfBcd(data[7]) + (dayIsKnown ? std::string(", ") + days[data[1] - 1] : "") + ", week " +
           decimalOfBcd(data[0]);
}

// Bits 31 to 8 the mantissa, a fraction; bit 7 the sign; bits 6 to 0 the exponent plus 64.
std::string floatWordText(std::uint32_t word) {
    constexpr int mantissaBits = 24;
    constexpr int exponentOffset = 64;
    const int exponent = static_cast<int>(word & 0x7F) - exponentOffset - mantissaBits;
    const auto magnitude = std::ldexp(static_cast<float>(word >> 8), exponent);
    char text[32];
    const auto [end, failure] =
        std::to_chars(text, text + sizeof text, (word & 0x80) != 0 ? -magnitude : magnitude);
    return failure == std::errc() ? std::string(text, end) : "?";
}

std::string elementCountText(const Command& command, unsigned first, std::size_t count) {
    const std::string element = command.media + std::to_string(first);
    return count == 1 ? element : std::to_string(count) + " " + command.elements + " from " + element;
}

std::string wordsText(const Command& command, const TelegramBytes& body, bool isFloat) {
    constexpr std::size_t dataStart = 5; // station, command, byte count, address
    const std::size_t count = body.size() < dataStart ? 0 : (body.size() - dataStart) / wordSize;
    if (count == 0)
        return "unknown";
    std::string text = "write " + elementCountText(command, pairAt(body, 3), count) + ":";
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t word = wordAt(body, dataStart + i * wordSize);
        text += (i == 0 ? " " : ", ");
        text += isFloat && command.media == 'R' ? floatWordText(word)
                                                : std::to_string(static_cast<std::int32_t>(word));
    }
    return text;
}

std::string bitsText(const Command& command, const TelegramBytes& body) {
    constexpr std::size_t countPlace = 5; // behind station, command, byte count, address
    if (body.size() <= countPlace + 1)
        return "unknown";
    const std::size_t count = body[countPlace] + std::size_t{1};
    const std::string elements = elementCountText(command, pairAt(body, 3), count);
    if (count == 1)
        return "switch " + elements + ((body[countPlace + 1] & 1) != 0 ? " on" : " off");
    std::string text = "switch " + elements + ":";
    for (std::size_t i = 0; i < count && countPlace + 1 + i / 8 < body.size(); ++i)
        text += (body[countPlace + 1 + i / 8] >> (i % 8) & 1) != 0 ? " on" : " off";
    return text;
}

std::string readText(const Command& command, const TelegramBytes& body) {
    constexpr std::size_t size = 5; // station, command, count, address
    return body.size() < size
               ? "unknown"
               : "read " + elementCountText(command, pairAt(body, 3), body[2] + std::size_t{1});
}

} // namespace

std::string telegramText(const TelegramBytes& telegram, LineType line, TransmitType type, bool isFloat) {
    const std::optional<TelegramBytes> body = bodyOf(telegram, line, type);
    if (!body)
        return telegram.size() == clockSize + checksumSize ? clockText(telegram) : "unknown";
    if (body->size() < 2)
        return "unknown";
    if ((*body)[1] == clockCommand && body->size() == 2 + clockSize)
        return clockText(TelegramBytes(body->begin() + 2, body->end()));
    const Command* const command = findCommand((*body)[1]);
    if (command == nullptr)
        return "unknown";
    if (!command->isWrite)
        return readText(*command, *body);
    return isBitMedia(command->media) ? bitsText(*command, *body) : wordsText(*command, *body, isFloat);
}

bool isWriteTelegram(const TelegramBytes& telegram, LineType line, TransmitType type) {
    const std::optional<TelegramBytes> body = bodyOf(telegram, line, type);
    if (!body)
        return telegram.size() == clockSize + checksumSize; // the clock goes without a header
    if (body->size() < 2)
        return false;
    const Command* const command = findCommand((*body)[1]);
    return (*body)[1] == clockCommand || (command != nullptr && command->isWrite);
}

std::string hexText(const TelegramBytes& telegram) {
    const char* const digits = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : telegram) {
        text += text.empty() ? "" : " ";
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

TelegramBytes bytesOfHexText(const std::string& text) {
    TelegramBytes bytes;
    for (std::size_t place = text.find_first_not_of(' '); place != std::string::npos;
         place = text.find_first_not_of(' ', place + 2)) {
        const char* const pair = text.data() + place;
        std::uint8_t byte = 0;
        const auto [rest, failure] =
            std::from_chars(pair, pair + std::min<std::size_t>(2, text.size() - place), byte, 16);
        if (failure != std::errc() || rest != pair + 2)
            break;
        bytes.push_back(byte);
    }
    return bytes;
}

} // namespace host
