#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace host {

// "512kB", "10MB", "1GB": a whole number and its unit, each unit a thousand of the one before, with B for
// single bytes. Nothing for any other text and for what does not fit into 63 bits, which is as far as files
// count.
std::optional<std::uint64_t> parseByteSize(const std::string& text);
// Why `text` is no size above 0; empty when it is one.
std::string byteSizeFault(const std::string& text);

} // namespace host
