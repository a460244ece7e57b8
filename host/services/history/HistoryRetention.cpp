#include "HistoryRetention.h"

#include <algorithm>

namespace host {

namespace {

constexpr std::uint64_t leastRemoved = 1'000; // rows at a call; some 5 ms
constexpr int mostPoints = 2'000;             // that are looked at in a call; some 10 ms
constexpr std::int64_t pauseMs = 60'000;      // between sweeps by age
// A file that is too large loses this part of its time in each sweep.
constexpr std::int64_t partOfTime = 50;
// What is given back to the disk at a call.
constexpr std::uint64_t shrunkBytes = 4'000'000;

} // namespace

void HistoryRetention::work(std::int64_t nowMs, std::uint64_t written) {
    if (point == 0)
        beginSweep(nowMs);
    if (point != 0)
        sweep(leastRemoved + 2 * written);
    if (const HistoryFile::Size size = file.size(); size.file > settings.maxSize && size.file > size.used)
        file.shrink(std::min({shrunkBytes, size.file - settings.maxSize, size.file - size.used}));
}

void HistoryRetention::beginSweep(std::int64_t nowMs) {
    const bool isTooLarge = file.size().used > settings.maxSize;
    if (!isTooLarge && nowMs >= nextSweepMs - pauseMs && nowMs < nextSweepMs)
        return;
    nextSweepMs = nowMs + pauseMs;
    limitMs = std::max(limitMs, nowMs - settings.keep.count());
    if (isTooLarge) {
        limitMs = std::max(limitMs, file.beginOfRuns());
        limitMs += (nowMs - limitMs) / partOfTime + 1;
    }
    file.removeRunsBefore(limitMs);
    point = file.pointAfter(0);
}

void HistoryRetention::sweep(std::uint64_t most) {
    std::uint64_t removed = 0;
    for (int looked = 0; looked < mostPoints && point != 0; ++looked) {
        removed += file.removeBefore(point, limitMs, most - removed);
        if (removed >= most)
            return; // goes on with the same point
        point = file.pointAfter(point);
    }
}

} // namespace host
