#include "TextFile.h"

#include "SystemText.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace text {

namespace {

namespace fs = std::filesystem;

// Null for a regular file.
const char* faultOfKind(fs::file_type type) {
    switch (type) {
    case fs::file_type::regular:
        return nullptr;
    case fs::file_type::not_found:
        return "is not there";
    case fs::file_type::directory:
        return "is a directory";
    case fs::file_type::fifo:
        return "is a pipe";
    case fs::file_type::socket:
        return "is a socket";
    case fs::file_type::character:
    case fs::file_type::block:
        return "is a device";
    default:
        return "is no regular file";
    }
}

FileText tooLarge(std::uintmax_t mostBytes) {
    constexpr std::uintmax_t megabyte = 1'048'576;
    const std::string limit = mostBytes % megabyte == 0 ? std::to_string(mostBytes / megabyte) + " MB"
                                                        : std::to_string(mostBytes) + " bytes";
    return {{}, "is larger than " + limit};
}

std::string reason() {
    return errno == 0 ? std::string() : ": " + std::generic_category().message(errno);
}

} // namespace

FileText readTextFile(const std::string& path, std::uintmax_t mostBytes) {
    const fs::path file = fs::u8path(path);
    std::error_code failure;
    const fs::file_status status = fs::status(file, failure);
    if (status.type() == fs::file_type::none) // not even its kind can be told
        return {{}, "cannot be read: " + text::systemText(failure)};
    if (const char* const fault = faultOfKind(status.type()))
        return {{}, fault};
    const std::uintmax_t size = fs::file_size(file, failure);
    if (!failure && size > mostBytes)
        return tooLarge(mostBytes);
    errno = 0; // the stream itself does not say why
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        return {{}, "cannot be opened for reading" + reason()};
    std::string contents;
    if (!failure)
        contents.reserve(static_cast<std::size_t>(size));
    std::array<char, 65'536> block;
    while (stream.read(block.data(), block.size()) || stream.gcount() > 0) {
        contents.append(block.data(), static_cast<std::size_t>(stream.gcount()));
        if (contents.size() > mostBytes) // it has grown, or its size is none, as in /proc
            return tooLarge(mostBytes);
    }
    if (stream.bad())
        return {{}, "fails while it is read" + reason()};
    return {std::move(contents), {}};
}

} // namespace text
