#pragma once

namespace host {

// The whole numbers that the host writes to an element of a media: 0 and 1 to outputs and flags; a register
// holds a signed word; timers and counters count from or to what is written, and never are below 0.
struct WordRange {
    long long lowest;
    long long highest;
};
WordRange wordRangeOf(char media);

// Whether `value` is one of them.
bool isWordOf(char media, double value);

} // namespace host
