#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

// What passes over a line, as values. Nothing here knows where it comes from.
namespace host {

using TelegramBytes = std::vector<std::uint8_t>;

// How the telegrams of a line are framed.
enum class Framing { Ethernet, DataMode, BreakMode };

// What came back after a telegram.
enum class Answer {
    Good,    // the answer to this telegram
    Refused, // the controller understood the telegram and did not carry it out
    Damaged, // cut off, too long, or with a wrong checksum
    Silent,  // nothing
    Foreign, // sound, but not the answer to this telegram
};

// One telegram that was sent, and what came until the next one was or its request ended.
struct Exchange {
    int channelId = 0;
    bool onSecondary = false; // the end in use
    Framing framing = Framing::Ethernet;
    unsigned station = 0;
    TelegramBytes sent;
    TelegramBytes received;
    TelegramBytes discarded; // came before and was thrown away unread
    std::chrono::system_clock::time_point sentAt;
    std::chrono::steady_clock::time_point sentAtSteady;
    std::chrono::microseconds roundTrip{0}; // up to the last byte received; 0 when nothing came
    bool hasLineFailed = false;             // while sending or waiting
    Answer answer = Answer::Silent;
};

} // namespace host
