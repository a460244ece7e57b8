#include "ProgressBar.h"

#include "Terminal.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

namespace host {

namespace {

constexpr std::chrono::milliseconds soon{300}; // a bar that only flashes up tells nothing
constexpr std::chrono::milliseconds drawPeriod{100};

} // namespace

std::string progressText(std::size_t done, std::size_t all) {
    constexpr std::size_t barWidth = 30;
    const std::size_t share = all == 0 ? 100 : done * 100 / all;
    const std::size_t filled = barWidth * share / 100;
    char percent[16];
    std::snprintf(percent, sizeof percent, "%3zu %%", share);
    return "[" + std::string(filled, '#') + std::string(barWidth - filled, ' ') + "] " + percent + "  " +
           std::to_string(done) + " of " + std::to_string(all);
}

ProgressBar::ProgressBar() : isTerminal(terminal::isErrorTerminal() && terminal::understandsSequences()) {}

ProgressBar::~ProgressBar() {
    erase();
}

void ProgressBar::show(std::size_t done, std::size_t all) {
    const Clock::time_point now = Clock::now();
    if (!isTerminal || now - startedAt < soon || now - drawnAt < drawPeriod)
        return;
    drawnAt = now;
    const std::string text = progressText(done, all);
    width = std::max(width, text.size());
    std::cerr << '\r' << text << std::string(width - text.size(), ' ') << std::flush;
}

// With blanks: not every terminal of every system understands escape sequences on standard error.
void ProgressBar::erase() {
    if (width > 0)
        std::cerr << '\r' << std::string(width, ' ') << '\r' << std::flush;
    width = 0;
}

} // namespace host
