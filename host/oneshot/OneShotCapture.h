#pragma once

#include "runtime/Messages.h"
#include "services/capture/CaptureService.h"

#include <optional>

namespace host {

// The capture of a conversation with one controller, when there is to be one. Main thread.
class OneShotCapture {
public:
    explicit OneShotCapture(const std::optional<CaptureOptions>& options);
    OneShotCapture(const OneShotCapture&) = delete;
    OneShotCapture& operator=(const OneShotCapture&) = delete;
    // Writes what waits, and tells what was lost.
    ~OneShotCapture();

    // Empty, or why the file cannot be written.
    std::string start();
    // Captures what passes from now on, as long as the watch lives. The feed and this outlive it.
    std::unique_ptr<ExchangeFeed::Watch> follow(ExchangeFeed& feed);

private:
    Messages messages;
    std::unique_ptr<CaptureService> capture; // null: nothing is captured
};

} // namespace host
