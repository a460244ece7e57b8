#include "LineTrouble.h"

#include <SerialReceiver.h>

#include <algorithm>

namespace soak {

namespace {

const std::uint8_t* bytesOf(const QByteArray& bytes) {
    return reinterpret_cast<const std::uint8_t*>(bytes.constData());
}

// Whether an answer of this size could be read out of the bytes that is not the right one.
bool holdsAnotherAnswer(sim::Framing framing, const QByteArray& original, const QByteArray& arriving) {
    const int size = original.size();
    for (int start = 0; start + size <= arriving.size(); ++start) {
        const QByteArray answer = arriving.mid(start, size);
        const bool starts = framing != sim::Framing::DataMode || answer.startsWith(original.left(2));
        if (answer != original && starts &&
            sim::hasValidChecksum(bytesOf(answer), static_cast<std::size_t>(size)))
            return true;
    }
    return false;
}

std::vector<sim::Bytes> requestsIn(sim::Framing framing, const QByteArray& bytes) {
    sim::SerialReceiver receiver(framing);
    const Clock::time_point start{};
    std::vector<sim::Bytes> found =
        receiver.push(bytesOf(bytes), static_cast<std::size_t>(bytes.size()), start);
    for (sim::Bytes& late : receiver.expire(start + sim::SerialReceiver::silenceLimit))
        found.push_back(std::move(late));
    return found;
}

// A controller that is read late may find more than one request.
bool holdsAnotherRequest(sim::Framing framing, const QByteArray& original, const QByteArray& arriving) {
    const std::vector<sim::Bytes> right = requestsIn(framing, original);
    const std::vector<sim::Bytes> found = requestsIn(framing, arriving);
    return std::any_of(found.begin(), found.end(), [&right](const sim::Bytes& request) {
        return std::find(right.begin(), right.end(), request) == right.end();
    });
}

} // namespace

LineTrouble::~LineTrouble() = default;

BadSerialLine::BadSerialLine(sim::Framing lineFraming, const Maltreatment& maltreatment, std::uint64_t seed,
                             std::atomic<unsigned>& sparedCount)
    : framing(lineFraming), ways{Way{{maltreatment.telegrams, 4 * seed}, {maltreatment.pieces, 4 * seed + 1}},
                                 Way{{maltreatment.telegrams, 4 * seed + 2},
                                     {maltreatment.pieces, 4 * seed + 3}}},
      random(seed), spared(sparedCount) {}

std::vector<Passage> BadSerialLine::pass(Direction direction, const QByteArray& bytes,
                                         Clock::time_point now) {
    Way& way = ways[static_cast<std::size_t>(direction)];
    std::vector<Delivery> deliveries;
    for (const Delivery& telegram : way.telegrams.pass(bytes, now))
        for (const QByteArray& piece : cut(telegram.bytes))
            for (Delivery& delivery : way.pieces.pass(piece, telegram.time))
                deliveries.push_back(std::move(delivery));
    std::stable_sort(deliveries.begin(), deliveries.end(),
                     [](const Delivery& a, const Delivery& b) { return a.time < b.time; });
    QByteArray arriving;
    for (const Delivery& delivery : deliveries)
        arriving += delivery.bytes;
    if (looksRight(direction, bytes, arriving)) {
        deliveries = {{bytes, now}};
        ++spared;
    }
    std::vector<Passage> passages;
    for (Delivery& delivery : deliveries)
        passages.push_back({direction, std::move(delivery)});
    return passages;
}

std::vector<QByteArray> BadSerialLine::cut(const QByteArray& bytes) {
    constexpr std::uint64_t mostPieces = 4;
    std::vector<QByteArray> pieces;
    QByteArray rest = bytes;
    for (std::uint64_t left = random() % mostPieces; left > 0 && rest.size() > 1; --left) {
        const int size = 1 + static_cast<int>(random() % static_cast<std::uint64_t>(rest.size() - 1));
        pieces.push_back(rest.left(size));
        rest.remove(0, size);
    }
    pieces.push_back(rest);
    return pieces;
}

bool BadSerialLine::looksRight(Direction direction, const QByteArray& original,
                               const QByteArray& arriving) const {
    if (original.size() <= static_cast<int>(sim::checksumSize)) // Break Mode's acknowledge has no checksum
        return false;
    return direction == Direction::ToHost ? holdsAnotherAnswer(framing, original, arriving)
                                          : holdsAnotherRequest(framing, original, arriving);
}

} // namespace soak
