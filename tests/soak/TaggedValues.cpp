#include "TaggedValues.h"

#include <algorithm>

namespace soak {

namespace {

// Moves and commands come round after 65,536, so which of two is the later one is told by their distance.
bool isLater(std::uint16_t one, std::uint16_t other) {
    return static_cast<std::int16_t>(one - other) > 0;
}

} // namespace

void ValueJudge::expect(int channelId, int rtuId, unsigned point, unsigned place, Kind kind) {
    const std::lock_guard<std::mutex> lock(mutex);
    Rtu& rtu = rtus[{channelId, rtuId}];
    rtu.points[point] = Entry{place, kind};
    rtu.stale = rtu.points.size();
}

void ValueJudge::noteCommand(unsigned place, std::uint16_t number) {
    const std::lock_guard<std::mutex> lock(mutex);
    commanded[place] = number;
}

void ValueJudge::demandFresh(Demanded which) {
    const std::lock_guard<std::mutex> lock(mutex);
    demanded = static_cast<std::uint16_t>(move + 1);
    for (auto& [id, rtu] : rtus) {
        rtu.stale = 0;
        for (auto& [number, entry] : rtu.points) {
            entry.isFresh = which == Demanded::MovingPoints && entry.kind != Kind::Moving;
            rtu.stale += entry.isFresh ? 0 : 1;
        }
        rtu.requestsAtDemand = rtu.requests;
    }
}

bool ValueJudge::isAllFresh() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return std::all_of(rtus.begin(), rtus.end(), [](const auto& one) { return one.second.stale == 0; });
}

std::uint64_t ValueJudge::mostRequestsUntilFresh() const {
    const std::lock_guard<std::mutex> lock(mutex);
    std::uint64_t most = 0;
    for (const auto& [id, rtu] : rtus)
        most = std::max(most, rtu.requestsUntilFresh);
    return most;
}

std::uint64_t ValueJudge::wrongCount() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return wrong;
}

QString ValueJudge::wrongValues() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return wrongText;
}

std::uint64_t ValueJudge::valueCount() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return values;
}

void ValueJudge::publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = rtus.find({channelId, rtuId});
    if (found == rtus.end())
        return;
    Rtu& rtu = found->second;
    const std::size_t staleBefore = rtu.stale;
    for (const PointUpdate& update : updates) {
        const auto point = rtu.points.find(update.number);
        if (point != rtu.points.end()) // not a hidden one
            judge(update, rtu, point->second);
    }
    if (staleBefore != 0 && rtu.stale == 0)
        rtu.requestsUntilFresh = rtu.requests - rtu.requestsAtDemand;
}

void ValueJudge::publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) {
    const std::lock_guard<std::mutex> lock(mutex);
    rtus[{channelId, rtuId}].requests = status.requests;
}

// An update that is not good tells a quality and no new value.
void ValueJudge::judge(const PointUpdate& update, Rtu& rtu, Entry& entry) {
    if (update.quality != PointQuality::Good)
        return;
    ++values;
    const auto value = static_cast<std::uint32_t>(static_cast<std::int64_t>(update.value));
    if (update.value != value || !isPossible(entry, value)) {
        noteWrong(update, entry);
        return;
    }
    entry.move = static_cast<std::uint16_t>(value);
    if (entry.isFresh)
        return;
    entry.isFresh = entry.kind != Kind::Moving || !isLater(demanded, entry.move);
    rtu.stale -= entry.isFresh ? 1 : 0;
}

void ValueJudge::noteWrong(const PointUpdate& update, const Entry& entry) {
    constexpr int mostText = 2000; // characters: enough to see what kind of fault it is
    ++wrong;
    if (wrongText.size() < mostText)
        wrongText += QStringLiteral("point %1 at place %2 shows %3 after %4\n")
                         .arg(update.number)
                         .arg(entry.place)
                         .arg(update.value)
                         .arg(entry.move);
}

bool ValueJudge::isPossible(const Entry& entry, std::uint32_t value) const {
    if (entry.kind == Kind::Bit)
        return value == taggedBit(entry.place);
    if (entry.kind == Kind::Standing)
        return value == taggedWord(entry.place, 0);
    const auto shown = static_cast<std::uint16_t>(value);
    if (entry.kind == Kind::Moving)
        return value >> 16 == entry.place && isPossibleMove(entry, shown);
    if (value == 0)
        return true;
    const auto last = commanded.find(entry.place);
    return value >> 16 == entry.place && last != commanded.end() && !isLater(shown, last->second);
}

bool ValueJudge::isPossibleMove(const Entry& entry, std::uint16_t shown) const {
    return !isLater(shown, static_cast<std::uint16_t>(move)) && (mayGoBack || !isLater(entry.move, shown));
}

} // namespace soak
