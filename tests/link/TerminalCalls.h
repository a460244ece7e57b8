#pragma once

#include <chrono>
#include <vector>

#include <termios.h>

// What the program asks of its serial devices, noted on its way to the system: a pseudo terminal has no break
// and keeps 8 data bits without parity. One thread.
namespace TerminalCalls {

struct Break {
    bool on;
    std::chrono::steady_clock::time_point at;
};

// While one lives, the terminals take every setting and show it again, as a serial adapter does.
class ObedientTerminals {
public:
    ObedientTerminals();
    ObedientTerminals(const ObedientTerminals&) = delete;
    ObedientTerminals& operator=(const ObedientTerminals&) = delete;
    ~ObedientTerminals();

    const termios& settings() const;
};

// The break calls since the last clear().
const std::vector<Break>& breaks();
void clear();
// The error number of the break calls from now on; 0 lets them succeed.
void failBreaks(int error);

} // namespace TerminalCalls
