#pragma once

#include "HttpMessage.h"

#include <chrono>
#include <functional>

namespace host {

// A page that many may ask for and that takes its time to be made: whoever asks again before three times as
// long has passed as it took gets the same once more, so that making it takes a quarter of a processor at
// most. One thread.
class RestingPage {
public:
    using Clock = std::chrono::steady_clock;

    explicit RestingPage(std::function<std::string()> makePage,
                         std::function<Clock::time_point()> clockNow = Clock::now)
        : make(std::move(makePage)), now(std::move(clockNow)) {}

    HttpResponse::Body get();

private:
    const std::function<std::string()> make;
    const std::function<Clock::time_point()> now;
    HttpResponse::Body page; // null: never made
    Clock::time_point restsUntil;
};

} // namespace host
