#include "SwitchWord.h"

#include <algorithm>
#include <cctype>

namespace host {

std::optional<bool> parseSwitchWord(const std::string& text) {
    std::string word(text.size(), ' ');
    std::transform(text.begin(), text.end(), word.begin(), [](char letter) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    });
    if (word == "on" || word == "true")
        return true;
    if (word == "off" || word == "false")
        return false;
    return std::nullopt;
}

} // namespace host
