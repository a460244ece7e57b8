#include "TelegramText.h"

#include "AnswerTelegram.h"
#include "TelegramBytes.h"
#include "site/ElementAddress.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace host {

namespace {

const char* pluralOf(char media) {
    switch (media) {
    case 'C':
        return "counters";
    case 'F':
        return "flags";
    case 'I':
        return "inputs";
    case 'O':
        return "outputs";
    case 'T':
        return "timers";
    default:
        return "registers";
    }
}

// "R10", "2 registers from R10"
std::string elementsOf(const RequestTelegram& request) {
    const std::string first = request.media + std::to_string(request.first);
    return request.count == 1
               ? first
               : std::to_string(request.count) + " " + pluralOf(request.media) + " from " + first;
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

// ": 12, 13"
std::string wordsText(const TelegramBytes& data, bool isFloat) {
    std::string text = ":";
    for (std::size_t place = 0; place + wordSize <= data.size(); place += wordSize) {
        const std::uint32_t word = wordAt(data, place);
        text += place == 0 ? " " : ", ";
        text += isFloat ? floatWordText(word) : std::to_string(static_cast<std::int32_t>(word));
    }
    return text;
}

// " on off on"; least significant bit first.
std::string bitsText(const TelegramBytes& data, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count && i / 8 < data.size(); ++i)
        text += (data[i / 8] >> (i % 8) & 1) != 0 ? " on" : " off";
    return text;
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

std::string writeText(const RequestTelegram& request, bool isFloat) {
    const std::string elements = elementsOf(request);
    if (!isBitMedia(request.media))
        return "write " + elements + wordsText(request.data, isFloat && request.media == 'R');
    return "switch " + elements + (request.count == 1 ? "" : ":") + bitsText(request.data, request.count);
}

std::string valuesText(const RequestTelegram& request, const TelegramBytes& payload, bool isFloat) {
    return elementsOf(request) + (isBitMedia(request.media)
                                      ? ":" + bitsText(payload, request.count)
                                      : wordsText(payload, isFloat && request.media == 'R'));
}

} // namespace

std::string telegramText(Framing framing, const TelegramBytes& sent, bool isFloat) {
    const std::optional<RequestTelegram> request = readRequest(framing, sent);
    if (!request)
        return "unknown";
    switch (request->purpose) {
    case RequestTelegram::Purpose::Read:
        return "read " + elementsOf(*request);
    case RequestTelegram::Purpose::Write:
        return writeText(*request, isFloat);
    case RequestTelegram::Purpose::SetClock:
        return clockText(request->data);
    }
    return "unknown";
}

std::string answerText(Framing framing, const TelegramBytes& sent, const TelegramBytes& received,
                       bool isFloat) {
    const Judgement judgement = judgeAnswer(framing, sent, received);
    if (judgement.answer == Answer::Silent)
        return "no answer";
    if (judgement.answer == Answer::Refused) {
        const std::optional<unsigned> code = acknowledgeCodeOf(framing, received);
        return code ? "refused (code " + std::to_string(*code) + ")" : "refused";
    }
    if (judgement.answer != Answer::Good)
        return judgement.fault;
    const std::optional<RequestTelegram> request = readRequest(framing, sent);
    return request && request->purpose == RequestTelegram::Purpose::Read
               ? valuesText(*request, payloadOf(framing, received), isFloat)
               : "acknowledged";
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
