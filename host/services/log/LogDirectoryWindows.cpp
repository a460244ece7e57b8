#include "LogDirectory.h"

#include <SystemText.h>

#include <filesystem>

namespace host {

// Links can be made by administrators alone.
std::string prepareLogDirectory(const std::string& path, UserId) {
    std::error_code failure;
    std::filesystem::create_directories(std::filesystem::u8path(path), failure);
    return failure ? "log directory " + path + " cannot be made: " + text::systemText(failure) +
                         "; name one that may be written with --log-dir"
                   : std::string();
}

} // namespace host
