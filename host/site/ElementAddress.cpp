#include "ElementAddress.h"

#include <algorithm>
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

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

} // namespace

std::string toText(const ElementAddress& address) {
    return address.media + std::to_string(address.number);
}

ParsedAddress parseElementAddress(const std::string& text) {
    const std::string remedy =
        "write a media letter (I, O, F, R, T or C) and a number from 0 to 65535, such as R200";
    const std::string plain = withoutBlanksInUpperCase(text);
    if (plain.size() < 2 || mediaLetters.find(plain[0]) == std::string::npos ||
        !std::all_of(plain.begin() + 1, plain.end(), isDigit))
        return {std::nullopt, "address \"" + text + "\" fits no media", remedy};

    const std::size_t firstDigit = std::min(plain.find_first_not_of('0', 1), plain.size() - 1);
    const std::string digits = plain.substr(firstDigit);
    const unsigned long number = digits.size() > 5 ? highestElement + 1UL : std::stoul(digits);
    if (number > highestElement)
        return {std::nullopt, "address \"" + text + "\": element numbers end at 65535", remedy};
    return {ElementAddress{plain[0], static_cast<unsigned>(number)}, {}, {}};
}

bool isBitMedia(char media) {
    return media == 'I' || media == 'O' || media == 'F';
}

bool isSwitchableMedia(char media) {
    return media == 'O' || media == 'F';
}

} // namespace host
