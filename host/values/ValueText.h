#pragma once

#include "TimeText.h"
#include "ValueStore.h"
#include "site/PointText.h"

#include <chrono>
#include <string>

namespace host {

const char* toText(PointQuality quality); // "good", "bad", "refused", "never read"

// "0.05 ms"
std::string millisecondsText(std::chrono::microseconds duration);

} // namespace host
