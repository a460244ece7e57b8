#include "MadPeer.h"

#include <algorithm>

namespace soak {

std::vector<Passage> DrippingPeer::pass(Direction direction, const QByteArray& bytes, Clock::time_point now) {
    if (direction == Direction::ToController)
        return {{direction, {bytes, now}}};
    std::vector<Passage> passages;
    for (const char byte : bytes) {
        last = std::max(last + step, now);
        passages.push_back({direction, {QByteArray(1, byte), last}});
    }
    return passages;
}

std::vector<Passage> EchoingPeer::pass(Direction direction, const QByteArray& bytes, Clock::time_point now) {
    if (direction == Direction::ToController)
        return {{Direction::ToHost, {bytes, now}}, {direction, {bytes, now}}};
    if (answers)
        return {{direction, {bytes, now}}};
    return {};
}

namespace {

QByteArray someBytes(std::mt19937_64& random, int size) {
    constexpr char acknowledge = '\x06';
    QByteArray bytes(size, '\0');
    for (char& byte : bytes)
        do
            byte = static_cast<char>(random() & 0xFF);
        while (byte == acknowledge);
    return bytes;
}

bool holdsAnswer(const QByteArray& rubbish, const std::vector<int>& sizes) {
    const QByteArray round = rubbish + rubbish;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(round.constData());
    for (const int size : sizes)
        for (int start = 0; start < rubbish.size(); ++start)
            if (sim::hasValidChecksum(bytes + start, static_cast<std::size_t>(size)))
                return true;
    return false;
}

} // namespace

RubbishPeer::RubbishPeer(const std::vector<int>& answerSizes, std::uint64_t seed) : random(seed) {
    constexpr int roundSize = 2000; // bytes; longer than any answer
    do
        rubbish = someBytes(random, roundSize);
    while (holdsAnswer(rubbish, answerSizes));
}

std::vector<Passage> RubbishPeer::pass(Direction direction, const QByteArray&, Clock::time_point now) {
    constexpr std::uint64_t mostBursts = 8;
    constexpr std::uint64_t longestBurst = 200;  // bytes
    constexpr std::uint64_t longestPauseMs = 30; // longer and shorter than what ends an answer
    if (direction == Direction::ToHost)
        return {};
    std::vector<Passage> passages;
    Clock::time_point time = now;
    for (std::uint64_t left = 1 + random() % mostBursts; left > 0; --left) {
        passages.push_back({Direction::ToHost, {take(1 + static_cast<int>(random() % longestBurst)), time}});
        time += std::chrono::milliseconds(random() % longestPauseMs);
    }
    return passages;
}

QByteArray RubbishPeer::take(int size) {
    const QByteArray bytes = (rubbish + rubbish).mid(position, size);
    position = (position + size) % rubbish.size();
    return bytes;
}

} // namespace soak
