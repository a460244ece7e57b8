#pragma once

#include <string>
#include <vector>

namespace host {

struct TableKey {
    enum class Kind { Up, Down, PageUp, PageDown, Home, End, Enter, Escape, Backspace, Character };
    Kind kind = Kind::Character;
    std::string character; // UTF-8, of Kind::Character alone
};

// Makes keys of what a terminal sends. One thread.
class KeyDecoder {
public:
    // What has come since the last call, nothing included: an escape behind which nothing comes is the key of
    // that name.
    std::vector<TableKey> decode(const std::string& bytes);

private:
    std::string waiting; // the beginning of a sequence
};

} // namespace host
