#include "Pacer.h"

#include <algorithm>

namespace sim {

void Pacer::noteRequest(std::size_t size, Clock::time_point now) {
    lineFree = std::max(lineFree, now) + timeOf(size);
}

void Pacer::add(Bytes answer, Clock::time_point earliest) {
    waiting.emplace(earliest, std::move(answer));
}

Bytes Pacer::takeDue(Clock::time_point now) {
    Bytes due;
    while (sending || startNext(now)) {
        const std::size_t size = sending->bytes.size();
        const std::size_t gone =
            characterTime.count() == 0
                ? size
                : std::min(size, static_cast<std::size_t>((now - sending->start) / characterTime));
        due.insert(due.end(), sending->bytes.begin() + static_cast<std::ptrdiff_t>(sending->left),
                   sending->bytes.begin() + static_cast<std::ptrdiff_t>(gone));
        sending->left = gone;
        if (gone < size)
            break;
        sending.reset();
    }
    return due;
}

bool Pacer::startNext(Clock::time_point now) {
    const auto next = waiting.begin();
    if (next == waiting.end())
        return false;
    const Clock::time_point start = std::max(next->first, lineFree);
    if (start > now)
        return false;
    sending = Sending{std::move(next->second), start};
    lineFree = start + timeOf(sending->bytes.size());
    waiting.erase(next);
    return true;
}

std::optional<Clock::time_point> Pacer::nextDue(Clock::time_point now) const {
    if (sending) {
        const Clock::time_point nextCharacter = sending->start + timeOf(sending->left + 1);
        return std::min(std::max(nextCharacter, now + pieceTime),
                        sending->start + timeOf(sending->bytes.size()));
    }
    if (waiting.empty())
        return std::nullopt;
    return std::max(waiting.begin()->first, lineFree);
}

Clock::duration Pacer::timeOf(std::size_t characters) const {
    return std::chrono::duration_cast<Clock::duration>(characterTime * static_cast<std::int64_t>(characters));
}

} // namespace sim
