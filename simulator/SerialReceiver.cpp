#include "SerialReceiver.h"

#include "Request.h"

namespace sim {

namespace {

// Start, station, command, byte count, 256 bytes, checksum.
constexpr std::size_t largestTelegram = 2 + 3 + 256 + checksumSize;

} // namespace

std::vector<Bytes> SerialReceiver::push(const std::uint8_t* bytes, std::size_t size, Clock::time_point now) {
    std::vector<Bytes> found = expire(now);
    buffer.insert(buffer.end(), bytes, bytes + size);
    lastArrival = now;
    search(false, found);
    return found;
}

std::vector<Bytes> SerialReceiver::expire(Clock::time_point now) {
    std::vector<Bytes> found;
    if (incomplete() && now - lastArrival >= silenceLimit)
        search(true, found);
    return found;
}

SerialLosses SerialReceiver::takeLosses() {
    const SerialLosses taken = losses;
    losses = {};
    return taken;
}

void SerialReceiver::search(bool silent, std::vector<Bytes>& found) {
    while (dropToStart(silent)) {
        std::size_t size = 0;
        const bool whole = isWhole(size);
        if (whole && hasValidChecksum(buffer.data(), size)) {
            const auto end = buffer.begin() + static_cast<std::ptrdiff_t>(size);
            found.emplace_back(buffer.begin(), end);
            buffer.erase(buffer.begin(), end);
            damaged = false;
            continue;
        }
        if (!whole && !silent && buffer.size() < largestTelegram)
            return;
        if (!damaged)
            ++(whole ? losses.wrongChecksums : losses.brokenOff);
        damaged = true;
        discard(1);
    }
    damaged = false; // nothing of it is left
}

// Whether the buffer now begins with what may be a telegram.
bool SerialReceiver::dropToStart(bool silent) {
    if (framing == Framing::DataMode) {
        const auto request = static_cast<std::uint8_t>(Attribute::Request);
        std::size_t start = 0;
        while (start < buffer.size()) {
            const bool last = start + 1 == buffer.size();
            if (buffer[start] == synchronisation && (last ? !silent : buffer[start + 1] == request))
                break;
            ++start;
        }
        discard(start);
    }
    return !buffer.empty();
}

// `size` is the telegram's when it is whole.
bool SerialReceiver::isWhole(std::size_t& size) const {
    const std::size_t startSize = serialStartSize(framing);
    if (buffer.size() < startSize)
        return false;
    const auto body = bodySize(buffer.data() + startSize, buffer.size() - startSize);
    if (!body) {
        size = buffer.size();
        return size >= startSize + 2 + checksumSize && hasValidChecksum(buffer.data(), size);
    }
    size = startSize + *body + checksumSize;
    return buffer.size() >= size;
}

void SerialReceiver::discard(std::size_t count) {
    buffer.erase(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count));
    losses.bytes += count;
}

} // namespace sim
