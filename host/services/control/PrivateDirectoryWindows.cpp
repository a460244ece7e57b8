#include "PrivateDirectory.h"

#include <cstdlib>
#include <filesystem>

namespace host {

std::string userTag() {
    const char* const name = std::getenv("USERNAME");
    return name == nullptr ? "user" : name;
}

// The directory for temporary files lies within the user's own, which the others cannot enter.
std::string makePrivateDirectory(const std::string& path, std::optional<GroupId>) {
    std::error_code failure;
    std::filesystem::create_directories(std::filesystem::u8path(path), failure);
    return failure ? "directory " + path + " cannot be made: " + failure.message() : std::string();
}

FoundDirectory findDirectory(const std::string& path) {
    std::error_code failure;
    if (!std::filesystem::is_directory(std::filesystem::u8path(path), failure))
        return {};
    return {DirectoryState::Own, true, {}};
}

} // namespace host
