#pragma once

#include <QTimeZone>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Times as people give and read them, in the zone where they are.
namespace host {

// "2026-11-22", "2026-11-22 14:00", "2026-11-22T14:00:30", the same with an offset ("Z", "+01:00"), "now",
// and
// "-1h", "-30d" for a time before now. Milliseconds since 1970; nothing for any other text. An hour that
// comes twice, when the clocks are set back, is the first one; of one that is left out, the time behind it.
std::optional<std::int64_t> parseHistoryTime(const std::string& text, std::int64_t nowMs,
                                             const QTimeZone& zone);

// "2026-11-22T14:00:00.125+01:00"
std::string isoTimeText(std::int64_t timeMs, const QTimeZone& zone);

// Where stretches of this length begin: whole multiples of it from local midnight of the first day on, the
// first one at or before `fromMs`; whole days begin at midnight, however long they are. The last time is that
// of `toMs`. Empty when there would be more than `most`.
std::vector<std::int64_t> stretchTimes(std::int64_t fromMs, std::int64_t toMs, std::int64_t lengthMs,
                                       const QTimeZone& zone, std::size_t most);

} // namespace host
