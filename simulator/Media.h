#pragma once

#include <cstdint>
#include <optional>

namespace sim {

// The kinds of element that a controller has.
enum class Media { Inputs, Outputs, Flags, Registers, Timers, Counters };
constexpr std::size_t mediaCount = 6;

constexpr std::size_t indexOf(Media media) {
    return static_cast<std::size_t>(media);
}
// Inputs, outputs and flags are bits; the others are words of 32 bits.
constexpr bool isBits(Media media) {
    return media == Media::Inputs || media == Media::Outputs || media == Media::Flags;
}

char letterOf(Media media); // I O F R T C
std::optional<Media> mediaOf(char letter);

enum class Action { Read, Write, SetClock };

// What a command byte asks for. `media` has no meaning for SetClock.
struct Command {
    std::uint8_t code;
    Action action;
    Media media;
    const char* name;
};

// Null for a code that a controller does not know.
const Command* findCommand(std::uint8_t code);

} // namespace sim
