#pragma once

#include <gmock/gmock.h>

#include <regex>

// GoogleTest's own matchers know no sets of characters on Windows.

MATCHER_P(MatchesPattern, pattern, "") {
    return std::regex_match(arg, std::regex(pattern));
}

MATCHER_P(ContainsPattern, pattern, "") {
    return std::regex_search(arg, std::regex(pattern));
}
