#pragma once

#include "services/capture/CaptureOptions.h"

#include <memory>
#include <optional>

namespace CLI {
class App;
}

namespace host {

// What a command line says of a capture, filled while it is parsed.
struct GivenCapture {
    std::string path; // empty: nothing is captured
    std::string fileSize;
    unsigned files = CaptureOptions().files;
};

// Adds the options to a sub-command.
std::shared_ptr<GivenCapture> addCaptureOptions(CLI::App& command);
std::optional<CaptureOptions> captureOf(const GivenCapture& given);

} // namespace host
