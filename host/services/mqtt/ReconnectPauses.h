#pragma once

#include <algorithm>
#include <chrono>

namespace host {

// How long a broker that is away is left alone: each pause is twice the one before, up to the longest. Only a
// connection that has stood for a while makes the next pause the first one again, so that a broker that
// accepts and ends connections over and over is not asked more and more often. Time is told. Pure.
class ReconnectPauses {
public:
    using Time = std::chrono::steady_clock::time_point;

    struct Settings {
        std::chrono::milliseconds first{1'000};
        std::chrono::milliseconds longest{60'000};
        std::chrono::milliseconds stable{10'000};
    };

    explicit ReconnectPauses(const Settings& pauseSettings) : settings(pauseSettings) {}

    void noteConnected(Time now) {
        isConnected = true;
        connectedAt = now;
    }
    // The connection has ended, or could not be made. When the next one may be tried.
    Time noteEnd(Time now) {
        const bool wasStable = isConnected && now - connectedAt >= settings.stable;
        isConnected = false;
        pause = wasStable || pause.count() == 0 ? settings.first : std::min(2 * pause, settings.longest);
        return now + pause;
    }

private:
    const Settings settings;
    bool isConnected = false;
    Time connectedAt{};
    std::chrono::milliseconds pause{0};
};

} // namespace host
