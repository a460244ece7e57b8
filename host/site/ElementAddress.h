#pragma once

#include <optional>
#include <string>
#include <tuple>

namespace host {

constexpr unsigned highestElement = 65535; // an element number travels as 16 bits

// One element of a controller: its media letter (I, O, F, R, T or C) and number.
struct ElementAddress {
    char media = 'R';
    unsigned number = 0;
};

inline bool operator==(const ElementAddress& a, const ElementAddress& b) {
    return a.media == b.media && a.number == b.number;
}
inline bool operator!=(const ElementAddress& a, const ElementAddress& b) {
    return !(a == b);
}
inline bool operator<(const ElementAddress& a, const ElementAddress& b) {
    return std::tie(a.media, a.number) < std::tie(b.media, b.number);
}

// The plain form, "R7": the only one under which the driver finds a point again.
std::string toText(const ElementAddress& address);

struct ParsedAddress {
    std::optional<ElementAddress> address;
    std::string what; // why there is no address
    std::string remedy;
};
// Takes what people write: "R7", "r7", "R007", "R 7".
ParsedAddress parseElementAddress(const std::string& text);

// I, O and F are read bit by bit; R, T and C as 32-bit numbers.
bool isBitMedia(char media);
// Outputs and flags: what a binary command can switch.
bool isSwitchableMedia(char media);
// "a register", of the media that hold numbers.
const char* wordMediaName(char media);

} // namespace host
