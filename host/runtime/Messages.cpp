#include "Messages.h"

namespace host {

namespace {

constexpr std::size_t mostWaiting = 20'000; // for a screen that is slower than the frames of all lines

} // namespace

void Messages::tell(const std::string& message) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (waiting.size() < mostWaiting)
        waiting.push_back(message);
    else
        ++lost;
}

std::vector<std::string> Messages::take() {
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<std::string> taken;
    taken.swap(waiting);
    if (lost > 0)
        taken.push_back(std::to_string(lost) + " messages were lost: they came faster than they were read");
    lost = 0;
    return taken;
}

} // namespace host
