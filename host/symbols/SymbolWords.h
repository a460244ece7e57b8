#pragma once

#include <optional>
#include <string>

namespace host {

// In lower case, with the capital letters of western European languages.
std::string folded(std::string utf8);

// The media of its letter or its name in English, German, French or Italian: "R", "Register", "Registre".
std::optional<char> mediaNamed(const std::string& word);
// Whether the word says that registers hold floating-point values.
bool isFloatWord(const std::string& word);

} // namespace host
