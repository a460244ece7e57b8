#include "Outcome.h"

#include <utility>

namespace sim {

namespace {

constexpr std::array<std::pair<int, int>, clockSize> clockRanges = {
    {{1, 53}, {1, 7}, {0, 99}, {1, 12}, {1, 31}, {0, 23}, {0, 59}, {0, 59}}};

} // namespace

Outcome obey(Memory& memory, const Request& request) {
    if (!request.command)
        return {Verdict::UnknownCommand, {}};
    if (!request.wellFormed)
        return {Verdict::Malformed, {}};
    const Media media = request.command->media;
    switch (request.command->action) {
    case Action::SetClock:
        return {isClockSetting(request.data) ? Verdict::Done : Verdict::RangeError, {}};
    case Action::Read:
        if (!memory.covers(media, request.first, request.count))
            break;
        return {Verdict::Data, packElements(media, memory.get(media, request.first, request.count))};
    case Action::Write:
        if (!memory.covers(media, request.first, request.count))
            break;
        memory.set(media, request.first, unpackElements(media, request.data, request.count));
        return {Verdict::Done, {}};
    }
    return {Verdict::RangeError, {}};
}

bool isClockSetting(const Bytes& data) {
    if (data.size() != clockSize)
        return false;
    for (std::size_t i = 0; i < clockSize; ++i) {
        const int tens = data[i] >> 4;
        const int units = data[i] & 0x0F;
        const int value = tens * 10 + units;
        if (tens > 9 || units > 9 || value < clockRanges[i].first || value > clockRanges[i].second)
            return false;
    }
    return true;
}

} // namespace sim
