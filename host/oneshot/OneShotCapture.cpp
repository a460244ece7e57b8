#include "OneShotCapture.h"

#include "Commands.h"

namespace host {

OneShotCapture::OneShotCapture(const std::optional<CaptureOptions>& options)
    : capture(options ? std::make_unique<CaptureService>(*options) : nullptr) {}

OneShotCapture::~OneShotCapture() {
    if (capture)
        capture->stop();
    for (const std::string& message : messages.take())
        tellError(message);
}

std::string OneShotCapture::start() {
    return capture ? capture->begin(messages) : "";
}

std::unique_ptr<ExchangeFeed::Watch> OneShotCapture::follow(ExchangeFeed& feed) {
    return capture ? capture->follow(feed) : nullptr;
}

} // namespace host
