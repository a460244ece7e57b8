#include "ModelController.h"

#include "Checksum.h"
#include "FuzzInput.h"

namespace {

constexpr std::uint8_t responseAttribute = 1;
constexpr std::uint8_t acknowledgeAttribute = 2;
constexpr std::uint8_t writeClock = 12;
constexpr int ethernetHeaderSize = 9;
constexpr int sequenceAt = 6;
constexpr int checksumSize = 2;

std::uint8_t byteAt(const QByteArray& bytes, int at) {
    return static_cast<std::uint8_t>(bytes.at(at));
}

unsigned wordAt(const QByteArray& bytes, int at) {
    return static_cast<unsigned>(byteAt(bytes, at) << 8 | byteAt(bytes, at + 1));
}

std::uint32_t longAt(const QByteArray& bytes, int at) {
    return wordAt(bytes, at) << 16 | wordAt(bytes, at + 2);
}

void appendLong(QByteArray& bytes, std::uint32_t word) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.append(static_cast<char>(word >> shift & 0xFF));
}

// The media of each command, by its number.
constexpr char readMedia[] = "C FI ORT";
constexpr int firstWrite = 10;
constexpr char writeMedia[] = "CF ORT"; // from 10 on

char mediaRead(std::uint8_t command) {
    return command < sizeof readMedia - 1 ? readMedia[command] : ' ';
}

char mediaWritten(std::uint8_t command) {
    return command >= firstWrite && command < firstWrite + sizeof writeMedia - 1
               ? writeMedia[command - firstWrite]
               : ' ';
}

bool isBitMedia(char media) {
    return media == 'F' || media == 'I' || media == 'O';
}

} // namespace

void ModelController::set(const Element& element, std::uint32_t word) {
    words[element] = isBitMedia(element.media) ? word & 1 : word;
}

std::optional<QByteArray> ModelController::bodyOf(const QByteArray& telegram) const {
    constexpr int startSize = 2;
    const int before = mode == LineMode::Ethernet   ? ethernetHeaderSize
                       : mode == LineMode::DataMode ? startSize
                                                    : 0;
    if (telegram.size() < before + checksumSize || !endsWithItsChecksum(telegram))
        return std::nullopt;
    if (mode == LineMode::DataMode && wordAt(telegram, 0) != 0xB500)
        return std::nullopt;
    if (mode == LineMode::Ethernet && (longAt(telegram, 0) != static_cast<std::uint32_t>(telegram.size()) ||
                                       wordAt(telegram, 4) != 0x0100 || byteAt(telegram, 8) != 0))
        return std::nullopt;
    return telegram.mid(before, telegram.size() - before - checksumSize);
}

QByteArray ModelController::framed(std::uint8_t attribute, const QByteArray& payload,
                                   const QByteArray& telegram) const {
    QByteArray bytes;
    if (mode == LineMode::Ethernet) {
        appendLong(bytes, static_cast<std::uint32_t>(ethernetHeaderSize + payload.size() + checksumSize));
        bytes.append('\x01').append('\x00').append(telegram.mid(sequenceAt, 2));
    }
    if (mode == LineMode::DataMode)
        bytes.append('\xB5');
    if (mode != LineMode::BreakMode)
        bytes.append(static_cast<char>(attribute));
    bytes.append(payload);
    appendReferenceChecksum(bytes);
    return bytes;
}

QByteArray ModelController::acknowledge(std::uint8_t code, const QByteArray& telegram) const {
    if (mode == LineMode::BreakMode)
        return QByteArray(1, code == 0 ? '\x06' : '\x15');
    return framed(acknowledgeAttribute, QByteArray(1, '\0').append(static_cast<char>(code)), telegram);
}

ModelController::Answer ModelController::respond(const QByteArray& telegram, int bytesMore) {
    constexpr int bareClockSize = 10; // on Ethernet it goes out without a header, and no controller takes it
    const std::optional<QByteArray> body = bodyOf(telegram);
    if (!body) {
        require(mode == LineMode::Ethernet && telegram.size() == bareClockSize,
                "a telegram is one that a controller understands");
        return {};
    }
    const char media = mediaRead(byteAt(*body, 1));
    if (media == ' ') {
        const bool isDone = write(*body);
        return {acknowledge(isDone ? 0 : 1, telegram), false, isDone};
    }
    QByteArray payload = read(media, *body);
    if (bytesMore < 0)
        payload.chop(-bytesMore);
    payload.append(bytesMore, '\xFF');
    return {framed(responseAttribute, payload, telegram), true, true};
}

ModelController::Answer ModelController::refuse(const QByteArray& telegram, std::uint8_t code) const {
    const std::optional<QByteArray> body = bodyOf(telegram);
    if (!body)
        return {};
    return {acknowledge(code == 0 ? 1 : code, telegram), mediaRead(byteAt(*body, 1)) != ' ', false};
}

std::optional<std::uint32_t> ModelController::lastSaid(const Element& element) const {
    const auto found = said.find(element);
    if (found == said.end())
        return std::nullopt;
    return found->second;
}

QByteArray ModelController::read(char media, const QByteArray& body) {
    require(body.size() == 5, "a read is station, command, count and address");
    const unsigned elements = byteAt(body, 2) + 1U;
    QByteArray payload(isBitMedia(media) ? static_cast<int>((elements + 7) / 8) : 0, '\0');
    for (unsigned i = 0; i < elements; ++i) {
        const Element element{byteAt(body, 0), media, wordAt(body, 3) + i};
        const auto held = words.find(element);
        const std::uint32_t word = held == words.end() ? 0 : held->second;
        said[element] = word;
        if (!isBitMedia(media))
            appendLong(payload, word);
        else if (word != 0)
            payload[i / 8] = static_cast<char>(byteAt(payload, static_cast<int>(i / 8)) | 1U << i % 8);
    }
    return payload;
}

bool ModelController::write(const QByteArray& body) {
    require(body.size() >= 2, "a telegram names its station and command");
    const std::uint8_t command = byteAt(body, 1);
    const char media = mediaWritten(command);
    if (command == writeClock)
        return body.size() == 10;
    require(media != ' ', "a command is one that a controller knows");
    return isBitMedia(media) ? writeBits(media, body) : writeWords(media, body);
}

bool ModelController::writeWords(char media, const QByteArray& body) {
    constexpr int dataAt = 5;
    const int size = body.size() - dataAt;
    require(size >= 0 && byteAt(body, 2) == size + 1, "a write counts its bytes");
    for (int at = 0; at + 4 <= size; at += 4)
        set({byteAt(body, 0), media, wordAt(body, 3) + static_cast<unsigned>(at / 4)},
            longAt(body, dataAt + at));
    return size > 0 && size % 4 == 0;
}

bool ModelController::writeBits(char media, const QByteArray& body) {
    constexpr int dataAt = 6;
    const int size = body.size() - dataAt;
    require(size >= 0 && byteAt(body, 2) == size + 2, "a write counts its bytes");
    const unsigned elements = byteAt(body, 5) + 1U;
    if (size != static_cast<int>((elements + 7) / 8))
        return false;
    for (unsigned i = 0; i < elements; ++i)
        set({byteAt(body, 0), media, wordAt(body, 3) + i},
            byteAt(body, dataAt + static_cast<int>(i / 8)) >> i % 8 & 1U);
    return true;
}
