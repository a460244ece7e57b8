#include "ValueJudge.h"

namespace coded {

namespace {

constexpr unsigned registerMark = 0x40; // so that neither the first byte nor the last one is 0
constexpr unsigned digits = 255;        // a byte's values but 0

} // namespace

std::uint32_t wordOf(unsigned registerNumber, unsigned generation) {
    const std::uint32_t mark = registerMark + registerNumber;
    return mark << 24 | (1 + generation / digits) << 16 | (1 + generation % digits) << 8 | mark;
}

bool decode(double value, Decoded& decoded) {
    if (value < 0 || value >= 4294967296.0)
        return false;
    const auto word = static_cast<std::uint32_t>(value);
    const auto byte = [word](int shift) { return word >> shift & 0xFF; };
    decoded.registerNumber = byte(24) - registerMark;
    decoded.generation = (byte(16) - 1) * digits + byte(8) - 1;
    return byte(16) != 0 && byte(8) != 0 && byte(24) >= registerMark &&
           wordOf(decoded.registerNumber, decoded.generation) == word;
}

} // namespace coded

void ValueJudge::allow(int channel, unsigned point, double value) {
    const std::lock_guard<std::mutex> lock(mutex);
    lines[channel].allowed.emplace(point, value);
}

void ValueJudge::setGeneration(int channel, unsigned generation) {
    const std::lock_guard<std::mutex> lock(mutex);
    lines[channel].generation = generation;
    lines[channel].requestsWhenFresh = 0;
}

void ValueJudge::countRequests(int channel) {
    const std::lock_guard<std::mutex> lock(mutex);
    lines[channel].requestsBefore = lines[channel].requests;
}

std::uint64_t ValueJudge::requestsUntilFresh(int channel) const {
    const std::lock_guard<std::mutex> lock(mutex);
    const Line& line = lines.at(channel);
    return line.requestsWhenFresh == 0 ? 0 : line.requestsWhenFresh - line.requestsBefore;
}

std::vector<std::string> ValueJudge::wrongValues() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return wrong;
}

std::uint64_t ValueJudge::values() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return seen;
}

bool ValueJudge::isRight(Line& line, const PointUpdate& update) {
    const auto [first, last] = line.allowed.equal_range(update.number);
    for (auto allowed = first; allowed != last; ++allowed)
        if (allowed->second == update.value)
            return true;
    coded::Decoded decoded{};
    if (first != last || !coded::decode(update.value, decoded) || decoded.registerNumber != update.number ||
        decoded.generation > line.generation)
        return false;
    if (decoded.generation == line.generation && line.requestsWhenFresh == 0)
        line.requestsWhenFresh = line.requests;
    return true;
}

void ValueJudge::publishPoints(int channel, int, const QVector<PointUpdate>& updates) {
    const std::lock_guard<std::mutex> lock(mutex);
    for (const PointUpdate& update : updates) {
        if (update.quality != PointQuality::Good)
            continue;
        ++seen;
        if (!isRight(lines[channel], update))
            wrong.push_back("channel " + std::to_string(channel) + ", point " +
                            std::to_string(update.number) + ": " + std::to_string(update.value));
    }
}

void ValueJudge::publishRtuStatus(int channel, int, const RtuStatus& status) {
    const std::lock_guard<std::mutex> lock(mutex);
    lines[channel].requests = status.requests;
}

void ValueJudge::publishChannelStatus(int, const ChannelStatus&) {}
