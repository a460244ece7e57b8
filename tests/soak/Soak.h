#pragma once

#include <string>

// Tests that break something on purpose. Each has a short count, with which it is one of the ordinary tests,
// and a long one, with which it runs when the environment says SBUS_SOAK=1, as `./dev soak` does.
namespace soak {

bool isLong();

template <typename Count>
Count count(Count shortOne, Count longOne) {
    return isLong() ? longOne : shortOne;
}

// What the test that runs has measured, on a line of its own that `./dev soak` makes its table of: "100000
// polls, 214 failed".
void tellFigures(const std::string& figures);

} // namespace soak
