#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace host {

// "[##########          ]  50 %  2500 of 5000"
std::string progressText(std::size_t done, std::size_t all);

// A bar on standard error while work takes long. Draws nothing where standard error is no terminal, and
// nothing for work that is done soon. Main thread.
class ProgressBar {
public:
    ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar(); // erases it

    void show(std::size_t done, std::size_t all);
    // Leaves the line as it was found.
    void erase();

private:
    using Clock = std::chrono::steady_clock;

    const bool isTerminal;
    const Clock::time_point startedAt = Clock::now();
    Clock::time_point drawnAt{};
    std::size_t width = 0; // of what is drawn
};

} // namespace host
