#pragma once

#include <string>
#include <string_view>

namespace host {

// Letters from A to Z alone: the words of a table are made of them.
inline char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

inline std::string lowered(std::string text) {
    for (char& letter : text)
        letter = lowered(letter);
    return text;
}

inline bool isSameInAnyCase(std::string_view one, std::string_view other) {
    if (one.size() != other.size())
        return false;
    for (std::size_t i = 0; i < one.size(); ++i)
        if (lowered(one[i]) != lowered(other[i]))
            return false;
    return true;
}

} // namespace host
