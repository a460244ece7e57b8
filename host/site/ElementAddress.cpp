#include "ElementAddress.h"

#include "Number.h"

#include <cctype>

namespace host {

namespace {

const std::string mediaLetters = "IOFRTC";

std::string withoutBlanksInUpperCase(const std::string& text) {
    std::string result;
    for (const char character : text)
        if (character != ' ' && character != '\t')
            result += static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    return result;
}

} // namespace

std::string toText(const ElementAddress& address) {
    return address.media + std::to_string(address.number);
}

ParsedAddress parseElementAddress(const std::string& text) {
    const char* const remedy =
        "write a media letter (I, O, F, R, T or C) and a number from 0 to 65535, such as R200";
    const std::string plain = withoutBlanksInUpperCase(text);
    if (plain.size() < 2 || mediaLetters.find(plain[0]) == std::string::npos ||
        plain.find_first_not_of("0123456789", 1) != std::string::npos)
        return {std::nullopt, "address \"" + text + "\" fits no media", remedy};

    const std::optional<unsigned> number = parseNumber(plain.substr(1), 0, highestElement);
    if (!number)
        return {std::nullopt, "address \"" + text + "\": element numbers end at 65535", remedy};
    return {ElementAddress{plain[0], *number}, {}, {}};
}

bool isBitMedia(char media) {
    return media == 'I' || media == 'O' || media == 'F';
}

bool isSwitchableMedia(char media) {
    return media == 'O' || media == 'F';
}

const char* wordMediaName(char media) {
    switch (media) {
    case 'T':
        return "a timer";
    case 'C':
        return "a counter";
    default:
        return "a register";
    }
}

} // namespace host
