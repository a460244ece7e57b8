#include "Media.h"

#include <array>

namespace sim {

namespace {

constexpr std::array<char, mediaCount> letters = {'I', 'O', 'F', 'R', 'T', 'C'};

constexpr std::array<Command, 12> commands = {{
    {0, Action::Read, Media::Counters, "read counters"},
    {2, Action::Read, Media::Flags, "read flags"},
    {3, Action::Read, Media::Inputs, "read inputs"},
    {5, Action::Read, Media::Outputs, "read outputs"},
    {6, Action::Read, Media::Registers, "read registers"},
    {7, Action::Read, Media::Timers, "read timers"},
    {10, Action::Write, Media::Counters, "write counters"},
    {11, Action::Write, Media::Flags, "write flags"},
    {12, Action::SetClock, Media::Inputs, "set clock"},
    {13, Action::Write, Media::Outputs, "write outputs"},
    {14, Action::Write, Media::Registers, "write registers"},
    {15, Action::Write, Media::Timers, "write timers"},
}};

} // namespace

char letterOf(Media media) {
    return letters[indexOf(media)];
}

std::optional<Media> mediaOf(char letter) {
    for (std::size_t i = 0; i < letters.size(); ++i) {
        if (letters[i] == letter)
            return static_cast<Media>(i);
    }
    return std::nullopt;
}

const Command* findCommand(std::uint8_t code) {
    for (const Command& command : commands) {
        if (command.code == code)
            return &command;
    }
    return nullptr;
}

} // namespace sim
